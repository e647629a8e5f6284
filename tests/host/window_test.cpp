#include "monitor/window.h"

#include <wx/filename.h>
#include <wx/frame.h>

#include "host/temporary_recording.h"
#include "views/windows.h"

namespace vistel {
namespace {

using namespace pgn_vistel::test;
using namespace vistel::test;

TEST(Window, SaysWhatIsNotShown) {
    const TemporaryRecording full(batteries(2100)), many(batteries(4200)), few(batteries(2));
    const auto title = [](const TemporaryRecording& file) {
        return wxFileName(file.name()).GetFullName() + " - PGN Vistel";
    };
    auto player = std::make_unique<Player>(PlayOptions{.file = full.name(), .format = {}, .contents = {}, .speed = 0});
    std::string error;
    ASSERT_TRUE(player->open());
    MonitorWindow window(std::move(player));
    window.show();
    auto* const frame = dynamic_cast<wxFrame*>(wxWindow::FindWindowByLabel(title(full)));
    ASSERT_NE(frame, nullptr);
    /// The status at the end of the recording that is playing.
    const auto final_status = [frame] {
        frame->SetStatusText("");
        const auto status = [frame] { return frame->GetStatusBar()->GetStatusText(); };
        EXPECT_TRUE(eventually([&] { return status().EndsWith(" - end"); })) << status();
        return status();
    };

    const wxString seen = ", 0 of them replaced by later ones before they were shown";
    EXPECT_EQ(final_status(), "2100 messages" + seen + ", 100 without room - end");
    EXPECT_FALSE(window.open("/none.log", error));
    EXPECT_NE(error, "");
    EXPECT_TRUE(window.open(many.name(), error)) << error;
    EXPECT_EQ(frame->GetTitle(), title(many));
    const wxString of_many = final_status();
    EXPECT_TRUE(of_many.StartsWith("4200 messages" + seen + ", ")) << of_many;
    EXPECT_TRUE(of_many.Contains(" dropped because of too many streams")) << of_many;
    EXPECT_TRUE(window.open(few.name(), error)) << error;
    EXPECT_EQ(final_status(), "2 messages" + seen + " - end") << "of this recording alone";
    EXPECT_EQ(blocks_of(*children_of<wxTreeCtrl>(*frame).at(0)).size(), 2u);
    frame->Close();
    EXPECT_TRUE(eventually([] { return wxTopLevelWindows.empty(); }));
}

}  // namespace
}  // namespace vistel
