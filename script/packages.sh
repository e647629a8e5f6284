# shellcheck shell=bash disable=SC2034 # script/bootstrap composes the names
# Debian packages, by purpose. Sourced by script/bootstrap. Configuring looks for the test and benchmark libraries too;
# llvm-14 has the symbolizer, by whose names the leak check knows what it is to pass over.
build_packages="cmake ninja-build g++ python3 pkg-config libcli11-dev libasio-dev zlib1g-dev liblzma-dev libzstd-dev
    libbz2-dev nlohmann-json3-dev libncurses-dev libwxgtk3.2-dev libgtk-3-dev libgtest-dev libgmock-dev libbenchmark-dev"
test_packages="clang-14 libclang-rt-14-dev llvm-14 clang-format-14 clang-tidy-14 shellcheck pyflakes3
    xvfb xauth zsh fish"
# The 32-bit build needs a processor that has one.
if [ "$(dpkg --print-architecture)" = amd64 ]; then test_packages="$test_packages g++-multilib"; fi
package_packages="dpkg-dev file lintian desktop-file-utils appstream"
try_packages="debootstrap"
docs_packages="doxygen"
screenshot_packages="xvfb openbox xdotool imagemagick xterm fonts-dejavu-core pngquant"
bench_packages="valgrind"
# clang tells the names that Microsoft's compiler gives, git the time of the package's contents.
windows_packages="g++-mingw-w64-i686-posix clang-14 lld-14 llvm-14 dpkg-dev git"
wine_packages="debootstrap googletest imagemagick xvfb"
