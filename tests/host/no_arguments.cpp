// Preloaded into a program, it has main called without any argument, not even the program's name: some
// kernels start programs so where that is asked for.

#include <dlfcn.h>

namespace {

using Main = int (*)(int, char**, char**);
using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
Main program = nullptr;

int without_arguments(int, char**, char** environment) {
    char* none[] = {nullptr};
    return program(0, none, environment);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int __libc_start_main(Main main, int argc, char** argv,
                                                                        void (*init)(), void (*finish)(),
                                                                        void (*loader)(), void* stack_end) {
    program = main;
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(without_arguments, argc, argv, init, finish, loader, stack_end);
}
