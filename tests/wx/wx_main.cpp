// The window tests' main.
#include "wx_test_main.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    return vnt::wxtest::runWithWx(argc, argv, "window tests");
}
