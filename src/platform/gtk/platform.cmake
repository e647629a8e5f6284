# What the toolkit itself stands on here: the window bridge speaks to it.
find_package(PkgConfig REQUIRED)
pkg_check_modules(GTK REQUIRED IMPORTED_TARGET GLOBAL gtk+-3.0)
set(platform_sources ../shared/module.cpp platform.cpp product_name.cpp window_bridge.cpp)
set(platform_libraries PkgConfig::GTK)
