// The tabbed views: tools, the save question, the frame, and the record
// view over a record set.
#include <cstring>

#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/combobox.h>
#include <wx/listbox.h>
#include <wx/log.h>
#include <wx/radiobut.h>
#include <wx/sizer.h>
#include <wx/textctrl.h>
#include <wx/xrc/xmlres.h>

#include "tab_state.h"
#include "vanto/db.h"
#include "vanto/msg.h"
#include "vanto/wx/tab.h"
#include "wxtext.h"

namespace {

constexpr const char* kSource = "Tab\\VntTabXView";

// The tools with their captions and keys (0: no key).
struct ToolText { long tool; const char* de; const char* en; int mods; int key; };
constexpr ToolText kTools[] = {
    {VNTTAB_TOOL_CLOSE, "Schlie\xDF" "en", "Close", wxMOD_CONTROL, 'W'},
    {VNTTAB_TOOL_COPY, "Kopieren", "Copy", wxMOD_CONTROL | wxMOD_SHIFT, 'C'},
    {VNTTAB_TOOL_DELETE, "L\xF6schen", "Delete", wxMOD_CONTROL, WXK_DELETE},
    {VNTTAB_TOOL_FILTER, "Filter", "Filter", 0, 0},
    {VNTTAB_TOOL_FORMVIEW, "Formularansicht", "Form view", 0, 0},
    {VNTTAB_TOOL_MULTIMEDIA, "Multimedia", "Multimedia", 0, 0},
    {VNTTAB_TOOL_NEW, "Neu", "New", wxMOD_CONTROL, 'N'},
    {VNTTAB_TOOL_NEWANDCLEAN, "Neu und leeren", "New and clear", wxMOD_CONTROL | wxMOD_SHIFT, 'N'},
    {VNTTAB_TOOL_PRINT, "Drucken", "Print", wxMOD_CONTROL, 'P'},
    {VNTTAB_TOOL_PRINTPREVIEW, "Seitenansicht", "Print preview", wxMOD_CONTROL | wxMOD_SHIFT, 'P'},
    {VNTTAB_TOOL_SAVE, "Speichern", "Save", wxMOD_CONTROL, 'S'},
    {VNTTAB_TOOL_SEARCH, "Suchen", "Search", wxMOD_CONTROL, 'F'},
    {VNTTAB_TOOL_TEXT, "Text", "Text", 0, 0},
    {VNTTAB_TOOL_FIRST, "Erster Datensatz", "First record", wxMOD_CONTROL, WXK_HOME},
    {VNTTAB_TOOL_PREV, "Vorheriger Datensatz", "Previous record", wxMOD_CONTROL, WXK_UP},
    {VNTTAB_TOOL_NEXT, "N\xE4" "chster Datensatz", "Next record", wxMOD_CONTROL, WXK_DOWN},
    {VNTTAB_TOOL_LAST, "Letzter Datensatz", "Last record", wxMOD_CONTROL, WXK_END},
};

// What a control shows, as text, for telling whether the user changed it.
void collect(const wxWindow* w, const VntTabDlg* page, std::vector<std::string>& out) {
    for (const wxWindow* c : w->GetChildren()) {
        if (page && (c == page->FocusStop(0) || c == page->FocusStop(1))) continue;
        if (auto* cb = vnt::wx::as<wxComboBox>(c)) out.push_back(std::string(cb->GetValue().utf8_str()));
        else if (auto* t = vnt::wx::as<wxTextCtrl>(c)) out.push_back(std::string(t->GetValue().utf8_str()));
        else if (auto* x = vnt::wx::as<wxCheckBox>(c)) out.push_back(std::to_string(x->Get3StateValue()));
        else if (auto* r = vnt::wx::as<wxRadioButton>(c)) out.push_back(r->GetValue() ? "1" : "0");
        else if (auto* ch = vnt::wx::as<wxChoice>(c)) out.push_back(std::to_string(ch->GetSelection()));
        else if (auto* l = vnt::wx::as<wxListBox>(c)) {
            wxArrayInt sel;
            l->GetSelections(sel);
            std::string s;
            for (int i : sel) s += std::to_string(i) + ",";
            out.push_back(s);
        } else {
            collect(c, page, out);
        }
    }
}

}  // namespace

// ---------------------------------------------------------------------------
// VntTabViewBase
// ---------------------------------------------------------------------------

VntTabViewBase::VntTabViewBase() = default;

VntTabViewBase::~VntTabViewBase() { OnActivate(false); }

bool VntTabViewBase::OnToolClose() {
    wxWindow* top = form_ ? wxGetTopLevelParent(form_) : nullptr;
    return top && top->Close();
}

bool VntTabViewBase::OnTool(long) { return false; }

VNT_RESP VntTabViewBase::AskSaveChanges() { return Vnt_MsgSys(34001); }

bool VntTabViewBase::HandleAskSaveChanges() {
    if (!OnCheckDirty()) return true;
    const VNT_RESP r = AskSaveChanges();
    if (r == VNT_RESP_CANCEL) return false;
    if (r == VNT_RESP_OK) return OnToolSave();
    OnDiscardChanges();
    return true;
}

bool VntTabViewBase::DoTool(long tool) {
    switch (tool) {
        case VNTTAB_TOOL_CLOSE: return OnToolClose();
        case VNTTAB_TOOL_COPY: return OnToolCopy();
        case VNTTAB_TOOL_DELETE: return OnToolDelete();
        case VNTTAB_TOOL_FILTER: OnToolFilter(); return true;
        case VNTTAB_TOOL_FORMVIEW: OnToolFormView(); return true;
        case VNTTAB_TOOL_MULTIMEDIA: OnToolMultiMedia(); return true;
        case VNTTAB_TOOL_NEW: return OnToolNew();
        case VNTTAB_TOOL_NEWANDCLEAN: return OnToolNewAndClean();
        case VNTTAB_TOOL_PRINT: return OnToolPrint();
        case VNTTAB_TOOL_PRINTPREVIEW: return OnToolPrintPreview();
        case VNTTAB_TOOL_SAVE: return OnToolSave();
        case VNTTAB_TOOL_SEARCH: OnToolSearch(); return true;
        case VNTTAB_TOOL_TEXT: OnToolText(); return true;
        case VNTTAB_TOOL_FIRST:
        case VNTTAB_TOOL_PREV:
        case VNTTAB_TOOL_NEXT:
        case VNTTAB_TOOL_LAST:
            if (auto* rv = dynamic_cast<VntTabRecView*>(this)) return rv->MoveRecord(tool);
            return OnTool(tool);
        default: return OnTool(tool);
    }
}

bool VntTabViewBase::ToolCaption(long tool, char* text, int size) {
    if (text == nullptr || size <= 0) return false;
    const bool english = std::strcmp(Vnt_ResLanguage(), "ENU") == 0;
    for (const ToolText& t : kTools)
        if (t.tool == tool) {
            Vnt_StrCopy(text, static_cast<std::size_t>(size), english ? t.en : t.de);
            return true;
        }
    text[0] = '\0';
    return false;
}

bool VntTabViewBase::ToolIsChecked(long) const { return false; }

bool VntTabViewBase::HandleCurrentBar(const wxKeyEvent& key) {
    VntTabViewBase* view = vnt::wx::tabState().currentView;
    if (view == nullptr || key.GetModifiers() == wxMOD_NONE) return false;
    const int code = key.GetKeyCode() >= 'a' && key.GetKeyCode() <= 'z' ? key.GetKeyCode() - 32 : key.GetKeyCode();
    for (const ToolText& t : kTools)
        if (t.key != 0 && t.key == code && t.mods == key.GetModifiers()) {
            view->DoTool(t.tool);
            return true;
        }
    return false;
}

void VntTabViewBase::DoComboDropDownList(wxEventType command, wxComboBox* control) {
    vnt::wx::TabState& s = vnt::wx::tabState();
    if (command == wxEVT_COMBOBOX_DROPDOWN) s.droppedCombo = control;
    else if (command == wxEVT_COMBOBOX_CLOSEUP) s.droppedCombo = nullptr;
}

wxComboBox* VntTabViewBase::DroppedCombo() { return vnt::wx::tabState().droppedCombo; }

void VntTabViewBase::OnActivate(bool active) {
    vnt::wx::TabState& s = vnt::wx::tabState();
    if (active) {
        s.current = &m_tab;
        s.currentView = this;
        if (active_) return;
        active_ = true;
        vnt::wx::tabHook(true);
        return;
    }
    if (s.current == &m_tab) s.current = nullptr;
    if (s.currentView == this) s.currentView = nullptr;
    if (!active_) return;
    active_ = false;
    vnt::wx::tabHook(false);
}

int VntTabViewBase::ActiveViews() { return vnt::wx::tabState().hookCount; }

// ---------------------------------------------------------------------------
// VntTabChildFrame
// ---------------------------------------------------------------------------

VntTabChildFrame::VntTabChildFrame(wxDocument* doc, wxView* view, wxFrame* parent, const wxString& title,
                                   const wxSize& size)
    : wxDocChildFrame(doc, view, parent, wxID_ANY, title, wxDefaultPosition, size) {}

VntTabChildFrame::~VntTabChildFrame() {
    if (wxView* view = GetView()) {
        SetView(nullptr);
        view->SetDocChildFrame(nullptr);
        delete view;
    }
}

void VntTabChildFrame::OnUpdateFrameTitle() {
    wxString title = GetDocument() ? GetDocument()->GetUserReadableName() : GetTitle();
    if (auto* base = dynamic_cast<VntTabViewBase*>(GetView())) {
        VntTabDlg* page = base->m_tab.GetCurrentDlg();
        if (page && page->Caption()[0]) title += " - " + vnt::wx::toWx(page->Caption());
    }
    SetTitle(title);
}

// ---------------------------------------------------------------------------
// VntTabFormView
// ---------------------------------------------------------------------------

VntTabFormView::VntTabFormView(long form, wxFrame* parent) : formResource_(form), parentFrame_(parent) {
    // Menu and accelerator commands reach the view through its frame.
    Bind(wxEVT_MENU, [this](wxCommandEvent& e) {
        if (e.GetId() != 0 && DoTool(e.GetId())) return;
        e.Skip();
    });
}

VntTabFormView::~VntTabFormView() { OnActivate(false); }

bool VntTabFormView::OnCreate(wxDocument* doc, long) {
    frame_ = new VntTabChildFrame(doc, this, parentFrame_);
    SetFrame(frame_);
    auto* form = new wxPanel;
    wxString title;
    const wxString name = vnt::wx::pageResource(formResource_, title);
    if (Vnt__InternalError(name.empty(), static_cast<int>(formResource_), "Wx/VntRes", __LINE__)) {
        delete form;
        return false;
    }
    {
        wxLogNull quiet;
        if (!wxXmlResource::Get()->LoadPanel(form, frame_, name)) {
            delete form;
            return false;
        }
    }
    form_ = form;
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(form, 1, wxEXPAND);
    frame_->SetSizer(sizer);
    OnInitialUpdate();
    afterInitialUpdate();
    frame_->OnUpdateFrameTitle();
    frame_->Show();
    Activate(true);
    OnActivate(true);
    return true;
}

void VntTabFormView::OnActivateView(bool activate, wxView*, wxView*) { OnActivate(activate); }

bool VntTabFormView::OnClose(bool deleteWindow) {
    if (!HandleAskSaveChanges()) return false;
    OnActivate(false);
    return wxView::OnClose(deleteWindow);
}

// ---------------------------------------------------------------------------
// VntTabRecView
// ---------------------------------------------------------------------------

VntTabRecView::VntTabRecView(long form, wxFrame* parent) : VntTabFormView(form, parent) {}

void VntTabRecView::DoDataExchange(VntDataExchange& dx) {
    for (int i = 0; i < m_tab.GetPageCount(); ++i) m_tab.GetPage(i)->DDX_UpdateData(dx);
}

bool VntTabRecView::UpdateData(bool save) {
    VntDataExchange dx(form_, save);
    try {
        DoDataExchange(dx);
    } catch (const VntUserException&) {
        return false;
    }
    return !dx.Failed();
}

std::vector<std::string> VntTabRecView::snapshot() const {
    std::vector<std::string> out;
    for (int i = 0; i < m_tab.GetPageCount(); ++i) collect(m_tab.GetPage(i), m_tab.GetPage(i), out);
    return out;
}

bool VntTabRecView::ShowRecord() {
    if (m_pSet == nullptr || !m_pSet->IsOpen()) return false;
    if (m_pSet->GetEditMode() == VntEditMode::None && !m_pSet->IsEOF() && !m_pSet->IsDeleted()) m_pSet->Edit();
    const bool ok = UpdateData(false);
    shown_ = snapshot();
    return ok;
}

void VntTabRecView::afterInitialUpdate() { ShowRecord(); }

bool VntTabRecView::HandleAskSaveChanges() {
    if (m_pSet == nullptr || !m_pSet->IsOpen()) return true;
    if (m_pSet->IsEOF() && m_pSet->IsBOF()) return true;  // nothing to change
    // A record set that cannot take changes has nothing to save.
    if (Vnt__InternalError(!m_pSet->CanUpdate(), 1, kSource, __LINE__)) return false;
    if (m_pSet->IsDeleted())
        return Vnt_MsgBox("!ynInternal Error: record was deleted but then changed - Continue saving?") ==
               VNT_RESP_OK;
    return VntTabViewBase::HandleAskSaveChanges();
}

bool VntTabRecView::OnCheckDirty() { return snapshot() != shown_; }

void VntTabRecView::OnDiscardChanges() {
    if (m_pSet == nullptr) return;
    m_pSet->CancelUpdate();
    ShowRecord();
}

bool VntTabRecView::OnToolSave() {
    if (m_pSet == nullptr || !m_pSet->IsOpen()) return false;
    if (!UpdateData(true)) return false;
    if (!m_pSet->Update()) return false;
    return ShowRecord();
}

bool VntTabRecView::MoveRecord(long tool) {
    if (m_pSet == nullptr || !m_pSet->IsOpen() || !HandleAskSaveChanges()) return false;
    if (m_pSet->GetEditMode() != VntEditMode::None) m_pSet->CancelUpdate();
    bool ok = false;
    switch (tool) {
        case VNTTAB_TOOL_FIRST: ok = m_pSet->MoveFirst(); break;
        case VNTTAB_TOOL_LAST: ok = m_pSet->MoveLast(); break;
        case VNTTAB_TOOL_NEXT:
            ok = m_pSet->MoveNext();
            if (m_pSet->IsEOF()) ok = m_pSet->MoveLast() && false;
            break;
        case VNTTAB_TOOL_PREV:
            ok = m_pSet->MovePrev();
            if (m_pSet->IsBOF()) ok = m_pSet->MoveFirst() && false;
            break;
        default: return false;
    }
    ShowRecord();
    return ok;
}

bool VntTabRecView::OnToolNew() {
    if (m_pSet == nullptr || !m_pSet->IsOpen() || !HandleAskSaveChanges()) return false;
    if (m_pSet->GetEditMode() != VntEditMode::None) m_pSet->CancelUpdate();
    if (!m_pSet->AddNew()) return false;
    const bool ok = UpdateData(false);
    shown_ = snapshot();
    return ok;
}

// A new record whose fields are empty, also those the exchange does not fill.
bool VntTabRecView::OnToolNewAndClean() {
    if (!OnToolNew()) return false;
    for (int i = 0; i < m_tab.GetPageCount(); ++i) {
        VntTabDlg* page = m_tab.GetPage(i);
        std::vector<wxWindow*> stack(page->GetChildren().begin(), page->GetChildren().end());
        while (!stack.empty()) {
            wxWindow* c = stack.back();
            stack.pop_back();
            if (c == page->FocusStop(0) || c == page->FocusStop(1)) continue;
            if (auto* cb = vnt::wx::as<wxComboBox>(c)) cb->SetValue("");
            else if (auto* t = vnt::wx::as<wxTextCtrl>(c)) t->ChangeValue("");
            else if (auto* x = vnt::wx::as<wxCheckBox>(c)) x->SetValue(false);
            else stack.insert(stack.end(), c->GetChildren().begin(), c->GetChildren().end());
        }
    }
    shown_ = snapshot();
    return true;
}

// A new record with the values shown: saved by the next save.
bool VntTabRecView::OnToolCopy() {
    if (m_pSet == nullptr || !m_pSet->IsOpen() || !HandleAskSaveChanges()) return false;
    if (m_pSet->GetEditMode() != VntEditMode::None) m_pSet->CancelUpdate();
    if (!m_pSet->AddNew()) return false;
    shown_.clear();  // differs from anything shown: the copy counts as changed
    return true;
}

bool VntTabRecView::OnToolDelete() {
    if (m_pSet == nullptr || !m_pSet->IsOpen() || m_pSet->IsEOF()) return false;
    if (m_pSet->GetEditMode() != VntEditMode::None) m_pSet->CancelUpdate();
    if (!m_pSet->Delete()) return false;
    if (!m_pSet->MoveNext() || m_pSet->IsEOF()) m_pSet->MoveLast();
    ShowRecord();
    return true;
}
