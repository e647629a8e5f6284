// What exists from load to unload, of the shared library or of a program that contains it, in the order of
// construction; destruction is in the opposite order. All of it stands in this one file because that is what
// fixes the order.

#include <wx/log.h>

#include "contract/exported_entry.h"
#include "pgn_vistel/pgn_db.h"
#include "platform/platform.h"
#include "views/images.h"

namespace pgn_vistel {
namespace {

/// The module state that exported entries switch in.
struct Module {
    platform::ModuleState state;
    Module() { module_switch = &to_this; }

    static const ModuleSwitch to_this;
};
Module module;

constexpr ModuleSwitch Module::to_this = {
    []() noexcept -> void* { return platform::set_module_state(&module.state); },
    [](void* previous) noexcept {
        platform::set_module_state(static_cast<platform::ModuleState*>(previous));
    }};

/// Keeps the toolkit's logging off, which would report a missing icon in a message box.
class QuietToolkit {
  public:
    QuietToolkit() : was_enabled_(wxLog::EnableLogging(false)) {}
    ~QuietToolkit() { wxLog::EnableLogging(was_enabled_); }

  private:
    bool was_enabled_;
};
const QuietToolkit quiet_toolkit;

/// Adds nothing to what an application object does.
class CPGN_VistelApp final : public CWinApp {
    using CWinApp::CWinApp;
};
const CPGN_VistelApp application(module.state);

[[maybe_unused]] const wxBitmap& first_image = pause_image();
[[maybe_unused]] const wxBitmap& second_image = clear_image();

}  // namespace
}  // namespace pgn_vistel

QV_N2K_PGN_DB_c qv_n2k_pgn_db;
