#include "platform/platform.h"

#include <wx/iconbndl.h>
#include <wx/msw/wrapwin.h>
#include <wx/toplevel.h>

#include <cwchar>
#include <vector>

// Of the C++ runtime, which every module on Windows has of its own.
namespace __gnu_cxx {
void __freeres();
}

namespace pgn_vistel::platform {

namespace {

/// The runtime keeps memory for exceptions that find none. A host that loads the library again and again has
/// no more of it than one that loads it once.
struct RuntimeReserve {
    ~RuntimeReserve() { __gnu_cxx::__freeres(); }
};
[[gnu::init_priority(101)]] const RuntimeReserve runtime_reserve;

std::wstring file_of(HMODULE module) {
    constexpr std::size_t longest_path = 32768;
    for (std::wstring path(MAX_PATH, L'\0'); path.size() < 2 * longest_path; path.resize(2 * path.size())) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return path.substr(0, length);
    }
    return {};
}

/// The program's icon in a size; null where it has none.
HICON program_icon(int width, int height) {
    return static_cast<HICON>(
        LoadImageW(GetModuleHandleW(nullptr), L"ICON_PROGRAM", IMAGE_ICON, width, height, LR_DEFAULTCOLOR));
}

}  // namespace

std::wstring product_name(NativeModule module) {
    if (module == nullptr) return {};
    const std::wstring file = file_of(module);
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), nullptr);
    std::vector<char> information(size);
    void* name = nullptr;
    UINT length = 0;  // with its terminator
    if (size == 0 || !GetFileVersionInfoW(file.c_str(), 0, size, information.data()) ||
        !VerQueryValueW(information.data(), L"\\StringFileInfo\\040904B0\\ProductName", &name, &length))
        return {};
    const auto* const text = static_cast<const wchar_t*>(name);
    return {text, wcsnlen(text, length)};
}

Size client_size(NativeWindow window) {
    RECT area{};
    GetClientRect(window, &area);
    return {area.right, area.bottom};
}

void set_program_icon(wxTopLevelWindow& window) {
    wxIconBundle icons;
    for (const auto& [width, height] : {std::pair(SM_CXICON, SM_CYICON), std::pair(SM_CXSMICON, SM_CYSMICON)})
        if (HICON handle = program_icon(GetSystemMetrics(width), GetSystemMetrics(height))) {
            wxIcon icon;
            icon.CreateFromHICON(handle);
            icons.AddIcon(icon);
        }
    if (!icons.IsEmpty()) window.SetIcons(icons);
}

void let_tab_pass(wxTopLevelWindow& frame) {
    frame.SetWindowStyleFlag(frame.GetWindowStyleFlag() | wxTAB_TRAVERSAL);
    const LONG style = GetWindowLongW(frame.GetHandle(), GWL_EXSTYLE);  // which the toolkit leaves as it is
    SetWindowLongW(frame.GetHandle(), GWL_EXSTYLE, style | WS_EX_CONTROLPARENT);
}

// The platform's buttons have no margin that an image of that size would not fit into.
void remove_padding(wxWindow&) {}

}  // namespace pgn_vistel::platform
