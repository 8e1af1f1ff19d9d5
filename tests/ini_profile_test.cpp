// The profile functions: reads, whole file texts after writes, truncation,
// refused names, faults during the replacement, and other writers seen
// through the cache with and without change notification.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include <unistd.h>

#include "host/error.h"
#include "host/fault.h"
#include "host/host.h"
#include "host/path.h"
#include "ini/profile.h"
#include "support.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"

namespace fs = std::filesystem;

namespace {

class Profile : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::host::reset();
        vnt::ini::profileReset();
        startDir_ = vnt::host::curDir();
        dir_ = fs::temp_directory_path() / ("vanto_ini_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir_);
        host_ = dir_ / "Test.ini";
        char s[VNT_MAX_PATH] = {};
        ASSERT_TRUE(Vnt_LfnFromHost(s, vnt::test::hostStr(host_).c_str()));
        file_ = s;
    }
    void TearDown() override {
        vnt::host::setCurDir(startDir_);  // a test may have moved into dir_
        vnt::host::faultReset();
        vnt::ini::profileReset();
        fs::remove_all(dir_);
    }
    void put(const std::string& s) const { std::ofstream(host_, std::ios::binary | std::ios::trunc) << s; }
    std::string text() const {
        std::ifstream in(host_, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::string get(const char* sec, const char* key, const char* def = "-") const {
        char buf[256];
        unsigned long n = Vnt_ProfileGetString(sec, key, def, buf, sizeof buf, file_.c_str());
        return std::string(buf, n);
    }
    long entries() const { return std::distance(fs::directory_iterator(dir_), {}); }

    fs::path dir_, host_;
    std::string file_, startDir_;
};

TEST_F(Profile, ReadsFollowTheFileModel) {
    put("x=0\n[Main]\n Key = ' v ' \nq=\"a'\nc=1 ;x\nempty=\n;k=c\n[main]\nother=1\n[ Sp ace ]\nk=v\r\n"
        "[Dup]\nk=1\nk=2\n[Open\nk=o");
    const struct { const char *name, *sec, *key, *def, *want; } rows[] = {
        {"names without case, outer quotes off", "MAIN", " KEY ", "-", " v "},
        {"quotes that do not match stay", "Main", "q", "-", "\"a'"},
        {"no comments behind a value", "Main", "c", "-", "1 ;x"},
        {"empty value", "Main", "empty", "-", ""},
        {"comment lines are no entries", "Main", ";k", "-", "-"},
        {"a second section of a name is not read", "Main", "other", "-", "-"},
        {"header name trimmed", "Sp ace", "K", "-", "v"},
        {"first key wins", "dup", "k", "-", "1"},
        {"header without ]", "Open", "k", "-", "o"},
        {"missing key: default without trailing blanks", "Main", "none", "d  ", "d"},
        {"null default", "Main", "none", nullptr, ""},
        {"missing section", "None", "k", "d", "d"},
    };
    for (const auto& r : rows) EXPECT_EQ(get(r.sec, r.key, r.def), r.want) << r.name;
    using namespace std::string_literals;
    EXPECT_EQ(get(nullptr, nullptr), "Main\0Sp ace\0Dup\0Open\0"s) << "each section once";
    EXPECT_EQ(get("main", nullptr), "Key\0q\0c\0empty\0"s);
    EXPECT_EQ(get("Dup", nullptr), "k\0"s);
    EXPECT_EQ(get("None", nullptr), "");
    // A name relative to the current directory is read afresh each time.
    char dir[VNT_MAX_PATH] = {};
    ASSERT_TRUE(Vnt_LfnFromHost(dir, vnt::test::hostStr(dir_).c_str()));
    ASSERT_TRUE(vnt::host::setCurDir(dir));
    char buf[8];
    EXPECT_EQ(Vnt_ProfileGetString("dup", "k", "", buf, sizeof buf, "test.ini"), 1u);
    EXPECT_TRUE(Vnt_ProfileWriteString("Dup", "k", "2", "Test.ini"));
    EXPECT_EQ(Vnt_ProfileGetInt("dup", "k", 0, "test.ini"), 2);
    fs::remove(host_);
    EXPECT_EQ(get("Main", "c", "d"), "d") << "a missing file reads as empty";
    std::fill(std::begin(buf), std::end(buf), 'x');
    EXPECT_EQ(Vnt_ProfileGetString(nullptr, nullptr, "d", buf, 4, file_.c_str()), 0u);
    EXPECT_EQ(std::string(buf, 4), std::string("\0\0xx", 4));
}

TEST_F(Profile, ResultsAreCutAsThePlatformCutsThem) {
    put("[AB]\nk=value\n[CD]\n");
    const struct { const char *name, *sec, *key; unsigned long size; std::string want; unsigned long ret; } rows[] = {
        {"value fits", "AB", "k", 6, std::string("value\0", 6), 5},
        {"value cut: size - 1", "AB", "k", 4, std::string("val\0", 4), 3},
        {"size 1", "AB", "k", 1, std::string("\0", 1), 0},
        {"default cut", "AB", "none", 3, std::string("de\0", 3), 2},
        {"list fits", nullptr, nullptr, 7, std::string("AB\0CD\0\0", 7), 6},
        {"list cut: size - 2, two NULs", nullptr, nullptr, 6, std::string("AB\0C\0\0", 6), 4},
        {"list cut at a name's end", nullptr, nullptr, 5, std::string("AB\0\0\0", 5), 3},
        {"list into 2", nullptr, nullptr, 2, std::string("\0\0", 2), 0},
        {"key list cut", "AB", nullptr, 1, std::string("\0", 1), 0},
    };
    for (const auto& r : rows) {
        char buf[16];
        std::fill(std::begin(buf), std::end(buf), '#');
        EXPECT_EQ(Vnt_ProfileGetString(r.sec, r.key, "default", buf, r.size, file_.c_str()), r.ret) << r.name;
        EXPECT_EQ(std::string(buf, r.size + 1), r.want + "#") << r.name << ": and nothing written behind the buffer";
    }
    EXPECT_EQ(Vnt_ProfileGetString("AB", "k", "d", nullptr, 10, file_.c_str()), 0u);
}

TEST_F(Profile, IntReadsTakeTheLeadingDigits) {
    put("[N]\na=42A9\nb=-7\nc=+3\nd=abc\ne=\nf=99999999999999999999\ng='12'\nh=-99999999999999999999\n");
    const struct { const char* key; long want; } rows[] = {
        {"a", 42}, {"b", -7}, {"c", 3}, {"d", 0}, {"e", 5}, {"none", 5}, {"f", LONG_MAX}, {"g", 12}, {"h", LONG_MIN},
    };
    for (const auto& r : rows) EXPECT_EQ(Vnt_ProfileGetInt("n", r.key, 5, file_.c_str()), r.want) << r.key;
    EXPECT_EQ(Vnt_ProfileGetInt("n", "a", 5, nullptr), 5);
}

TEST_F(Profile, WritesGiveTheWholeFileText) {
    const char* const kSame = "";  // `after` for rows that must leave the file as it was
    const struct { const char *name, *before, *sec, *key, *value, *after, *reads; } rows[] = {
        {"new file", nullptr, "A", "x", "1", "[A]\r\nx=1\r\n", "1"},
        {"new key after the last entry, before blank lines", "[A]\nx=1\n\n[B]\ny=2\n", "a", "z", "3",
         "[A]\r\nx=1\r\nz=3\r\n\r\n[B]\r\ny=2\r\n", "3"},
        {"a comment ending the section stays behind", "[A]\nx=1\n;c\n", "A", "z", "3", "[A]\r\nx=1\r\nz=3\r\n;c\r\n", "3"},
        {"empty section: after its header", "[A]\n\n", "A", "z", "3", "[A]\r\nz=3\r\n\r\n", "3"},
        {"new section at the end", "; top\n[A]\nx=1", "B", "y", "2", "; top\r\n[A]\r\nx=1\r\n[B]\r\ny=2\r\n", "2"},
        {"replaced in the file's spelling, other lines kept", "[ a ]\r\n X = 1 \r\n;x=9\r\nfree text\r\n", "A", "x", "2",
         "[ a ]\r\nX=2\r\n;x=9\r\nfree text\r\n", "2"},
        {"key written in another case", "[Optionen]\r\nMode=old\r\nOther=1\r\n", "oPTioNen", "mODe", "x",
         "[Optionen]\r\nMode=x\r\nOther=1\r\n", "x"},
        {"umlauts in section and key", "[\xC4" "nderung]\r\nGr\xF6\xDF" "e=1\r\n", "\xE4" "NDERUNG", "GR\xD6\xDF" "E", "2",
         "[\xC4" "nderung]\r\nGr\xF6\xDF" "e=2\r\n", "2"},
        {"quoted value written as given", "", " A ", " q ", "\" v \"", "[A]\r\nq=\" v \"\r\n", " v "},
        {"first section of two gets the key", "[A]\nx=1\n[A]\ny=2\n", "A", "y", "5", "[A]\r\nx=1\r\ny=5\r\n[A]\r\ny=2\r\n", "5"},
        {"LF, lone CR and a missing last end read", "[A]\rx=1\n[B]\r\ny=2", "B", "y", "3", "[A]\r\nx=1\r\n[B]\r\ny=3\r\n", "3"},
        {"empty value", "[A]\nx=1\n", "A", "x", "", "[A]\r\nx=\r\n", ""},
        {"delete key: every line of it in the first section", "[A]\nx=1\ny=2\nX=3\n[A]\nx=4\n", "A", "x", nullptr,
         "[A]\r\ny=2\r\n[A]\r\nx=4\r\n", "-"},
        {"delete section: every one of the name, with its lines", "[A]\nx=1\n;c\n\n[B]\ny=2\n[a]\nz=3\n", "A", nullptr,
         nullptr, "[B]\r\ny=2\r\n", "-"},
        {"unchanged value writes nothing", "[A]\n X = 1 \n", "a", "x", "1", kSame, "1"},
        {"deleting a missing key writes nothing", "[A]\nx=1\n", "A", "y", nullptr, kSame, "-"},
        {"deleting a missing section writes nothing", "[A]\nx=1\n", "B", nullptr, nullptr, kSame, "-"},
        {"deleting in a missing file creates none", nullptr, "A", "x", nullptr, nullptr, "-"},
    };
    for (const auto& r : rows) {
        fs::remove(host_);
        if (r.before) put(r.before);
        get("A", "x");  // cached now: the write must notice the file of this row
        EXPECT_TRUE(Vnt_ProfileWriteString(r.sec, r.key, r.value, file_.c_str())) << r.name;
        if (r.after == nullptr)
            EXPECT_FALSE(fs::exists(host_)) << r.name;
        else
            EXPECT_EQ(text(), r.after == kSame ? r.before : r.after) << r.name;
        const std::string cached = get(r.sec, r.key ? r.key : "x");
        Vnt_ProfileFlush(file_.c_str());
        EXPECT_EQ(cached + "|" + get(r.sec, r.key ? r.key : "x"), r.reads + ("|" + std::string(r.reads))) << r.name << ": before and after the flush";
        EXPECT_EQ(entries(), r.after ? 1 : 0) << r.name << ": no temporary file stays";
    }
}

TEST_F(Profile, NamesThatWouldBreakTheFileAreRefused) {
    put("[A]\nx=1\n");
    const struct { const char *name, *sec, *key, *value; } rows[] = {
        {"= in the key", "A", "a=b", "1"},   {"line end in the key", "A", "a\nb", "1"},
        {"blank key", "A", " ", "1"},        {"] in the section", "A]", "k", "1"},
        {"empty section", " ", "k", "1"},    {"null section", nullptr, "k", "1"},
        {"line end in the value", "A", "k", "1\r\n[B]"}, {"line end in the section", "A\nB", "k", "1"},
        {"key read as a header", "A", " [X", "v"}, {"key read as a comment", "A", ";x", "v"},
        {"section read as another", "[B", "k", "1"},
    };
    for (const auto& r : rows) {
        vnt::host::setLastError(vnt::host::ErrorKind::None);
        EXPECT_FALSE(Vnt_ProfileWriteString(r.sec, r.key, r.value, file_.c_str())) << r.name;
        EXPECT_EQ(vnt::host::lastError().kind, vnt::host::ErrorKind::Invalid) << r.name;
    }
    EXPECT_FALSE(Vnt_ProfileWriteString("A", "k", "1", nullptr) ||
                 Vnt_ProfileWriteString("A", "k", "1", (file_ + "\\no\\such.ini").c_str())) << "no file, directory missing";
    EXPECT_EQ(text(), "[A]\nx=1\n");
    // The other side of each limit: these characters elsewhere in a name are written.
    EXPECT_TRUE(Vnt_ProfileWriteString("B[;", "x[;", "1", file_.c_str()) && get("b[;", "X[;") == "1");

    // File names: 259 characters fit the library's buffers, 260 are refused
    // (a read gives the default, a write fails) rather than cut to another name.
    fs::remove(host_);
    const std::string dir = file_.substr(0, file_.rfind('\\') + 1);
    const std::string fits = dir + std::string(VNT_MAX_PATH - 1 - dir.size() - 4, 'n') + ".ini";
    ASSERT_EQ(fits.size(), VNT_MAX_PATH - 1);
    const std::string tooLong = fits + "i";
    vnt::host::setLastError(vnt::host::ErrorKind::None);
    EXPECT_FALSE(Vnt_ProfileWriteString("A", "k", "1", tooLong.c_str()));
    EXPECT_EQ(vnt::host::lastError().kind, vnt::host::ErrorKind::Invalid);
    EXPECT_TRUE(Vnt_ProfileWriteString("A", "k", "1", fits.c_str()));
    char buf[8], other[8];
    EXPECT_EQ(Vnt_ProfileGetString("A", "k", "d", buf, sizeof buf, fits.c_str()) +
                  Vnt_ProfileGetString("A", "k", "d", other, sizeof other, tooLong.c_str()), 2u);
    EXPECT_EQ(std::string(buf) + std::string(other), "1d");
    EXPECT_EQ(entries(), 1) << "only the file whose name fits";
}

// A NUL ends its line for the profile functions as for the line reader.
TEST_F(Profile, NulEndsALine) {
    put(std::string("[B\0x]\r\nk=1\0z\r\n[C]\r\n", 18));
    using namespace std::string_literals;
    EXPECT_EQ(get(nullptr, nullptr) + get("B", "k"), "B\0C\0" "1"s);
    VntIni ini(file_.c_str(), nullptr);
    char name[100];
    EXPECT_TRUE(ini.SectionFirst(&name) && std::string(name) == "B");
}

// Temporary files of writers whose process died go with the next write to
// their directory; those of running processes and other names stay.
TEST_F(Profile, TemporaryFilesOfDeadWritersGo) {
    const std::string dead = ".Other.ini.2147483600.7.tmp", mine = ".Test.ini." + std::to_string(::getpid()) + ".9.tmp";
    const char* const keep[] = {".x.1.tmp", "Test.tmp", ".Test.ini.12a.3.tmp", "..5.6.tmp"};
    for (const std::string& n : {dead, mine}) std::ofstream(dir_ / n) << "partial";
    for (const char* n : keep) std::ofstream(dir_ / n) << "other";
    put("[A]\n");
    ASSERT_TRUE(Vnt_ProfileWriteString("A", "x", "1", file_.c_str()));
    EXPECT_TRUE(!fs::exists(dir_ / dead) && fs::exists(dir_ / mine)) << "this process still runs";
    for (const char* n : keep) EXPECT_TRUE(fs::exists(dir_ / n)) << n;
}

// Each failure during the replacement leaves the old file byte for byte, no
// temporary file, a cache that still holds the old values, and an error.
TEST_F(Profile, FailedReplacementKeepsTheOldFile) {
    using vnt::host::Op;
    using Kind = vnt::host::ErrorKind;
    const std::string before = "[A]\nx=1\n;keep\n";
    // Op::Count: no failing call, a full disk instead.
    const struct { const char* name; bool cached; Op op; long diskLeft; Kind err; } rows[] = {
        {"write fails", true, Op::Write, -1, Kind::IO},
        {"rename fails", true, Op::Rename, -1, Kind::IO},
        {"temporary file cannot be made", true, Op::Open, -1, Kind::IO},
        {"old file cannot be read", false, Op::Open, -1, Kind::IO},
        {"disk full halfway", true, Op::Count, 6, Kind::NoSpace},
        {"disk full at once", true, Op::Count, 0, Kind::NoSpace},
    };
    for (const auto& r : rows) {
        put(before);
        Vnt_ProfileFlush(nullptr);
        if (r.cached) { ASSERT_EQ(get("A", "x"), "1") << r.name; }
        if (r.op != Op::Count) vnt::host::faultOn(r.op, file_.c_str());
        vnt::host::faultShortWrite(file_.c_str(), r.diskLeft);
        vnt::host::setLastError(vnt::host::ErrorKind::None);
        EXPECT_FALSE(Vnt_ProfileWriteString("A", "x", "2", file_.c_str())) << r.name;
        EXPECT_EQ(vnt::host::lastError().kind, r.err) << r.name;
        vnt::host::faultReset();
        EXPECT_TRUE(text() == before && get("A", "x") == "1") << r.name;
        EXPECT_EQ(entries(), 1) << r.name << ": temporary file left";
        EXPECT_TRUE(Vnt_ProfileWriteString("A", "x", "2", file_.c_str()) && text() == "[A]\r\nx=2\r\n;keep\r\n") << r.name << ": works again";
    }
}

// A file that cannot be written (a read-only installation) is said once,
// with its name and the system's reason; the write still fails.
TEST_F(Profile, AnUnwritableFileIsToldOnce) {
    VntScriptedPresenter box;
    VntMsgPresenter* old = Vnt_UiSetPresenter(&box);
    char sys[VNT_MAX_PATH] = {};
    ASSERT_TRUE(Vnt_LfnFromHost(sys, VANTO_SYSLIB_EN) && Vnt_MsgItfInit(nullptr, 0, sys));
    put("[A]\nx=1\n");
    for (int i = 0; i < 2; ++i) {
        vnt::host::faultOn(vnt::host::Op::Rename, file_.c_str());
        EXPECT_FALSE(Vnt_ProfileWriteString("A", "x", "2", file_.c_str()));
    }
    EXPECT_TRUE(Vnt_ProfileWriteString("A", "x", "3", file_.c_str()));
    Vnt_MsgItfTerm();
    Vnt_UiSetPresenter(old);
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_EQ(box.shown[0].text, "The file \"" + file_ + "\" cannot be written (" + vnt::host::errorText(vnt::host::errorOf(vnt::host::ErrorKind::IO)) +
                                     "). The change is not saved.");
    vnt::test::resetAll();  // closes the system library
}

// Another writer changes the file between cached reads; with notification
// and with the stamp check that stands in for it.
TEST_F(Profile, OtherWritersAreSeen) {
    for (bool notify : {true, false}) {
        const std::string mode = notify ? "notified" : "stamp";
        vnt::ini::profileReset();
        vnt::ini::profileUseNotify(notify);
        put("[A]\nx=1\n");
        EXPECT_EQ(get("A", "x"), "1") << mode;
        const unsigned long loads = vnt::ini::profileLoads();
        EXPECT_TRUE(get("a", "X") == "1" && vnt::ini::profileLoads() == loads) << mode << ": a cached read parses nothing";
        ASSERT_TRUE(Vnt_ProfileWriteString("A", "y", "own", file_.c_str()));
        EXPECT_TRUE(get("A", "y") == "own" && vnt::ini::profileLoads() == loads) << mode << ": our own write needs no re-read";

        const struct { const char* name; void (*change)(const fs::path&); const char* want; } steps[] = {
            {"rewritten in place", [](const fs::path& p) { std::ofstream(p, std::ios::binary) << "[A]\nx=22\n"; }, "22"},
            {"replaced by rename", [](const fs::path& p) {
                 std::ofstream(p.string() + ".new", std::ios::binary) << "[A]\nx=333\n";
                 fs::rename(p.string() + ".new", p);
             }, "333"},
            {"removed", [](const fs::path& p) { fs::remove(p); }, "-"},
            {"created", [](const fs::path& p) { std::ofstream(p, std::ios::binary) << "[A]\r\nx=4444\r\n"; }, "4444"},
        };
        for (const auto& s : steps) {
            s.change(host_);
            EXPECT_EQ(get("A", "x"), s.want) << mode << ": " << s.name;
        }
        // The directory removed and made anew under the same name.
        fs::remove_all(dir_);
        fs::create_directories(dir_);
        for (const char* x : {"5", "66"}) {  // a directory made anew, and watched again
            put(std::string("[A]\nx=") + x + "\n");
            EXPECT_EQ(get("A", "x"), x) << mode;
        }
    }
}

}  // namespace
