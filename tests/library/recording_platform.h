#pragma once

#include <span>

#include "platform/platform.h"

class wxBitmap;

/// A platform that keeps book of what the library asks of it. Its native windows are the toolkit's own.
namespace pgn_vistel::test {

/// Module states that became current since they were last forgotten; null is the host's.
std::span<const platform::ModuleState* const> module_states();
void forget_module_states();

/// One step of loading or unloading, with the toolkit's logging switch at that moment.
struct Step {
    const char* name;
    bool logging;
    const void* object;  // the image that was built
};
/// What happened before the global database was constructed.
std::span<const Step> load_steps();
/// Has the steps of unloading checked when they have happened, after main. The process fails if they are
/// wrong.
void check_unloading(const wxBitmap& pause, const wxBitmap& clear);

/// While it lives, no native window can be had as a parent.
struct NoBridge {
    NoBridge();
    ~NoBridge();
};

}  // namespace pgn_vistel::test
