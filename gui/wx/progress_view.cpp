// The progress view on wx. The work runs on the user-interface thread and
// calls in here; the windows are served when it pumps, at most every
// `pumpEvery`, so that a long copy keeps its pace and Cancel still answers.
#include "progress_view.h"

#include <algorithm>

#include <wx/app.h>
#include <wx/button.h>
#include <wx/dialog.h>
#include <wx/gauge.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include "icons.h"
#include "vanto/ui/msgbox.h"
#include "vanto/wx/res.h"
#include "vanto/wx/window.h"
#include "wxtext.h"

namespace vnt::wx {

namespace {

constexpr int kLine1 = 1012, kNumber = 1010, kText = 1011, kBar = 1000, kCancel = 2;

wxWindow* liveTop(VNT_HWND h) {
    wxWindow* w = Vnt_WxWindow(h);
    while (w && !w->IsTopLevel()) w = w->GetParent();
    return w;
}

}  // namespace

WxProgressView::~WxProgressView() { CloseStatus(); }

/*
 * The status window: four lines of 50 characters, the bar with its
 * percentage, the number and the text field, Cancel; everything but Cancel
 * hidden until the dialog object shows it.
 */
bool WxProgressView::OpenStatus(VNT_HWND owner, VntProgressPos pos, VntProgressEvents* events) {
    CloseStatus();
    auto* dlg = new wxDialog;
    if (!Vnt_WxLoadDialog(dlg, nullptr, 30062)) {
        delete dlg;
        return false;
    }
    status_ = dlg;
    events_ = events;
    percent_ = -1;
    static_cast<wxStaticBitmap*>(dlg->FindWindow("icon"))->SetBitmap(messageIcon(30061, 32));
    dlg->FindWindow(kCancel)->SetLabel(toWx(Vnt_UiProgressTexts().cancel));
    const int width = dlg->GetTextExtent(wxString('x', 50)).x;
    for (int id : {kLine1, kLine1 + 1, kLine1 + 2, kLine1 + 3, kNumber, kText}) {
        wxWindow* t = dlg->FindWindow(id);
        t->SetMinSize(wxSize(width, -1));
        static_cast<wxStaticText*>(t)->SetLabelText(wxString());
    }
    for (VntProgressItem i : {VntProgressItem::Bar, VntProgressItem::Number, VntProgressItem::Text, VntProgressItem::Line4})
        ShowItem(i, false);
    dlg->GetSizer()->SetSizeHints(dlg);
    if (pos.set) dlg->Move(pos.x, pos.y);
    else dlg->CentreOnScreen();

    dlg->Bind(wxEVT_BUTTON, [this](wxCommandEvent& e) {
        if (e.GetId() == kCancel && events_) events_->OnCancelPressed();
    });
    // The window manager's close is Cancel, with its confirmation.
    dlg->Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& e) {
        if (e.CanVeto()) e.Veto();
        if (events_) events_->OnCancelPressed();
    });
    dlg->Bind(wxEVT_ACTIVATE, [this](wxActivateEvent& e) {
        if (e.GetActive() && confirm_ && events_) events_->OnStatusActivated();
        e.Skip();
    });
    owner_ = liveTop(owner);
    if (owner_) owner_->Disable();
    return true;
}

void WxProgressView::CloseStatus() {
    CloseConfirm();
    if (!status_) return;
    status_->Destroy();
    status_ = nullptr;
    events_ = nullptr;
    if (owner_ && Vnt_WxWindow(Vnt_WxHandle(owner_))) owner_->Enable();
    owner_ = nullptr;
}

std::string WxProgressView::Title() const { return status_ ? fromWx(status_->GetTitle()) : std::string(); }

void WxProgressView::SetTitle(const std::string& title) {
    if (status_) status_->SetTitle(toWx(title));
}

// Texts change only when they differ: a label that is set redraws.
void WxProgressView::setText(int id, const std::string& text) {
    if (!status_) return;
    auto* t = static_cast<wxStaticText*>(status_->FindWindow(id));
    const wxString s = toWx(text);
    if (t->GetLabelText() != s) t->SetLabelText(s);
}

void WxProgressView::SetLine(int index, const std::string& text) {
    if (index >= 0 && index < 4) setText(kLine1 + index, text);
}

void WxProgressView::SetBar(int percent, const std::string& text) {
    if (!status_ || percent == percent_) return;
    percent_ = percent;
    static_cast<wxGauge*>(status_->FindWindow(kBar))->SetValue(std::clamp(percent, 0, 100));
    static_cast<wxStaticText*>(status_->FindWindow("percent"))->SetLabelText(toWx(text));
}

void WxProgressView::SetNumber(const std::string& text) { setText(kNumber, text); }

void WxProgressView::SetProgressText(const std::string& text) { setText(kText, text); }

void WxProgressView::ShowItem(VntProgressItem item, bool visible) {
    if (!status_) return;
    bool changed = false;
    auto show = [&](wxWindow* w) { changed = w->Show(visible) || changed; };
    switch (item) {
        case VntProgressItem::Bar: show(status_->FindWindow(kBar)), show(status_->FindWindow("percent")); break;
        case VntProgressItem::Number: show(status_->FindWindow(kNumber)); break;
        case VntProgressItem::Text: show(status_->FindWindow(kText)); break;
        case VntProgressItem::Line4: show(status_->FindWindow(kLine1 + 3)); break;
        case VntProgressItem::Cancel: show(status_->FindWindow(kCancel)); break;
    }
    // The resource's minimum size is that of every item shown: the size
    // hints follow what is shown now, else hidden items leave a gap.
    if (changed) status_->GetSizer()->SetSizeHints(status_);
}

void WxProgressView::EnableCancel(bool enabled) {
    if (status_) status_->FindWindow(kCancel)->Enable(enabled);
}

void WxProgressView::EnableStatus(bool enabled) {
    if (status_) status_->Enable(enabled);
}

void WxProgressView::Show(bool visible) {
    if (!status_) return;
    status_->Show(visible);
    if (visible) status_->Raise();
}

void WxProgressView::ToFront() {
    if (status_) status_->Raise();
}

void WxProgressView::Move(int x, int y) {
    if (status_) status_->Move(x, y);
}

bool WxProgressView::GetRect(tagRECT& rect) const {
    if (!status_) return false;
    const wxRect r = status_->GetScreenRect();
    rect.left = r.GetLeft();
    rect.top = r.GetTop();
    rect.right = r.GetRight() + 1;
    rect.bottom = r.GetBottom() + 1;
    return true;
}

void WxProgressView::Focus() {
    if (status_) status_->SetFocus();
}

void WxProgressView::SetTopmost(bool topmost) {
    if (!status_) return;
    const long style = status_->GetWindowStyleFlag();
    status_->SetWindowStyleFlag(topmost ? style | wxSTAY_ON_TOP : style & ~wxSTAY_ON_TOP);
}

void WxProgressView::PumpEvents() {
    const auto now = std::chrono::steady_clock::now();
    if (now - lastPump_ < pumpEvery || !wxTheApp) return;
    lastPump_ = now;
    wxTheApp->ProcessPendingEvents();
    wxTheApp->Yield(true);
}

bool WxProgressView::OpenConfirm(VntProgressPos pos, const std::string& title) {
    CloseConfirm();
    auto* dlg = new wxDialog;
    if (!Vnt_WxLoadDialog(dlg, status_, 30063)) {
        delete dlg;
        return false;
    }
    confirm_ = dlg;
    const VntProgressTexts t = Vnt_UiProgressTexts();
    dlg->SetTitle(toWx(title));
    static_cast<wxStaticText*>(dlg->FindWindow("question"))->SetLabelText(toWx(t.question));
    static_cast<wxStaticBitmap*>(dlg->FindWindow("icon"))->SetBitmap(messageIcon(30063, 32));
    dlg->FindWindow(wxID_YES)->SetLabel(toWx(t.yes));
    dlg->FindWindow(wxID_NO)->SetLabel(toWx(t.no));
    dlg->GetSizer()->Fit(dlg);
    if (pos.set) dlg->Move(pos.x, pos.y);
    else dlg->CentreOnParent();
    auto answer = [this](bool yes) {
        if (events_) events_->OnConfirmAnswer(yes);
    };
    dlg->Bind(wxEVT_BUTTON, [answer](wxCommandEvent& e) {
        if (e.GetId() == wxID_YES || e.GetId() == wxID_NO) answer(e.GetId() == wxID_YES);
        else e.Skip();
    });
    dlg->Bind(wxEVT_CLOSE_WINDOW, [answer](wxCloseEvent& e) {
        if (e.CanVeto()) e.Veto();
        answer(false);
    });
    dlg->SetEscapeId(wxID_NO);
    dlg->Show();
    dlg->Raise();
    return true;
}

void WxProgressView::CloseConfirm() {
    if (!confirm_) return;
    confirm_->Destroy();
    confirm_ = nullptr;
}

void WxProgressView::ConfirmToFront() {
    if (confirm_) confirm_->Raise();
}

VntProgressPos WxProgressView::ConfirmPos() const {
    if (!confirm_) return {};
    const wxPoint p = confirm_->GetPosition();
    return {p.x, p.y, true};
}

}  // namespace vnt::wx
