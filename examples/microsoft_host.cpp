// A program of Microsoft's compiler: decoding by the text interface, and the monitor's lines in a tree
// control of its own. It is linked with pgn_vistel_msvc.lib and prints what it has.
//
// It needs no C or C++ runtime, so that clang can build it for the example's sake; in a program that has one
// `main` is the start and std::printf prints.

#include "pgn_vistel/n2k_msg.h"
#include "pgn_vistel/native.h"
#include "pgn_vistel/pgn_db.h"
#include "pgn_vistel/pgn_tree.h"
#include "tree_lines.h"

namespace {

bool all_well = true;

void print(const wchar_t* text) {
    static char utf8[4096];
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8, sizeof utf8, nullptr, nullptr);
    DWORD written;
    if (size > 0)
        WriteFile(GetStdHandle(STD_OUTPUT_HANDLE), utf8, static_cast<DWORD>(size - 1), &written, nullptr);
}
void print_line(const wchar_t* what, const wchar_t* text) {
    print(what);
    print(text);
    print(L"\n");
}
void require(bool holds, const wchar_t* what) {
    if (holds) return;
    print_line(L"failed: ", what);
    all_well = false;
}

/// The heading that a boat steers, as it came from a gateway: 156.9 degrees magnetic.
void fill(N2KMsg& msg, std::uint8_t source) {
    constexpr unsigned char payload[] = {5, 0xF8, 0x6A, 0xFF, 0x7F, 0xFF, 0x7F, 0xFD};
    msg.pgn = 127250;
    msg.priority = 2;
    msg.source = source;
    msg.destination = 255;
    msg.length = sizeof payload;
    for (unsigned i = 0; i < sizeof payload; ++i) msg.data[i] = payload[i];
    msg.time_stamp = 125;
}

/// Names, values and units, without a window.
void decode() {
    constexpr int wind_speed = 2;
    constexpr unsigned char as_sent[] = {0xF4, 1};  // in centimetres a second
    wchar_t text[513];
    require(QV_N2K_PGN_DB_c::print_pgn_name(text, 513, 127250) > 0, L"the name of a PGN");
    print_line(L"127250 is ", text);
    require(QV_N2K_PGN_DB_c::print_pgn_name(text, 513, 1) == -1, L"no name for none");

    // A database of the program's own has its own choice of units.
    QV_N2K_PGN_DB_c own;
    int units[8];
    const int count = own.GetAvailableUnit(wind_speed, units, 8);
    require(count > 1 && own.SelectUnit(wind_speed, units[1]) == 0, L"choosing a unit");
    QV_N2K_PGN_DB_c* const databases[] = {&own, &qv_n2k_pgn_db};
    for (QV_N2K_PGN_DB_c* const db : databases) {
        require(db->print_val_unit_dt(text, wind_speed, as_sent, -1) > 0, L"a value");
        print_line(L"5 m/s are ", text);
    }
}

void show_in_tree() {
    InitCommonControls();
    HWND const control = CreateWindowExW(0, WC_TREEVIEWW, L"Monitor", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 40,
                                         40, 500, 300, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    require(control != nullptr, L"a tree control");
    // The library asks of a CTreeCtrl that it begins with the handle; this program has no such class.
    HWND handle = control;
    {
        PGN_VistelTree_c tree(nullptr, reinterpret_cast<CTreeCtrl*>(&handle), 2, 0);
        tree.OnInit();
        static N2KMsg msg;
        constexpr std::uint8_t sources[] = {1, 2, 1};
        for (const std::uint8_t source : sources) {
            fill(msg, source);
            require(tree.PutMsg(&msg) == 0, L"showing a message");
        }
        fill(msg, 3);
        require(PGN_VistelTree_PutMsg(&tree, &msg) == -1, L"room for two streams");
        UpdateWindow(control);
    }
    read_lines(control, TreeView_GetRoot(control),
               [](const wchar_t* text, int depth) { print_line(depth > 0 ? L"    " : L"", text); });
    DestroyWindow(control);
}

}  // namespace

extern "C" int __stdcall start() {
    decode();
    show_in_tree();
    ExitProcess(all_well ? 0 : 1);
}
