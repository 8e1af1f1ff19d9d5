// VantoDesk: the parts of the program and what they share.
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <wx/docview.h>
#include <wx/frame.h>
#include <wx/listctrl.h>
#include <wx/stattext.h>

#include <vanto/ui/clientsel.h>
#include <vanto/vanto.h>
#include <vanto/wx/app.h>
#include <vanto/wx/menu.h>
#include <vanto/wx/res.h>
#include <vanto/wx/tab.h>
#include <vanto/wx/window.h>

namespace desk {

// Texts of VantoDesk.vtm (segment APPMSG).
enum Msg : long {
    kMsgTitle = 1000,
    kMsgCustomers = 1001,
    kMsgArticles = 1002,
    kMsgClient = 1003,
    kMsgData = 1004,
    kMsgCounts = 1005,
    kMsgOrdersOf = 1006,
    kMsgNoClient = 1007,
    kMsgColumn = 1010,  // 1010..1016: the columns of an order list
    kMsgMenu = 1100,    // 1100..1132: the menu bar
    kMsgBackupDone = 1200,
    kMsgSaveFailed = 1203,
    kMsgAbout = 1204,
    kMsgExit = 1205,
    kMsgClientBad = 1206,
    kMsgDbDetails = 1207,
};

// Menu commands.
// (above wx's own identifiers, 4999..5999)
enum Cmd : int {
    kCmdCustomers = 7001,
    kCmdArticles,
    kCmdSwitch,
    kCmdExit,
    kCmdSave = 7011,
    kCmdDiscard,
    kCmdFirst,
    kCmdPrev,
    kCmdNext,
    kCmdLast,
    kCmdCloseView,
    kCmdStat = 7021,
    kCmdBackup,
    kCmdSysMenu = 7031,
    kCmdAbout,
};

// Modules of INI\Modules.vtm on the menu.
inline constexpr long kModStat = 50;
inline constexpr long kModBackup = 51;

// Texts: the library speaks Windows-1252, wx Unicode.
wxString wxs(const std::string& cp1252);
std::string cp(const wxString& text);
/// A text of the application's library, for wx.
wxString appText(long id);
/// An amount as the library formats money (locale's decimal character).
wxString money(double value);
/// A date in the locale's form; empty for no date.
wxString dateText(const VNT_DATE& date);

/// One number from the current client's database (`sql` gives one row,
/// one column); false when the query failed.
bool queryNumber(const char* sql, double& value);

class MainFrame;

/// The record views of the program: customers and articles.
class DeskView : public VntTabRecView {
public:
    DeskView(long form, MainFrame* main, const char* table);
    ~DeskView() override;
    /// Opens the view's record set on the current client; false when the
    /// table cannot be read.
    bool OpenSet();
    /// Runs a menu command of the Edit menu.
    bool Command(int cmd);
    bool OnToolSave() override;
    VntRecordset* Set() { return set_.get(); }
    /// The record's number as shown.
    long RecordNumber() const;
    MainFrame* Main() const { return main_; }

private:
    MainFrame* main_;
    std::string table_;
    std::unique_ptr<VntRecordset> set_;
};

/// Opens the customer or the article view (or raises the one open).
DeskView* OpenCustomers(MainFrame* main);
DeskView* OpenArticles(MainFrame* main);

/// The main window: menu bar, the client's orders, the status bar.
class MainFrame : public wxDocParentFrame {
public:
    MainFrame(wxDocManager* manager);
    ~MainFrame() override;

    /// Runs the client selection until a client whose data can be read is
    /// connected; false when the user gave up (no client).
    bool SelectClient(bool atStart);
    /// Closes the record views (each asks about its changes); false when one
    /// stays open.
    bool CloseViews();
    /// Shows the current client's figures and orders.
    void Refresh();
    /// Runs a module by number; its result (0 when it could not be loaded).
    long RunModule(long module);
    /// Ends the program (the question 1205 unless `ask` is false).
    void Exit(bool ask);

    std::vector<DeskView*>& Views() { return views_; }
    DeskView* ActiveView();
    void ViewOpened(DeskView* view);
    void ViewClosed(DeskView* view);
    wxListCtrl* Orders() const { return orders_; }
    VntMenu& Menu() { return menu_; }
    /// The order count shown in the list.
    long ShownOrders() const { return shownOrders_; }
    /// What the summary line says.
    wxString Summary() const { return summary_->GetLabel(); }

private:
    void buildMenu();
    void updateMenu();
    void onMenu(wxCommandEvent& e);
    void onMessage(class VntWxMessageEvent& e);
    void onClose(wxCloseEvent& e);

    VntMenu menu_;
    VntMenu sys_;
    wxStaticText* heading_ = nullptr;
    wxStaticText* summary_ = nullptr;
    wxListCtrl* orders_ = nullptr;
    std::vector<DeskView*> views_;
    long shownOrders_ = 0;
    bool exiting_ = false;
    bool selecting_ = false;  // in SelectClient
};

/// The scripted tour (--tour <folder>): starts once the main frame is up.
/// Its lines go to standard output; the exit code is 0 when every step did
/// what it should.
void StartTour(MainFrame* main, const std::string& shotDir);
/// When the program started (for the tour's figures).
std::chrono::steady_clock::time_point StartTime();
/// 0 when every step of the tour did what it should, 1 when one failed,
/// -1 without a tour.
int TourResult();

}  // namespace desk
