// Shared by the database tests. Site: a temporary directory as drive T:,
// the program "T:\Fibu", the English system messages held open (as an
// application holds them) and a scripted message box. Conn: the connection
// tests of every back end on that site, with an application file, "dsn.ini"
// with three clients (two that connect, one whose driver does not exist)
// and a main window that records what it is told.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "scratch.h"
#include "support.h"
#include "vanto/dsn.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/clientsel.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"

namespace vnt::test {

template <class Base = ::testing::Test>
class Site : public Base {
protected:
    void SetUp() override {
        resetAll();
        dir_ = scratchDir("vanto_db_");
        std::filesystem::create_directories(dir_ / "INI");
        ASSERT_TRUE(Vnt_LfnVolMap('T', vnt::test::hostStr(dir_).c_str()));
        vnt::host::setProgramFile("T:\\Fibu");
        oldBox_ = Vnt_UiSetPresenter(&box);
        VNT_PATH sys;
        ASSERT_TRUE(Vnt_LfnFromHost(sys, VANTO_SYSLIB_EN) && Vnt_MsgItfInit(nullptr, 0, sys));
        sys_ = Vnt_MsgHInit();
    }
    void TearDown() override {
        if (sys_) Vnt_MsgHTerm(&sys_);
        resetAll();  // closes the connection
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(oldBox_);
        vnt::host::setProgramFile("");
        if (!dir_.empty()) std::filesystem::remove_all(dir_);
    }
    /// The application file's settings section; the registry reads it anew.
    void app(const std::vector<std::string>& settings) { writeAppSettings(dir_, settings); }
    void put(const std::string& name, const std::string& text) { putFile(dir_ / name, text); }
    void putLines(const std::string& name, const std::vector<std::string>& lines) {
        std::string text;
        for (const std::string& l : lines) text += l + "\r\n";
        put(name, text);
    }
    std::string get(const std::string& name = "INI/dsn.ini") const { return fileText(dir_ / name); }
    std::string lastBox() const { return box.shown.empty() ? "(none)" : box.shown.back().text; }

    std::filesystem::path dir_;
    VntScriptedPresenter box;

private:
    VNT_MSG sys_ = nullptr;
    VntMsgPresenter* oldBox_ = nullptr;
};

/// How a back end's clients are configured.
struct ConnBackend {
    const char* name;
    std::vector<std::string> app;  ///< settings of the application file
    const char* driver;            ///< DefaultDriver of "dsn.ini"
    /// Makes the back end ready. Absent (with `why`) skips its tests: the
    /// software is not installed; Broken (with `why`) fails them.
    enum class Ready { Yes, Absent, Broken };
    std::function<Ready(std::string& why)> prepare;
    /// Extra lines of client n (1, 2) of "dsn.ini".
    std::function<std::vector<std::string>(int n)> lines;
};

const auto byName = [](const auto& i) { return std::string(i.param->name); };

/// SQLite, the embedded default: a database file in each client's directory.
inline const ConnBackend kSqlite{"Sqlite", {"DsnPathSpec=Database", "DsnDBFileName=vanto.db", "DsnIsFile=1"}, "SQLite3",
                                 [](std::string&) { return ConnBackend::Ready::Yes; }, [](int) { return std::vector<std::string>{}; }};

class Conn : public Site<::testing::TestWithParam<const ConnBackend*>> {
protected:
    void SetUp() override {
        std::string why;
        switch (GetParam()->prepare(why)) {
        case ConnBackend::Ready::Yes: break;
        case ConnBackend::Ready::Absent: GTEST_SKIP() << why;
        case ConnBackend::Ready::Broken: FAIL() << why;
        }
        Site::SetUp();
        if (HasFatalFailure()) return;
        for (const char* d : {"Daten/M1", "Daten/M2", "Daten/M3", "USR/Std"}) std::filesystem::create_directories(dir_ / d);
        oldWin_ = Vnt_UiSetWindow(&win);
        oldSel_ = Vnt_UiSetClientSelect(&select);
        main_ = win.CreateFake("main");
        win.SetMainWindow(main_);
        app(GetParam()->app);
        std::vector<std::string> list = {"[Settings]", std::string("DefaultDriver=") + GetParam()->driver, "Count=3"};
        const char* names[] = {"M\xFCller GmbH", "Schulze KG", "Kaputt"};
        for (int n = 1; n <= 3; ++n) {
            list.insert(list.end(), {"[Dsn" + std::to_string(n) + "]", std::string("*=") + names[n - 1],
                                     "DtaPth=" + dataDir(n)});
            for (const std::string& l : GetParam()->lines(n)) list.push_back(l);
        }
        list.push_back("Driver=NoSuchDriver");
        putLines("INI/dsn.ini", list);
    }
    void TearDown() override {
        if (!cwd_.empty()) vnt::host::setCurDir(cwd_);
        Site::TearDown();
        Vnt_UiSetWindow(oldWin_);
        Vnt_UiSetClientSelect(oldSel_);
    }
    /// The stack module beside the program, T:\ the current directory (set
    /// back at the end) and the module table of `lines` loaded.
    void useModules(const std::vector<std::string>& lines) {
        cwd_ = vnt::host::curDir();
        const std::string stack = std::string("libModStack") + vnt::test::kModuleExt;
        std::filesystem::copy_file(std::filesystem::path(VANTO_TEST_MODULE_DIR) / stack, dir_ / stack);
        ASSERT_TRUE(vnt::host::setCurDir("T:\\"));
        writeIniLibrary(dir_, "Modules.vtm", lines);
        ASSERT_TRUE(vnt::app::loadModuleTable());
    }
    static std::string progDir() {
        char buf[VNT_MAX_PATH] = {};
        Vnt_LfnProgDirName(buf, sizeof buf);
        return buf;
    }
    static std::string dataDir(int n) { return "T:\\Daten\\M" + std::to_string(n); }
    /// How often the main window heard that the connection changed.
    int changes() const {
        int n = 0;
        for (const auto& m : win.Messages(main_)) n += m.msg == 0x7F15 && m.wparam == 0 && m.lparam == 0;
        return n;
    }

    VntHeadlessWindowPort win;
    VntScriptedClientSelect select;
    VNT_HWND main_ = nullptr;

private:
    std::string cwd_;
    VntWindowPort* oldWin_ = nullptr;
    VntClientSelectPort* oldSel_ = nullptr;
};

}  // namespace vnt::test
