// The application's start and end with and without a module table, its
// failures, the version record, the hard exit, and the frame's utilities.
#include <gtest/gtest.h>

#include "support.h"

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "vanto/app.h"
#include "vanto/lfn.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
#include "vanto/vtm.h"
#include "scratch.h"

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

int g_edInits = 0, g_edTerms = 0;
bool g_edAnswer = true;
bool edInit() { return ++g_edInits, g_edAnswer; }
void edTerm() { ++g_edTerms; }

const auto lib = vnt::test::libPath;

const char* const kAppMsg = "segment APPMSG\n1 \"Hallo\"\n";
const char* const kTable = "12 Kasse.dll Kasse KasseMain 0";

class AppLifecycle : public ::testing::Test {
protected:
    void SetUp() override {
        cwd_ = vnt::host::curDir();
        dir_ = vnt::test::scratchDir("vanto_applife_");
        fs::create_directories(dir_ / "sub");
        fs::copy_file(VANTO_SYSLIB_EN, dir_ / "VNT60LIB.VTM");
        old_ = Vnt_UiSetPresenter(&box);
        fresh();
    }
    void TearDown() override {
        vnt::test::resetAll();
        Vnt_UiSetPresenter(old_);
        vnt::host::setProgramFile("");
        vnt::host::setCurDir(cwd_);
        fs::remove_all(dir_);
    }
    // A fresh process started in the program directory, where the system
    // library lies.
    void fresh() {
        vnt::test::resetAll();
        vnt::host::setProgramFile(lib(dir_ / "Fibu.exe"));
        ASSERT_TRUE(vnt::host::setCurDir(lib(dir_)));
        box.shown.clear();
        g_edInits = g_edTerms = 0;
        g_edAnswer = true;
        Vnt_EdSetHooks(edInit, edTerm);
    }
    // Fibu.vtm, compiled by vtmc from the container's segments.
    void appLibrary(const std::string& segments) const {
        std::ofstream(dir_ / "Fibu.vtms", std::ios::binary) << "container FIBU\n" << segments;
        using vnt::test::shellQuote;
        const std::string cmd = shellQuote(VTMC_EXE) + " " + shellQuote((dir_ / "Fibu.vtms").string()) + " -o " +
                                shellQuote((dir_ / "Fibu.vtm").string());
        ASSERT_EQ(vnt::test::runCommand(cmd), 0) << cmd;
    }
    // Whether the message interface runs (a probe start is ended again).
    static bool interfaceStarted() { return !Vnt_MsgItfInit(nullptr, 0) || (Vnt_MsgItfTerm(), false); }

    VntScriptedPresenter box;
    VntMsgPresenter* old_ = nullptr;
    std::string cwd_;
    fs::path dir_;
};

TEST_F(AppLifecycle, WithoutModuleTableOnlyTheMessageLibraryOpens) {
    appLibrary(kAppMsg);
    ASSERT_TRUE(Vnt_AppMainInit("--ignored"));
    EXPECT_EQ(std::tuple(Vnt_AppProgDir(), Vnt_AppProgName(), Vnt_AppProgBaseName(), Vnt_AppStartDir()),
              std::tuple(lib(dir_), std::string("Fibu.exe"), std::string("Fibu"), lib(dir_)));
    EXPECT_TRUE(std::string(Vnt_AppMsgLoad(1)) == "Hallo" && g_edInits == 0 && !interfaceStarted());
    // Without "APPVER" the version record is empty, its texts too.
    const VNT_APP_VER* v = Vnt_AppVerInfo();
    EXPECT_TRUE(v->nMajor == 0 && v->nMinor == 0 && v->nVersion == 0 && !v->szEntry7[0] && !v->szEntry9[0]);
    ASSERT_TRUE(v->pszText1 && v->pszText2);
    EXPECT_TRUE(!*v->pszText1 && !*v->pszText2);
    // The end does nothing at all: even the message library stays open.
    Vnt_AppMainTerm();
    EXPECT_TRUE(g_edTerms == 0 && Vnt_AppMsgGetHandle());
    // Only the module table marks a started library: a second init runs
    // again and takes the start directory anew, still without services.
    ASSERT_TRUE(vnt::host::setCurDir(lib(dir_ / "sub")));
    EXPECT_TRUE(Vnt_AppMainInit() && Vnt_AppStartDir() == lib(dir_ / "sub"));
    EXPECT_TRUE(std::string(Vnt_AppMsgLoad(1)) == "Hallo" && g_edInits == 0 && !interfaceStarted() && box.shown.empty());
}

TEST_F(AppLifecycle, WithModuleTableTheServicesStartOnce) {
    appLibrary(kAppMsg);
    vnt::test::writeIniLibrary(dir_, "Modules.vtm", {kTable});
    ASSERT_TRUE(Vnt_AppMainInit());
    EXPECT_TRUE(vnt::app::moduleTableLoaded() && g_edInits == 1 && interfaceStarted());
    // A second init changes nothing, the start directory included.
    ASSERT_TRUE(vnt::host::setCurDir(lib(dir_ / "sub")));
    vnt::host::setProgramFile(lib(dir_ / "Other.exe"));
    EXPECT_TRUE(Vnt_AppMainInit());
    EXPECT_EQ(std::tuple(Vnt_AppStartDir(), Vnt_AppProgName(), g_edInits), std::tuple(lib(dir_), "Fibu.exe"s, 1));
    Vnt_AppMainTerm();
    EXPECT_TRUE(g_edTerms == 1 && !interfaceStarted() && !Vnt_AppMsgGetHandle() && !vnt::app::moduleTableLoaded());
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(AppLifecycle, InitFailures) {
    // Only the missing library is reported (by the message system).
    struct Row { const char* name; bool appLib, edAnswer, interfaceFirst; int edInits; std::size_t boxes; };
    for (const Row& r : {Row{"no application library", false, true, false, 0, 1},
                         {"the edit control refuses", true, false, false, 1, 0},
                         {"the message interface runs already", true, true, true, 0, 0}}) {
        fresh();
        fs::remove(dir_ / "Fibu.vtm");
        if (r.appLib) appLibrary(kAppMsg);
        vnt::test::writeIniLibrary(dir_, "Modules.vtm", {kTable});
        g_edAnswer = r.edAnswer;
        ASSERT_TRUE(!r.interfaceFirst || Vnt_MsgItfInit(nullptr, 0));
        EXPECT_FALSE(Vnt_AppMainInit()) << r.name;
        EXPECT_EQ(std::tuple(g_edInits, box.shown.size()), std::tuple(r.edInits, r.boxes)) << r.name;
    }
}

TEST_F(AppLifecycle, VersionRecordFromTheApplicationLibrary) {
    const std::string text1(140, 't');
    appLibrary(std::string(kAppMsg) + "segment APPVER\n1 \"" + text1 + "\"\n2 \"Finanzbuchhaltung\"\n3 \"6\"\n4 \"07b\"\n"
               "5 \"17\"\n6 \"-3\"\n7 \"ENUX\"\n8 \"B\"\n9 \"1234567\"\n");
    ASSERT_TRUE(Vnt_AppMainInit());
    const VNT_APP_VER* v = Vnt_AppVerInfo();
    EXPECT_EQ(std::vector<int>({v->nMajor, v->nMinor, v->nVersion, v->nEntry5, v->nEntry6}),
              std::vector<int>({6, 7, 607, 17, -3}));
    EXPECT_EQ(std::tuple(v->pszText1, v->pszText2, v->szEntry7, v->szEntry8, v->szEntry9),
              std::tuple(text1.substr(0, 127), "Finanzbuchhaltung"s, "ENU"s, "B"s, "12345"s));
    EXPECT_TRUE(Vnt_AppVerInfo() == v && box.shown.empty());
}

void closeConnection() { std::fputs("connection closed\n", stderr); }

// Reports every window it destroys.
struct DyingWindows final : VntHeadlessWindowPort {
    void Destroy(VNT_HWND w) override {
        std::fprintf(stderr, "destroyed %s\n", Name(w).c_str());
        VntHeadlessWindowPort::Destroy(w);
    }
};

using AppLifecycleDeathTest = AppLifecycle;
TEST_F(AppLifecycleDeathTest, ExitClosesTheConnectionAndTheMainWindow) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(Vnt_AppMainExitApplication(0), ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            DyingWindows win;
            Vnt_UiSetWindow(&win);
            win.CreateFake("Nebenfenster");
            win.SetMainWindow(win.CreateFake("Hauptfenster"));
            Vnt_AppSetConnCloseHook(closeConnection);
            Vnt_AppMainExitApplication(4);
        },
        ::testing::ExitedWithCode(4), "connection closed\ndestroyed Hauptfenster\n");
    // A reader report that is not confirmed leaves the same way.
    EXPECT_EXIT(
        {
            Vnt_AppSetConnCloseHook(closeConnection);
            Vnt_VtmSetReport([](const char*) -> VNT_RESP { return VNT_RESP_CANCEL; });
            Vnt_VtmRead(nullptr, 5);
        },
        ::testing::ExitedWithCode(3), "exit code 3: a report was not confirmed: VTMINTRF: Internal Error. Cannot get "
                                      "message 5 when no message library is open!\n(.*\n)?connection closed");
}

// The utilities, through an installed window port.
class AppUtilities : public ::testing::Test {
protected:
    struct Windows final : VntHeadlessWindowPort {
        void BusyCursor(bool on) override { cursor += on ? "+" : "-"; }
        std::string cursor;
    };
    void SetUp() override { vnt::test::resetAll(), Vnt_UiSetWindow(&win); }
    void TearDown() override { Vnt_UiSetWindow(nullptr), vnt::test::resetAll(); }
    Windows win;
};

TEST_F(AppUtilities, BusyHasNoNestingAndKeyStateTakesTheModifierBits) {
    Vnt_Unbusy();  // not busy: nothing shown
    Vnt_Busy(), Vnt_Busy(), Vnt_Unbusy(), Vnt_Unbusy();
    EXPECT_EQ(win.cursor, "++-");
    for (int keys : {0, 1, 3, 6, 7, 0xFF}) {
        win.keys = keys;
        EXPECT_EQ(int(Vnt_KeyState()), keys & 7) << keys;
    }
}

TEST_F(AppUtilities, DelayServesPostedMessagesWithoutSpinning) {
    struct Row { const char* name; bool serve; unsigned long ms; int delivered; };
    for (const Row& r : {Row{"no delay", true, 0, 0}, {"delay", true, 120, 3}, {"wait", false, 60, 0}}) {
        int delivered = 0;
        VNT_HWND w = win.CreateFake("w", [&](VNT_HWND self, unsigned, uintptr_t, intptr_t) {
            if (++delivered < 3) win.Post(self, 0x400, 0, 0);  // each on a later pass
            return 0L;
        });
        win.Post(w, 0x400, 0, 0);
        const std::int64_t t0 = vnt::host::tickMs();
        const std::clock_t c0 = std::clock();
        r.serve ? Vnt_Delay(r.ms) : Vnt_DelayWait(r.ms);
        const double cpuMs = 1000.0 * double(std::clock() - c0) / CLOCKS_PER_SEC;
        const std::int64_t took = vnt::host::tickMs() - t0;
        EXPECT_GE(took, std::int64_t(r.ms)) << r.name;
        EXPECT_EQ(delivered, r.delivered) << r.name;
        EXPECT_TRUE(!r.ms || cpuMs < double(took) / 2) << r.name << ": the wait should sleep, " << cpuMs << " ms busy";
        win.Clear();
    }
}

TEST(AppLongBeginsWith, RangesOfAPrefix) {
    struct Row { long prefix, low, high, outLow, outHigh, result; };
    const Row rows[] = {
        {12, 1000, 9999, 1200, 1299, 1200}, {123, 1000, 1999, 1230, 1239, 1230}, {2, 150, 2999, 200, 2999, 200},
        {5, 10, 40, 50, 40, 59},      // beyond high: the computed high is the answer
        {3, 100, 250, 300, 250, 399},
        {1, 50, 500, 50, 199, 10},    // raised to low; the answer is the value before
        {12345, 10, 99, 12, 12, 12},  // only as many digits as the bounds have
    };
    for (const Row& r : rows) {
        long lo = -7, hi = -7;
        EXPECT_EQ(std::tuple(Vnt_LongBeginsWith(r.prefix, r.low, r.high, &lo, &hi), lo, hi),
                  std::tuple(r.result, r.outLow, r.outHigh)) << r.prefix << " " << r.low;
    }
    EXPECT_EQ(Vnt_LongBeginsWith(12, 1000, 9999, nullptr, nullptr), 1200);
}

TEST(AppPaths, LongValuesAreCut) {
    vnt::test::resetAll();
    EXPECT_TRUE(Vnt_AppSetDSN(std::string(300, 'd').c_str()) && std::string(Vnt_AppDSN()) == std::string(259, 'd'));
    vnt::test::resetAll();
    EXPECT_STREQ(Vnt_AppDSN(), "");
}

}  // namespace
