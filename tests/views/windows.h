#pragma once

#include <wx/scrolwin.h>
#include <wx/stopwatch.h>
#include <wx/toplevel.h>
#include <wx/treectrl.h>
#include <wx/uiaction.h>
#include <wx/utils.h>

#include <optional>

#include "native_windows.h"
#include "support/testing.h"

/// Windows under real events: what the tests press goes through the display, and they wait until it shows.
namespace pgn_vistel::test {

/// Lets events run until a condition holds; false when it does not within the limit.
template <class Condition>
bool eventually(Condition holds) {
    constexpr long limit = 10000;  // ms
    const wxStopWatch watch;
    while (!holds()) {
        if (watch.Time() > limit) return false;
        wxYield();
        wxMilliSleep(1);
    }
    return true;
}

/// Lets everything run that is under way: for what must not happen.
inline void settle() {
    for (int round = 0; round < 5; ++round) {
        synchronise();
        wxYield();
    }
}

/// Shows a window on top, with the keyboard.
inline void bring_up(wxTopLevelWindow& window) {
    window.Show();
    ASSERT_TRUE(eventually([&] { return window.IsShownOnScreen(); }));
    // Without a window manager a window is placed nowhere in particular.
    window.Move(40, 0);
    EXPECT_TRUE(eventually([&] {
        if (window.IsActive()) return true;
        window.Raise();
        return false;
    }));
    settle();
}

inline void click_at(int x, int y) {
    wxUIActionSimulator user;
    user.MouseMove(x, y);
    user.MouseClick();
    settle();
}
inline void click(const wxWindow& control) {
    static int aside = 0;
    aside = 6 - aside;  // from the last click, or two in a row are a double one
    const wxRect area = control.GetScreenRect();
    click_at(area.x + area.width / 2 + aside, area.y + area.height / 2);
}
inline void press(int key, int modifiers = wxMOD_NONE) {
    wxUIActionSimulator().Char(key, modifiers);
    settle();
}

/// What the title bar's close button sends, until the window is hidden.
inline void close_by_title_bar(wxTopLevelWindow& window) {
    send_close(window);
    EXPECT_TRUE(eventually([&] { return !window.IsShown(); }));
}

/// Puts the caret into a text (a text control or a combo box) and types over what it holds.
template <class Text>
void type_over(Text& control, const char* text) {
    click(control);
    ASSERT_TRUE(eventually([&] { return wxWindow::FindFocus() == &control; }));
    press(WXK_HOME);
    press(WXK_END, wxMOD_SHIFT);
    if (*text == '\0') press(WXK_DELETE);
    for (const char* c = text; *c != '\0'; ++c) press(*c, wxIsupper(*c) ? wxMOD_SHIFT : wxMOD_NONE);
    EXPECT_TRUE(eventually([&] { return control.GetValue() == text; })) << control.GetValue();
}

/// Waits until the host's window has the size.
inline void resize(HostWindow& host, int width, int height) {
    host.resize(width, height);
    EXPECT_TRUE(eventually([&] { return host.width() == width; }));
}

/// Those of a window, and of what scrolls in it.
template <class Control>
std::vector<Control*> children_of(const wxWindow& window) {
    std::vector<Control*> found;
    for (wxWindow* const child : window.GetChildren()) {
        if (auto* const control = dynamic_cast<Control*>(child)) found.push_back(control);
        if (dynamic_cast<wxScrolledWindow*>(child) != nullptr)
            for (Control* const control : children_of<Control>(*child)) found.push_back(control);
    }
    return found;
}

/// What a tree shows of one stream.
struct Block {
    const void* item = nullptr;
    std::wstring label;
    std::vector<std::wstring> lines;
    bool expanded = false;
};

inline std::vector<Block> blocks_of(const wxTreeCtrl& tree) {
    std::vector<Block> blocks;
    wxTreeItemIdValue cookie;
    for (auto top = tree.GetFirstChild(tree.GetRootItem(), cookie); top.IsOk();
         top = tree.GetNextSibling(top)) {
        blocks.push_back({top.GetID(), whole_text(tree, top), {}, tree.IsExpanded(top)});
        for (auto line = tree.GetFirstChild(top, cookie); line.IsOk(); line = tree.GetNextSibling(line))
            blocks.back().lines.push_back(whole_text(tree, line));
    }
    return blocks;
}
inline std::vector<Block> blocks_of(const NativeControl& tree) {
    std::vector<Block> blocks;
    for (auto* top = tree.GetChildItem(nullptr); top != nullptr; top = tree.GetNextSiblingItem(top)) {
        blocks.push_back({top, tree.GetItemText(top), {}, tree.is_expanded(top)});
        for (auto* line = tree.GetChildItem(top); line != nullptr; line = tree.GetNextSiblingItem(line))
            blocks.back().lines.push_back(tree.GetItemText(line));
    }
    return blocks;
}

inline N2KMsg message_from(std::uint8_t source, std::uint32_t pgn = 127250,
                           const std::vector<std::uint8_t>& payload = {5, 92, 61, 255, 127, 255, 127, 253}) {
    N2KMsg msg = message(pgn, payload);
    msg.source = source;
    return msg;
}

}  // namespace pgn_vistel::test
