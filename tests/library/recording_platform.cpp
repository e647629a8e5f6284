#include "library/recording_platform.h"

#include <wx/bitmap.h>
#include <wx/image.h>
#include <wx/log.h>
#include <wx/toplevel.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "pgn_vistel/pgn_db.h"

namespace pgn_vistel::test {

namespace {

// Plain data: it is used before and after everything that has a constructor.
Step steps[16];
int step_count = 0;
bool loaded = false;
alignas(wxBitmap) char kept_images[2][sizeof(wxBitmap)];

/// Whether the global database is constructed: it holds a pointer, which is null before.
bool is_database_there() {
    const void* selection;
    std::memcpy(&selection, &qv_n2k_pgn_db, sizeof selection);
    return selection != nullptr;
}

void note(const char* name, const void* object = nullptr) {
    if (is_database_there()) loaded = true;  // the rest is the toolkit's
    if (!loaded && step_count < 16) steps[step_count++] = {name, wxLog::IsEnabled(), object};
}

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "unloading: %s\n", what);
    std::_Exit(1);
}

bool is_library_loaded_still = false;

/// Made before and gone after everything that the library loads.
struct Host {
    Host() {
        wxLog::EnableLogging(true);
        note("host");
    }
    ~Host() {
        if (is_library_loaded_still) fail("the application object is still there");
        if (!wxLog::IsEnabled()) fail("logging is not restored");
    }
};
[[gnu::init_priority(101)]] Host host;

platform::ModuleState *current_state = nullptr, *host_state = nullptr;
int switched_in = 0;

}  // namespace

void watch_module_states() {
    host_state = current_state;
    switched_in = 0;
}

int times_switched() {
    return current_state == host_state ? switched_in : -1;
}

std::span<const Step> load_steps() {
    return {steps, static_cast<std::size_t>(step_count)};
}

void check_unloading(const wxBitmap& pause, const wxBitmap& clear) {
    new (kept_images[0]) wxBitmap(pause);
    new (kept_images[1]) wxBitmap(clear);
    is_library_loaded_still = true;
}

}  // namespace pgn_vistel::test

using namespace pgn_vistel;
using namespace pgn_vistel::test;

// In place of the toolkit's own, to see when the library builds its images.
wxBitmap::wxBitmap(const char* const* bits) {
    *this = wxBitmap(wxImage(bits));
    note("image", this);
}

CWinApp::CWinApp(platform::ModuleState& module) : module_(module) {
    note("application");
    module_.application = this;
}

CWinApp::~CWinApp() {
    if (!is_library_loaded_still) return;
    if (wxLog::IsEnabled()) fail("logging is on before the application object goes");
    for (const auto& image : kept_images)
        if (reinterpret_cast<const wxBitmap*>(image)->GetRefData()->GetRefCount() != 1)
            fail("an image is still there when the application object goes");
    module_.application = nullptr;
    is_library_loaded_still = false;
}

namespace pgn_vistel::platform {

ModuleState* set_module_state(ModuleState* state) noexcept {
    switched_in += current_state == host_state && state != host_state;
    return std::exchange(current_state, state);
}

std::wstring product_name(HINSTANCE module) {
    return module != nullptr ? L"Recorded" : L"";
}

Size client_size(HWND) {
    return {};
}

wxWindow* wrap_native_window(HWND window) {
    return bridge_works ? reinterpret_cast<wxWindow*>(window) : nullptr;
}

void keep_above(wxTopLevelWindow&, HWND) {}

void set_program_icon(wxTopLevelWindow&) {}

void let_tab_pass(wxTopLevelWindow&) {}

void remove_padding(wxWindow&) {}

}  // namespace pgn_vistel::platform
