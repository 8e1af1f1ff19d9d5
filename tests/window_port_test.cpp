// The headless window system: sent and posted messages, closing and destroying
// fake windows, and modal loops that end from a handler or give up.
#include <gtest/gtest.h>

#include "support.h"

#include <string>
#include <tuple>
#include <vector>

#include "vanto/ui/window.h"

namespace {

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

TEST_F(WindowPort, SendAnswersAndCloseDestroysUnlessRefused) {
    struct Row { const char* name; bool handler; long answer; bool survives; };
    for (const Row& r : {Row{"no handler", false, 0, false}, {"handler answers 0", true, 0, false},
                         {"handler refuses", true, 1, true}}) {
        VNT_HWND w = r.handler ? logged("w", r.answer) : port.CreateFake("w");
        EXPECT_EQ(port.Send(w, kUser, 1, 2), r.answer) << r.name;
        EXPECT_EQ(port.Send(w, VNT_WM_CLOSE, 0, 0), r.answer) << r.name;
        EXPECT_EQ(port.IsWindow(w), r.survives) << r.name;
        const auto& got = port.Messages(w);  // readable after destruction too
        ASSERT_EQ(got.size(), 2u) << r.name;
        EXPECT_TRUE(got[0].msg == kUser && got[0].wparam == 1 && got[0].lparam == 2 && !got[0].posted) << r.name;
        EXPECT_EQ(port.Name(w), r.survives ? "w" : "") << r.name;
    }
    // Nothing answers for a destroyed, null or foreign handle.
    VNT_HWND gone = logged("gone", 5);
    port.Destroy(gone);
    int foreign = 0;
    for (VNT_HWND w : {gone, VNT_HWND{}, reinterpret_cast<VNT_HWND>(&foreign)})
        EXPECT_EQ(std::tuple(port.Send(w, kUser, 0, 0), port.Post(w, kUser, 0, 0), port.IsWindow(w)),
                  std::tuple(0L, false, false));
    EXPECT_TRUE(port.Messages(reinterpret_cast<VNT_HWND>(&foreign)).empty());
    EXPECT_EQ(log, "w:1024 w:16 w:1024 w:16 ");
}

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

TEST_F(WindowPort, ModalLoopEndsFromAHandlerOrGivesUp) {
    port.modalDefault = 7;
    // passes: posts before the handler ends the loop (-1: never); close: the
    // last post is a close instead; endEarly: EndModalLoop before the loop runs.
    struct Row { const char* name; int passes; bool close, endEarly; int expect; };
    for (const Row& r : {Row{"nothing posted", -1, false, false, 7}, {"ended on the first message", 0, false, false, 42},
                         {"ended after three re-posts", 3, false, false, 42},
                         {"posts run out", -2, false, false, 7}, {"closed meanwhile", 2, true, false, -1},
                         {"an earlier end is lost", -1, false, true, 7}}) {
        int seen = 0;
        VNT_HWND dlg = port.CreateFake("dlg", [&](VNT_HWND w, unsigned msg, uintptr_t, intptr_t) {
            if (msg == VNT_WM_CLOSE) return 0L;
            if (seen++ == r.passes)
                r.close ? void(port.Post(w, VNT_WM_CLOSE, 0, 0)) : port.EndModalLoop(w, 42);
            else if (r.passes >= 0 || seen <= 2)
                port.Post(w, kUser, 0, 0);
            return 0L;
        });
        if (r.passes != -1) port.Post(dlg, kUser, 0, 0);
        if (r.endEarly) port.EndModalLoop(dlg, 42);
        EXPECT_EQ(port.RunModalLoop(dlg, 0), r.expect) << r.name;
    }
    EXPECT_EQ(port.RunModalLoop(nullptr, 0), -1);
}

}  // namespace
