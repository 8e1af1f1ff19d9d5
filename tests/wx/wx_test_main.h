// The main of a window test program: one wx application for all cases
// (starting wx per case would cost a display connection each), run under
// xvfb-run. Shared by the window tests and the desktop modules' tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>

#include <wx/app.h>
#include <wx/init.h>

#include "vanto/wx/app.h"

namespace vnt::wxtest {

class TestApp : public VntWxApp {
public:
    bool OnInit() override { return VntWxApp::OnInit(); }
};

// A failed wx check is a failed test, never a dialog nobody can close.
inline void printAssert(const wxString& file, int line, const wxString& func, const wxString& cond,
                        const wxString& msg) {
    ADD_FAILURE() << "wx assertion " << cond.utf8_str() << " in " << func.utf8_str() << " (" << file.utf8_str()
                  << ":" << line << "): " << msg.utf8_str();
}

// Runs every case with wx started; `what` names the program in its errors.
// With `headless` true (a filter of cases that need no display) wx is not started.
inline int runWithWx(int argc, char** argv, const char* what, bool headless = false) {
    if (::testing::GTEST_FLAG(list_tests) || headless) return RUN_ALL_TESTS();
    wxApp::SetInstance(new TestApp);
    int wxArgc = 1;
    char* wxArgv[] = {argv[0], nullptr};
    (void)argc;
    if (!wxEntryStart(wxArgc, wxArgv)) {
        std::fprintf(stderr, "%s: no display (run them under xvfb-run, as ctest does)\n", what);
        return 1;
    }
    wxSetAssertHandler(printAssert);
    if (!wxTheApp->CallOnInit() || !Vnt_WxActive()) {
        std::fprintf(stderr, "%s: the toolkit did not start\n", what);
        wxEntryCleanup();
        return 1;
    }
    const int rc = RUN_ALL_TESTS();
    wxTheApp->OnExit();
    wxEntryCleanup();
    return rc;
}

}  // namespace vnt::wxtest
