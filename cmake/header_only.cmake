# Libraries of the build machine that are headers alone, for whatever machine is built for.
#
# add_header_only(TARGET HEADER): a target that makes <HEADER> visible, a file or folder of the include path. When built
# for another machine it is reached through a folder of links, because the rest of the include path is not for that one.
function(add_header_only target header)
    find_path(${target}_DIR ${header} REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/local/include /usr/include)
    set(folder ${${target}_DIR})
    if(CMAKE_CROSSCOMPILING)
        set(folder ${PROJECT_BINARY_DIR}/headers/${target})
        file(MAKE_DIRECTORY ${folder})
        string(REGEX MATCH "^[A-Za-z0-9_]+" name ${header})
        file(GLOB links ${${target}_DIR}/${name} ${${target}_DIR}/${name}.h*)
        foreach(link IN LISTS links)
            get_filename_component(file ${link} NAME)
            file(CREATE_LINK ${link} ${folder}/${file} SYMBOLIC)
        endforeach()
    endif()
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} INTERFACE ${folder})
endfunction()
