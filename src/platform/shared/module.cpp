#include "platform/platform.h"

namespace pgn_vistel::platform {

namespace {

thread_local ModuleState* current = nullptr;

}  // namespace

ModuleState* set_module_state(ModuleState* state) noexcept {
    ModuleState* const previous = current;
    current = state;
    return previous;
}

}  // namespace pgn_vistel::platform

CWinApp::CWinApp(pgn_vistel::platform::ModuleState& module) : module_(module) {
    module_.application = this;
}

CWinApp::~CWinApp() {
    module_.application = nullptr;
}
