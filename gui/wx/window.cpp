// wx windows as the library's window handles, and the window system port on
// wx.
#include "vanto/wx/window.h"

#include <wx/app.h>
#include <wx/toplevel.h>

wxDEFINE_EVENT(VNT_EVT_MESSAGE, VntWxMessageEvent);

VntWxMessageEvent::VntWxMessageEvent(unsigned msg, std::uintptr_t wparam, std::intptr_t lparam, bool posted)
    : wxEvent(0, VNT_EVT_MESSAGE), msg_(msg), wparam_(wparam), lparam_(lparam), posted_(posted) {}

namespace {

// True when `target` is `win` or lies below it; compares addresses only, so
// that a stale handle is never touched.
bool holds(const wxWindow* win, const void* target) {
    if (win == target) return true;
    for (const wxWindow* child : win->GetChildren())
        if (holds(child, target)) return true;
    return false;
}

}  // namespace

wxWindow* Vnt_WxWindow(VNT_HWND handle) {
    if (handle == nullptr) return nullptr;
    for (wxWindow* top : wxTopLevelWindows) {
        if (!holds(top, handle)) continue;
        // A window on its way out (its own or a parent's Destroy) counts as gone.
        wxWindow* w = reinterpret_cast<wxWindow*>(handle);
        for (wxWindow* p = w; p; p = p->GetParent())
            if (p->IsBeingDeleted() || (wxTheApp && wxTheApp->IsScheduledForDestruction(p))) return nullptr;
        return w;
    }
    return nullptr;
}
