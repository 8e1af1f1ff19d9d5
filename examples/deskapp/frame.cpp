// The main window of VantoDesk: the menu bar (through VntMenu), the system
// menu keys, the current client's orders and the status bar; the client
// selection and the modules.
#include <wx/menu.h>
#include <wx/panel.h>
#include <wx/sizer.h>

#include <vanto/wx/window.h>

#include "desk.h"

namespace desk {

wxString wxs(const std::string& cp1252) { return wxString::FromUTF8(Vnt_TxtToUtf8(cp1252)); }

std::string cp(const wxString& text) {
    std::string out;
    Vnt_TxtFromUtf8(std::string(text.utf8_str()), out);
    return out;
}

wxString appText(long id) { return wxs(Vnt_AppMsgLoad(id)); }

wxString money(double value) {
    std::string text;
    Vnt_MoneyToStr(text, value, true);
    return wxs(text);
}

wxString dateText(const VNT_DATE& date) {
    if (date.year == 0 || date.month == 0) return wxString();
    char buf[20];
    Vnt_SysDateToStr(date.year, date.month, date.day, &buf, true, true);
    return wxs(buf);
}

bool queryNumber(const char* sql, double& value) {
    VntRecordset rs;
    if (!Vnt_AppGetConnect(&rs) || !rs.Open(sql, VNT_RS_READONLY) || rs.IsEOF()) return false;
    value = 0;
    return rs.IsFieldNull(0) || rs.GetFieldValue(0, value);
}

namespace {

// The menu bar: titles and items by their text numbers.
struct Item { int cmd; long text; };
struct Title { long text; std::vector<Item> items; };

const std::vector<Title>& menuTable() {
    static const std::vector<Title> table = {
        {1100, {{kCmdCustomers, 1101}, {kCmdArticles, 1102}, {0, 0}, {kCmdSwitch, 1103}, {0, 0}, {kCmdExit, 1104}}},
        {1110, {{kCmdSave, 1111}, {kCmdDiscard, 1112}, {0, 0}, {kCmdFirst, 1113}, {kCmdPrev, 1114}, {kCmdNext, 1115},
                {kCmdLast, 1116}, {0, 0}, {kCmdCloseView, 1117}}},
        {1120, {{kCmdStat, 1121}, {kCmdBackup, 1122}}},
        {1130, {{kCmdSysMenu, 1131}, {0, 0}, {kCmdAbout, 1132}}},
    };
    return table;
}

constexpr int kEditCommands[] = {kCmdSave, kCmdDiscard, kCmdFirst, kCmdPrev, kCmdNext, kCmdLast, kCmdCloseView};

}  // namespace

MainFrame::MainFrame(wxDocManager* manager)
    : wxDocParentFrame(manager, nullptr, wxID_ANY, appText(kMsgTitle), wxPoint(0, 0), wxSize(960, 640)) {
    auto* panel = new wxPanel(this);
    heading_ = new wxStaticText(panel, wxID_ANY, appText(kMsgNoClient));
    heading_->SetFont(heading_->GetFont().Bold().Scaled(1.3f));
    summary_ = new wxStaticText(panel, wxID_ANY, "");
    orders_ = new wxListCtrl(panel, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxLC_REPORT | wxLC_SINGLE_SEL);
    const int widths[] = {60, 100, 250, 240, 70, 90, 90};
    for (int i = 0; i < 7; ++i)
        orders_->AppendColumn(appText(kMsgColumn + i), i == 0 || i >= 4 ? wxLIST_FORMAT_RIGHT : wxLIST_FORMAT_LEFT,
                              widths[i]);
    auto* sizer = new wxBoxSizer(wxVERTICAL);
    sizer->Add(heading_, 0, wxLEFT | wxRIGHT | wxTOP, 12);
    sizer->Add(summary_, 0, wxALL, 12);
    sizer->Add(orders_, 1, wxEXPAND | wxLEFT | wxRIGHT | wxBOTTOM, 12);
    panel->SetSizer(sizer);
    CreateStatusBar(2);
    buildMenu();
    // The system menu (GTK has none of its own) with F9 and Ctrl+F10.
    sys_.Init(this, true, VNT_MENU_MAXIMIZE | VNT_MENU_MINIMIZE);
    sys_.InstallSysKeys();
    Bind(wxEVT_MENU, &MainFrame::onMenu, this);
    Bind(VNT_EVT_MESSAGE, &MainFrame::onMessage, this);
    Bind(wxEVT_CLOSE_WINDOW, &MainFrame::onClose, this);
    Refresh();
}

MainFrame::~MainFrame() { Vnt_AppTerm(Vnt_WxHandle(this)); }

void MainFrame::buildMenu() {
    auto* bar = new wxMenuBar;
    for (const Title& t : menuTable()) {
        auto* menu = new wxMenu;
        for (const Item& i : t.items) {
            if (i.cmd == 0) menu->AppendSeparator();
            else menu->Append(i.cmd, appText(i.text));
        }
        bar->Append(menu, appText(t.text));
    }
    SetMenuBar(bar);
    menu_.Init(this);
    updateMenu();
}

// The commands of the Edit menu need a record view.
void MainFrame::updateMenu() {
    const bool view = ActiveView() != nullptr;
    for (int cmd : kEditCommands) menu_.ItemEnable(cmd, view ? 1 : 0);
    const bool client = Vnt_AppGetConnect() != nullptr;
    for (int cmd : {kCmdCustomers, kCmdArticles, kCmdStat, kCmdBackup}) menu_.ItemEnable(cmd, client ? 1 : 0);
}

DeskView* MainFrame::ActiveView() {
    if (views_.empty()) return nullptr;
    if (auto* current = dynamic_cast<DeskView*>(GetDocumentManager()->GetCurrentView()))
        for (DeskView* v : views_)
            if (v == current) return v;
    return views_.back();
}

void MainFrame::ViewOpened(DeskView* view) {
    views_.push_back(view);
    updateMenu();
}

void MainFrame::ViewClosed(DeskView* view) {
    std::erase(views_, view);
    if (!exiting_) updateMenu();
}

bool MainFrame::CloseViews() {
    while (!views_.empty()) {
        DeskView* v = views_.back();
        if (!v->Frame() || !v->Frame()->Close()) return false;
        // The frame goes with the next idle time; its view leaves the list
        // when it is deleted.
        if (!views_.empty() && views_.back() == v) views_.pop_back();
    }
    return true;
}

void MainFrame::Refresh() {
    orders_->DeleteAllItems();
    shownOrders_ = 0;
    if (Vnt_AppGetConnect() == nullptr) {
        heading_->SetLabel(appText(kMsgNoClient));
        summary_->SetLabel("");
        SetTitle(appText(kMsgTitle));
        SetStatusText(appText(kMsgNoClient), 0);
        SetStatusText("", 1);
        if (menu_.IsValid()) updateMenu();
        return;
    }
    const wxString client = wxs(Vnt_AppDSN());
    SetTitle(appText(kMsgTitle) + " - " + client);
    heading_->SetLabel(wxString::Format(appText(kMsgOrdersOf), client));
    SetStatusText(wxString::Format(appText(kMsgClient), client), 0);
    SetStatusText(wxString::Format(appText(kMsgData), wxs(Vnt_AppDataPath())), 1);
    double customers = 0, articles = 0, orders = 0;
    queryNumber("SELECT COUNT(*) FROM customer", customers);
    queryNumber("SELECT COUNT(*) FROM article", articles);
    queryNumber("SELECT COUNT(*) FROM orders", orders);
    summary_->SetLabel(wxs(Vnt_MsgHSprintf(Vnt_AppMsgGetHandle(), kMsgCounts, static_cast<long>(customers),
                                           static_cast<long>(articles), static_cast<long>(orders))));
    VntRecordset rs;
    if (Vnt_AppGetConnect(&rs) &&
        rs.Open("SELECT o.nr, o.order_date, c.name, a.name, o.quantity, o.net_amount, a.vat_percent "
                "FROM orders o JOIN customer c ON c.nr = o.customer_nr JOIN article a ON a.nr = o.article_nr "
                "ORDER BY o.order_date DESC, o.nr DESC",
                VNT_RS_READONLY)) {
        orders_->Freeze();
        for (; !rs.IsEOF(); rs.MoveNext()) {
            long nr = 0, qty = 0;
            VNT_DATE date{};
            std::string customer, article;
            double net = 0, vat = 0;
            rs.GetFieldValue(0, nr);
            rs.GetFieldValue(1, date);
            rs.GetFieldValue(2, customer);
            rs.GetFieldValue(3, article);
            rs.GetFieldValue(4, qty);
            rs.GetFieldValue(5, net);
            rs.GetFieldValue(6, vat);
            double gross = net;
            Vnt_FloatBetrag(&gross, vat, false, true);  // net to gross
            const long row = orders_->InsertItem(orders_->GetItemCount(), wxString::Format("%ld", nr));
            orders_->SetItem(row, 1, dateText(date));
            orders_->SetItem(row, 2, wxs(customer));
            orders_->SetItem(row, 3, wxs(article));
            orders_->SetItem(row, 4, wxString::Format("%ld", qty));
            orders_->SetItem(row, 5, money(net));
            orders_->SetItem(row, 6, money(gross));
            ++shownOrders_;
        }
        orders_->Thaw();
    }
    Layout();
    if (menu_.IsValid()) updateMenu();
}

bool MainFrame::SelectClient(bool atStart) {
    if (!atStart && !CloseViews()) return false;
    // At the start the user's settings decide whether the selection shows
    // (else the default client); Cancel there ends the program, as every
    // application of the family does without a client. Later the selection
    // always shows, and Cancel keeps the client there is.
    bool force = !atStart;
    // The client before: back to it when the user gives up on a client
    // whose data cannot be read.
    std::string before;
    if (Vnt_AppGetConnect() != nullptr) Vnt_AppConnSave(before);
    selecting_ = true;  // the window shows the client once it is known to be readable
    struct Done {
        bool& flag;
        ~Done() { flag = false; }
    } done{selecting_};
    for (;;) {
        if (force) Vnt_DsnSelect(nullptr, true, true);
        else Vnt_AppConnect(nullptr, true, false);
        if (Vnt_AppGetConnect() == nullptr) {
            if (!before.empty()) Vnt_AppConnRestore(before.c_str());
            break;
        }
        double n = 0;
        if (queryNumber("SELECT COUNT(*) FROM customer", n)) break;
        // A database that is there but cannot be read: said, then the
        // selection again.
        Vnt_AppMsg(kMsgClientBad, Vnt_AppDSN());
        Vnt_AppConnClose();
        force = true;
    }
    Refresh();
    return Vnt_AppGetConnect() != nullptr;
}

long MainFrame::RunModule(long module) {
    if (!Vnt_AppModLoad(module, 0, 0)) return 0;
    Refresh();
    return Vnt_AppModResult();
}

void MainFrame::Exit(bool ask) {
    if (ask && Vnt_AppMsg(kMsgExit) != VNT_RESP_OK) return;
    if (!CloseViews()) return;
    exiting_ = true;
    Destroy();
}

void MainFrame::onClose(wxCloseEvent& e) {
    if (e.CanVeto() && !exiting_) {
        e.Veto();
        CallAfter([this] { Exit(true); });
        return;
    }
    e.Skip();
}

void MainFrame::onMessage(VntWxMessageEvent& e) {
    if (e.Message() == 0x7F15) {  // the client's connection changed
        if (!selecting_) CallAfter([this] { Refresh(); });
        e.SetAnswer(0);
        return;
    }
    e.Skip();
}

void MainFrame::onMenu(wxCommandEvent& e) {
    if (sys_.DoSysMenu(e.GetId())) return;
    switch (e.GetId()) {
        case kCmdCustomers: OpenCustomers(this); return;
        case kCmdArticles: OpenArticles(this); return;
        case kCmdSwitch: SelectClient(false); return;
        case kCmdExit: Exit(true); return;
        // A module that fails has told the user why (or the loader has).
        case kCmdStat: RunModule(kModStat); return;
        case kCmdBackup:
            if (RunModule(kModBackup) != 0) {
                VNT_PATH where, dir, last;
                Vnt_LfnNameSplit(Vnt_AppDataPath(), dir, last, nullptr);
                Vnt_LfnNameMake(where, "Sicherung", last, nullptr);
                Vnt_AppMsg(kMsgBackupDone, Vnt_AppDSN(), where);
            }
            return;
        case kCmdSysMenu: PopupMenu(VntMenu::SysMenu(this), 20, 20); return;
        case kCmdAbout: {
            const VNT_APP_VER* v = Vnt_AppVerInfo();
            Vnt_AppMsg(kMsgAbout, v ? v->nMajor : 0, v ? v->nMinor : 0);
            return;
        }
        default: break;
    }
    if (e.GetId() >= kCmdSave && e.GetId() <= kCmdCloseView) {
        if (DeskView* v = ActiveView()) v->Command(e.GetId());
        return;
    }
    e.Skip();
}

}  // namespace desk
