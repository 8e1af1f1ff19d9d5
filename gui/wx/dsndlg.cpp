// The client dialogs 30021-30026: windows over the objects of
// vanto/dsndlg.h, which decide and change everything; these only show
// their state and pass the buttons on.
#include "vanto/wx/dsndlg.h"

#include <algorithm>
#include <vector>

#include <wx/app.h>
#include <wx/checkbox.h>
#include <wx/listbox.h>
#include <wx/radiobut.h>
#include <wx/textctrl.h>

#include "vanto/text.h"
#include "vanto/ui/window.h"
#include "wxtext.h"

using vnt::wx::fromWx;
using vnt::wx::toWx;

namespace {

constexpr int kListControls[] = {VNT_DSN_IDC_DEFAULT, VNT_DSN_IDC_NOSHOW, VNT_DSN_IDC_EDIT,
                                 VNT_DSN_IDC_INSERT,  VNT_DSN_IDC_DELETE, VNT_DSN_IDC_SAVE,
                                 VNT_DSN_IDC_SUPPLEMENT, VNT_DSN_IDC_UP,  VNT_DSN_IDC_DOWN};
constexpr int kFieldLimit = VNT_MAX_PATH - 1;

template <class T>
T* control(wxWindow* dlg, int id) {
    return dynamic_cast<T*>(dlg->FindWindow(id));
}

bool sameText(const std::string& a, const std::string& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return Vnt_TxtUpper(static_cast<unsigned char>(x)) == Vnt_TxtUpper(static_cast<unsigned char>(y));
           });
}

// A directory below `dir` ("T:\" + "Daten" => "T:\Daten").
std::string joinPath(const std::string& dir, const std::string& name) {
    return !dir.empty() && dir.back() == '\\' ? dir + name : dir + "\\" + name;
}

}  // namespace

int Vnt_CtlEnableArray(wxWindow* parent, const int* ids, int count, bool enable) {
    if (!parent || !ids) return 0;
    int found = 0;
    for (int i = 0; i < count; ++i) {
        if (wxWindow* w = parent->FindWindow(ids[i])) {
            w->Enable(enable);
            ++found;
        }
    }
    return found;
}

// ---------------------------------------------------------------------------
// 30021
// ---------------------------------------------------------------------------

VntDsnSelectDlg::VntDsnSelectDlg(VntDsnSelection& model, wxWindow* parent)
    : VntDlg(30021, parent, 0, 30021), model_(model) {
    if (!IsOk()) return;
    list_ = control<wxListBox>(this, VNT_DSN_IDC_LIST);
    int x = 0, y = 0;
    if (model_.Position(x, y)) Move(x, y);
    Bind(wxEVT_LISTBOX, &VntDsnSelectDlg::onList, this, VNT_DSN_IDC_LIST);
    Bind(wxEVT_LISTBOX_DCLICK, &VntDsnSelectDlg::onList, this, VNT_DSN_IDC_LIST);
    Bind(wxEVT_BUTTON, &VntDsnSelectDlg::onButton, this);
    Bind(wxEVT_CHECKBOX, &VntDsnSelectDlg::onCheck, this);
    fill();
    // A selection opened while another is open must not change the list.
    if (model_.ListLocked()) Vnt_CtlEnableArray(this, kListControls, int(std::size(kListControls)), false);
}

VntDsnSelectDlg::~VntDsnSelectDlg() = default;

// The list starts with no entry chosen; a list that has the focus would
// choose its first entry by itself, so the focus starts on OK.
bool VntDsnSelectDlg::OnInitDialog() {
    const bool ok = VntDlg::OnInitDialog();
    if (wxWindow* b = FindWindow(wxID_OK)) b->SetFocus();
    return ok;
}

void VntDsnSelectDlg::fill() {
    if (!list_) return;
    wxArrayString names;
    for (const std::string& n : model_.Names()) names.Add(toWx(n));
    list_->Set(names);
    if (model_.Selected() >= 0) list_->SetSelection(model_.Selected());
    showChoices();
}

void VntDsnSelectDlg::showChoices() {
    if (auto* c = control<wxCheckBox>(this, VNT_DSN_IDC_DEFAULT)) c->SetValue(model_.DefaultTicked());
    if (auto* c = control<wxCheckBox>(this, VNT_DSN_IDC_NOSHOW)) c->SetValue(model_.NoShowTicked());
}

void VntDsnSelectDlg::onList(wxCommandEvent& e) {
    model_.Select(list_->GetSelection() == wxNOT_FOUND ? -1 : list_->GetSelection());
    showChoices();
    if (e.GetEventType() == wxEVT_LISTBOX_DCLICK && model_.Ok()) close(wxID_OK);
}

void VntDsnSelectDlg::onCheck(wxCommandEvent& e) {
    if (e.GetId() == VNT_DSN_IDC_DEFAULT) model_.SetDefaultTicked(e.IsChecked());
    else if (e.GetId() == VNT_DSN_IDC_NOSHOW) model_.SetNoShowTicked(e.IsChecked());
    else e.Skip();
}

void VntDsnSelectDlg::editEntry(int index) {
    VntDsnEntryEdit edit(model_, index);
    VntDsnEntryDlg dlg(edit, this);
    if (dlg.IsOk() && dlg.ShowModal() == wxID_OK) fill();
}

void VntDsnSelectDlg::onButton(wxCommandEvent& e) {
    // The buttons act on the entry the list shows as chosen.
    if (list_ && list_->GetSelection() != model_.Selected()) {
        model_.Select(list_->GetSelection() == wxNOT_FOUND ? -1 : list_->GetSelection());
        showChoices();
    }
    switch (e.GetId()) {
    case wxID_OK:
        if (model_.Ok()) close(wxID_OK);
        break;
    case wxID_CANCEL:  // also Escape and the close box
        if (model_.Cancel()) close(wxID_CANCEL);
        break;
    case VNT_DSN_IDC_EDIT:
        if (model_.Selected() < 0) Vnt_UiWindow().Beep();
        else editEntry(model_.Selected());
        break;
    case VNT_DSN_IDC_INSERT: editEntry(-1); break;
    case VNT_DSN_IDC_DELETE:
        if (model_.Delete()) fill();
        break;
    case VNT_DSN_IDC_SAVE: model_.Save(); break;
    case VNT_DSN_IDC_SUPPLEMENT: model_.Supplement(); break;
    case VNT_DSN_IDC_UP:
        if (model_.MoveUp()) fill();
        break;
    case VNT_DSN_IDC_DOWN:
        if (model_.MoveDown()) fill();
        break;
    default: e.Skip();  // the help button goes to VntDlg
    }
}

void VntDsnSelectDlg::close(int result) {
    const wxPoint p = GetPosition();
    model_.SavePosition(p.x, p.y);
    if (IsModal()) {
        EndModal(result);
    } else {
        SetReturnCode(result);
        Hide();
    }
}

// ---------------------------------------------------------------------------
// 30022 / 30023 and the choices 30024 / 30025
// ---------------------------------------------------------------------------

VntDsnEntryDlg::VntDsnEntryDlg(VntDsnEntryEdit& edit, wxWindow* parent)
    : VntDlg(edit.Dialog(), parent, 0, edit.Dialog()), edit_(edit) {
    if (!IsOk()) return;
    auto* name = control<wxTextCtrl>(this, VNT_DSN_IDC_NAME);
    auto* path = control<wxTextCtrl>(this, VNT_DSN_IDC_PATH);
    if (name) {
        name->SetMaxLength(kFieldLimit);
        name->ChangeValue(toWx(edit.Name()));
    }
    if (path) {
        path->SetMaxLength(kFieldLimit);
        path->ChangeValue(toWx(edit.Path()));
    }
    Bind(wxEVT_BUTTON, &VntDsnEntryDlg::onOk, this, wxID_OK);
    Bind(wxEVT_BUTTON, &VntDsnEntryDlg::onBrowse, this, VNT_DSN_IDC_BROWSE);
}

void VntDsnEntryDlg::onOk(wxCommandEvent&) {
    auto* name = control<wxTextCtrl>(this, VNT_DSN_IDC_NAME);
    auto* path = control<wxTextCtrl>(this, VNT_DSN_IDC_PATH);
    auto* atEnd = control<wxCheckBox>(this, VNT_DSN_IDC_ATEND);
    const std::string n = name ? fromWx(name->GetValue()) : "", p = path ? fromWx(path->GetValue()) : "";
    const auto outcome = edit_.Ok(n.c_str(), p.c_str(), atEnd && atEnd->GetValue(), [this](long dialog) {
        VntDsnChoiceDlg choice(dialog, this);
        return choice.Ask();
    });
    switch (outcome) {
    case VntDsnEntryEdit::Outcome::Done: EndModal(wxID_OK); break;
    case VntDsnEntryEdit::Outcome::Cancelled: EndModal(wxID_CANCEL); break;
    case VntDsnEntryEdit::Outcome::Stay:
        if (name) name->SetFocus();
        break;
    }
}

void VntDsnEntryDlg::onBrowse(wxCommandEvent&) {
    auto* path = control<wxTextCtrl>(this, VNT_DSN_IDC_PATH);
    if (!path) return;
    VntDsnDirDlg dir(Vnt_DsnDirStart(fromWx(path->GetValue()).c_str()), this);
    if (dir.IsOk() && dir.ShowModal() == wxID_OK) {
        path->ChangeValue(toWx(dir.Path()));
        path->SetFocus();
    }
}

VntDsnChoiceDlg::VntDsnChoiceDlg(long dialog, wxWindow* parent) : VntDlg(dialog, parent, 0, dialog) {}

VntDsnChoice VntDsnChoiceDlg::Ask() {
    if (ShowModal() != wxID_OK) return VntDsnChoice::Cancel;
    auto* install = control<wxRadioButton>(this, VNT_DSN_IDC_INSTALL);
    return install && install->GetValue() ? VntDsnChoice::Install : VntDsnChoice::Only;
}

// ---------------------------------------------------------------------------
// 30026
// ---------------------------------------------------------------------------

namespace {

struct DirItem : wxTreeItemData {
    explicit DirItem(std::string p) : path(std::move(p)) {}
    std::string path;
    bool listed = false;  // its sub-directories are in the tree
};

DirItem* dirOf(wxTreeCtrl* tree, wxTreeItemId item) {
    return item.IsOk() ? static_cast<DirItem*>(tree->GetItemData(item)) : nullptr;
}

}  // namespace

VntDsnDirDlg::VntDsnDirDlg(const std::string& start, wxWindow* parent) : VntDlg(30026, parent, 0, 30026) {
    if (!IsOk()) return;
    tree_ = control<wxTreeCtrl>(this, VNT_DSN_IDC_TREE);
    if (!tree_) return;
    const wxTreeItemId root = tree_->AddRoot("");
    for (const std::string& volume : Vnt_DsnDirRoots()) addDir(root, volume, volume);
    Bind(wxEVT_TREE_ITEM_EXPANDING, &VntDsnDirDlg::onExpanding, this, VNT_DSN_IDC_TREE);
    Bind(wxEVT_BUTTON, &VntDsnDirDlg::onOk, this, wxID_OK);
    if (!start.empty()) SelectPath(start);
}

wxTreeItemId VntDsnDirDlg::addDir(wxTreeItemId parent, const std::string& label, const std::string& path) {
    const wxTreeItemId item = tree_->AppendItem(parent, toWx(label), -1, -1, new DirItem(path));
    tree_->SetItemHasChildren(item, true);  // known when it is opened
    return item;
}

void VntDsnDirDlg::expand(wxTreeItemId item) {
    DirItem* d = dirOf(tree_, item);
    if (!d || d->listed) return;
    d->listed = true;
    const std::string dir = d->path;
    const std::vector<std::string> names = Vnt_DsnDirChildren(dir.c_str());
    for (const std::string& n : names) addDir(item, n, joinPath(dir, n));
    if (names.empty()) tree_->SetItemHasChildren(item, false);
}

void VntDsnDirDlg::onExpanding(wxTreeEvent& e) { expand(e.GetItem()); }

bool VntDsnDirDlg::SelectPath(const std::string& path) {
    if (!tree_) return false;
    // The volume root, then one component after the other.
    wxTreeItemIdValue cookie;
    wxTreeItemId at;
    for (wxTreeItemId i = tree_->GetFirstChild(tree_->GetRootItem(), cookie); i.IsOk();
         i = tree_->GetNextChild(tree_->GetRootItem(), cookie)) {
        const std::string& root = dirOf(tree_, i)->path;
        if (path.size() >= root.size() - 1 && sameText(path.substr(0, root.size() - 1), root.substr(0, root.size() - 1)))
            at = i;
    }
    if (!at.IsOk()) return false;
    std::string rest = path.size() > 3 ? path.substr(3) : "";
    while (!rest.empty()) {
        const std::size_t sep = rest.find('\\');
        const std::string part = rest.substr(0, sep);
        rest = sep == std::string::npos ? "" : rest.substr(sep + 1);
        if (part.empty()) continue;
        expand(at);
        tree_->Expand(at);
        wxTreeItemId next;
        for (wxTreeItemId c = tree_->GetFirstChild(at, cookie); c.IsOk() && !next.IsOk();
             c = tree_->GetNextChild(at, cookie))
            if (sameText(fromWx(tree_->GetItemText(c)), part)) next = c;
        if (!next.IsOk()) return false;
        at = next;
    }
    tree_->SelectItem(at);
    tree_->EnsureVisible(at);
    return true;
}

void VntDsnDirDlg::onOk(wxCommandEvent&) {
    const DirItem* d = tree_ ? dirOf(tree_, tree_->GetSelection()) : nullptr;
    if (!d) {
        Vnt_UiWindow().Beep();
        return;
    }
    path_ = d->path;
    EndModal(wxID_OK);
}

// ---------------------------------------------------------------------------
// The port
// ---------------------------------------------------------------------------

VNT_RESP VntWxClientSelect::Run(const VntClientSelectRequest& request, DsnIni& registry) {
    VntDsnSelection model(registry, request);
    wxWindow* top = wxTheApp ? wxTheApp->GetTopWindow() : nullptr;
    VntDsnSelectDlg dlg(model, top && top->IsShown() ? top : nullptr);
    if (!dlg.IsOk()) return VNT_RESP_CANCEL;  // reported by the resource loader
    return dlg.ShowModal() == wxID_OK ? VNT_RESP_OK : VNT_RESP_CANCEL;
}
