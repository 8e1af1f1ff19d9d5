// vanto/wx/tab.h - tabbed pages in form and record views (library vantortl_wx).
//
// A view shows a record's fields on the pages of a notebook control. The
// notebook is placed in the view's form resource like any other control
// (name="<control number>"); VntTab takes it over and creates one page per
// entry of a page table. A page is a VntTabDlg made from a dialog resource
// by number (vanto/wx/res.h): the dialog's controls become the page's, its
// title the tab's caption.
//
//   static VntTabDlg general, address;
//   static VNTTAB_DLGDEF pages[] = {
//       {5101, &general, 0},
//       {5102, &address, 0},
//       {5103, &secret, 1},    // level 1: created, but never gets a tab
//       {0, nullptr, 0}};
//   m_tab.AddItems(form, 1000, pages, this, 0);   // first page selected
//
// Rules of the pages:
//   - at most 10 pages with a tab; the 11th is an internal error report
//   - the user's password level is always 0: a page that needs more is
//     created but gets no tab (deliberate)
//   - leaving a page asks its OnKillFocus, entering one its OnSetFocus; a
//     hook that answers TRUE refuses (the selection stays or goes back)
//   - a page remembers the control that had the focus and an edit
//     control's selection, and gets them back when it is shown again
//
// Keys while a tabbed view is active and no library dialog is:
//   Ctrl+PageDown, F12 next page        Ctrl+PageUp, F11 previous page
//   Enter on a check box, radio button, list box, combo box or one-line
//     edit: next control; on the notebook: into the page
//   Left/Right on a button, check box, list box, combo box: previous/next
//   Up/Down on a button, check box, radio button, one-line edit:
//     previous/next control, unless a combo box has its list dropped
// On the notebook itself: Tab, Enter, Down go into the page; Shift+Tab and
// Up to the previous control; Left/Right change the page; F1, Shift and
// Ctrl pass; any other key beeps.
// On GTK a read-only combo box takes Enter and the arrows itself (they open
// and walk its list) before the rules see them.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include <wx/docview.h>
#include <wx/panel.h>

#include "vanto/base.h"
#include "vanto/wx/ed.h"

class wxBookCtrlBase;
class wxBookCtrlEvent;
class wxComboBox;
class VntRecordset;
class VntTab;
class VntTabDlg;
class VntTabViewBase;

/// A user's password level (0: everybody).
using VNT_PW_LEVEL = long;

/// One entry of a page table; dialog 0 ends the table.
struct VNTTAB_DLGDEF {
    std::int32_t dialog;  ///< dialog resource number of the page
    VntTabDlg* page;      ///< the page object (not yet created)
    VNT_PW_LEVEL level;   ///< password level the page needs
};

/// The number of pages one VntTab holds.
inline constexpr int VNTTAB_MAX_PAGES = 10;

/// Thrown by VntTabDlg::DDX_UpdateData when the page's exchange fails, so
/// that the surrounding exchange stops (the one exception of the toolkit).
class VANTO_API VntUserException : public std::exception {
public:
    const char* what() const noexcept override { return "data exchange stopped"; }
};

/// Tool numbers of the views (menu or accelerator commands). DoTool turns
/// each into its On... operation; any other number goes to OnTool.
enum VNTTAB_TOOL : long {
    VNTTAB_TOOL_CLOSE = 33001,         ///< OnToolClose: closes the view's frame
    VNTTAB_TOOL_COPY = 33002,          ///< OnToolCopy: new record with the shown values
    VNTTAB_TOOL_DELETE = 33003,        ///< OnToolDelete
    VNTTAB_TOOL_FILTER = 33004,        ///< OnToolFilter
    VNTTAB_TOOL_FORMVIEW = 33005,      ///< OnToolFormView
    VNTTAB_TOOL_MULTIMEDIA = 33006,    ///< OnToolMultiMedia
    VNTTAB_TOOL_NEW = 33007,           ///< OnToolNew
    VNTTAB_TOOL_NEWANDCLEAN = 33008,   ///< OnToolNewAndClean: new record, empty fields
    VNTTAB_TOOL_PRINT = 33009,         ///< OnToolPrint
    VNTTAB_TOOL_PRINTPREVIEW = 33010,  ///< OnToolPrintPreview
    VNTTAB_TOOL_SAVE = 33011,          ///< OnToolSave
    VNTTAB_TOOL_SEARCH = 33012,        ///< OnToolSearch
    VNTTAB_TOOL_TEXT = 33013,          ///< OnToolText
    VNTTAB_TOOL_FIRST = 33021,         ///< record view: first record
    VNTTAB_TOOL_PREV = 33022,          ///< record view: previous record
    VNTTAB_TOOL_NEXT = 33023,          ///< record view: next record
    VNTTAB_TOOL_LAST = 33024,          ///< record view: last record
};

/// One page: a panel made from a dialog resource.
class VANTO_API VntTabDlg : public wxPanel {
public:
    VntTabDlg();
    ~VntTabDlg() override;

    /// Links the page to its view (before it is created).
    void Setup(VntTabViewBase* view);
    /// Creates the page from dialog resource `dialog` as a child of
    /// `parent`: the dialog's controls, its title as the caption (at most
    /// 39 characters) and the two invisible focus stops. False when there
    /// is no such resource (reported as internal error <dialog>).
    bool CreatePage(long dialog, wxWindow* parent);

    long DialogNumber() const { return dialog_; }
    /// The tab's caption: the dialog's title.
    const char* Caption() const { return caption_; }
    VntTabViewBase* View() const { return view_; }
    VntTab* Tab() const;

    /// Links the page into a running exchange (only with a window) so that
    /// the view's exchange covers the page; DDX_End puts the exchange's
    /// window back.
    void DDX_Begin(VntDataExchange& dx);
    void DDX_End();
    /// Exchanges the page in the running exchange's direction; throws
    /// VntUserException when the page has no window or the exchange fails
    /// (DoDataExchange false, or the exchange marked failed).
    void DDX_UpdateData(VntDataExchange& dx);
    /// Exchanges the page's controls: true controls to data.
    bool UpdateData(bool save);
    bool DataToDlg() { return UpdateData(false); }
    bool DlgToData() { return UpdateData(true); }

    /// Focus to the page's current control or a given one; with `selectPage`
    /// the page is selected first.
    bool SetFocusPage(bool selectPage = false);
    bool SetFocusPage(int control, bool selectPage = false);
    bool SetFocusPage(wxWindow* control, bool selectPage = false);
    /// Focus to the first or last control that can take it (the focus
    /// stops excluded). False when there is none.
    bool GotoFirstChild();
    bool GotoLastChild();
    /// Hides and forgets the page's window.
    void ClosePage();

    /// Called when the page is about to be shown: TRUE refuses it and the
    /// selection goes back to the previous page. Default: false.
    virtual bool OnSetFocus() { return false; }
    /// Called when the page is about to be left: TRUE refuses and the
    /// selection stays. Default: false.
    virtual bool OnKillFocus() { return false; }
    /// The page's own exchange: controls to data when
    /// `dx.m_bSaveAndValidate` (VantoEd::DDX and the like). Default: wx's
    /// validators (TransferDataFromWindow / ToWindow).
    virtual bool DoDataExchange(VntDataExchange& dx);

    /// The two invisible focus stops (windows of 10 x 10 at (-100,-100) and
    /// (-80,-80), after the page's controls): reaching the first wraps to
    /// the first control, the second to the last, so Tab and Shift+Tab go
    /// round within the page.
    wxWindow* FocusStop(int which) const { return stops_[which & 1]; }

    virtual void pub_reserved_func1() {}
    virtual void pub_reserved_func2() {}
    virtual void pub_reserved_func3() {}
    virtual void pub_reserved_func4() {}
    virtual void pub_reserved_func5() {}

protected:
    virtual void prot_reserved_func0_1() {}
    virtual void prot_reserved_func0_2() {}
    virtual void prot_reserved_func0_3() {}
    virtual void prot_reserved_func0_4() {}
    virtual void prot_reserved_func0_5() {}
    virtual void prot_reserved_func1_1() {}
    virtual void prot_reserved_func1_2() {}
    virtual void prot_reserved_func1_3() {}
    virtual void prot_reserved_func1_4() {}
    virtual void prot_reserved_func1_5() {}
    virtual void prot_reserved_func2_1() {}
    virtual void prot_reserved_func2_2() {}
    virtual void prot_reserved_func2_3() {}
    virtual void prot_reserved_func2_4() {}
    virtual void prot_reserved_func2_5() {}

private:
    friend class VntTab;
    void onFocusStop(wxFocusEvent& e);
    void onComboCommand(wxCommandEvent& e);
    void rememberFocus();
    void restoreFocus();
    bool isStop(const wxWindow* w) const { return w == stops_[0] || w == stops_[1]; }

    VntTabViewBase* view_ = nullptr;
    long dialog_ = 0;
    char caption_[40] = "";
    wxWindow* focus_ = nullptr;        // remembered focus control
    long selFrom_ = -1, selTo_ = -1;   // its selection range when an edit
    wxWindow* stops_[2] = {nullptr, nullptr};
    VntDataExchange* dx_ = nullptr;     // the exchange linked by DDX_Begin
    wxWindow* dxWindow_ = nullptr;     // its window before the link
};

/// The holder of the pages of one notebook.
class VANTO_API VntTab {
public:
    VntTab();
    ~VntTab();

    /// Forgets all pages and finds the notebook `control` in `parent`;
    /// hidden until the pages are added. Not found: internal error report
    /// and "The TabControl could not be found in this dialog.".
    bool Setup(wxWindow* parent, int control);
    /// Setup, then AddItem for each entry up to dialog 0; the page of
    /// `initialDialog` (or, with 0, the first) is selected. Shows the
    /// notebook with the focus in the page. False at the first failure.
    bool AddItems(wxWindow* parent, int control, VNTTAB_DLGDEF* table, VntTabViewBase* view, long initialDialog);
    /// Creates one page. False: no notebook, 10 pages already (internal
    /// error), no resource ("#Unknown error creating dialog '%d' in a tab
    /// control."), or its data could not be shown ("#Could not initialize
    /// dialog data for dialog '%d' in a tab control."). A page whose
    /// `level` is above 0 gets no tab (true).
    bool AddItem(long dialog, VntTabDlg* page, VntTabViewBase* view, VNT_PW_LEVEL level, bool show);

    /// Selects page `index`: a beep and false out of range or when a page
    /// refuses; the selection stays.
    bool GotoTab(int index);
    /// Selects the page of dialog `dialog`; a beep and false when none.
    bool GotoTabDlg(long dialog);
    /// Moves by `step` pages (0 counts as 1), wrapping at both ends:
    ///   first page, step -1 => last page;  last page, step 1 => first page
    bool GotoNextTab(int step);
    bool NextTab(int step) { return GotoNextTab(step); }
    bool GotoFirstChild();
    bool GotoLastChild();
    /// The current page, or an empty page object (not created) when none.
    VntTabDlg* GetCurrentDlg();
    /// Shows or hides the notebook; with both, focus into the current page.
    void Show(bool show, bool focus);
    /// Leaves (false) or enters (true) the current page, with the hooks.
    void OnSelChange(bool show);

    int GetPageCount() const { return count_; }
    int GetCurSel() const { return cur_; }
    VntTabDlg* GetPage(int index) const;
    wxBookCtrlBase* GetCtrl() const { return book_; }
    int ControlNumber() const { return control_; }

private:
    friend class VntTabDlg;
    void forget(VntTabDlg* page);  // a page object that goes away
    void onChanging(wxBookCtrlEvent& e);
    void onChanged(wxBookCtrlEvent& e);
    void onCharHook(wxKeyEvent& e);
    void select(int index);
    void revert();

    wxBookCtrlBase* book_ = nullptr;
    int control_ = 0;
    int last_ = -1;                        // index of the last page added
    int count_ = 0;
    VntTabDlg* pages_[VNTTAB_MAX_PAGES] = {};
    VntTabDlg empty_;                      // current page when none is selected
    std::vector<VntTabDlg*> linked_;       // every page set up, with a tab or not
    int cur_ = -1, prev_ = -1;
    bool veto_ = false, revert_ = false;
    int recursion_ = 0;
};

/// The tools and the save question shared by the tabbed views.
class VANTO_API VntTabViewBase {
public:
    VntTabViewBase();
    virtual ~VntTabViewBase();

    VntTab m_tab;

    virtual bool OnToolClose();
    virtual bool OnToolCopy() { return false; }
    virtual bool OnToolDelete() { return false; }
    virtual void OnToolFilter() {}
    virtual void OnToolFormView() {}
    virtual void OnToolMultiMedia() {}
    virtual bool OnToolNew() { return false; }
    virtual bool OnToolNewAndClean() { return false; }
    virtual bool OnToolPrint() { return false; }
    virtual bool OnToolPrintPreview() { return false; }
    virtual bool OnToolSave() { return true; }
    virtual void OnToolSearch() {}
    virtual void OnToolText() {}
    /// Any other tool number; false: not handled.
    virtual bool OnTool(long tool);
    /// Asks whether to save changes (message 34001) when OnCheckDirty says
    /// there are any: Cancel => false; Yes => OnToolSave(); No =>
    /// OnDiscardChanges(), true. Nothing changed => true.
    virtual bool HandleAskSaveChanges();
    virtual void OnDiscardChanges() {}
    virtual bool OnCheckDirty() { return false; }

    /// Message 34001: 1 Yes, 7 No, 2 Cancel.
    VNT_RESP AskSaveChanges();
    /// Runs the operation of a tool number (VNTTAB_TOOL_...); true when
    /// something handled it.
    bool DoTool(long tool);
    /// The tool's caption in the library language, at most size - 1
    /// characters; false for a number not in the table.
    ///   VNTTAB_TOOL_SAVE, "DEU" => "Speichern";  "ENU" => "Save"
    static bool ToolCaption(long tool, char* text, int size);
    /// No tool of the table is a toggle: always false.
    bool ToolIsChecked(long tool) const;
    /// A key for the tool bar of the active tabbed view: a key of the tool
    /// table runs its tool there (DoTool) and counts as handled; any other
    /// key, a key without Ctrl, or no active view: false. The keyboard
    /// rules of the tabbed views pass the keys they leave here.
    ///   Ctrl+S => Save   Ctrl+N => New   Ctrl+Shift+N => New and clear
    ///   Ctrl+W => Close  Ctrl+Shift+C => Copy  Ctrl+Del => Delete
    ///   Ctrl+P => Print  Ctrl+Shift+P => Print preview  Ctrl+F => Search
    ///   Ctrl+Home / Ctrl+Up / Ctrl+Down / Ctrl+End => first / previous /
    ///   next / last record.  Ctrl+C, or S without Ctrl => false
    static bool HandleCurrentBar(const wxKeyEvent& key);
    /// A tool bar click: DoTool.
    bool HandleABClick(long tool) { return DoTool(tool); }
    /// Records the combo box whose list is open (dropdown event) and clears
    /// it (closeup); the keyboard rules leave Up and Down to that list.
    static void DoComboDropDownList(wxEventType command, wxComboBox* control);
    /// The combo box whose list is dropped, or null.
    static wxComboBox* DroppedCombo();
    /// Activation: installs the keyboard rules with the first active view
    /// and removes them with the last; the view's tab holder becomes the
    /// current one.
    void OnActivate(bool active);
    /// How many views are active (the keyboard rules' reference count).
    static int ActiveViews();

    /// The view's window (the form), set by the derived view.
    wxWindow* FormWindow() const { return form_; }

protected:
    wxWindow* form_ = nullptr;

private:
    bool active_ = false;
    virtual void pubRsrvd01() {}
};

/// The frame around a tabbed view: its title is the document's name and
/// the current page's caption.
class VANTO_API VntTabChildFrame : public wxDocChildFrame {
public:
    VntTabChildFrame(wxDocument* doc, wxView* view, wxFrame* parent, const wxString& title = wxString(),
                     const wxSize& size = wxSize(640, 460));
    /// Deletes a view that is still attached (its pages may be its members).
    ~VntTabChildFrame() override;
    /// "Kunden - Adresse": the document's name, " - " and the page caption.
    void OnUpdateFrameTitle();
};

/// A form view: the form resource holds the notebook; the pages come from
/// OnInitialUpdate (AddItems). The view works in wx's document/view frame:
/// its document comes from a wxDocTemplate of the application's
/// wxDocManager, and menu commands reach the view through it. Page objects
/// may be members of the view.
class VANTO_API VntTabFormView : public wxView, public VntTabViewBase {
public:
    /// `form`: dialog resource of the form; `parent`: the frame's parent.
    explicit VntTabFormView(long form = 0, wxFrame* parent = nullptr);
    ~VntTabFormView() override;
    /// Makes the frame and the form; then OnInitialUpdate.
    bool OnCreate(wxDocument* doc, long flags) override;
    /// The save question first; Cancel keeps the view.
    bool OnClose(bool deleteWindow) override;
    void OnDraw(wxDC*) override {}
    void OnActivateView(bool activate, wxView* activeView, wxView* deactiveView) override;
    /// The pages are added here.
    virtual void OnInitialUpdate() {}
    VntTabChildFrame* Frame() const { return frame_; }

protected:
    long formResource_;
    wxFrame* parentFrame_;
    VntTabChildFrame* frame_ = nullptr;
    /// After OnInitialUpdate: the record view shows its record.
    virtual void afterInitialUpdate() {}
};

/// A record view over a record set: the record's fields on the pages.
/// The record shown is in edit state (Edit) so that changes can be written.
class VANTO_API VntTabRecView : public VntTabFormView {
public:
    explicit VntTabRecView(long form = 0, wxFrame* parent = nullptr);

    /// The record set (set before OnCreate; the view does not own it).
    VntRecordset* m_pSet = nullptr;

    /// The view's exchange between the record set's fields and the pages'
    /// controls. Default: every page's DDX_UpdateData.
    virtual void DoDataExchange(VntDataExchange& dx);
    /// Runs DoDataExchange; false when it stopped.
    bool UpdateData(bool save);
    /// Shows the current record (edit state, controls filled).
    bool ShowRecord();
    /// Moves the record set after the save question; false when the user
    /// cancelled or the move failed.
    bool MoveRecord(long tool);

    bool HandleAskSaveChanges() override;
    bool OnCheckDirty() override;
    void OnDiscardChanges() override;
    bool OnToolSave() override;
    bool OnToolCopy() override;
    bool OnToolDelete() override;
    bool OnToolNew() override;
    bool OnToolNewAndClean() override;
    bool OnToolPrint() override { return false; }
    bool OnToolPrintPreview() override { return false; }
    void OnToolFilter() override {}
    void OnToolFormView() override {}
    void OnToolMultiMedia() override {}
    void OnToolSearch() override {}
    void OnToolText() override {}

protected:
    void afterInitialUpdate() override;
    /// The controls' values as shown with the record (for OnCheckDirty).
    std::vector<std::string> snapshot() const;
    std::vector<std::string> shown_;
};
