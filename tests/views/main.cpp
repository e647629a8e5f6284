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
    // In place of the toolkit's dialog, which would wait for somebody to answer it.
    void OnAssertFailure(const wxChar* file, int line, const wxChar* function, const wxChar* condition,
                         const wxChar* message) override {
        ADD_FAILURE() << wxString::Format("%s:%d: %s: %s %s", file, line, function, condition,
                                          message != nullptr ? message : L"");
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
