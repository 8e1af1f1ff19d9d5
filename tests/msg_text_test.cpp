// Message handles and texts: reference counts and the init counter, the
// library search, fetching, control texts, the ring, formatting, the last
// message ID, the show path, titles, the application library, resource
// strings and the switch counters. Boxes are answered by the scripted
// presenter, which also records internal error reports.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/host.h"
#include "host/path.h"
#include "host/process.h"
#include "msg/msg_state.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"
#include "vtmtool/vtm_writer.h"
#include "scratch.h"
#include "support.h"

namespace fs = std::filesystem;
using vnt::msg::textState;
using V = std::vector<std::string>;

namespace {

// System library: wholly preloaded. Application texts: 1 and 2 preloaded.
const vtmtool::Library kSys{"VNT60LIB", 60, 1, -1,
    {{40000, "System forty thousand"}, {40001, "~Sys~tem"}, {62002, "!Internal error %d: %s"}, {62003, "check failed"}}};
const vtmtool::Library kApp{"APP", 60, 0, 2,
    {{1, "Preloaded one"}, {2, "~Pre~load~ed"}, {3, "File three"}, {4, "~&Word"}, {5, "~One~Two"},
     {6, "%d items in %s"}, {7, "%s"}, {8, ";comment"}, {9, "File nine"}, {10, "~"}}};

using vnt::test::libPath;
void writeLib(const fs::path& file, const vtmtool::Library& lib) {
    fs::create_directories(file.parent_path());
    vtmtool::writeFileAtomic(file, vtmtool::writeLibrary(lib));
}
vtmtool::Library named(std::string name, std::string text1) { return {std::move(name), 60, 0, -1, {{1, std::move(text1)}}}; }
std::string notFound(const std::string& name) { return "Could not find Message Library \"" + name + "\""; }
// The first line of each text: a "not found" report lists the places after it.
std::vector<std::string> firstLines(std::vector<std::string> texts) {
    for (std::string& t : texts) t = t.substr(0, t.find('\n'));
    return texts;
}
std::string internal(int code) { return "E Internal error " + std::to_string(code) + ": check failed"; }
const VNT_HINSTANCE kModule = reinterpret_cast<VNT_HINSTANCE>(std::uintptr_t(0x1000));  // registered strings only

class MsgTextTest : public ::testing::Test {
protected:
    void SetUp() override { writeLib(dir_ / "sys" / "VNT60LIB.VTM", kSys), writeLib(dir_ / "APP.VTM", kApp), restart(); }
    void TearDown() override {
        restart(false);
        fs::current_path(cwd_);  // setCurDir moved the process into dir_
        fs::remove_all(dir_);
    }
    // A fresh message system showing boxes to box_, started with the system
    // library of dir_/sys; or (start false) neither.
    void restart(bool start = true) {
        vnt::host::reset(), vnt::vtm::reset();
        vnt::msg::resetTexts(), vnt::msg::resetBox(), vnt::msg::resetReports();
        Vnt_UiSetPresenter(start ? &box_ : nullptr);
        if (start) Vnt_MsgItfInit(nullptr, 0, libPath(dir_ / "sys" / "VNT60LIB.VTM").c_str());
    }
    VNT_MSG openApp() { return Vnt_MsgHInit(nullptr, libPath(dir_ / "APP").c_str()); }
    // Texts of the boxes shown since the last call ("E " before internal error reports).
    V shown() {
        V out;
        for (const VntBoxModel& m : box_.shown) out.push_back((m.internalError ? "E " : "") + m.text);
        box_.shown.clear();
        return out;
    }
    const fs::path cwd_ = fs::current_path();
    const fs::path dir_ = vnt::test::scratchDir("vanto_msgtext_");
    VntScriptedPresenter box_;
};

// The system handle is shared; a main library holds a system reference and
// counts twice, a segment once; every term gives back what its init took.
TEST_F(MsgTextTest, HandleReferenceCounts) {
    VNT_MSG a = Vnt_MsgHInit(nullptr, nullptr), b = Vnt_MsgHInit(nullptr, nullptr), app = openApp();
    ASSERT_TRUE(a && app);
    EXPECT_TRUE(a == b && openApp() == app);
    EXPECT_EQ(std::tuple(a->refCount, textState().initCount), std::tuple(4, 6));
    Vnt_MsgHTerm(&app), Vnt_MsgHTerm(&app);  // a main library handle is not cleared
    vtmtool::writeFileAtomic(dir_ / "BOX.VTM", vtmtool::writeContainer({"BOX", 60, {named("APPMSG", "seg one")}}));
    VNT_MSG box = Vnt_MsgHInit(nullptr, libPath(dir_ / "BOX.VTM").c_str()), seg = Vnt_MsgHInit(box, "Z:\\any\\appmsg.vtm");
    EXPECT_TRUE(std::string(Vnt_MsgHLoad(seg, 1)) == "seg one" && textState().initCount == 5);
    Vnt_MsgHTerm(&seg), Vnt_MsgHTerm(&box), Vnt_MsgHTerm(&b), Vnt_MsgHTerm(nullptr), Vnt_MsgHTerm(&a);
    EXPECT_TRUE(a == nullptr && vnt::vtm::liveCount() == 0u && textState().initCount == 0);
}

// The init counter checked against the system library's references (delta:
// added to the counter before the term; termDone: a reference went back);
// names given as numbers; a pointer that is no open handle.
TEST_F(MsgTextTest, InitCounterErrors) {
    struct Row { const char* name; bool mainLib; long delta; bool loseSystem; int error; bool termDone; };
    const Row rows[] = {
        {"system_counter_low", false, -1, false, 998, true}, {"system_counter_high", false, +2, false, 996, false},
        {"main_balanced", true, 0, false, 0, true}, {"main_counter_low", true, -1, false, 998, true},
        {"main_counter_high", true, +1, false, 996, false}, {"main_system_gone", true, 0, true, 997, true}};
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        restart();
        VNT_MSG h = r.mainLib ? openApp() : Vnt_MsgHInit(nullptr, nullptr);
        ASSERT_NE(h, nullptr);
        textState().initCount += r.delta;
        if (r.loseSystem) textState().sys = nullptr;
        const long before = h->refCount;
        Vnt_MsgHTerm(&h);
        EXPECT_EQ(shown(), r.error ? V{internal(r.error)} : V{});
        EXPECT_EQ(vnt::vtm::state().live.count(h) ? h->refCount : 0, r.termDone ? before - 1 : before);
    }
    restart();
    VNT_MSG sys = Vnt_MsgHInit(nullptr, nullptr);  // the reports need the system library
    EXPECT_EQ(Vnt_MsgHInit(sys, reinterpret_cast<const char*>(std::uintptr_t(5))), nullptr);
    EXPECT_STREQ(Vnt_MsgHLoad(reinterpret_cast<VNT_MSG>(std::uintptr_t(64)), 40000), "System forty thousand");  // no handle
    EXPECT_TRUE(shown() == (V{internal(1000), internal(999)}) && textState().initCount == 1);
}

// A library is found as named (current directory), then by its file name in
// the program directory and two and four levels above it, never one or three.
TEST_F(MsgTextTest, LibrarySearchOrder) {
    const fs::path prog = dir_ / "a" / "b" / "c" / "d";
    const std::pair<const char*, fs::path> places[] = {{"CWD", dir_ / "cwd"}, {"PROG", prog},
        {"UP1", dir_ / "a" / "b" / "c"}, {"UP2", dir_ / "a" / "b"}, {"UP3", dir_ / "a"}, {"UP4", dir_}};
    // placed: where MYLIB.VTM lies, its text 1 naming the place; found: text 1 of what opened.
    struct Row { const char* name; const char* placed; const char* ask; const char* found; };
    const Row rows[] = {
        {"current_dir_first", "CWD PROG UP2", "MYLIB", "CWD"}, {"program_dir", "PROG UP2 UP4", "MYLIB", "PROG"},
        {"two_up", "UP1 UP2 UP3 UP4", "MYLIB", "UP2"}, {"four_up", "UP1 UP3 UP4", "MYLIB", "UP4"},
        {"one_or_three_up_not_searched", "UP1 UP3", "MYLIB", nullptr}, {"other_extension", "PROG", "MYLIB.MSG", nullptr},
        {"directory_dropped_any_case", "PROG", "Z:\\nowhere\\mylib.vtm", "PROG"}, {"no_name", "PROG", "", nullptr}};
    fs::create_directories(dir_ / "cwd");
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        for (const auto& [word, path] : places)
            if (fs::remove(path / "MYLIB.VTM"); std::strstr(r.placed, word)) writeLib(path / "MYLIB.VTM", named("MYLIB", word));
        restart();
        vnt::host::setProgramFile(libPath(prog / "prog"));
        ASSERT_TRUE(vnt::host::setCurDir(libPath(dir_ / "cwd")));
        VNT_MSG h = Vnt_MsgHInit(nullptr, r.ask);
        EXPECT_STREQ(h ? Vnt_MsgHLoad(h, 1) : nullptr, r.found);
        EXPECT_EQ(firstLines(shown()), r.found ? V{} : V{notFound(*r.ask ? r.ask : "(unknown)")});
        EXPECT_EQ(textState().initCount, r.found ? 2 : 0);  // a failed open gives the system reference back
    }
    // No main library without the system library; a raised "not found" counter silences the report.
    fs::remove(dir_ / "sys" / "VNT60LIB.VTM");
    vnt::host::setLibraryFile(libPath(dir_ / "nothing" / "lib" / "libvantortl.so"));
    EXPECT_EQ(Vnt_MsgHInit(nullptr, "MYLIB"), nullptr);
    Vnt__MsgExtCheck(0, 2, 2);
    EXPECT_FALSE(Vnt_MsgHInit(nullptr, nullptr));
    EXPECT_EQ(firstLines(shown()), V{notFound(libPath(dir_ / "sys" / "VNT60LIB.VTM"))});
}

// The system library as named (current directory or a path), then in the
// program directory, the directory of VANTORTL_MSGDIR and the installed
// share/vantortl/<language> beside this library: German unless the locale
// is English. A file there that is no library ends the search as damaged.
TEST_F(MsgTextTest, SystemLibrarySearch) {
    const fs::path prog = dir_ / "prog", env = dir_ / "env", lib = dir_ / "inst" / "lib";
    const fs::path share = (lib / VANTO_SHARE_FROM_LIB).lexically_normal();
    const std::pair<const char*, fs::path> places[] = {{"CWD", dir_ / "cwd"}, {"PROG", prog}, {"ENV", env},
        {"DE", share / "de"}, {"EN", share / "en"}};
    // placed: where VNT60LIB.VTM lies (BAD: a damaged one in the program directory); found: whose text 40000 is read.
    struct Row { const char* name; const char* placed; const char* locale; const char* found; };
    const Row rows[] = {
        {"current_dir_first", "CWD PROG ENV DE", "C", "CWD"}, {"program_dir", "PROG ENV DE EN", "C", "PROG"},
        {"environment", "ENV DE EN", "en_US.UTF-8", "ENV"}, {"installed_german", "DE EN", "de_AT.UTF-8", "DE"},
        {"installed_english", "DE EN", "en_GB.UTF-8", "EN"}, {"installed_other_language_german", "DE EN", "fr_FR.UTF-8", "DE"},
        {"german_only_installed_english_locale", "DE", "en_US.UTF-8", nullptr}, {"nowhere", "", "C", nullptr},
        {"damaged_ends_the_search", "BAD ENV DE", "C", nullptr}};
    const char* oldLocale = std::getenv("LC_ALL");
    const std::string keep = oldLocale ? oldLocale : "";
    vnt::test::setEnv(vnt::msg::kSysLibDirVariable, vnt::test::hostStr(env));
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        for (const auto& [word, path] : places) {
            fs::remove(path / "VNT60LIB.VTM");
            vtmtool::Library sys = kSys;
            sys.messages[0].text = word;
            if (std::strstr(r.placed, word)) writeLib(path / "VNT60LIB.VTM", sys);
        }
        if (std::strstr(r.placed, "BAD")) std::ofstream(prog / "VNT60LIB.VTM") << std::string(300, 'x');
        vnt::test::setEnv("LC_ALL", r.locale);
        restart(false);
        Vnt_UiSetPresenter(&box_);
        Vnt_MsgItfInit(nullptr, 0, nullptr);
        vnt::host::setProgramFile(libPath(prog / "prog"));
        vnt::host::setLibraryFile(libPath(lib / "libvantortl.so"));
        ASSERT_TRUE(vnt::host::setCurDir(libPath(dir_ / "cwd")));
        VNT_MSG sys = Vnt_MsgHInit();
        EXPECT_STREQ(sys ? Vnt_MsgHLoad(sys, 40000) : nullptr, r.found);
        const V boxes = shown();
        if (r.found) {
            EXPECT_EQ(boxes, V{});
        } else if (std::strstr(r.placed, "BAD")) {
            EXPECT_EQ(boxes, V{"Message Library \"" + libPath(prog / "VNT60LIB.VTM") + "\" is damaged: status 5 (" +
                               Vnt_VtmStatusText(5) + ")"});
        } else {
            const std::string language = std::strcmp(r.locale, "en_US.UTF-8") == 0 ? "en" : "de";
            EXPECT_EQ(boxes, V{notFound("VNT60LIB") + "\nLooked for: " + libPath(dir_ / "cwd" / "VNT60LIB.VTM") + "; " +
                               libPath(prog / "VNT60LIB.VTM") + "; " + libPath(env / "VNT60LIB.VTM") + "; " +
                               libPath(share / language / "VNT60LIB.VTM")});
        }
    }
    vnt::test::unsetEnv(vnt::msg::kSysLibDirVariable);
    oldLocale ? vnt::test::setEnv("LC_ALL", keep.c_str()) : vnt::test::unsetEnv("LC_ALL");
}

// Copies are cut at size - 1; a preloaded text is returned in place, others
// in the caller's buffer. A control text loses its leading '~' and each
// further '~' becomes '&', wherever it lies, the same when fetched again.
TEST_F(MsgTextTest, Fetching) {
    VNT_MSG h = openApp();
    struct Row { const char* name; VntMsgRef ref; unsigned size; const char* result; const char* inBuf; bool isBuf; };
    const Row rows[] = {
        {"preloaded_size_1", 1, 1, "Preloaded one", "", false}, {"file_size_1", 3, 1, "", "", true},
        {"file_cut", 3, 5, "File", "File", true}, {"size_0_writes_nothing", 3, 0, "zzz", "zzz", true},
        {"system_id_through_app", 40000, 7, "System forty thousand", "System", false},
        {"control_preloaded", 2, 8, "Pre&load&ed", "Pre&loa", false}, {"tilde_ampersand_word", 4, 8, "&Word", "&Word", true},
        {"tilde_two_words", 5, 8, "One&Two", "One&Two", true}, {"control_system", 40001, 8, "Sys&tem", "Sys&tem", false},
        {"control_literal", "~A~B~C", 8, "A&B&C", "A&B&C", true}, {"tilde_not_leading", "A~B", 8, "A~B", "A~B", true}};
    for (int pass = 0; pass < 2; ++pass)
        for (const Row& r : rows) {
            char buf[64] = "zzz";
            const char* got = Vnt_MsgHGet(h, r.ref, buf, r.size);
            EXPECT_EQ((V{got, buf}), (V{r.result, r.inBuf})) << r.name;
            EXPECT_EQ(got == buf, r.isBuf) << r.name;
        }
    EXPECT_STREQ(Vnt_MsgHGet(h, 3, nullptr, 4), "File three");  // reported, then the whole text from the ring
    EXPECT_EQ(shown(), V{"E Vnt_MsgHGet(): <buf> must not be NULL!"});
    // The last message ID: explicit IDs, iteration (comments skipped), 0 at the end.
    struct IdRow { const char* name; VntMsgRef ref; const char* text; long id; };
    const IdRow ids[] = {{"explicit", 6, "%d items in %s", 6}, {"next_after_explicit", -1, "%s", 7},
        {"comment_skipped", -1, "File nine", 9}, {"control_text", -1, "", 10}, {"end", -1, "", 0},
        {"first", 0, "Preloaded one", 1}, {"system_id", 40000, "System forty thousand", 40000}};
    for (const IdRow& r : ids) EXPECT_TRUE(std::string(Vnt_MsgHLoad(h, r.ref)) == r.text && Vnt_MsgGetID() == r.id) << r.name;
}

// Texts without a buffer take four ring buffers in turn: the fifth
// overwrites the first. Formatting follows printf, into the caller's buffer
// (the count comes back) or the ring (its address), at most 1023 characters.
TEST_F(MsgTextTest, RingAndFormatting) {
    VNT_MSG h = openApp();
    const char* got[] = {Vnt_MsgHLoad(h, 3), Vnt_MsgHLoad(h, "lit two"), Vnt_MsgHLoad(h, 9),
        Vnt_MsgHLoad(h, "~lit~four"), Vnt_MsgHLoad(h, "lit five")};
    EXPECT_EQ(got[4], got[0]);
    EXPECT_EQ((V{got[0], got[1], got[2], got[3]}), (V{"lit five", "lit two", "File nine", "lit&four"}));
    char buf[1024] = "", own[8] = "%s!";
    EXPECT_TRUE(Vnt_MsgH_sprintf(h, 6, buf, 12, "the box") == 19u && std::string(buf) == "12 items in the box") << buf;
    EXPECT_STREQ(reinterpret_cast<const char*>(Vnt_MsgH_sprintf(h, 6, nullptr, 1, "x")), "1 items in x");
    EXPECT_STREQ(reinterpret_cast<const char*>(Vnt_MsgH_sprintf(h, own, own, "hey")), "hey!");  // the text as buffer
    const std::string big(3000, 'a');
    EXPECT_EQ(std::strlen(Vnt_MsgHSprintf(h, 7, big.c_str())), 1023u);
    const char *a = Vnt_MsgHLoad(h, 3), *b = Vnt_MsgHLoad(h, 9), *c = Vnt_MsgHLoad(h, "lit");  // arguments in the ring
    EXPECT_STREQ(Vnt_MsgHSprintf(h, "%s+%s+%s", a, b, c), "File three+File nine+lit");
}

// An empty formatted text answers 2 without a box; any other is shown once,
// the answer passed on, and one pass of events follows.
TEST_F(MsgTextTest, ShowPath) {
    VNT_MSG h = openApp();
    box_.answers = {{VNT_BTN_NO, false}};
    struct Row { const char* name; VNT_RESP got, want; };
    const Row rows[] = {  // each message is shown as its row is built, in order
        {"empty_literal", Vnt_MsgH(h, ""), 2}, {"formats_to_empty", Vnt_MsgH(h, 7, ""), 2},
        {"control_text_empty", Vnt_MsgH(h, 10), 2}, {"question_answered_no", Vnt_MsgH(h, "?ynReally %s?", "go"), 7},
        {"with_help", Vnt_MsgHHelp(h, 55, 6, 0, "boxes"), 1}};
    for (const Row& r : rows) EXPECT_EQ(r.got, r.want) << r.name;
    EXPECT_EQ(box_.shown.at(1).buttons.back().id, VNT_BTN_HELP);  // the help context adds the Help button
    EXPECT_EQ(shown(), (V{"Really go?", "0 items in boxes"}));
}

// The application library is named after the program; its segment "APPMSG"
// answers the Vnt_AppMsg* calls, system IDs included.
TEST_F(MsgTextTest, ApplicationLibrary) {
    vtmtool::Container box{"FIBU", 60, {named("APPMSG", "App one"), named("OTHER", "Other one")}};
    box.segments[0].messages.push_back({2, "App two"});
    vtmtool::writeFileAtomic(dir_ / "FIBU.VTM", vtmtool::writeContainer(box));
    vnt::host::setProgramFile(libPath(dir_ / "Fibu.exe"));
    VNT_MSG h = Vnt_AppMsgInit(), other = Vnt_AppMsgInit("Z:\\x\\other.vtm");
    EXPECT_EQ(Vnt_AppMsgGetHandle(), h);
    char buf[8];
    EXPECT_EQ((V{Vnt_MsgHLoad(other, 1), Vnt_AppMsgLoad(1), Vnt_AppMsgLoad(40000), Vnt_AppMsgGet(2, buf, 4), buf}),
              (V{"Other one", "App one", "System forty thousand", "App two", "App"}));  // preloaded: in place
    EXPECT_TRUE(Vnt_AppMsgGet(2, nullptr, 4) == nullptr && Vnt_AppMsg("-ok%s %d", "n", 5) == 1);
    EXPECT_EQ(shown(), (V{internal(500), "n 5"}));
    Vnt_AppMsgTerm(&other);
    EXPECT_EQ(other, Vnt_AppMsgGetHandle());  // both closed and null
    EXPECT_EQ(textState().initCount, 2);  // the application library stays open, with its system reference
    restart();
    Vnt_MsgHInit(nullptr, nullptr);  // for the report's texts
    vnt::host::setProgramFile("Z:\\");
    EXPECT_TRUE(Vnt_AppMsgInit() == nullptr && shown() == V{internal(1)});  // no name at all
}

// Module strings: VntRes reads them like messages, into four buffers in turn;
// the box's default title is one of them. Titles keep 119 characters.
TEST_F(MsgTextTest, ResourceStringsAndTitles) {
    const std::string long130(130, 'T'), cut(119, 'T');
    const VNT_RES_STRING table[] = {{10, "%d apples"}, {11, "Plain"}, {12, long130.c_str()}};
    Vnt_ResRegister(kModule, table, 3);
    const char* const kMissing = "!Internal Error - did not find resource string.";
    VntRes res, none;
    res.setup(kModule, nullptr);
    struct Row { const char* name; const char* got; const char* want; };
    const Row rows[] = {  // res's four rows each hold one of its buffers
        {"registered_formatted", res.str(10, 4), "4 apples"}, {"literal_formatted", res.str("%d-%s", 4, "pear"), "4-pear"},
        {"missing_id", res.str(13), kMissing}, {"no_instance", none.str(11), kMissing},
        {"id_0_three_characters", res.str(0, "Hello"), "Hel"}};  // kept for compatibility
    for (const Row& r : rows) EXPECT_STREQ(r.got, r.want) << r.name;
    EXPECT_EQ(std::string(res.str(std::string(1500, 'q').c_str())), std::string(1023, 'q'));
    char out[5] = "zzzz";
    EXPECT_TRUE(res.str_get(10, out, sizeof out, 12) == 4u && std::string(out) == "12 a" && res.str_cpy(out, 0) == 0u) << out;
    res.set_title(12);
    EXPECT_EQ(res.title(), cut);

    Vnt_MsgItfTerm();
    ASSERT_TRUE(Vnt_MsgItfInit(kModule, 12) && !Vnt_MsgItfInit(kModule, 0));  // starts once
    EXPECT_EQ(Vnt_MsgSetTitle("Other"), cut);
    EXPECT_EQ(Vnt_MsgSetTitle(Vnt_MsgSetTitle(long130.c_str())), cut);  // "Other" set back through its pointer
    EXPECT_STREQ(Vnt_MsgGetTitle(out, sizeof out), "Othe");
    EXPECT_EQ(Vnt_MsgSetTitle(nullptr), std::string("Other"));
    EXPECT_EQ(Vnt_MsgGetTitle(nullptr, 0), cut);
}

// Each row applies to the state the rows before it left; want: the "not
// found" counter, the second and third counters, the no-sharing counter.
TEST_F(MsgTextTest, ExtCheckCounters) {
    struct Row { const char* name; int a, b, c; std::vector<int> want; };
    const Row rows[] = {{"raise_all", 0, 0, 1, {1, 1, 1, 1}},
        {"lower_all_keeps_third", 1, 1, 0, {0, 0, 1, 0}},  // c = 0 does not lower the third (kept)
        {"b_0_lowers_third", 2, 0, 0, {0, 1, 0, 0}}, {"not_below_zero", 1, 2, 0, {0, 1, 0, 0}},
        {"b_1_lowers_second", 2, 1, 2, {0, 0, 0, 0}}, {"second_below_zero", 2, 1, 2, {0, -1, 0, 0}},
        {"c_1_raises_third_with_b_0", 2, 0, 1, {0, 0, 1, 1}}};
    for (const Row& r : rows) {
        Vnt__MsgExtCheck(r.a, r.b, r.c);
        EXPECT_EQ((std::vector<int>{Vnt__MsgExtCounter(0), Vnt__MsgExtCounter(1), Vnt__MsgExtCounter(2),
                                    Vnt_VtmNoShare(0)}), r.want) << r.name;
    }
}

}  // namespace
