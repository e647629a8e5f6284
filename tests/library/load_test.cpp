// The library as hosts that load it see it: it comes and goes, and leaves the toolkit as it found it.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <wx/log.h>

namespace pgn_vistel::test {
namespace {

class LoadedModule {
  public:
    explicit LoadedModule(const char* path) : handle_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(handle_, nullptr) << dlerror();
    }
    ~LoadedModule() {
        if (handle_ != nullptr) dlclose(handle_);
    }
    template <class Function>
    Function* function(const char* name) const {
        void* const address = dlsym(handle_, name);
        EXPECT_NE(address, nullptr) << name;
        return reinterpret_cast<Function*>(address);
    }

  private:
    void* handle_;
};

bool is_loaded(const char* path) {
    void* const handle = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) dlclose(handle);
    return handle != nullptr;
}

TEST(Library, KeepsTheToolkitsLoggingOffWhileItIsLoaded) {
    for (const bool before : {true, false, true}) {
        wxLog::EnableLogging(before);
        {
            const LoadedModule library(LIBRARY);
            EXPECT_FALSE(wxLog::IsEnabled());
        }
        EXPECT_EQ(wxLog::IsEnabled(), before);
        EXPECT_FALSE(is_loaded(LIBRARY));
    }
}

TEST(Library, WorksEachTimeThatItIsLoaded) {
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        {
            const LoadedModule plugin(PLUGIN);
            EXPECT_TRUE(is_loaded(LIBRARY));
            EXPECT_EQ(plugin.function<int()>("use_library")(), 0);
        }
        EXPECT_FALSE(is_loaded(LIBRARY));
    }
}

}  // namespace
}  // namespace pgn_vistel::test
