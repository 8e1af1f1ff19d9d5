// The module table and loader against real module libraries (built beside
// the tests): prefixes, plain and template results, failures and their
// messages, single-instance and exclusive modules, the window table, the
// value stack, the client-change chain, INI indirection, help and versions.
#include <gtest/gtest.h>

#include "support.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "app/module_internal.h"
#include "base/strbuf.h"
#include "modules/test_modules.h"
#include "vanto/lfn.h"
#include "vanto/module.h"
#include "vanto/ui/help.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

const auto lib = vnt::test::libPath;

// A program that writes its arguments into out.txt of its working directory.
void writeTool(const fs::path& file) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "#!/bin/sh\necho \"$@\" > out.txt\n";
    fs::permissions(file, fs::perms::owner_all);
}

// What a started program wrote to `out`, once it has (5 s at most).
std::string written(const fs::path& out) {
    for (int i = 0; i < 500 && !(fs::exists(out) && fs::file_size(out) > 0); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::ifstream in(out);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// The value stack emptied (up to its first 0), then `values` pushed.
void stack(const std::vector<long>& values) {
    while (Vnt_AppModQueuePop() != 0) {}
    for (long v : values) Vnt_AppModQueuePush(v);
}

using vnt::test::kModuleExt;

class AppModule : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        cwd_ = vnt::host::curDir();
        dir_ = fs::temp_directory_path() / ("vanto_appmod_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir_);
        // Copies per test: each test loads libraries of its own.
        for (const char* m : {"ModPlain", "ModTmpl", "ModNoEntry", "ModVer", "libModStack"})
            fs::copy_file(fs::path(VANTO_TEST_MODULE_DIR) / (m + std::string(kModuleExt)), dir_ / (m + std::string(kModuleExt)));
        vnt::host::setProgramFile(lib(dir_ / "Fibu"));
        ASSERT_TRUE(vnt::host::setCurDir(lib(dir_)));
        oldBox_ = Vnt_UiSetPresenter(&box);
        oldWin_ = Vnt_UiSetWindow(&win);
        oldHelp_ = Vnt_UiSetHelp(&help);
        ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, lib(VANTO_SYSLIB_EN).c_str()));
        ASSERT_NE(sys_ = Vnt_MsgHInit(), nullptr);  // held open, as an application's own library holds it
        main_ = win.CreateFake("main", [this](VNT_HWND, unsigned msg, uintptr_t, intptr_t) {
            return msg == 0x7F13 ? mainAnswer_ : 0L;
        });
        win.SetMainWindow(main_);
    }
    void TearDown() override {
        if (sys_) Vnt_MsgHTerm(&sys_);
        vnt::test::resetAll();  // closes the library-wide objects before the interface
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(oldBox_);
        Vnt_UiSetWindow(oldWin_);
        Vnt_UiSetHelp(oldHelp_);
        vnt::host::setProgramFile("");
        vnt::host::setCurDir(cwd_);
        fs::remove_all(dir_);
    }
    // INI\Modules.vtm with one module a line, loaded.
    void table(const std::vector<std::string>& lines) {
        vnt::test::writeIniLibrary(dir_, "Modules.vtm", lines);
        ASSERT_TRUE(vnt::app::loadModuleTable());
    }
    std::vector<unsigned> mainMessages() const {
        std::vector<unsigned> out;
        for (const auto& m : win.Messages(main_)) out.push_back(m.msg);
        return out;
    }
    // The last message to the main window: its number and wparam.
    std::pair<unsigned, uintptr_t> lastToMain() const {
        const auto& m = win.Messages(main_);
        return m.empty() ? std::pair(0u, uintptr_t{0}) : std::pair(m.back().msg, m.back().wparam);
    }
    std::string lastBox() const { return box.shown.empty() ? "(none)" : box.shown.back().text; }
    // The last message box contains `text`.
    ::testing::AssertionResult said(const std::string& text) const {
        if (lastBox().find(text) != std::string::npos) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "last box: " << lastBox();
    }
    // `got` is `want`, and `boxes` message boxes were shown in all.
    ::testing::AssertionResult gave(bool got, bool want, std::size_t boxes) const {
        if (got == want && box.shown.size() == boxes) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "answered " << got << " after " << box.shown.size()
                                             << " boxes, the last " << lastBox();
    }
    static long ptr(const void* p) { return static_cast<long>(reinterpret_cast<std::intptr_t>(p)); }

    VntScriptedPresenter box;
    VntHeadlessWindowPort win;
    VntHelpRecorder help;
    VNT_HWND main_ = nullptr;
    long mainAnswer_ = 0;
    fs::path dir_;

private:
    std::string cwd_;
    VNT_MSG sys_ = nullptr;
    VntMsgPresenter* oldBox_ = nullptr;
    VntWindowPort* oldWin_ = nullptr;
    VntHelpPort* oldHelp_ = nullptr;
};

TEST(AppModuleRules, PrefixesCommandIdsResultKindsAndValueStack) {
    struct Prefix { const char* file; VNT_APP_MODFLAGS flags; const char* rest; };
    const Prefix prefixes[] = {
        {"-iniwFibu.ini", 0x1000 | 0x10000 | 0x20000, "Fibu.ini"},
        {"i-hlpHelp.hlp", 0x4000 | 0x1000 | 0x2000, "Help.hlp"},
        {"iniwsaX", 0x10000 | 0x20000 | 0x40000 | 0x80000, "X"},
        {"inisw.ini", 0x10000 | 0x40000, "w.ini"},  // each letter once, in order
        {"index.dll", 0x4000, "ndex.dll"},           // "ini" is not there, "i" is
        {"Index.dll", 0, "Index.dll"},               // case matters
        {"-", 0x1000, ""},
    };
    for (const Prefix& p : prefixes) {
        char f[20];
        vnt::copyBounded(f, p.file);
        EXPECT_EQ(vnt::app::parsePrefixes(f), p.flags) << p.file;
        EXPECT_STREQ(f, p.rest) << p.file;
    }
    for (auto [n, id] : {std::pair{65535L, 75535}, {65536L, 65536}, {0L, 0}, {1L, 10001}, {-1L, -1}})
        EXPECT_EQ(vnt::app::commandId(n), id) << n;
    for (auto [r, plain] : {std::pair<std::intptr_t, bool>{0xFFFF, true}, {0x10000, false}, {-1, true}, {-2, false}, {0, true}})
        EXPECT_EQ(vnt::app::isPlainResult(r), plain) << r;
    // The value stack: last in, first out, ten places.
    vnt::test::resetAll();
    for (long v = 1; v <= 11; ++v) EXPECT_EQ(Vnt_AppModQueuePush(v), v <= 10) << v;
    for (long v = 10; v >= 0; --v) EXPECT_EQ(Vnt_AppModQueuePop(), v);
}

TEST_F(AppModule, TableLinesAndEnumeration) {
    // Without a table: internal errors, and no chain to run.
    EXPECT_EQ(Vnt_AppModInfoEx(1), nullptr);
    ASSERT_TRUE(gave(Vnt_AppModLoad(1L), false, 2));
    EXPECT_NE(box.shown[0].details.find("App/Vnt_App"), std::string::npos) << box.shown[0].details;
    EXPECT_TRUE(Vnt_AppModRunClientChain());
    table({"65535, -iniwFibu.ini, Fibu, [Paths] Exe Args, 0", "65536, ModPlain.dll, Plain, ModMain, 8",
           "-1, ModStack.dll, Chain, ModMain, $8000"});
    const VNT_APP_MODINFOEX* r = Vnt_AppModInfoEx(VNT_APP_MODINFO_FIRST);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(std::tuple(r->nCmdId, r->szFile, r->szFunction, r->nFlags),
              std::tuple(75535, "Fibu.ini"s, "[Paths] Exe Args"s, 0x31000u));
    ASSERT_NE(r = Vnt_AppModInfoEx(VNT_APP_MODINFO_NEXT), nullptr);
    EXPECT_EQ(std::tuple(r->nCmdId, r->nFlags, r->szDescription), std::tuple(65536, 8u, "Plain"s));
    EXPECT_EQ(Vnt_AppModInfo(VNT_APP_MODINFO_NEXT)->nFlags, 0x8000u);
    EXPECT_TRUE(Vnt_AppModInfo(VNT_APP_MODINFO_NEXT) == nullptr && Vnt_AppModInfo(7) == nullptr);
    EXPECT_EQ(Vnt_AppModInfo(0x80000000L)->nModule, 65535);  // the 32-bit spelling
    EXPECT_EQ(static_cast<const void*>(Vnt_AppModInfo(-1)), static_cast<const void*>(Vnt_AppModInfoEx(-1)));
    EXPECT_EQ(box.shown.size(), 2u);
}

TEST_F(AppModule, PlainResultsEntryFunctionsAndTheKeepFlag) {
    table({"10, ModPlain.dll, Plain, ModMain, 0", "11, ModPlain.dll, Other, , 0", "12, ModStack.dll, Stack, ModMain, 0",
           "13, ModPlain.dll, Kept, ModMain, 8"});
    // Argument 1 = 3 counts calls in the library's own memory: a freed
    // library counts anew, a kept one (flag 8) goes on.
    struct Row { long module, a1, a2; long result; };
    const Row rows[] = {{10, 0, 0, 0xFFFF}, {10, 1, 0, -1}, {10, 5, 6, 11}, {10, 3, 0, 1}, {10, 3, 0, 1},
                        {13, 3, 0, 1},      {13, 3, 0, 2},  {13, 3, 0, 3}};
    for (const Row& r : rows) {
        Vnt_AppModSetResult(99);
        EXPECT_TRUE(Vnt_AppModLoad(r.module, r.a1, r.a2)) << r.module << "/" << r.a1;
        EXPECT_EQ(Vnt_AppModResult(), r.result) << r.module << "/" << r.a1;
        EXPECT_EQ(Vnt_AppModInfoEx(10)->hInstance, nullptr) << "freed after a plain result";
    }
    EXPECT_TRUE(gave(Vnt_AppModLoad(11L), false, 1));  // no function, no default: internal error 2
    static const char other[] = "ModOther";
    Vnt_AppModSetFunctionName(other);
    EXPECT_TRUE(Vnt_AppModLoad(11L) && Vnt_AppModResult() == 42);
    // "ModStack.dll" is libModStack.so; it pops its result from our stack.
    Vnt_AppModQueuePush(7);
    EXPECT_TRUE(gave(Vnt_AppModLoad(12L, 1), true, 1));
    EXPECT_EQ(Vnt_AppModResult(), 7);
}

TEST_F(AppModule, FailuresAndTheirMessages) {
    table({"1, ModNoEntry.dll, NoEntry, ModMain, 0", "2, Missing.dll, Gone, ModMain, 0",
           "3, -Missing.dll, Optional, ModMain, 0"});
    const std::pair<long, const char*> rows[] = {
        {1, "The function \"ModMain\" was not found in the module \"NoEntry\"."},
        {2, "The module \"Gone\" could not be loaded."}, {2, "Error 2: "}, {2, "Missing.dll"},
        {3, "The module \"Optional\" is not available."},
        {77, "There is no module with the number 77."},
    };
    for (auto [module, text] : rows) {
        box.shown.clear();
        ASSERT_TRUE(gave(Vnt_AppModLoad(module), false, 1)) << module;
        EXPECT_TRUE(said(text)) << module;
    }
    // A load fault of the host is reported as well.
    vnt::host::faultOn(vnt::host::Op::Load, "*\\ModPlain.*");
    EXPECT_FALSE(Vnt_AppModLoad(lib(dir_ / "ModPlain.dll").c_str(), 0, 0, "ModMain", 0, "Plain"));
    EXPECT_TRUE(said("simulated"));
}

// A missing, damaged or empty module table: told once when a module is
// asked for (the file and the reader's status), then refused silently; a
// reader report during the load, even one not confirmed, ends nothing.
TEST_F(AppModule, AnUnreadableTableIsToldOnce) {
    const std::string file = lib(dir_ / "INI" / "Modules.vtm");
    struct Row { const char* name; std::string bytes; long status; };
    const Row rows[] = {{"missing", "", 1}, {"cut_header", "VANTOVTM60", 2}, {"no_library", std::string(300, 'x'), 5}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        vnt::app::resetModules();
        box.shown.clear();
        fs::remove_all(dir_ / "INI");
        if (!r.bytes.empty()) fs::create_directories(dir_ / "INI"), std::ofstream(dir_ / "INI" / "Modules.vtm") << r.bytes;
        box.answers = {VntBoxAnswer{VNT_BTN_CANCEL, false}};  // what a box without a terminal answers
        EXPECT_FALSE(vnt::app::loadModuleTable());
        EXPECT_EQ(box.shown.size(), 0u);
        EXPECT_FALSE(Vnt_AppModLoad(10) || Vnt_AppModInfo(10) || Vnt_AppModLoad(20));
        ASSERT_EQ(box.shown.size(), 1u);
        EXPECT_EQ(box.shown[0].text, "The module table \"" + file + "\" could not be read (status " + std::to_string(r.status) +
                                         ": " + Vnt_VtmStatusText(r.status) + "). No modules can be started.");
    }
    // A table without entries says so too.
    vnt::app::resetModules(), box.shown.clear();
    vnt::test::writeIniLibrary(dir_, "Modules.vtm", {});
    EXPECT_FALSE(vnt::app::loadModuleTable() || Vnt_AppModLoad(10));
    EXPECT_TRUE(said("(status 11: "));
    // Never loaded: each use stays an internal error.
    vnt::app::resetModules(), box.shown.clear();
    EXPECT_FALSE(Vnt_AppModLoad(10) || Vnt_AppModLoad(10));
    EXPECT_EQ(box.shown.size(), 2u);
}

TEST_F(AppModule, DisabledModulesAndSpecialNumbers) {
    table({"10, ModPlain.dll, Plain, ModMain, 0", "11, ModPlain.dll, Other, ModMain, 0"});
    const long list[] = {11, 0}, unknown[] = {10, 99, 0};
    EXPECT_TRUE(Vnt_AppModLoad(VNT_APP_MOD_DISABLE_LIST, ptr(list)));
    EXPECT_TRUE(gave(Vnt_AppModLoad(11L), false, 0));
    EXPECT_EQ(lastToMain(), std::pair(VNT_WM_COMMAND, uintptr_t{10011}));
    EXPECT_TRUE(gave(Vnt_AppModLoad(VNT_APP_MOD_DISABLE_LIST, ptr(unknown)), false, 1));  // internal error 12
    EXPECT_TRUE(Vnt_AppModInfoEx(10)->bDisabled) << "those before the unknown number stay disabled";
    vnt::app::modState().cursor = 5;
    EXPECT_TRUE(gave(Vnt_AppModLoad(VNT_APP_MOD_AT_CURSOR), false, 2));  // internal error 6
}

TEST_F(AppModule, SearchPrefersTheCurrentDirectory) {
    // The current directory's "ModPlain" library is really the stack module:
    // its result is what was pushed, the program directory's adds.
    fs::create_directories(dir_ / "work");
    fs::copy_file(fs::path(VANTO_TEST_MODULE_DIR) / ("libModStack" + std::string(kModuleExt)), dir_ / "work" / ("ModPlain" + std::string(kModuleExt)));
    ASSERT_TRUE(vnt::host::setCurDir(lib(dir_ / "work")));
    table({"10, ModPlain.dll, Dll, ModMain, 0", "11, ModPlain, Bare, ModMain, 0"});
    struct Row { long module; bool inWork; long result; };
    for (const Row& r : {Row{10, true, 77}, {11, true, 77}, {10, false, 11}, {11, false, 11}}) {
        if (!r.inWork) fs::remove(dir_ / "work" / ("ModPlain" + std::string(kModuleExt)));
        stack({77});
        EXPECT_TRUE(Vnt_AppModLoad(r.module, 5, 6, true)) << r.module << lastBox();
        EXPECT_EQ(Vnt_AppModResult(), r.result) << r.module << (r.inWork ? " in work" : " in the program directory");
    }
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(AppModule, SingleInstanceActivatesItsWindowAndModalLoopsTellTheMainWindow) {
    table({"30, ModPlain.dll, Single, ModMain, 1"});
    VNT_HWND w = win.CreateFake("single");
    ASSERT_TRUE(Vnt_AppModLoad(30L, 3) && Vnt_AppInit(w, -1));
    EXPECT_EQ(Vnt_AppModInfoEx(30)->hWndMain, w);
    Vnt_AppModSetResult(5);
    EXPECT_TRUE(Vnt_AppModLoad(30L, 3));
    EXPECT_EQ(Vnt_AppModResult(), 0) << "not called again";
    EXPECT_EQ(lastToMain(), std::pair(VNT_WM_MDIACTIVATE, reinterpret_cast<uintptr_t>(w)));
    Vnt_AppTerm(w), win.Destroy(w);
    EXPECT_TRUE(Vnt_AppModLoad(30L, 3) && Vnt_AppModResult() == 1);
    win.ClearMessages(main_);
    VNT_HWND dlg = win.CreateFake("dlg");
    win.modalDefault = 5;
    EXPECT_EQ(Vnt_AppModalLoop(dlg, 0), 5);
    Vnt_AppModalEnd(dlg, 3);
    EXPECT_EQ(mainMessages(), (std::vector<unsigned>{0x7F11, 0x7F12}));
    EXPECT_EQ(win.Messages(main_)[0].wparam, reinterpret_cast<uintptr_t>(dlg));
}

TEST_F(AppModule, ExclusiveModulesAskBeforeOthersLoad) {
    table({"40, ModPlain.dll, Excl, ModMain, 4", "10, ModPlain.dll, Plain, ModMain, 0",
           "11, ModPlain.dll, Allowed, ModMain, 16"});
    bool refuseClose = false;
    VNT_HWND ex = nullptr;
    auto openExclusive = [&] {
        ASSERT_TRUE(Vnt_AppModLoad(40L));
        ex = win.CreateFake("excl", [&](VNT_HWND w, unsigned msg, uintptr_t, intptr_t) -> long {
            if (msg != VNT_WM_CLOSE) return 0;
            if (refuseClose) return 1;
            Vnt_AppTerm(w);
            return 0;
        });
        ASSERT_TRUE(Vnt_AppInit(ex, -1));
    };
    openExclusive();
    EXPECT_EQ(mainMessages(), std::vector<unsigned>{0x7F13});
    struct Row { const char* name; int answer; bool refuse; bool ok; };
    for (const Row& r : {Row{"the user says no", VNT_BTN_NO, false, false},
                         {"the window refuses to close", VNT_BTN_YES, true, false},
                         {"closed", VNT_BTN_YES, false, true}}) {
        box.shown.clear();
        box.answers = {VntBoxAnswer{r.answer, false}};
        refuseClose = r.refuse;
        ASSERT_TRUE(gave(Vnt_AppModLoad(10L), r.ok, 1)) << r.name;
        EXPECT_TRUE(said("\"Excl\"")) << r.name;
        EXPECT_EQ(!win.IsWindow(ex), r.ok) << r.name;
    }
    // Allowed loads do not ask; the allowance lasts one load.
    openExclusive();
    box.shown.clear();
    EXPECT_TRUE(gave(Vnt_AppModLoad(11L), true, 0));
    Vnt_AppModAllowLoad();
    EXPECT_TRUE(gave(Vnt_AppModLoad(10L), true, 0));
    box.answers = {VntBoxAnswer{VNT_BTN_NO, false}};
    EXPECT_TRUE(gave(Vnt_AppModLoad(10L), false, 1));
    // Any window that closes ends the exclusive module.
    Vnt_AppTerm(win.CreateFake("other"));
    EXPECT_TRUE(gave(Vnt_AppModLoad(10L), true, 1));
    // The main window may cancel an exclusive load.
    mainAnswer_ = 1;
    EXPECT_FALSE(Vnt_AppModLoad(40L));
}

TEST_F(AppModule, WindowTableAndTemplatesThatKeepTheLibraryUntilTheirLastWindowClosed) {
    table({"20, ModTmpl.dll, Tmpl, ModMain, 0", "10, ModPlain.dll, Plain, ModMain, 0"});
    EXPECT_TRUE(gave(Vnt_AppInit(win.CreateFake("x"), -1), false, 1));  // no current module: internal error 5
    EXPECT_TRUE(Vnt_AppInit(win.CreateFake("y"), 99) && !Vnt_AppModHwnd(0)) << "no module: not registered";
    TestTemplateLog log;
    ASSERT_TRUE(Vnt_AppModLoad(20L, ptr(&log)));
    const VNT_APP_MODINFOEX* rec = Vnt_AppModInfoEx(20);
    EXPECT_EQ(std::tuple(log.created, log.opened, rec->pDocTemplate != nullptr, rec->hInstance != nullptr),
              std::tuple(1, 1, true, true));
    VNT_HWND doc = win.CreateFake("doc"), doc2 = win.CreateFake("doc2"), plain = win.CreateFake("plain");
    ASSERT_TRUE(Vnt_AppInit(doc, -1) && !Vnt_AppInit(doc, 20) && Vnt_AppInit(doc2, 20)) << "registered once";
    EXPECT_EQ(rec->nOpenWindows, 2);
    Vnt_AppTerm(doc);
    EXPECT_TRUE(Vnt_AppModHwnd(0) == doc2 && !rec->bUnloadPending) << "slots move down";
    Vnt_AppTerm(doc2);
    EXPECT_TRUE(rec->bUnloadPending);
    // Documents still open: internal error 10, the library stays.
    ASSERT_TRUE(Vnt_AppInit(plain, 10));
    EXPECT_TRUE(said("DocTemplate for 'Tmpl' still has open documents."));
    EXPECT_EQ(log.destroyed, 0);
    log.openDocuments = false;
    Vnt_AppTerm(plain);
    EXPECT_EQ(std::pair(log.removed, log.destroyed), std::pair(1, 1));
    EXPECT_TRUE(!rec->pDocTemplate && !rec->hInstance && !rec->bUnloadPending && !Vnt_AppModHwnd(0));
    // A hundred slots.
    for (int i = 0; i < 100; ++i) ASSERT_TRUE(Vnt_AppInit(win.CreateFake("w"), 10)) << i;
    EXPECT_TRUE(gave(Vnt_AppInit(win.CreateFake("full"), 10), false, 3));  // internal error 8
    EXPECT_TRUE(Vnt_AppModHwnd(99) && !Vnt_AppModHwnd(100) && !Vnt_AppModHwnd(-1));
}

TEST_F(AppModule, ClientChain) {
    // In the first table A pops 50, so module 50 runs at once (and pops 0);
    // B is the user's choice; C is quiet and missing; D pops; E ends the chain.
    const std::vector<std::string> chain = {
        "-1, ModStack.dll, A, ModMain, 0", "-1, ModStack.dll, B, ModMain, $8000", "-1, -Missing.dll, C, ModMain, 0",
        "-1, ModStack.dll, D, ModMain, 0", "50, ModStack.dll, E, ModMain, 0"};
    struct Row { const char* name; std::vector<std::string> table; bool userOff; std::vector<long> pushed; bool ok;
                 int splashHides; std::size_t boxes; };
    const Row rows[] = {
        {"B switched off", chain, true, {77, 0, 0, 50}, true, 1, 0},
        {"B runs by default", chain, false, {77, 0, 0, 0, 50}, true, 1, 0},
        {"a negative result ends the chain", chain, false, {77, -1}, false, 1, 0},
        {"no client-change module runs: the splash stays", {"10, ModPlain.dll, Plain, ModMain, 0",
         "-1, ModStack.dll, Off, ModMain, $8000"}, true, {77}, true, 0, 0},
        {"a module that is not quiet fails",
         {"-1, Missing.dll, Loud, ModMain, 0", "-1, ModStack.dll, Never, ModMain, 0"}, false, {77}, false, 1, 1},
    };
    char user[VNT_MAX_PATH];
    Vnt_IniUserFile(user);
    for (const Row& r : rows) {
        vnt::app::resetModules();
        table(r.table);
        ASSERT_TRUE(Vnt_ProfileWriteString("Main", "ModStack.dll", r.userOff ? "0" : nullptr, user));
        stack(r.pushed);
        win.splashHides = 0;
        box.shown.clear();
        EXPECT_TRUE(gave(Vnt_AppModRunClientChain(), r.ok, r.boxes)) << r.name;
        EXPECT_EQ(std::pair(Vnt_AppModQueuePop(), win.splashHides), std::pair(77L, r.splashHides)) << r.name;
    }
}

TEST_F(AppModule, ProgramsStartInTheProgramDirectoryByTheirBareNameOrThroughAnIniFile) {
    // A name without a path comes from the start directory and runs in the
    // program directory; "true.exe" is found only when retried bare.
    writeTool(dir_ / "work" / "tool.sh");
    ASSERT_TRUE(vnt::host::setCurDir(lib(dir_ / "work")));
    table({"20, tool.sh, Tool, ModMain, 0", "21, true.exe, True, ModMain, 0", "22, NoSuchTool.exe, Gone, ModMain, 0",
           "70, -iniwFibu.ini, Fibu, [Paths] Exe Args, 0", "71, iniwFibu, NoExe, [Paths] Missing, 0",
           "72, iniFibu.ini, NoBracket, Paths Exe, 0", "73, iniFibu.ini, NoKey, [Paths], 0"});
    ASSERT_TRUE(Vnt_AppModLoad(20L)) << lastBox();
    EXPECT_EQ(written(dir_ / "out.txt"), "\n");
    EXPECT_FALSE(fs::exists(dir_ / "work" / "out.txt"));
    EXPECT_TRUE(gave(Vnt_AppModLoad(21L), true, 0));
    EXPECT_FALSE(Vnt_AppModLoad(22L));
    EXPECT_TRUE(said("Error 2: ") && said("NoSuchTool.exe"));
    // INI indirection: the program the INI file names starts, with its arguments.
    box.shown.clear();
    writeTool(dir_ / "bin" / "tool.sh");
    std::ofstream(dir_ / "Fibu.ini") << "[Paths]\r\nExe=" << lib(dir_ / "bin" / "tool.sh") << "\r\nArgs=one \"two three\"\r\n";
    EXPECT_TRUE(gave(Vnt_AppModLoad(70L), false, 1)) << "the indirection clears the function: the default is needed";
    Vnt_AppModSetFunctionName("ModMain");
    ASSERT_TRUE(Vnt_AppModLoad(70L)) << lastBox();
    EXPECT_EQ(written(dir_ / "bin" / "out.txt"), "one two three\n");
    // Without a path the load fails on a name that does not exist.
    EXPECT_TRUE(gave(Vnt_AppModLoad(71L), false, 2));
    EXPECT_TRUE(said("__VntXyzDummy__"));
    for (long bad : {72L, 73L}) {  // internal errors 15 and 16, then the failure
        box.shown.clear();
        EXPECT_TRUE(gave(Vnt_AppModLoad(bad), false, 2)) << bad;
    }
}

TEST_F(AppModule, HelpModulesOpenTheHelpPort) {
    table({"5, hlpFibu.hlp, Help, Buchen, 0", "57667, hlpFibu.hlp, Finder, , 0", "12, hlpFibu.hlp, Topic, , 0",
           "13, hlp, Own, , 0"});
    struct Row { long module; VntHelpCommand command; long context; const char* key; };
    for (const Row& r : {Row{5, VntHelpCommand::PartialKey, 0, "Buchen"}, {57667, VntHelpCommand::Contents, 0, ""},
                         {12, VntHelpCommand::Context, 12, ""}}) {
        help.requests.clear();
        EXPECT_TRUE(Vnt_AppModLoad(r.module)) << r.module;
        ASSERT_EQ(help.requests.size(), 1u);
        const auto& q = help.requests[0];
        EXPECT_EQ(std::tuple(q.file, q.command, q.context, q.key),
                  std::tuple(lib(dir_ / "Fibu.html"), r.command, r.context, std::string(r.key))) << r.module;
    }
    EXPECT_TRUE(Vnt_AppModLoad(13L)) << "the program's own help, with a main window";
    win.SetMainWindow(nullptr);
    help.answer = false;
    EXPECT_FALSE(Vnt_AppModLoad(13L) || Vnt_AppModLoad(5L));
    EXPECT_TRUE(said("could not be loaded"));
}

TEST_F(AppModule, VersionCheckComparesHighAndLowApart) {
    struct Row { unsigned long high, low; bool ok; };
    for (const Row& r : {Row{3, 4, true}, {0, 0, true}, {2, 5, false}, {3, 5, false}, {4, 0, false}}) {
        box.shown.clear();
        EXPECT_TRUE(gave(Vnt_AppModCheckVer("ModVer.dll", r.high, r.low), r.ok, !r.ok)) << r.high << "." << r.low;
    }
    EXPECT_TRUE(said("\"ModVer.dll\" is out of date"));
    box.shown.clear();
    EXPECT_TRUE(gave(Vnt_AppModCheckVer("ModPlain.dll", 0, 0), false, 0)) << "no version block: no message";
    EXPECT_TRUE(gave(Vnt_AppModCheckVer("ModNoEntry.dll", 0, 0), false, 1));  // 48 bytes: internal error 13
    EXPECT_TRUE(gave(Vnt_AppModCheckVer("Missing.dll", 0, 0), false, 2)) << "unreadable counts as failed";
    // Without a main window an outdated module ends the program.
    win.SetMainWindow(nullptr);
    EXPECT_EXIT(Vnt_AppModCheckVer(lib(dir_ / "ModVer.dll").c_str(), 9, 0), ::testing::ExitedWithCode(0), "");
}

}  // namespace
