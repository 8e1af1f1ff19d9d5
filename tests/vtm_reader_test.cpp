// The message library reader: opening (every failure status), preload
// validation and its repairs, reads by ID and by iteration, the fallback
// read, sharing, segments, the system library, switches and reports.
// Libraries are built here byte by byte, so that every field can be broken.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "host/host.h"
#include "msg/vtm_internal.h"
#include "vanto/vtm.h"

#if __has_include("vtmtool/vtm_writer.h")
#include "vtmtool/vtm_writer.h"
#define HAVE_WRITER 1
#endif

namespace fs = std::filesystem;
using Bytes = std::vector<unsigned char>;

namespace {

// ---------------------------------------------------------------------------
// Byte builder: header | index | text area (the preload area is its first
// part), every offset absolute. Field offsets are restated here on purpose.
// ---------------------------------------------------------------------------

enum Field : std::size_t {
    F_VERTEXT = 8, F_VERSION = 12, F_NAME = 24, F_SEGCOUNT = 36, F_BASE = 40, F_LIBSIZE = 44,
    F_INDEX = 48, F_TEXT = 52, F_COUNT = 56, F_SYSFLAG = 60, F_PRECOUNT = 64, F_PRESIZE = 68,
    F_LASTPRE = 72, F_ANNEX = 104,
};

struct Msg {
    uint16_t id;
    std::string text;
};

struct LibSpec {
    std::string magic = "VANTOVTM";
    std::string versionText = "60";
    int32_t version = 60;
    std::string name = "TESTLIB";
    int32_t systemFlag = 0;
    long preload = -1;  // entries whose texts are preloaded; -1 all
    std::vector<Msg> msgs;
};

void put32(Bytes& b, std::size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) b.at(at + i) = uint8_t(v >> (8 * i));
}
void put16(Bytes& b, std::size_t at, uint16_t v) {
    b.at(at) = uint8_t(v);
    b.at(at + 1) = uint8_t(v >> 8);
}
void putStr(Bytes& b, std::size_t at, const std::string& s, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) b.at(at + i) = i < s.size() ? uint8_t(s[i]) : 0;
}
// Index entry fields of entry n of a library whose header is at `base`.
std::size_t entryAt(long n, std::size_t base = 0) { return base + 204 + std::size_t(n) * 8; }

// Appends a library whose header starts at b.size().
void appendLib(Bytes& b, const LibSpec& s) {
    const std::size_t base = b.size();
    const std::size_t count = s.msgs.size();
    const std::size_t pre = s.preload < 0 ? count : std::size_t(s.preload);
    const std::size_t indexAt = base + 204, textAt = indexAt + count * 8;
    b.resize(textAt, 0);
    putStr(b, base, s.magic, 8);
    putStr(b, base + F_VERTEXT, s.versionText, 4);
    put32(b, base + F_VERSION, uint32_t(s.version));
    putStr(b, base + F_NAME, s.name, 8);
    put32(b, base + F_INDEX, uint32_t(indexAt));
    put32(b, base + F_TEXT, uint32_t(textAt));
    put32(b, base + F_COUNT, uint32_t(count));
    put32(b, base + F_SYSFLAG, uint32_t(s.systemFlag));
    put32(b, base + F_PRECOUNT, uint32_t(pre));
    uint32_t pos = 0, preSize = 0;
    for (std::size_t n = 0; n < count; ++n) {
        put32(b, entryAt(long(n), base), pos);
        put16(b, entryAt(long(n), base) + 4, s.msgs[n].id);
        put16(b, entryAt(long(n), base) + 6, uint16_t(s.msgs[n].text.size() + 1));
        b.insert(b.end(), s.msgs[n].text.begin(), s.msgs[n].text.end());
        b.push_back(0);
        pos += uint32_t(s.msgs[n].text.size() + 1);
        if (n < pre) preSize = pos;
    }
    put32(b, base + F_PRESIZE, preSize);
    put32(b, base + F_LASTPRE, pre ? s.msgs[pre - 1].id : 0);
    put32(b, base + F_LIBSIZE, uint32_t(b.size() - base));
}

Bytes buildLib(const LibSpec& s) {
    Bytes b;
    appendLib(b, s);
    return b;
}

// A container: header, directory of 12-byte entries, then the segments.
Bytes buildContainer(const std::string& name, const std::vector<std::pair<std::string, LibSpec>>& segs) {
    Bytes b(204 + segs.size() * 12, 0);
    putStr(b, 0, "VANTOVTM", 8);
    putStr(b, F_VERTEXT, "60", 4);
    put32(b, F_VERSION, 60);
    putStr(b, F_NAME, name, 8);
    put32(b, F_SEGCOUNT, uint32_t(segs.size()));
    put32(b, F_INDEX, 204);
    put32(b, F_TEXT, uint32_t(b.size()));
    put32(b, F_COUNT, uint32_t(segs.size()));
    for (std::size_t i = 0; i < segs.size(); ++i) {
        put32(b, 204 + i * 12, uint32_t(b.size()));
        putStr(b, 204 + i * 12 + 4, segs[i].first, 8);
        appendLib(b, segs[i].second);
    }
    put32(b, F_LIBSIZE, uint32_t(b.size()));
    return b;
}

LibSpec sample(long preload = -1) {
    LibSpec s;
    s.preload = preload;
    s.msgs = {{1, "One"}, {2, "Two"}, {5, "Five"}, {9, "Nine"}};
    return s;
}

// ---------------------------------------------------------------------------
// Fixture: a temporary directory, a clean reader and captured reports.
// ---------------------------------------------------------------------------

std::vector<std::string> g_reports;
VNT_RESP g_answer = VNT_RESP_OK;
VNT_RESP captureReport(const char* text) {
    g_reports.push_back(text);
    return g_answer;
}
const std::string kPrefix = "!VTMINTRF: Internal Error.\n";

class VtmTest : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::vtm::reset();
        vnt::host::faultReset();
        g_reports.clear();
        g_answer = VNT_RESP_OK;
        Vnt_VtmSetReport(captureReport);
        dir_ = fs::temp_directory_path() /
               ("vanto_vtm_" + std::to_string(::getpid()) + "_" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    void TearDown() override {
        vnt::vtm::reset();
        vnt::host::faultReset();
        fs::remove_all(dir_);
    }
    // Writes `bytes` as `name` in the test directory; returns its library path.
    std::string put(const std::string& name, const Bytes& bytes) {
        std::ofstream(dir_ / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        return libPath(name);
    }
    std::string libPath(const std::string& name) {
        std::string p = "Z:" + (dir_ / name).string();
        for (char& c : p)
            if (c == '/') c = '\\';
        return p;
    }
    VNT_VTM_INFO info(VNT_MSG lib) {
        VNT_VTM_INFO i{};
        EXPECT_TRUE(Vnt_VtmInfo(lib, &i));
        return i;
    }
    VNT_VTM_ENTRY entry(VNT_MSG lib, long n) {
        VNT_VTM_ENTRY e{};
        EXPECT_TRUE(Vnt_VtmEntry(lib, n, &e));
        return e;
    }
    std::vector<std::string> iterate(VNT_MSG lib) {
        std::vector<std::string> out;
        for (const char* t = Vnt_VtmRead(lib, 0); *t && out.size() < 100000; t = Vnt_VtmRead(lib, -1))
            out.push_back(t);
        return out;
    }
    fs::path dir_;
};

// ---------------------------------------------------------------------------
// Open: every failure status, and nothing left behind.
// ---------------------------------------------------------------------------

struct OpenCase {
    const char* name;
    void (*mutate)(Bytes&);
    long status;
    const char* report;  // expected report detail, or nullptr for none
};

const OpenCase kOpenCases[] = {
    {"short_header", [](Bytes& b) { b.resize(100); }, 2,
     "Error reading \"%s\"\n(204 bytes requested, 100 bytes read)."},
    {"unknown_magic", [](Bytes& b) { putStr(b, 0, "VANTOXXX", 8); }, 5, nullptr},
    {"magic_msp", [](Bytes& b) { putStr(b, 0, "VANTOMSP", 8); }, 6, nullptr},
    {"magic_vtp", [](Bytes& b) { putStr(b, 0, "VANTOVTP", 8); }, 99, nullptr},
    {"version_text_differs", [](Bytes& b) { putStr(b, F_VERTEXT, "61", 4); }, 7, nullptr},
    {"version_text_not_digits", [](Bytes& b) { putStr(b, F_VERTEXT, "6x", 4); }, 7, nullptr},
    {"version_below_10", [](Bytes& b) { put32(b, F_VERSION, 9); putStr(b, F_VERTEXT, "9", 4); }, 8, nullptr},
    // The version range is checked before the version text.
    {"version_low_before_text", [](Bytes& b) { put32(b, F_VERSION, 9); }, 8, nullptr},
    {"version_above_199", [](Bytes& b) { put32(b, F_VERSION, 200); putStr(b, F_VERTEXT, "200", 4); }, 9, nullptr},
    {"negative_version", [](Bytes& b) { put32(b, F_VERSION, uint32_t(-60)); }, 8, nullptr},
    {"segments_257", [](Bytes& b) { put32(b, F_SEGCOUNT, 257); }, 10, nullptr},
    {"preload_size_65536", [](Bytes& b) { put32(b, F_PRESIZE, 65536); }, 12, nullptr},
    {"preload_area_short", [](Bytes& b) { put32(b, F_PRESIZE, 60000); }, 4,
     "Error reading \"%s\"\n(60000 bytes requested, 18 bytes read)."},
    {"huge_entry_count", [](Bytes& b) { put32(b, F_COUNT, 0x7fffffff); }, 15, nullptr},
    {"negative_entry_count", [](Bytes& b) { put32(b, F_COUNT, 0xfffffff0u); }, 15, nullptr},
    {"index_beyond_file", [](Bytes& b) { put32(b, F_INDEX, 0x7ffffff0); }, 15, nullptr},
    {"index_below_base", [](Bytes& b) { put32(b, F_INDEX, uint32_t(-8)); }, 16, nullptr},
};

class VtmOpenFailure : public VtmTest, public ::testing::WithParamInterface<OpenCase> {};

TEST_P(VtmOpenFailure, FailsCleanly) {
    const OpenCase& c = GetParam();
    Bytes b = buildLib(sample());
    c.mutate(b);
    std::string path = put("bad.vtm", b);
    EXPECT_EQ(Vnt_VtmOpen(path.c_str()), nullptr);
    EXPECT_EQ(Vnt_VtmStatus(), c.status);
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
    if (c.report) {
        char detail[512];
        std::snprintf(detail, sizeof detail, c.report, path.c_str());
        ASSERT_EQ(g_reports.size(), 1u);
        EXPECT_EQ(g_reports[0], kPrefix + detail);
    } else {
        EXPECT_TRUE(g_reports.empty()) << g_reports[0];
    }
}

INSTANTIATE_TEST_SUITE_P(Status, VtmOpenFailure, ::testing::ValuesIn(kOpenCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(VtmTest, OpenMissingFileIsStatus1) {
    EXPECT_EQ(Vnt_VtmOpen(libPath("none.vtm").c_str()), nullptr);
    EXPECT_EQ(Vnt_VtmStatus(), 1);
    EXPECT_EQ(Vnt_VtmOpen(nullptr), nullptr);
    EXPECT_EQ(Vnt_VtmStatus(), 1);
}

TEST_F(VtmTest, VersionSixtyOpens) {
    VNT_MSG lib = Vnt_VtmOpen(put("ok.vtm", buildLib(sample())).c_str());
    ASSERT_NE(lib, nullptr);
    EXPECT_EQ(Vnt_VtmStatus(), 0);
    EXPECT_EQ(info(lib).version, 60);
    EXPECT_STREQ(Vnt_VtmName(lib), "TESTLIB");
    Vnt_VtmClose(lib);
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
}

// Reads that fail halfway, by host fault injection. Plain library, head of
// 220 bytes: read 1 = header, 2 = head bytes, 3 = index, 4 = preload area.
TEST_F(VtmTest, OpenReadFaults) {
    Bytes b = buildLib(sample());
    // Move index and texts 16 bytes further to make 16 extra head bytes.
    b.insert(b.begin() + 204, 16, 0xAB);
    put32(b, F_INDEX, 220);
    put32(b, F_TEXT, 220 + 32);
    put32(b, F_LIBSIZE, uint32_t(b.size()));
    std::string path = put("fault.vtm", b);
    struct {
        vnt::host::Op op;
        int nth;
        long status;
        const char* detail;
    } rows[] = {
        {vnt::host::Op::Read, 1, 2, "(204 bytes requested, 0 bytes read)."},
        {vnt::host::Op::Read, 2, 2, "(16 bytes requested, 0 bytes read)."},
        {vnt::host::Op::Read, 3, 3, "(32 bytes requested, 0 bytes read)."},
        {vnt::host::Op::Read, 4, 4, "(18 bytes requested, 0 bytes read)."},
        {vnt::host::Op::Seek, 1, 103, nullptr},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.status);
        g_reports.clear();
        vnt::host::faultAt(r.op, r.nth);
        EXPECT_EQ(Vnt_VtmOpen(path.c_str()), nullptr);
        EXPECT_EQ(Vnt_VtmStatus(), r.status);
        EXPECT_EQ(vnt::vtm::liveCount(), 0u);
        if (r.detail) {
            ASSERT_EQ(g_reports.size(), 1u);
            EXPECT_EQ(g_reports[0], kPrefix + "Error reading \"" + path + "\"\n" + r.detail);
        } else {
            EXPECT_TRUE(g_reports.empty());
        }
        vnt::host::faultReset();
    }
    // Without faults it opens, and the extra head bytes are kept.
    VNT_MSG lib = Vnt_VtmOpen(path.c_str());
    ASSERT_NE(lib, nullptr);
    EXPECT_EQ(info(lib).headLength, 220);
    EXPECT_STREQ(Vnt_VtmRead(lib, 9), "Nine");
}

TEST_F(VtmTest, RuntimeBytesClearedAnnexKeptWhenSet) {
    Bytes b = buildLib(sample());
    put32(b, 164, 77);          // cursor field in the file
    putStr(b, F_ANNEX, "X-annex", 7);
    VNT_MSG lib = Vnt_VtmOpen(put("annex.vtm", b).c_str());
    ASSERT_NE(lib, nullptr);
    VNT_VTM_INFO i = info(lib);
    EXPECT_EQ(i.cursor, 0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(i.annex), 7), "X-annex");
    Vnt_VtmClose(lib);

    // An annex whose first byte is 0 is cleared as a whole.
    putStr(b, F_ANNEX, std::string("\0junk", 5), 5);
    lib = Vnt_VtmOpen(put("annex0.vtm", b).c_str());
    ASSERT_NE(lib, nullptr);
    VNT_VTM_INFO j = info(lib);
    for (unsigned char c : j.annex) EXPECT_EQ(c, 0);
}

// ---------------------------------------------------------------------------
// Preload validation and its in-memory repairs.
// ---------------------------------------------------------------------------

TEST_F(VtmTest, PreloadRepairs) {
    struct Row {
        const char* name;
        LibSpec spec;
        void (*mutate)(Bytes&);
        long status;
        long entry;        // entry to inspect
        uint16_t length;   // its stored length after the open
        uint32_t position; // its position after the open
    };
    LibSpec dup = sample(2);
    dup.msgs = {{1, "One"}, {1, "Uno"}, {3, "Three"}};
    const Row rows[] = {
        {"consistent", sample(3), [](Bytes&) {}, 0, 1, 4, 4},
        {"length_repaired", sample(3), [](Bytes& b) { put16(b, entryAt(1) + 6, 40); }, 102, 1, 4, 4},
        {"position_repaired", sample(), [](Bytes& b) { put32(b, entryAt(2), 99); }, 103, 2, 5, 8},
        // The walk stops at the last preloaded entry before checking it.
        {"last_preloaded_unchecked", sample(3), [](Bytes& b) { put32(b, entryAt(2), 99); }, 0, 2, 5, 99},
        {"first_position_zeroed", sample(3), [](Bytes& b) { put32(b, entryAt(0), 7); }, 0, 0, 4, 0},
        {"last_id_at_wrong_entry", dup, [](Bytes&) {}, 101, 1, 4, 4},
        {"last_id_beyond_count", sample(2), [](Bytes& b) { put32(b, F_LASTPRE, 5); }, 11, 1, 4, 4},
        // "Two" ends right at the preload size; its NUL lies in the spare bytes.
        {"overrun", sample(), [](Bytes& b) { put32(b, F_PRESIZE, 7); }, 12, 2, 5, 8},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        vnt::vtm::reset();
        Vnt_VtmSetReport(captureReport);
        Bytes b = buildLib(r.spec);
        r.mutate(b);
        VNT_MSG lib = Vnt_VtmOpen(put(std::string(r.name) + ".vtm", b).c_str());
        ASSERT_NE(lib, nullptr);
        EXPECT_EQ(Vnt_VtmStatus(), r.status);
        VNT_VTM_ENTRY e = entry(lib, r.entry);
        EXPECT_EQ(e.length, r.length);
        EXPECT_EQ(e.position, r.position);
    }
}

TEST_F(VtmTest, RepairedEntryReadsItsText) {
    Bytes b = buildLib(sample());
    put32(b, entryAt(2), 1000);  // "Five" at a wrong position
    VNT_MSG lib = Vnt_VtmOpen(put("r.vtm", b).c_str());
    EXPECT_EQ(Vnt_VtmStatus(), 103);
    EXPECT_STREQ(Vnt_VtmRead(lib, 5), "Five");
    EXPECT_EQ(Vnt_VtmStatus(), 0);
}

TEST_F(VtmTest, NoRepairSwitchSkipsValidation) {
    Bytes b = buildLib(sample(3));
    put16(b, entryAt(1) + 6, 40);
    put32(b, entryAt(2), 60000);
    std::string path = put("nr.vtm", b);
    EXPECT_EQ(Vnt_VtmSwNoRepair(1), 0);
    VNT_MSG lib = Vnt_VtmOpen(path.c_str());
    ASSERT_NE(lib, nullptr);
    EXPECT_EQ(Vnt_VtmStatus(), 0);
    EXPECT_EQ(entry(lib, 1).length, 40);
    // The unrepaired position lies beyond the preload area: refused, not read.
    EXPECT_STREQ(Vnt_VtmRead(lib, 5), "!Invalid Offset in Message File!");
    EXPECT_EQ(Vnt_VtmStatus(), 103);
    EXPECT_EQ(Vnt_VtmSwNoRepair(2), 1);
    EXPECT_EQ(Vnt_VtmSwNoRepair(0), 1);
    EXPECT_EQ(Vnt_VtmSwNoRepair(2), 0);
}

TEST_F(VtmTest, PreloadCountAndSizeClamped) {
    Bytes b = buildLib(sample());
    put32(b, F_PRECOUNT, 50);
    put32(b, F_LIBSIZE, uint32_t(204 + 32 + 10));  // text area of 10 bytes
    VNT_MSG lib = Vnt_VtmOpen(put("clamp.vtm", b).c_str());
    ASSERT_NE(lib, nullptr);
    EXPECT_EQ(info(lib).preloadCount, 4);
    EXPECT_EQ(info(lib).preloadSize, 10u);
    EXPECT_EQ(Vnt_VtmStatus(), 12);  // the texts (18 bytes) overrun the clamped size
}

// ---------------------------------------------------------------------------
// Reads.
// ---------------------------------------------------------------------------

TEST_F(VtmTest, ReadsPreloadedInPlaceAndOthersFromTheFile) {
    VNT_MSG lib = Vnt_VtmOpen(put("p.vtm", buildLib(sample(2))).c_str());
    ASSERT_NE(lib, nullptr);
    EXPECT_TRUE(info(lib).fileOpen);
    const char* one = Vnt_VtmRead(lib, 1);
    EXPECT_STREQ(one, "One");
    EXPECT_STREQ(Vnt_VtmRead(lib, 2), "Two");
    EXPECT_STREQ(one, "One") << "a preloaded text stays in place";
    const char* nine = Vnt_VtmRead(lib, 9);
    EXPECT_STREQ(nine, "Nine");
    EXPECT_STREQ(Vnt_VtmRead(lib, 5), "Five");
    EXPECT_EQ(nine, Vnt_VtmRead(lib, 9)) << "file texts share the message buffer";
    EXPECT_TRUE(entry(lib, 1).preloaded);
    EXPECT_FALSE(entry(lib, 2).preloaded);
}

TEST_F(VtmTest, ReadFailures) {
    struct Row {
        const char* name;
        void (*mutate)(Bytes&);
        VntMsgRef ref;
        const char* text;
        long status;
        const char* report;
    };
    const Row rows[] = {
        {"not_found", [](Bytes&) {}, 77, "", 101, "Message ID 77 not found."},
        {"position_outside", [](Bytes& b) { put32(b, entryAt(3), 500); }, 9,
         "!Invalid Offset in Message File!", 103, nullptr},
        {"position_at_area_end", [](Bytes& b) { put32(b, entryAt(3), 18); }, 9,
         "!Invalid Offset in Message File!", 103, nullptr},
        // Stored length 2000: the fallback read meets the NUL and yields "".
        {"length_2000", [](Bytes& b) { put16(b, entryAt(3) + 6, 2000); }, 9, "", 102, nullptr},
        // Longer than what is left of the text area.
        {"length_past_area", [](Bytes& b) { put16(b, entryAt(2) + 6, 12); }, 5, "", 102, nullptr},
        // The file ends before the library size says: a short read.
        {"truncated", [](Bytes& b) { b.erase(b.end() - 2, b.end()); }, 9, "", 104,
         "Error reading \"TESTLIB\"\n(5 bytes requested, 3 bytes read)."},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        g_reports.clear();
        Bytes b = buildLib(sample(1));
        r.mutate(b);
        VNT_MSG lib = Vnt_VtmOpen(put(std::string(r.name) + ".vtm", b).c_str());
        ASSERT_NE(lib, nullptr);
        EXPECT_STREQ(Vnt_VtmRead(lib, r.ref), r.text);
        EXPECT_EQ(Vnt_VtmStatus(), r.status);
        if (r.report) {
            ASSERT_EQ(g_reports.size(), 1u);
            EXPECT_EQ(g_reports[0], kPrefix + r.report);
        } else {
            EXPECT_TRUE(g_reports.empty());
        }
        Vnt_VtmClose(lib);
    }
}

TEST_F(VtmTest, FallbackReadRepairsStoredLengthToTwo) {
    Bytes b = buildLib(sample(1));
    put16(b, entryAt(3) + 6, 2000);
    std::string path = put("fb.vtm", b);
    VNT_MSG lib = Vnt_VtmOpen(path.c_str());
    EXPECT_STREQ(Vnt_VtmRead(lib, 9), "");
    EXPECT_EQ(entry(lib, 3).length, 2);
    // Kept for compatibility: from then on the length is plausible and the
    // entry reads as the first character of its text.
    EXPECT_STREQ(Vnt_VtmRead(lib, 9), "N");
    EXPECT_EQ(Vnt_VtmStatus(), 0);
    Vnt_VtmClose(lib);

    Vnt_VtmSwNoRepair(1);
    lib = Vnt_VtmOpen(path.c_str());
    EXPECT_STREQ(Vnt_VtmRead(lib, 9), "");
    EXPECT_EQ(Vnt_VtmStatus(), 102);
    EXPECT_EQ(entry(lib, 3).length, 2000);
}

TEST_F(VtmTest, FallbackReadAtEndOfFileKeepsWhatItRead) {
    Bytes b = buildLib(sample(1));
    b.pop_back();  // the last text loses its NUL
    put32(b, F_LIBSIZE, uint32_t(b.size()));
    VNT_MSG lib = Vnt_VtmOpen(put("eof.vtm", b).c_str());
    EXPECT_STREQ(Vnt_VtmRead(lib, 9), "Nine");  // stored 5 > 4 left in the area
    EXPECT_EQ(Vnt_VtmStatus(), 102);
    EXPECT_EQ(entry(lib, 3).length, 1);
}

TEST_F(VtmTest, ShortTextReadByFault) {
    VNT_MSG lib = Vnt_VtmOpen(put("f.vtm", buildLib(sample(1))).c_str());
    vnt::host::faultAt(vnt::host::Op::Read, 1);
    EXPECT_STREQ(Vnt_VtmRead(lib, 2), "");
    EXPECT_EQ(Vnt_VtmStatus(), 104);
    ASSERT_EQ(g_reports.size(), 1u);
    EXPECT_EQ(g_reports[0], kPrefix + "Error reading \"TESTLIB\"\n(4 bytes requested, 0 bytes read).");
    vnt::host::faultAt(vnt::host::Op::Seek, 1);
    EXPECT_STREQ(Vnt_VtmRead(lib, 2), "!Invalid Offset in Message File!");
    EXPECT_EQ(Vnt_VtmStatus(), 103);
}

TEST_F(VtmTest, EmptyLibrary) {
    std::string path = put("empty.vtm", buildLib(LibSpec{}));
    // Wholly preloaded, so its file is closed: the "not open" test comes first.
    VNT_MSG lib = Vnt_VtmOpen(path.c_str());
    ASSERT_NE(lib, nullptr);
    EXPECT_FALSE(info(lib).fileOpen);
    EXPECT_STREQ(Vnt_VtmRead(lib, 1), "");
    EXPECT_EQ(Vnt_VtmStatus(), 100);
    EXPECT_STREQ(Vnt_VtmRead(lib, 0), "");
    EXPECT_EQ(Vnt_VtmStatus(), 0);
    Vnt_VtmClose(lib);
    // With its file kept open, it has no entries.
    Vnt_VtmSwRaw(1);
    lib = Vnt_VtmOpen(path.c_str());
    EXPECT_STREQ(Vnt_VtmRead(lib, 1), "");
    EXPECT_EQ(Vnt_VtmStatus(), 11);
}

TEST_F(VtmTest, QuietSwitchSilencesNotFoundAndKeepsFile) {
    Vnt_VtmSwQuiet(1);
    VNT_MSG lib = Vnt_VtmOpen(put("q.vtm", buildLib(sample())).c_str());
    EXPECT_TRUE(info(lib).fileOpen);  // not closed although all is preloaded
    EXPECT_STREQ(Vnt_VtmRead(lib, 77), "");
    EXPECT_EQ(Vnt_VtmStatus(), 101);
    EXPECT_TRUE(g_reports.empty());
    EXPECT_EQ(Vnt_VtmSwQuiet(0), 1);
}

TEST_F(VtmTest, DuplicateIdsFirstMatchWins) {
    LibSpec s = sample(0);
    s.msgs = {{4, "first"}, {7, "seven"}, {4, "second"}};
    VNT_MSG lib = Vnt_VtmOpen(put("dup.vtm", buildLib(s)).c_str());
    EXPECT_STREQ(Vnt_VtmRead(lib, 4), "first");
    EXPECT_STREQ(Vnt_VtmEntryText(lib, 2), "second");
    // Iteration walks the index, but each ID reads its first entry.
    EXPECT_EQ(iterate(lib), (std::vector<std::string>{"first", "seven", "first"}));
}

// Lookups by ID in small and large libraries (the ID map changes its form
// with the entry count): every ID appears more than once, the first wins.
TEST_F(VtmTest, FirstEntryWinsAtEverySize) {
    for (long count : {10L, 20000L, 70000L}) {
        SCOPED_TRACE(count);
        vnt::vtm::reset();
        Vnt_VtmSetReport(captureReport);
        LibSpec s = sample(0);
        s.msgs.clear();
        const long distinct = count < 9000 ? count / 2 : 9000;
        for (long n = 0; n < count; ++n) s.msgs.push_back({uint16_t(n % distinct + 1), "t" + std::to_string(n)});
        VNT_MSG lib = Vnt_VtmOpen(put("big" + std::to_string(count) + ".vtm", buildLib(s)).c_str());
        ASSERT_NE(lib, nullptr);
        for (long id : {1L, 2L, distinct / 2, distinct}) EXPECT_STREQ(Vnt_VtmRead(lib, id), ("t" + std::to_string(id - 1)).c_str());
        EXPECT_STREQ(Vnt_VtmRead(lib, distinct + 1), "");
        EXPECT_EQ(Vnt_VtmStatus(), 101);
        Vnt_VtmResolve(lib, distinct, false);
        EXPECT_EQ(info(lib).cursor, distinct - 1);
    }
}

// ---------------------------------------------------------------------------
// References: literal texts, resolve and iteration.
// ---------------------------------------------------------------------------

TEST_F(VtmTest, LiteralTextsComeBackUnchanged) {
    VNT_MSG lib = Vnt_VtmOpen(put("l.vtm", buildLib(sample())).c_str());
    const char* text = "Ready text %s";
    EXPECT_EQ(Vnt_VtmRead(lib, text), text);
    EXPECT_EQ(Vnt_VtmRead(nullptr, text), text);  // no library needed
    EXPECT_STREQ(Vnt_VtmRead(lib, 70000), "");   // a number out of range is no ID
    EXPECT_STREQ(Vnt_VtmRead(lib, -5), "");
    EXPECT_TRUE(g_reports.empty());
}

TEST_F(VtmTest, ResolveWithoutAnyLibrary) {
    // Kept for compatibility: the signed test sends 0 and -1 to the generic text.
    struct {
        long ref;
        bool reported;
    } rows[] = {{0, true}, {-1, true}, {5, true}, {32767, true}, {32768, false}, {-7, true}};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.ref);
        g_reports.clear();
        EXPECT_EQ(Vnt_VtmResolve(nullptr, r.ref, true), VntMsgRef(r.ref));
        if (r.reported) {
            ASSERT_EQ(g_reports.size(), 1u);
            EXPECT_EQ(g_reports[0], kPrefix + "Cannot get message " + std::to_string(r.ref) +
                                        " when no message library is open!");
        } else {
            EXPECT_TRUE(g_reports.empty());
        }
    }
    g_reports.clear();
    EXPECT_STREQ(Vnt_VtmRead(nullptr, 5), "");
    EXPECT_EQ(Vnt_VtmStatus(), 100);
    ASSERT_EQ(g_reports.size(), 2u);
    EXPECT_EQ(g_reports[1], kPrefix + "Message Library not open (msgid=5).");
}

TEST_F(VtmTest, IterationSkipsCommentsAndEnds) {
    LibSpec s = sample(2);
    s.msgs = {{1, ";comment"}, {2, "a"}, {3, ";x"}, {4, ";y"}, {5, "b"}, {6, ";tail"}};
    VNT_MSG lib = Vnt_VtmOpen(put("it.vtm", buildLib(s)).c_str());
    EXPECT_EQ(iterate(lib), (std::vector<std::string>{"a", "b"}));
    EXPECT_STREQ(Vnt_VtmRead(lib, -1), "");  // past the end stays at the end
    EXPECT_EQ(Vnt_VtmStatus(), 0);
    EXPECT_STREQ(Vnt_VtmRead(lib, 1), ";comment");  // by ID, comments are texts
}

TEST_F(VtmTest, IterationCursor) {
    VNT_MSG lib = Vnt_VtmOpen(put("c.vtm", buildLib(sample(2))).c_str());
    // Kept for compatibility: "next" before any "first" starts at entry 1.
    EXPECT_STREQ(Vnt_VtmRead(lib, -1), "Two");
    EXPECT_EQ(info(lib).cursor, 1);
    // A read by ID leaves the cursor; a resolve without keep-cursor moves it.
    EXPECT_STREQ(Vnt_VtmRead(lib, 1), "One");
    EXPECT_STREQ(Vnt_VtmRead(lib, -1), "Five");
    EXPECT_EQ(Vnt_VtmResolve(lib, 1, false), VntMsgRef(1));
    EXPECT_STREQ(Vnt_VtmRead(lib, -1), "Two");
    Vnt_VtmResolve(lib, 777, false);  // unknown ID: cursor to the entry count
    EXPECT_EQ(info(lib).cursor, 4);
    EXPECT_STREQ(Vnt_VtmRead(lib, -1), "");
    // Resolving an iteration step without keep-cursor does not store it.
    EXPECT_EQ(Vnt_VtmResolve(lib, 0, false), VntMsgRef(1));
    EXPECT_EQ(Vnt_VtmResolve(lib, -1, false), VntMsgRef(0));
    EXPECT_EQ(info(lib).cursor, 4);
}

// ---------------------------------------------------------------------------
// Sharing and the file's life.
// ---------------------------------------------------------------------------

TEST_F(VtmTest, SharingByName) {
    struct Row {
        const char* file;
        const char* header;
        bool shared;
    } rows[] = {
        {"testlib.vtm", "TESTLIB", true},
        {"TestLib", "TESTLIB", true},
        {"LongLibraryName.vtm", "LongLibr", true},
        {"ab.c.vtm", "ab", true},
        {"other.vtm", "TESTLIB", false},
        {"noname.vtm", "", false},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.file);
        vnt::vtm::reset();
        LibSpec s = sample();
        s.name = r.header;
        std::string path = put(r.file, buildLib(s));
        VNT_MSG a = Vnt_VtmOpen(path.c_str());
        VNT_MSG b = Vnt_VtmOpen(path.c_str());
        ASSERT_TRUE(a && b);
        EXPECT_EQ(a == b, r.shared);
        EXPECT_EQ(info(a).refCount, r.shared ? 2 : 1);
        Vnt_VtmClose(a);
        EXPECT_EQ(vnt::vtm::liveCount(), 1u);
        Vnt_VtmClose(b);
        EXPECT_EQ(vnt::vtm::liveCount(), 0u);
    }
}

TEST_F(VtmTest, SharingSwitchedOff) {
    std::string path = put("testlib.vtm", buildLib(sample()));
    VNT_MSG a = Vnt_VtmOpen(path.c_str());
    EXPECT_EQ(Vnt_VtmNoShare(1), 1);
    VNT_MSG b = Vnt_VtmOpen(path.c_str());
    EXPECT_NE(a, b);
    EXPECT_EQ(Vnt_VtmNoShare(-1), 0);
    EXPECT_EQ(Vnt_VtmNoShare(-1), 0);  // never below zero
    EXPECT_EQ(Vnt_VtmOpen(path.c_str()), a);  // the first in the list is shared
    Vnt_VtmSwRaw(1);  // the second switch does not affect sharing
    EXPECT_EQ(Vnt_VtmOpen(path.c_str()), a);
    Vnt_VtmSwQuiet(1);
    EXPECT_NE(Vnt_VtmOpen(path.c_str()), a);
}

TEST_F(VtmTest, FileClosedOnlyWhenEverythingIsPreloaded) {
    struct Row {
        const char* name;
        long preload;
        bool raw;
        bool open;
    } rows[] = {
        {"three_of_four", 3, false, true},
        {"all", -1, false, false},
        {"all_raw", -1, true, true},
        {"none", 0, false, true},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        vnt::vtm::reset();
        Vnt_VtmSwRaw(r.raw ? 1 : 0);
        VNT_MSG lib = Vnt_VtmOpen(put(std::string(r.name) + ".vtm", buildLib(sample(r.preload))).c_str());
        ASSERT_NE(lib, nullptr);
        EXPECT_EQ(info(lib).fileOpen, r.open);
        EXPECT_STREQ(Vnt_VtmRead(lib, 9), "Nine");
        EXPECT_STREQ(Vnt_VtmRead(lib, 1), "One");
    }
}

// ---------------------------------------------------------------------------
// The system library.
// ---------------------------------------------------------------------------

LibSpec systemSpec(long preload = -1) {
    LibSpec s;
    s.name = "VNT60LIB";
    s.systemFlag = 1;
    s.preload = preload;
    s.msgs = {{32768, "System first"}, {40000, "System forty"}};
    return s;
}

TEST_F(VtmTest, SystemLibraryRegisteredAndUsedForSystemIds) {
    VNT_MSG sys = Vnt_VtmOpen(put("VNT60LIB.VTM", buildLib(systemSpec())).c_str());
    ASSERT_NE(sys, nullptr);
    EXPECT_EQ(Vnt_VtmSystem(), sys);
    EXPECT_TRUE(info(sys).isSystem);
    LibSpec app = sample();
    app.name = "APP";
    app.msgs.push_back({40000, "App forty"});
    VNT_MSG lib = Vnt_VtmOpen(put("app.vtm", buildLib(app)).c_str());
    EXPECT_STREQ(Vnt_VtmRead(lib, 40000), "System forty");
    EXPECT_STREQ(Vnt_VtmRead(nullptr, 32768), "System first");
    EXPECT_STREQ(Vnt_VtmName(nullptr), "VNT60LIB");
    // A second library with the flag is not registered.
    LibSpec other = systemSpec();
    other.name = "SYS2";
    VNT_MSG sys2 = Vnt_VtmOpen(put("sys2.vtm", buildLib(other)).c_str());
    EXPECT_EQ(Vnt_VtmSystem(), sys);
    EXPECT_FALSE(info(sys2).isSystem);
    // With the second switch on, system IDs stay in the given library.
    Vnt_VtmSwRaw(1);
    EXPECT_STREQ(Vnt_VtmRead(lib, 40000), "App forty");
    Vnt_VtmSwRaw(0);
    Vnt_VtmClose(sys);
    EXPECT_EQ(Vnt_VtmSystem(), nullptr);
    EXPECT_STREQ(Vnt_VtmRead(lib, 40000), "");
    EXPECT_EQ(Vnt_VtmStatus(), 100);
}

TEST_F(VtmTest, SystemLibraryMustBePreloaded) {
    EXPECT_EQ(Vnt_VtmOpen(put("VNT60LIB.VTM", buildLib(systemSpec(1))).c_str()), nullptr);
    ASSERT_EQ(g_reports.size(), 1u);
    EXPECT_EQ(g_reports[0], kPrefix + "SysMsgLib MUST BE PRELOAD.");
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
    EXPECT_EQ(Vnt_VtmSystem(), nullptr);
    // Quiet: no registration, so no rule either.
    Vnt_VtmSwQuiet(1);
    VNT_MSG lib = Vnt_VtmOpen(libPath("VNT60LIB.VTM").c_str());
    ASSERT_NE(lib, nullptr);
    EXPECT_EQ(Vnt_VtmSystem(), nullptr);
}

// ---------------------------------------------------------------------------
// Segments.
// ---------------------------------------------------------------------------

Bytes sampleContainer() {
    LibSpec app = sample(2);
    app.name = "APPMSG";
    LibSpec other = sample();
    other.name = "OTHER";
    other.msgs = {{1, "Other one"}, {2, ";c"}, {3, "Other three"}};
    return buildContainer("BOX", {{"APPMSG", app}, {"OTHER", other}});
}

TEST_F(VtmTest, SegmentsShareTheirContainer) {
    VNT_MSG box = Vnt_VtmOpen(put("box.vtm", sampleContainer()).c_str());
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(info(box).fileOpen);  // a container keeps its file
    EXPECT_STREQ(Vnt_VtmRead(box, 1), "");  // a container holds no messages itself
    EXPECT_EQ(Vnt_VtmStatus(), 11);
    VNT_VTM_SEGENTRY se{};
    ASSERT_TRUE(Vnt_VtmSegEntry(box, 1, &se));
    EXPECT_STREQ(se.name, "OTHER");

    VNT_MSG app = Vnt_VtmOpenSeg(box, "Z:\\x\\appmsg.vtm");
    ASSERT_NE(app, nullptr);
    EXPECT_EQ(Vnt_VtmStatus(), 0);
    EXPECT_TRUE(info(app).isSegment);
    EXPECT_EQ(info(box).refCount, 2);
    EXPECT_STREQ(Vnt_VtmRead(app, 2), "Two");
    EXPECT_STREQ(Vnt_VtmRead(app, 9), "Nine");  // from the shared file

    VNT_MSG other = Vnt_VtmOpenSeg(box, "other");
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(iterate(other), (std::vector<std::string>{"Other one", "Other three"}));
    // Found again through the chain, also from a sibling segment.
    EXPECT_EQ(Vnt_VtmOpenSeg(other, "APPMSG"), app);
    EXPECT_EQ(info(app).refCount, 2);
    EXPECT_EQ(info(box).refCount, 4);

    Vnt_VtmClose(app);
    Vnt_VtmClose(app);
    Vnt_VtmClose(other);
    EXPECT_EQ(info(box).refCount, 1);
    EXPECT_EQ(vnt::vtm::liveCount(), 1u);
    Vnt_VtmClose(box);
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
    EXPECT_TRUE(g_reports.empty());
}

TEST_F(VtmTest, ContainerReleasedWithItsLastSegment) {
    VNT_MSG box = Vnt_VtmOpen(put("box.vtm", sampleContainer()).c_str());
    VNT_MSG app = Vnt_VtmOpenSeg(box, "APPMSG");
    Vnt_VtmClose(box);
    EXPECT_STREQ(Vnt_VtmRead(app, 9), "Nine");
    Vnt_VtmClose(app);
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
    EXPECT_TRUE(g_reports.empty());
}

TEST_F(VtmTest, SegmentFailures) {
    struct Row {
        const char* name;
        void (*mutate)(Bytes&);
        const char* seg;
        long status;
        int boxRefs;  // the container's references afterwards
    } rows[] = {
        {"not_in_directory", [](Bytes&) {}, "NOPE", 13, 1},
        {"empty_name", [](Bytes&) {}, "", 13, 1},
        {"empty_dir_name_never_matches", [](Bytes& b) { b[204 + 4] = 0; }, "", 13, 1},
        // The directory says APPMSG, the header says APPX: the container's
        // reference taken for it is kept (compatibility).
        {"header_name_differs", [](Bytes& b) { putStr(b, 228 + F_NAME, "APPX", 8); }, "APPMSG", 14, 2},
        {"bad_magic", [](Bytes& b) { putStr(b, 228, "NOTAVTM!", 8); }, "APPMSG", 5, 2},
        {"offset_past_end", [](Bytes& b) { put32(b, 204, 0x7ffffff0); }, "APPMSG", 2, 2},
        {"negative_offset", [](Bytes& b) { put32(b, 204, uint32_t(-4)); }, "APPMSG", 103, 2},
        // The segment's index runs past the end of the file.
        {"index_short", [](Bytes& b) { put32(b, 228 + F_INDEX, uint32_t(b.size() - 16)); }, "OTHER...", 3, 2},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        vnt::vtm::reset();
        Vnt_VtmSetReport(captureReport);
        Bytes b = sampleContainer();
        r.mutate(b);
        VNT_MSG box = Vnt_VtmOpen(put(std::string(r.name) + ".vtm", b).c_str());
        ASSERT_NE(box, nullptr);
        // index_short is meant for the first segment; its directory name is APPMSG.
        const char* seg = std::strcmp(r.seg, "OTHER...") == 0 ? "APPMSG" : r.seg;
        EXPECT_EQ(Vnt_VtmOpenSeg(box, seg), nullptr);
        EXPECT_EQ(Vnt_VtmStatus(), r.status);
        EXPECT_EQ(info(box).refCount, r.boxRefs);
        EXPECT_EQ(vnt::vtm::liveCount(), 1u);
        EXPECT_TRUE(info(box).fileOpen);
    }
}

TEST_F(VtmTest, SegmentsStillOpenWhenContainerOverClosed) {
    VNT_MSG box = Vnt_VtmOpen(put("box.vtm", sampleContainer()).c_str());
    VNT_MSG app = Vnt_VtmOpenSeg(box, "APPMSG");
    VNT_MSG other = Vnt_VtmOpenSeg(box, "OTHER");
    Vnt_VtmClose(box);
    Vnt_VtmClose(box);
    EXPECT_EQ(info(box).refCount, 1);
    Vnt_VtmClose(box);
    ASSERT_EQ(g_reports.size(), 1u);
    EXPECT_EQ(g_reports[0], kPrefix + "segments still open");
    EXPECT_EQ(vnt::vtm::liveCount(), 2u);
    EXPECT_FALSE(info(app).fileOpen);
    EXPECT_STREQ(Vnt_VtmRead(app, 1), "One");  // preloaded: still there
    EXPECT_STREQ(Vnt_VtmRead(app, 9), "");
    EXPECT_EQ(Vnt_VtmStatus(), 100);
    EXPECT_EQ(Vnt_VtmOpenSeg(app, "OTHER"), other);  // the chain survives
    Vnt_VtmClose(other);
    Vnt_VtmClose(other);
    Vnt_VtmClose(app);
    EXPECT_EQ(vnt::vtm::liveCount(), 0u);
}

TEST_F(VtmTest, SegmentOfNullParentUsesSystemLibrary) {
    EXPECT_EQ(Vnt_VtmOpenSeg(nullptr, "X"), nullptr);
    EXPECT_EQ(Vnt_VtmStatus(), 100);
}

// ---------------------------------------------------------------------------
// Reports.
// ---------------------------------------------------------------------------

TEST_F(VtmTest, DefaultReportAnswersOk) {
    Vnt_VtmSetReport(nullptr);
    EXPECT_STREQ(Vnt_VtmRead(nullptr, 5), "");
    EXPECT_EQ(Vnt_VtmSetReport(captureReport)("probe"), VNT_RESP_OK);
}

using VtmDeathTest = VtmTest;

TEST_F(VtmDeathTest, ReportNotConfirmedEndsProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            Vnt_VtmSetReport([](const char*) -> VNT_RESP { return VNT_RESP_CANCEL; });
            Vnt_VtmRead(nullptr, 5);
        },
        ::testing::ExitedWithCode(3), "");
}

// ---------------------------------------------------------------------------
// Libraries from the writer of the tools.
// ---------------------------------------------------------------------------

#ifdef HAVE_WRITER
TEST_F(VtmTest, WriterLibrariesReadBack) {
    vtmtool::Library lib;
    lib.name = "BIG";
    lib.preload = 100;
    for (uint16_t id = 1; id <= 3000; ++id)
        lib.messages.push_back({uint16_t(id * 3), (id % 7 ? "Text " : ";Note ") + std::to_string(id)});
    VNT_MSG h = Vnt_VtmOpen(put("big.vtm", vtmtool::writeLibrary(lib)).c_str());
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(Vnt_VtmStatus(), 0);
    for (uint16_t id = 1; id <= 3000; ++id) {
        ASSERT_STREQ(Vnt_VtmRead(h, id * 3), lib.messages[id - 1].text.c_str()) << id;
        ASSERT_EQ(Vnt_VtmStatus(), 0);
    }
    EXPECT_STREQ(Vnt_VtmRead(h, 4), "");
    EXPECT_EQ(iterate(h).size(), 3000u - 3000u / 7);

    vtmtool::Container box;
    box.name = "BOX";
    box.segments = {{"ONE", 60, 0, -1, {{1, "a"}}}, {"TWO", 60, 0, 0, {{2, "b"}}}};
    VNT_MSG c = Vnt_VtmOpen(put("box.vtm", vtmtool::writeContainer(box)).c_str());
    ASSERT_NE(c, nullptr);
    EXPECT_STREQ(Vnt_VtmRead(Vnt_VtmOpenSeg(c, "two"), 2), "b");
    EXPECT_STREQ(Vnt_VtmRead(Vnt_VtmOpenSeg(c, "one"), 1), "a");
}
#endif

}  // namespace
