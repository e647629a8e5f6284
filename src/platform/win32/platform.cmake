# Of Windows itself; the toolkit brings what it stands on.
set(platform_sources ../shared/module.cpp native_tree.cpp platform.cpp window_bridge.cpp)
set(platform_libraries version)
