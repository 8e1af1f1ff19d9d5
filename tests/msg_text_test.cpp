// Message handles and texts: reference counts and the init counter, the
// library search, text fetching and control texts, the ring, formatting,
// the last message ID, the common show path, titles, the application
// library, resource strings and the switch counters. Boxes are answered by
// the scripted presenter, which also records internal error reports.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "host/host.h"
#include "msg/msg_state.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
#include "vtmtool/vtm_writer.h"

namespace fs = std::filesystem;
using vnt::msg::textState;

namespace {

// System library: wholly preloaded, with the texts the reports use.
const vtmtool::Library kSys{"VNT60LIB", 60, 1, -1,
    {{40000, "System forty thousand"}, {40001, "~Sys~tem"}, {62001, "%s\nSource %s, line %d"},
     {62002, "!Internal error %d: %s"}, {62003, "check failed"}}};

// Application texts: 1 and 2 preloaded, the rest read from the file.
const vtmtool::Library kApp{"APP", 60, 0, 2,
    {{1, "Preloaded one"}, {2, "~Pre~loaded"}, {3, "File three"}, {4, "~&Word"}, {5, "~One~Two"},
     {6, "%d items in %s"}, {7, "%s"}, {8, ";comment"}, {9, "File nine"}, {10, "~"}}};

std::string libPath(const fs::path& p) {
    VNT_PATH b{};
    EXPECT_TRUE(Vnt_LfnFromHost(b, p.c_str())) << p;
    return b;
}

void writeLib(const fs::path& file, const vtmtool::Library& lib) {
    fs::create_directories(file.parent_path());
    vtmtool::writeFileAtomic(file, vtmtool::writeLibrary(lib));
}

vtmtool::Library named(std::string name, std::string text1) {
    return {std::move(name), 60, 0, -1, {{1, std::move(text1)}}};
}

long refs(VNT_MSG lib) {
    VNT_VTM_INFO i{};
    return Vnt_VtmInfo(lib, &i) ? i.refCount : 0;
}

// Counts the passes of pending events the message path asks for.
class CountingWindows : public VntWindowPort {
public:
    long Send(VNT_HWND, unsigned, uintptr_t, intptr_t) override { return 0; }
    bool Post(VNT_HWND, unsigned, uintptr_t, intptr_t) override { return false; }
    bool IsWindow(VNT_HWND) override { return false; }
    void Destroy(VNT_HWND) override {}
    void Activate(VNT_HWND) override {}
    VNT_HWND Focus() override { return nullptr; }
    void SetFocus(VNT_HWND) override {}
    VNT_HWND ActiveWindow() override { return nullptr; }
    VNT_HWND MainWindow() override { return nullptr; }
    void PumpEvents() override { ++pumps; }
    void BusyCursor(bool) override {}
    void Beep() override {}
    bool SetClipboardText(const std::string&) override { return true; }
    std::string ClipboardText() override { return {}; }
    int pumps = 0;
};

VNT_RESP msgVa(VNT_MSG h, VntMsgRef ref, long help, int def, ...) {
    va_list ap;
    va_start(ap, def);
    VNT_RESP r = Vnt__Msg(h, ref, ap, help, def);
    va_end(ap);
    return r;
}

class MsgTextTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directories(dir_);
        resetAll();
        Vnt_UiSetPresenter(&box_);
        Vnt_UiSetWindow(&win_);
        writeLib(dir_ / "sys" / "VNT60LIB.VTM", kSys);
        writeLib(dir_ / "APP.VTM", kApp);
        ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, libPath(dir_ / "sys" / "VNT60LIB.VTM").c_str()));
    }
    void TearDown() override {
        resetAll();
        Vnt_UiSetPresenter(nullptr);
        Vnt_UiSetWindow(nullptr);
        fs::remove_all(dir_);
    }
    static void resetAll() {
        vnt::host::reset(), vnt::vtm::reset();
        vnt::msg::resetTexts(), vnt::msg::resetBox(), vnt::msg::resetReports();
    }
    VNT_MSG openApp() { return Vnt_MsgHInit(nullptr, libPath(dir_ / "APP").c_str()); }
    // Texts of the boxes shown since the last call ("E" before internal error reports).
    std::vector<std::string> shown() {
        std::vector<std::string> out;
        for (const VntBoxModel& m : box_.shown) out.push_back((m.internalError ? "E " : "") + m.text);
        box_.shown.clear();
        return out;
    }
    static std::string internal(int code) {
        return "E Internal error " + std::to_string(code) + ": check failed";
    }
    const fs::path dir_ = fs::temp_directory_path() / ("vanto_msgtext_" + std::to_string(std::random_device{}()));
    VntScriptedPresenter box_;
    CountingWindows win_;
};

// ---------------------------------------------------------------------------
// Handles
// ---------------------------------------------------------------------------

// The system handle is shared; a main library holds a system reference and
// counts twice; every term gives back what its init took.
TEST_F(MsgTextTest, HandleReferenceCounts) {
    VNT_MSG a = Vnt_MsgHInit(nullptr, nullptr);
    VNT_MSG b = Vnt_MsgHInit(nullptr, nullptr);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a, Vnt_VtmSystem());
    EXPECT_EQ(refs(a), 2);
    EXPECT_EQ(textState().initCount, 2);

    VNT_MSG app = openApp();
    VNT_MSG app2 = openApp();
    VNT_MSG seg = Vnt_MsgHInit(app, "NOSUCH");  // a plain library has no segments
    ASSERT_NE(app, nullptr);
    EXPECT_EQ(app, app2);
    EXPECT_EQ(seg, nullptr);
    EXPECT_EQ(refs(app), 2);
    EXPECT_EQ(refs(a), 4);
    EXPECT_EQ(textState().initCount, 6);

    Vnt_MsgHTerm(&app2);
    Vnt_MsgHTerm(&app);
    EXPECT_NE(app, nullptr);  // only the system handle is cleared
    EXPECT_EQ(refs(a), 2);
    EXPECT_EQ(textState().initCount, 2);
    EXPECT_EQ(vnt::vtm::liveCount(), 1u);

    Vnt_MsgHTerm(&b);
    EXPECT_EQ(b, nullptr);
    EXPECT_EQ(Vnt_VtmSystem(), a);
    Vnt_MsgHTerm(&a);
    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(Vnt_VtmSystem(), nullptr);
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
    EXPECT_EQ(textState().initCount, 0);

    VNT_MSG none = nullptr;
    Vnt_MsgHTerm(&none);  // nothing to give back
    Vnt_MsgHTerm(nullptr);
    EXPECT_EQ(shown(), std::vector<std::string>{});
}

// Segments count once and keep their container open.
TEST_F(MsgTextTest, SegmentHandles) {
    vtmtool::writeFileAtomic(dir_ / "BOX.VTM", vtmtool::writeContainer({"BOX", 60, {named("APPMSG", "seg one")}}));
    VNT_MSG box = Vnt_MsgHInit(nullptr, libPath(dir_ / "BOX.VTM").c_str());
    VNT_MSG seg = Vnt_MsgHInit(box, "Z:\\any\\appmsg.vtm");
    ASSERT_NE(seg, nullptr);
    EXPECT_STREQ(Vnt_MsgHLoad(seg, 1), "seg one");
    EXPECT_EQ(textState().initCount, 3);
    Vnt_MsgHTerm(&seg);
    EXPECT_EQ(textState().initCount, 2);
    Vnt_MsgHTerm(&box);  // and with it the system library
    EXPECT_EQ(textState().initCount, 0);
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
    EXPECT_EQ(shown(), std::vector<std::string>{});
}

// The init counter against the system library's references, and names
// given as numbers.
TEST_F(MsgTextTest, InitCounterErrors) {
    struct Row {
        const char* name;
        bool mainLib;         // term a main library, else the system handle
        long counterDelta;    // added to the init counter before the term
        bool loseSystem;      // the system library lost behind the counter's back
        int error;            // internal error reported, 0 none
        bool termDone;        // the handle's reference was given back
    };
    const Row rows[] = {
        {"system_balanced", false, 0, false, 0, true},
        {"system_counter_low", false, -1, false, 998, true},
        {"system_counter_high", false, +2, false, 996, false},
        {"main_balanced", true, 0, false, 0, true},
        {"main_counter_low", true, -1, false, 998, true},
        {"main_counter_high", true, +1, false, 996, false},
        {"main_system_gone", true, 0, true, 997, true},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        resetAll();
        ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, libPath(dir_ / "sys" / "VNT60LIB.VTM").c_str()));
        VNT_MSG h = r.mainLib ? openApp() : Vnt_MsgHInit(nullptr, nullptr);
        ASSERT_NE(h, nullptr);
        textState().initCount += r.counterDelta;
        if (r.loseSystem) textState().sys = nullptr;
        const long before = refs(h);
        Vnt_MsgHTerm(&h);
        std::vector<std::string> want;
        if (r.error) want.push_back(internal(r.error));
        EXPECT_EQ(shown(), want);
        const long after = vnt::vtm::state().live.count(h) ? refs(h) : 0;
        EXPECT_EQ(after, r.termDone ? before - 1 : before);
    }

    // The reports need the system library: one handle holds it.
    resetAll();
    ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, libPath(dir_ / "sys" / "VNT60LIB.VTM").c_str()));
    VNT_MSG sys = Vnt_MsgHInit(nullptr, nullptr);
    EXPECT_EQ(Vnt_MsgHInit(nullptr, reinterpret_cast<const char*>(std::uintptr_t(5))), nullptr);
    EXPECT_EQ(shown(), std::vector<std::string>{internal(1000)});
    EXPECT_EQ(textState().initCount, 1);
    EXPECT_EQ(vnt::vtm::liveCount(), 1u);

    // A handle already closed is refused, not used.
    VNT_MSG app = openApp(), stale = app;
    Vnt_MsgHTerm(&app);
    Vnt_MsgHTerm(&stale);
    EXPECT_STREQ(Vnt_MsgHLoad(stale, 40000), "System forty thousand");  // the system library instead
    EXPECT_EQ(shown(), (std::vector<std::string>{internal(999), internal(999)}));
    EXPECT_EQ(textState().initCount, 1);
    Vnt_MsgHTerm(&sys);
}

// Where a library is found: as named, then the program directory and two and
// four levels above it; never one or three levels up; the system library
// only as named.
TEST_F(MsgTextTest, LibrarySearchOrder) {
    // Program in dir_/a/b/c/d; the current directory dir_/cwd.
    const fs::path prog = dir_ / "a" / "b" / "c" / "d";
    enum Where { CWD = 1, PROG = 2, UP1 = 4, UP2 = 8, UP3 = 16, UP4 = 32 };
    const std::pair<Where, fs::path> places[] = {{CWD, dir_ / "cwd"}, {PROG, prog},
        {UP1, dir_ / "a" / "b" / "c"}, {UP2, dir_ / "a" / "b"}, {UP3, dir_ / "a"}, {UP4, dir_}};
    struct Row {
        const char* name;
        int placed;          // where MYLIB.VTM lies (its text names the place)
        const char* ask;     // the name asked for
        const char* found;   // text 1 of the library opened, null: not found
    };
    const Row rows[] = {
        {"current_dir_first", CWD | PROG | UP2, "MYLIB", "CWD"},
        {"program_dir", PROG | UP2 | UP4, "MYLIB", "PROG"},
        {"two_up", UP1 | UP2 | UP3 | UP4, "MYLIB", "UP2"},
        {"four_up", UP1 | UP3 | UP4, "MYLIB", "UP4"},
        {"one_or_three_up_not_searched", UP1 | UP3, "MYLIB", nullptr},
        {"extension_given", PROG, "MYLIB.VTM", "PROG"},
        {"other_case", PROG, "mylib.vtm", "PROG"},
        {"other_extension", PROG, "MYLIB.MSG", nullptr},
        {"directory_dropped_in_search", PROG, "Z:\\nowhere\\MYLIB", "PROG"},
        {"no_name", PROG, "", nullptr},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        resetAll();
        fs::remove_all(dir_ / "a"), fs::remove_all(dir_ / "cwd"), fs::remove(dir_ / "MYLIB.VTM");
        fs::create_directories(prog), fs::create_directories(dir_ / "cwd");
        for (const auto& [bit, path] : places) {
            const char* word = bit == CWD ? "CWD" : bit == PROG ? "PROG" : bit == UP1 ? "UP1"
                             : bit == UP2 ? "UP2" : bit == UP3 ? "UP3" : "UP4";
            if (r.placed & bit) writeLib(path / "MYLIB.VTM", named("MYLIB", word));
        }
        vnt::host::setProgramFile(libPath(prog / "prog"));
        ASSERT_TRUE(vnt::host::setCurDir(libPath(dir_ / "cwd")));
        ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, libPath(dir_ / "sys" / "VNT60LIB.VTM").c_str()));
        VNT_MSG h = Vnt_MsgHInit(nullptr, r.ask);
        if (r.found) {
            ASSERT_NE(h, nullptr);
            EXPECT_STREQ(Vnt_MsgHLoad(h, 1), r.found);
            EXPECT_EQ(shown(), std::vector<std::string>{});
        } else {
            EXPECT_EQ(h, nullptr);
            const std::string name = *r.ask ? r.ask : "(unknown)";
            EXPECT_EQ(shown(), std::vector<std::string>{"Could not find Message Library \"" + name + "\""});
            EXPECT_EQ(textState().initCount, 0);  // the system reference went back
            EXPECT_EQ(refs(Vnt_VtmSystem()), 0);
        }
    }

    // The system library is not looked for in the program directory; the
    // report names it as set, and a raised "not found" counter silences it.
    resetAll();
    writeLib(prog / "VNT60LIB.VTM", kSys);
    vnt::host::setProgramFile(libPath(prog / "prog"));
    ASSERT_TRUE(vnt::host::setCurDir(libPath(dir_ / "cwd")));
    EXPECT_EQ(Vnt_MsgHInit(nullptr, nullptr), nullptr);
    EXPECT_EQ(Vnt_MsgHInit(nullptr, "MYLIB"), nullptr);  // no main library without it
    EXPECT_EQ(shown(), (std::vector<std::string>{"Could not find Message Library \"VNT60LIB\"",
                                                 "Could not find Message Library \"VNT60LIB\""}));
    Vnt__MsgExtCheck(0, 2, 2);
    EXPECT_EQ(Vnt_MsgHInit(nullptr, nullptr), nullptr);
    EXPECT_EQ(shown(), std::vector<std::string>{});
    Vnt__MsgExtCheck(1, 2, 2);
    ASSERT_TRUE(vnt::host::setCurDir(libPath(prog)));
    EXPECT_NE(Vnt_MsgHInit(nullptr, nullptr), nullptr);  // found as named, in the current directory
}

// ---------------------------------------------------------------------------
// Texts
// ---------------------------------------------------------------------------

// Copies are cut at size - 1; a preloaded text is returned in place.
TEST_F(MsgTextTest, GetIntoCallerBuffer) {
    VNT_MSG h = openApp();
    ASSERT_NE(h, nullptr);
    struct Row {
        const char* name; long id; unsigned size; const char* result; const char* inBuf; bool resultIsBuf;
    };
    const Row rows[] = {
        {"preloaded_size_1", 1, 1, "Preloaded one", "", false},
        {"preloaded_cut", 1, 5, "Preloaded one", "Prel", false},
        {"file_size_1", 3, 1, "", "", true},
        {"file_cut", 3, 5, "File", "File", true},
        {"file_whole", 3, 64, "File three", "File three", true},
        {"size_0_writes_nothing", 3, 0, "zzz", "zzz", true},
        {"system_id_through_app", 40000, 7, "System forty thousand", "System", false},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        char buf[64] = "zzz";
        const char* got = Vnt_MsgHGet(h, r.id, buf, r.size);
        EXPECT_STREQ(got, r.result);
        EXPECT_STREQ(buf, r.inBuf);
        EXPECT_EQ(got == buf, r.resultIsBuf);
    }
    // A preloaded text is the same memory each time; a file text a ring buffer.
    EXPECT_EQ(Vnt_MsgHLoad(h, 1), Vnt_MsgHLoad(h, 1));
    EXPECT_FALSE(vnt::msg::inRing(Vnt_MsgHLoad(h, 1)));
    EXPECT_TRUE(vnt::msg::inRing(Vnt_MsgHLoad(h, 3)));
    EXPECT_EQ(shown(), std::vector<std::string>{});

    // A null buffer is reported; the text still comes, from the ring.
    const char* t = Vnt_MsgHGet(h, 3, nullptr, 4);
    EXPECT_STREQ(t, "File three");
    EXPECT_TRUE(vnt::msg::inRing(t));
    EXPECT_EQ(shown(), std::vector<std::string>{"E Vnt_MsgHGet(): <buf> must not be NULL!"});
}

// Four ring buffers used in turn: the fifth text overwrites the first.
TEST_F(MsgTextTest, RingOfFour) {
    VNT_MSG h = openApp();
    const VntMsgRef refs[] = {3, "lit two", 9, "lit four", "lit five"};
    const char* got[5];
    for (int i = 0; i < 5; ++i) got[i] = Vnt_MsgHLoad(h, refs[i]);
    EXPECT_EQ(got[4], got[0]);
    EXPECT_STREQ(got[0], "lit five");
    EXPECT_STREQ(got[1], "lit two");
    EXPECT_STREQ(got[2], "File nine");
    EXPECT_STREQ(got[3], "lit four");
    for (int i = 1; i < 4; ++i) EXPECT_NE(got[i], got[0]);
}

// A leading '~' goes and each further '~' becomes '&', wherever the text
// lies; fetching it again gives the same.
TEST_F(MsgTextTest, ControlTexts) {
    VNT_MSG h = openApp();
    struct Row { const char* name; VntMsgRef ref; const char* want; };
    const Row rows[] = {
        {"preloaded", 2, "Pre&loaded"},
        {"tilde_ampersand_word", 4, "&Word"},
        {"two_words", 5, "One&Two"},
        {"tilde_alone", 10, ""},
        {"system_text", 40001, "Sys&tem"},
        {"literal", "~A~B~C", "A&B&C"},
        {"not_leading", "A~B", "A~B"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        EXPECT_STREQ(Vnt_MsgHLoad(h, r.ref), r.want);
        EXPECT_STREQ(Vnt_MsgHLoad(h, r.ref), r.want);
        char buf[8];
        Vnt_MsgHGet(h, r.ref, buf, sizeof buf);
        EXPECT_EQ(std::string(buf), std::string(r.want).substr(0, 7));
    }
}

// printf rules into the ring or the caller's buffer, at most 1023
// characters; arguments may lie in the ring.
TEST_F(MsgTextTest, Formatting) {
    VNT_MSG h = openApp();
    EXPECT_STREQ(Vnt_MsgHSprintf(h, 6, 3, "stock"), "3 items in stock");
    EXPECT_STREQ(Vnt_MsgHSprintf(h, "%05.1f|%-3s|%x", 2.25, "a", 255u), "002.2|a  |ff");

    char buf[1024] = "";
    EXPECT_EQ(Vnt_MsgH_sprintf(h, 6, buf, 12, "the box"), 19u);
    EXPECT_STREQ(buf, "12 items in the box");
    const std::uintptr_t ring = Vnt_MsgH_sprintf(h, 6, nullptr, 1, "x");
    EXPECT_TRUE(vnt::msg::inRing(reinterpret_cast<const char*>(ring)));
    EXPECT_STREQ(reinterpret_cast<const char*>(ring), "1 items in x");
    // The text itself as the buffer: formatted into the ring instead.
    char own[16] = "%s!";
    const std::uintptr_t r2 = Vnt_MsgH_sprintf(h, own, own, "hey");
    EXPECT_STREQ(reinterpret_cast<const char*>(r2), "hey!");
    EXPECT_STREQ(own, "%s!");

    const std::string big(3000, 'a');
    EXPECT_EQ(std::strlen(Vnt_MsgHSprintf(h, 7, big.c_str())), 1023u);
    EXPECT_EQ(Vnt_MsgH_sprintf(h, 7, buf, big.c_str()), 1023u);

    // Three ring texts as arguments while the format and the result take two
    // more buffers: the oldest argument's buffer is reused only afterwards.
    const char* a = Vnt_MsgHLoad(h, 3);
    const char* b = Vnt_MsgHLoad(h, 9);
    const char* c = Vnt_MsgHLoad(h, "lit");
    EXPECT_STREQ(Vnt_MsgHSprintf(h, "%s+%s+%s", a, b, c), "File three+File nine+lit");
}

// The last message ID: explicit IDs, iteration (comments skipped), 0 at the
// end and after an iteration that failed.
TEST_F(MsgTextTest, LastMessageId) {
    VNT_MSG h = openApp();
    struct Row { const char* name; VntMsgRef ref; const char* text; long id; };
    const Row rows[] = {
        {"explicit", 6, "%d items in %s", 6},
        {"next_after_explicit", -1, "%s", 7},
        {"comment_skipped", -1, "File nine", 9},
        {"control_text", -1, "", 10},
        {"end", -1, "", 0},
        {"first", 0, "Preloaded one", 1},
        {"system_id", 40000, "System forty thousand", 40000},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        char buf[64];
        EXPECT_STREQ(Vnt_MsgHGet(h, r.ref, buf, sizeof buf), r.text);
        EXPECT_EQ(Vnt_MsgGetID(), r.id);
    }

    // A text position outside the text area: the iteration's read fails.
    std::vector<unsigned char> bytes = vtmtool::writeLibrary({"BAD", 60, 0, 1, {{1, "ok"}, {2, "broken"}}});
    bytes[204 + 8] = 0xFF, bytes[204 + 9] = 0xFF;
    vtmtool::writeFileAtomic(dir_ / "BAD.VTM", bytes);
    VNT_MSG bad = Vnt_MsgHInit(nullptr, libPath(dir_ / "BAD.VTM").c_str());
    EXPECT_STREQ(Vnt_MsgHLoad(bad, 0), "ok");
    EXPECT_EQ(Vnt_MsgGetID(), 1);
    EXPECT_STREQ(Vnt_MsgHLoad(bad, -1), "!Invalid Offset in Message File!");
    EXPECT_EQ(Vnt_MsgGetID(), 0);
    Vnt_MsgHLoad(bad, 2);
    EXPECT_EQ(Vnt_MsgGetID(), 2);  // an explicit ID stays, even when its read failed
}

// ---------------------------------------------------------------------------
// Showing
// ---------------------------------------------------------------------------

// An empty formatted text answers Cancel without a box; any other is shown
// once, the answer passed on, and one pass of events follows.
TEST_F(MsgTextTest, ShowPath) {
    static VNT_MSG h;
    h = openApp();
    struct Row { const char* name; VNT_RESP (*show)(); int button; VNT_RESP want; const char* text; };
    const Row rows[] = {
        {"empty_literal", [] { return Vnt_MsgH(h, ""); }, VNT_BTN_OK, 2, nullptr},
        {"formats_to_empty", [] { return Vnt_MsgH(h, 7, ""); }, VNT_BTN_OK, 2, nullptr},
        {"control_text_empty", [] { return Vnt_MsgH(h, 10); }, VNT_BTN_OK, 2, nullptr},
        {"va_list_path_empty", [] { return msgVa(h, "", 0, -1); }, VNT_BTN_OK, 2, nullptr},
        {"question_answered_no", [] { return Vnt_MsgH(h, "?ynReally %s?", "go"); }, VNT_BTN_NO, 7, "Really go?"},
        {"message_formatted", [] { return Vnt_MsgH(h, 6, 0, "boxes"); }, VNT_BTN_OK, 1, "0 items in boxes"},
        {"system_message", [] { return Vnt_MsgH(h, 40000); }, VNT_BTN_OK, 1, "System forty thousand"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        win_.pumps = 0;
        box_.answers.assign(1, VntBoxAnswer{r.button, false});
        EXPECT_EQ(r.show(), r.want);
        EXPECT_EQ(shown(), r.text ? std::vector<std::string>{r.text} : std::vector<std::string>{});
        EXPECT_EQ(win_.pumps, r.text ? 1 : 0);
    }
    // The help context reaches the box as its Help button.
    box_.answers.clear();
    EXPECT_EQ(Vnt_MsgHHelp(h, 55, "-okHelp me"), 1);
    ASSERT_EQ(box_.shown.size(), 1u);
    bool help = false;
    for (const VntBoxButton& b : box_.shown[0].buttons) help = help || b.id == VNT_BTN_HELP;
    EXPECT_TRUE(help);
}

// ---------------------------------------------------------------------------
// Titles and the interface
// ---------------------------------------------------------------------------

TEST_F(MsgTextTest, Titles) {
    resetAll();
    static const char mod = 0;
    const VNT_HINSTANCE module = reinterpret_cast<VNT_HINSTANCE>(const_cast<char*>(&mod));
    const std::string long130(130, 'T');
    const VNT_RES_STRING table[] = {{77, "Fibu"}, {78, long130.c_str()}};
    Vnt_ResRegister(module, table, 2);
    ASSERT_TRUE(Vnt_MsgItfInit(module, 77));
    EXPECT_FALSE(Vnt_MsgItfInit(module, 78));  // already started: nothing changes
    EXPECT_STREQ(Vnt_MsgGetTitle(nullptr, 0), "Fibu");

    EXPECT_STREQ(Vnt_MsgSetTitle("Other"), "Fibu");
    char buf[4];
    EXPECT_STREQ(Vnt_MsgGetTitle(buf, sizeof buf), "Oth");
    EXPECT_STREQ(Vnt_MsgSetTitle(long130.c_str()), "Other");
    EXPECT_EQ(std::strlen(vnt::msg::boxTitle()), 119u);
    EXPECT_EQ(std::strlen(Vnt_MsgSetTitle(nullptr)), 119u);
    EXPECT_STREQ(Vnt_MsgGetTitle(nullptr, 0), "Fibu");  // the default again
    // The previous title set back through the pointer it came in.
    Vnt_MsgSetTitle("Again");
    EXPECT_STREQ(Vnt_MsgSetTitle(Vnt_MsgSetTitle("Tmp")), "Tmp");
    EXPECT_STREQ(Vnt_MsgGetTitle(nullptr, 0), "Again");

    Vnt_MsgSetTitle(nullptr);
    Vnt_MsgItfTerm();
    ASSERT_TRUE(Vnt_MsgItfInit(module, 78));
    EXPECT_EQ(std::strlen(Vnt_MsgGetTitle(nullptr, 0)), 119u);
}

// ---------------------------------------------------------------------------
// The application library
// ---------------------------------------------------------------------------

TEST_F(MsgTextTest, ApplicationLibrary) {
    const fs::path prog = dir_ / "prog";
    vtmtool::Container box{"FIBU", 60, {named("APPMSG", "App one"), named("OTHER", "Other one")}};
    box.segments[0].messages.push_back({2, "App two"});
    fs::create_directories(prog);
    vtmtool::writeFileAtomic(prog / "FIBU.VTM", vtmtool::writeContainer(box));
    vnt::host::setProgramFile(libPath(prog / "Fibu.exe"));

    VNT_MSG h = Vnt_AppMsgInit();
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(h, Vnt_AppMsgGetHandle());
    EXPECT_EQ(Vnt_AppMsgInit(), h);  // reused
    EXPECT_STREQ(Vnt_AppMsgLoad(1), "App one");
    EXPECT_STREQ(Vnt_AppMsgLoad(40000), "System forty thousand");
    char buf[8];
    EXPECT_STREQ(Vnt_AppMsgGet(2, buf, 4), "App two");  // preloaded: in place
    EXPECT_STREQ(buf, "App");
    EXPECT_EQ(shown(), std::vector<std::string>{});
    EXPECT_EQ(Vnt_AppMsgGet(2, nullptr, 4), nullptr);
    EXPECT_EQ(shown(), std::vector<std::string>{internal(500)});
    EXPECT_EQ(Vnt_AppMsg("-ok%s %d", "n", 5), 1);
    EXPECT_EQ(shown(), std::vector<std::string>{"n 5"});

    VNT_MSG other = Vnt_AppMsgInit("Z:\\x\\other.vtm");
    ASSERT_NE(other, nullptr);
    EXPECT_STREQ(Vnt_MsgHLoad(other, 1), "Other one");
    Vnt_AppMsgTerm(&other);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(Vnt_AppMsgGetHandle(), nullptr);
    // The application library and the system library stay open.
    EXPECT_EQ(vnt::vtm::liveCount(), 2u);
    EXPECT_EQ(textState().initCount, 2);
    VNT_MSG appmsg = Vnt_AppMsgInit();
    EXPECT_EQ(appmsg, Vnt_AppMsgGetHandle());
    EXPECT_NE(appmsg, nullptr);
    Vnt_AppMsgTerm(&appmsg);  // "APPMSG" itself: closed once
    EXPECT_EQ(textState().initCount, 2);
    EXPECT_EQ(shown(), std::vector<std::string>{});

    // A name set explicitly; no name at all is internal error 1.
    resetAll();
    Vnt_MsgItfInit(nullptr, 0, libPath(dir_ / "sys" / "VNT60LIB.VTM").c_str());
    Vnt_AppMsgSetName(libPath(prog / "FIBU").c_str());
    vnt::host::setProgramFile("Z:\\");
    EXPECT_NE(Vnt_AppMsgInit(), nullptr);
    resetAll();
    Vnt_MsgItfInit(nullptr, 0, libPath(dir_ / "sys" / "VNT60LIB.VTM").c_str());
    VNT_MSG sys = Vnt_MsgHInit(nullptr, nullptr);  // for the report's texts
    vnt::host::setProgramFile("Z:\\");
    EXPECT_EQ(Vnt_AppMsgInit(), nullptr);
    EXPECT_EQ(shown(), std::vector<std::string>{internal(1)});
    Vnt_MsgHTerm(&sys);
}

// ---------------------------------------------------------------------------
// Resource strings
// ---------------------------------------------------------------------------

TEST_F(MsgTextTest, ResourceStrings) {
    static const char mod = 0;
    const VNT_HINSTANCE module = reinterpret_cast<VNT_HINSTANCE>(const_cast<char*>(&mod));
    const VNT_RES_STRING table[] = {{10, "%d apples"}, {11, "Plain"}};
    Vnt_ResRegister(module, table, 2);
    const char* const kMissing = "!Internal Error - did not find resource string.";

    VntRes res;
    EXPECT_STREQ(res.buf[0], "");
    EXPECT_STREQ(res.title(), "");
    struct Row { const char* name; VNT_HINSTANCE inst; const char* (*call)(VntRes&); const char* want; };
    const Row rows[] = {
        {"registered_formatted", module, [](VntRes& r) -> const char* { return r.str(10, 4); }, "4 apples"},
        {"literal_formatted", module, [](VntRes& r) -> const char* { return r.str("%d-%s", 4, "pear"); }, "4-pear"},
        {"missing_id", module, [](VntRes& r) -> const char* { return r.str(12); }, kMissing},
        {"no_instance", nullptr, [](VntRes& r) -> const char* { return r.str(11); }, kMissing},
        // ID 0 takes the text from the first argument, 3 characters of it (kept).
        {"id_0_three_characters", module, [](VntRes& r) -> const char* { return r.str(0, "Hello"); }, "Hel"},
        {"library_string", Vnt_ResLibInstance(), [](VntRes& r) -> const char* { return r.str(30061, "x.cpp", 4); },
         "Interner Fehler! (x.cpp / 4). Bitte schlie\xDF" "en Sie das Programm und starten Sie es neu."},
        {"literal_cut_at_1023", module, [](VntRes& r) -> const char* { return r.str(std::string(1500, 'q').c_str()); },
         nullptr},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        res.set_inst(r.inst);
        const char* got = r.call(res);
        if (r.want) EXPECT_STREQ(got, r.want);
        else EXPECT_EQ(std::string(got), std::string(1023, 'q'));
    }

    // Four public buffers in turn; str_get and str_cpy cut at size - 1.
    res.setup(module, nullptr);
    char* first = res.str_load(11);
    for (int i = 0; i < 3; ++i) EXPECT_NE(res.str_load(11), first);
    EXPECT_EQ(res.str_load(10), first);
    EXPECT_STREQ(first, "%d apples");
    char out[5] = "zzzz";
    EXPECT_EQ(res.str_get(10, out, sizeof out, 12), 4u);
    EXPECT_STREQ(out, "12 a");
    EXPECT_EQ(res.str_cpy(out, 0), 0u);
    EXPECT_EQ(res.str_cpy(out, 3), 2u);
    EXPECT_STREQ(out, "12");
    EXPECT_STREQ(res.str_load(VntMsgRef(0)), kMissing);  // no argument to take a text from

    const std::string long200(200, 'w');
    res.set_title(long200.c_str());
    EXPECT_EQ(std::strlen(res.title()), 119u);
    res.set_title(11);
    EXPECT_STREQ(res.title(), "Plain");
    res.set_title(static_cast<const char*>(nullptr));
    EXPECT_STREQ(res.title(), "");

    // The library's own strings in both languages; tables are replaced.
    char buf[300];
    Vnt_ResSetLanguage("ENU");
    EXPECT_TRUE(Vnt_ResLoadString(Vnt_ResLibInstance(), 30061, buf, sizeof buf));
    EXPECT_STREQ(buf, "Internal Error! (%s / %d). Please close and restart the application.");
    EXPECT_TRUE(Vnt_ResLoadString(Vnt_ResLibInstance(), 30062, buf, 17));
    EXPECT_STREQ(buf, "Bei wiederholtem");
    Vnt_ResSetLanguage("DEU");
    EXPECT_TRUE(Vnt_ResLoadString(Vnt_ResLibInstance(), 30061, buf, 17));
    EXPECT_STREQ(buf, "Interner Fehler!");
    EXPECT_FALSE(Vnt_ResLoadString(Vnt_ResLibInstance(), 30063, buf, sizeof buf));
    EXPECT_STREQ(buf, "");
    const VNT_RES_STRING other[] = {{11, "New"}};
    Vnt_ResRegister(module, other, 1);
    EXPECT_FALSE(Vnt_ResLoadString(module, 10, buf, sizeof buf));
    EXPECT_TRUE(Vnt_ResLoadString(module, 11, buf, sizeof buf));
    EXPECT_STREQ(buf, "New");
}

// ---------------------------------------------------------------------------
// Switch counters
// ---------------------------------------------------------------------------

TEST_F(MsgTextTest, ExtCheckCounters) {
    struct Row { const char* name; int a, b, c; int notFound, second, third, noShare; };
    // Each row applies to the state the rows before it left.
    const Row rows[] = {
        {"raise_all", 0, 0, 1, 1, 1, 1, 1},
        {"lower_all_keeps_third", 1, 1, 0, 0, 0, 1, 0},  // c = 0 does not lower the third (kept)
        {"b_0_lowers_third", 2, 0, 0, 0, 1, 0, 0},
        {"not_below_zero", 1, 2, 0, 0, 1, 0, 0},
        {"b_1_lowers_second", 2, 1, 2, 0, 0, 0, 0},
        {"b_1_lowers_below_zero", 2, 1, 2, 0, -1, 0, 0},
        {"c_1_raises_third_with_b_0", 2, 0, 1, 0, 0, 1, 1},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        Vnt__MsgExtCheck(r.a, r.b, r.c);
        EXPECT_EQ(Vnt__MsgExtCounter(0), r.notFound);
        EXPECT_EQ(Vnt__MsgExtCounter(1), r.second);
        EXPECT_EQ(Vnt__MsgExtCounter(2), r.third);
        EXPECT_EQ(Vnt_VtmNoShare(0), r.noShare);
    }
    EXPECT_EQ(Vnt__MsgExtCounter(3), 0);
}

}  // namespace
