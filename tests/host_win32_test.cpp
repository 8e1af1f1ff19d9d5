// The Win32 host: drives and mapped letters, path forms of the system,
// names outside ASCII through UTF-16, system errors as the interface's
// kinds, modules by their Windows names.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "host/host.h"
#include "scratch.h"
#include "vanto/text.h"

namespace fs = std::filesystem;
using namespace vnt::host;

namespace {

class Win32Host : public ::testing::Test {
protected:
    void SetUp() override {
        reset();
        root_ = vnt::test::scratchDir("vanto_w32_");
        fs::create_directories(root_ / "Daten" / u8"M\u00FCller");
        std::ofstream(root_ / "Daten" / "a.txt") << "abc";
        rootHost_ = vnt::test::hostStr(root_);
        ASSERT_TRUE(volMap('T', rootHost_.c_str()));
    }
    void TearDown() override { reset(); }
    fs::path root_;
    std::string rootHost_;
};

TEST_F(Win32Host, PathsBothWays) {
    // A mapped letter stands for its directory; other letters are the drives.
    const std::pair<const char*, std::string> toRows[] = {
        {"T:\\", rootHost_},
        {"T:\\Daten\\a.txt", rootHost_ + "\\Daten\\a.txt"},
        {"t:/Daten/./x/../a.txt", rootHost_ + "\\Daten\\a.txt"},
        {"T:\\..\\..\\Daten", rootHost_ + "\\Daten"},  // never above the volume
        {"T:\\Daten\\M\xFCller", rootHost_ + "\\Daten\\M\u00FCller"},  // Windows-1252 in, UTF-8 out
        {"C:\\windows", "C:\\windows"},
    };
    for (const auto& [lib, want] : toRows) {
        std::string got;
        EXPECT_TRUE(toHost(lib, got) && got == want) << lib << " gave " << got;
    }
    const std::pair<std::string, const char*> fromRows[] = {
        {rootHost_ + "\\Daten\\M\u00FCller", "T:\\Daten\\M\xFCller"},
        {rootHost_ + "/Daten/a.txt", "T:\\Daten\\a.txt"},  // either separator
        {rootHost_, "T:\\"},
        {rootHost_ + "x", ""},  // sharing a prefix of characters only: not inside T:
        {"C:\\windows\\system32", "C:\\windows\\system32"},
    };
    for (const auto& [host, want] : fromRows) {
        std::string got;
        const bool ok = fromHost(host.c_str(), got);
        if (*want) EXPECT_TRUE(ok && got == want) << host << " gave " << got;
        else EXPECT_TRUE(!ok || got.rfind("T:", 0) != 0) << host << " gave " << got;
    }
}

TEST_F(Win32Host, RefusedNames) {
    std::string out;
    // UNC names, letters that are neither mapped nor a drive, stream names.
    for (const char* lib : {"\\\\server\\share\\x", "Q:\\x", "1:\\x", "T:\\Daten\\a.txt:stream"})
        EXPECT_FALSE(toHost(lib, out)) << lib;
    for (const char* host : {"", "\\\\server\\share\\x", "C:\\\u4E2D"}) EXPECT_FALSE(fromHost(host, out)) << host;
    // A letter mapped elsewhere hides its drive.
    ASSERT_TRUE(volMap('C', (rootHost_ + "\\Daten").c_str()));
    EXPECT_TRUE(toHost("C:\\a.txt", out) && out == rootHost_ + "\\Daten\\a.txt") << out;
    EXPECT_FALSE(fromHost("C:\\windows", out));
    ASSERT_TRUE(volUnmap('C'));
    EXPECT_TRUE(volKnown('C') && fromHost("C:\\windows", out));
}

TEST_F(Win32Host, FilesWithNamesOutsideAscii) {
    // "T:\Daten\Müller\Größe €.txt": written, listed and read back by the same name.
    const std::string lib = "T:\\Daten\\M\xFCller\\Gr\xF6\xDF" "e \x80.txt";
    ASSERT_TRUE(writeFileAtomic(lib.c_str(), "data"));
    EXPECT_TRUE(fs::exists(root_ / "Daten" / u8"M\u00FCller" / u8"Gr\u00F6\u00DFe \u20AC.txt"));
    std::vector<DirEntry> entries;
    ASSERT_TRUE(listDir("T:\\Daten\\M\xFCller", nullptr, nullptr, entries));
    bool listed = false;
    for (const DirEntry& e : entries) listed = listed || (e.name == "Gr\xF6\xDF" "e \x80.txt" && e.size == 4 && (e.attributes & kAttrArchive));
    EXPECT_TRUE(listed);
    std::string data;
    EXPECT_TRUE(readFile(lib.c_str(), data) && data == "data");
    DirEntry info;
    ASSERT_TRUE(fileInfo("T:\\DATEN\\M\xDCLLER", info));
    EXPECT_EQ(info.name + "|" + std::to_string(info.attributes & kAttrDirectory), "M\xFCller|16") << "the name as on disk";
}

TEST_F(Win32Host, SystemErrorsAsKinds) {
    File f;
    const std::pair<const char*, ErrorKind> rows[] = {
        {"T:\\Daten\\missing.txt", ErrorKind::NotFound}, {"T:\\nodir\\x.txt", ErrorKind::NotFound},
        {"T:\\Daten", ErrorKind::Access}, {"T:\\Daten\\bad<name>.txt", ErrorKind::Invalid},
    };
    for (const auto& [name, kind] : rows) {
        setLastError(ErrorKind::None);
        EXPECT_FALSE(f.openRead(name)) << name;
        EXPECT_EQ(lastError().kind, kind) << name;
    }
    // A read-only file cannot be removed until the attribute goes.
    ASSERT_TRUE(setFileAttributes("T:\\Daten\\a.txt", kAttrReadOnly));
    EXPECT_FALSE(removeFile("T:\\Daten\\a.txt"));
    EXPECT_EQ(lastError().kind, ErrorKind::Access);
    EXPECT_EQ(fileAttributes("T:\\Daten\\a.txt") & (kAttrReadOnly | kAttrDirectory), kAttrReadOnly);
    ASSERT_TRUE(setFileAttributes("T:\\Daten\\a.txt", 0));
    EXPECT_TRUE(removeFile("T:\\Daten\\a.txt"));
    EXPECT_FALSE(removeDir("T:\\Daten"));
    EXPECT_EQ(lastError().kind, ErrorKind::Exists) << "a directory that is not empty";
    // The system's text, without its full stop and line end.
    const std::string text = errorText(errorOf(ErrorKind::NotFound));
    EXPECT_FALSE(text.empty() || text.back() == '.' || text.back() == '\n') << text;
}

TEST(Win32Modules, LoadedByWindowsNames) {
    reset();
    EXPECT_EQ(moduleFileNames("Z:\\m\\Fibu.dll"), (std::vector<std::string>{"Z:\\m\\Fibu.dll", "Z:\\m\\libFibu.dll"}));
    EXPECT_EQ(moduleFileNames("Fibu"), (std::vector<std::string>{"Fibu.dll", "libFibu.dll"}));
    void* k = moduleLoad("kernel32");  // a bare name goes through the system's search
    ASSERT_NE(k, nullptr) << moduleError();
    EXPECT_NE(moduleSymbol(k, "GetTickCount"), nullptr);
    EXPECT_EQ(moduleSymbol(k, "NoSuchFunction"), nullptr);
    std::string file = moduleFile(k);
    for (char& c : file) c = static_cast<char>(Vnt_TxtUpper(static_cast<unsigned char>(c)));
    EXPECT_NE(file.find("\\KERNEL32.DLL"), std::string::npos) << file;
    moduleClose(k);
    const fs::path dir = vnt::test::scratchDir("vanto_w32mod_");
    fs::create_directories(dir);
    std::ofstream(dir / "junk.dll") << "no library";
    std::string lib;
    ASSERT_TRUE(fromHost((vnt::test::hostStr(dir) + "\\junk.dll").c_str(), lib));
    EXPECT_EQ(moduleLoad(lib.c_str()), nullptr);
    EXPECT_EQ(lastError().kind, ErrorKind::NotLoadable) << moduleError();
    EXPECT_EQ(moduleLoad((lib + "x").c_str()), nullptr);
    EXPECT_EQ(lastError().kind, ErrorKind::NotFound);
    std::string prog = programFile();
    EXPECT_EQ(prog.substr(prog.size() - 16), "\\vanto_tests.exe") << prog;
}

}  // namespace
