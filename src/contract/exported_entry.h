#pragma once

namespace pgn_vistel {

/// How to switch the library's module state in and out; null where there is none, as in a host that links the
/// decoder alone. Set once when the library is loaded, before any entry can be called.
struct ModuleSwitch {
    void* (*enter)() noexcept;               ///< returns what was current
    void (*leave)(void* previous) noexcept;  ///< makes that current again
};
inline constinit const ModuleSwitch* module_switch = nullptr;

/// Switches the library's module state in for the length of an exported entry, however that is left. Entries
/// may nest.
class ModuleGuard {
  public:
    ModuleGuard() noexcept {
        if (module_switch != nullptr) previous_ = module_switch->enter();
    }
    ~ModuleGuard() {
        if (module_switch != nullptr) module_switch->leave(previous_);
    }
    ModuleGuard(const ModuleGuard&) = delete;
    ModuleGuard& operator=(const ModuleGuard&) = delete;

  private:
    void* previous_ = nullptr;
};

/// What `act` returns, or `failure` where it throws: no exception leaves an exported entry.
template <class Result, class Act>
Result contained(Result failure, Act act) noexcept {
    try {
        return act();
    } catch (...) {
        return failure;
    }
}
template <class Act>
void contained(Act act) noexcept {
    try {
        act();
    } catch (...) {
    }
}

}  // namespace pgn_vistel
