// The message box on wx: dialog 30061 drawn from the core's box model, and
// the platform's standard box for plain boxes.
#pragma once

#include <array>

#include <wx/dialog.h>
#include <wx/checkbox.h>
#include <wx/menu.h>

#include "vanto/ui/msgbox.h"

class wxBoxSizer;

namespace vnt::wx {

/// Dialog 30061 showing one box model.
class MsgBoxDialog : public wxDialog {
public:
    /// Loads the resource and lays the box out; IsOk() false when the
    /// resource is missing (reported).
    MsgBoxDialog(wxWindow* parent, const VntBoxModel& model);
    bool IsOk() const { return ok_; }
    const VntBoxModel& Model() const { return model_; }
    /// The check box in use (null without one).
    wxCheckBox* CheckBox() const { return check_; }
    /// The context menu: "Kopieren" with the shortcut Ctrl+C (which the
    /// desktop shows as "Strg+C" in German) and "Im Editor öffnen"
    /// (English in English).
    wxMenu* ContextMenu() const;
    /// The menu IDs of the two actions.
    static constexpr int kCopyId = 30101, kEditId = 30102;

private:
    void layout();
    void onButton(wxCommandEvent& e);
    void onClose(wxCloseEvent& e);
    void onKey(wxKeyEvent& e);
    void onContext(wxContextMenuEvent& e);
    void onMenu(wxCommandEvent& e);
    void pressById(int id);

    VntBoxModel model_;
    bool ok_ = false;
    wxCheckBox* check_ = nullptr;
};

/// The presenter of the window toolkit.
class WxPresenter : public VntMsgPresenter {
public:
    bool Show(const VntBoxModel& box, VntBoxAnswer& answer) override;
    int ShowPlain(const VntPlainBox& box) override;
    /// The box on the screen now (null when none), for tests.
    MsgBoxDialog* Current() const { return current_; }
    /// Forgets where the boxes of each level were: the next ones are centred again.
    void ForgetPlaces() { pos_.fill(wxDefaultPosition); }

private:
    std::array<wxPoint, 2> pos_{wxDefaultPosition, wxDefaultPosition};  // last place per level
    MsgBoxDialog* current_ = nullptr;
};

/// The presenter Vnt_WxInit installed (null before).
WxPresenter* presenter();

}  // namespace vnt::wx
