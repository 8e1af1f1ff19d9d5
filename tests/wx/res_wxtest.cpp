// Dialog resources by number: the naming rule, the library's embedded
// dialogs, an application's own XRC with a language version, and numbers
// with no resource.
#include "wx_support.h"

#include <filesystem>
#include <fstream>

#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/stattext.h>

#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/ui/msgbox.h"
#include "vanto/wx/res.h"

namespace {

using vnt::wxtest::WxTest;

// A German dialog 4711 with an English version, and a control named by number.
const char* kAppXrc = R"(<?xml version="1.0" encoding="UTF-8"?>
<resource xmlns="http://www.wxwidgets.org/wxxrc" version="2.5.3.0">
  <object class="wxDialog" name="dlg4711"><title>Übung</title>
    <object class="wxBoxSizer"><orient>wxVERTICAL</orient>
      <object class="sizeritem"><object class="wxStaticText" name="1001"><label>Größe</label></object></object>
      <object class="sizeritem"><object class="wxButton" name="wxID_OK"><label>&amp;OK</label></object></object>
    </object></object>
  <object class="wxDialog" name="dlg4711_ENU"><title>Exercise</title>
    <object class="wxBoxSizer"><orient>wxVERTICAL</orient>
      <object class="sizeritem"><object class="wxStaticText" name="1001"><label>Size</label></object></object>
    </object></object>
</resource>)";

class Resources : public WxTest {
protected:
    void SetUp() override {
        WxTest::SetUp();
        old_ = Vnt_UiSetPresenter(&box);
        ASSERT_TRUE(Vnt_WxAddResources(kAppXrc, "exercise"));
    }
    void TearDown() override {
        Vnt_UiSetPresenter(old_);
        WxTest::TearDown();
    }
    VntScriptedPresenter box;
    VntMsgPresenter* old_ = nullptr;
};

TEST_F(Resources, NamesFollowNumberAndLanguage) {
    EXPECT_EQ(Vnt_WxResName(30061), "dlg30061");
    EXPECT_EQ(Vnt_WxResName(30061, "ENU"), "dlg30061_ENU");
    EXPECT_EQ(Vnt_WxResName(4711, ""), "dlg4711");
}

TEST_F(Resources, LoadsByNumberInTheLibraryLanguage) {
    struct Row { const char* lang; const char* title; const char* label; bool ok; };
    for (const Row& r : {Row{"DEU", "Übung", "Größe", true}, Row{"ENU", "Exercise", "Size", false}}) {
        SCOPED_TRACE(r.lang);
        Vnt_ResSetLanguage(r.lang);
        wxDialog dlg;
        ASSERT_TRUE(Vnt_WxLoadDialog(&dlg, nullptr, 4711));
        EXPECT_EQ(dlg.GetTitle().utf8_string(), r.title);
        auto* text = dynamic_cast<wxStaticText*>(dlg.FindWindow(1001));  // named by number: ID 1001
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text->GetLabel().utf8_string(), r.label);
        EXPECT_EQ(dlg.FindWindow(wxID_OK) != nullptr, r.ok);
    }
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(Resources, LibraryDialogsAreBuiltIn) {
    EXPECT_TRUE(Vnt_WxResExists(30063));
    wxDialog confirm;
    ASSERT_TRUE(Vnt_WxLoadDialog(&confirm, nullptr, 30063));
    EXPECT_TRUE(confirm.FindWindow(wxID_YES) && confirm.FindWindow(wxID_NO));
}

TEST_F(Resources, MissingNumberIsReportedAndFails) {
    for (long n : {4712L, 0L, -1L, 30060L}) {
        SCOPED_TRACE(n);
        box.shown.clear();
        EXPECT_FALSE(Vnt_WxResExists(n));
        wxDialog dlg;
        EXPECT_FALSE(Vnt_WxLoadDialog(&dlg, nullptr, n));
        EXPECT_EQ(dlg.GetHandle(), nullptr) << "not created";
        ASSERT_EQ(box.shown.size(), 1u);
        EXPECT_TRUE(box.shown[0].internalError);
        EXPECT_NE(box.shown[0].text.find(std::to_string(n)), std::string::npos) << box.shown[0].text;
        EXPECT_NE(box.shown[0].details.find("Wx/VntRes"), std::string::npos) << box.shown[0].details;
    }
    EXPECT_FALSE(Vnt_WxLoadDialog(nullptr, nullptr, 4711));
}

TEST_F(Resources, BadSourcesAreRefused) {
    EXPECT_FALSE(Vnt_WxAddResources("<resource><object", "broken"));
    EXPECT_FALSE(Vnt_WxAddResources("<html/>", "not xrc"));
    EXPECT_FALSE(Vnt_WxAddResources(nullptr, "null"));
    EXPECT_FALSE(Vnt_WxAddResourceFile("Z:\\no\\such\\file.xrc"));
    EXPECT_FALSE(Vnt_WxAddResourceFile(nullptr));
    // Refused sources leave the good ones loaded.
    EXPECT_TRUE(Vnt_WxResExists(4711));
}

TEST_F(Resources, FileBesideTheProgram) {
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / "vanto_wx_res";
    std::filesystem::create_directories(dir);
    {
        std::ofstream(dir / "App.xrc") << R"(<?xml version="1.0" encoding="UTF-8"?>
<resource version="2.5.3.0"><object class="wxDialog" name="dlg815"><title>Datei</title></object></resource>)";
    }
    char lib[VNT_MAX_PATH];
    ASSERT_TRUE(Vnt_LfnFromHost(lib, (dir / "app.XRC").string().c_str()));  // any case, as on Windows
    ASSERT_TRUE(Vnt_WxAddResourceFile(lib));
    wxDialog dlg;
    ASSERT_TRUE(Vnt_WxLoadDialog(&dlg, nullptr, 815));
    EXPECT_EQ(dlg.GetTitle(), "Datei");
    std::filesystem::remove_all(dir);
}

}  // namespace
