// vanto/wx/window.h - wx windows as the library's window handles.
//
// The window system port of the toolkit (installed by Vnt_WxInit) knows a
// window by its handle: the address of the wxWindow. Messages sent or
// posted to a window (vanto/ui/window.h) arrive as a VntWxMessageEvent of
// type VNT_EVT_MESSAGE; a window answers a sent one with SetAnswer:
//
//   frame->Bind(VNT_EVT_MESSAGE, [](VntWxMessageEvent& e) {
//       if (e.Message() == 0x7F13) e.SetAnswer(refuse ? 1 : 0);
//       else e.Skip();
//   });
//
// A WM_CLOSE that no handler takes (or skips) closes the window (wx's
// Close(), which its own close handlers may veto); WM_COMMAND with command
// ID n is a wxEVT_MENU with ID n; WM_MDIACTIVATE raises the window in
// wparam.
#pragma once

#include <cstdint>

#include <wx/event.h>
#include <wx/window.h>

#include "vanto/base.h"

/// The handle of a wx window (null for null).
inline VNT_HWND Vnt_WxHandle(wxWindow* win) { return reinterpret_cast<VNT_HWND>(win); }

/// The live wx window of a handle: null when it names no window that
/// exists (destroyed, or about to be deleted).
VANTO_API wxWindow* Vnt_WxWindow(VNT_HWND handle);

/// A message of the window system port, delivered to a wx window.
class VANTO_API VntWxMessageEvent : public wxEvent {
public:
    VntWxMessageEvent(unsigned msg = 0, std::uintptr_t wparam = 0, std::intptr_t lparam = 0, bool posted = false);
    wxEvent* Clone() const override { return new VntWxMessageEvent(*this); }

    unsigned Message() const { return msg_; }
    std::uintptr_t WParam() const { return wparam_; }
    std::intptr_t LParam() const { return lparam_; }
    bool Posted() const { return posted_; }
    /// The answer of a sent message (0 unless set); marks it handled.
    void SetAnswer(long answer) { answer_ = answer; handled_ = true; }
    long Answer() const { return answer_; }
    bool Answered() const { return handled_; }

private:
    unsigned msg_;
    std::uintptr_t wparam_;
    std::intptr_t lparam_;
    bool posted_;
    long answer_ = 0;
    bool handled_ = false;
};

wxDECLARE_EXPORTED_EVENT(VANTO_API, VNT_EVT_MESSAGE, VntWxMessageEvent);
