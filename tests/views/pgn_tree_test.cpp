#include "pgn_vistel/pgn_tree.h"

#include <wx/frame.h>

#include <map>

#include "contract/units.h"
#include "views/windows.h"

using namespace pgn_vistel::core;

namespace pgn_vistel::test {
namespace {

/// The control of a monitor, in a window that is shown.
struct ToolkitControl {
    wxFrame frame{nullptr, wxID_ANY, "Host"};
    wxTreeCtrl control{&frame};
};

/// A monitor on a toolkit tree.
struct ToolkitMonitor : private ToolkitControl {
    explicit ToolkitMonitor(unsigned long capacity, QV_N2K_PGN_DB_c* db = nullptr)
        : tree(&frame, &control, db, capacity, plain_display) {
        frame.Show();
        tree.OnInit();
    }
    std::vector<Block> blocks() const { return blocks_of(control); }
    wxTreeCtrl& tree_control() { return control; }
    void collapse_first() { control.Collapse(wxTreeItemId(const_cast<void*>(blocks()[0].item))); }

    PGN_VistelTree_c tree;
};

/// A monitor on a native tree. It has the global database.
struct NativeMonitor : private NativeControl {
    explicit NativeMonitor(unsigned long capacity) : tree(nullptr, this, capacity, plain_display) {
        tree.OnInit();
    }
    std::vector<Block> blocks() const { return blocks_of(*this); }
    void collapse_first() { Expand(GetChildItem(nullptr), false); }

    PGN_VistelTree_c tree;
};

template <class Monitor>
class Tree : public testing::Test {
  protected:
    int put(N2KMsg msg) { return monitor_.tree.PutMsg(&msg); }
    /// The results of a message from each of some sources, as "0 -1 ".
    std::string put_from(const Bytes& sources) {
        std::string results;
        for (const std::uint8_t source : sources) results += std::to_string(put(message_from(source))) + ' ';
        return results;
    }
    std::vector<Block> blocks() const { return monitor_.blocks(); }
    std::string expanded() const {
        std::string states;
        for (const Block& block : blocks()) states += block.expanded ? '-' : '+';
        return states;
    }

    Monitor monitor_{3};
    PGN_VistelTree_c& tree_ = monitor_.tree;
};

using Monitors = testing::Types<ToolkitMonitor, NativeMonitor>;
TYPED_TEST_SUITE(Tree, Monitors, );

TYPED_TEST(Tree, RewritesAStreamInPlace) {
    const N2KMsg whole = message_from(7);
    N2KMsg cut = whole;
    cut.length = 4;
    EXPECT_EQ(this->put(whole), 0);
    const void* const item = this->blocks().at(0).item;
    for (const N2KMsg& msg : {cut, whole, cut}) {
        EXPECT_EQ(this->put(msg), 0);
        ASSERT_EQ(this->blocks().size(), 1u);
        EXPECT_EQ(this->blocks()[0].item, item);
        EXPECT_EQ(this->blocks()[0].lines, lines_of(msg, plain)) << "no line of a longer message is left";
    }
}

TYPED_TEST(Tree, TellsStreamsApart) {
    const std::tuple<std::uint32_t, Bytes, Bytes, std::size_t> cases[] = {
        {127250, {1}, {2}, 1},        // no keys: the payload does not matter
        {127508, {4, 1}, {5, 1}, 2},  // another instance
        {127508, {4, 1}, {4, 2}, 1},
        {127508, {4}, {255}, 1},              // 255 takes whatever is there
        {127508, {255}, {4}, 2},              // but where it is there it takes nothing else
        {130312, {0, 255, 2}, {0, 3, 2}, 2},  // one of two keys
        {130312, {0, 3, 2}, {0, 255, 2}, 1},
        {130816 + 100, {1}, {2}, 1},  // a PGN that nobody knows
    };
    for (const auto& [pgn, first, second, streams] : cases) {
        SCOPED_TRACE(testing::Message() << pgn << ' ' << testing::PrintToString(first));
        this->tree_.ClearMsg();
        EXPECT_EQ(this->put(message_from(1, pgn, first)), 0);
        EXPECT_EQ(this->put(message_from(1, pgn, second)), 0);
        EXPECT_EQ(this->blocks().size(), streams);
        EXPECT_EQ(this->blocks().back().lines, lines_of(message_from(1, pgn, second), plain));
        EXPECT_EQ(this->put(message_from(2, pgn, second)), 0);
        EXPECT_EQ(this->blocks().size(), streams + 1) << "another source";
    }
}

TYPED_TEST(Tree, FillsAndPauses) {
    EXPECT_EQ(this->put_from({1, 2, 3, 4}), "0 0 0 -1 ");
    EXPECT_EQ(this->blocks().size(), 3u);
    this->tree_.Pause(1);
    EXPECT_EQ(this->put_from({1, 4}), "2 2 ");
    EXPECT_EQ(this->tree_.ClearMsg(), 0);
    EXPECT_EQ(this->put_from({2}), "2 ") << "clearing resumes nothing";
    EXPECT_TRUE(this->blocks().empty());
    this->tree_.Pause(0);
    EXPECT_EQ(this->put_from({4}), "0 ") << "room again";
    this->tree_.OnInit();
    EXPECT_TRUE(this->blocks().empty()) << "starting over";
    EXPECT_EQ(this->put_from({5, 6, 7, 8}), "0 0 0 -1 ");
    for (const unsigned long capacity : {0ul, 0xFFFFFFFFul, ~0ul}) {  // no memory has room for the others
        N2KMsg msg = message_from(1);
        EXPECT_EQ(TypeParam(capacity).tree.PutMsg(&msg), -1);
    }
}

TYPED_TEST(Tree, CollapsesAndExpands) {
    this->put_from({1});
    EXPECT_EQ(this->expanded(), "-");
    EXPECT_EQ(this->tree_.CollapseAll(), 0);
    this->put_from({1, 2});
    EXPECT_EQ(this->expanded(), "++");
    EXPECT_EQ(this->tree_.ExpandAll(), 0);
    this->put_from({3});
    EXPECT_EQ(this->expanded(), "---");
    this->monitor_.collapse_first();
    this->put_from({1, 2});
    EXPECT_EQ(this->expanded(), "+--") << "what the user collapses stays so";

    this->tree_.CollapseAll();
    this->tree_.ClearMsg();
    this->put_from({1});
    this->tree_.OnInit();
    this->put_from({2});
    EXPECT_EQ(this->expanded(), "+") << "neither clearing nor starting over forgets the choice";
}

TYPED_TEST(Tree, CopiesShareWhatTheyShow) {
    TypeParam other(3);
    {
        PGN_VistelTree_c copy(this->tree_), assigned(other.tree);
        assigned = copy;
        assigned = *&assigned;
        other.tree = this->tree_;  // its own state goes
        N2KMsg msg = message_from(1);
        EXPECT_EQ(copy.PutMsg(&msg) + assigned.PutMsg(&msg), 0);
        EXPECT_EQ(this->blocks().size(), 1u);
        EXPECT_TRUE(other.blocks().empty());
        this->tree_ = assigned;
    }
    EXPECT_EQ(this->put(message_from(2)), 0) << "the last one keeps it";
    EXPECT_EQ(this->blocks().size(), 2u);
}

TEST(TreeForm, Toolkit) {
    ToolkitControl host;
    PGN_VistelTree_c tree(&host.frame, &host.control, 10, 0);
    EXPECT_EQ(tree.GetDB(), &qv_n2k_pgn_db);
    tree.CollapseAll();  // before `OnInit`, as the dialog does
    tree.OnInit();
    EXPECT_TRUE(host.control.HasFlag(wxTR_HIDE_ROOT));
    EXPECT_FALSE(host.control.HasFlag(wxTR_HAS_BUTTONS) || host.control.HasFlag(wxTR_LINES_AT_ROOT));
    N2KMsg msg = message_from(1);
    EXPECT_EQ(PGN_VistelTree_PutMsg(&tree, &msg), 0);
    const auto blocks = blocks_of(host.control);
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_FALSE(blocks[0].expanded);
    EXPECT_EQ(blocks[0].lines, lines_of(msg)) << "with hexadecimal forms";
}

TEST(TreeForm, UnitsAreTheDatabases) {
    const int global = qv_n2k_pgn_db.GetSelectUnit(quantity::depth);
    QV_N2K_PGN_DB_c db;
    ToolkitMonitor monitor(10, &db);
    EXPECT_EQ(monitor.tree.GetDB(), &db);
    EXPECT_EQ(monitor.tree.SelectUnit(quantity::count, unit::ft), -1);
    EXPECT_EQ(monitor.tree.SelectUnit(quantity::depth, unit::km), 0);
    EXPECT_EQ(db.GetSelectUnit(quantity::depth), unit::km);
    db.SelectUnit(quantity::depth, unit::ftm);
    EXPECT_EQ(monitor.tree.GetSelectUnit(quantity::depth), unit::ftm);
    EXPECT_EQ(qv_n2k_pgn_db.GetSelectUnit(quantity::depth), global);
    N2KMsg depth = message_from(1, 128267, {0, 0x40, 0xE2, 1, 0, 0, 0, 0xFF});  // 1234.56 m
    monitor.tree.PutMsg(&depth);
    EXPECT_NE(monitor.blocks().at(0).lines.at(3).find(L" ftm"), std::wstring::npos);
}

TEST(TreeForm, NativeKeepsItsDistances) {
    HostWindow host;
    NativeControl control(&host);
    control.MoveWindow({10, 20, 390, 250});
    PGN_VistelTree_c tree(host.handle(), &control, 10, 0);
    tree.OnInit();
    constexpr auto drawn = CTreeCtrl::has_buttons | CTreeCtrl::has_lines | CTreeCtrl::lines_at_root;
    EXPECT_EQ(control.GetStyle() & drawn, drawn);
    for (const auto& [width, height] : {std::pair(640, 360), std::pair(300, 200)}) {
        resize(host, width, height);
        tree.OnSize();
        EXPECT_EQ(control.GetRect(), (NativeRect{10, 20, width - 10, height - 50}));
    }
}

/// Lines as a tree has them: those of UTF-8 text, with nothing in them that ends a line.
std::vector<std::wstring> as_shown(std::vector<std::wstring> lines) {
    for (std::wstring& line : lines) {
        line = wxString::FromUTF8(as_utf8(line)).ToStdWstring();
        std::ranges::replace_if(
            line, [](wchar_t c) { return c == 0x2028 || c == 0x2029; }, L'\uFFFD');
    }
    return lines;
}

/// The label of a device (130818) in UTF-16.
N2KMsg labelled(const std::u16string& text) {
    Bytes payload{0x89, 0x98, 0, 0, 0, static_cast<std::uint8_t>(2 + 2 * text.size()), 0};
    for (const char16_t c : text)
        for (const int shift : {0, 8}) payload.push_back(static_cast<std::uint8_t>(c >> shift));
    payload.push_back(1);
    return message_from(9, 130818, payload);
}

TEST(TreeForm, TextsOfDevicesStayInTheirLines) {
    ToolkitMonitor toolkit(9);
    NativeMonitor native(9);
    const auto height = [&] {
        wxRect area;
        EXPECT_TRUE(toolkit.tree_control().GetBoundingRect(
            wxTreeItemId(const_cast<void*>(toolkit.blocks().at(0).item)), area, true));
        return area.height;
    };
    N2KMsg plain_label = labelled(u"abc");
    toolkit.tree.PutMsg(&plain_label);
    const int usual_height = height();
    const std::pair<std::u16string, std::wstring> cases[] = {
        {u"abc", L"abc"},
        {u"a\nb\r\tc", L"a\uFFFDb\uFFFD\uFFFDc"},
        {u"\x1B[1m\x7F\x85", L"\uFFFD[1m\uFFFD\uFFFD"},
        {u"a\u2028b\u2029", L"a\uFFFDb\uFFFD"},
        {{0xD83D, 'a', 0xDE00, 0xD83D}, L"\uFFFDa\uFFFD\uFFFD"},
        {{0xD83D, 0xDE00, 0xD83D}, L"\U0001F600\uFFFD"},
    };
    for (const auto& [sent, shown] : cases) {
        N2KMsg msg = labelled(sent);
        for (auto* const tree : {&toolkit.tree, &native.tree}) EXPECT_EQ(tree->PutMsg(&msg), 0);
        EXPECT_EQ(toolkit.blocks()[0].lines.at(8), L"Label: " + shown + L" ");
        EXPECT_EQ(native.blocks()[0].lines, toolkit.blocks()[0].lines);
        EXPECT_EQ(height(), usual_height) << shown.c_str();
    }
}

/// Mostly of a catalogued PGN and about as long as it should be, else anything.
N2KMsg any_message(std::mt19937& random) {
    const auto pick = [&](std::size_t count) { return random() % count; };
    const std::size_t lengths[] = {8, pick(12), pick(224), N2K_MAX_PAYLOAD};
    Bytes payload = random_bytes(random, lengths[pick(60) == 0 ? 3 : pick(3)]);
    if (payload.size() > 1 && pick(8) == 0) payload[0] = own_header & 0xFF, payload[1] = own_header >> 8;
    if (payload.size() > 1 && pick(2) == 0) payload[0] %= 8;  // group functions
    const auto pgns = all_pgns();
    return message_from(static_cast<std::uint8_t>(pick(3)),
                        pick(4) != 0 ? pgns[pick(pgns.size())].pgn : random() & 0x3FFFF, payload);
}

TEST(TreeForm, ReadsByTheCorrectedDefinitionsWhereAsked) {
    ToolkitControl host;
    PGN_VistelTree_c tree(&host.frame, &host.control, nullptr, 3,
                          PGN_VISTEL_CORRECTED_DEFINITIONS | plain_display);
    tree.OnInit();
    N2KMsg msg = message_from(1, 65280, {0x3F, 0x9F, 0x12, 0, 0, 0, 0xFF, 0xFF});
    ASSERT_EQ(tree.PutMsg(&msg), 0);
    const auto block = blocks_of(host.control)[0];
    EXPECT_EQ(block.label, stream_line(msg, line_size, Definitions::corrected));
    EXPECT_NE(block.label.find(L"Furuno: Heave"), std::wstring::npos);
    EXPECT_EQ(block.lines, lines_of(msg, plain, {}, line_size, Definitions::corrected));
}

TEST(TreeForm, ShowsAnyTraffic) {
    constexpr std::size_t capacity = much_traffic / 25;  // fewer than the traffic has
    ToolkitMonitor toolkit(capacity);
    NativeMonitor native(capacity);
    std::mt19937 random{20240229};
    // Each message has a time, and so a label, of its own.
    std::map<std::wstring, std::vector<std::wstring>> shown;
    std::uint32_t refused = 0;
    for (std::uint32_t i = 1; i <= much_traffic; ++i) {
        N2KMsg msg = any_message(random);
        msg.time_stamp = i;
        const auto label = stream_line(msg);
        // Texts that are refused show what the last one left; all three start from the same.
        clear_text_areas();
        shown[label] = as_shown(lines_of(msg, plain, SelectionAccess::of(qv_n2k_pgn_db)));
        clear_text_areas();
        const int result = toolkit.tree.PutMsg(&msg);
        refused += result == -1;
        clear_text_areas();
        ASSERT_EQ(native.tree.PutMsg(&msg), result) << "message " << i;
        if (i % (much_traffic / 20) != 0) continue;
        const auto blocks = toolkit.blocks(), native_blocks = native.blocks();
        ASSERT_EQ(blocks.size(), native_blocks.size());
        for (std::size_t stream = 0; stream < blocks.size(); ++stream) {
            EXPECT_EQ(blocks[stream].label, native_blocks[stream].label);
            for (const Block& block : {blocks[stream], native_blocks[stream]})
                ASSERT_EQ(block.lines, shown[block.label]) << block.label.c_str();
        }
        wxYield();
    }
    EXPECT_EQ(toolkit.blocks().size(), capacity);
    EXPECT_GT(refused, 0u);
    EXPECT_LT(refused, much_traffic * 9 / 10) << "most streams known";
}

}  // namespace
}  // namespace pgn_vistel::test
