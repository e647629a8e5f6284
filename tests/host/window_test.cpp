#include "monitor/window.h"

#include <wx/frame.h>

#include <filesystem>
#include <fstream>

#include "views/windows.h"

namespace vistel {
namespace {

using namespace pgn_vistel::test;

/// The window on a recording that is played as fast as possible.
class Window : public testing::Test {
  protected:
    Window() { std::filesystem::create_directory(folder_); }
    ~Window() override { std::filesystem::remove_all(folder_); }

    std::string recording(const char* name, int sources, int instances) {
        std::ofstream file(folder_ / name);
        for (int i = 0; i < sources * instances; ++i)
            file << "00:00:00.00,6,127508," << i % sources << ",255,1," << std::hex << 0x10 + i / sources
                 << std::dec << '\n';
        return folder_ / name;
    }
    void play(const std::string& file) {
        auto player = std::make_unique<Player>(PlayOptions{.file = file, .format = {}, .speed = 0});
        std::string error;
        ASSERT_TRUE(player->open(error)) << error;
        window_ = std::make_unique<MonitorWindow>(std::move(player));
        window_->show();
        const auto name = std::filesystem::path(file).filename().string();
        frame_ = dynamic_cast<wxFrame*>(wxWindow::FindWindowByLabel(name + " - PGN Vistel"));
        ASSERT_NE(frame_, nullptr);
    }
    wxString status() const { return frame_->GetStatusBar()->GetStatusText(); }
    /// The status at the end of the recording that is playing.
    wxString final_status() const {
        frame_->SetStatusText("");
        EXPECT_TRUE(eventually([&] { return status().EndsWith(" - end"); })) << status();
        return status();
    }

    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("window_test_" + std::to_string(::getpid()));
    std::unique_ptr<MonitorWindow> window_;
    wxFrame* frame_ = nullptr;
};

TEST_F(Window, SaysWhatIsNotShown) {
    play(recording("full.log", 252, 9));
    const wxString seen = ", 0 of them replaced by later ones before they were shown";
    EXPECT_EQ(final_status(), "2268 messages" + seen + ", 268 without room - end");
    std::string error;
    EXPECT_FALSE(window_->open(folder_ / "none.log", error));
    EXPECT_NE(error, "");
    EXPECT_TRUE(window_->open(recording("many.log", 252, 17), error)) << error;
    EXPECT_EQ(frame_->GetTitle(), "many.log - PGN Vistel");
    EXPECT_TRUE(final_status().StartsWith("4284 messages" + seen + ", ")) << status();
    EXPECT_TRUE(status().Contains(" dropped because of too many streams")) << status();
    EXPECT_TRUE(window_->open(recording("few.log", 2, 1), error)) << error;
    EXPECT_EQ(final_status(), "2 messages" + seen + " - end") << "of this recording alone";
    frame_->Close();
    EXPECT_TRUE(eventually([] { return wxTopLevelWindows.empty(); }));
}

}  // namespace
}  // namespace vistel
