// The dialog base classes: position record, icon, help, the active library
// dialog, and the application's registration for VntAppDlg.
#include "vanto/wx/dlg.h"

#include <string>

#include "vanto/module.h"
#include "vanto/msg.h"
#include "vanto/ui/help.h"
#include "vanto/wx/res.h"
#include "vanto/wx/window.h"
#include "icons.h"
#include "wx_state.h"

VntDlg::VntDlg(int objectSize, int procTableSize, long resourceNumber, wxWindow* parent, long icon, long helpNumber,
               VNTDLG_DLGINFO* info, long flag, bool checkSizes)
    : resource_(resourceNumber), help_(helpNumber), flag_(flag) {
    // Diagnostics only: a caller built against another layout goes on.
    if (checkSizes && objectSize != static_cast<int>(sizeof(VntDlg)))
        Vnt_MsgBox("!'VntDlg' size is %d - should be %d.\n", objectSize, static_cast<int>(sizeof(VntDlg)));
    if (checkSizes && procTableSize != kProcTableSize)
        Vnt_MsgBox("!'VntDlg' proc table size is %d - should be %d.\n", procTableSize, kProcTableSize);
    own_.initialised = 0;
    info_ = info ? info : &own_;
    if (!info_->initialised) {
        info_->initialised = 1;
        info_->x = info_->y = VNTDLG_NOPOS;
    }
    created_ = Vnt_WxLoadDialog(this, parent, resourceNumber);
    if (!created_) return;
    if (icon != 0) {
        wxIcon i = vnt::wx::iconFor(icon);
        if (i.IsOk()) SetIcon(i);
    }
    // Placed before it is shown, so that it opens there.
    if (info_->x != VNTDLG_NOPOS) Move(info_->x, info_->y, wxSIZE_ALLOW_MINUS_ONE);
    Bind(wxEVT_INIT_DIALOG, &VntDlg::onInit, this);
    Bind(wxEVT_MOVE, &VntDlg::onMove, this);
    Bind(wxEVT_SIZE, &VntDlg::onSize, this);
    Bind(wxEVT_ACTIVATE, &VntDlg::onActivate, this);
    Bind(wxEVT_CHAR_HOOK, &VntDlg::onCharHook, this);
    Bind(wxEVT_HELP, &VntDlg::onHelp, this);
    Bind(wxEVT_BUTTON, &VntDlg::onButton, this);
    Bind(wxEVT_DESTROY, &VntDlg::onDestroy, this);
}

VntDlg::~VntDlg() {
    if (vnt::wx::state().activeDialog == this) vnt::wx::state().activeDialog = nullptr;
}

VntDlg* VntDlg::GetActiveDialog() { return vnt::wx::state().activeDialog; }

int VntDlg::ShowModal() {
    if (!created_) return wxID_CANCEL;
    return wxDialog::ShowModal();
}

bool VntDlg::Show(bool show) {
    if (!created_) return false;
    const bool r = wxDialog::Show(show);
    vnt::wx::WxState& s = vnt::wx::state();
    if (show) s.activeDialog = this;  // also where no window manager activates it
    else if (s.activeDialog == this) s.activeDialog = nullptr;
    return r;
}

bool VntDlg::OnInitDialog() { return TransferDataToWindow(); }

bool VntDlg::OnHelpRequest() {
    VntHelpRequest r;
    if (!Vnt_HelpFileName(r.file)) return false;
    if (help_ != 0) {
        r.command = VntHelpCommand::Context;
        r.context = help_;
    } else {
        r.command = VntHelpCommand::Contents;
    }
    return Vnt_UiHelp().Open(r);
}

void VntDlg::onInit(wxInitDialogEvent&) {
    if (!initialising_) return;  // shown again: nothing to set up
    OnInitDialog();
    initialising_ = false;
}

void VntDlg::remember() {
    if (initialising_ || IsIconized() || IsMaximized()) return;
    const wxPoint p = GetPosition();
    info_->x = p.x;
    info_->y = p.y;
}

void VntDlg::onMove(wxMoveEvent& e) {
    remember();
    e.Skip();
}

void VntDlg::onSize(wxSizeEvent& e) {
    remember();
    e.Skip();
}

void VntDlg::onActivate(wxActivateEvent& e) {
    vnt::wx::WxState& s = vnt::wx::state();
    if (e.GetActive()) s.activeDialog = this;
    else if (s.activeDialog == this) s.activeDialog = nullptr;
    e.Skip();
}

// F1 asks the dialog itself for help, whether or not it has a help number
// (without one the index opens).
void VntDlg::onCharHook(wxKeyEvent& e) {
    if (e.GetKeyCode() == WXK_F1 && e.GetModifiers() == wxMOD_NONE) {
        wxHelpEvent help(wxEVT_HELP, GetId(), wxDefaultPosition, wxHelpEvent::Origin_Keyboard);
        help.SetEventObject(this);
        ProcessWindowEvent(help);
        return;
    }
    e.Skip();
}

void VntDlg::onHelp(wxHelpEvent&) { OnHelpRequest(); }

// Control 9 is the Help button of the library's resources; designers give
// it the stock ID.
void VntDlg::onButton(wxCommandEvent& e) {
    if (e.GetId() == 9 || e.GetId() == wxID_HELP) {
        OnHelpRequest();
        return;
    }
    e.Skip();
}

void VntDlg::onDestroy(wxWindowDestroyEvent& e) {
    if (e.GetEventObject() == this && vnt::wx::state().activeDialog == this) vnt::wx::state().activeDialog = nullptr;
    e.Skip();
}

VntAppDlg::VntAppDlg(int objectSize, int procTableSize, long appValue, long resourceNumber, wxWindow* parent,
                     long icon, long helpNumber, VNTDLG_DLGINFO* info, long flag)
    : VntDlg(objectSize, procTableSize, resourceNumber, parent, icon, helpNumber, info, flag, false),
      appValue_(appValue) {
    if (objectSize != static_cast<int>(sizeof(VntAppDlg)))
        Vnt_MsgBox("!'VntAppDlg' size is %d - should be %d.\n", objectSize, static_cast<int>(sizeof(VntAppDlg)));
    if (procTableSize != kAppProcTableSize)
        Vnt_MsgBox("!'VntAppDlg' proc table size is %d - should be %d.\n", procTableSize, kAppProcTableSize);
}

VntAppDlg::~VntAppDlg() {
    // A dialog ended without Destroy (a modal one on the stack) unregisters here.
    if (registered_) Vnt_AppTerm(Vnt_WxHandle(this));
}

bool VntAppDlg::OnInitDialog() {
    registered_ = Vnt_AppInit(Vnt_WxHandle(this), appValue_);
    return VntDlg::OnInitDialog();
}

bool VntAppDlg::Destroy() {
    if (registered_) {
        registered_ = false;
        Vnt_AppTerm(Vnt_WxHandle(this));
    }
    return VntDlg::Destroy();
}
