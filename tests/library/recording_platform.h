#pragma once

#include <span>

#include "platform/platform.h"

class wxBitmap;

/// A platform that records what the library asks of it. Its native windows are the toolkit's own.
namespace pgn_vistel::test {

/// From here on the module state that is current now is the host's.
void watch_module_states();
/// How often another one has taken its place since; -1 while it is not current again.
int times_switched();

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

/// Whether a native window can be had as a parent.
inline bool bridge_works = true;

}  // namespace pgn_vistel::test
