// Searches and find records, directory chains, file times and attributes,
// temporary names, volumes with their messages, and the file dialogs through
// the scripted port. Volume T: is a temporary tree:
//   a/  File1.txt (5 bytes)  file2.TXT  readme  .dot.txt  b/inner.dat  .hidden/
//   prog/  Fibu (the program)  only.ini
#include <gmock/gmock.h>

#include "support.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/strbuf.h"
#include "lfn/lfn_state.h"
#include "vanto/lfn.h"
#include "vanto/ui/filedlg.h"
#include "vanto/ui/msgbox.h"
#include "scratch.h"

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using vnt::host::Op;
using vnt::copyBounded;
using namespace std::string_literals;

namespace {

class LfnFind : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll(), vnt::lfn::resetState();
        base_ = vnt::test::scratchDir("vanto_lfnfind_");
        fs::remove_all(base_);
        for (const char* d : {"t/a/b", "t/a/.hidden", "t/prog"}) fs::create_directories(base_ / d);
        for (const char* f : {"a/file2.TXT", "a/readme", "a/.dot.txt", "a/b/inner.dat", "prog/Fibu", "prog/only.ini"})
            std::ofstream(base_ / "t" / f) << "";
        std::ofstream(base_ / "t/a/File1.txt") << "12345";
        ASSERT_TRUE(Vnt_LfnVolMap('T', vnt::test::hostStr(base_ / "t").c_str()) && Vnt_LfnDirSet(R"(T:\a)"));
        vnt::host::setProgramFile(R"(T:\prog\Fibu)");
        Vnt_UiSetPresenter(&box), Vnt_UiSetFileDialog(&dlg);
    }
    void TearDown() override {
        vnt::test::resetAll(), vnt::lfn::resetState(), Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(nullptr), Vnt_UiSetFileDialog(nullptr);
        fs::current_path(cwd_), fs::remove_all(base_);
    }
    // Every name a search gives: the first, then the next ones.
    static std::vector<std::string> all(const char* pattern, bool dirs) {
        std::vector<std::string> out;
        char buf[VNT_MAX_PATH];
        for (bool ok = dirs ? Vnt_LfnDirFindFirst(buf, nullptr, pattern, nullptr) : Vnt_LfnFileFind(pattern, buf); ok;
             ok = dirs ? Vnt_LfnDirFindNext(buf) : Vnt_LfnFileFindNext(buf))
            out.push_back(buf);
        return out;
    }
    bool exists(const char* rel) const { return fs::exists(base_ / "t" / rel); }
    static std::string name() { return Vnt_LfnFileName(); }  // of the current find record

    fs::path cwd_ = fs::current_path(), base_;
    VntScriptedPresenter box;
    VntScriptedFileDialog dlg;
};

TEST_F(LfnFind, PatternsAndOrder) {
    struct Row { const char* pattern; bool dirs; std::vector<std::string> names; };
    const Row rows[] = {
        {R"(T:\a\*.*)", false, {R"(T:\a\.dot.txt)", R"(T:\a\File1.txt)", R"(T:\a\file2.TXT)", R"(T:\a\readme)"}},
        {R"(t:\A\*.TXT)", false, {R"(t:\A\.dot.txt)", R"(t:\A\File1.txt)", R"(t:\A\file2.TXT)"}},
        {R"(T:\a\FILE?.txt)", false, {R"(T:\a\File1.txt)", R"(T:\a\file2.TXT)"}},
        {R"(T:\a\readme.*)", false, {R"(T:\a\readme)"}},
        {R"(T:\a\file1.TXT)", false, {R"(T:\a\File1.txt)"}},
        {"f*", false, {"File1.txt", "file2.TXT"}},  // relative to T:\a
        {R"(T:\a\nothing*)", false, {}},
        {R"(T:\a\*)", true, {R"(T:\a\b)"}},  // no ".", "..", ".hidden"
        {R"(T:\*)", true, {R"(T:\a)", R"(T:\prog)"}},
        {R"(T:\a\b)", true, {R"(T:\a\b)"}},
        {R"(T:\a\b)", false, {}},  // a file search never gives a directory
    };
    for (const Row& r : rows) EXPECT_EQ(all(r.pattern, r.dirs), r.names) << r.pattern;

    ASSERT_TRUE(Vnt_LfnFileFind(R"(T:\a\File1.txt)"));
    EXPECT_EQ(name() + " " + std::to_string(Vnt_LfnFileLength()) + " " + std::to_string(Vnt_LfnFileAttr()),
              "File1.txt 5 " + std::to_string(VNT_LFN_ATTR_ARCHIVE));
    ASSERT_TRUE(Vnt_LfnFileFind(R"(T:\a\.dot.txt)") && Vnt_LfnFileAttrSet(R"(T:\a\.dot.txt)", VNT_LFN_ATTR_READONLY));
    EXPECT_EQ(Vnt_LfnFileAttr(), VNT_LFN_ATTR_ARCHIVE | VNT_LFN_ATTR_HIDDEN);  // the record is a snapshot
    ASSERT_TRUE(Vnt_LfnFileFind(R"(T:\a\.dot.txt)"));
    EXPECT_EQ(Vnt_LfnFileAttr(), VNT_LFN_ATTR_ARCHIVE | VNT_LFN_ATTR_HIDDEN | VNT_LFN_ATTR_READONLY);
    ASSERT_TRUE(Vnt_LfnFileAttrSet(R"(T:\a\.dot.txt)", 0) && Vnt_LfnDirFindFirst(nullptr, nullptr, R"(T:\a\b)", nullptr));
    EXPECT_EQ(Vnt_LfnFileAttr(), VNT_LFN_ATTR_DIRECTORY);
    // Coarse by design: the failure value of a missing file counts as well.
    unsigned long a = 7;
    EXPECT_TRUE(Vnt_LfnFileAttrGet(R"(T:\a\readme)", &a) && a == 1 && Vnt_LfnFileAttrGet(R"(T:\nope)", &a) && a == 1);
}

TEST_F(LfnFind, CurrentRecordHandOver) {
    char buf[VNT_MAX_PATH], hbuf[VNT_MAX_PATH], h2buf[VNT_MAX_PATH];
    VNT_LFN_HFIND h = nullptr, h2 = nullptr, h3 = nullptr, h4 = nullptr;
    ASSERT_TRUE(Vnt_LfnFileFind(R"(T:\a\*.txt)", buf));
    ASSERT_TRUE(Vnt_LfnFileFindFirst(hbuf, R"(T:\a\b)", "*", &h) && h != nullptr && Vnt_LfnFileFindFirst(R"(T:\a\r*)", &h2));
    EXPECT_STREQ(hbuf, R"(T:\a\b\inner.dat)");
    EXPECT_EQ(name() + " " + vnt::lfn::state().result, R"(readme T:\a\readme)");
    copyBounded(h2buf, vnt::lfn::state().result);
    // h2 runs out: released, and h, current when it started, takes over.
    EXPECT_FALSE(Vnt_LfnFileFindNext(&h2, h2buf));
    EXPECT_TRUE(h2 == nullptr && name() == "inner.dat");
    ASSERT_TRUE(Vnt_LfnFileFindNext(buf));  // the default record's search goes on
    EXPECT_EQ(buf + (" " + name()), R"(T:\a\File1.txt File1.txt)");
    EXPECT_FALSE(Vnt_LfnFileFindNext(&h, hbuf));
    EXPECT_TRUE(h == nullptr && name() == "File1.txt");
    // A failed start releases its record and gives the role back.
    ASSERT_TRUE(Vnt_LfnFileFindFirst(R"(T:\prog\*)", &h4));
    EXPECT_FALSE(Vnt_LfnFileFindFirst(R"(T:\a\none*)", &h3));
    EXPECT_TRUE(h3 == nullptr && name() == "Fibu");
    // Closing the current record makes the default one current.
    Vnt_LfnFindClose(&h4);
    EXPECT_TRUE(h4 == nullptr && name() == "File1.txt");
    Vnt_LfnFindClose(&h4);  // a closed handle is no error
    EXPECT_TRUE(vnt::lfn::state().live.empty() && !Vnt_LfnFileFindNext(&h2, buf));
    // A failed search on the default record while it is current leaves it
    // current, whatever was current before its last start.
    ASSERT_TRUE(Vnt_LfnFileFindFirst(R"(T:\prog\*)", &h4) && Vnt_LfnFileFind(R"(T:\a\readme)"));
    EXPECT_FALSE(Vnt_LfnFileFind(R"(T:\a\none)"));
    EXPECT_EQ(name(), "readme");
    Vnt_LfnFindClose(&h4);
    // DirFind's own handle is closed: the default record is current after it.
    ASSERT_TRUE(Vnt_LfnFileFindFirst(R"(T:\prog\only.ini)", &h) && Vnt_LfnDirFind(R"(T:\a\B)", buf));
    EXPECT_EQ(buf + (" " + name()), R"(T:\a\b readme)");
    Vnt_LfnFindClose(&h);
}

TEST_F(LfnFind, ProgramDirectoryAndVariable) {
    fs::create_directories(base_ / "t/lib");
    std::ofstream(base_ / "t/lib/extra.dll") << "";
    const std::string value = R"(T:\nowhere;)" + (base_ / "t/lib").string();
    vnt::test::setEnv("VANTO_LFNFIND_PATH", value);
    struct Row { const char *var, *name, *found; };  // no var: Vnt_LfnFileFind
    const Row rows[] = {
        {nullptr, "only.ini", R"(T:\prog\only.ini)"},  // the program's directory is the second try
        {nullptr, R"(x\only.ini)", nullptr},           // only bare names get it
        {"VANTO_LFNFIND_PATH", "File1.txt", R"(T:\a\File1.txt)"},
        {"VANTO_LFNFIND_PATH", "only.ini", R"(T:\prog\only.ini)"},
        {"VANTO_LFNFIND_PATH", "extra.dll", R"(T:\lib\extra.dll)"},
        {"VANTO_LFNFIND_UNSET", "extra.dll", nullptr},
    };
    for (const Row& r : rows) {
        char buf[VNT_MAX_PATH];
        const bool ok = r.var ? Vnt_LfnFileFindEnv(r.var, r.name, buf) : Vnt_LfnFileFind(r.name, buf);
        EXPECT_EQ(ok ? std::string(buf) : "(none)", r.found ? r.found : "(none)") << r.name;
    }
    EXPECT_FALSE(Vnt_LfnDirFind("only.ini"));
    vnt::test::unsetEnv("VANTO_LFNFIND_PATH");
}

TEST_F(LfnFind, CreateAndRemoveChains) {
    struct Row { const char* dir; bool ok; const char* made; };
    const Row rows[] = {
        {R"(T:\a\b\c\d)", true, "a/b/c/d"}, {R"(T:\x\y)", true, "x/y"}, {R"(T:\a)", true, "a"},
        {R"(T:\a\b)", true, "a/b"},  // b existed: only found
        {R"(T:\)", true, ""}, {"T:", true, ""},
        {"rel\\sub", true, "a/rel/sub"},  // under the current directory
        {R"(\top)", false, nullptr},      // only found, never created
        {R"(T:\a\File1.txt\sub)", false, nullptr},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(Vnt_LfnDirCreate(r.dir), r.ok) << r.dir;
        EXPECT_TRUE(!r.made || fs::is_directory(base_ / "t" / r.made)) << r.dir;
    }
    EXPECT_FALSE(exists("top"));
    VNT_PATH buf = "old";
    EXPECT_TRUE(Vnt_LfnDirCreate(buf, R"(T:\j)", R"(\k\l)") && std::string(buf) == R"(T:\j\k\l)");
    EXPECT_TRUE(Vnt_LfnDirCreateFromFile(R"(T:\f\g\file.txt)") && fs::is_directory(base_ / "t/f/g"));

    // c and b go (b held nothing but c); "a" keeps its files and stays.
    fs::remove_all(base_ / "t/a/b/c"), fs::create_directories(base_ / "t/a/b/c"), fs::remove(base_ / "t/a/b/inner.dat");
    copyBounded(buf, R"(T:\a\b\c)");
    EXPECT_TRUE(Vnt_LfnDirRemove(buf) && std::string(buf) == R"(T:\a)");
    EXPECT_TRUE(exists("a/File1.txt") && !exists("a/b"));
    EXPECT_TRUE(Vnt_LfnDirRemove(R"(T:\j\k\l)") && !exists("j"));  // every emptied ancestor goes up to the root
    EXPECT_FALSE(Vnt_LfnDirRemove(R"(T:\nothere)"));
    fs::create_directories(base_ / "t/r");  // the walk goes on past a failed removal
    EXPECT_TRUE(Vnt_LfnDirRemove(R"(T:\r\gone)") && !exists("r"));
    vnt::host::faultOn(Op::Remove, R"(T:\x\y)");  // so x is not empty
    EXPECT_TRUE(!Vnt_LfnDirRemove(R"(T:\x\y)") && exists("x/y"));
}

TEST_F(LfnFind, PackedTimes) {
    struct Pack { std::uint16_t year; int field; };
    for (const Pack& p : {Pack{99, 19}, Pack{5, 25}, Pack{1900, 0}, Pack{2107, 127}})
        EXPECT_EQ(Vnt_LfnDatePack(VNT_DATE{p.year, 1, 1}) >> 9, p.field) << p.year;
    VNT_TIME gt{};
    VNT_DATE gd{};
    Vnt_LfnTimeUnpack(0xBF7D, &gt);
    EXPECT_TRUE(gt.hour == 23 && gt.minute == 59 && gt.second == 58);

    const char* file = R"(T:\a\File1.txt)";
    const VNT_TIME set{13, 45, 31, 99};
    const VNT_DATE day{2023, 6, 7}, y99{99, 12, 31};
    ASSERT_TRUE(Vnt_LfnFileTimeSet(file, &set, &day) && Vnt_LfnFileTimeGet(file, &gt, &gd));
    EXPECT_TRUE(gt.hour == 13 && gt.minute == 45 && gt.second == 30 && gt.fraction == 0);
    EXPECT_TRUE(gd.year == 2023 && gd.month == 6 && gd.day == 7);
    const unsigned long packed = (static_cast<unsigned long>(Vnt_LfnDatePack(day)) << 16) | Vnt_LfnTimePack(set);
    unsigned long p = 0, q = 0;
    EXPECT_TRUE(Vnt_LfnFileTimeGetp(file, &p) && p == packed);
    ASSERT_TRUE(Vnt_LfnFileFind(file));
    EXPECT_TRUE(Vnt_LfnFileDateTime() == packed && Vnt_LfnFileTimep(&q) == packed && q == packed && Vnt_LfnFileDate() == packed >> 16);
    ASSERT_TRUE(Vnt_LfnFileTimeSet(file, nullptr, &y99) && Vnt_LfnFileTimeGet(file, &gt, &gd));
    EXPECT_TRUE(gd.year == 1999 && gd.month == 12 && gd.day == 31 && gt.hour == 13 && gt.second == 30);  // time kept
    EXPECT_TRUE(Vnt_LfnFileTimeSetp(file, packed) && Vnt_LfnFileTimeGetp(file, &p) && p == packed);
    for (const char* bad : {R"(T:\a\b)", R"(T:\a\missing)"})
        EXPECT_FALSE(Vnt_LfnFileTimeGet(bad, &gt, &gd) || Vnt_LfnFileTimeSet(bad, &set, &day)) << bad;
    vnt::host::faultOn(Op::Open, file);
    EXPECT_FALSE(Vnt_LfnFileTimeGetp(file, &p));
}

TEST_F(LfnFind, TempNameAndFaults) {
    vnt::host::LocalTime at;
    at.year = 2024, at.month = 3, at.day = 1, at.hour = 9, at.minute = 5, at.second = 3;
    vnt::host::setClock(&at);
    VNT_PATH buf;
    EXPECT_TRUE(Vnt_LfnTempFileName(buf) && std::string(buf) == R"(T:\prog\TEMP\090503.tmp)") << buf;
    EXPECT_TRUE(fs::is_directory(base_ / "t/prog/TEMP") && !exists("prog/TEMP/090503.tmp"));
    fs::remove(base_ / "t/prog/TEMP"), std::ofstream(base_ / "t/prog/TEMP") << "";  // cannot be made
    EXPECT_TRUE(Vnt_LfnTempFileName(buf) && std::string(buf) == R"(T:\prog\090503.tmp)") << buf;

    // A pattern reads the directory; a plain name is asked of the host alone.
    vnt::host::faultOn(Op::List, R"(T:\a*)");
    EXPECT_TRUE(!Vnt_LfnFileFind(R"(T:\a\read*)") && Vnt_LfnFileFind(R"(T:\a\read*)"));
    vnt::host::faultOn(Op::Stat, R"(T:\a\readme)");
    EXPECT_TRUE(!Vnt_LfnFileFind(R"(T:\a\readme)") && Vnt_LfnFileFind(R"(T:\a\READme)") && name() == "readme");
}

TEST_F(LfnFind, Volumes) {
    struct Kind { const char* vol; VNT_LFN_VOL_TYPE kind; };
    for (const Kind& k : {Kind{R"(a:\)", VNT_LFN_VOL_FLOPPY_A}, Kind{"A:", VNT_LFN_VOL_FLOPPY_A}, Kind{"b:", VNT_LFN_VOL_FLOPPY_B},
                          Kind{"C:", VNT_LFN_VOL_FIXED}, Kind{R"(\\srv\share)", VNT_LFN_VOL_NONE}, Kind{"", VNT_LFN_VOL_NONE},
                          Kind{nullptr, VNT_LFN_VOL_NONE}, Kind{"1:", VNT_LFN_VOL_NONE}})
        EXPECT_EQ(Vnt_LfnVolType(k.vol), k.kind) << (k.vol ? k.vol : "null");

    VNT_PATH buf = R"(T:\a\b)";
    EXPECT_TRUE(Vnt_LfnVolName(buf) && std::string(buf) == "T:");
    copyBounded(buf, R"(\\srv\share\x)");
    EXPECT_TRUE(!Vnt_LfnVolName(buf) && std::string(buf) == R"(\\srv\share)");
    auto list = [] {
        std::vector<std::string> out;
        for (const VNT_PATH* v = Vnt_LfnVolList(); (*v)[0] != '\0'; ++v) out.emplace_back(*v);
        return out;
    };
    ASSERT_TRUE(Vnt_LfnVolMap('C', vnt::test::hostStr(base_ / "t/a").c_str()));
    EXPECT_THAT(list(), ElementsAre("C:", "T:", "Z:"));
    Vnt_LfnVolUnmap('C');
    EXPECT_THAT(list(), ElementsAre("T:", "Z:"));

    ASSERT_TRUE(Vnt_LfnFromHost(buf, VANTO_SYSLIB_EN) && Vnt_MsgItfInit(nullptr, 0, buf));
    EXPECT_EQ(Vnt_LfnVolFreeSpace(R"(\a)"), 0u);
    EXPECT_TRUE(Vnt_LfnFileFitToVol("T:", R"(T:\a\File1.txt)") && Vnt_LfnVolExists(R"(T:\)"));
    EXPECT_TRUE(box.shown.empty());
    EXPECT_FALSE(Vnt_LfnVolExists(R"(Q:\x)"));
    vnt::host::faultOn(Op::Stat, R"(T:\)");
    EXPECT_EQ(Vnt_LfnVolFreeSpace("T:"), 0u);
    const std::string missing = R"(T:\a\)" + std::string(40, 'm');
    EXPECT_FALSE(Vnt_LfnFileFitToVol("T:", missing.c_str()));
    ASSERT_EQ(box.shown.size(), 3u);
    EXPECT_THAT(box.shown[0].text, HasSubstr(R"(The drive "Q:\x" cannot be reached.)"));
    EXPECT_THAT(box.shown[1].text, HasSubstr(R"(The drive "T:" cannot be reached.)"));
    EXPECT_THAT(box.shown[2].text, HasSubstr("The file \"T:\\...mmm"));

    // Free bytes in 32 bits: this volume has more than 4 GiB free, so the
    // figure wraps. Asked until the disk holds still between two looks.
    std::uintmax_t before = 0, after = 1;
    unsigned long free32 = 0;
    for (int i = 0; i < 20 && before != after; ++i) {
        before = fs::space(base_).available;
        free32 = Vnt_LfnVolFreeSpace("T:");
        after = fs::space(base_).available;
    }
    ASSERT_EQ(before, after);
    EXPECT_EQ(free32, static_cast<std::uint32_t>(before));
    // A file of 4 GiB - 1 (sparse) does not fit into what is left of that.
    box.shown.clear();
    fs::resize_file(base_ / "t/a/File1.txt", 0xFFFFFFFFull);
    EXPECT_FALSE(Vnt_LfnFileFitToVol("T:", R"(T:\a\File1.txt)"));
    EXPECT_THAT(box.shown, ElementsAre(::testing::Field(&VntBoxModel::text, HasSubstr(R"(not enough free space on the drive "T:")"))));
}

TEST_F(LfnFind, Dialogs) {
    using R = VntFileDialogResult;
    struct Row { const char *filter, *ext; std::string list; std::size_t pairs; };
    const std::string longFilter = std::string(150, 'n') + "|*.a|" + std::string(150, 'm') + "|*.b";
    const Row rows[] = {
        {longFilter.c_str(), nullptr, "", 2},
        {"Text|*.txt|All|*.*", nullptr, "Text\0*.txt\0All\0*.*\0\0"s, 2},
        {"Text\n*.txt\n", "x", "Text\0*.txt\0\0"s, 1},
        {"Text\0*.txt\0\0", "x", "Text\0*.txt\0\0"s, 1},  // as it stands
        {nullptr, ".dat", "*.dat\0*.dat\0\0"s, 1},
        {"", nullptr, "*.*\0*.*\0\0"s, 1},
    };
    for (const Row& r : rows) {
        char file[VNT_MAX_PATH] = "";
        dlg.requests.clear();
        EXPECT_FALSE(Vnt_LfnDlgOpen(file, nullptr, r.ext, "Pick", r.filter));
        ASSERT_EQ(dlg.requests.size(), 1u);
        const VntFileDialogRequest& q = dlg.requests[0];
        ASSERT_EQ(q.filters.size(), r.pairs) << r.list;
        EXPECT_TRUE(r.list.empty() ? q.filters[1].name == std::string(150, 'm') : q.filterList == r.list) << r.list;
        EXPECT_TRUE(q.kind == VntFileDialogKind::Open && q.title == "Pick" && q.pathMustExist && q.hideReadOnly &&
                    !q.promptOverwrite);
    }

    // Invalid name: shown once more with no name; put back when that fails too.
    char file[VNT_MAX_PATH] = "bad|name", dir[VNT_MAX_PATH] = R"(T:\nowhere)";
    dlg.requests.clear();
    dlg.answers = {{R::InvalidFileName, ""}, {R::Cancelled, ""}};
    EXPECT_FALSE(Vnt_LfnDlgSave(file, dir, "txt", "", nullptr));
    ASSERT_EQ(dlg.requests.size(), 2u);
    EXPECT_TRUE(dlg.requests[0].initialDir.empty() && dlg.requests[0].promptOverwrite);  // missing dir emptied
    EXPECT_EQ(dlg.requests[1].initialFile + "|" + file + "|" + dir, "|bad|name|");
    // The directory buffer receives the file's directory after a cancel too.
    copyBounded(file, R"(T:\a\b\inner.dat)"), copyBounded(dir, R"(T:\a)");
    EXPECT_FALSE(Vnt_LfnDlgOpen(file, dir, nullptr, nullptr, nullptr));
    EXPECT_EQ(dlg.requests.back().initialDir + "|" + dir, R"(T:\a|T:\a\b)");
    dlg.answers = {{R::InvalidFileName, ""}, {R::Confirmed, R"(T:\a\b\New.txt)"}};
    EXPECT_TRUE(Vnt_LfnDlgOpen(file, nullptr, nullptr, nullptr, nullptr) && std::string(file) == R"(T:\a\b\New.txt)");
    EXPECT_FALSE(Vnt_LfnDlgOpen(file, nullptr, nullptr, nullptr, nullptr));  // remembers the open directory
    EXPECT_EQ(dlg.requests.back().initialDir, R"(T:\a\b)");

    VNT_LFN_DLGFSPEC spec{};
    copyBounded(spec.ext, "txt"), copyBounded(spec.dlgTitle, "Export"), copyBounded(spec.dir, R"(\)");
    dlg.answers = {{R::Confirmed, R"(T:\a\Report.Final.txt)"}};
    ASSERT_TRUE(Vnt_LfnDlgSave(&spec));
    EXPECT_EQ(dlg.requests.back().initialDir, R"(\)");  // a lone backslash stays
    EXPECT_EQ(dlg.requests.back().filterList, "*.txt\0*.txt\0\0"s);
    EXPECT_EQ(std::string(spec.dir) + "|" + spec.title + "|" + spec.vol + "|" + spec.ext,
              R"(T:\a|Report.Final.txt|T:|Fin)");
}

}  // namespace
