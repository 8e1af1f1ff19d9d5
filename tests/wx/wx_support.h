// Shared by the window tests: the wx application they run in, and a fixture
// that starts each case from a fresh library and no open windows.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <wx/app.h>
#include <wx/bitmap.h>
#include <wx/dcclient.h>
#include <wx/dcmemory.h>
#include <wx/image.h>
#include <wx/stdpaths.h>
#include <wx/toplevel.h>
#include <wx/utils.h>

#include "../support.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/wx/app.h"

namespace vnt::wxtest {

/// Serves wx events for `ms` milliseconds (at least one pass).
inline void pump(int ms = 0) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    do {
        wxTheApp->ProcessPendingEvents();
        wxTheApp->Yield(true);
        wxMilliSleep(1);
    } while (std::chrono::steady_clock::now() < end);
}

/// Serves events until `done` holds or `ms` pass; `done` at the end.
inline bool pumpUntil(const std::function<bool()>& done, int ms = 3000) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(ms);
    while (!done() && std::chrono::steady_clock::now() < end) pump();
    return done();
}

/// Runs `f` once the next modal loop (or the current one) serves events.
inline void soon(std::function<void()> f) { wxTheApp->CallAfter(std::move(f)); }

/// Every case: the core back to a fresh process with the system message
/// library (German unless `english`) open, and no window left open.
class WxTest : public ::testing::Test {
protected:
    void SetUp() override { openLibrary(false); }
    void TearDown() override {
        for (wxWindow* w : wxTopLevelWindows) w->Destroy();
        pump();
        if (sys_) Vnt_MsgHTerm(&sys_);
        Vnt_MsgItfTerm();
        vnt::test::resetAll();
    }
    /// Starts the message interface anew on the system library of a language.
    void openLibrary(bool english) {
        if (sys_) Vnt_MsgHTerm(&sys_);
        Vnt_MsgItfTerm();
        vnt::test::resetAll();
        Vnt_ResSetLanguage(english ? "ENU" : "DEU");
        char lib[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(lib, english ? VANTO_SYSLIB_EN : VANTO_SYSLIB_DE) && Vnt_MsgItfInit(nullptr, 0, lib));
        ASSERT_NE(sys_ = Vnt_MsgHInit(), nullptr);
    }
    VNT_MSG sys_ = nullptr;
};

/// The folder of the window pictures: "shots" in the build tree.
inline std::string shotDir() {
    const std::filesystem::path exe(std::string(wxStandardPaths::Get().GetExecutablePath().utf8_str()));
    const std::filesystem::path dir = exe.parent_path().parent_path() / "shots";
    std::filesystem::create_directories(dir);
    return dir.string();
}

/// Saves `bmp` as shots/`name`.png; the file's path.
inline std::string savePicture(const wxBitmap& bmp, const std::string& name) {
    if (!wxImage::FindHandler(wxBITMAP_TYPE_PNG)) wxImage::AddHandler(new wxPNGHandler);
    const std::string file = shotDir() + "/" + name + ".png";
    EXPECT_TRUE(bmp.SaveFile(wxString::FromUTF8(file), wxBITMAP_TYPE_PNG)) << file;
    return file;
}

/// The window as the screen shows it, saved as shots/`name`.png (the path
/// printed for the reader of the log); the file's path.
inline std::string picture(wxWindow* w, const std::string& name) {
    w->Raise();
    w->Refresh();
    w->Update();
    pump(150);
    const wxSize size = w->GetSize();
    wxBitmap bmp(size);
    {
        wxWindowDC from(w);
        wxMemoryDC to(bmp);
        to.Blit(0, 0, size.x, size.y, &from, 0, 0);
    }
    const std::string file = savePicture(bmp, name);
    std::printf("picture: %s\n", file.c_str());
    return file;
}

/// Every visible control of `parent` and below shows its whole text and lies
/// inside its parent, and no two controls of one parent overlap.
inline void checkLayout(wxWindow* parent, const std::string& where) {
    std::vector<wxWindow*> kids;
    for (wxWindow* c : parent->GetChildren())
        if (c->IsShown() && !c->IsTopLevel()) kids.push_back(c);
    const wxRect area(wxPoint(0, 0), parent->GetClientSize());
    for (wxWindow* c : kids) {
        const std::string name = where + "/" + std::string(c->GetName().utf8_str()) + " \"" +
                                 std::string(c->GetLabel().utf8_str()) + "\"";
        const wxSize best = c->GetBestSize(), got = c->GetSize();
        EXPECT_TRUE(got.x >= best.x && got.y >= best.y)
            << name << " clipped: " << got.x << "x" << got.y << " < " << best.x << "x" << best.y;
        EXPECT_TRUE(area.Contains(c->GetRect())) << name << " outside its parent";
        for (wxWindow* o : kids)
            if (o != c && c->GetRect().Intersects(o->GetRect()))
                ADD_FAILURE() << name << " overlaps " << o->GetName().utf8_str();
        checkLayout(c, name);
    }
}

}  // namespace vnt::wxtest
