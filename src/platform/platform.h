#pragma once

#include <string>

#include "pgn_vistel/native.h"

class wxTopLevelWindow;
class wxWindow;
class CWinApp;

/// What the library needs of a platform beyond the toolkit: the page for whoever ports it.
///
/// A platform is a folder beside this file. It implements what is declared here and brings the header of its
/// native tree control, `public/pgn_vistel/native_tree.h`, with at least the members that the views use
/// (of `CTreeCtrl` what `views/native_tree.cpp`, `OnInit` and `OnSize` call). What its window
/// and module handles are is said in native.h, for hosts. `platform.cmake` names its sources and the
/// libraries that they need. No other code of the library depends on which platform it is.
///
/// Everything is called on the user-interface thread except `set_module_state`, which any thread may call and
/// which speaks of that thread alone; the application object is made and deleted by the thread that loads
/// and unloads the library. Nothing throws but std::bad_alloc, and that only where a text, a window or an
/// icon is asked for. Nothing shows a message box.
namespace pgn_vistel::platform {

// ---- modules ----

/// What is kept for one loaded module. The library has one from load to unload. What else a toolkit wants of
/// the module is told where the toolkit is started: on Windows the module's handle, since the toolkit is
/// inside it.
struct ModuleState {
    CWinApp* application = nullptr;
};

/// Makes a module's state the current one of the calling thread and returns the one that was; null is the
/// host's own, which is current before the first call. The pointer is kept, not what it points at.
ModuleState* set_module_state(ModuleState* state) noexcept;

/// The product name that a module carries, or an empty text where it carries none or the handle is null. Any
/// other handle must be one of a module that is loaded.
std::wstring product_name(NativeModule module);

// ---- windows ----

struct Size {
    int width = 0;
    int height = 0;
};

/// Inner size of a native window, in pixels; 0 by 0 for null.
Size client_size(NativeWindow window);

/// A toolkit window that stands for a native one and may be a parent; null when that cannot be had. Nobody
/// deletes it: it goes with the native window, or with the toolkit. Asked again for the same window it gives
/// the same. Starts the toolkit where the host has not, and stops it at unload if so.
wxWindow* wrap_native_window(NativeWindow window);

/// Keeps a window above the native one that it was opened under, where its parent alone does not do that.
void keep_above(wxTopLevelWindow& window, NativeWindow owner);

/// Gives a window the running program's icon "ICON_PROGRAM"; leaves it alone where there is none.
void set_program_icon(wxTopLevelWindow& window);

/// Lets the Tab key go through the controls of a frame, where the toolkit does that in dialogs alone.
void let_tab_pass(wxTopLevelWindow& frame);

/// Lets a small button use all of its size for its image, where the platform's style would keep a margin.
void remove_padding(wxWindow& button);

}  // namespace pgn_vistel::platform

/// The application object of a module: known to the module's state for as long as it lives.
class CWinApp {
  public:
    explicit CWinApp(pgn_vistel::platform::ModuleState& module);
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;
    virtual ~CWinApp();

  private:
    pgn_vistel::platform::ModuleState& module_;
};
