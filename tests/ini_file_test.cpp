// VntIni and VntIniX: whole file texts after section rewrites, the line
// reader (pieces, headers, comments), section name forms, entry access
// rules, VTM mode over a message library, the questions when the file
// cannot be replaced, and the standard files.
#include <gmock/gmock.h>

#include "support.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/strbuf.h"
#include "vanto/app.h"
#include "vanto/lfn.h"
#include "vanto/ui/msgbox.h"
#include "vtmtool/vtm_writer.h"

namespace fs = std::filesystem;

namespace {

using ::testing::HasSubstr;

class IniFile : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::test::resetAll();
        startDir_ = vnt::host::curDir();
        dir_ = fs::temp_directory_path() / ("vanto_inifile_" + std::to_string(std::random_device{}()));
        fs::create_directories(dir_);
        vnt::host::setProgramFile(lib(dir_ / "Fibu"));
        old_ = Vnt_UiSetPresenter(&box);
        ASSERT_TRUE(Vnt_MsgItfInit(nullptr, 0, lib(VANTO_SYSLIB_EN).c_str()));
        appVtm({"[Settings]"});
    }
    void TearDown() override {
        vnt::test::resetAll();  // closes the library-wide object before the interface
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(old_);
        vnt::host::setProgramFile("");
        vnt::host::setCurDir(startDir_);
        fs::remove_all(dir_);
    }
    static std::string lib(const fs::path& p) { return vnt::test::libPath(p); }
    // The application file: one message a line.
    void appVtm(const std::vector<std::string>& lines) {
        vnt::test::writeIniLibrary(dir_, "App.vtm", lines);
    }
    void put(const std::string& name, const std::string& s) const { std::ofstream(dir_ / name, std::ios::binary) << s; }
    std::string text(const std::string& name) const { return vnt::test::fileText(dir_ / name); }
    std::string file(const std::string& name) const { return lib(dir_ / name); }
    // An entry's value as ReadStr gives it, "-" when missing.
    static std::string get(VntIni& ini, const char* entry) {
        char buf[64];
        ini.ReadStr(entry, "-", buf, sizeof buf);
        return buf;
    }
    // Rewrites `section` of Test.ini to hold "k=v"; `beforeEnd` runs before it ends.
    bool rewrite(const char* section, bool commit = true, const std::function<void()>& beforeEnd = {}) {
        VntIni ini(file("Test.ini").c_str(), nullptr);
        if (!ini.SectionWriteBegin(section)) return false;
        vnt::copyBounded(ini.Line(), 1024, "k=v");
        const bool ok = ini.WriteBuf();
        if (beforeEnd) beforeEnd();
        ini.SectionWriteEnd(commit);
        return ok;
    }

    VntScriptedPresenter box;
    VntMsgPresenter* old_ = nullptr;
    fs::path dir_;
    std::string startDir_;
};

TEST_F(IniFile, SectionRewriteKeepsTheRestOfTheFile) {
    const struct { const char *name, *before, *section, *after; bool commit = true; } rows[] = {
        {"new file begins with an empty line", nullptr, "B", "\r\n[B]\r\nk=v\r\n"},
        {"missing section appended after an empty line", "[A]\r\nx=1\r\n", "B", "[A]\r\nx=1\r\n\r\n[B]\r\nk=v\r\n"},
        {"comments behind the header stay", "[A]\r\n;c1\r\n\r\na=1\r\n;c2\r\nb=2\r\n\r\n[N]\r\nn=1\r\n", "a",
         "[A]\r\n;c1\r\n\r\nk=v\r\n;c2\r\n\r\n[N]\r\nn=1\r\n"},
        {"a header with a comment differs; LF becomes CR LF", "[A] ;x\nq=1\n", "A", "[A] ;x\r\nq=1\r\n\r\n[A]\r\nk=v\r\n"},
        {"without commit the old file stays byte for byte", "[A]\nx=1\n", "A", "[A]\nx=1\n", false},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        fs::remove(dir_ / "Test.ini");
        if (r.before) put("Test.ini", r.before);
        ASSERT_TRUE(rewrite(r.section, r.commit));
        EXPECT_EQ(text("Test.ini") + "|" + text("Test.tmp"), std::string(r.after) + "|(missing)");
    }
}

// A rewrite's temporary file beside a missing file is its complete new
// content (left by a writer that died between removing the old file and the
// rename): every way in takes it as the file.
TEST_F(IniFile, LeftoverRewriteIsTaken) {
    const std::function<std::string()> readers[] = {
        [&] { VntIni ini(file("Test.ini").c_str(), "A"); return get(ini, "k"); },
        [&] { char b[8]; Vnt_ProfileGetString("A", "k", "-", b, sizeof b, file("Test.ini").c_str()); return std::string(b); },
        [&] { return rewrite("B") ? text("Test.ini") : "rewrite failed"; },
    };
    const char* const want[] = {"new", "new", "[A]\r\nk=new\r\n\r\n[B]\r\nk=v\r\n"};
    for (std::size_t i = 0; i < std::size(readers); ++i) {
        Vnt_ProfileFlush(nullptr);
        fs::remove(dir_ / "Test.ini");
        put("Test.tmp", "[A]\r\nk=new\r\n");
        EXPECT_EQ(readers[i](), want[i]) << i;
        EXPECT_FALSE(fs::exists(dir_ / "Test.tmp")) << i;
    }
    put("Test.tmp", "[A]\r\nk=stale\r\n");
    VntIni ini(file("Test.ini").c_str(), "A");
    EXPECT_EQ(get(ini, "k"), "new") << "beside an existing file it is not taken";
}

// Names the file cannot hold are refused, not cut or written so that they
// read back as something else.
TEST_F(IniFile, NamesThatCannotBeHeldAreRefused) {
    const std::string dir = file("x").substr(0, file("x").size() - 1);
    const std::string fits = dir + std::string(VNT_MAX_PATH - 1 - dir.size() - 4, 'n') + ".ini";
    ASSERT_EQ(fits.size(), VNT_MAX_PATH - 1);
    VntIniX tooLong((fits + "i").c_str(), "S");
    vnt::host::setLastError(vnt::host::ErrorKind::None);
    EXPECT_TRUE(!tooLong.WriteStr("k", "v") && vnt::host::lastError().kind == vnt::host::ErrorKind::Invalid);
    EXPECT_FALSE(tooLong.SectionWriteBegin() || tooLong.WriteSection("k=v") || tooLong.Open(nullptr, VNTINI_KEEP, true));
    EXPECT_TRUE(get(tooLong, "k") == "-" && box.shown.empty()) << "a refused name is no internal error";
    VntIni ok(fits.c_str(), "S");
    EXPECT_TRUE(ok.WriteStr("k", "v"));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir_), {}), 2) << "App.vtm and the file whose name fits";

    VntIniX ini(file("Test.ini").c_str(), "S");
    for (const char* section : {"A\nB", "A]B", "A\r"}) {
        vnt::host::setLastError(vnt::host::ErrorKind::None);
        EXPECT_FALSE(ini.SectionWriteBegin(section)) << section;
        EXPECT_EQ(vnt::host::lastError().kind, vnt::host::ErrorKind::Invalid) << section;
        EXPECT_FALSE(ini.WriteSection("k=v", section)) << section;
    }
    EXPECT_FALSE(fs::exists(dir_ / "Test.ini"));
    ini.SetSection("S", -1);
    EXPECT_FALSE(ini.WriteStr("[k", "v") || ini.WriteStr(";k", "v"));
    EXPECT_FALSE(ini.WriteRect("r", nullptr));
    EXPECT_TRUE(ini.WriteSection("k=v", "A[B") && ini.WriteStr("k[", "v"));
}

TEST_F(IniFile, LineReaderPiecesHeadersAndComments) {
    put("Test.ini", "[Main] ;x\r\na=1\r\n[main]\r\n; c\r\n\r\n \t b = 2  \r\n" + std::string(1500, 'L') + "\n[Next]\rn\r\n");
    VntIni ini(file("Test.ini").c_str(), "Other");
    ASSERT_TRUE(ini.SectionFind("Main")) << "\"[Main] ;x\" is passed over, \"[main]\" found";
    char buf[2000], name[100] = {};
    for (const std::string& w : {std::string("b = 2"), std::string(1023, 'L'), std::string(477, 'L')})
        EXPECT_TRUE(ini.ReadStr(buf, sizeof buf) && buf == w) << w.size();
    EXPECT_TRUE(!ini.ReadStr(buf, sizeof buf) && ini.Line() == std::string("[Next]")) << "the header waits";
    ASSERT_TRUE(ini.SectionNext(&name) && std::string(name) + "/" + ini.Section() == "Next/Next");
    EXPECT_TRUE(ini.ReadString("none", buf, 3) == std::string(ini.Line()) && std::string(buf) == "n") << "a CR alone ends a line too";
    EXPECT_TRUE(ini.SectionFirst(&name) && std::string(name) == "Main");
    // Counting consumes a plain file's section.
    EXPECT_TRUE(ini.SectionFind("MAIN") && ini.CountEntries() == 3);
    EXPECT_TRUE(ini.SectionFind("next") && ini.CountEntries() == 1);
    EXPECT_EQ(get(ini, "n"), "-") << "nothing left to read";
}

TEST_F(IniFile, SectionNameForms) {
    const std::string a97(97, 'a'), a98(98, 'a');
    const struct { const char* name; std::string src; bool inPlace; std::string want; bool fits; } rows[] = {
        {"bare name", "Main", false, "[Main]", true},
        {"header form in place", "[Main]", true, "[Main]", true},
        {"closing bracket only, in place", "Main]", true, "[Main]", true},
        {"opening bracket only, in place", "[Main", true, "[Main]", true},
        {"97 characters fit", a97, false, "[" + a97 + "]", true},
        {"98 characters are cut to 97", a98, false, "[" + a97 + "]", false},
        {"98 characters in place", a98, true, "[" + a97 + "]", false},
    };
    for (const auto& r : rows) {
        char name[100] = {};
        if (r.inPlace) vnt::copyBounded(name, r.src);
        EXPECT_EQ(VntIni::SectionNameMake(name, r.inPlace ? nullptr : r.src.c_str()), r.fits) << r.name;
        EXPECT_EQ(name, r.want) << r.name;
    }
    const struct { const char *src, *bare; } clean[] = {
        {" \t[Main]", "Main"}, {"[ Main ] ;x", " Main "}, {"Main]", "Main]"}, {"[a]b]", "a]b"}, {"[open", "open"}};
    for (const auto& c : clean) {
        char name[100], *start = nullptr;
        unsigned length = 0;
        vnt::copyBounded(name, c.src);
        VntIni::SectionNameClean(name, &start, &length);  // reporting leaves the text as it is
        EXPECT_EQ(std::string(start, length) + "|" + name, std::string(c.bare) + "|" + c.src);
        VntIni::SectionNameClean(name);
        EXPECT_STREQ(name, c.bare) << c.src;
    }
}

TEST_F(IniFile, EntryAccessRules) {
    put("Test.ini", "[Main]\r\nblank= \" \"\r\nempty=\r\nk=v\r\n");
    VntIni ini(file("Test.ini").c_str(), nullptr);
    EXPECT_STREQ(ini.Section(), "Main") << "the user type's section";
    char buf[8];
    const struct { const char *entry, *def, *want; } reads[] = {
        {"blank", "d", "d"}, {"empty", "d", "d"}, {"none", nullptr, ""}, {"K", "d", "v"}};
    for (const auto& r : reads) {
        EXPECT_EQ(ini.ReadStr(r.entry, r.def, buf, sizeof buf), int(std::string(r.want).size())) << r.entry;
        EXPECT_STREQ(buf, r.want) << r.entry;
    }
    // Writes into a directory that does not exist yet.
    VntIni w(file("sub/New.ini").c_str(), "S");
    const struct { const char *name, *entry, *value; int num; bool quote; const char *def, *after; } writes[] = {
        {"numbered and quoted", "R", "x", 3, true, nullptr, "[S]\r\nR3=\"x\"\r\n"},
        {"quoted value differs from its unquoted default", "R", "y", -1, true, "y", "[S]\r\nR3=\"x\"\r\nR=\"y\"\r\n"},
        {"value equal to its default deletes", "R", "z", 3, false, "z", "[S]\r\nR=\"y\"\r\n"},
        {"another case keeps the file's spelling", "r", "w", -1, false, nullptr, "[S]\r\nR=w\r\n"},
        {"empty value deletes", "r", "", -1, false, nullptr, "[S]\r\n"},
    };
    for (const auto& r : writes) {
        EXPECT_TRUE(w.WriteStr(r.entry, r.value, r.num, r.quote, r.def)) << r.name;
        EXPECT_EQ(text("sub/New.ini"), r.after) << r.name;
    }
    const char* same = "Recent";
    EXPECT_TRUE(VntIni::NumEntry(same, -1) == same && VntIni::NumEntry(same, 3) == std::string("Recent3"));
}

TEST_F(IniFile, OutsideWritersAreSeenBetweenReads) {
    put("Test.ini", "[S]\r\nk=1\r\n");
    VntIni a(file("Test.ini").c_str(), "S"), b(file("Test.ini").c_str(), "S");
    EXPECT_EQ(get(a, "k") + get(b, "k"), "11");
    put("Test.ini", "[S]\r\nk=22\r\n");  // another program changes the file
    EXPECT_EQ(get(a, "k"), "22");
    put("Test.ini", "[S]\r\nk=33\r\n");  // same size: only the notification can tell
    EXPECT_EQ(get(b, "k"), "33");
    ASSERT_TRUE(a.WriteStr("k", "4"));
    EXPECT_EQ(get(b, "k"), "4");
    fs::remove(dir_ / "Test.ini");
    EXPECT_EQ(get(a, "k"), "-");
}

TEST_F(IniFile, VtmModeReadsMessagesAndRefusesWrites) {
    appVtm({"[Settings]", "UserIni = Me.ini", "[Other]", "k = v1", ";c", "line", "[Last]", "z=1"});
    VntIni ini(file("INI/App.vtm").c_str(), "Other", VNTINI_APP);
    EXPECT_TRUE(ini.IsVtm() && VntIni(file("INI/App.VTM").c_str(), nullptr).IsVtm()) << "the extension in any case";
    EXPECT_EQ(ini.Type() & (VNTINI_ACCESS_RO | VNTINI_ACCESS_RW), VNTINI_ACCESS_RO);
    char buf[64], name[100];
    EXPECT_TRUE(ini.ReadStr("K", "d", buf, sizeof buf) == 2 && std::string(buf) == "v1");
    EXPECT_EQ(get(ini, "z"), "-") << "entries of another section are not seen";
    EXPECT_TRUE(ini.SectionFind("other") && ini.CountEntries() == 2 && ini.CountEntries() == 2) << "read again at once";
    EXPECT_TRUE(ini.SectionNext(&name) && std::string(name) == "Last");
    ini.SetSection("Missing", -1);
    EXPECT_EQ(get(ini, "k"), "-") << "no section found: no entries";
    EXPECT_TRUE(Vnt_IniAppValue("UserIni", "x", buf, sizeof buf) == std::string("Me.ini") && std::string(buf) == "Me.ini");
    EXPECT_FALSE(ini.WriteStr("k", "v") || ini.SectionWriteBegin());
    ini.SectionWriteEnd(true);
    ASSERT_EQ(box.shown.size(), 3u);
    EXPECT_THAT(box.shown[0].text, HasSubstr("Internal Error:\n\nVntIni::WriteStr(): VTM mode is read only."));
    EXPECT_THAT(box.shown[0].details, HasSubstr("File:\t\t" + file("INI/App.vtm") + "\nSection:\t\t[Missing]\nEntry:\t\tk"));
    EXPECT_THAT(box.shown[1].text, HasSubstr("VntIni::SectionWriteBegin(): VTM mode does not support writing back to a file"));
    EXPECT_THAT(box.shown[2].text, HasSubstr("VntIni::SectionWriteEnd(): VTM mode does not support writing back to a file"));
}

TEST_F(IniFile, ReplacingTheFileAsksWhenItFails) {
    const char *oldText = "[A]\r\nx=1\r\n", *newText = "[A]\r\nk=v\r\n", *none = "(missing)";
    using vnt::host::Op;
    // The faults hit the old file's removal and the rename onto its name.
    const struct { const char* name; Op op; int button; const char *file, *temp; } rows[] = {
        {"delete fails, retry", Op::Remove, VNT_BTN_RETRY, newText, none},
        {"delete fails, abort leaves both", Op::Remove, VNT_BTN_ABORT, oldText, newText},
        {"delete fails, ignore renames over it", Op::Remove, VNT_BTN_IGNORE, newText, none},
        {"rename fails, retry", Op::Rename, VNT_BTN_RETRY, newText, none},
        {"rename fails, cancel gives up: the old file stays", Op::Rename, VNT_BTN_CANCEL, oldText, newText},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        put("Test.ini", oldText);
        fs::remove(dir_ / "Test.tmp");
        box.shown.clear();
        box.answers = {{r.button, false}, {VNT_BTN_ABORT, false}};  // a second question gives up
        // After "ignore" a delete would fail again: it must not be tried again.
        box.during = r.button != VNT_BTN_IGNORE ? nullptr : +[](const VntBoxModel&) { vnt::host::faultOn(Op::Remove, "*\\Test.ini"); };
        ASSERT_TRUE(rewrite("A", true, [&] {
            EXPECT_TRUE(fs::exists(dir_ / "Test.tmp")) << "the temporary file exists from the start";
            vnt::host::faultOn(r.op, "*\\Test.ini");
        }));
        vnt::host::faultReset();
        EXPECT_EQ(text("Test.ini") + "|" + text("Test.tmp"), std::string(r.file) + "|" + r.temp);
        ASSERT_EQ(box.shown.size(), 1u);
        EXPECT_THAT(box.shown[0].text, HasSubstr(r.op == Op::Remove ? "cannot be deleted" : "cannot be renamed"));
        EXPECT_THAT(box.shown[0].text, HasSubstr(Vnt_LfnNameOut(file("Test.ini").c_str())));
    }
}

TEST_F(IniFile, StandardFilesAndTheirNames) {
    const std::string prog = lib(dir_);
    fs::remove(dir_ / "INI" / "App.vtm");  // without it: the defaults, and no report
    char buf[VNT_MAX_PATH];
    EXPECT_TRUE(Vnt_IniUserFile(buf) == prog + "\\USR\\Std\\User.ini" && fs::is_directory(dir_ / "USR" / "Std"));
    EXPECT_EQ(std::string(Vnt_IniAppRWFile(buf)), prog + "\\INI\\AppRW.ini");
    Vnt_AppSetDataPath((prog + "\\Daten").c_str());
    EXPECT_EQ(std::string(Vnt_IniDatFile(buf)), prog + "\\Daten\\Dat.ini");
    EXPECT_TRUE(Vnt_IniUser("Anna") == std::string("Anna") && Vnt_IniUser(nullptr) == std::string("Anna"));
    EXPECT_TRUE(Vnt_IniUserPath() == prog + "\\USR\\Anna" && fs::is_directory(dir_ / "USR" / "Anna"));
    EXPECT_TRUE(Vnt_IniAppValue("Missing", "def", nullptr, 0) == std::string("def") && Vnt_IniAppValue("Missing", 42L) == 42);
    const VntIni user, dat(nullptr, nullptr, VNTINI_DAT);
    EXPECT_EQ(std::string(user.File()), prog + "\\USR\\Anna\\User.ini");
    EXPECT_EQ(std::string(user.Section()) + "/" + dat.Section(), "Main/Settings");
    EXPECT_TRUE(box.shown.empty());
    // The application file renames the files and directories, read once.
    vnt::ini::reset();
    Vnt_AppSetDataPath("");
    appVtm({"[Settings]", "USR=Benutzer", "UsrStd=Gast", "UserIni=Me.ini", "DatIni=D.ini", "Width=12x"});
    EXPECT_EQ(std::string(Vnt_IniUserFile(buf)), prog + "\\Benutzer\\Gast\\Me.ini");
    EXPECT_EQ(std::string(Vnt_IniDatFile(buf, "Own.ini")), "Own.ini") << "no data path set";
    EXPECT_EQ(std::string(Vnt_IniDatFile(buf)), "D.ini");
    EXPECT_EQ(Vnt_IniAppValue("Width", 0L), 12);
}

struct Settings : VntIni {
    using VntIni::VntIni;
    int calls = 0;
    std::string value = "v";
    void DoDataExchange(bool write) override {
        if (++calls == 3 && write) throw std::runtime_error("the application's own");
        DX(write, "x", value, nullptr);
    }
};

TEST_F(IniFile, WholeSectionsDataExchangeAndCopies) {
    const std::string both = "[A]\r\na=1\r\n;c\r\n\r\nlast\r\n[B]\r\n";
    VntIniX x(file("Test.ini").c_str(), "A");
    ASSERT_TRUE(x.OpenWrite() && x.IsOpen());
    EXPECT_TRUE(x.WriteSection("a=1\r\n;c\n\nlast") && x.WriteSection("b=2", "B"));
    EXPECT_FALSE(x.WriteSection("x", std::string(98, 'n').c_str())) << "a name that does not fit writes nothing";
    x.Close(true);
    EXPECT_EQ(text("Test.ini"), both + "b=2\r\n");
    char buf[64];
    x.ReadSection(buf, sizeof buf);
    EXPECT_STREQ(buf, "a=1\n;c\n\nlast\n");
    EXPECT_FALSE(x.IsOpen()) << "closed again by the call that opened it";
    x.ReadSection(buf, 8, "a");
    EXPECT_STREQ(buf, "a=1\n") << "stops before reaching size - 2";
    EXPECT_TRUE(x.SectionFind("A") && !x.ReadLine(buf, sizeof buf)) << "never a line, kept for compatibility";
    EXPECT_TRUE(x.ReadRawLine(buf, sizeof buf) && std::string(buf) == "b=2") << "ReadLine read up to the next header";
    x.Close(true);
    {  // A section rewrite shared by a copy is committed once, by the last holder.
        VntIni a(file("Test.ini").c_str(), "B");
        ASSERT_TRUE(a.SectionWriteBegin());
        VntIni b(a);
        vnt::copyBounded(b.Line(), 1024, "c=3");
        EXPECT_TRUE(b.WriteBuf());
        a.Close(true);
        EXPECT_EQ(text("Test.ini"), both + "b=2\r\n");
    }
    EXPECT_EQ(text("Test.ini"), both + "c=3\r\n");
    Settings s(file("Test.ini").c_str(), "A");
    s.Read();  // the first exchange
    EXPECT_TRUE(s.Write());
    EXPECT_THROW(s.Write(), std::runtime_error) << "only a failed DX write is caught (false)";
}

// An application's own profile: everything in memory.
struct MemoryProfile : VntAppProfile {
    std::map<std::string, std::string> values;
    std::string GetProfileString(const char* s, const char* e, const char* def) override {
        auto it = values.find(std::string(s) + "/" + e);
        return it == values.end() ? def : it->second;
    }
    bool WriteProfileString(const char* s, const char* e, const char* v) override {
        if (v) values[std::string(s) + "/" + e] = v;
        else values.erase(std::string(s) + "/" + e);
        return true;
    }
};

TEST_F(IniFile, ApplicationProfileLivesInTheUserFileUnlessReplaced) {
    VntIni ini(file("Test.ini").c_str(), "Opts");
    ini.SetApp(&Vnt_AppProfile());
    ASSERT_TRUE(ini.WriteStr("Size", "12"));
    EXPECT_EQ(text("USR/Std/User.ini") + "|" + text("Test.ini"), "[Opts]\r\nSize=12\r\n|(missing)");
    EXPECT_EQ(get(ini, "size"), "12");
    MemoryProfile mine;
    VntAppProfile* before = &Vnt_AppProfile();
    EXPECT_EQ(Vnt_AppSetProfile(&mine), before);
    ini.SetApp(&Vnt_AppProfile());
    ASSERT_TRUE(ini.WriteStr("Size", "7"));
    EXPECT_EQ(get(ini, "Size") + "|" + mine.values["Opts/Size"], "7|7");
    EXPECT_EQ(text("USR/Std/User.ini"), "[Opts]\r\nSize=12\r\n") << "the user file is no longer used";
    Vnt_AppSetProfile(nullptr);
    EXPECT_NE(&Vnt_AppProfile(), &mine);
}

}  // namespace
