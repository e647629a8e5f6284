# wxWidgets as the target `toolkit`. Its headers are not ours to warn about.
find_package(wxWidgets 3.2 REQUIRED COMPONENTS core base)
add_library(toolkit INTERFACE)
target_include_directories(toolkit SYSTEM INTERFACE ${wxWidgets_INCLUDE_DIRS})
target_compile_definitions(toolkit INTERFACE ${wxWidgets_DEFINITIONS})
target_compile_options(toolkit INTERFACE ${wxWidgets_CXX_FLAGS})
target_link_libraries(toolkit INTERFACE ${wxWidgets_LIBRARIES})
