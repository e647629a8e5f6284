// The library's edge towards its host, on a platform that records its calls: the order of loading, which
// entries switch the module state in, and what a host gets when memory runs out.

#include <gtest/gtest.h>
#include <wx/bmpbuttn.h>
#include <wx/frame.h>
#include <wx/treectrl.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "library/recording_platform.h"
#include "pgn_vistel/core/units.h"
#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/pgn_vistel.h"
#include "support/own_memory.h"
#include "support/testing.h"
#include "views/images.h"
#include "views/pressed_dialog.h"

using namespace pgn_vistel::core;

namespace pgn_vistel::test {
namespace {

/// Lets the n-th allocation of this thread from here on (0: the next) and all after it fail, while it lives;
/// `states_only`: of those that the library makes with std::nothrow, for its states.
class ScarceMemory {
  public:
    explicit ScarceMemory(long allocations_left, bool states_only = false) {
        left_ = allocations_left;
        states_only_ = states_only;
        failed_ = false;
        scarce_ = true;
    }
    ~ScarceMemory() { scarce_ = false; }
    bool was_short() const { return failed_; }

    static void* allocate(std::size_t size, bool may_throw) noexcept {
        const bool may_fail = scarce_ && !(states_only_ && may_throw);
        if (!may_fail || left_-- > 0) return std::malloc(size != 0 ? size : 1);
        failed_ = true;
        return nullptr;
    }

  private:
    static inline thread_local bool scarce_ = false, failed_ = false, states_only_ = false;
    static inline thread_local long left_ = 0;
};

HWND native(wxWindow& window) {
    return reinterpret_cast<HWND>(&window);
}

N2KMsg heading() {
    return message(127250, {5, 0x5C, 0x3D, 0xFF, 0x7F, 0xFF, 0x7F, 0xFD});
}

TEST(Loading, GoesInItsOrderWithLoggingOff) {
    const auto steps = load_steps();
    const std::vector<std::string> names = {"host", "application", "image", "image"};
    ASSERT_EQ(steps.size(), names.size());
    for (std::size_t i = 0; i < steps.size(); ++i) {
        EXPECT_EQ(steps[i].name, names[i]);
        EXPECT_EQ(steps[i].logging, i == 0) << names[i];
    }
    EXPECT_EQ(steps[2].object, &pause_image());
    EXPECT_EQ(steps[3].object, &clear_image());
    check_unloading(pause_image(), clear_image());
}

/// What an entry is called on.
struct Objects {
    wxFrame frame{nullptr, wxID_ANY, "Host"};
    wxTreeCtrl control{&frame};
    CTreeCtrl native_control;
    QV_N2K_PGN_DB_c db;
    std::unique_ptr<PGN_VistelTree_c> tree = std::make_unique<PGN_VistelTree_c>(&frame, &control, &db, 3, 0);
    std::unique_ptr<PGN_VistelTree_c> made;  // by the entry; dialogs go with the frame
    N2KMsg msg = heading();
    wchar_t text[256];
};

struct Entry {
    const char* name;
    int times;  // that it switches the library's module state in
    std::function<void(Objects&)> call;
};

// Several: the entry itself does not switch; the database's and tree's entries that it calls each do.
constexpr int several = 2;
#define ENTRY(times, call)                      \
    {                                           \
#call, times, [](Objects & o) { call; } \
    }
const Entry entries[] = {
    // clang-format off
    ENTRY(1, o.made.reset(new PGN_VistelTree_c(native(o.frame), &o.native_control, 1, 0))),
    ENTRY(1, o.made.reset(new PGN_VistelTree_c(&o.frame, &o.control, 1, 0))),
    ENTRY(1, o.made.reset(new PGN_VistelTree_c(&o.frame, &o.control, &o.db, 1, 0))),
    ENTRY(1, o.tree.reset()), ENTRY(0, o.made.reset(new PGN_VistelTree_c(*o.tree))), ENTRY(1, *o.tree = *o.tree),
    ENTRY(1, o.tree->OnInit()), ENTRY(1, o.tree->OnSize()), ENTRY(1, o.tree->Pause(1)), ENTRY(1, o.tree->ClearMsg()),
    ENTRY(1, o.tree->CollapseAll()), ENTRY(1, o.tree->ExpandAll()), ENTRY(0, o.tree->GetDB()),
    ENTRY(1, o.tree->SelectUnit(0, 0)), ENTRY(1, o.tree->GetSelectUnit(0)), ENTRY(1, o.tree->PutMsg(&o.msg)),
    ENTRY(1, PGN_VistelTree_PutMsg(o.tree.get(), &o.msg)), ENTRY(0, o.db = QV_N2K_PGN_DB_c()),
    ENTRY(1, o.db.SelectUnit(0, 0)), ENTRY(1, o.db.GetSelectUnit(0)), ENTRY(1, o.db.GetAvailableUnit(0, nullptr, 0)),
    ENTRY(0, o.db.print_val(o.text, 1, o.msg.data, -1)), ENTRY(1, new PGN_VistelDlg_c(native(o.frame), 1, 0)),
    ENTRY(1, new PGN_VistelDlg_c(native(o.frame), &o.db, 1, 0)),
    ENTRY(1, new PGN_VistelUnitDlg_c(native(o.frame), &o.db, 0)),
    ENTRY(several, new PGN_VistelUnitDlg_c(&o.frame, &o.db, 0)),
    ENTRY(several, new PGN_VistelDlg_c(&o.frame, &o.db, 1, 0)),
    // clang-format on
};

class ModuleGuards : public testing::Test {
  protected:
    ModuleGuards() : before_(platform::set_module_state(&host_)) {}
    ~ModuleGuards() override { platform::set_module_state(before_); }

    platform::ModuleState host_;
    platform::ModuleState* before_;
};

TEST_F(ModuleGuards, StandOnExactlyTheEntriesThatNeedThem) {
    for (const Entry& entry : entries) {
        SCOPED_TRACE(entry.name);
        Objects objects;
        watch_module_states();
        entry.call(objects);
        EXPECT_EQ(std::min(times_switched(), several), entry.times);
    }
}

TEST_F(ModuleGuards, RestoreTheHostsStateWhenAnEntryFails) {
    CTreeCtrl control;
    PGN_VistelTree_c tree(nullptr, &control, 3, 0);
    N2KMsg msg = heading();
    watch_module_states();
    const ScarceMemory none(0);
    EXPECT_EQ(tree.PutMsg(&msg), -1);
    EXPECT_TRUE(none.was_short());
    EXPECT_EQ(times_switched(), 1);
}

std::vector<std::wstring> texts_of_first(const CTreeCtrl& tree) {
    std::vector<std::wstring> texts;
    for (auto* item = tree.GetChildItem(tree.GetChildItem(nullptr)); item != nullptr; item = item->next)
        texts.push_back(item->text);
    return texts;
}

// Every allocation on the way fails once, and all behind it.
TEST(MemoryExhaustion, BecomesAResultOfTheTree) {
    N2KMsg msg = heading(), other = message(128267, {1, 0x10, 0x27, 0, 0, 0, 0, 0xFF});
    CTreeCtrl reference_control;
    PGN_VistelTree_c reference(nullptr, &reference_control, 3, 0);
    reference.OnInit();
    ASSERT_EQ(reference.PutMsg(&msg), 0);

    bool was_short = true;
    for (long left = 0; was_short; ++left) {
        SCOPED_TRACE(left);
        CTreeCtrl control;
        alignas(PGN_VistelTree_c) char place[sizeof(PGN_VistelTree_c)];
        int last_result;
        PGN_VistelTree_c* tree;
        {
            const ScarceMemory memory(left);
            tree = new (place) PGN_VistelTree_c(nullptr, &control, 3, 0);
            tree->OnInit();
            tree->PutMsg(&msg);
            last_result = tree->PutMsg(&other);
            tree->ExpandAll();
            was_short = memory.was_short();
        }
        EXPECT_EQ(last_result, was_short ? -1 : 0);
        // With memory again, the tree is as if nothing had been.
        if (tree->GetDB() != nullptr && tree->PutMsg(&msg) == 0) {
            EXPECT_EQ(texts_of_first(control), texts_of_first(reference_control));
        } else {
            EXPECT_LT(left, 2) << "only without a state or a stream table";
        }
        tree->~PGN_VistelTree_c();
    }
}

TEST(MemoryExhaustion, LeavesADialogThatDoesNothing) {
    const auto label_of_pause = [](const PressedDialog& dialog) {
        wxString label;  // of the last one
        for (wxWindow* const child : dialog.GetChildren())
            if (dynamic_cast<wxBitmapButton*>(child) != nullptr) label = child->GetLabel();
        return label;
    };
    for (const long states_left : {0, 1, 2}) {
        std::optional<ScarceMemory> memory(std::in_place, states_left, true);
        auto* const dialog = new PressedDialog;
        dialog->Create(static_cast<wxWindow*>(nullptr), nullptr, 10, 0);
        const bool was_short = memory->was_short();
        memory.reset();
        dialog->Show();
        const wxString label = label_of_pause(*dialog);
        N2KMsg msg = heading();
        EXPECT_EQ(dialog->PutMsg(&msg), was_short ? -1 : 0) << states_left;
        dialog->press_all();
        EXPECT_EQ(label_of_pause(*dialog) == label, was_short);
        dialog->Destroy();
    }
}

TEST(MemoryExhaustion, LeavesADatabaseWithTheDefaultUnits) {
    const ScarceMemory none(0);
    QV_N2K_PGN_DB_c db;
    EXPECT_EQ(db.SelectUnit(quantity::temperature, 31), -1);
    EXPECT_EQ(db.GetSelectUnit(quantity::temperature),
              QV_N2K_PGN_DB_c().GetSelectUnit(quantity::temperature));
    wchar_t text[256];
    const unsigned char raw[] = {0xB8, 0x0B};
    EXPECT_GT(db.print_val_unit(text, 38, raw, -1), 0);
}

TEST(Bridge, WithoutAWindowNothingIsBuilt) {
    wxFrame frame(nullptr, wxID_ANY, "Host");
    bridge_works = false;
    N2KMsg msg = heading();
    PGN_VistelDlg_c dialog(native(frame), 3, 0);
    EXPECT_EQ(dialog.GetHandle(), nullptr);
    EXPECT_EQ(dialog.PutMsg(&msg), -1);
    EXPECT_EQ(dialog.ClearMsg(), -1);
    PGN_VistelUnitDlg_c units(native(frame), nullptr, 0);
    EXPECT_EQ(units.GetHandle(), nullptr);
    units.AssignUnitChangeApply(nullptr);
    bridge_works = true;
}

TEST(NullArguments, GiveMinusOne) {
    PGN_VistelDlg_c dialog;
    EXPECT_EQ(PGN_VistelTree_PutMsg(nullptr, nullptr), -1);
    EXPECT_EQ(PGN_VistelDlg_c::s_PutMsg(nullptr, nullptr), -1);
    EXPECT_EQ(dialog.ExpandAll(), -1);
    CTreeCtrl control;
    PGN_VistelTree_c tree(nullptr, &control, 1, 0);
    EXPECT_EQ(PGN_VistelTree_PutMsg(&tree, nullptr), -1);
}

}  // namespace
}  // namespace pgn_vistel::test

void* take_memory(std::size_t size, bool may_throw) noexcept {
    return pgn_vistel::test::ScarceMemory::allocate(size, may_throw);
}
void give_memory(void* start) noexcept {
    std::free(start);
}
