// The window tests' main: one wx application for all cases (starting wx per
// case would cost a display connection each), run under xvfb-run.
#include <gtest/gtest.h>

#include <cstdio>

#include <wx/app.h>
#include <wx/init.h>

#include "vanto/wx/app.h"

namespace {

class TestApp : public VntWxApp {
public:
    bool OnInit() override { return VntWxApp::OnInit(); }
};

// A failed wx check is a failed test, never a dialog nobody can close.
void printAssert(const wxString& file, int line, const wxString& func, const wxString& cond, const wxString& msg) {
    ADD_FAILURE() << "wx assertion " << cond.utf8_str() << " in " << func.utf8_str() << " (" << file.utf8_str()
                  << ":" << line << "): " << msg.utf8_str();
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (::testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
    wxApp::SetInstance(new TestApp);
    int wxArgc = 1;
    char* wxArgv[] = {argv[0], nullptr};
    if (!wxEntryStart(wxArgc, wxArgv)) {
        std::fprintf(stderr, "window tests: no display (run them under xvfb-run, as ctest does)\n");
        return 1;
    }
    wxSetAssertHandler(printAssert);
    if (!wxTheApp->CallOnInit() || !Vnt_WxActive()) {
        std::fprintf(stderr, "window tests: the toolkit did not start\n");
        wxEntryCleanup();
        return 1;
    }
    const int rc = RUN_ALL_TESTS();
    wxTheApp->OnExit();
    wxEntryCleanup();
    return rc;
}
