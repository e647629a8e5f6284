// The library as hosts that load it see it: it comes and goes, and leaves the toolkit as it found it.

#include <wx/log.h>

#include "loaded_module.h"
#include "pgn_vistel/native.h"

namespace pgn_vistel::test {
namespace {

TEST(Library, ComesAndGoesAndLeavesTheToolkitAsItWas) {
    for (const bool before : {true, false, true}) {
        wxLog::EnableLogging(before);
        {
            const LoadedModule plugin(PLUGIN);
            EXPECT_TRUE(is_loaded(LIBRARY));
            EXPECT_FALSE(wxLog::IsEnabled());
            EXPECT_EQ(plugin.function<int(HWND)>("open_monitor")(nullptr), 0);
            plugin.function<void()>("close_monitor")();
        }
        EXPECT_EQ(wxLog::IsEnabled(), before);
        EXPECT_FALSE(is_loaded(LIBRARY));
    }
}

}  // namespace
}  // namespace pgn_vistel::test
