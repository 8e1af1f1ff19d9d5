// Tabbed pages: the page holder over a notebook, the pages made from dialog
// resources, their focus memory and data exchange.
#include "vanto/wx/tab.h"

#include <memory>

#include <wx/bookctrl.h>
#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/combobox.h>
#include <wx/eventfilter.h>
#include <wx/listbox.h>
#include <wx/radiobut.h>
#include <wx/stattext.h>
#include <wx/log.h>
#include <wx/textctrl.h>
#include <wx/xml/xml.h>
#include <wx/xrc/xmlres.h>

#include "tab_state.h"
#include "vanto/msg.h"
#include "vanto/ui/window.h"
#include "vanto/wx/dlg.h"
#include "vanto/wx/res.h"
#include "wxtext.h"

namespace vnt::wx {

TabState& tabState() {
    static TabState s;
    return s;
}

void tabTrace(const char* line) {
    tabState().trace += line;
    wxLogTrace("vantortl", "%s", line);
}

}  // namespace vnt::wx

namespace {

constexpr const char* kSource = "Tab\\VntTab";

// The dialog resource of `number` in the library language, else the plain one.
const wxXmlNode* dialogNode(long number) {
    wxXmlResource* res = wxXmlResource::Get();
    if (const wxXmlNode* n = res->GetResourceNode(Vnt_WxResName(number, Vnt_ResLanguage()))) return n;
    return res->GetResourceNode(Vnt_WxResName(number));
}

}  // namespace

namespace vnt::wx {

/*
 * A notebook page must be a child window, not a top-level dialog: the
 * dialog's resource is copied once as a panel resource of the same
 * controls ("tabpage<N>_<language>") and loaded from there.
 */
wxString pageResource(long number, wxString& title) {
    const wxXmlNode* dlg = dialogNode(number);
    if (dlg == nullptr) return {};
    for (wxXmlNode* c = dlg->GetChildren(); c; c = c->GetNext())
        if (c->GetName() == "title") title = c->GetNodeContent();
    const wxString name = wxString::Format("tabpage%ld_%s", number, Vnt_ResLanguage());
    wxXmlResource* res = wxXmlResource::Get();
    if (res->GetResourceNode(name)) return name;
    auto* panel = new wxXmlNode(wxXML_ELEMENT_NODE, "object");
    panel->AddAttribute("class", "wxPanel");
    panel->AddAttribute("name", name);
    for (wxXmlNode* c = dlg->GetChildren(); c; c = c->GetNext()) {
        const wxString n = c->GetName();
        if (n == "title" || n == "style" || n == "exstyle" || n == "centered" || n == "icon" || n == "pos") continue;
        panel->AddChild(new wxXmlNode(*c));
    }
    auto* root = new wxXmlNode(wxXML_ELEMENT_NODE, "resource");
    root->AddAttribute("version", "2.5.3.0");
    root->AddChild(panel);
    auto doc = std::make_unique<wxXmlDocument>();
    doc->SetRoot(root);
    if (!res->LoadDocument(doc.release(), "vantortl:" + name)) return {};
    return name;
}

}  // namespace vnt::wx

namespace {

using vnt::wx::pageResource;

// What the keyboard rules know of a control.
enum class Kind { Other, Button, Check, Radio, List, Combo, Edit, MultiEdit, Static, Tab };

Kind kindOf(const wxWindow* w) {
    if (w == nullptr) return Kind::Other;
    if (vnt::wx::as<wxBookCtrlBase>(w)) return Kind::Tab;
    if (vnt::wx::as<wxComboBox>(w) || vnt::wx::as<wxChoice>(w)) return Kind::Combo;
    if (auto* t = vnt::wx::as<wxTextCtrl>(w)) return t->IsMultiLine() ? Kind::MultiEdit : Kind::Edit;
    if (vnt::wx::as<wxCheckBox>(w)) return Kind::Check;
    if (vnt::wx::as<wxRadioButton>(w)) return Kind::Radio;
    if (vnt::wx::as<wxButton>(w)) return Kind::Button;
    if (vnt::wx::as<wxListBox>(w)) return Kind::List;
    if (vnt::wx::as<wxStaticText>(w)) return Kind::Static;
    return Kind::Other;
}

bool canFocus(const wxWindow* w) {
    return w->IsShown() && w->IsEnabled() && w->CanAcceptFocus() && kindOf(w) != Kind::Static;
}

// The controls of `page` that take the focus, in tab order, stops excluded.
void focusable(const wxWindow* w, const VntTabDlg* page, std::vector<wxWindow*>& out) {
    for (wxWindow* c : w->GetChildren()) {
        if (c == page->FocusStop(0) || c == page->FocusStop(1)) continue;
        if (canFocus(c)) out.push_back(c);
        else if (c->IsShown() && !c->GetChildren().empty()) focusable(c, page, out);
    }
}

// An invisible window that takes the focus. GTK cannot lay out an entry
// of 10 x 10, so the stops are plain windows of that size.
class StopWindow : public wxWindow {
public:
    StopWindow(wxWindow* parent, const wxPoint& at) : wxWindow(parent, wxID_ANY, at, wxSize(10, 10), wxWANTS_CHARS) {}
    bool AcceptsFocus() const override { return true; }
    bool AcceptsFocusFromKeyboard() const override { return true; }
};

bool within(const wxWindow* w, const wxWindow* top) {
    for (; w; w = w->GetParent())
        if (w == top) return true;
    return false;
}

}  // namespace

// ---------------------------------------------------------------------------
// VntTabDlg
// ---------------------------------------------------------------------------

VntTabDlg::VntTabDlg() = default;
// A page may be a member of its view: it leaves the notebook (which would
// delete it again) and its holder before it goes.
VntTabDlg::~VntTabDlg() {
    vnt::wx::TabState& s = vnt::wx::tabState();
    if (s.droppedCombo && within(s.droppedCombo, this)) s.droppedCombo = nullptr;
    if (auto* book = dynamic_cast<wxBookCtrlBase*>(GetParent())) {
        const int index = book->FindPage(this);
        if (index != wxNOT_FOUND) book->RemovePage(static_cast<size_t>(index));
    }
    if (VntTab* tab = Tab()) tab->forget(this);
}

void VntTabDlg::Setup(VntTabViewBase* view) { view_ = view; }

VntTab* VntTabDlg::Tab() const { return view_ ? &view_->m_tab : nullptr; }

bool VntTabDlg::CreatePage(long dialog, wxWindow* parent) {
    dialog_ = dialog;
    if (GetHandle()) return false;  // created once only
    wxString title;
    const wxString name = pageResource(dialog, title);
    if (Vnt__InternalError(name.empty(), static_cast<int>(dialog), "Wx/VntRes", __LINE__)) return false;
    {
        wxLogNull quiet;
        if (!wxXmlResource::Get()->LoadPanel(this, parent, name)) return false;
    }
    Vnt_StrCopy(caption_, vnt::wx::fromWx(title));
    // Outside the visible area: they only hold the focus at the page's ends.
    stops_[0] = new StopWindow(this, wxPoint(-100, -100));
    stops_[1] = new StopWindow(this, wxPoint(-80, -80));
    for (wxWindow* s : stops_) s->Bind(wxEVT_SET_FOCUS, &VntTabDlg::onFocusStop, this);
    Bind(wxEVT_COMBOBOX_DROPDOWN, &VntTabDlg::onComboCommand, this);
    Bind(wxEVT_COMBOBOX_CLOSEUP, &VntTabDlg::onComboCommand, this);
    return true;
}

// Tab past the last control lands on the first stop and wraps to the first
// control; Shift+Tab before the first lands on the second and wraps back.
void VntTabDlg::onFocusStop(wxFocusEvent& e) {
    wxWindow* stop = dynamic_cast<wxWindow*>(e.GetEventObject());
    CallAfter([this, stop] {
        if (wxWindow::FindFocus() != stop) return;
        if (stop == stops_[0]) GotoFirstChild();
        else GotoLastChild();
    });
    e.Skip();
}

void VntTabDlg::onComboCommand(wxCommandEvent& e) {
    VntTabViewBase::DoComboDropDownList(e.GetEventType(), dynamic_cast<wxComboBox*>(e.GetEventObject()));
    e.Skip();
}

bool VntTabDlg::GotoFirstChild() {
    std::vector<wxWindow*> c;
    focusable(this, this, c);
    if (c.empty()) return false;
    c.front()->SetFocus();
    return true;
}

bool VntTabDlg::GotoLastChild() {
    std::vector<wxWindow*> c;
    focusable(this, this, c);
    if (c.empty()) return false;
    c.back()->SetFocus();
    return true;
}

bool VntTabDlg::SetFocusPage(bool selectPage) {
    if (selectPage && Tab() && !Tab()->GotoTabDlg(dialog_)) return false;
    if (focus_ && within(focus_, this)) {
        focus_->SetFocus();
        return true;
    }
    return GotoFirstChild();
}

bool VntTabDlg::SetFocusPage(int control, bool selectPage) {
    wxWindow* w = FindWindow(control);
    return w && SetFocusPage(w, selectPage);
}

bool VntTabDlg::SetFocusPage(wxWindow* control, bool selectPage) {
    if (control == nullptr || !within(control, this)) return false;
    if (selectPage && Tab() && !Tab()->GotoTabDlg(dialog_)) return false;
    control->SetFocus();
    return true;
}

void VntTabDlg::ClosePage() {
    if (!GetHandle()) return;
    Hide();
    focus_ = nullptr;
}

void VntTabDlg::rememberFocus() {
    if (focus_) return;
    wxWindow* f = wxWindow::FindFocus();
    if (f == nullptr || !within(f, this) || isStop(f)) return;
    focus_ = f;
    selFrom_ = selTo_ = -1;
    if (auto* t = vnt::wx::as<wxTextCtrl>(f)) t->GetSelection(&selFrom_, &selTo_);
}

void VntTabDlg::restoreFocus() {
    wxWindow* f = focus_;
    focus_ = nullptr;
    if (f == nullptr || !within(f, this)) {
        GotoFirstChild();
        return;
    }
    f->SetFocus();
    if (auto* t = vnt::wx::as<wxTextCtrl>(f); t && selFrom_ >= 0) {
        const long from = selFrom_, to = selTo_;
        // The toolkit selects an edit's whole text when it gets the focus:
        // the range goes back after that.
        wxWeakRef<wxTextCtrl> ref(t);
        t->SetSelection(from, to);
        CallAfter([ref, from, to] {
            if (ref) ref->SetSelection(from, to);
        });
    }
}

bool VntTabDlg::DoDataExchange(VntDataExchange& dx) {
    return dx.m_bSaveAndValidate ? (Validate() && TransferDataFromWindow()) : TransferDataToWindow();
}

bool VntTabDlg::UpdateData(bool save) {
    if (!GetHandle()) return false;
    VntDataExchange dx(this, save);
    return DoDataExchange(dx) && !dx.Failed();
}

void VntTabDlg::DDX_Begin(VntDataExchange& dx) {
    if (!GetHandle()) return;
    dx_ = &dx;
    dxWindow_ = dx.m_pDlgWnd;
    dx.m_pDlgWnd = this;
}

void VntTabDlg::DDX_End() {
    if (dx_ == nullptr) return;
    dx_->m_pDlgWnd = dxWindow_;
    dx_ = nullptr;
    dxWindow_ = nullptr;
}

void VntTabDlg::DDX_UpdateData(VntDataExchange& dx) {
    if (!GetHandle()) throw VntUserException();
    DDX_Begin(dx);
    bool ok = false;
    try {
        ok = DoDataExchange(dx);
    } catch (...) {
        DDX_End();
        throw;
    }
    DDX_End();
    if (!ok || dx.Failed()) throw VntUserException();
}

// ---------------------------------------------------------------------------
// VntTab
// ---------------------------------------------------------------------------

VntTab::VntTab() = default;

// Pages the notebook still owns outlive the holder: they forget it.
VntTab::~VntTab() {
    vnt::wx::TabState& s = vnt::wx::tabState();
    if (s.current == this) s.current = nullptr;
    for (VntTabDlg* p : linked_) p->view_ = nullptr;
}

bool VntTab::Setup(wxWindow* parent, int control) {
    if (book_) {
        book_->Unbind(wxEVT_BOOKCTRL_PAGE_CHANGING, &VntTab::onChanging, this);
        book_->Unbind(wxEVT_BOOKCTRL_PAGE_CHANGED, &VntTab::onChanged, this);
        book_->Unbind(wxEVT_CHAR_HOOK, &VntTab::onCharHook, this);
    }
    book_ = nullptr;
    control_ = control;
    last_ = -1;
    count_ = 0;
    for (VntTabDlg*& p : pages_) p = nullptr;
    cur_ = prev_ = -1;
    veto_ = revert_ = false;
    recursion_ = 0;
    if (parent == nullptr || control == 0) return false;
    book_ = dynamic_cast<wxBookCtrlBase*>(parent->FindWindow(control));
    if (book_ == nullptr) {
        Vnt__InternalError(true, 1, kSource, __LINE__);
        Vnt_MsgBox("The TabControl could not be found in this dialog.");
        return false;
    }
    book_->Hide();
    book_->Bind(wxEVT_BOOKCTRL_PAGE_CHANGING, &VntTab::onChanging, this);
    book_->Bind(wxEVT_BOOKCTRL_PAGE_CHANGED, &VntTab::onChanged, this);
    book_->Bind(wxEVT_CHAR_HOOK, &VntTab::onCharHook, this);
    return true;
}

bool VntTab::AddItems(wxWindow* parent, int control, VNTTAB_DLGDEF* table, VntTabViewBase* view,
                      long initialDialog) {
    if (!Setup(parent, control)) return false;
    int selected = -1;
    for (VNTTAB_DLGDEF* e = table; e && e->dialog != 0; ++e) {
        const bool select = initialDialog != 0 ? e->dialog == initialDialog : e == table;
        const int before = count_;
        if (!AddItem(e->dialog, e->page, view, e->level, select)) return false;
        if (select && count_ > before) selected = count_ - 1;
    }
    Show(true, false);
    parent->TransferDataToWindow();
    if (selected < 0 && count_ > 0) selected = 0;
    if (selected >= 0) {
        ++recursion_;
        book_->ChangeSelection(static_cast<size_t>(selected));
        --recursion_;
        cur_ = selected;
        pages_[cur_]->restoreFocus();
    }
    return true;
}

bool VntTab::AddItem(long dialog, VntTabDlg* page, VntTabViewBase* view, VNT_PW_LEVEL level, bool show) {
    if (book_ == nullptr || page == nullptr) return false;
    if (Vnt__InternalError(count_ >= VNTTAB_MAX_PAGES, 2, kSource, __LINE__)) return false;
    page->Setup(view);
    if (view && &view->m_tab == this) linked_.push_back(page);
    if (!page->CreatePage(dialog, book_)) {
        Vnt_MsgBox("#Unknown error creating dialog '%d' in a tab control.", static_cast<int>(dialog));
        return false;
    }
    if (!page->DataToDlg()) {
        Vnt_MsgBox("#Could not initialize dialog data for dialog '%d' in a tab control.", static_cast<int>(dialog));
        return false;
    }
    // The user's level is always 0: such a page exists but never shows.
    constexpr VNT_PW_LEVEL kCurrentLevel = 0;
    if (level > kCurrentLevel) {
        page->Hide();
        return true;
    }
    // The notebook places the page below its tab row itself.
    ++recursion_;
    const bool added = book_->InsertPage(static_cast<size_t>(count_), page, vnt::wx::toWx(page->Caption()), false);
    --recursion_;
    if (!added) return false;
    pages_[count_] = page;
    last_ = count_;
    (void)show;  // the notebook shows the selected page itself
    ++count_;
    return true;
}

void VntTab::forget(VntTabDlg* page) {
    for (int i = 0; i < count_; ++i)
        if (pages_[i] == page) pages_[i] = nullptr;
    std::erase(linked_, page);
}

VntTabDlg* VntTab::GetPage(int index) const {
    return index >= 0 && index < count_ ? pages_[index] : nullptr;
}

VntTabDlg* VntTab::GetCurrentDlg() {
    VntTabDlg* p = GetPage(cur_);
    return p ? p : &empty_;
}

void VntTab::select(int index) {
    // The notebook's changing/changed events run the hooks.
    book_->SetSelection(static_cast<size_t>(index));
}

bool VntTab::GotoTab(int index) {
    if (book_ == nullptr || GetPage(index) == nullptr) {
        Vnt_UiWindow().Beep();
        return false;
    }
    if (index != cur_) select(index);
    return cur_ == index;
}

bool VntTab::GotoTabDlg(long dialog) {
    for (int i = 0; i < count_; ++i)
        if (pages_[i]->DialogNumber() == dialog) return GotoTab(i);
    Vnt_UiWindow().Beep();
    return false;
}

bool VntTab::GotoNextTab(int step) {
    if (count_ == 0) return false;
    if (step == 0) step = 1;
    int next = (cur_ < 0 ? 0 : cur_) + step;
    if (next < 0) next = count_ - 1;
    else if (next >= count_) next = 0;
    return GotoTab(next);
}

bool VntTab::GotoFirstChild() { return GetPage(cur_) && pages_[cur_]->GotoFirstChild(); }
bool VntTab::GotoLastChild() { return GetPage(cur_) && pages_[cur_]->GotoLastChild(); }

void VntTab::Show(bool show, bool focus) {
    if (book_ == nullptr) return;
    book_->Show(show);
    if (book_->GetParent()) book_->GetParent()->Layout();
    if (show && focus) GotoFirstChild();
}

void VntTab::OnSelChange(bool show) {
    VntTabDlg* page = GetPage(cur_);
    if (!show) {
        if (page == nullptr) return;
        if (!revert_ && recursion_ == 0 && page->OnKillFocus()) {
            veto_ = true;
            return;
        }
        page->rememberFocus();
        if (revert_) revert_ = false;
        return;
    }
    if (veto_) {
        veto_ = false;
        revert();
        return;
    }
    if (page == nullptr) return;
    if (recursion_ == 0 && page->OnSetFocus()) {
        revert();
        return;
    }
    page->restoreFocus();
}

// Back to the page before: the page just entered is left without asking it.
void VntTab::revert() {
    if (prev_ < 0 || prev_ == cur_) return;
    revert_ = true;
    OnSelChange(false);
    ++recursion_;
    book_->ChangeSelection(static_cast<size_t>(prev_));
    --recursion_;
    std::swap(cur_, prev_);
    revert_ = false;
    if (VntTabDlg* p = GetPage(cur_)) p->restoreFocus();
}

void VntTab::onChanging(wxBookCtrlEvent& e) {
    if (recursion_ > 0) return;
    OnSelChange(false);
    if (veto_) {
        // The notebook keeps the page: the veto is the revert.
        veto_ = false;
        e.Veto();
        return;
    }
    e.Skip();
}

void VntTab::onChanged(wxBookCtrlEvent& e) {
    e.Skip();
    if (recursion_ > 0) return;
    prev_ = cur_;
    cur_ = e.GetSelection();
    OnSelChange(true);
    if (auto* frame = dynamic_cast<VntTabChildFrame*>(wxGetTopLevelParent(book_))) frame->OnUpdateFrameTitle();
}

void VntTab::onCharHook(wxKeyEvent& e) {
    if (e.GetEventObject() != book_) {
        e.Skip();
        return;
    }
    const int mods = e.GetModifiers();
    switch (e.GetKeyCode()) {
        case WXK_TAB:
            if (mods == wxMOD_SHIFT) book_->Navigate(wxNavigationKeyEvent::IsBackward);
            else GotoFirstChild();
            return;
        case WXK_RETURN:
        case WXK_NUMPAD_ENTER:
        case WXK_DOWN:
            GotoFirstChild();
            return;
        case WXK_UP:
            book_->Navigate(wxNavigationKeyEvent::IsBackward);
            return;
        case WXK_LEFT:
            GotoNextTab(-1);
            return;
        case WXK_RIGHT:
            GotoNextTab(1);
            return;
        case WXK_F1:
        case WXK_SHIFT:
        case WXK_CONTROL:
            e.Skip();
            return;
        default:
            // Page keys with Ctrl and F11/F12 belong to the keyboard rules.
            if (mods == wxMOD_CONTROL || e.GetKeyCode() == WXK_F11 || e.GetKeyCode() == WXK_F12 ||
                e.GetKeyCode() == WXK_ESCAPE) {
                e.Skip();
                return;
            }
            Vnt_UiWindow().Beep();
    }
}

// ---------------------------------------------------------------------------
// The keyboard rules of the active tabbed views
// ---------------------------------------------------------------------------

namespace {

// An editable combo box stands for its edit part: the caret keys are its own.
bool comboEdit(const wxWindow* w) {
    auto* c = vnt::wx::as<wxComboBox>(w);
    return c && !c->HasFlag(wxCB_READONLY);
}

void moveFocus(wxWindow* from, bool forward) {
    from->Navigate(forward ? wxNavigationKeyEvent::IsForward : wxNavigationKeyEvent::IsBackward);
}

class TabKeys : public wxEventFilter {
public:
    int FilterEvent(wxEvent& event) override {
        if (event.GetEventType() != wxEVT_CHAR_HOOK) return Event_Skip;
        vnt::wx::TabState& s = vnt::wx::tabState();
        if (s.current == nullptr || s.current->GetCtrl() == nullptr || VntDlg::GetActiveDialog() != nullptr)
            return Event_Skip;
        auto* ctl = dynamic_cast<wxWindow*>(event.GetEventObject());
        wxWindow* top = wxGetTopLevelParent(s.current->GetCtrl());
        if (ctl == nullptr || top == nullptr || wxGetTopLevelParent(ctl) != top) return Event_Skip;
        const auto& key = static_cast<wxKeyEvent&>(event);
        return handle(key, ctl, *s.current) || VntTabViewBase::HandleCurrentBar(key) ? Event_Processed : Event_Skip;
    }

private:
    static bool handle(const wxKeyEvent& e, wxWindow* ctl, VntTab& tab) {
        const int mods = e.GetModifiers();
        const int key = e.GetKeyCode();
        if (mods == wxMOD_CONTROL && (key == WXK_PAGEUP || key == WXK_PAGEDOWN)) {
            tab.GotoNextTab(key == WXK_PAGEUP ? -1 : 1);
            return true;
        }
        if (mods != wxMOD_NONE) return false;
        const Kind k = comboEdit(ctl) ? Kind::Edit : kindOf(ctl);
        switch (key) {
            case WXK_F11:
            case WXK_F12:
                tab.GotoNextTab(key == WXK_F11 ? -1 : 1);
                return true;
            case WXK_RETURN:
            case WXK_NUMPAD_ENTER:
                if (k == Kind::Tab) return tab.GotoFirstChild() || true;
                if (k == Kind::Check || k == Kind::Radio || k == Kind::List || k == Kind::Combo || k == Kind::Edit) {
                    moveFocus(ctl, true);
                    return true;
                }
                return false;
            case WXK_LEFT:
            case WXK_RIGHT:
                if (k == Kind::Button || k == Kind::Check || k == Kind::List || k == Kind::Combo) {
                    moveFocus(ctl, key == WXK_RIGHT);
                    return true;
                }
                return false;
            case WXK_UP:
            case WXK_DOWN:
                if (vnt::wx::tabState().droppedCombo != nullptr || comboEdit(ctl)) return false;
                if (k == Kind::Button || k == Kind::Check || k == Kind::Radio || k == Kind::Edit) {
                    moveFocus(ctl, key == WXK_DOWN);
                    return true;
                }
                return false;
            default:
                return false;
        }
    }
};

}  // namespace

namespace vnt::wx {

void tabHook(bool install) {
    TabState& s = tabState();
    if (install) {
        if (s.hookCount++ > 0) return;
        s.hook = new TabKeys;
        wxEvtHandler::AddFilter(s.hook);
        tabTrace("  -> VntTabViewBase-Hook installed\n");
        return;
    }
    if (s.hookCount == 0 || --s.hookCount > 0) return;
    wxEvtHandler::RemoveFilter(s.hook);
    delete s.hook;
    s.hook = nullptr;
    tabTrace("  -> VntTabViewBase-Hook uninstalled\n");
}

}  // namespace vnt::wx
