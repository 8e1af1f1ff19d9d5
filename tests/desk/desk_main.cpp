// The desktop modules' test program: one wx application for the window
// cases (run under xvfb-run); the cases that need no display run without it.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include <wx/app.h>
#include <wx/init.h>

#include "vanto/wx/app.h"

namespace {

class TestApp : public VntWxApp {
public:
    bool OnInit() override { return VntWxApp::OnInit(); }
};

void printAssert(const wxString& file, int line, const wxString& func, const wxString& cond, const wxString& msg) {
    ADD_FAILURE() << "wx assertion " << cond.utf8_str() << " in " << func.utf8_str() << " (" << file.utf8_str()
                  << ":" << line << "): " << msg.utf8_str();
}

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const std::string filter = ::testing::GTEST_FLAG(filter);
    if (::testing::GTEST_FLAG(list_tests) || filter.rfind("StatTotals", 0) == 0) return RUN_ALL_TESTS();
    wxApp::SetInstance(new TestApp);
    int wxArgc = 1;
    char* wxArgv[] = {argv[0], nullptr};
    if (!wxEntryStart(wxArgc, wxArgv)) {
        std::fprintf(stderr, "desktop module tests: no display (run them under xvfb-run, as ctest does)\n");
        return 1;
    }
    wxSetAssertHandler(printAssert);
    if (!wxTheApp->CallOnInit() || !Vnt_WxActive()) {
        std::fprintf(stderr, "desktop module tests: the toolkit did not start\n");
        wxEntryCleanup();
        return 1;
    }
    const int rc = RUN_ALL_TESTS();
    wxTheApp->OnExit();
    wxEntryCleanup();
    return rc;
}
