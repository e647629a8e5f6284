# Debian packages, by purpose. Sourced by script/bootstrap.
build_packages="cmake ninja-build g++ python3 pkg-config libcli11-dev libwxgtk3.2-dev libgtk-3-dev"
test_packages="git libgtest-dev libbenchmark-dev clang-14 libclang-rt-14-dev clang-format-14 xvfb xauth"
