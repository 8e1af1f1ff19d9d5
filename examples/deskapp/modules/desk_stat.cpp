// Module library "DeskStat.dll", module 50: the order statistics of the
// current client. A dialog (resource 5050, carried inside the module) lists
// per month and per week of the year the number of orders and their net and
// gross totals; the totals come from TotalOrders (stat_totals.h), the gross
// through the library's percentage functions. Answers 1 when the dialog was
// shown, 0 when it could not be.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <wx/app.h>
#include <wx/font.h>
#include <wx/listctrl.h>
#include <wx/settings.h>
#include <wx/stattext.h>
#include <wx/window.h>

#include <vanto/amount.h>
#include <vanto/app.h>
#include <vanto/db.h>
#include <vanto/dsn.h>
#include <vanto/module.h>
#include <vanto/wx/dlg.h>
#include <vanto/wx/res.h>

#include "desk_common.h"
#include "desk_stat_xrc.h"
#include "stat_totals.h"

VNT_APP_MODULE_VERSION(VNT_APP_VERSION_DW(1, 0), VNT_APP_VERSION_DW(0, 1));

using desk::Tell;
using desk::Tr;

namespace {

constexpr long kStatDialog = 5050;

wxString ui(const char* utf8) { return wxString::FromUTF8(utf8); }
wxString ui(const std::string& utf8) { return wxString::FromUTF8(utf8.c_str()); }

// The orders of the client's database; false when they cannot be read (the
// library has told the user).
bool readOrders(VntDatabase* db, std::vector<desk::OrderRow>& rows) {
    VntRecordset rs(db);
    if (!rs.Open("SELECT o.order_date, o.net_amount, a.vat_percent FROM orders o"
                 " LEFT JOIN article a ON a.nr = o.article_nr ORDER BY o.order_date"))
        return false;
    for (; !rs.IsEOF(); rs.MoveNext()) {
        desk::OrderRow r{};
        rs.GetFieldValue(0, r.date);  // a null date stays empty and is counted as skipped
        rs.GetFieldValue(1, r.net);
        rs.GetFieldValue(2, r.vatPercent);  // an order without its article: no VAT
        rows.push_back(r);
    }
    return true;
}

std::string money(double value) {
    std::string text;
    Vnt_MoneyToStr(text, value, true);
    return text;
}

std::string monthName(int year, int month) {
    static const char* const de[] = {"Januar", "Februar", "März",     "April",   "Mai",      "Juni",
                                     "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
    static const char* const en[] = {"January", "February", "March",     "April",   "May",      "June",
                                     "July",    "August",   "September", "October", "November", "December"};
    const char* name = month >= 1 && month <= 12 ? (desk::English() ? en : de)[month - 1] : "?";
    return std::string(name) + " " + std::to_string(year);
}

std::string weekName(int year, int week) {
    char text[40];
    std::snprintf(text, sizeof text, Tr("KW %02d/%d", "Week %02d/%d"), week, year);
    return text;
}

void addRow(wxListCtrl* list, const std::string& period, const desk::PeriodTotal* t, bool heading = false) {
    const long row = list->InsertItem(list->GetItemCount(), ui(period));
    if (t) {
        list->SetItem(row, 1, std::to_string(t->orders));
        list->SetItem(row, 2, ui(money(t->net)));
        list->SetItem(row, 3, ui(money(t->gross)));
    }
    if (heading) {
        wxFont bold = list->GetFont();
        bold.MakeBold();
        list->SetItemFont(row, bold);
    }
}

void fill(wxListCtrl* list, const desk::OrderTotals& totals) {
    list->InsertColumn(0, ui(Tr("Zeitraum", "Period")), wxLIST_FORMAT_LEFT, 190);
    list->InsertColumn(1, ui(Tr("Aufträge", "Orders")), wxLIST_FORMAT_RIGHT, 90);
    list->InsertColumn(2, ui(Tr("Netto", "Net")), wxLIST_FORMAT_RIGHT, 125);
    list->InsertColumn(3, ui(Tr("Brutto", "Gross")), wxLIST_FORMAT_RIGHT, 125);
    desk::PeriodTotal all{};
    addRow(list, Tr("Monate", "Months"), nullptr, true);
    for (const desk::PeriodTotal& t : totals.months) {
        addRow(list, monthName(t.year, t.period), &t);
        all.orders += t.orders;
        all.net += t.net;
        all.gross += t.gross;
    }
    addRow(list, Tr("Kalenderwochen", "Calendar weeks"), nullptr, true);
    for (const desk::PeriodTotal& t : totals.weeks) addRow(list, weekName(t.year, t.period), &t);
    Vnt_MoneyRound(&all.net);
    Vnt_MoneyRound(&all.gross);
    addRow(list, Tr("Gesamt", "Total"), &all, true);
}

}  // namespace

VNT_APP_MODULE_EXPORT std::intptr_t DeskStatMain(long /*arg1*/, long /*arg2*/) {
    VntDatabase* db = Vnt_AppGetConnect();
    if (db == nullptr || !db->IsOpen()) {
        Tell("!Es ist kein Mandant verbunden: es gibt keine Statistik.", "!No client is connected: there are no "
             "statistics.");
        return 0;
    }
    std::vector<desk::OrderRow> rows;
    if (!readOrders(db, rows)) return 0;
    const desk::OrderTotals totals = desk::TotalOrders(rows);

    if (!Vnt_WxAddResources(reinterpret_cast<const char*>(kDeskStatXrc), "DeskStat")) return 0;
    wxWindow* parent = wxTheApp ? wxTheApp->GetTopWindow() : nullptr;
    VntDlg dlg(kStatDialog, parent);
    if (!dlg.IsOk()) return 0;  // reported by the library
    if (auto* client = dynamic_cast<wxStaticText*>(dlg.FindWindow(1001)))
        client->SetLabel(ui(std::string(Tr("Mandant: ", "Client: ")) + Vnt_TxtToUtf8(Vnt_AppDSN())));
    auto* list = dynamic_cast<wxListCtrl*>(dlg.FindWindow("stat_list"));
    if (list == nullptr) return 0;
    fill(list, totals);
    dlg.Layout();
    dlg.Fit();
    // The period takes the width the number columns leave.
    const int numbers = list->GetColumnWidth(1) + list->GetColumnWidth(2) + list->GetColumnWidth(3);
    const int scrollbar = wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, list);
    list->SetColumnWidth(0, std::max(list->GetColumnWidth(0), list->GetClientSize().x - numbers - scrollbar));
    dlg.CentreOnParent();
    dlg.ShowModal();
    return 1;
}
