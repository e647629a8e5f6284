# Debian packages, by purpose. Sourced by script/bootstrap.
build_packages="cmake ninja-build g++ python3 libcli11-dev"
test_packages="libgtest-dev libbenchmark-dev clang-14 libclang-rt-14-dev clang-format-14"
