#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace pgn_vistel::test {

/// A module that is loaded while this lives.
class LoadedModule {
  public:
    explicit LoadedModule(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(handle_, nullptr) << dlerror();
    }
    ~LoadedModule() { dlclose(handle_); }

    template <class Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(dlsym(handle_, name));
    }

  private:
    void* handle_;
};

inline bool is_loaded(const char* path) {
    void* const handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
}

}  // namespace pgn_vistel::test
