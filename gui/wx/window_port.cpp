// The window system port on wx: handles are wx windows, messages are
// VNT_EVT_MESSAGE events (posted ones through the wx event queue), the
// modal loop is the dialog's or a loop of its own.
#include <map>
#include <memory>

#include <wx/app.h>
#include <wx/clipbrd.h>
#include <wx/dialog.h>
#include <wx/evtloop.h>
#include <wx/frame.h>
#include <wx/mdi.h>
#include <wx/splash.h>
#include <wx/toplevel.h>
#include <wx/utils.h>

#include "vanto/ui/window.h"
#include "vanto/wx/window.h"
#include "window_port.h"
#include "wxtext.h"

namespace vnt::wx {

namespace {

// The top-level window a window lies in.
wxWindow* topOf(wxWindow* w) {
    while (w && !w->IsTopLevel() && w->GetParent()) w = w->GetParent();
    return w;
}

/*
 * What a message does when the window's handlers leave it: a close closes
 * (the window's own close handlers may refuse), a command is the menu
 * command with its ID, an MDI activation raises the window it names.
 */
long defaultAction(wxWindow* w, unsigned msg, std::uintptr_t wparam) {
    switch (msg) {
        case VNT_WM_CLOSE:
            w->Close();
            return 0;
        case VNT_WM_COMMAND: {
            wxCommandEvent cmd(wxEVT_MENU, static_cast<int>(wparam & 0xFFFF));
            cmd.SetEventObject(w);
            w->GetEventHandler()->ProcessEvent(cmd);
            return 0;
        }
        case VNT_WM_MDIACTIVATE: {
            wxWindow* target = Vnt_WxWindow(reinterpret_cast<VNT_HWND>(wparam));
            if (!target) return 0;
            if (auto* child = dynamic_cast<wxMDIChildFrame*>(target)) child->Activate();
            else if (wxWindow* top = topOf(target)) top->Raise();
            return 0;
        }
        default:
            return 0;
    }
}

}  // namespace

long deliver(VNT_HWND handle, unsigned msg, std::uintptr_t wparam, std::intptr_t lparam, bool posted) {
    wxWindow* w = Vnt_WxWindow(handle);
    if (!w) return 0;
    VntWxMessageEvent e(msg, wparam, lparam, posted);
    e.SetEventObject(w);
    e.SetId(w->GetId());
    w->GetEventHandler()->ProcessEvent(e);
    if (e.Answered()) return e.Answer();
    return Vnt_WxWindow(handle) ? defaultAction(w, msg, wparam) : 0;
}

long WxWindowPort::Send(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) {
    return deliver(win, msg, wparam, lparam, false);
}

bool WxWindowPort::Post(VNT_HWND win, unsigned msg, uintptr_t wparam, intptr_t lparam) {
    if (!Vnt_WxWindow(win) || !wxTheApp) return false;
    // Looked up again when it arrives: a window gone meanwhile gets nothing.
    wxTheApp->CallAfter([win, msg, wparam, lparam] { deliver(win, msg, wparam, lparam, true); });
    return true;
}

bool WxWindowPort::IsWindow(VNT_HWND win) { return Vnt_WxWindow(win) != nullptr; }

void WxWindowPort::Destroy(VNT_HWND win) {
    if (wxWindow* w = Vnt_WxWindow(win)) w->Destroy();
}

void WxWindowPort::Activate(VNT_HWND win) {
    wxWindow* w = Vnt_WxWindow(win);
    if (!w) return;
    if (auto* child = dynamic_cast<wxMDIChildFrame*>(w)) child->Activate();
    if (wxWindow* top = topOf(w)) {
        top->Raise();
        active_ = Vnt_WxHandle(top);
    }
}

VNT_HWND WxWindowPort::Focus() {
    wxWindow* f = wxWindow::FindFocus();
    return Vnt_WxWindow(Vnt_WxHandle(f)) ? Vnt_WxHandle(f) : nullptr;
}

void WxWindowPort::SetFocus(VNT_HWND win) {
    if (wxWindow* w = Vnt_WxWindow(win)) w->SetFocus();
}

// The window system's answer where it has one; without a window manager
// (a virtual display) nothing is ever active, and the window last
// activated through the port, or the focus's window, stands for it.
VNT_HWND WxWindowPort::ActiveWindow() {
    if (wxWindow* w = wxGetActiveWindow(); w && Vnt_WxWindow(Vnt_WxHandle(w))) return Vnt_WxHandle(w);
    if (Vnt_WxWindow(active_)) return active_;
    if (VNT_HWND f = Focus()) return Vnt_WxHandle(topOf(Vnt_WxWindow(f)));
    return nullptr;
}

VNT_HWND WxWindowPort::MainWindow() {
    if (!wxTheApp) return nullptr;
    VNT_HWND top = Vnt_WxHandle(wxTheApp->GetTopWindow());
    return Vnt_WxWindow(top) ? top : nullptr;
}

void WxWindowPort::PumpEvents() {
    if (!wxTheApp) return;
    wxTheApp->ProcessPendingEvents();
    wxTheApp->Yield(true);
}

// The library's busy mark does not nest: one "off" ends any number of "on".
void WxWindowPort::BusyCursor(bool on) {
    if (on == busy_) return;
    busy_ = on;
    if (on) wxBeginBusyCursor();
    else wxEndBusyCursor();
    // The cursor changes on the screen now, not when the caller's work ends;
    // user input waits.
    if (wxEventLoopBase* loop = wxEventLoopBase::GetActive()) loop->YieldFor(wxEVT_CATEGORY_UI);
}

void WxWindowPort::Beep() { wxBell(); }

bool WxWindowPort::SetClipboardText(const std::string& text) {
    wxClipboardLocker lock;
    if (!lock) return false;
    return wxTheClipboard->SetData(new wxTextDataObject(toWx(text)));
}

std::string WxWindowPort::ClipboardText() {
    wxClipboardLocker lock;
    if (!lock || !wxTheClipboard->IsSupported(wxDF_UNICODETEXT)) return {};
    wxTextDataObject data;
    if (!wxTheClipboard->GetData(data)) return {};
    return fromWx(data.GetText());
}

/*
 * A dialog runs its own modal loop (ShowModal); any other window gets a loop
 * of its own with the other windows disabled, ended by EndModalLoop.
 */
int WxWindowPort::RunModalLoop(VNT_HWND win, unsigned long /*flags*/) {
    wxWindow* w = Vnt_WxWindow(win);
    if (!w) return -1;
    if (auto* dlg = dynamic_cast<wxDialog*>(w)) {
        if (dlg->IsModal()) return -1;
        return dlg->ShowModal();
    }
    if (loops_.count(win)) return -1;
    wxGUIEventLoop loop;
    loops_[win] = &loop;
    // A window closed meanwhile ends its loop with -1.
    auto gone = [this, win, w](wxWindowDestroyEvent& e) {
        auto it = loops_.find(win);
        if (e.GetEventObject() == w && it != loops_.end()) it->second->ScheduleExit(-1);
        e.Skip();
    };
    w->Bind(wxEVT_DESTROY, gone);
    int r;
    {
        wxWindowDisabler others(w);
        if (!w->IsShown()) w->Show();
        r = loop.Run();
    }
    loops_.erase(win);
    if (wxWindow* still = Vnt_WxWindow(win)) still->Unbind(wxEVT_DESTROY, gone);
    return r;
}

void WxWindowPort::EndModalLoop(VNT_HWND win, int result) {
    wxWindow* w = Vnt_WxWindow(win);
    if (!w) return;
    if (auto* dlg = dynamic_cast<wxDialog*>(w)) {
        if (dlg->IsModal()) dlg->EndModal(result);
        return;
    }
    auto it = loops_.find(win);
    if (it != loops_.end()) it->second->ScheduleExit(result);
}

int WxWindowPort::KeyState() {
    return (wxGetKeyState(WXK_SHIFT) ? 1 : 0) | (wxGetKeyState(WXK_CONTROL) ? 2 : 0) | (wxGetKeyState(WXK_ALT) ? 4 : 0);
}

void WxWindowPort::HideSplash() {
    for (wxWindow* w : wxTopLevelWindows)
        if (auto* splash = dynamic_cast<wxSplashScreen*>(w)) splash->Hide();
}

}  // namespace vnt::wx
