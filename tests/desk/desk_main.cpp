// The desktop modules' test program: one wx application for the window
// cases (run under xvfb-run); the cases that need no display run without it.
#include <string>

#include "../wx/wx_test_main.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const std::string filter = ::testing::GTEST_FLAG(filter);
    return vnt::wxtest::runWithWx(argc, argv, "desktop module tests", filter.rfind("StatTotals", 0) == 0);
}
