// The message box on wx: dialog 30061 drawn from the box model (icon, lines,
// buttons of the type with their access keys, the default button, the
// check box in its place, Help last), its keyboard and context menu, its
// place per nesting level; and the platform's standard box.
#include "msgbox.h"

#include <wx/app.h>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/msgdlg.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/statline.h>
#include <wx/stattext.h>

#include <algorithm>

#include "icons.h"
#include "vanto/ui/window.h"
#include "vanto/wx/res.h"
#include "vanto/wx/window.h"
#include "wx_state.h"
#include "wxtext.h"

namespace vnt::wx {

namespace {

constexpr int kFirstLine = 101, kLines = 15;
constexpr int kCheckLeft = 199, kCheckRight = 200;
constexpr int kAllButtons[] = {1, 6, 4, 7, 5, 2, 3, 100, 9};

bool english() { return Vnt_ResLanguage()[0] == 'E'; }

// The owner of a new box: the active window's top-level window.
wxWindow* owner() {
    wxWindow* w = Vnt_WxWindow(Vnt_UiWindow().ActiveWindow());
    while (w && !w->IsTopLevel()) w = w->GetParent();
    return w && w->IsShown() ? w : nullptr;
}

// The access key of a caption ("&Ja" => 'j'), or 0.
wxUniChar accessKey(const wxString& caption) {
    const int amp = caption.Find('&');
    if (amp == wxNOT_FOUND || amp + 1 >= int(caption.size())) return 0;
    return wxString(caption[amp + 1]).Lower()[0];
}

}  // namespace

MsgBoxDialog::MsgBoxDialog(wxWindow* parent, const VntBoxModel& model) : model_(model) {
    ok_ = Vnt_WxLoadDialog(this, parent, 30061);
    if (!ok_) return;
    SetTitle(toWx(model_.title));
    layout();
    SetEscapeId(wxID_NONE);  // Escape and closing give the close answer
    Bind(wxEVT_BUTTON, &MsgBoxDialog::onButton, this);
    Bind(wxEVT_CLOSE_WINDOW, &MsgBoxDialog::onClose, this);
    Bind(wxEVT_CHAR_HOOK, &MsgBoxDialog::onKey, this);
    Bind(wxEVT_CONTEXT_MENU, &MsgBoxDialog::onContext, this);
    Bind(wxEVT_MENU, &MsgBoxDialog::onMenu, this);
}

/*
 * Icon beside the lines used; the check box above the separator ('^') or
 * below the buttons ('.'), at the left (199) or right-aligned (200); the
 * buttons of the model left to right, centred, Help last as the model has
 * it. The dialog is as small as its contents allow.
 */
void MsgBoxDialog::layout() {
    auto* top = new wxBoxSizer(wxVERTICAL);
    auto* body = new wxBoxSizer(wxHORIZONTAL);
    auto* icon = static_cast<wxStaticBitmap*>(FindWindow("icon"));
    if (model_.icon != VNT_ICON_NONE) {
        icon->SetBitmap(messageIcon(model_.icon, 32));
        body->Add(icon, 0, wxALL | wxALIGN_TOP, 12);
    } else {
        icon->Hide();
        body->AddSpacer(12);
    }
    auto* lines = new wxBoxSizer(wxVERTICAL);
    for (int i = 0; i < kLines; ++i) {
        auto* t = static_cast<wxStaticText*>(FindWindow(kFirstLine + i));
        if (i < int(model_.lines.size())) {
            // An empty line keeps its height; '&' is text here, not a key.
            const wxString text = toWx(model_.lines[i]);
            t->SetLabelText(text.empty() ? wxString(" ") : text);
            lines->Add(t, 0, wxEXPAND);
        } else {
            t->Hide();
        }
    }
    body->Add(lines, 1, wxTOP | wxBOTTOM | wxRIGHT | wxALIGN_CENTER_VERTICAL, 12);
    top->Add(body, 1, wxEXPAND);

    auto* left = static_cast<wxCheckBox*>(FindWindow(kCheckLeft));
    auto* right = static_cast<wxCheckBox*>(FindWindow(kCheckRight));
    left->Hide();
    right->Hide();
    wxBoxSizer* checkRow = nullptr;
    if (model_.checkbox) {
        check_ = model_.checkboxLeft ? left : right;
        check_->SetLabel(toWx(model_.checkboxCaption));
        check_->Show();
        checkRow = new wxBoxSizer(wxHORIZONTAL);
        if (!model_.checkboxLeft) checkRow->AddStretchSpacer();
        checkRow->Add(check_, 0, wxLEFT | wxRIGHT, 12);
    }
    if (checkRow && !model_.checkboxBelow) top->Add(checkRow, 0, wxEXPAND | wxBOTTOM, 8);
    top->Add(FindWindow("separator"), 0, wxEXPAND | wxLEFT | wxRIGHT, 12);

    auto* buttons = new wxBoxSizer(wxHORIZONTAL);
    for (int id : kAllButtons) FindWindow(id)->Hide();
    wxButton* def = nullptr;
    for (std::size_t i = 0; i < model_.buttons.size(); ++i) {
        auto* b = dynamic_cast<wxButton*>(FindWindow(model_.buttons[i].id));
        if (!b) continue;
        b->SetLabel(toWx(model_.buttons[i].caption));
        b->Show();
        buttons->Add(b, 0, i ? wxLEFT : 0, 8);
        const int d = model_.defaultButton >= 0 ? model_.defaultButton : 0;
        if (int(i) == d) def = b;
    }
    top->Add(buttons, 0, wxALIGN_CENTER | wxALL, 12);
    if (checkRow && model_.checkboxBelow) top->Add(checkRow, 0, wxEXPAND | wxBOTTOM, 12);
    if (def) {
        def->SetDefault();
        def->SetFocus();
    }
    SetSizerAndFit(top);
}

wxMenu* MsgBoxDialog::ContextMenu() const {
    auto* menu = new wxMenu;
    if (english()) {
        menu->Append(kCopyId, "Copy\tCtrl+C");
        menu->Append(kEditId, "Open in editor");
    } else {
        // wx knows the modifier as "Ctrl" only; the desktop shows it in its
        // own language ("Strg+C" on a German one).
        menu->Append(kCopyId, "Kopieren\tCtrl+C");
        menu->Append(kEditId, wxString::FromUTF8("Im Editor \xC3\xB6" "ffnen"));
    }
    return menu;
}

void MsgBoxDialog::pressById(int id) {
    if (IsModal()) EndModal(id);
}

void MsgBoxDialog::onButton(wxCommandEvent& e) {
    for (const VntBoxButton& b : model_.buttons)
        if (b.id == e.GetId()) return pressById(b.id);
    e.Skip();
}

void MsgBoxDialog::onClose(wxCloseEvent&) { pressById(model_.escapeButton); }

/*
 * The box's keys: Escape closes with the close answer; a button's access
 * key alone (or with Alt) presses it; F1 is Help where the box has it;
 * Ctrl+C and Ctrl+Insert copy, Ctrl+V and Shift+Insert open the editor;
 * Left and Right move between the buttons.
 */
void MsgBoxDialog::onKey(wxKeyEvent& e) {
    const int key = e.GetKeyCode();
    const int mods = e.GetModifiers();
    if (key == WXK_ESCAPE && mods == wxMOD_NONE) return pressById(model_.escapeButton);
    if ((mods == wxMOD_CONTROL && (key == 'C' || key == WXK_INSERT))) {
        Vnt_MsgBoxCopy(model_);
        return;
    }
    if ((mods == wxMOD_CONTROL && key == 'V') || (mods == wxMOD_SHIFT && key == WXK_INSERT)) {
        Vnt_MsgBoxEdit(model_);
        return;
    }
    if (key == WXK_F1 && mods == wxMOD_NONE) {
        for (const VntBoxButton& b : model_.buttons)
            if (b.id == VNT_BTN_HELP) return pressById(b.id);
    }
    if ((key == WXK_LEFT || key == WXK_RIGHT) && mods == wxMOD_NONE && dynamic_cast<wxButton*>(FindFocus())) {
        FindFocus()->Navigate(key == WXK_RIGHT ? wxNavigationKeyEvent::IsForward : wxNavigationKeyEvent::IsBackward);
        return;
    }
    if ((mods == wxMOD_NONE || mods == wxMOD_ALT) && key < 256 && wxIsalpha(key)) {
        const wxUniChar k = wxString(wxUniChar(key)).Lower()[0];
        for (const VntBoxButton& b : model_.buttons)
            if (accessKey(toWx(b.caption)) == k) return pressById(b.id);
        if (check_ && accessKey(check_->GetLabel()) == k) {
            check_->SetValue(!check_->GetValue());
            return;
        }
    }
    e.Skip();
}

void MsgBoxDialog::onContext(wxContextMenuEvent&) {
    wxMenu* menu = ContextMenu();
    PopupMenu(menu);
    delete menu;
}

void MsgBoxDialog::onMenu(wxCommandEvent& e) {
    if (e.GetId() == kCopyId) Vnt_MsgBoxCopy(model_);
    else if (e.GetId() == kEditId) Vnt_MsgBoxEdit(model_);
    else e.Skip();
}

/*
 * The first box of a level is centred on the screen (the second level a
 * little lower right, so that the first stays visible); afterwards each
 * level opens where its last box was.
 */
bool WxPresenter::Show(const VntBoxModel& box, VntBoxAnswer& answer) {
    MsgBoxDialog dlg(owner(), box);
    if (!dlg.IsOk()) return false;
    const int level = box.level >= 2 ? 1 : 0;
    if (pos_[level] != wxDefaultPosition) {
        dlg.Move(pos_[level]);
    } else {
        dlg.CentreOnScreen();
        if (level == 1) dlg.Move(dlg.GetPosition() + wxPoint(30, 30));
    }
    MsgBoxDialog* outer = current_;
    current_ = &dlg;
    dlg.Raise();
    const int pressed = dlg.ShowModal();
    current_ = outer;
    pos_[level] = dlg.GetPosition();
    answer.button = pressed;
    answer.checked = dlg.CheckBox() && dlg.CheckBox()->GetValue();
    return true;
}

/*
 * The platform's box. Its Abort/Retry/Ignore and Retry/Cancel forms are the
 * standard box with other captions; closing it answers as the Cancel
 * position does, which holds Abort in the first and Cancel in the second.
 */
int WxPresenter::ShowPlain(const VntPlainBox& box) {
    long style = wxCENTRE | wxSTAY_ON_TOP;
    switch (box.type & 0xF0) {
        case 16: style |= wxICON_ERROR; break;
        case 32: style |= wxICON_QUESTION; break;
        case 48: style |= wxICON_WARNING; break;
        case 64: style |= wxICON_INFORMATION; break;
        default: style |= wxICON_NONE; break;
    }
    const long buttons = box.type & 7;
    switch (buttons) {
        case 1: case 5: style |= wxOK | wxCANCEL; break;
        case 2: case 3: style |= wxYES_NO | wxCANCEL; break;
        case 4: style |= wxYES_NO; break;
        default: style |= wxOK; break;
    }
    const bool en = english();
    wxMessageDialog dlg(owner(), toWx(box.text), box.title.empty() ? wxString(wxTheApp->GetAppDisplayName()) : toWx(box.title),
                        style);
    if (buttons == 2)
        dlg.SetYesNoCancelLabels(en ? "&Retry" : "&Wiederholen", en ? "&Ignore" : "&Ignorieren",
                                 en ? "&Abort" : "&Abbrechen");
    else if (buttons == 5)
        dlg.SetOKCancelLabels(en ? "&Retry" : "&Wiederholen", en ? "&Cancel" : "&Abbrechen");
    else if (buttons == 3 || buttons == 4)
        dlg.SetYesNoCancelLabels(en ? "&Yes" : "&Ja", en ? "&No" : "&Nein", en ? "&Cancel" : "&Abbrechen");
    else if (buttons == 1)
        dlg.SetOKCancelLabels("&OK", en ? "&Cancel" : "&Abbrechen");
    switch (dlg.ShowModal()) {
        case wxID_OK: return buttons == 5 ? VNT_BTN_RETRY : VNT_BTN_OK;
        case wxID_YES: return buttons == 2 ? VNT_BTN_RETRY : VNT_BTN_YES;
        case wxID_NO: return buttons == 2 ? VNT_BTN_IGNORE : VNT_BTN_NO;
        case wxID_CANCEL: return buttons == 2 ? VNT_BTN_ABORT : buttons == 4 ? VNT_BTN_NO : buttons == 0 ? VNT_BTN_OK : VNT_BTN_CANCEL;
        default: return 0;
    }
}

WxPresenter* presenter() { return state().presenter; }

}  // namespace vnt::wx
