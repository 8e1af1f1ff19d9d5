// The window system port on wx: the contract every port keeps, with real
// frames; then what only wx does: the default actions of the framework's
// messages, the busy cursor, waits that serve wx events, the loader's
// window table with real frames, and the document template on wx's.
#include "wx_support.h"

#include <chrono>
#include <wx/docview.h>
#include <wx/frame.h>
#include <wx/utils.h>

#include "../window_port_cases.h"
#include "vanto/app.h"
#include "vanto/wx/doc.h"
#include "vanto/wx/window.h"

using vnt::test::WindowPortContract;

namespace {

using vnt::wxtest::pump;
using vnt::wxtest::pumpUntil;

class WxHarness : public vnt::test::WindowHarness {
public:
    ~WxHarness() override {
        for (wxWindow* w : wxTopLevelWindows) w->Destroy();
        wxTheApp->SetTopWindow(nullptr);
        pump();
    }
    VntWindowPort& port() override { return Vnt_UiWindow(); }
    // A shown frame; a close its handler answers with 0 goes on to wx's
    // own close, which destroys the frame.
    VNT_HWND create(const std::string& name, Handler handler) override {
        auto* f = new wxFrame(nullptr, wxID_ANY, name, wxPoint(40, 40), wxSize(200, 100));
        f->Show();
        VNT_HWND h = Vnt_WxHandle(f);
        if (handler)
            f->Bind(VNT_EVT_MESSAGE, [h, handler](VntWxMessageEvent& e) {
                const long a = handler(h, e.Message(), e.WParam(), e.LParam());
                if (e.Message() == VNT_WM_CLOSE && a == 0) e.Skip();
                else e.SetAnswer(a);
            });
        pump();
        return h;
    }
    void setMain(VNT_HWND win) override { wxTheApp->SetTopWindow(Vnt_WxWindow(win)); }
};

std::unique_ptr<vnt::test::WindowHarness> wxPort() { return std::make_unique<WxHarness>(); }

INSTANTIATE_TEST_SUITE_P(Wx, WindowPortContract, ::testing::Values(&wxPort));

class WxWindows : public vnt::wxtest::WxTest {
protected:
    wxFrame* frame(const char* title) {
        auto* f = new wxFrame(nullptr, wxID_ANY, title, wxPoint(50, 50), wxSize(240, 120));
        f->Show();
        pump();
        return f;
    }
};

TEST_F(WxWindows, FrameworkMessagesHaveTheirDefaultActions) {
    VntWindowPort& port = Vnt_UiWindow();
    wxFrame* main = frame("main");
    wxFrame* other = frame("other");
    int menu = 0;
    main->Bind(wxEVT_MENU, [&](wxCommandEvent& e) { menu = e.GetId(); });
    EXPECT_EQ(port.Send(Vnt_WxHandle(main), VNT_WM_COMMAND, 10040, 0), 0);
    EXPECT_EQ(menu, 10040) << "a command is the menu command with its ID";

    // A close the window's own close handler vetoes leaves it open.
    bool veto = true;
    other->Bind(wxEVT_CLOSE_WINDOW, [&](wxCloseEvent& e) { veto && e.CanVeto() ? e.Veto() : e.Skip(); });
    port.Send(Vnt_WxHandle(other), VNT_WM_CLOSE, 0, 0);
    EXPECT_TRUE(port.IsWindow(Vnt_WxHandle(other)));
    veto = false;
    port.Send(Vnt_WxHandle(other), VNT_WM_CLOSE, 0, 0);
    EXPECT_FALSE(port.IsWindow(Vnt_WxHandle(other))) << "gone at once, although wx deletes it later";

    // Children are windows too, and go with their frame.
    auto* child = new wxWindow(main, 77);
    EXPECT_TRUE(port.IsWindow(Vnt_WxHandle(child)));
    EXPECT_EQ(Vnt_WxWindow(Vnt_WxHandle(child)), child);
    port.Destroy(Vnt_WxHandle(main));
    EXPECT_FALSE(port.IsWindow(Vnt_WxHandle(child)));
}

TEST_F(WxWindows, BusyCursorDoesNotNest) {
    EXPECT_FALSE(wxIsBusy());
    Vnt_Busy();
    Vnt_Busy();
    EXPECT_TRUE(wxIsBusy());
    Vnt_Unbusy();
    EXPECT_FALSE(wxIsBusy()) << "one Vnt_Unbusy ends any number of Vnt_Busy";
    Vnt_Unbusy();
    EXPECT_FALSE(wxIsBusy());
}

TEST_F(WxWindows, DelayServesWxEvents) {
    wxFrame* f = frame("waiting");
    int served = 0;
    wxTheApp->CallAfter([&] { ++served; });
    f->Bind(VNT_EVT_MESSAGE, [&](VntWxMessageEvent& e) { served += 10 * int(e.Posted()); });
    ASSERT_TRUE(Vnt_UiWindow().Post(Vnt_WxHandle(f), 0x7F15, 0, 0));
    const auto start = std::chrono::steady_clock::now();
    Vnt_Delay(120, nullptr);
    // The delay counts whole milliseconds of its own clock; allow one for the rounding.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(119));
    EXPECT_EQ(served, 11) << "a queued call and a posted message ran during the wait";
    // The wait without serving leaves them queued.
    wxTheApp->CallAfter([&] { ++served; });
    Vnt_DelayWait(30);
    EXPECT_EQ(served, 11);
    pump();
    EXPECT_EQ(served, 12);
}

// A document of the module's template shows in a frame of its own.
class Doc : public wxDocument {
    wxDECLARE_DYNAMIC_CLASS(Doc);
};
wxIMPLEMENT_DYNAMIC_CLASS(Doc, wxDocument);

class View : public wxView {
public:
    bool OnCreate(wxDocument* doc, long) override {
        SetFrame(new wxDocChildFrame(doc, this, nullptr, wxID_ANY, "Kunden", wxPoint(60, 60), wxSize(200, 100)));
        return true;
    }
    void OnDraw(wxDC*) override {}
    bool OnClose(bool deleteWindow) override {
        if (!wxView::OnClose(deleteWindow)) return false;
        if (deleteWindow && GetFrame()) GetFrame()->Destroy();
        SetFrame(nullptr);
        return true;
    }
    wxDECLARE_DYNAMIC_CLASS(View);
};
wxIMPLEMENT_DYNAMIC_CLASS(View, wxView);

TEST_F(WxWindows, DocumentTemplateOnWx) {
    wxDocManager manager;
    auto* t = new VntWxDocTemplate(&manager, "Kunden", "*.kd", "", "kd", "Kunden-Dokument", "Kunden-Ansicht",
                                   wxCLASSINFO(Doc), wxCLASSINFO(View));
    VntDocTemplate* loaderView = t;
    EXPECT_FALSE(loaderView->HasOpenDocuments());
    EXPECT_EQ(loaderView->OpenNewDocument(), loaderView);
    ASSERT_EQ(manager.GetDocumentsVector().size(), 1u);
    wxDocument* doc = manager.GetDocumentsVector()[0];
    wxWindow* docFrame = doc->GetFirstView()->GetFrame();
    ASSERT_NE(docFrame, nullptr);
    EXPECT_TRUE(docFrame->IsShown() && Vnt_UiWindow().IsWindow(Vnt_WxHandle(docFrame)));
    EXPECT_TRUE(loaderView->HasOpenDocuments());

    ASSERT_TRUE(manager.CloseDocument(doc, true));
    pump();
    EXPECT_FALSE(loaderView->HasOpenDocuments());
    loaderView->RemoveFromApp();
    EXPECT_TRUE(manager.GetTemplatesVector().empty());
    loaderView->Destroy();
}

}  // namespace
