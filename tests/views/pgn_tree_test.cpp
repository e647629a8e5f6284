#include "pgn_vistel/pgn_tree.h"

#include <wx/frame.h>

#include <memory>

#include "views/windows.h"

namespace pgn_vistel::test {
namespace {

/// A monitor on a toolkit tree in a window that is shown.
class ToolkitMonitor {
  public:
    explicit ToolkitMonitor(unsigned long capacity, QV_N2K_PGN_DB_c* db = nullptr,
                            unsigned long flags = plain)
        : frame_(std::make_unique<wxFrame>(nullptr, wxID_ANY, "Host")),
          control_(new wxTreeCtrl(frame_.get())),
          tree(frame_.get(), control_, db, capacity, flags) {
        frame_->Show();
        tree.OnInit();
    }
    std::vector<Block> blocks() const { return blocks_of(*control_); }

  private:
    std::unique_ptr<wxFrame> frame_;
    wxTreeCtrl* control_;

  public:
    PGN_VistelTree_c tree;
};

/// A monitor on a native tree. It has the global database.
class NativeMonitor {
  public:
    explicit NativeMonitor(unsigned long capacity, unsigned long flags = plain)
        : tree(nullptr, &control_, capacity, flags) {
        tree.OnInit();
    }
    std::vector<Block> blocks() const { return blocks_of(control_); }

  private:
    CTreeCtrl control_;

  public:
    PGN_VistelTree_c tree;
};

template <class Monitor>
class Tree : public testing::Test {
  protected:
    int put(N2KMsg msg) { return monitor_.tree.PutMsg(&msg); }
    std::vector<Block> blocks() const { return monitor_.blocks(); }
    std::vector<std::wstring> labels() const {
        std::vector<std::wstring> texts;
        for (const Block& block : blocks()) texts.push_back(block.label);
        return texts;
    }

    Monitor monitor_{3};
    PGN_VistelTree_c& tree_ = monitor_.tree;
};

using Monitors = testing::Types<ToolkitMonitor, NativeMonitor>;
TYPED_TEST_SUITE(Tree, Monitors, );

TYPED_TEST(Tree, RewritesAStreamInPlace) {
    N2KMsg whole = message_from(7);
    whole.time_stamp = 123456;
    N2KMsg cut = whole;
    cut.length = 4;
    cut.destination = 35;
    cut.time_stamp = 123457;

    EXPECT_EQ(this->put(whole), 0);
    const Block first = this->blocks().at(0);
    EXPECT_EQ(first.label, L"1234.56        127250, Vessel Heading");
    EXPECT_EQ(first.lines.size(), 2u + 6);
    EXPECT_EQ(first.lines, lines_of(whole, plain));
    EXPECT_TRUE(first.expanded);

    this->tree_.CollapseAll();
    for (const N2KMsg& msg : {cut, whole, cut}) {
        EXPECT_EQ(this->put(msg), 0);
        const auto blocks = this->blocks();
        ASSERT_EQ(blocks.size(), 1u);
        EXPECT_EQ(blocks[0].item, first.item);
        EXPECT_EQ(blocks[0].lines, lines_of(msg, plain)) << "no line of a longer message is left";
        EXPECT_FALSE(blocks[0].expanded);
    }
    EXPECT_EQ(this->blocks()[0].label, L"1234.57        127250, Vessel Heading");
    EXPECT_EQ(this->blocks()[0].lines[1], L"Destination: 0x23 (35)");
}

TYPED_TEST(Tree, TellsStreamsApart) {
    using Payload = std::vector<std::uint8_t>;
    struct Case {
        const char* what;
        std::uint32_t pgn;
        Payload first, second;
        std::size_t streams;
    };
    for (const Case& c : {
             Case{"no keys: the payload does not matter", 127250, {1}, {2}, 1},
             Case{"another instance", 127508, {0}, {1}, 2},
             Case{"the same instance", 127508, {4, 1}, {4, 2}, 1},
             Case{"255 takes whatever is there", 127508, {4}, {255}, 1},
             Case{"255 that is there takes nothing else", 127508, {255}, {4}, 2},
             Case{"one of two keys is 255", 130312, {0, 255, 2}, {0, 3, 2}, 2},
             Case{"one of two keys asks nothing", 130312, {0, 3, 2}, {0, 255, 2}, 1},
             Case{"keys in half bytes", 127505, {0x12}, {0x21}, 2},
             Case{"a PGN that nobody knows", 130816 + 100, {1}, {2}, 1},
         }) {
        SCOPED_TRACE(c.what);
        this->tree_.ClearMsg();
        EXPECT_EQ(this->put(message_from(1, c.pgn, c.first)), 0);
        EXPECT_EQ(this->put(message_from(1, c.pgn, c.second)), 0);
        EXPECT_EQ(this->blocks().size(), c.streams);
        EXPECT_EQ(this->blocks().back().lines, lines_of(message_from(1, c.pgn, c.second), plain));
        EXPECT_EQ(this->put(message_from(2, c.pgn, c.second)), 0);
        EXPECT_EQ(this->blocks().size(), c.streams + 1) << "another source";
    }
    EXPECT_NE(this->labels().back().find(L", Unknown"), std::wstring::npos);
}

TYPED_TEST(Tree, IsFull) {
    for (std::uint8_t source : {1, 2, 3}) EXPECT_EQ(this->put(message_from(source)), 0);
    EXPECT_EQ(this->put(message_from(4)), -1);
    EXPECT_EQ(this->blocks().size(), 3u);
    N2KMsg known = message_from(2);
    known.time_stamp = 100;
    EXPECT_EQ(this->put(known), 0);
    EXPECT_EQ(this->labels()[1].substr(0, 5), L"1.00 ");

    EXPECT_EQ(this->tree_.ClearMsg(), 0);
    EXPECT_TRUE(this->blocks().empty());
    EXPECT_EQ(this->put(message_from(4)), 0) << "room again";
    this->tree_.OnInit();
    EXPECT_TRUE(this->blocks().empty()) << "starting over";
    for (std::uint8_t source : {5, 6, 7}) EXPECT_EQ(this->put(message_from(source)), 0);
    EXPECT_EQ(this->put(message_from(8)), -1);

    for (const unsigned long capacity : {0ul, ~0ul}) {  // no memory has room for the second
        TypeParam none(capacity);
        N2KMsg msg = message_from(1);
        EXPECT_EQ(none.tree.PutMsg(&msg), -1);
    }
}

TYPED_TEST(Tree, Pauses) {
    this->put(message_from(1));
    this->tree_.Pause(1);
    EXPECT_EQ(this->put(message_from(1)), 2);
    EXPECT_EQ(this->put(message_from(2)), 2) << "a new stream too";
    this->tree_.ClearMsg();
    EXPECT_EQ(this->put(message_from(2)), 2) << "clearing resumes nothing";
    EXPECT_TRUE(this->blocks().empty());
    this->tree_.Pause(0);
    EXPECT_EQ(this->put(message_from(2)), 0);
    EXPECT_EQ(this->blocks().size(), 1u);
}

TYPED_TEST(Tree, CollapsesAndExpands) {
    const auto expanded = [this] {
        std::vector<bool> states;
        for (const Block& block : this->blocks()) states.push_back(block.expanded);
        return states;
    };
    using States = std::vector<bool>;
    this->put(message_from(1));
    EXPECT_EQ(expanded(), (States{true}));
    EXPECT_EQ(this->tree_.CollapseAll(), 0);
    this->put(message_from(1));
    this->put(message_from(2));
    EXPECT_EQ(expanded(), (States{false, false}));
    EXPECT_EQ(this->tree_.ExpandAll(), 0);
    this->put(message_from(3));
    EXPECT_EQ(expanded(), (States{true, true, true}));

    this->tree_.CollapseAll();
    this->tree_.ClearMsg();
    this->put(message_from(1));
    this->tree_.OnInit();
    this->put(message_from(2));
    EXPECT_EQ(expanded(), (States{false})) << "neither clearing nor starting over forgets the choice";
}

TYPED_TEST(Tree, CopiesShareWhatTheyShow) {
    TypeParam other(3);
    {
        PGN_VistelTree_c copy(this->tree_), assigned(other.tree);
        assigned = copy;
        assigned = *&assigned;
        other.tree = this->tree_;  // its own state goes
        N2KMsg msg = message_from(1);
        EXPECT_EQ(copy.PutMsg(&msg), 0);
        EXPECT_EQ(assigned.PutMsg(&msg), 0);
        EXPECT_EQ(this->blocks().size(), 1u);
        EXPECT_TRUE(other.blocks().empty());
        this->tree_ = assigned;
    }
    EXPECT_EQ(this->put(message_from(2)), 0) << "the last one keeps it";
    EXPECT_EQ(this->blocks().size(), 2u);
}

TEST(TreeForm, Toolkit) {
    wxFrame frame(nullptr, wxID_ANY, "Host");
    wxTreeCtrl control(&frame);
    PGN_VistelTree_c tree(&frame, &control, 10, 0);
    EXPECT_EQ(tree.GetDB(), &qv_n2k_pgn_db);
    tree.CollapseAll();  // before `OnInit`, as the dialog does
    tree.OnInit();
    EXPECT_EQ(control.GetWindowStyleFlag() & (wxTR_HIDE_ROOT | wxTR_HAS_BUTTONS | wxTR_LINES_AT_ROOT),
              wxTR_HIDE_ROOT);
    N2KMsg msg = message_from(1);
    EXPECT_EQ(PGN_VistelTree_PutMsg(&tree, &msg), 0);
    EXPECT_EQ(PGN_VistelTree_PutMsg(nullptr, &msg), -1);
    const auto blocks = blocks_of(control);
    ASSERT_EQ(blocks.size(), 1u);
    EXPECT_FALSE(blocks[0].expanded);
    EXPECT_EQ(blocks[0].lines, lines_of(msg)) << "with hexadecimal forms";
    EXPECT_EQ(blocks[0].lines[2], L"Sequence ID: 5 (0x05) ");
}

TEST(TreeForm, UnitsAreTheDatabases) {
    const int global = qv_n2k_pgn_db.GetSelectUnit(quantity::depth);
    QV_N2K_PGN_DB_c db, copy;
    copy = db;
    ToolkitMonitor monitor(10, &db);
    EXPECT_EQ(monitor.tree.GetDB(), &db);
    EXPECT_EQ(monitor.tree.SelectUnit(quantity::depth, unit::km), 0);
    EXPECT_EQ(monitor.tree.SelectUnit(quantity::count, unit::ft), -1);
    for (QV_N2K_PGN_DB_c* const each : {&db, &copy})
        EXPECT_EQ(each->GetSelectUnit(quantity::depth), unit::km) << "copies share one selection";
    EXPECT_EQ(qv_n2k_pgn_db.GetSelectUnit(quantity::depth), global);
    copy.SelectUnit(quantity::depth, unit::ftm);
    EXPECT_EQ(monitor.tree.GetSelectUnit(quantity::depth), unit::ftm);

    N2KMsg depth = message_from(1, 128267, {0, 0x40, 0xE2, 1, 0, 0, 0, 0xFF});  // 1234.56 m
    monitor.tree.PutMsg(&depth);
    const auto lines = monitor.blocks().at(0).lines;
    EXPECT_NE(lines.at(3).find(L" ftm"), std::wstring::npos) << lines[3].c_str();
}

TEST(TreeForm, NativeKeepsItsDistances) {
    HostWindow host;
    CTreeCtrl control;
    control.MoveWindow({10, 20, 390, 250});
    PGN_VistelTree_c tree(host.handle(), &control, 10, 0);
    tree.OnInit();
    constexpr unsigned long style = CTreeCtrl::has_buttons | CTreeCtrl::has_lines | CTreeCtrl::lines_at_root;
    EXPECT_EQ(control.GetStyle(), style);
    host.resize(640, 360);
    tree.OnSize();
    EXPECT_EQ(control.GetRect(), (NativeRect{10, 20, 630, 310}));
    host.resize(300, 200);
    tree.OnSize();
    EXPECT_EQ(control.GetRect(), (NativeRect{10, 20, 290, 150}));
}

// ---- any traffic ----

/// Streams as a monitor must show them.
class Expected {
  public:
    explicit Expected(std::size_t capacity) : capacity_(capacity) {}

    int put(const N2KMsg& msg) {
        Keys k{255, 255, 255, 255};
        extract_stream_keys(msg.pgn, msg.data, &k[0], &k[1], &k[2], &k[3]);
        auto stream = std::find_if(streams_.begin(), streams_.end(), [&](const Stream& s) {
            const auto fits = [](std::uint8_t asked, std::uint8_t kept) {
                return asked == 255 || asked == kept;
            };
            return s.pgn == msg.pgn && s.source == msg.source &&
                   std::equal(k.begin(), k.end(), s.keys.begin(), fits);
        });
        if (stream == streams_.end()) {
            if (streams_.size() == capacity_) return -1;
            stream = streams_.insert(stream, {msg.pgn, msg.source, k, {}, {}});
        }
        stream->label =
            printed([&](wchar_t* b, int n) { return print_stream_line(b, n, msg, find_pgn_def(msg.pgn)); });
        stream->lines = lines_of(msg, plain);
        return 0;
    }

    void check(const std::vector<Block>& shown) const {
        ASSERT_EQ(shown.size(), streams_.size());
        for (std::size_t i = 0; i < shown.size(); ++i) {
            ASSERT_EQ(shown[i].label, streams_[i].label) << "stream " << i;
            ASSERT_EQ(shown[i].lines, streams_[i].lines) << "PGN " << streams_[i].pgn;
        }
    }

  private:
    using Keys = std::array<std::uint8_t, 4>;
    struct Stream {
        std::uint32_t pgn;
        std::uint8_t source;
        Keys keys;
        std::wstring label;
        std::vector<std::wstring> lines;
    };

    std::size_t capacity_;
    std::vector<Stream> streams_;
};

/// Half of the messages are of catalogued PGNs and about as long as they should be, the others are anything.
class AnyTraffic {
  public:
    N2KMsg next() {
        const bool sound = pick(2) == 0;
        static constexpr std::uint32_t special[] = {126208, 61184, 126720, 65240,
                                                    60416,  60160, 126464, 129029};
        N2KMsg msg{};
        if (sound || pick(3) == 0)
            msg.pgn = all_pgns()[pick(all_pgns().size())].pgn;
        else
            msg.pgn = pick(2) == 0 ? special[pick(std::size(special))] : random_() & 0x3FFFF;
        msg.priority = static_cast<std::uint8_t>(pick(8));
        msg.source = static_cast<std::uint8_t>(pick(3));
        msg.destination = static_cast<std::uint8_t>(pick(2) == 0 ? 255 : pick(256));
        msg.time_stamp = random_();
        const std::size_t length = sound ? (pick(2) == 0 ? 8 : pick(224)) : malformed_length();
        msg.length = static_cast<std::uint16_t>(length);
        for (std::size_t i = 0; i < std::min<std::size_t>(length, N2K_MAX_PAYLOAD); ++i)
            msg.data[i] = static_cast<std::uint8_t>(random_());
        if (pick(2) == 0) msg.data[0] = static_cast<std::uint8_t>(pick(8));  // group functions
        if (pick(8) == 0) {
            msg.data[0] = static_cast<std::uint8_t>(maker_header & 0xFF);
            msg.data[1] = static_cast<std::uint8_t>(maker_header >> 8);
        }
        return msg;
    }

  private:
    std::size_t pick(std::size_t count) { return random_() % count; }
    std::size_t malformed_length() {
        switch (pick(20)) {
            case 0: return pick(N2K_MAX_PAYLOAD + 1);
            case 1: return pick(65536);
            default: return pick(12);
        }
    }

    std::mt19937 random_{20240229};
};

TEST(TreeForm, ShowsAnyTraffic) {
    constexpr std::size_t capacity = 400;  // fewer than the traffic has
    ToolkitMonitor toolkit(capacity);
    NativeMonitor native(capacity);
    Expected expected(capacity);
    AnyTraffic traffic;
    int refused = 0;
    for (int i = 1; i <= 10000; ++i) {
        N2KMsg msg = traffic.next();
        // Texts that are refused show what the last one left; all three start from the same.
        clear_text_areas();
        const int result = expected.put(msg);
        refused += result == -1 ? 1 : 0;
        clear_text_areas();
        ASSERT_EQ(toolkit.tree.PutMsg(&msg), result) << "message " << i;
        clear_text_areas();
        ASSERT_EQ(native.tree.PutMsg(&msg), result) << "message " << i;
        if (i % 500 != 0) continue;
        SCOPED_TRACE(i);
        expected.check(toolkit.blocks());
        expected.check(native.blocks());
        if (HasFatalFailure()) return;
        wxYield();
    }
    EXPECT_GT(refused, 0);
    EXPECT_LT(refused, 9000) << "most streams known";
}

}  // namespace
}  // namespace pgn_vistel::test
