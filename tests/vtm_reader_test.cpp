// The message library reader: every open and read status, the preload
// repairs, sharing, segments, the system library, switches and reports.
// Well-formed libraries come from the tools' writer; each case then breaks
// the bytes it is about.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "host/fault.h"
#include "host/path.h"
#include "msg/vtm_internal.h"
#include "vanto/vtm.h"
#include "vtmtool/vtm_writer.h"
#include "scratch.h"

namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;
using Mut = void (*)(Bytes&);
using Msgs = std::vector<vtmtool::Message>;

namespace {

// Header field offsets, restated on purpose.
enum Field : std::size_t { F_VERTEXT = 8, F_VERSION = 12, F_NAME = 24, F_SEGCOUNT = 36, F_LIBSIZE = 44, F_INDEX = 48,
                          F_TEXT = 52, F_COUNT = 56, F_SYSFLAG = 60, F_PRECOUNT = 64, F_PRESIZE = 68, F_LASTPRE = 72 };
void put32(Bytes& b, std::size_t at, uint32_t v) { for (int i = 0; i < 4; ++i) b.at(at + i) = uint8_t(v >> (8 * i)); }
void put16(Bytes& b, std::size_t at, uint16_t v) { b.at(at) = uint8_t(v), b.at(at + 1) = uint8_t(v >> 8); }
void putStr(Bytes& b, std::size_t at, std::string_view s, std::size_t n) { for (std::size_t i = 0; i < n; ++i) b.at(at + i) = i < s.size() ? uint8_t(s[i]) : 0; }
// Offset of index entry n of a plain library: the index follows the header.
std::size_t entryAt(long n) { return 204 + std::size_t(n) * 8; }

// The sample: texts of 18 bytes at positions 0, 4, 8, 13 right after the index.
const Msgs kSample = {{1, "One"}, {2, "Two"}, {5, "Five"}, {9, "Nine"}};
Bytes sample(long preload = -1, const std::string& name = "TESTLIB", const Msgs& msgs = kSample, int32_t sys = 0) {
    return vtmtool::writeLibrary({name, 60, sys, preload, msgs});
}
// 16 head bytes between the header and the index, which move 16 bytes on.
void withHead(Bytes& b) { b.insert(b.begin() + 204, 16, 0xAB), put32(b, F_INDEX, 220), put32(b, F_TEXT, 252), put32(b, F_LIBSIZE, uint32_t(b.size())); }
// Container "BOX": directory at 204, then APPMSG (its header at 228) and OTHER.
Bytes sampleBox() {
    return vtmtool::writeContainer({"BOX", 60, {{"APPMSG", 60, 0, 2, kSample}, {"OTHER", 60, 0, -1, {{1, "Other one"}, {2, ";c"}, {3, "Other three"}}}}});
}

std::vector<std::string> g_reports;
VNT_RESP capture(const char* text) { return g_reports.push_back(text), VNT_RESP_OK; }
enum Sw { QUIET = 1, RAW = 2, NOREPAIR = 4 };
const char* const kBadOffset = "!Invalid Offset in Message File!";
VNT_VTM_INFO info(VNT_MSG lib) { VNT_VTM_INFO i{}; EXPECT_TRUE(Vnt_VtmInfo(lib, &i)); return i; }
VNT_VTM_ENTRY entry(VNT_MSG lib, long n) { VNT_VTM_ENTRY e{}; EXPECT_TRUE(Vnt_VtmEntry(lib, n, &e)); return e; }
std::vector<std::string> iterate(VNT_MSG lib) {
    std::vector<std::string> out;
    for (const char* t = Vnt_VtmRead(lib, 0); *t && out.size() < 100000; t = Vnt_VtmRead(lib, -1)) out.push_back(t);
    return out;
}
// Exactly one report with `detail` ("%s" stands for `path`), or none.
void expectReport(const char* detail, const std::string& path = "") {
    std::string want = detail ? "!VTMINTRF: Internal Error.\n" + std::string(detail) : "";
    if (auto at = want.find("%s"); at != std::string::npos) want.replace(at, 2, path);
    EXPECT_EQ(g_reports, want.empty() ? std::vector<std::string>{} : std::vector<std::string>{want});
    g_reports.clear();
}

class VtmTest : public ::testing::Test {
protected:
    void SetUp() override { fs::create_directories(dir_), fresh(); }
    void TearDown() override { fresh(), fs::remove_all(dir_); }
    // A fresh reader with the switches of `sw`, no faults, no reports.
    void fresh(int sw = 0) {
        vnt::vtm::reset(), vnt::host::faultReset(), g_reports.clear(), Vnt_VtmSetReport(capture);
        Vnt_VtmSwQuiet(sw & QUIET ? 1 : 0), Vnt_VtmSwRaw(sw & RAW ? 1 : 0), Vnt_VtmSwNoRepair(sw & NOREPAIR ? 1 : 0);
    }
    // Writes `bytes` as `name`; returns its library path ("Z:\...").
    std::string put(const std::string& name, const Bytes& bytes) {
        std::ofstream(dir_ / name, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        std::string p;
        EXPECT_TRUE(vnt::host::fromHost(vnt::test::hostStr(dir_ / name).c_str(), p)) << name;
        return p;
    }
    VNT_MSG open(const std::string& name, const Bytes& bytes) { return Vnt_VtmOpen(put(name, bytes).c_str()); }
    const fs::path dir_ = vnt::test::scratchDir("vanto_vtm_");
};

// Opens of one broken sample each: failures leave nothing behind; preload
// findings set the status, repair in memory and never fail the open.
TEST_F(VtmTest, OpenStatusesAndPreloadRepairs) {
    struct Row {
        const char* name; long preload; Mut mutate; bool opens; long status; const char* report;
        int entry; uint16_t length; uint32_t position;  // an entry to inspect afterwards
    };
    const Row rows[] = {
        {"missing_file", -1, nullptr, false, 1, nullptr, -1, 0, 0},
        {"short_header", -1, [](Bytes& b) { b.resize(100); }, false, 2, "Error reading \"%s\"\n(204 bytes requested, 100 bytes read).", -1, 0, 0},
        {"unknown_magic", -1, [](Bytes& b) { putStr(b, 0, "VANTOXXX", 8); }, false, 5, nullptr, -1, 0, 0},
        {"magic_msp", -1, [](Bytes& b) { putStr(b, 0, "VANTOMSP", 8); }, false, 6, nullptr, -1, 0, 0},
        {"magic_vtp", -1, [](Bytes& b) { putStr(b, 0, "VANTOVTP", 8); }, false, 99, nullptr, -1, 0, 0},
        {"version_text_61", -1, [](Bytes& b) { putStr(b, F_VERTEXT, "61", 4); }, false, 7, nullptr, -1, 0, 0},
        {"version_text_6x", -1, [](Bytes& b) { putStr(b, F_VERTEXT, "6x", 4); }, false, 7, nullptr, -1, 0, 0},
        // The version range is checked before the version text.
        {"version_9", -1, [](Bytes& b) { put32(b, F_VERSION, 9); }, false, 8, nullptr, -1, 0, 0},
        {"version_negative", -1, [](Bytes& b) { put32(b, F_VERSION, uint32_t(-60)); }, false, 8, nullptr, -1, 0, 0},
        {"version_200", -1, [](Bytes& b) { put32(b, F_VERSION, 200), putStr(b, F_VERTEXT, "200", 4); }, false, 9, nullptr, -1, 0, 0},
        {"segments_257", -1, [](Bytes& b) { put32(b, F_SEGCOUNT, 257); }, false, 10, nullptr, -1, 0, 0},
        {"preload_size_65536", -1, [](Bytes& b) { put32(b, F_PRESIZE, 65536); }, false, 12, nullptr, -1, 0, 0},
        {"preload_area_short", -1, [](Bytes& b) { put32(b, F_PRESIZE, 60000); }, false, 4, "Error reading \"%s\"\n(60000 bytes requested, 18 bytes read).", -1, 0, 0},
        // An index no library file can hold, or a head larger than the file, are refused
        // before allocation; an index that only runs past the end of the file is read short.
        {"entry_count_huge", -1, [](Bytes& b) { put32(b, F_COUNT, 0x7fffffff); }, false, 15, nullptr, -1, 0, 0},
        {"index_of_2_gib", -1, [](Bytes& b) { put32(b, F_COUNT, 0x10000000); }, false, 15, nullptr, -1, 0, 0},
        {"head_past_the_file", -1, [](Bytes& b) { put32(b, F_INDEX, 255); }, false, 15, nullptr, -1, 0, 0},
        {"head_up_to_the_end", -1, [](Bytes& b) { put32(b, F_INDEX, 254), put32(b, F_COUNT, 1); }, false, 3, "Error reading \"%s\"\n(8 bytes requested, 0 bytes read).", -1, 0, 0},
        {"index_cut_short", -1, [](Bytes& b) { put32(b, F_COUNT, 100); }, false, 3, "Error reading \"%s\"\n(800 bytes requested, 50 bytes read).", -1, 0, 0},
        {"index_just_short", -1, [](Bytes& b) { put32(b, F_COUNT, 7); }, false, 3, "Error reading \"%s\"\n(56 bytes requested, 50 bytes read).", -1, 0, 0},
        {"index_of_256_mib_cut_short", -1, [](Bytes& b) { put32(b, F_COUNT, 0x0fffffff); }, false, 3, "Error reading \"%s\"\n(2147483640 bytes requested, 50 bytes read).", -1, 0, 0},
        {"entry_count_negative", -1, [](Bytes& b) { put32(b, F_COUNT, 0xfffffff0u); }, false, 15, nullptr, -1, 0, 0},
        {"index_below_base", -1, [](Bytes& b) { put32(b, F_INDEX, uint32_t(-8)); }, false, 16, nullptr, -1, 0, 0},
        {"system_not_preloaded", 3, [](Bytes& b) { put32(b, F_SYSFLAG, 1); }, false, 0, "SysMsgLib MUST BE PRELOAD.", -1, 0, 0},
        {"head_bytes", 3, withHead, true, 0, nullptr, 3, 5, 13},
        {"consistent", 3, [](Bytes&) {}, true, 0, nullptr, 1, 4, 4},
        {"length_repaired", 3, [](Bytes& b) { put16(b, entryAt(1) + 6, 40); }, true, 102, nullptr, 1, 4, 4},
        {"position_repaired", -1, [](Bytes& b) { put32(b, entryAt(2), 99); }, true, 103, nullptr, 2, 5, 8},
        // Kept: the walk stops at the last preloaded entry before checking it.
        {"last_preloaded_unchecked", 3, [](Bytes& b) { put32(b, entryAt(2), 99); }, true, 0, nullptr, 2, 5, 99},
        {"last_id_at_wrong_entry", 2, [](Bytes& b) { put16(b, entryAt(0) + 4, 2); }, true, 101, nullptr, -1, 0, 0},
        {"last_id_beyond_count", 2, [](Bytes& b) { put32(b, F_LASTPRE, 5); }, true, 11, nullptr, -1, 0, 0},
        {"preload_count_clamped", -1, [](Bytes& b) { put32(b, F_PRECOUNT, 50); }, true, 0, nullptr, -1, 0, 0},
        // The text area shrinks to 10 bytes: the 18 preloaded bytes overrun it.
        {"preload_size_clamped", -1, [](Bytes& b) { put32(b, F_LIBSIZE, 204 + 32 + 10); }, true, 12, nullptr, -1, 0, 0},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        fresh();
        Bytes b = sample(r.preload);
        if (r.mutate) r.mutate(b);
        const std::string path = r.mutate ? put(std::string(r.name) + ".vtm", b) : "Z:\\nowhere\\none.vtm";
        VNT_MSG lib = Vnt_VtmOpen(path.c_str());
        EXPECT_EQ(lib != nullptr, r.opens);
        EXPECT_EQ(Vnt_VtmStatus(), r.status);
        EXPECT_EQ(vnt::vtm::liveCount(), r.opens ? 1u : 0u);
        expectReport(r.report, path);
        if (r.entry >= 0 && lib) { EXPECT_EQ(std::tuple(entry(lib, r.entry).length, entry(lib, r.entry).position), std::tuple(r.length, r.position)); }
    }
    EXPECT_TRUE(Vnt_VtmOpen(nullptr) == nullptr && Vnt_VtmStatus() == 1);
}

TEST_F(VtmTest, ReadStatuses) {
    struct Row {
        const char* name; long preload; int sw; Mut mutate; long ref; const char* text; long status; const char* report;
        uint16_t length;  // stored length of the last entry afterwards, 0: unchecked
    };
    const Mut none = [](Bytes&) {}, noEntries = [](Bytes& b) { put32(b, F_COUNT, 0), put32(b, F_LASTPRE, 0); };
    const Row rows[] = {
        {"not_found", 1, 0, none, 77, "", 101, "Message ID 77 not found.", 0},
        {"not_found_quiet", 1, QUIET, none, 77, "", 101, nullptr, 0},
        {"position_outside", 1, 0, [](Bytes& b) { put32(b, entryAt(3), 500); }, 9, kBadOffset, 103, nullptr, 0},
        {"position_at_area_end", 1, 0, [](Bytes& b) { put32(b, entryAt(3), 18); }, 9, kBadOffset, 103, nullptr, 0},
        // Kept: an implausible length gives the empty text and stored length 2.
        {"length_2000", 1, 0, [](Bytes& b) { put16(b, entryAt(3) + 6, 2000); }, 9, "", 102, nullptr, 2},
        {"length_2000_norepair", 1, NOREPAIR, [](Bytes& b) { put16(b, entryAt(3) + 6, 2000); }, 9, "", 102, nullptr, 2000},
        {"length_past_area", 1, 0, [](Bytes& b) { put16(b, entryAt(2) + 6, 12); }, 5, "", 102, nullptr, 0},
        // No NUL before the end of the file: the text read is kept, length 1.
        {"fallback_at_eof", 1, 0, [](Bytes& b) { b.pop_back(), put32(b, F_LIBSIZE, uint32_t(b.size())); }, 9, "Nine", 102, nullptr, 1},
        {"file_truncated", 1, 0, [](Bytes& b) { b.resize(b.size() - 2); }, 9, "", 104, "Error reading \"TESTLIB\"\n(5 bytes requested, 3 bytes read).", 0},
        // Without validation the first position is still taken as 0, and a
        // preloaded position is still bounded by the area.
        {"norepair_first_position", 2, NOREPAIR, [](Bytes& b) { put32(b, entryAt(0), 7); }, 1, "One", 0, nullptr, 0},
        {"norepair_preloaded", 3, NOREPAIR, [](Bytes& b) { put32(b, entryAt(2), 60000); }, 5, kBadOffset, 103, nullptr, 0},
        // Wholly "preloaded", so its file is closed: "not open" comes first.
        {"no_entries_closed", -1, 0, noEntries, 1, "", 100, "Message Library not open (msgid=1).", 0},
        {"no_entries", -1, RAW, noEntries, 1, "", 11, nullptr, 0},
        // Quiet: no system library registered, so no preload rule either.
        {"system_flag_quiet", 1, QUIET, [](Bytes& b) { put32(b, F_SYSFLAG, 1); }, 9, "Nine", 0, nullptr, 0},
        {"system_id_no_system_library", -1, 0, none, 40000, "", 100, "Message Library not open (msgid=40000).", 0},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        fresh(r.sw);
        Bytes b = sample(r.preload);
        r.mutate(b);
        VNT_MSG lib = open(std::string(r.name) + ".vtm", b);
        ASSERT_NE(lib, nullptr);
        EXPECT_STREQ(Vnt_VtmRead(lib, r.ref), r.text);
        EXPECT_EQ(Vnt_VtmStatus(), r.status);
        expectReport(r.report);
        if (r.length) { EXPECT_EQ(entry(lib, 3).length, r.length); }
        if (r.length == 2) { EXPECT_STREQ(Vnt_VtmRead(lib, r.ref), "N"); }  // kept: now plausible, one character
    }
}

// Reads that fail halfway. With head bytes an open reads 1 the header, 2 the
// head bytes, 3 the index, 4 the preload area.
TEST_F(VtmTest, InjectedFailures) {
    Bytes b = sample(1);
    withHead(b);
    const std::string path = put("fault.vtm", b);
    using vnt::host::Op;
    const struct { Op op; int nth; long ref; long status; const char* report; } rows[] = {
        {Op::Read, 1, 0, 2, "Error reading \"%s\"\n(204 bytes requested, 0 bytes read)."},
        {Op::Read, 2, 0, 2, "Error reading \"%s\"\n(16 bytes requested, 0 bytes read)."},
        {Op::Read, 3, 0, 3, "Error reading \"%s\"\n(32 bytes requested, 0 bytes read)."},
        {Op::Read, 4, 0, 4, "Error reading \"%s\"\n(4 bytes requested, 0 bytes read)."},
        {Op::Seek, 1, 0, 103, nullptr},
        {Op::Read, 1, 2, 104, "Error reading \"TESTLIB\"\n(4 bytes requested, 0 bytes read)."},  // a text
        {Op::Seek, 1, 2, 103, nullptr},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << r.nth << " " << r.ref);
        fresh();
        VNT_MSG lib = r.ref ? Vnt_VtmOpen(path.c_str()) : nullptr;
        vnt::host::faultAt(r.op, r.nth);
        EXPECT_EQ(r.ref ? std::string(Vnt_VtmRead(lib, r.ref)) : Vnt_VtmOpen(path.c_str()) ? "opened" : "", r.ref && r.status == 103 ? kBadOffset : "");
        EXPECT_EQ(std::tuple(Vnt_VtmStatus(), vnt::vtm::liveCount()), std::tuple(r.status, r.ref ? 1u : 0u));
        expectReport(r.report, path);
    }
}

TEST_F(VtmTest, FileClosedOnlyWhenEverythingIsPreloaded) {
    const struct { long preload; int sw; bool fileOpen; } rows[] = {{3, 0, true}, {-1, 0, false}, {-1, RAW, true}, {-1, QUIET, true}, {0, 0, true}};
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << r.preload << " " << r.sw);
        fresh(r.sw);
        VNT_MSG lib = open("p.vtm", sample(r.preload));
        EXPECT_EQ(info(lib).fileOpen, r.fileOpen);
        // A preloaded text stays in place; texts from the file share one buffer.
        const char* one = Vnt_VtmRead(lib, 1);
        EXPECT_EQ(Vnt_VtmRead(lib, 9) + std::string("|") + one, r.preload == 0 ? "Nine|Nine" : "Nine|One");
    }
}

TEST_F(VtmTest, IterationSkipsCommentsAndKeepsACursor) {
    VNT_MSG lib = open("it.vtm", sample(2, "IT", {{1, ";comment"}, {2, "a"}, {3, ";x"}, {4, ";y"}, {5, "b"}, {6, ";tail"}}));
    EXPECT_EQ(iterate(lib), (std::vector<std::string>{"a", "b"}));
    EXPECT_TRUE(*Vnt_VtmRead(lib, -1) == '\0' && Vnt_VtmStatus() == 0);  // past the end stays at the end
    EXPECT_STREQ(Vnt_VtmRead(lib, 1), ";comment");  // by ID, comments are texts
    Bytes b = sample(2);
    put32(b, 164, 77), putStr(b, 104, "X-annex", 7);  // the cursor is cleared when loaded, the annex kept
    lib = open("c.vtm", b);
    EXPECT_EQ(info(lib).annex[0], 'X');
    EXPECT_STREQ(Vnt_VtmRead(lib, -1), "Two");  // kept: "next" before any "first" is entry 1
    EXPECT_STREQ(Vnt_VtmRead(lib, 1), "One");  // a read by ID leaves the cursor
    EXPECT_STREQ(Vnt_VtmRead(lib, -1), "Five");
    EXPECT_EQ(Vnt_VtmResolve(lib, 1, false), VntMsgRef(1));  // ... a resolve moves it
    EXPECT_STREQ(Vnt_VtmRead(lib, -1), "Two");
    Vnt_VtmResolve(lib, 777, false);  // unknown ID: to the entry count
    EXPECT_EQ(info(lib).cursor, 4);
    EXPECT_EQ(Vnt_VtmResolve(lib, 0, false), VntMsgRef(1));  // not stored without keep-cursor
    EXPECT_EQ(Vnt_VtmResolve(lib, -1, false), VntMsgRef(0));
}

// The ID map changes its form with the entry count; at every size the first
// entry of a repeated ID wins, also when iterating.
TEST_F(VtmTest, FirstEntryOfAnIdWinsAtEverySize) {
    for (long count : {10L, 20000L, 70000L}) {
        SCOPED_TRACE(count);
        fresh();
        Msgs msgs;
        const long distinct = count < 9000 ? count / 2 : 9000;
        for (long n = 0; n < count; ++n) msgs.push_back({uint16_t(n % distinct + 1), "t" + std::to_string(n)});
        VNT_MSG lib = open("big.vtm", sample(0, "BIG", msgs));
        for (long id : {1L, 2L, distinct / 2, distinct}) EXPECT_STREQ(Vnt_VtmRead(lib, id), ("t" + std::to_string(id - 1)).c_str());
        EXPECT_STREQ(Vnt_VtmEntryText(lib, distinct), ("t" + std::to_string(distinct)).c_str());
        EXPECT_TRUE(*Vnt_VtmRead(lib, distinct + 1) == '\0' && Vnt_VtmStatus() == 101);
        Vnt_VtmResolve(lib, distinct, false);
        EXPECT_EQ(info(lib).cursor, distinct - 1);
        if (count == 10) { EXPECT_EQ(iterate(lib)[distinct], "t0"); }
    }
}

TEST_F(VtmTest, LiteralTextsAndNoLibrary) {
    VNT_MSG lib = open("l.vtm", sample());
    const char* text = "Ready text %s";
    EXPECT_TRUE(Vnt_VtmRead(lib, text) == text && Vnt_VtmRead(nullptr, text) == text);
    EXPECT_STREQ(Vnt_VtmRead(lib, 70000), "");  // a number out of range is no ID
    expectReport(nullptr);
    // Kept: the signed test sends 0 and -1 to the generic text too.
    for (long ref : {0L, -1L, 5L, 32767L, 32768L, -7L}) {
        fresh();
        EXPECT_EQ(Vnt_VtmResolve(nullptr, ref, true), VntMsgRef(ref));
        expectReport(ref < 32768 ? ("Cannot get message " + std::to_string(ref) + " when no message library is open!").c_str() : nullptr);
    }
    EXPECT_TRUE(Vnt_VtmOpenSeg(nullptr, "X") == nullptr && Vnt_VtmStatus() == 100);  // null parent: the system library
    // The report hook: the previous one comes back; the default answers OK (a
    // report not confirmed ends the process: see the application's exit).
    EXPECT_EQ(Vnt_VtmSetReport(nullptr), capture);
    EXPECT_EQ(Vnt_VtmSetReport(capture)("probe"), VNT_RESP_OK);
}

TEST_F(VtmTest, SharingByName) {
    const struct { const char* file; const char* header; int sw; bool shared; } rows[] = {
        {"testlib.vtm", "TESTLIB", 0, true}, {"TestLib", "TESTLIB", RAW, true}, {"LongLibraryName.vtm", "LongLibr", 0, true},
        {"ab.c.vtm", "ab", 0, true}, {"other.vtm", "TESTLIB", 0, false}, {"noname.vtm", "", 0, false}, {"testlib.vtm", "TESTLIB", QUIET, false}};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.file);
        fresh(r.sw);
        const std::string path = put(r.file, sample(-1, r.header));
        VNT_MSG a = Vnt_VtmOpen(path.c_str()), b = Vnt_VtmOpen(path.c_str());
        EXPECT_EQ(info(a).refCount, r.shared ? 2 : 1);
        for (std::size_t left : {1u, 0u}) { Vnt_VtmClose(left ? a : b); EXPECT_EQ(vnt::vtm::liveCount(), left); }
    }
    // The last row left quiet on: 2 only asks, 0 switches it off.
    EXPECT_EQ((std::vector<long>{Vnt_VtmSwQuiet(2), Vnt_VtmSwQuiet(0)}), (std::vector<long>{1, 1}));
    const std::string path = put("testlib.vtm", sample());
    VNT_MSG a = Vnt_VtmOpen(path.c_str());
    EXPECT_EQ(Vnt_VtmNoShare(1), 1);
    EXPECT_NE(Vnt_VtmOpen(path.c_str()), a);
    EXPECT_EQ(std::tuple(Vnt_VtmNoShare(-1), Vnt_VtmNoShare(-1)), std::tuple(0, 0));  // never below zero
    EXPECT_EQ(Vnt_VtmOpen(path.c_str()), a);  // the first in the list is shared
}

TEST_F(VtmTest, SystemLibrary) {
    const Msgs sysMsgs = {{32768, "System first"}, {40000, "System forty"}};
    VNT_MSG lib = open("app.vtm", sample(-1, "APP", {{1, "One"}, {40000, "App forty"}}));
    VNT_MSG s1 = open("VNT60LIB.VTM", sample(-1, "VNT60LIB", sysMsgs, 1));
    EXPECT_EQ(Vnt_VtmSystem(), s1);
    EXPECT_EQ((std::vector<std::string>{Vnt_VtmRead(lib, 40000), Vnt_VtmRead(nullptr, 32768), Vnt_VtmName(nullptr)}),
              (std::vector<std::string>{"System forty", "System first", "VNT60LIB"}));
    EXPECT_FALSE(info(open("sys2.vtm", sample(-1, "VNT60LIB", sysMsgs, 1))).isSystem);  // only the first
    Vnt_VtmSwRaw(1);  // system IDs stay in the given library
    EXPECT_STREQ(Vnt_VtmRead(lib, 40000), "App forty");
    Vnt_VtmSwRaw(0);
    Vnt_VtmClose(s1);  // unregisters it
    EXPECT_TRUE(*Vnt_VtmRead(lib, 40000) == '\0' && Vnt_VtmStatus() == 100);
}

TEST_F(VtmTest, SegmentsShareTheirContainer) {
    VNT_MSG box = open("box.vtm", sampleBox());
    EXPECT_TRUE(info(box).fileOpen);  // a container keeps its file
    EXPECT_TRUE(*Vnt_VtmRead(box, 1) == '\0' && Vnt_VtmStatus() == 11);  // and holds no messages itself
    VNT_MSG app = Vnt_VtmOpenSeg(box, "Z:\\x\\appmsg.vtm");
    EXPECT_TRUE(info(app).isSegment);
    EXPECT_STREQ(Vnt_VtmRead(app, 2), "Two");
    VNT_MSG other = Vnt_VtmOpenSeg(box, "other");
    EXPECT_EQ(iterate(other), (std::vector<std::string>{"Other one", "Other three"}));
    EXPECT_EQ(Vnt_VtmOpenSeg(other, "APPMSG"), app);  // found through the chain
    EXPECT_EQ(std::tuple(info(app).refCount, info(box).refCount), std::tuple(2, 4));
    Vnt_VtmClose(box);  // its segments still hold it
    EXPECT_STREQ(Vnt_VtmRead(app, 9), "Nine");  // from the shared file
    Vnt_VtmClose(app), Vnt_VtmClose(app);
    EXPECT_EQ(info(box).refCount, 1);
    Vnt_VtmClose(other);  // the container goes with its last segment
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
    expectReport(nullptr);
    // Closed too often while segments are open: they lose the file.
    box = open("box.vtm", sampleBox());
    app = Vnt_VtmOpenSeg(box, "APPMSG"), other = Vnt_VtmOpenSeg(box, "OTHER");
    Vnt_VtmClose(box), Vnt_VtmClose(box), Vnt_VtmClose(box);
    expectReport("segments still open");
    EXPECT_EQ(vnt::vtm::liveCount(), 2u);
    EXPECT_STREQ(Vnt_VtmRead(app, 1), "One");  // preloaded: still there
    EXPECT_TRUE(*Vnt_VtmRead(app, 9) == '\0' && Vnt_VtmStatus() == 100);
    EXPECT_EQ(Vnt_VtmOpenSeg(app, "OTHER"), other);  // the chain survives
    Vnt_VtmClose(other), Vnt_VtmClose(other), Vnt_VtmClose(app);
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
}

TEST_F(VtmTest, SegmentFailures) {
    const struct { const char* name; Mut mutate; const char* seg; long status; int boxRefs; } rows[] = {
        {"not_in_directory", [](Bytes&) {}, "NOPE", 13, 1},
        {"empty_name_never_matches", [](Bytes& b) { b[204 + 4] = 0; }, "", 13, 1},  // not even an empty entry
        // Kept: the container's reference taken for a failed segment stays.
        {"header_name_differs", [](Bytes& b) { putStr(b, 228 + F_NAME, "APPX", 8); }, "APPMSG", 14, 2},
        {"bad_magic", [](Bytes& b) { putStr(b, 228, "NOTAVTM!", 8); }, "APPMSG", 5, 2},
        {"offset_past_end", [](Bytes& b) { put32(b, 204, 0x7ffffff0); }, "APPMSG", 2, 2},
        {"negative_offset", [](Bytes& b) { put32(b, 204, uint32_t(-4)); }, "APPMSG", 103, 2},
        {"index_short", [](Bytes& b) { put32(b, 228 + F_INDEX, uint32_t(b.size() - 16)); }, "APPMSG", 3, 2},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        fresh();
        Bytes b = sampleBox();
        r.mutate(b);
        VNT_MSG box = open("box.vtm", b);
        EXPECT_EQ(Vnt_VtmOpenSeg(box, r.seg), nullptr);
        EXPECT_EQ(std::tuple(Vnt_VtmStatus(), info(box).refCount, vnt::vtm::liveCount(), info(box).fileOpen),
                  std::tuple(r.status, r.boxRefs, 1u, true));
    }
}

}  // namespace
