// vanto/wx/dsndlg.h - the client dialogs 30021-30026 on wx.
//
// The windows of the client selection. They show the state of the objects
// of vanto/dsndlg.h and call one of their functions per button; Vnt_WxInit
// installs VntWxClientSelect as the client selection port, so that
// Vnt_DlgDsn shows them.
//
//   30021 VntDsnSelectDlg   the list and its buttons ("&Hilfe" is control 9,
//                           the help of VntDlg with help number 30021)
//   30022 / 30023 VntDsnEntryDlg   change a client / a new one
//   30024 / 30025 VntDsnChoiceDlg  the two choices of the entry dialogs
//   30026 VntDsnDirDlg      the directory tree behind the "&..." buttons
#pragma once

#include <string>

#include <wx/treectrl.h>

#include "vanto/base.h"
#include "vanto/dsndlg.h"
#include "vanto/ui/clientsel.h"
#include "vanto/wx/dlg.h"

class wxListBox;
class wxCheckBox;

/// Enables or disables the controls `ids` (count of them) of `parent`;
/// returns how many were found. ({1001, ..., 1009}, 9, false) disables the
/// list's buttons of dialog 30021.
VANTO_API int Vnt_CtlEnableArray(wxWindow* parent, const int* ids, int count, bool enable);

/// Dialog 30021, the selection, over `model`.
class VANTO_API VntDsnSelectDlg : public VntDlg {
public:
    VntDsnSelectDlg(VntDsnSelection& model, wxWindow* parent);
    ~VntDsnSelectDlg() override;
    VntDsnSelection& Model() { return model_; }

protected:
    bool OnInitDialog() override;

private:
    void fill();          // the list from the model, the chosen entry marked
    void showChoices();   // the check boxes from the model
    void onList(wxCommandEvent& e);
    void onButton(wxCommandEvent& e);
    void onCheck(wxCommandEvent& e);
    void editEntry(int index);
    void close(int result);

    VntDsnSelection& model_;
    wxListBox* list_ = nullptr;
};

/// Dialog 30022 (change) or 30023 (new) over `edit`.
class VANTO_API VntDsnEntryDlg : public VntDlg {
public:
    VntDsnEntryDlg(VntDsnEntryEdit& edit, wxWindow* parent);

private:
    void onOk(wxCommandEvent& e);
    void onBrowse(wxCommandEvent& e);
    VntDsnEntryEdit& edit_;
};

/// Dialog 30024 or 30025: the first choice is preselected.
class VANTO_API VntDsnChoiceDlg : public VntDlg {
public:
    VntDsnChoiceDlg(long dialog, wxWindow* parent);
    /// Shows it modally: Cancel, Only or Install.
    VntDsnChoice Ask();
};

/// Dialog 30026: the directory tree of the library's volumes, opened at
/// `start` (Vnt_DsnDirStart of a path field). OK with a directory chosen
/// closes it; Path() is the directory then.
class VANTO_API VntDsnDirDlg : public VntDlg {
public:
    VntDsnDirDlg(const std::string& start, wxWindow* parent);
    const std::string& Path() const { return path_; }
    /// Selects the item of `path` (a library path), expanding its parents;
    /// false when it is not in the tree.
    bool SelectPath(const std::string& path);

private:
    void onExpanding(wxTreeEvent& e);
    void onOk(wxCommandEvent& e);
    wxTreeItemId addDir(wxTreeItemId parent, const std::string& label, const std::string& path);
    void expand(wxTreeItemId item);

    wxTreeCtrl* tree_ = nullptr;
    std::string path_;
};

/// The client selection port of the window toolkit: dialog 30021, modal.
class VANTO_API VntWxClientSelect : public VntClientSelectPort {
public:
    VNT_RESP Run(const VntClientSelectRequest& request, DsnIni& registry) override;
};
