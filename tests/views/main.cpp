#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/evtloop.h>

namespace {

class TestApp : public wxApp {
  public:
    bool OnInit() override {
        SetExitOnFrameDelete(false);
        return true;
    }
    int OnRun() override {
        wxGUIEventLoop loop;
        wxEventLoopActivator active(&loop);
        return RUN_ALL_TESTS();
    }
    // The command line is GoogleTest's.
    void OnInitCmdLine(wxCmdLineParser&) override {}
    bool OnCmdLineParsed(wxCmdLineParser&) override { return true; }
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    wxApp::SetInstance(new TestApp);
    int only_the_program = 1;
    return wxEntry(only_the_program, argv);
}
