// vanto/wx/dlg.h - the dialog base classes VntDlg and VntAppDlg.
//
// VntDlg is the base of the applications' dialogs: it is created from a
// dialog resource by number (vanto/wx/res.h), remembers where the user last
// put it in a position record the caller owns, shows the dialog's icon,
// opens the application's help with the dialog's help number (F1, or the
// push button with ID 9), and tells the toolkit which library dialog is
// active. VntAppDlg is the variant for an application whose main window is
// a dialog: it registers the dialog as the application's window
// (Vnt_AppInit) when it is initialised and unregisters it (Vnt_AppTerm)
// when it is destroyed.
//
//   static VNTDLG_DLGINFO where;          // kept while the program runs
//   VntDlg dlg(4711, parent, 0, 120, &where);
//   if (dlg.IsOk()) dlg.ShowModal();     // opens where it was last moved to
//
// A resource number with no resource is reported (vanto/wx/res.h); the
// dialog is then not created: IsOk() is false and ShowModal answers
// wxID_CANCEL without showing anything.
#pragma once

#include <cstdint>

#include <wx/dialog.h>

#include "vanto/base.h"

/// Where a dialog was last: x, y and an initialised mark. x == 0x80000000
/// means no position yet (the dialog opens where the window system puts it).
struct VNTDLG_DLGINFO {
    std::int32_t x;
    std::int32_t y;
    std::int32_t reserved;     ///< not used; kept for the record's layout
    std::int32_t initialised;  ///< non-zero once x and y were set up
};
static_assert(sizeof(VNTDLG_DLGINFO) == 16);

/// x of a record without a position.
inline constexpr std::int32_t VNTDLG_NOPOS = INT32_MIN;

class VANTO_API VntDlg : public wxDialog {
public:
    /// Creates the dialog from resource `resourceNumber` with `parent`.
    /// `icon`: an icon resource number (0: none; the library's own icons
    /// 30061..30064 are known). `helpNumber`: the dialog's help context
    /// (0: the help index). `info`: the position record (null: one of the
    /// dialog's own); a record not yet initialised is marked initialised
    /// with no position. `flag` is kept and not used by the library.
    /// The object and operation-table sizes the caller was built with are
    /// compared with the library's ("!'VntDlg' size is %d - should be
    /// %d.\n"; a diagnostic only).
    VntDlg(long resourceNumber, wxWindow* parent, long icon = 0, long helpNumber = 0,
           VNTDLG_DLGINFO* info = nullptr, long flag = 0)
        : VntDlg(static_cast<int>(sizeof(VntDlg)), kProcTableSize, resourceNumber, parent, icon, helpNumber,
                 info, flag) {}
    ~VntDlg() override;

    /// The library dialog that is active now, or null.
    static VntDlg* GetActiveDialog();

    /// True when the dialog was created from its resource.
    bool IsOk() const { return created_; }
    long ResourceNumber() const { return resource_; }
    long HelpNumber() const { return help_; }
    long Flag() const { return flag_; }
    /// The position record in use (the caller's, or the dialog's own).
    VNTDLG_DLGINFO& Info() { return *info_; }
    /// True from construction until the dialog was initialised.
    bool IsInitialising() const { return initialising_; }

    /// Shows the dialog modally; wxID_CANCEL at once when it was not created.
    int ShowModal() override;
    bool Show(bool show = true) override;

    /// Opens the application's help for this dialog: its help number as the
    /// context, or the help index without one. False when the help could
    /// not be opened.
    virtual bool OnHelpRequest();

    /// Operations of the table, as this header declares them (for the
    /// caller's size check).
    static constexpr int kProcTableSize = 3;

protected:
    /// Called once when the dialog is initialised (shown the first time),
    /// after the position was applied and the icon set; the initialising
    /// mark is cleared afterwards. Returns what wx's TransferDataToWindow
    /// gave.
    virtual bool OnInitDialog();
    /// For VntAppDlg: the sizes are checked by the derived class.
    VntDlg(int objectSize, int procTableSize, long resourceNumber, wxWindow* parent, long icon, long helpNumber,
           VNTDLG_DLGINFO* info, long flag, bool checkSizes = true);

private:
    virtual void privRsrvd01() {}
    void onInit(wxInitDialogEvent& e);
    void onMove(wxMoveEvent& e);
    void onSize(wxSizeEvent& e);
    void onActivate(wxActivateEvent& e);
    void onCharHook(wxKeyEvent& e);
    void onHelp(wxHelpEvent& e);
    void onButton(wxCommandEvent& e);
    void onDestroy(wxWindowDestroyEvent& e);
    void remember();

    long resource_ = 0;         // the dialog resource number
    long help_ = 0;             // help context, 0 = the index
    long flag_ = 0;             // the construction flag (not used)
    VNTDLG_DLGINFO own_{};      // the record used when the caller gives none
    VNTDLG_DLGINFO* info_ = nullptr;
    bool created_ = false;      // loaded from the resource
    bool initialising_ = true;  // until OnInitDialog ran
};

/// A dialog that is the application's main window.
class VANTO_API VntAppDlg : public VntDlg {
public:
    /// `appValue` is the module number given to Vnt_AppInit; the other
    /// arguments are VntDlg's. The sizes are compared with the library's
    /// ("!'VntAppDlg' size is %d - should be %d.\n").
    VntAppDlg(long appValue, long resourceNumber, wxWindow* parent, long icon = 0, long helpNumber = 0,
              VNTDLG_DLGINFO* info = nullptr, long flag = 0)
        : VntAppDlg(static_cast<int>(sizeof(VntAppDlg)), kAppProcTableSize, appValue, resourceNumber, parent,
                    icon, helpNumber, info, flag) {}

    ~VntAppDlg() override;

    long AppValue() const { return appValue_; }
    /// Ends the application's registration (Vnt_AppTerm), then destroys.
    bool Destroy() override;

    static constexpr int kAppProcTableSize = kProcTableSize + 1;

protected:
    /// Registers the window (Vnt_AppInit with the application value), then
    /// runs VntDlg's initialisation.
    bool OnInitDialog() override;

private:
    VntAppDlg(int objectSize, int procTableSize, long appValue, long resourceNumber, wxWindow* parent, long icon,
              long helpNumber, VNTDLG_DLGINFO* info, long flag);
    virtual void privRsrvd02() {}
    long appValue_ = 0;
    bool registered_ = false;
};
