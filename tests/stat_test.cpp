// The progress dialog through the scripted view: percentages, thinning, the
// layout of a message into title and four lines, the cancel flow with its
// confirmation, remembered positions, internal errors, and the console
// view's line.
#include <gtest/gtest.h>

#include "support.h"

#include <string>
#include <utility>
#include <vector>

#include "vanto/lfn.h"
#include "vanto/stat.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/progress.h"

namespace {

using Kind = VntScriptedProgressView::Kind;
using Answer = VntScriptedProgressView::Answer;
using Strings = std::vector<std::string>;

class Stat : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        oldView_ = Vnt_UiSetProgress(&view), oldBox_ = Vnt_UiSetPresenter(&box);
        char lib[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(lib, VANTO_SYSLIB_DE) && Vnt_MsgItfInit(nullptr, 0, lib));
        ASSERT_NE(sys_ = Vnt_MsgHInit(), nullptr);
    }
    void TearDown() override {
        if (sys_) Vnt_MsgHTerm(&sys_);
        Vnt_MsgItfTerm();
        Vnt_UiSetProgress(oldView_), Vnt_UiSetPresenter(oldBox_);
        vnt::test::resetAll();
    }
    // The texts of every update of one kind, in order.
    Strings texts(Kind kind) const {
        Strings out;
        for (const auto& r : view.Of(kind)) out.push_back(r.text);
        return out;
    }
    // Which of bar, number and text the window shows.
    std::string items() const {
        return std::string(view.barShown ? "bar " : "") + (view.numberShown ? "number " : "") +
               (view.textShown ? "text" : "");
    }
    // The one internal error report shown, with its code and source.
    void expectInternalError(int code) {
        ASSERT_EQ(box.shown.size(), 1u);
        EXPECT_TRUE(box.shown[0].internalError);
        EXPECT_NE(box.shown[0].text.find("(Code " + std::to_string(code) + ")"), std::string::npos) << box.shown[0].text;
        EXPECT_NE(box.shown[0].details.find("Msg/VntStat/"), std::string::npos) << box.shown[0].details;
        box.shown.clear();
    }

    VntScriptedProgressView view;
    VntScriptedPresenter box;
    VntProgressView* oldView_ = nullptr;
    VntMsgPresenter* oldBox_ = nullptr;
    VNT_MSG sys_ = nullptr;
};

TEST_F(Stat, PercentagesAndNumbers) {
    const struct {
        const char* name;
        unsigned long count;
        long divisor;
        std::vector<unsigned long> calls;
        Strings shown;  // bar texts, or numbers when count is 0
        int lastBar;
    } rows[] = {
        {"a quarter", 200, 1, {50}, {"25%"}, 25},
        {"accumulated", 1000, -1, {100, 100, 100}, {"10%", "20%", "30%"}, 30},
        {"no decimals, rounded", 3, 1, {1, 2}, {"33%", "67%"}, 67},
        {"beyond the total: the bar stops at 100", 100, 1, {150}, {"150%"}, 100},
        {"no total: the number", 0, 1, {7, 12}, {"7", "12"}, 0},
        {"accumulated without total: the sum", 0, -1, {7, 12}, {"7", "19"}, 0},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        view.records.clear();
        VntStat stat("work", r.divisor, r.count);
        for (unsigned long n : r.calls) stat.Progress(n);
        EXPECT_EQ(texts(r.count ? Kind::Bar : Kind::Number), r.shown);
        EXPECT_EQ(items(), r.count ? "bar " : "number ");
        EXPECT_EQ(r.count ? view.percent : 0, r.lastBar);
    }
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Stat, ThinningRedrawsTheFirstOfEveryRun) {
    VntStat stat("work", 10, 0);
    for (int i = 1; i <= 25; ++i) stat.Progress(i);
    EXPECT_EQ(texts(Kind::Number), (Strings{"1", "11", "21"}));
    // The sum grows on the skipped calls too.
    view.records.clear();
    stat.SetCount(1000, 3);
    stat.SetCount(1000, -1);
    stat.Begin("again");
    for (int i = 0; i < 4; ++i) stat.Progress(100);
    EXPECT_EQ(texts(Kind::Bar), (Strings{"10%", "40%"}));
    // A new Begin starts a new run.
    view.records.clear();
    stat.Begin("third");
    stat.Progress("a"), stat.Progress("b");
    EXPECT_EQ(texts(Kind::Text), (Strings{"a"}));
}

TEST_F(Stat, ProgressValuesAndTexts) {
    VntStat stat("work");
    // The decimal separator is the C run time's: a comma or a point.
    for (const auto& [value, shown] : std::vector<std::pair<double, std::string>>{
             {3.0, "3"}, {2.5, "2.5"}, {0.125, "0.125"}, {-1.75, "-1.75"}, {1.0 / 3, "0.333333"}}) {
        stat.Progress(value);
        std::string n = view.number;
        if (const auto comma = n.find(','); comma != std::string::npos) n[comma] = '.';
        EXPECT_EQ(n + " " + items(), shown + " number ") << view.number;
    }
    stat.Progress("copying");
    EXPECT_EQ(view.text + " " + items(), "copying text");
    stat.Progress(static_cast<const char*>(nullptr));
    EXPECT_EQ(view.text, "");
    stat.Progress(-4);  // no total: the number as it is
    EXPECT_EQ(view.number + " " + items(), "-4 number ");
    stat.Progress(5000000000LL), stat.Progress(3u);
    EXPECT_EQ(texts(Kind::Number).end()[-2] + " " + view.number, "5000000000 3");
}

TEST_F(Stat, LayoutOfTitleAndLines) {
    const struct { const char *name, *text, *title; Strings lines; bool line4; } rows[] = {
        {"title and blanks", "[Kopieren]  Datei A", "Kopieren", {"Datei A", "", "", ""}, false},
        {"tabs and blanks", "[T]\t \tA\nB\nC\nD\nE", "T", {"A", "B", "C", "D"}, true},
        {"cut at 50", "[T]12345678901234567890123456789012345678901234567890XYZ\n  two",
         "T", {"12345678901234567890123456789012345678901234567890", "  two", "", ""}, false},
        {"CR LF", "[T]A\r\nB", "T", {"A", "B", "", ""}, false},
        {"no closing bracket: no title", "[open  text", "Box", {"[open  text", "", "", ""}, false},
        {"no title: the box title", "  A\n\nC", "Box", {"  A", "", "C", ""}, false},
        {"empty fourth line is hidden", "A\nB\nC\n", "Box", {"A", "B", "C", ""}, false},
    };
    Vnt_MsgSetTitle("Box");
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        VntStat stat;
        ASSERT_TRUE(stat.Begin(r.text));
        EXPECT_EQ(view.title, r.title);
        EXPECT_EQ(Strings(view.lines, view.lines + 4), r.lines);
        EXPECT_EQ(view.line4Shown, r.line4);
        EXPECT_TRUE(view.visible);
    }

    // The dialog's own caption stays when the message has no title, and
    // Msg replaces only what its text says.
    view.dialogCaption = "Fortschritt";
    VntStat stat;
    ASSERT_TRUE(stat.Begin("Datei %s von %d", "a.txt", 3));
    EXPECT_TRUE(view.title == "Fortschritt" && view.lines[0] == "Datei a.txt von 3");
    EXPECT_TRUE(stat.Msg("[Neu] %d\n2\n3\n4", 1));
    EXPECT_TRUE(view.title == "Neu" && view.lines[0] == "1" && view.line4Shown);
    EXPECT_TRUE(stat.Msg("nur eins"));
    EXPECT_TRUE(view.title == "Neu" && view.lines[1].empty() && !view.line4Shown);
    EXPECT_FALSE(stat.Msg(""));
    EXPECT_EQ(view.lines[0], "nur eins");
    stat.SetTitle("Titel");
    const std::string set = view.title;
    stat.SetTitle(0);
    EXPECT_EQ(set + " " + view.title, "Titel Box");

    // A message number is taken through the handle (here the system library).
    VntStat numbered(62003);
    EXPECT_EQ(view.lines[0], "Programminterne Pr\xFC" "fung fehlgeschlagen");
    // An empty text closes the window again.
    EXPECT_FALSE(numbered.Begin(""));
    EXPECT_FALSE(numbered.IsOpen() || view.open);
    EXPECT_TRUE(box.shown.empty());
}

// A view that still reports the user's actions after its window is gone
// meets internal errors, not a crash.
struct LateView : VntScriptedProgressView {
    VntProgressEvents* kept = nullptr;
    bool OpenStatus(VNT_HWND owner, VntProgressPos pos, VntProgressEvents* events) override {
        kept = events;
        return VntScriptedProgressView::OpenStatus(owner, pos, events);
    }
};

TEST_F(Stat, InternalErrors) {
    VntStat stat;
    EXPECT_FALSE(stat.IsOpen());
    EXPECT_TRUE(stat.IsCancel());  // no window: nothing left to do
    EXPECT_FALSE(stat.Msg("text"));
    expectInternalError(100);
    stat.SetTitle("T");
    expectInternalError(500);
    view.failOpen = true;
    EXPECT_FALSE(stat.Begin("text"));
    expectInternalError(300);
    // The calls on a closed window that have nothing to report do nothing.
    stat.Progress(5), stat.Show(), stat.Move(1, 2);
    tagRECT r{};
    EXPECT_FALSE(stat.GetRect(&r));
    stat.End();
    EXPECT_TRUE(box.shown.empty() && view.records.empty());
    EXPECT_FALSE(stat.Begin("text") && stat.GetRect(nullptr));
    stat.End();

    LateView late;
    Vnt_UiSetProgress(&late);
    VntStat closed("work");
    closed.EnableCancel(true);
    closed.End();
    ASSERT_NE(late.kept, nullptr);
    late.kept->OnCancelPressed();
    expectInternalError(200);
    for (auto event : {+[](VntProgressEvents* e) { e->OnConfirmAnswer(true); }, +[](VntProgressEvents* e) { e->OnStatusActivated(); }}) {
        event(late.kept);
        expectInternalError(199);
    }
    EXPECT_FALSE(late.confirmOpen);
    EXPECT_TRUE(closed.IsCancel());  // closed: nothing left to do
    Vnt_UiSetProgress(&view);
}

TEST_F(Stat, CancelIsConfirmed) {
    const struct { const char* name; Answer answer; bool cancelled, confirmed; /* the confirmation opened */ } rows[] = {
        {"yes", Answer::Yes, true, true},
        {"no", Answer::No, false, true},
        {"confirmation cannot open", Answer::CannotOpen, true, false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        view.records.clear();
        view.answers = {r.answer};
        view.cancelAtUpdate = 2;
        {
            VntStat stat("[Kopieren] work", 1, 10);
            stat.EnableCancel(true);
            stat.Move(100, 50);
            stat.Progress(1);
            EXPECT_FALSE(view.confirmOpen);
            stat.Progress(2);  // Cancel pressed in this call's pump
            EXPECT_EQ(view.confirmOpen, r.confirmed);
            EXPECT_EQ(view.enabled, !r.confirmed);  // the status window waits for the answer
            ASSERT_EQ(view.Of(Kind::ConfirmOpen).size(), 1u);
            const auto open = view.Of(Kind::ConfirmOpen)[0];
            EXPECT_TRUE(open.value == 120 && open.y == 150 && open.text == "Kopieren");
            EXPECT_EQ(std::pair(stat.IsCancel(), stat.IsCancel()), std::pair(r.cancelled, r.cancelled));  // it stays
            EXPECT_TRUE(!view.confirmOpen && view.enabled && view.cancelShown && view.cancelEnabled);
        }
        vnt::copy::resetStat();  // the first confirmation of the process again
    }
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Stat, CancelButtonPendingConfirmationAndPositions) {
    VntStat stat("work");
    // Not allowed until EnableCancel: hidden, disabled, cannot be pressed.
    EXPECT_TRUE(!view.cancelShown && !view.cancelEnabled);
    view.PressCancel();
    EXPECT_FALSE(view.confirmOpen || stat.IsCancel());

    stat.EnableCancel(true);
    EXPECT_TRUE(view.cancelShown && view.cancelEnabled);
    view.answers = {Answer::Yes};
    view.PressCancel();
    ASSERT_TRUE(view.confirmOpen);
    view.Activate();  // the status window clicked: the confirmation comes forward
    EXPECT_EQ(view.Of(Kind::ConfirmFront).size(), 1u);
    // Taking Cancel away closes the confirmation before it is answered.
    stat.EnableCancel(false);
    EXPECT_TRUE(!view.confirmOpen && view.enabled && !view.cancelShown && !view.cancelEnabled);
    EXPECT_FALSE(stat.IsCancel());

    // Later confirmations open where the last one was left.
    stat.EnableCancel(true);
    view.answers = {Answer::No};
    view.PressCancel();
    view.confirmAt = VntProgressPos{500, 600, true};  // the user moved it
    EXPECT_FALSE(stat.IsCancel());
    view.PressCancel();
    const auto opens = view.Of(Kind::ConfirmOpen);
    ASSERT_EQ(opens.size(), 3u);
    EXPECT_TRUE(opens[2].value == 500 && opens[2].y == 600);
    // Ending closes the confirmation with the window.
    stat.End();
    EXPECT_TRUE(!view.confirmOpen && !view.open && view.Of(Kind::ConfirmClose).size() == 3u);
    EXPECT_TRUE(box.shown.empty());
    vnt::copy::resetStat();
    view.records.clear();
    // Where windows were left is kept for the next ones of the process.
    {
        VntStat first("one");
        EXPECT_FALSE(view.openedAt.set);  // the first window is centred
        first.Move(10, 20);
        tagRECT r{};
        EXPECT_TRUE(first.GetRect(&r) && r.left == 10 && r.top == 20);
        first.SetTopmost(true), first.Hide();
        EXPECT_TRUE(view.topmost && !view.visible);
        first.Show();
        EXPECT_TRUE(view.visible);
    }  // destroyed: ends and remembers
    EXPECT_FALSE(view.open);
    VntStat second("two");
    EXPECT_TRUE(view.openedAt.set && view.openedAt.x == 10 && view.openedAt.y == 20);
    second.Move(30, 40);
    // A second dialog takes the one status window over: the first ends.
    VntStat third("three");
    EXPECT_TRUE(!second.IsOpen() && third.IsOpen() && second.IsCancel());
    EXPECT_TRUE(view.openedAt.x == 30 && view.openedAt.y == 40);
    const int pumps = view.pumps;
    third.Delay(0);
    EXPECT_GT(view.pumps, pumps);
}

TEST_F(Stat, ConsoleViewDrawsOneLine) {
    VntConsoleProgressView console;
    std::string out;
    console.sink = [&out](const std::string& s) { out += s; };
    console.barWidth = 10;
    Vnt_UiSetProgress(&console);
    {
        VntStat stat("[T] Kopieren \xE4", 1, 200);  // Windows-1252 in, UTF-8 out
        stat.EnableCancel(true);
        stat.Progress(50ul), stat.Progress(200ul), stat.Progress("fertig");
        EXPECT_FALSE(stat.IsCancel());  // nobody cancels here
    }
    EXPECT_EQ(out,
              "\rKopieren \xC3\xA4"
              "\rKopieren \xC3\xA4 [##........] 25%"
              "\rKopieren \xC3\xA4 [##########] 100%"
              "\rKopieren \xC3\xA4 fertig           "
              "\n");
    Vnt_UiSetProgress(&view);
}

}  // namespace
