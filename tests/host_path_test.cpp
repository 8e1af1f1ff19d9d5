// The host layer: Windows-1252 text, the volume table, path conversion with
// the case-insensitive fallback, per-volume current directories, files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <cstring>
#include <string>

#include "host/error.h"
#include "host/fault.h"
#include "host/file.h"
#include "host/host.h"
#include "host/module.h"
#include "host/path.h"
#include "host/process.h"
#include "vanto/lfn.h"
#include "vanto/text.h"
#include "scratch.h"

namespace fs = std::filesystem;
using namespace vnt::host;

namespace {

class HostTest : public ::testing::Test {
protected:
    void SetUp() override {
        savedCwd_ = fs::current_path();
        root_ = vnt::test::scratchDir("vanto_host_");
        fs::remove_all(root_);
        fs::create_directories(root_ / "Daten" / "Mandant1");
        std::ofstream(root_ / "Daten" / "Mandant1" / "File.TXT") << "0123456789";
        reset();
        ASSERT_TRUE(volMap('T', root_.c_str()));
    }
    void TearDown() override {
        fs::current_path(savedCwd_);
        reset();
        fs::remove_all(root_);
    }
    std::string host(const char* lib) {
        std::string out;
        EXPECT_TRUE(toHost(lib, out)) << lib;
        return out;
    }
    fs::path savedCwd_, root_;
};

TEST(Cp1252, EveryByteRoundTrips) {
    for (int b = 1; b < 256; ++b) {
        std::string in(1, static_cast<char>(b)), utf8 = Vnt_TxtToUtf8(in), back;
        ASSERT_TRUE(Vnt_TxtFromUtf8(utf8, back)) << b;
        EXPECT_EQ(back, in) << b;
    }
    EXPECT_EQ(Vnt_TxtToUtf8("\x80\xE4\xDF"), "\u20AC\u00E4\u00DF");
}

TEST(Cp1252, RefusesWhatHasNoForm) {
    struct Row { const char* name; std::string utf8; std::size_t badPos; };
    const Row rows[] = {
        {"latin extended", "ab\u0101", 2},
        {"cjk", "x\u4E2D", 1},
        {"four-byte emoji", "\xF0\x9F\x98\x80", 0},
        {"lone continuation", "a\x80", 1},
        {"truncated sequence", "ab\xC3", 2},
        {"overlong slash", "\xC0\xAF", 0},
        {"surrogate", "\xED\xA0\x80", 0},
    };
    for (const Row& r : rows) {
        std::string out;
        std::size_t bad = 999;
        EXPECT_FALSE(Vnt_TxtFromUtf8(r.utf8, out, &bad)) << r.name;
        EXPECT_EQ(bad, r.badPos) << r.name;
    }
}

TEST(Cp1252, UpperCase) {
    // ä, ÿ and š have upper cases; ß has no single one; ÷ is no letter.
    const unsigned char in[] = {'a', 0xE4, 0xFF, 0x9A, 0xDF, 0xF7, '1'};
    const unsigned char up[] = {'A', 0xC4, 0x9F, 0x8A, 0xDF, 0xF7, '1'};
    for (std::size_t i = 0; i < sizeof in; ++i) EXPECT_EQ(Vnt_TxtUpper(in[i]), up[i]) << i;
}

TEST_F(HostTest, ToHostFindsComponentsWithoutCase) {
    const std::string r = root_.string();
    struct Row { const char* lib; std::string host; };
    const Row rows[] = {
        {"T:\\", r},
        {"T:\\Daten\\Mandant1\\File.TXT", r + "/Daten/Mandant1/File.TXT"},
        {"T:\\DATEN\\mandant1\\file.txt", r + "/Daten/Mandant1/File.TXT"},
        {"t:/daten/MANDANT1", r + "/Daten/Mandant1"},
        // A missing component keeps the case it was given, and so does the rest.
        {"T:\\daten\\Neu\\Sub", r + "/Daten/Neu/Sub"},
        // Dots resolve lexically and never climb out of the volume.
        {"T:\\Daten\\.\\x\\..\\Mandant1", r + "/Daten/Mandant1"},
        {"T:\\..\\..\\a", r + "/a"},
    };
    for (const Row& row : rows) EXPECT_EQ(host(row.lib), row.host) << row.lib;
}

TEST_F(HostTest, ToHostMatchesAccentedNames) {
    fs::create_directories(root_ / "M\u00FCller");
    EXPECT_EQ(host("T:\\M\xDCLLER"), (root_ / "M\u00FCller").string());  // "MÜLLER" in Windows-1252
    EXPECT_EQ(host("T:\\\xE4"), root_.string() + "/\u00E4");            // new name written as UTF-8
}

TEST_F(HostTest, ToHostRefuses) {
    std::string out;
    for (const char* lib : {"\\\\server\\share\\x", "Q:\\x", "1:\\x", "//server/share"})
        EXPECT_FALSE(toHost(lib, out)) << lib;
    ASSERT_TRUE(volUnmap('T'));
    EXPECT_FALSE(toHost("T:\\Daten", out));
    EXPECT_FALSE(volUnmap('T'));
}

TEST_F(HostTest, MappingRules) {
    EXPECT_FALSE(volMap('1', root_.c_str()));
    EXPECT_FALSE(volMap('Q', (root_ / "missing").c_str()));
    EXPECT_FALSE(volMap('Q', (root_ / "Daten" / "Mandant1" / "File.TXT").c_str()));
    EXPECT_TRUE(volKnown('t'));
    EXPECT_TRUE(volKnown('Z'));
    EXPECT_FALSE(volKnown('Q'));
    // A mapped directory that disappears is no longer a known volume.
    ASSERT_TRUE(volMap('Q', (root_ / "Daten").c_str()));
    fs::rename(root_ / "Daten", root_ / "Moved");
    EXPECT_FALSE(volKnown('Q'));
}

TEST_F(HostTest, FromHostTakesTheLongestMapping) {
    std::string lib;
    ASSERT_TRUE(fromHost((root_ / "Daten" / "x.vtm").c_str(), lib));
    EXPECT_EQ(lib, "T:\\Daten\\x.vtm");
    ASSERT_TRUE(fromHost(root_.c_str(), lib));
    EXPECT_EQ(lib, "T:\\");
    ASSERT_TRUE(fromHost("/usr//lib/./x/../y", lib));
    EXPECT_EQ(lib, "Z:\\usr\\lib\\y");
    ASSERT_TRUE(volMap('D', (root_ / "Daten").c_str()));
    ASSERT_TRUE(fromHost((root_ / "Daten" / "M\u00FCller").c_str(), lib));
    EXPECT_EQ(lib, "D:\\M\xFCller");
    // A name that shares only a prefix of characters is not inside the volume.
    ASSERT_TRUE(fromHost((root_ / "Datenbank").c_str(), lib));
    EXPECT_EQ(lib, "T:\\Datenbank");
}

TEST_F(HostTest, FromHostRefuses) {
    std::string lib;
    EXPECT_FALSE(fromHost("", lib));
    EXPECT_FALSE(fromHost("/tmp/a\\b", lib));        // a backslash cannot stand in a library name
    EXPECT_FALSE(fromHost("/tmp/\u4E2D", lib));      // no Windows-1252 form
    ASSERT_TRUE(volUnmap('Z'));
    EXPECT_FALSE(fromHost("/usr", lib));
    VNT_PATH buf = "unchanged";
    EXPECT_FALSE(Vnt_LfnFromHost(buf, ("/" + std::string(300, 'a')).c_str()));
    EXPECT_STREQ(buf, "unchanged");
}

TEST_F(HostTest, EachVolumeRemembersItsDirectory) {
    fs::create_directories(root_ / "other" / "sub");
    ASSERT_TRUE(volMap('S', (root_ / "other").c_str()));
    EXPECT_EQ(volCurDir('S'), "S:\\");
    EXPECT_EQ(volCurDir('Q'), "");
    ASSERT_TRUE(setCurDir("S:\\sub"));
    ASSERT_TRUE(setCurDir("T:\\daten"));
    EXPECT_EQ(curDir(), "T:\\daten");
    EXPECT_EQ(volCurDir('S'), "S:\\sub");
    EXPECT_EQ(fs::current_path(), root_ / "Daten");  // the process follows
    // Relative names go against the current directory of their volume.
    EXPECT_EQ(host("Mandant1"), (root_ / "Daten" / "Mandant1").string());
    EXPECT_EQ(host("S:x"), (root_ / "other" / "sub" / "x").string());
    EXPECT_EQ(host("\\y"), (root_ / "y").string());
    ASSERT_TRUE(setCurDir("Mandant1"));
    EXPECT_EQ(curDir(), "T:\\daten\\Mandant1");
    ASSERT_TRUE(setCurDir(".."));
    EXPECT_EQ(curDir(), "T:\\daten");
    EXPECT_FALSE(setCurDir("T:\\missing"));
    EXPECT_FALSE(setCurDir("T:\\Daten\\Mandant1\\File.TXT"));
    EXPECT_EQ(curDir(), "T:\\daten");
}

TEST_F(HostTest, FilesReadAndFail) {
    File f;
    // Each failure reaches the caller as the host's error kind.
    const struct { const char* name; ErrorKind kind; } failures[] = {
        {"T:\\Daten\\missing.txt", ErrorKind::NotFound},
        {"T:\\Daten\\Mandant1\\File.TXT\\x", ErrorKind::NotFound},  // a file as directory
        {"T:\\Daten", ErrorKind::Access},  // a directory is no file
        {"Q:\\x", ErrorKind::NotFound},     // no host form
    };
    for (const auto& r : failures) {
        setLastError(ErrorKind::None);
        EXPECT_FALSE(f.openRead(r.name)) << r.name;
        EXPECT_EQ(lastError().kind, r.kind) << r.name;
    }
    // What a caller sets itself reads back as the same kind.
    for (ErrorKind k : {ErrorKind::None, ErrorKind::NotFound, ErrorKind::Exists, ErrorKind::Access, ErrorKind::Invalid,
                        ErrorKind::IO, ErrorKind::NoSpace, ErrorKind::Busy, ErrorKind::NotLoadable, ErrorKind::Other}) {
        setLastError(k);
        EXPECT_EQ(lastError().kind, k);
        EXPECT_EQ(lastError().code, errorOf(k).code);
    }
    ASSERT_TRUE(f.openRead("T:\\DATEN\\MANDANT1\\FILE.TXT"));
    EXPECT_EQ(f.size(), 10);
    char buf[16] = {};
    EXPECT_EQ(f.read(buf, 4), 4u);
    EXPECT_EQ(std::string(buf, 4), "0123");
    EXPECT_EQ(f.readAt(buf, 16, 8), 2u);  // short at the end
    EXPECT_EQ(std::string(buf, 2), "89");
    EXPECT_EQ(f.read(buf, 2), 2u);        // readAt leaves the position alone
    EXPECT_EQ(std::string(buf, 2), "45");

    faultAt(Op::Read, 2);
    ASSERT_TRUE(f.seek(0));
    EXPECT_EQ(f.read(buf, 1), 1u);
    EXPECT_EQ(f.read(buf, 1), 0u);  // the injected failure
    EXPECT_EQ(f.read(buf, 1), 1u);
    // A fault by name: only the names the pattern matches (without case), once.
    faultOn(Op::Open, "t:\\daten\\*\\file.???");
    File g;
    EXPECT_FALSE(g.openRead("T:\\Daten\\Mandant1\\File.TXTX"));
    EXPECT_EQ(lastError().kind, ErrorKind::NotFound) << "another name: no fault";
    EXPECT_FALSE(g.openRead("T:\\Daten\\Mandant1\\File.TXT"));
    EXPECT_EQ(lastError().kind, ErrorKind::IO) << "an injected fault";
    EXPECT_TRUE(g.openRead("T:\\Daten\\Mandant1\\File.TXT"));
}

TEST_F(HostTest, PublicConversionBounds) {
    char small[8];
    EXPECT_FALSE(Vnt_LfnToHost("T:\\Daten\\Mandant1", small, sizeof small));
    char big[512];
    ASSERT_TRUE(Vnt_LfnToHost("T:\\daten", big, sizeof big));
    EXPECT_EQ(std::string(big), (root_ / "Daten").string());
    VNT_PATH lib;
    ASSERT_TRUE(Vnt_LfnFromHost(lib, big));
    EXPECT_STREQ(lib, "T:\\Daten");
}

}  // namespace

namespace {

TEST(ProgramNames, FileDirectoryAndName) {
    reset();
    char buf[VNT_MAX_PATH];
    ASSERT_TRUE(Vnt_LfnProgName(buf, sizeof buf));  // the running test program itself
    EXPECT_STREQ(buf, "vanto_tests");
    setProgramFile("Z:\\opt\\acme\\Fibu.exe");
    const struct { bool (*fn)(char*, std::size_t, VNT_HINSTANCE); const char* expected; } rows[] = {
        {Vnt_LfnProgFileName, "Z:\\opt\\acme\\Fibu.exe"}, {Vnt_LfnProgDirName, "Z:\\opt\\acme"}, {Vnt_LfnProgName, "Fibu.exe"}};
    for (const auto& r : rows) {
        ASSERT_TRUE(r.fn(buf, sizeof buf, nullptr)) << r.expected;
        EXPECT_STREQ(buf, r.expected);
        EXPECT_FALSE(r.fn(buf, std::strlen(r.expected), nullptr)) << "one character short: " << r.expected;
    }
    // A loaded module answers with its own file.
    void* libm = moduleOpen("libm.so.6");
    ASSERT_NE(libm, nullptr) << moduleError();
    const auto module = static_cast<VNT_HINSTANCE>(libm);
    ASSERT_TRUE(Vnt_LfnProgName(buf, sizeof buf, module));
    EXPECT_STREQ(buf, "libm.so.6");
    ASSERT_TRUE(Vnt_LfnProgDirName(buf, sizeof buf, module));
    EXPECT_EQ(std::string(buf).rfind("Z:\\", 0), 0u) << buf;
    moduleClose(libm);
    faultAt(Op::Load, 1);
    EXPECT_EQ(moduleOpen("libm.so.6"), nullptr);
    // A module that is missing, and one that exists but is no library.
    EXPECT_EQ(moduleLoad("Z:\\no\\such\\mod.dll"), nullptr);
    EXPECT_EQ(lastError().kind, ErrorKind::NotFound);
    const fs::path dir = vnt::test::scratchDir("vanto_notlib_"), junk = dir / "mod.so";
    fs::create_directories(dir);
    std::ofstream(junk) << "no library";
    std::string junkLib;
    ASSERT_TRUE(fromHost(junk.c_str(), junkLib));
    EXPECT_EQ(moduleLoad(junkLib.c_str()), nullptr);
    EXPECT_EQ(lastError().kind, ErrorKind::NotLoadable) << moduleError();
    fs::remove_all(dir);
    reset();
}

}  // namespace
