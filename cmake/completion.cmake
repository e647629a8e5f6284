# Completions for shells, made of what the programs that were built say of their options.
set(completion_dir ${PROJECT_BINARY_DIR}/completion)
set(completion_tool ${PROJECT_SOURCE_DIR}/tools/completion/completion.py)
set(completions ${completion_dir}/vistel.bash ${completion_dir}/_vistel ${completion_dir}/vistel.fish)

set(commands_of_others)
set(other_programs)
foreach(command monitor top)
    if(TARGET vistel-${command})
        list(APPEND commands_of_others ${command}=$<TARGET_FILE:vistel-${command}>)
        list(APPEND other_programs vistel-${command})
    endif()
endforeach()
add_custom_command(
    OUTPUT ${completions}
    COMMAND ${Python3_EXECUTABLE} ${completion_tool} ${completion_dir} $<TARGET_FILE:vistel> ${commands_of_others}
    DEPENDS ${completion_tool} vistel ${other_programs}
    COMMENT "Completions for shells"
    VERBATIM)
add_custom_target(completions ALL DEPENDS ${completions})

install(FILES ${completion_dir}/vistel.bash RENAME vistel
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions COMPONENT programs)
install(FILES ${completion_dir}/_vistel
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/zsh/vendor-completions COMPONENT programs)
install(FILES ${completion_dir}/vistel.fish
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/fish/vendor_completions.d COMPONENT programs)
