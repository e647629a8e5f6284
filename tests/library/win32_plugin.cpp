// A module of a Win32 host that is linked with the library: the library comes and goes with it. It has the
// toolkit's headers alone, so that it reaches the toolkit's functions through objects of unknown class.

#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/pgn_dlg.h"
#include "pgn_vistel/pgn_tree.h"
#include "pgn_vistel/unit_dlg.h"

// Of the runtime that this module has of its own.
namespace __gnu_cxx {
void __freeres();
}

namespace {

/// What the library does about the runtime's memory, too.
struct RuntimeReserve {
    ~RuntimeReserve() { __gnu_cxx::__freeres(); }
};
[[gnu::init_priority(101)]] const RuntimeReserve runtime_reserve;

PGN_VistelDlg_c* monitor = nullptr;

[[gnu::noipa]] void show(wxFrame& window) {
    window.Show();
}
[[gnu::noipa]] int show_modally(wxDialog& dialog) {
    return dialog.ShowModal();
}

}  // namespace

/// Opens a monitor over a host's window, its title that of a module.
extern "C" __declspec(dllexport) void open_monitor(pgn_vistel::NativeWindow parent,
                                                   pgn_vistel::NativeModule module) {
    monitor = new PGN_VistelDlg_c;
    monitor->SetModule(module);
    monitor->Create(parent, 10ul, 0ul);
    show(*monitor);
}

/// Hands the monitor a message from a source, and the result back.
extern "C" __declspec(dllexport) int put_message(std::uint8_t source) {
    N2KMsg msg{};
    msg.pgn = 127250;
    msg.source = source;
    msg.length = 8;
    return PGN_VistelDlg_c::s_PutMsg(monitor, &msg);
}

/// Hands a message to a monitor tree on a control of the host's, and the result back.
extern "C" __declspec(dllexport) int put_in_tree(pgn_vistel::NativeWindow control) {
    CTreeCtrl lines(control);
    PGN_VistelTree_c tree(nullptr, &lines, 1, 0);
    tree.OnInit();
    N2KMsg msg{};
    return tree.PutMsg(&msg);
}

extern "C" __declspec(dllexport) void close_monitor() {
    delete monitor;
}

/// Shows the unit selection over a host's window until the user closes it.
extern "C" __declspec(dllexport) void choose_units(pgn_vistel::NativeWindow parent) {
    PGN_VistelUnitDlg_c units(parent, nullptr, 0);
    if (units.GetHandle() != nullptr) show_modally(units);  // or nothing was built
}
