// The connection tests shared by the database back ends: an installation
// on drive T: with an application file, "dsn.ini" with three clients (two
// that connect, one whose driver does not exist) and a main window that
// records what it is told. Each back end says how its clients reach their
// databases.
#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "support.h"
#include "vanto/dsn.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/clientsel.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
#include "vtmtool/vtm_writer.h"

namespace vnt::test {

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

class Conn : public ::testing::TestWithParam<const ConnBackend*> {
protected:
    void SetUp() override {
        resetAll();
        std::string why;
        switch (GetParam()->prepare(why)) {
        case ConnBackend::Ready::Yes: break;
        case ConnBackend::Ready::Absent: GTEST_SKIP() << why;
        case ConnBackend::Ready::Broken: FAIL() << why;
        }
        // One directory per build and test: the children of a death test
        // use their parent's, which the parent removes at the end.
        std::string test = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        for (char& c : test) c = c == '/' ? '_' : c;
        dir_ = std::filesystem::temp_directory_path() /
               ("vanto_conn_" + std::to_string(std::hash<std::string>{}(VANTO_SYSLIB_EN)) + "_" + test);
        std::filesystem::remove_all(dir_);
        for (const char* d : {"INI", "Daten/M1", "Daten/M2", "Daten/M3", "USR/Std"})
            std::filesystem::create_directories(dir_ / d);
        ASSERT_TRUE(Vnt_LfnVolMap('T', dir_.c_str()));
        vnt::host::setProgramFile("T:\\Fibu");
        oldBox_ = Vnt_UiSetPresenter(&box);
        oldWin_ = Vnt_UiSetWindow(&win);
        oldSel_ = Vnt_UiSetClientSelect(&select);
        main_ = win.CreateFake("main");
        win.SetMainWindow(main_);
        VNT_PATH sys;
        ASSERT_TRUE(Vnt_LfnFromHost(sys, VANTO_SYSLIB_EN) && Vnt_MsgItfInit(nullptr, 0, sys));
        sys_ = Vnt_MsgHInit();  // held open, as an application holds it
        app(GetParam()->app);
        std::vector<std::string> list = {"[Settings]", std::string("DefaultDriver=") + GetParam()->driver,
                                         "Count=3"};
        const char* names[] = {"M\xFCller GmbH", "Schulze KG", "Kaputt"};
        for (int n = 1; n <= 3; ++n) {
            list.push_back("[Dsn" + std::to_string(n) + "]");
            list.push_back(std::string("*=") + names[n - 1]);
            list.push_back("DtaPth=" + dataDir(n));
            for (const std::string& l : GetParam()->lines(n)) list.push_back(l);
            if (n == 3) list.push_back("Driver=NoSuchDriver");
        }
        put("INI/dsn.ini", list);
    }
    void TearDown() override {
        if (sys_) Vnt_MsgHTerm(&sys_);
        resetAll();  // closes the connection
        Vnt_MsgItfTerm();
        Vnt_UiSetPresenter(oldBox_);
        Vnt_UiSetWindow(oldWin_);
        Vnt_UiSetClientSelect(oldSel_);
        vnt::host::setProgramFile("");
        if (!dir_.empty()) std::filesystem::remove_all(dir_);
    }
    /// The application file's settings section.
    void app(const std::vector<std::string>& settings) {
        vnt::test::writeAppSettings(dir_, settings);
    }
    void put(const std::string& name, const std::vector<std::string>& lines) {
        std::ofstream out(dir_ / name, std::ios::binary);
        for (const std::string& l : lines) out << l << "\r\n";
    }
    std::string get(const std::string& name) const {
        std::ifstream in(dir_ / name, std::ios::binary);
        return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "(missing)";
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
    std::string lastBox() const { return box.shown.empty() ? "(none)" : box.shown.back().text; }

    std::filesystem::path dir_;
    VntScriptedPresenter box;
    VntHeadlessWindowPort win;
    VntScriptedClientSelect select;
    VNT_HWND main_ = nullptr;

private:
    VNT_MSG sys_ = nullptr;
    VntMsgPresenter* oldBox_ = nullptr;
    VntWindowPort* oldWin_ = nullptr;
    VntClientSelectPort* oldSel_ = nullptr;
};

}  // namespace vnt::test
