// The host layer: Windows-1252 text, the volume table, path conversion with
// the case-insensitive fallback, per-volume current directories, files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

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
using namespace std::string_literals;

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
        ASSERT_TRUE(volMap('T', vnt::test::hostStr(root_).c_str()));
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

TEST(Cp1252, RoundTripsRefusalsAndUpperCase) {
    for (int b = 1; b < 256; ++b) {
        std::string in(1, static_cast<char>(b)), utf8 = Vnt_TxtToUtf8(in), back;
        ASSERT_TRUE(Vnt_TxtFromUtf8(utf8, back) && back == in) << b;
    }
    EXPECT_EQ(Vnt_TxtToUtf8("\x80\xE4\xDF"), "\u20AC\u00E4\u00DF");
    // What has no form, and where it starts.
    const std::pair<std::string, std::size_t> refused[] = {{"ab\u0101", 2}, {"x\u4E2D", 1}, {"\xF0\x9F\x98\x80", 0},
        {"a\x80", 1}, {"ab\xC3", 2}, {"\xC0\xAF", 0}, {"\xED\xA0\x80", 0}};
    for (const auto& [utf8, badPos] : refused) {
        std::string out;
        std::size_t bad = 999;
        EXPECT_FALSE(Vnt_TxtFromUtf8(utf8, out, &bad)) << utf8;
        EXPECT_EQ(bad, badPos) << utf8;
    }
    // ä, ÿ and š have upper cases; ß has no single one; ÷ is no letter.
    const unsigned char in[] = {'a', 0xE4, 0xFF, 0x9A, 0xDF, 0xF7, '1'}, up[] = {'A', 0xC4, 0x9F, 0x8A, 0xDF, 0xF7, '1'};
    for (std::size_t i = 0; i < sizeof in; ++i) EXPECT_EQ(Vnt_TxtUpper(in[i]), up[i]) << i;
}

TEST_F(HostTest, ToHostFindsComponentsWithoutCase) {
#if defined(_WIN32)
    GTEST_SKIP() << "POSIX forms of host paths; host_win32_test.cpp checks the Windows ones";
#endif
    fs::create_directories(root_ / "M\u00FCller");
    const std::string r = root_.string();
    const std::pair<const char*, std::string> rows[] = {
        {"T:\\", r}, {"T:\\Daten\\Mandant1\\File.TXT", r + "/Daten/Mandant1/File.TXT"},
        {"T:\\DATEN\\mandant1\\file.txt", r + "/Daten/Mandant1/File.TXT"}, {"t:/daten/MANDANT1", r + "/Daten/Mandant1"},
        {"T:\\daten\\Neu\\Sub", r + "/Daten/Neu/Sub"},  // a missing component keeps its case, and so does the rest
        {"T:\\Daten\\.\\x\\..\\Mandant1", r + "/Daten/Mandant1"},  // dots resolve lexically...
        {"T:\\..\\..\\a", r + "/a"},                                // ... and never climb out of the volume
        {"T:\\M\xDCLLER", r + "/M\u00FCller"}, {"T:\\\xE4", r + "/\u00E4"},  // Windows-1252 in, UTF-8 out
    };
    for (const auto& [lib, host] : rows) EXPECT_EQ(this->host(lib), host) << lib;
}

TEST_F(HostTest, ConversionsRefuse) {
#if defined(_WIN32)
    GTEST_SKIP() << "POSIX forms of host paths; host_win32_test.cpp checks the Windows ones";
#endif
    std::string out;
    for (const char* lib : {"\\\\server\\share\\x", "Q:\\x", "1:\\x", "//server/share"}) EXPECT_FALSE(toHost(lib, out)) << lib;
    for (const char* h : {"", "/tmp/a\\b", "/tmp/\u4E2D"}) EXPECT_FALSE(fromHost(h, out)) << h;  // a backslash or no Windows-1252 form
    VNT_PATH buf = "unchanged";
    EXPECT_FALSE(Vnt_LfnFromHost(buf, ("/" + std::string(300, 'a')).c_str()));
    EXPECT_STREQ(buf, "unchanged");
    char small[8];
    EXPECT_FALSE(Vnt_LfnToHost("T:\\Daten\\Mandant1", small, sizeof small));
    EXPECT_TRUE(volKnown('t') && volKnown('Z') && !volKnown('Q'));
    ASSERT_TRUE(volUnmap('T') && volUnmap('Z'));
    EXPECT_FALSE(toHost("T:\\Daten", out) || fromHost("/usr", out) || volUnmap('T'));
    // Mapping: a letter, an existing directory; a directory that goes is no volume any more.
    EXPECT_FALSE(volMap('1', vnt::test::hostStr(root_).c_str()) || volMap('Q', vnt::test::hostStr(root_ / "missing").c_str()) ||
                 volMap('Q', vnt::test::hostStr(root_ / "Daten" / "Mandant1" / "File.TXT").c_str()));
    ASSERT_TRUE(volMap('Q', vnt::test::hostStr(root_ / "Daten").c_str()) && volKnown('Q'));
    fs::rename(root_ / "Daten", root_ / "Moved");
    EXPECT_FALSE(volKnown('Q'));
}

TEST_F(HostTest, FromHostTakesTheLongestMapping) {
#if defined(_WIN32)
    GTEST_SKIP() << "POSIX forms of host paths; host_win32_test.cpp checks the Windows ones";
#endif
    char big[512];
    ASSERT_TRUE(Vnt_LfnToHost("T:\\daten", big, sizeof big));
    EXPECT_EQ(std::string(big), (root_ / "Daten").string());
    VNT_PATH lib;
    EXPECT_TRUE(Vnt_LfnFromHost(lib, big) && std::string(lib) == "T:\\Daten") << lib;
    ASSERT_TRUE(volMap('D', vnt::test::hostStr(root_ / "Daten").c_str()));
    const std::pair<fs::path, const char*> rows[] = {
        {root_ / "x.vtm", "T:\\x.vtm"}, {root_, "T:\\"}, {"/usr//lib/./x/../y", "Z:\\usr\\lib\\y"},
        {root_ / "Daten" / "M\u00FCller", "D:\\M\xFCller"},
        {root_ / "Datenbank", "T:\\Datenbank"},  // sharing only a prefix of characters is not inside
    };
    for (const auto& [hostPath, want] : rows) {
        std::string lib;
        EXPECT_TRUE(fromHost(vnt::test::hostStr(hostPath).c_str(), lib) && lib == want) << hostPath << " gave " << lib;
    }
}

TEST_F(HostTest, EachVolumeRemembersItsDirectory) {
#if defined(_WIN32)
    GTEST_SKIP() << "POSIX forms of host paths; host_win32_test.cpp checks the Windows ones";
#endif
    fs::create_directories(root_ / "other" / "sub");
    ASSERT_TRUE(volMap('S', vnt::test::hostStr(root_ / "other").c_str()));
    EXPECT_EQ(volCurDir('S') + "|" + volCurDir('Q'), "S:\\|");
    ASSERT_TRUE(setCurDir("S:\\sub") && setCurDir("T:\\daten"));
    EXPECT_EQ(curDir() + "|" + volCurDir('S'), "T:\\daten|S:\\sub");
    EXPECT_EQ(fs::current_path(), root_ / "Daten");  // the process follows
    // Relative names go against the current directory of their volume.
    for (const auto& [lib, host] : {std::pair{"Mandant1", root_ / "Daten" / "Mandant1"}, {"S:x", root_ / "other" / "sub" / "x"},
                                    {"\\y", root_ / "y"}})
        EXPECT_EQ(this->host(lib), host.string());
    ASSERT_TRUE(setCurDir("Mandant1"));
    EXPECT_EQ(curDir(), "T:\\daten\\Mandant1");
    ASSERT_TRUE(setCurDir(".."));
    EXPECT_FALSE(setCurDir("T:\\missing") || setCurDir("T:\\Daten\\Mandant1\\File.TXT"));
    EXPECT_EQ(curDir(), "T:\\daten");
}

TEST_F(HostTest, FilesReadAndFail) {
    File f;
    // Each failure reaches the caller as the host's error kind: a missing file, a file
    // as directory, a directory (no file), a name without host form.
    for (const auto& [name, kind] : {std::pair{"T:\\Daten\\missing.txt", ErrorKind::NotFound},
                                     {"T:\\Daten\\Mandant1\\File.TXT\\x", ErrorKind::NotFound},
                                     {"T:\\Daten", ErrorKind::Access}, {"Q:\\x", ErrorKind::NotFound}}) {
        setLastError(ErrorKind::None);
        EXPECT_FALSE(f.openRead(name)) << name;
        EXPECT_EQ(lastError().kind, kind) << name;
    }
    // What a caller sets itself reads back as the same kind.
    for (ErrorKind k : {ErrorKind::None, ErrorKind::NotFound, ErrorKind::Exists, ErrorKind::Access, ErrorKind::Invalid,
                        ErrorKind::IO, ErrorKind::NoSpace, ErrorKind::Busy, ErrorKind::NotLoadable, ErrorKind::Other}) {
        setLastError(k);
        EXPECT_TRUE(lastError().kind == k && lastError().code == errorOf(k).code) << int(k);
    }
    ASSERT_TRUE(f.openRead("T:\\DATEN\\MANDANT1\\FILE.TXT"));
    EXPECT_EQ(f.size(), 10);
    char buf[16] = {};
    // A read, a read at 8 that is short at the end, a read that goes on where the first stopped.
    const std::size_t n[] = {f.read(buf, 4), f.readAt(buf + 4, 16, 8), f.read(buf + 6, 2)};
    EXPECT_EQ(std::tuple(n[0], n[1], n[2], std::string(buf, 8)), std::tuple(4u, 2u, 2u, "01238945"s));
    faultAt(Op::Read, 2);
    ASSERT_TRUE(f.seek(0));
    EXPECT_EQ((std::vector<std::size_t>{f.read(buf, 1), f.read(buf, 1), f.read(buf, 1)}), (std::vector<std::size_t>{1, 0, 1}));
    // A fault by name: only the names the pattern matches (without case), once.
    faultOn(Op::Open, "t:\\daten\\*\\file.???");
    File g;
    EXPECT_FALSE(g.openRead("T:\\Daten\\Mandant1\\File.TXTX"));
    EXPECT_EQ(lastError().kind, ErrorKind::NotFound) << "another name: no fault";
    EXPECT_FALSE(g.openRead("T:\\Daten\\Mandant1\\File.TXT"));
    EXPECT_EQ(lastError().kind, ErrorKind::IO) << "an injected fault";
    EXPECT_TRUE(g.openRead("T:\\Daten\\Mandant1\\File.TXT"));
}

TEST(ProgramNames, FileDirectoryAndName) {
#if defined(_WIN32)
    GTEST_SKIP() << "POSIX forms of host paths; host_win32_test.cpp checks the Windows ones";
#endif
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
    ASSERT_TRUE(fromHost(vnt::test::hostStr(junk).c_str(), junkLib));
    EXPECT_EQ(moduleLoad(junkLib.c_str()), nullptr);
    EXPECT_EQ(lastError().kind, ErrorKind::NotLoadable) << moduleError();
    fs::remove_all(dir);
    reset();
}

}  // namespace
