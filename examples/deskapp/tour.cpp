// The scripted tour of VantoDesk (--tour <folder>): what a user does in a
// first session, step by step, through the program's own windows. Each
// step leaves a picture of the screen and one line on standard output:
//
//   tour 03 ok   | opened the customers | shows Schulze & Partner KG as stored | 03-customers.png
//
// Dialogs are answered as a user would: a timer looks for the modal dialog
// on top and hands it to the step that expects it; a dialog nobody expects
// fails the step (its text is printed) and is closed.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <thread>

#include <wx/button.h>
#include <wx/checkbox.h>
#include <wx/dialog.h>
#include <wx/gauge.h>
#include <wx/listbox.h>
#include <wx/menu.h>
#include <wx/notebook.h>
#include <wx/timer.h>
#include <wx/uiaction.h>

#include <vanto/wx/ed.h>

#include "desk.h"

namespace fs = std::filesystem;

namespace desk {
namespace {

using Clock = std::chrono::steady_clock;

// Lets the windows work for `ms` milliseconds (or until `done`).
bool pump(int ms, const std::function<bool()>& done = nullptr) {
    const auto end = Clock::now() + std::chrono::milliseconds(ms);
    while (Clock::now() < end) {
        wxTheApp->ProcessPendingEvents();
        wxTheApp->Yield(true);
        if (done && done()) return true;
        wxMilliSleep(10);
    }
    return done ? done() : true;
}

wxDialog* modalOnTop() {
    wxDialog* top = nullptr;
    for (wxWindow* w : wxTopLevelWindows)
        if (auto* d = dynamic_cast<wxDialog*>(w); d && d->IsShown() && d->IsModal()) top = d;
    return top;
}

// The texts a dialog shows (labels of its static texts), one line.
std::string dialogText(wxWindow* w) {
    std::string out;
    for (wxWindow* c : w->GetChildren()) {
        if (auto* t = dynamic_cast<wxStaticText*>(c); t && t->IsShown() && !t->GetLabel().empty())
            out += (out.empty() ? "" : " ") + std::string(t->GetLabel().utf8_str());
        else if (!dynamic_cast<wxDialog*>(c)) {
            const std::string inner = dialogText(c);
            if (!inner.empty()) out += (out.empty() ? "" : " ") + inner;
        }
    }
    return out;
}

bool shownButton(wxWindow* dlg, int id) {
    wxWindow* w = dlg->FindWindow(id);
    return w && w->IsShown();
}

// A message box with Yes.
bool isQuestion(wxDialog* d) { return shownButton(d, 6); }

void press(wxWindow* dlg, int id) {
    wxWindow* b = dlg->FindWindow(id);
    wxCommandEvent e(wxEVT_BUTTON, id);
    e.SetEventObject(b ? b : dlg);
    (b ? b : dlg)->GetEventHandler()->ProcessEvent(e);
}

void command(wxWindow* w, int id) {
    wxCommandEvent e(wxEVT_MENU, id);
    e.SetEventObject(w);
    w->GetEventHandler()->ProcessEvent(e);
}

std::string utf8(const wxString& s) { return std::string(s.utf8_str()); }

// One row and column of the current client's database, as text.
std::string queryText(const std::string& sql) {
    VntRecordset rs;
    std::string v;
    if (!Vnt_AppGetConnect(&rs) || !rs.Open(sql.c_str(), VNT_RS_READONLY) || rs.IsEOF()) return "?";
    if (rs.IsFieldNull(0)) return "";
    rs.GetFieldValue(0, v);
    return Vnt_TxtToUtf8(v);
}

// A number in the locale's form ("1.234,56"), as the lists show them.
bool parseNumber(const wxString& text, double& value) {
    std::string s = cp(text), clean;
    const char dec = Vnt_SysInfo(VNT_SI_GET).cDecimal;
    for (char c : s)
        if ((c >= '0' && c <= '9') || c == '-') clean += c;
        else if (c == dec) clean += '.';
    if (clean.empty() || clean == "-") return false;
    char* end = nullptr;
    value = std::strtod(clean.c_str(), &end);
    return end && *end == '\0';
}

class Tour : public wxEvtHandler, public wxEventFilter {
public:
    Tour(MainFrame* main, std::string dir) : main_(main), dir_(std::move(dir)) {
        fs::create_directories(fs::u8path(dir_));
        english_ = std::string(Vnt_ResLanguage()) == "ENU";
        timer_.SetOwner(this);
        Bind(wxEVT_TIMER, [this](wxTimerEvent&) { watch(); });
        timer_.Start(80);
        wxEvtHandler::AddFilter(this);
    }
    ~Tour() override { wxEvtHandler::RemoveFilter(this); }

    void Run();
    int Result() const { return failed_ == 0 ? 0 : 1; }

    // The progress window of a long operation: noticed when it is shown.
    int FilterEvent(wxEvent& e) override {
        // A dialog that goes may come back at the same address.
        if (e.GetEventType() == wxEVT_DESTROY ||
            (e.GetEventType() == wxEVT_SHOW && !static_cast<wxShowEvent&>(e).IsShown()))
            if (auto* d = dynamic_cast<wxDialog*>(e.GetEventObject())) {
                seen_.erase(d);
                if (d == progress_) progress_ = nullptr;
            }
        if (e.GetEventType() == wxEVT_SHOW) {
            auto* d = dynamic_cast<wxDialog*>(e.GetEventObject());
            if (d && !d->IsModal() && d->FindWindow(1000) && dynamic_cast<wxGauge*>(d->FindWindow(1000)) &&
                static_cast<wxShowEvent&>(e).IsShown())
                progress_ = d, progressSeen_ = true;
        }
        return Event_Skip;
    }

private:
    using Handler = std::function<void(wxDialog*)>;
    using Match = std::function<bool(wxDialog*)>;
    struct Expected {
        std::string what;
        Match match;
        Handler act;
    };

    // The steps: each returns whether it did what it should and says what
    // it checked.
    void step(const char* what, const std::function<bool(std::string&)>& body, const char* shotName);
    void expect(const char* what, Match m, Handler h) { handlers_.push_back({what, std::move(m), std::move(h)}); }
    void watch();
    std::string shot(const std::string& name);
    bool typeInto(VantoEd* ed, const wxString& text);

    bool selectClient(const char* name, bool picture);
    bool mainShows(const char* client, std::string& checked);
    bool statistics(std::string& checked);
    bool backup(std::string& checked);

    MainFrame* main_;
    std::string dir_;
    bool english_ = false;
    wxTimer timer_;
    std::deque<Expected> handlers_;
    std::set<wxDialog*> seen_;
    std::string unexpected_;       // dialogs nobody expected in this step
    std::string dialogShot_;       // picture taken in a dialog's handler
    int number_ = 0, failed_ = 0;
    bool inHandler_ = false;
    wxDialog* progress_ = nullptr;  // the progress window while it is shown
    bool progressSeen_ = false;
    std::string progressShot_;
    Clock::time_point stepStart_ = Clock::now();
    long selectionShown_ = -1, viewOpened_ = -1;  // figures: milliseconds
    static long ms(Clock::time_point since) {
        return static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - since).count());
    }
    DeskView* view_ = nullptr;
    long customer_ = 0;
};

std::string Tour::shot(const std::string& name) {
    char file[80];
    std::snprintf(file, sizeof file, "%02d-%s.png", number_, name.c_str());
    const std::string path = (fs::u8path(dir_) / file).string();
    // The screen as the user sees it, taken from the display by
    // ImageMagick's "import" (the window system's own picture: menus,
    // frames and dialogs as they overlap), cut to the windows shown.
    wxRect area;
    for (wxWindow* w : wxTopLevelWindows)
        if (w->IsShown()) area.Union(w->GetScreenRect());
    area.Intersect(wxRect(wxPoint(0, 0), wxGetDisplaySize()));
    if (area.IsEmpty()) area = wxRect(wxPoint(0, 0), wxGetDisplaySize());
    for (wxWindow* w : wxTopLevelWindows)
        if (w->IsShown()) w->Update();
    wxTheApp->Yield(true);
    std::string quoted = "'";
    for (char c : path) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    quoted += "'";
    const std::string cmd = "import -window root -crop " + std::to_string(area.GetWidth()) + "x" +
                            std::to_string(area.GetHeight()) + "+" + std::to_string(area.GetX()) + "+" +
                            std::to_string(area.GetY()) + " +repage " + quoted + " 2>/dev/null";
    if (std::system(cmd.c_str()) != 0) std::printf("tour    ...  | the picture %s could not be taken\n", file);
    return file;
}

void Tour::watch() {
    if (progress_ && progress_->IsShown() && progressShot_.empty()) {
        // The copy waits while this runs: give the window system the time
        // to put the dialog on the screen before the picture is taken.
        for (int i = 0; i < 10; ++i) {
            progress_->Update();
            wxTheApp->Yield(true);
            wxMilliSleep(20);
        }
        progressShot_ = shot("progress");
    }
    if (inHandler_) return;
    wxDialog* d = modalOnTop();
    if (!d || seen_.count(d)) return;
    seen_.insert(d);
    if (selectionShown_ < 0 && dynamic_cast<wxListBox*>(d->FindWindow(1000))) selectionShown_ = ms(StartTime());
    inHandler_ = true;
    if (handlers_.empty() || !handlers_.front().match(d)) {
        const std::string text = dialogText(d);
        unexpected_ += (unexpected_.empty() ? "" : "; ") + std::string("unexpected window \"") + text + "\"";
        std::printf("tour    ...  | a window nobody expected: %s\n", text.c_str());
        dialogShot_ = shot("unexpected");
        CallAfter([this, d] {
            inHandler_ = false;
            // The answer that changes least: Cancel, No, else OK.
            for (int id : {int(wxID_CANCEL), 2, 7, 1, int(wxID_OK)})
                if (wxWindow* b = d->FindWindow(id); b && b->IsShown()) {
                    press(d, id);
                    return;
                }
            d->EndModal(wxID_CANCEL);
        });
        return;
    }
    Handler h = std::move(handlers_.front().act);
    handlers_.pop_front();
    CallAfter([this, d, h] {
        pump(150);  // drawn before its picture
        inHandler_ = false;
        h(d);
    });
}

void Tour::step(const char* what, const std::function<bool(std::string&)>& body, const char* shotName) {
    ++number_;
    stepStart_ = Clock::now();
    unexpected_.clear();
    dialogShot_.clear();
    std::string checked;
    bool ok = body(checked);
    pump(200);
    if (!handlers_.empty()) {
        ok = false;
        checked += std::string(checked.empty() ? "" : "; ") + "the window \"" + handlers_.front().what +
                   "\" did not come";
        handlers_.clear();
    }
    if (!unexpected_.empty()) {
        ok = false;
        checked += (checked.empty() ? "" : "; ") + unexpected_;
    }
    const std::string file = dialogShot_.empty() ? shot(shotName) : dialogShot_;
    if (!ok) ++failed_;
    std::printf("tour %02d %-4s | %s | %s | %s\n", number_, ok ? "ok" : "FAIL", what, checked.c_str(), file.c_str());
}

bool Tour::typeInto(VantoEd* ed, const wxString& text) {
    if (!ed) return false;
    ed->SetFocus();
    pump(100, [ed] { return wxWindow::FindFocus() == ed; });
    ed->SelectAll();
    wxUIActionSimulator().Text(text.utf8_str());
    // What the user typed arrives through the keyboard filter of the field.
    if (pump(2000, [&] { return ed->GetValue() == text; })) return true;
    std::printf("tour    ...  | typing into field %d gave \"%s\"\n", ed->GetId(), utf8(ed->GetValue()).c_str());
    return false;
}

bool Tour::selectClient(const char* name, bool picture) {
    expect("client selection 30021", [](wxDialog* d) { return dynamic_cast<wxListBox*>(d->FindWindow(1000)); },
           [this, name, picture](wxDialog* d) {
        auto* list = dynamic_cast<wxListBox*>(d->FindWindow(1000));
        int index = wxNOT_FOUND;
        if (list)
            for (unsigned i = 0; i < list->GetCount(); ++i)
                if (list->GetString(i).StartsWith(wxString::FromUTF8(name))) index = static_cast<int>(i);
        if (index != wxNOT_FOUND) {
            list->SetSelection(index);
            wxCommandEvent e(wxEVT_LISTBOX, 1000);
            e.SetEventObject(list);
            e.SetInt(index);
            list->GetEventHandler()->ProcessEvent(e);
        }
        pump(100);
        if (picture) dialogShot_ = shot("client-selection");
        press(d, index == wxNOT_FOUND ? wxID_CANCEL : wxID_OK);
    });
    return true;
}

bool Tour::mainShows(const char* client, std::string& checked) {
    const std::string dsn = Vnt_TxtToUtf8(Vnt_AppDSN());
    const std::string count = queryText("SELECT COUNT(*) FROM orders");
    checked = "client \"" + dsn + "\", " + std::to_string(main_->ShownOrders()) + " orders listed of " + count +
              " stored";
    const std::string title = utf8(main_->GetTitle());
    const wxString file = main_->GetMenuBar() ? main_->GetMenuBar()->GetMenuLabel(0) : wxString();
    checked += ", menu \"" + utf8(file) + "\"";
    return dsn == client && std::to_string(main_->ShownOrders()) == count && title.find(client) != std::string::npos &&
           file == (english_ ? "&File" : "&Datei");
}

void Tour::Run() {
    // 1. The client: the selection offers the clients of dsn.ini.
    step("selected the client \"Beispiel GmbH\" in the client selection",
         [&](std::string& checked) {
             selectClient("Beispiel GmbH", true);
             const bool ok = main_->SelectClient(true);
             checked = std::string("connected: \"") + Vnt_TxtToUtf8(Vnt_AppDSN()) + "\", data path " +
                       Vnt_TxtToUtf8(Vnt_AppDataPath());
             return ok && std::string(Vnt_AppDSN()) == "Beispiel GmbH" &&
                    std::string(Vnt_AppDataPath()).find("Daten\\M1") != std::string::npos;
         },
         "client");
    // 2. The main window with the client's orders.
    step("looked at the main window", [&](std::string& checked) { return mainShows("Beispiel GmbH", checked); },
         "main");
    // 3. The customers.
    step("opened the customers (File > Customers)",
         [&](std::string& checked) {
             const auto before = Clock::now();
             command(main_, kCmdCustomers);
             view_ = main_->ActiveView();
             viewOpened_ = ms(before);
             pump(300);
             if (!view_) return checked = "no view", false;
             customer_ = view_->RecordNumber();
             auto* name = dynamic_cast<wxTextCtrl*>(view_->m_tab.GetPage(0)->FindWindow(202));
             const std::string stored = queryText("SELECT name FROM customer WHERE nr = " + std::to_string(customer_));
             checked = "customer " + std::to_string(customer_) + " shows \"" + (name ? utf8(name->GetValue()) : "?") +
                       "\", stored \"" + stored + "\"";
             return name && utf8(name->GetValue()) == stored && view_->m_tab.GetPageCount() == 3;
         },
         "customers");
    // 4. An amount and a date typed in, then saved.
    // Values that differ from the stored ones (a second tour on the same
    // data changes them again).
    const std::string where = " FROM customer WHERE nr = ";
    step("typed a credit limit and a date of last contact, saved (Edit > Save)",
         [&](std::string& checked) {
             if (!view_) return false;
             const std::string before = queryText("SELECT credit_limit" + where + std::to_string(customer_));
             const bool again = std::fabs(std::atof(before.c_str()) - 12345.67) < 0.001;
             const double limit = again ? 23456.78 : 12345.67;
             const VNT_DATE contact{2026, 3, static_cast<unsigned char>(again ? 17 : 16)};
             char iso[16];
             std::snprintf(iso, sizeof iso, "%04d-%02d-%02d", contact.year, contact.month, contact.day);
             view_->m_tab.GotoTab(1);
             pump(100);
             wxString limitText = wxString::Format("%.2f", limit);
             if (!english_) limitText.Replace(".", ",");
             bool typed = typeInto(dynamic_cast<VantoEd*>(view_->m_tab.GetPage(1)->FindWindow(213)), limitText);
             view_->m_tab.GotoTab(2);
             pump(100);
             typed = typeInto(dynamic_cast<VantoEd*>(view_->m_tab.GetPage(2)->FindWindow(222)), dateText(contact)) &&
                     typed;
             pump(100);
             shot("typed");
             command(main_, kCmdSave);
             pump(200);
             const std::string storedLimit = queryText("SELECT credit_limit" + where + std::to_string(customer_));
             const std::string storedDate = queryText("SELECT last_contact" + where + std::to_string(customer_));
             checked = "typed " + utf8(limitText) + " and " + utf8(dateText(contact)) + "; stored credit_limit " +
                       storedLimit + ", last_contact " + storedDate;
             return typed && std::fabs(std::atof(storedLimit.c_str()) - limit) < 0.001 &&
                    storedDate.rfind(iso, 0) == 0 && !view_->OnCheckDirty();
         },
         "saved");
    // 5. A change left unsaved: moving on asks the save question.
    step("typed a discount, went to the next record (Edit > Next record) and answered Yes to the save question",
         [&](std::string& checked) {
             if (!view_) return false;
             view_->m_tab.GotoTab(1);
             pump(100);
             const std::string before = queryText("SELECT discount" + where + std::to_string(customer_));
             const double discount = std::fabs(std::atof(before.c_str()) - 4.5) < 0.001 ? 5.5 : 4.5;
             wxString discountText = wxString::Format("%.1f", discount);
             if (!english_) discountText.Replace(".", ",");
             const bool typed = typeInto(dynamic_cast<VantoEd*>(view_->m_tab.GetPage(1)->FindWindow(211)), discountText);
             std::string question;
             expect("save question 34001", isQuestion, [&question, this](wxDialog* d) {
                 question = dialogText(d);
                 dialogShot_ = shot("save-question");
                 press(d, 6);  // Yes
             });
             command(main_, kCmdNext);
             pump(300);
             const std::string stored = queryText("SELECT discount" + where + std::to_string(customer_));
             checked = "typed " + utf8(discountText) + "; asked \"" + question + "\"; stored discount " + stored +
                       ", now customer " + std::to_string(view_->RecordNumber());
             return typed && std::fabs(std::atof(stored.c_str()) - discount) < 0.001 &&
                    view_->RecordNumber() != customer_ && !question.empty();
         },
         "next");
    // The articles: the gross price follows the net price typed.
    step("opened the articles (File > Articles), typed a net price on the price page, discarded it (Edit > Discard "
         "changes) and closed the view",
         [&](std::string& checked) {
             command(main_, kCmdArticles);
             pump(200);
             DeskView* articles = main_->ActiveView();
             if (!articles || articles == view_) return checked = "no article view", false;
             const long nr = articles->RecordNumber();
             const std::string price = queryText("SELECT net_price FROM article WHERE nr = " + std::to_string(nr));
             const double vat = std::atof(queryText("SELECT vat_percent FROM article WHERE nr = " + std::to_string(nr)).c_str());
             articles->m_tab.GotoTab(1);
             pump(100);
             VntTabDlg* page = articles->m_tab.GetPage(1);
             const bool typed = typeInto(dynamic_cast<VantoEd*>(page->FindWindow(311)), english_ ? "100.00" : "100,00");
             double gross = 100.0;
             Vnt_FloatBetrag(&gross, vat, false, true);
             const wxString shown = dynamic_cast<VantoEd*>(page->FindWindow(313))->GetValue();
             pump(100);
             dialogShot_ = shot("article-price");  // the step's picture: the view closes after it
             command(main_, kCmdDiscard);
             const bool clean = !articles->OnCheckDirty();
             command(main_, kCmdCloseView);
             pump(200);
             const bool closed = main_->Views().size() == 1;
             const std::string after = queryText("SELECT net_price FROM article WHERE nr = " + std::to_string(nr));
             checked = "article " + std::to_string(nr) + ": net 100 at " + std::to_string(vat).substr(0, 4) +
                       " % shows gross " + utf8(shown) + "; after discarding the stored net price is " + after +
                       " as before, view " + (closed ? "closed" : "open");
             return typed && shown == money(gross) && clean && closed && after == price;
         },
         "articles");
    // 6. The statistics (module 50).
    step("ran the statistics (Modules > Statistics, module 50)", [&](std::string& checked) { return statistics(checked); },
         "statistics");
    // 7. The backup (module 51) with its progress.
    step("made the backup (Modules > Backup, module 51)", [&](std::string& checked) { return backup(checked); },
         "backup");
    // 8. The other client.
    step("switched to the client \"Muster KG\" (File > Switch client)",
         [&](std::string& checked) {
             selectClient("Muster KG", false);
             command(main_, kCmdSwitch);
             pump(300);
             view_ = nullptr;
             std::string shown;
             const bool ok = mainShows("Muster KG", shown);
             checked = shown + ", record views closed: " + (main_->Views().empty() ? "yes" : "no");
             return ok && main_->Views().empty();
         },
         "switched");
    // 9. The end, with its question.
    step("ended the program (File > Exit) and answered Yes",
         [&](std::string& checked) {
             std::string question;
             expect("exit question", isQuestion, [&question, this](wxDialog* d) {
                 question = dialogText(d);
                 auto* box = dynamic_cast<wxCheckBox*>(d->FindWindow(200));
                 if (!box || !box->IsShown()) box = dynamic_cast<wxCheckBox*>(d->FindWindow(199));
                 question += box && box->IsShown() ? " [check box: " + utf8(box->GetLabel()) + "]" : "";
                 dialogShot_ = shot("exit-question");
                 press(d, 6);
             });
             command(main_, kCmdExit);
             pump(200);
             checked = "asked \"" + question + "\"";
             return question.find("[check box") != std::string::npos;
         },
         "end");
    // The resident memory now, from the process's status.
    std::ifstream status("/proc/self/status");
    std::string line, rss = "?";
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0) rss = line.substr(line.find_first_not_of(" \t", 6));
    std::printf("tour: figures: client selection shown %ld ms after the start, customer view opened in %ld ms, "
                "memory after the tour %s\n",
                selectionShown_, viewOpened_, rss.c_str());
    std::printf("tour: %d steps, %d failed, pictures in %s\n", number_, failed_, dir_.c_str());
}

bool Tour::statistics(std::string& checked) {
    std::string read;
    bool listOk = false;
    expect("statistics dialog", [](wxDialog* d) { return wxWindow::FindWindowByName("stat_list", d) != nullptr; },
           [&](wxDialog* d) {
        auto* list = dynamic_cast<wxListCtrl*>(wxWindow::FindWindowByName("stat_list", d));
        if (!list) {
            read = "no list \"stat_list\"";
        } else {
            // Columns by their headers: net, gross, count.
            int netCol = -1, grossCol = -1, countCol = -1;
            for (int c = 0; c < list->GetColumnCount(); ++c) {
                wxListItem item;
                item.SetMask(wxLIST_MASK_TEXT);
                list->GetColumn(c, item);
                const wxString h = item.GetText().Lower();
                if (h.Contains("netto") || h.Contains("net")) netCol = c;
                else if (h.Contains("brutto") || h.Contains("gross")) grossCol = c;
                else if (h.Contains("anzahl") || h.Contains("auftr") || h.Contains("orders") || h.Contains("count"))
                    countCol = c;
            }
            // Every month of the database has its row with the same number
            // of orders and net total, and so has the whole.
            auto hasRow = [&](long n, double net) {
                for (long row = 0; row < list->GetItemCount(); ++row) {
                    double a = 0, b = 0;
                    if (parseNumber(list->GetItemText(row, countCol), a) &&
                        parseNumber(list->GetItemText(row, netCol), b) && a == static_cast<double>(n) &&
                        std::fabs(b - net) < 0.005)
                        return true;
                }
                return false;
            };
            VntRecordset rs;
            int months = 0, found = 0;
            if (netCol >= 0 && countCol >= 0 && Vnt_AppGetConnect(&rs) &&
                rs.Open("SELECT substr(order_date, 1, 7), COUNT(*), SUM(net_amount) FROM orders GROUP BY 1",
                        VNT_RS_READONLY))
                for (; !rs.IsEOF(); rs.MoveNext(), ++months) {
                    long n = 0;
                    double net = 0;
                    rs.GetFieldValue(1, n);
                    rs.GetFieldValue(2, net);
                    if (hasRow(n, net)) ++found;
                }
            double allNet = 0, allCount = 0;
            queryNumber("SELECT SUM(net_amount) FROM orders", allNet);
            queryNumber("SELECT COUNT(*) FROM orders", allCount);
            Vnt_MoneyRound(&allNet);
            const bool total = netCol >= 0 && countCol >= 0 && hasRow(static_cast<long>(allCount), allNet);
            read = std::to_string(list->GetItemCount()) + " rows; " + std::to_string(found) + " of " +
                   std::to_string(months) + " months match the database (count and net), the total " +
                   (total ? "too" : "does not") +
                   (grossCol >= 0 ? "" : "; no gross column");
            listOk = months > 0 && found == months && total && grossCol >= 0;
        }
        dialogShot_ = shot("statistics");
        press(d, wxID_OK);
    });
    const long result = main_->RunModule(kModStat);
    checked = "module result " + std::to_string(result) + "; " + read;
    return result == 1 && listOk;
}

bool Tour::backup(std::string& checked) {
    std::string told;
    expect("backup done (1200)", [](wxDialog* d) { return shownButton(d, 1) && (shownButton(d, 199) || shownButton(d, 200)); },
           [&](wxDialog* d) {
        told = dialogText(d);
        dialogShot_ = shot("backup-done");
        press(d, 1);
    });
    progressSeen_ = false;
    progressShot_.clear();
    command(main_, kCmdBackup);
    pump(300);
    // The copy beside the data: the same files, bytes and times.
    char data[4096], copy[4096];
    VNT_PATH dir, last, target;
    Vnt_LfnNameSplit(Vnt_AppDataPath(), dir, last, nullptr);
    Vnt_LfnNameMake(target, "Sicherung", last, nullptr);
    Vnt_LfnNameMakeAbs(target);
    VNT_PATH dataAbs;
    Vnt_LfnNameMake(dataAbs, Vnt_AppDataPath(), nullptr, nullptr);
    Vnt_LfnNameMakeAbs(dataAbs);
    int files = 0, same = 0;
    if (Vnt_LfnToHost(dataAbs, data, sizeof data) && Vnt_LfnToHost(target, copy, sizeof copy)) {
        std::error_code ec;
        for (const auto& e : fs::recursive_directory_iterator(data, ec)) {
            if (!e.is_regular_file()) continue;
            ++files;
            const fs::path other = fs::path(copy) / fs::relative(e.path(), data);
            std::error_code ec2;
            if (fs::file_size(other, ec2) == e.file_size() && !ec2 &&
                fs::last_write_time(other, ec2) == e.last_write_time()) {
                ++same;
            }
        }
    }
    checked = std::to_string(same) + " of " + std::to_string(files) + " files in " + copy +
              " with the same size and time; progress " +
              (progressSeen_ ? "shown" + (progressShot_.empty() ? std::string() : " (" + progressShot_ + ")")
                         : std::string("not seen")) +
              "; told \"" + told + "\"";
    return files > 0 && same == files && progressSeen_ && !told.empty();
}

Tour* g_tour = nullptr;

}  // namespace

int TourResult() { return g_tour ? g_tour->Result() : -1; }

void StartTour(MainFrame* main, const std::string& shotDir) {
    g_tour = new Tour(main, shotDir);
    // A tour that stops moving is a failure, not a hang.
    std::thread([] {
        std::this_thread::sleep_for(std::chrono::seconds(120));
        std::fprintf(stdout, "tour: did not finish within 120 s\n");
        std::fflush(stdout);
        std::_Exit(1);
    }).detach();
    main->CallAfter([] { g_tour->Run(); });
}

}  // namespace desk
