#pragma once

#include <gtest/gtest.h>
#include <windows.h>

namespace pgn_vistel::test {

/// A module that is loaded while this lives.
class LoadedModule {
  public:
    explicit LoadedModule(const char* path) : handle_(LoadLibraryA(path)) {
        EXPECT_NE(handle_, nullptr) << GetLastError();
    }
    ~LoadedModule() { FreeLibrary(handle_); }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    template <class Function>
    Function* function(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(handle_, name)));
    }

  private:
    HMODULE handle_;
};

inline bool is_loaded(const char* path) {
    return GetModuleHandleA(path) != nullptr;
}

}  // namespace pgn_vistel::test
