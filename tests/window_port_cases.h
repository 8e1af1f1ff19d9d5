// The window system port's contract, as one suite that every port passes:
// the headless port (window_port_test.cpp) and the wx port (wx/
// window_port_wxtest.cpp) instantiate it with a harness that makes their
// windows.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>

#include "vanto/ui/window.h"

namespace vnt::test {

/// Makes windows of one port.
class WindowHarness {
public:
    /// Answers a sent message; posted ones are seen too (answer unused).
    using Handler = std::function<long(VNT_HWND, unsigned, uintptr_t, intptr_t)>;
    virtual ~WindowHarness() = default;
    virtual VntWindowPort& port() = 0;
    /// A window whose sent messages `handler` answers (empty: 0). A close
    /// that the handler answers with 0 destroys the window.
    virtual VNT_HWND create(const std::string& name, Handler handler = {}) = 0;
    virtual void setMain(VNT_HWND win) = 0;
    /// Pumps until `done` or the port has had ample time; `done` at the end.
    bool pumpUntil(const std::function<bool()>& done, int passes = 200) {
        for (int i = 0; i < passes && !done(); ++i) port().PumpEvents();
        return done();
    }
};

using HarnessFactory = std::unique_ptr<WindowHarness> (*)();

class WindowPortContract : public ::testing::TestWithParam<HarnessFactory> {
protected:
    void SetUp() override { h = GetParam()(); }
    void TearDown() override { h.reset(); }
    VntWindowPort& port() { return h->port(); }
    // A window whose handler logs "<name>:<msg> " and answers `answer`.
    VNT_HWND logged(const std::string& name, long answer = 0) {
        return h->create(name, [this, name, answer](VNT_HWND, unsigned msg, uintptr_t, intptr_t) {
            log += name + ":" + std::to_string(msg) + " ";
            return answer;
        });
    }
    std::unique_ptr<WindowHarness> h;
    std::string log;
    static constexpr unsigned kUser = 0x7F15;  // the connection-changed message
};

TEST_P(WindowPortContract, SendAnswersAndCloseDestroysUnlessRefused) {
    struct Row { const char* name; bool handler; long answer; bool survives; };
    for (const Row& r : {Row{"no handler", false, 0, false}, {"handler answers 0", true, 0, false},
                         {"handler refuses", true, 1, true}}) {
        log.clear();
        VNT_HWND w = r.handler ? logged("w", r.answer) : h->create("w");
        EXPECT_TRUE(port().IsWindow(w)) << r.name;
        EXPECT_EQ(port().Send(w, kUser, 1, 2), r.answer) << r.name;
        EXPECT_EQ(port().Send(w, VNT_WM_CLOSE, 0, 0), r.answer) << r.name;
        EXPECT_EQ(port().IsWindow(w), r.survives) << r.name;
        EXPECT_EQ(log, r.handler ? "w:32533 w:16 " : "") << r.name;
    }
    // Nothing answers for a destroyed, null or foreign handle.
    VNT_HWND gone = logged("gone", 5);
    port().Destroy(gone);
    int foreign = 0;
    for (VNT_HWND w : {gone, VNT_HWND{}, reinterpret_cast<VNT_HWND>(&foreign)})
        EXPECT_EQ(std::tuple(port().Send(w, kUser, 0, 0), port().Post(w, kUser, 0, 0), port().IsWindow(w)),
                  std::tuple(0L, false, false));
    EXPECT_EQ(log, "w:32533 w:16 ") << "the destroyed window heard nothing";
}

TEST_P(WindowPortContract, PostedMessagesArriveInOrderWhenServed) {
    VNT_HWND a = logged("a"), b = logged("b");
    int reposts = 0;
    VNT_HWND again = h->create("again", [&](VNT_HWND w, unsigned msg, uintptr_t n, intptr_t) {
        log += "again:" + std::to_string(n) + " ";
        if (msg == kUser && n < 2 && port().Post(w, kUser, n + 1, 0)) ++reposts;  // arrives later
        return 0L;
    });
    ASSERT_TRUE(port().Post(a, 0x7F11, 0, 0) && port().Post(b, 0x7F12, 0, 0) && port().Post(again, kUser, 0, 0) &&
                port().Post(a, 0x7F13, 0, 0));
    EXPECT_EQ(log, "") << "posted messages wait for the pump";
    EXPECT_TRUE(h->pumpUntil([&] { return log.find("again:2") != std::string::npos; })) << log;
    EXPECT_EQ(log, "a:32529 b:32530 again:0 a:32531 again:1 again:2 ");
    EXPECT_EQ(reposts, 2);

    // A posted close destroys; what was posted to a window gone meanwhile is dropped.
    log.clear();
    ASSERT_TRUE(port().Post(b, VNT_WM_CLOSE, 0, 0) && port().Post(b, kUser, 0, 0));
    EXPECT_TRUE(h->pumpUntil([&] { return !port().IsWindow(b); }));
    port().PumpEvents();
    EXPECT_EQ(log, "b:16 ");
}

TEST_P(WindowPortContract, DestroyedWindowsLoseTheirRoles) {
    VNT_HWND main = h->create("main"), dlg = h->create("dlg");
    auto roles = [&] { return std::tuple(port().MainWindow(), port().ActiveWindow(), port().Focus()); };
    h->setMain(main);
    port().Activate(dlg), port().SetFocus(dlg);
    EXPECT_TRUE(h->pumpUntil([&] { return roles() == std::tuple(main, dlg, dlg); }));
    port().Destroy(dlg);
    EXPECT_TRUE(!port().IsWindow(dlg) && port().ActiveWindow() != dlg && port().Focus() != dlg);
    port().Activate(dlg), port().SetFocus(dlg);  // a destroyed window takes neither
    port().PumpEvents();
    EXPECT_TRUE(port().ActiveWindow() != dlg && port().Focus() != dlg && port().MainWindow() == main);
    port().Destroy(main);
    EXPECT_EQ(port().MainWindow(), nullptr);
}

TEST_P(WindowPortContract, ModalLoopEndsFromAHandlerOrWhenClosed) {
    // passes: re-posts before the handler ends the loop; close: the last
    // post is a close instead, which ends the loop with -1.
    struct Row { const char* name; int passes; bool close; int expect; };
    for (const Row& r : {Row{"ended on the first message", 0, false, 42}, {"ended after three re-posts", 3, false, 42},
                         {"closed meanwhile", 2, true, -1}}) {
        int seen = 0;
        VNT_HWND dlg = h->create("dlg", [&](VNT_HWND w, unsigned msg, uintptr_t, intptr_t) {
            if (msg == VNT_WM_CLOSE) return 0L;
            if (seen++ == r.passes) r.close ? void(port().Post(w, VNT_WM_CLOSE, 0, 0)) : port().EndModalLoop(w, 42);
            else port().Post(w, kUser, 0, 0);
            return 0L;
        });
        port().Post(dlg, kUser, 0, 0);
        EXPECT_EQ(port().RunModalLoop(dlg, 0), r.expect) << r.name;
        EXPECT_EQ(seen, r.passes + 1) << r.name;
    }
    EXPECT_EQ(port().RunModalLoop(nullptr, 0), -1);
}

TEST_P(WindowPortContract, ClipboardKeepsLibraryText) {
    for (const std::string text : {"Gr\xFC\xDF" "e \x80 100", "", "zwei\nZeilen"}) {
        ASSERT_TRUE(port().SetClipboardText(text));
        EXPECT_EQ(port().ClipboardText(), text);
    }
}

}  // namespace vnt::test
