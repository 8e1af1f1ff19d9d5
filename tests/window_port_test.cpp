// The headless window system: the contract every port keeps (window_port_
// cases.h), and what only fake windows do: their record of received
// messages, one pass of posted messages per pump, forgetting everything,
// and modal loops that give up when nothing can end them.
#include <gtest/gtest.h>

#include "support.h"

#include <string>
#include <tuple>
#include <vector>

#include "vanto/ui/window.h"
#include "window_port_cases.h"

namespace {

using vnt::test::WindowPortContract;

class HeadlessHarness : public vnt::test::WindowHarness {
public:
    HeadlessHarness() { vnt::test::resetAll(); }
    VntWindowPort& port() override { return port_; }
    VNT_HWND create(const std::string& name, Handler handler) override { return port_.CreateFake(name, handler); }
    void setMain(VNT_HWND win) override { port_.SetMainWindow(win); }

private:
    VntHeadlessWindowPort port_;
};

std::unique_ptr<vnt::test::WindowHarness> headless() { return std::make_unique<HeadlessHarness>(); }

INSTANTIATE_TEST_SUITE_P(Headless, WindowPortContract, ::testing::Values(&headless));

constexpr unsigned kUser = 0x0400;

class WindowPort : public ::testing::Test {
protected:
    void SetUp() override { vnt::test::resetAll(); }
    // A window whose handler logs "<name>:<msg>" and answers `answer`.
    VNT_HWND logged(const std::string& name, long answer = 0) {
        return port.CreateFake(name, [this, name, answer](VNT_HWND, unsigned msg, uintptr_t, intptr_t) {
            log += name + ":" + std::to_string(msg) + " ";
            return answer;
        });
    }
    VntHeadlessWindowPort port;
    std::string log;
};

TEST_F(WindowPort, PostedMessagesArriveInOrderOnePassAtATime) {
    VNT_HWND a = logged("a"), b = logged("b");
    VNT_HWND again = port.CreateFake("again", [&](VNT_HWND w, unsigned msg, uintptr_t n, intptr_t) {
        log += "again:" + std::to_string(n) + " ";
        if (msg == kUser && n < 2) port.Post(w, kUser, n + 1, 0);  // served on the next pass
        return 0L;
    });
    ASSERT_TRUE(port.Post(a, kUser + 1, 0, 0) && port.Post(b, kUser + 2, 0, 0) && port.Post(again, kUser, 0, 0) &&
                port.Post(a, kUser + 3, 0, 0));
    EXPECT_TRUE(port.Messages(a).empty()) << "received only when delivered";
    port.PumpEvents();
    EXPECT_EQ(log, "a:1025 b:1026 again:0 a:1027 ");
    ASSERT_EQ(port.Messages(a).size(), 2u);
    EXPECT_TRUE(port.Messages(a)[1].posted && port.Messages(a)[1].msg == kUser + 3);
    port.PumpEvents(), port.PumpEvents(), port.PumpEvents();
    EXPECT_EQ(log, "a:1025 b:1026 again:0 a:1027 again:1 again:2 ");

    // A posted close destroys; what was still posted to a destroyed window is dropped.
    ASSERT_TRUE(port.Post(b, VNT_WM_CLOSE, 0, 0) && port.Post(b, kUser, 0, 0));
    port.PumpEvents();
    EXPECT_FALSE(port.IsWindow(b));
    EXPECT_EQ(port.Messages(b).size(), 2u);
    port.ClearMessages(b);
    EXPECT_TRUE(port.Messages(b).empty());
}

TEST_F(WindowPort, DestroyAndClearForgetTheRoles) {
    VNT_HWND main = port.CreateFake("main"), dlg = port.CreateFake("dlg");
    auto roles = [&] { return std::tuple(port.MainWindow(), port.ActiveWindow(), port.Focus()); };
    port.SetMainWindow(main), port.Activate(dlg), port.SetFocus(dlg);
    EXPECT_EQ(roles(), std::tuple(main, dlg, dlg));
    port.Destroy(dlg);
    EXPECT_EQ(roles(), std::tuple(main, VNT_HWND{}, VNT_HWND{}));
    port.Activate(dlg), port.SetFocus(dlg);  // a destroyed window takes neither
    EXPECT_EQ(roles(), std::tuple(main, VNT_HWND{}, VNT_HWND{}));
    port.Send(main, kUser, 0, 0);
    port.Clear();
    EXPECT_TRUE(!port.IsWindow(main) && port.MainWindow() == nullptr && port.Messages(main).empty());
}

TEST_F(WindowPort, ModalLoopGivesUpWhenNothingCanEndIt) {
    port.modalDefault = 7;
    // posts: messages the window keeps posting to itself, none ending the
    // loop; endEarly: EndModalLoop before the loop runs.
    struct Row { const char* name; int posts; bool endEarly; };
    for (const Row& r : {Row{"nothing posted", 0, false}, {"posts run out", 2, false}, {"an earlier end is lost", 0, true}}) {
        int seen = 0;
        VNT_HWND dlg = port.CreateFake("dlg", [&](VNT_HWND w, unsigned, uintptr_t, intptr_t) {
            if (++seen < r.posts) port.Post(w, kUser, 0, 0);
            return 0L;
        });
        if (r.posts > 0) port.Post(dlg, kUser, 0, 0);
        if (r.endEarly) port.EndModalLoop(dlg, 42);
        EXPECT_EQ(port.RunModalLoop(dlg, 0), 7) << r.name;
        EXPECT_EQ(seen, r.posts) << r.name;
    }
}

}  // namespace
