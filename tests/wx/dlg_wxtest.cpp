// The dialog base classes: the position record, help by F1 and by control
// 9, the active library dialog, a resource that does not exist, and the
// application's registration by VntAppDlg.
#include "wx_support.h"

#include <filesystem>

#include <wx/button.h>
#include <wx/frame.h>
#include <wx/uiaction.h>

#include "app/modtable.h"
#include "vanto/lfn.h"
#include "vanto/module.h"
#include "vanto/ui/help.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"
#include "vanto/wx/dlg.h"
#include "vanto/wx/res.h"
#include "vanto/wx/window.h"

namespace {

using vnt::wxtest::pump;
using vnt::wxtest::pumpUntil;
using vnt::wxtest::soon;

const char* kDlgXrc = R"(<?xml version="1.0" encoding="UTF-8"?>
<resource version="2.5.3.0">
  <object class="wxDialog" name="dlg5001"><title>Kunde</title><size>300,120</size>
    <object class="wxBoxSizer"><orient>wxHORIZONTAL</orient>
      <object class="sizeritem"><object class="wxButton" name="wxID_OK"><label>&amp;OK</label></object></object>
      <object class="sizeritem"><object class="wxButton" name="9"><label>&amp;Hilfe</label></object></object>
    </object></object>
</resource>)";

class Dialogs : public vnt::wxtest::WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        oldHelp_ = Vnt_UiSetHelp(&help);
        oldBox_ = Vnt_UiSetPresenter(&box);
        ASSERT_TRUE(Vnt_WxAddResources(kDlgXrc, "dialogs"));
    }
    void TearDown() override {
        Vnt_UiSetHelp(oldHelp_);
        Vnt_UiSetPresenter(oldBox_);
        WxTest::TearDown();
    }
    VntHelpRecorder help;
    VntScriptedPresenter box;
    VntHelpPort* oldHelp_ = nullptr;
    VntMsgPresenter* oldBox_ = nullptr;
};

TEST_F(Dialogs, OpensAgainWhereItWasMoved) {
    VNTDLG_DLGINFO where{};
    wxPoint first;
    {
        VntDlg dlg(5001, nullptr, 30061, 0, &where);
        ASSERT_TRUE(dlg.IsOk());
        EXPECT_TRUE(where.initialised && where.x == VNTDLG_NOPOS) << "a fresh record has no position";
        EXPECT_TRUE(dlg.IsInitialising());
        dlg.Show();
        pump(50);
        EXPECT_FALSE(dlg.IsInitialising());
        EXPECT_TRUE(dlg.GetIcon().IsOk());
        first = dlg.GetPosition();
        dlg.Move(137, 211);
        EXPECT_TRUE(pumpUntil([&] { return where.x == 137 && where.y == 211; }))
            << "record " << where.x << "," << where.y;
    }
    VntDlg again(5001, nullptr, 0, 0, &where);
    again.Show();
    pump(50);
    EXPECT_EQ(again.GetPosition(), wxPoint(137, 211)) << "the platform put it first at " << first.x << "," << first.y;
    // A dialog with its own record starts without a position each time.
    VntDlg own(5001, nullptr);
    EXPECT_EQ(own.Info().x, VNTDLG_NOPOS);
}

TEST_F(Dialogs, HelpByF1AndByControl9) {
    struct Row { const char* name; long helpNumber; bool f1; VntHelpCommand command; long context; };
    for (const Row& r : {Row{"F1 with a help number", 120, true, VntHelpCommand::Context, 120},
                         Row{"F1 without one: the index", 0, true, VntHelpCommand::Contents, 0},
                         Row{"button 9", 77, false, VntHelpCommand::Context, 77}}) {
        SCOPED_TRACE(r.name);
        help.requests.clear();
        VntDlg dlg(5001, nullptr, 0, r.helpNumber);
        dlg.Show();
        pump(50);
        if (r.f1) {
            dlg.FindWindow(wxID_OK)->SetFocus();
            pump(20);
            wxUIActionSimulator().Char(WXK_F1);
        } else {
            wxCommandEvent click(wxEVT_BUTTON, 9);
            click.SetEventObject(dlg.FindWindow(9));
            dlg.FindWindow(9)->GetEventHandler()->ProcessEvent(click);
        }
        ASSERT_TRUE(pumpUntil([&] { return !help.requests.empty(); })) << "no help request";
        EXPECT_EQ(help.requests[0].command, r.command);
        EXPECT_EQ(help.requests[0].context, r.context);
        EXPECT_NE(help.requests[0].file.find(".html"), std::string::npos) << help.requests[0].file;
    }
}

TEST_F(Dialogs, ActiveDialogFollowsTheShownOne) {
    EXPECT_EQ(VntDlg::GetActiveDialog(), nullptr);
    {
        VntDlg dlg(5001, nullptr);
        soon([&] {
            EXPECT_EQ(VntDlg::GetActiveDialog(), &dlg);
            dlg.EndModal(wxID_OK);
        });
        EXPECT_EQ(dlg.ShowModal(), wxID_OK);
        EXPECT_EQ(VntDlg::GetActiveDialog(), nullptr);
    }
    EXPECT_EQ(VntDlg::GetActiveDialog(), nullptr);
}

TEST_F(Dialogs, MissingResourceGivesAnUncreatedDialog) {
    VntDlg dlg(5999, nullptr, 0, 0);
    EXPECT_FALSE(dlg.IsOk());
    EXPECT_EQ(dlg.ShowModal(), wxID_CANCEL);
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_NE(box.shown[0].text.find("5999"), std::string::npos) << box.shown[0].text;
}

TEST_F(Dialogs, SizeCheckSpeaksOnlyForAnotherLayout) {
    EXPECT_TRUE(box.plainShown.empty()) << "this build's sizes pass silently";
    struct Probe : VntDlg {  // a caller built against another layout
        Probe() : VntDlg(4, 2, 5001, nullptr, 0, 0, nullptr, 0) {}
    } probe;
    ASSERT_EQ(box.plainShown.size(), 2u);
    EXPECT_EQ(box.plainShown[0].text, "'VntDlg' size is 4 - should be " + std::to_string(sizeof(VntDlg)) + ".\n");
    EXPECT_EQ(box.plainShown[1].text, "'VntDlg' proc table size is 2 - should be " +
                                          std::to_string(VntDlg::kProcTableSize) + ".\n");
}

// An application dialog of module 12 (single instance) is the module's
// window: registered when it is initialised, so that loading the module
// again activates it through the real main window, and gone from the
// window table when it is destroyed.
TEST_F(Dialogs, AppDialogIsTheModulesWindow) {
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / "vanto_wx_appdlg";
    fs::create_directories(dir);
    char prog[VNT_MAX_PATH];
    ASSERT_TRUE(Vnt_LfnFromHost(prog, (dir / "Fibu").string().c_str()));
    vnt::host::setProgramFile(prog);
    vnt::test::writeIniLibrary(dir, "Modules.vtm", {"12, Kunden.dll, Kunden, ModMain, 1"});
    ASSERT_TRUE(vnt::app::loadModuleTable());

    auto* main = new wxFrame(nullptr, wxID_ANY, "Fibu");
    wxTheApp->SetTopWindow(main);
    std::vector<std::pair<unsigned, uintptr_t>> toMain;
    main->Bind(VNT_EVT_MESSAGE, [&](VntWxMessageEvent& e) { toMain.emplace_back(e.Message(), e.WParam()); });

    auto* dlg = new VntAppDlg(12, 5001, main);
    ASSERT_TRUE(dlg->IsOk());
    EXPECT_EQ(Vnt_AppModHwnd(0), nullptr) << "registered when initialised, not before";
    dlg->Show();
    pump(20);
    const VNT_HWND h = Vnt_WxHandle(dlg);
    EXPECT_EQ(Vnt_AppModHwnd(0), h);
    EXPECT_EQ(Vnt_AppModInfoEx(12)->hWndMain, h);
    EXPECT_EQ(Vnt_AppModInfoEx(12)->nOpenWindows, 1);

    EXPECT_TRUE(Vnt_AppModLoad(12, 0, 0, false)) << "the open window is activated instead";
    ASSERT_EQ(toMain.size(), 1u);
    EXPECT_EQ(toMain[0], std::make_pair(VNT_WM_MDIACTIVATE, reinterpret_cast<uintptr_t>(h)));

    dlg->Destroy();
    EXPECT_EQ(Vnt_AppModHwnd(0), nullptr);
    EXPECT_EQ(Vnt_AppModInfoEx(12)->nOpenWindows, 0);
    wxTheApp->SetTopWindow(nullptr);
    vnt::host::setProgramFile("");
    fs::remove_all(dir);
}

}  // namespace
