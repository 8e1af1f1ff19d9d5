// The module libraries of the desktop example: the totals of the statistics
// as a table (no display), and the four modules loaded by number through
// the real loader on a small installation (this program's directory) with
// SQLite clients made by module 24.

#include <chrono>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <vector>

#include <wx/dialog.h>
#include <wx/listctrl.h>
#include <wx/timer.h>

#include "stat_totals.h"
#include "vanto/app.h"
#include "vanto/db.h"
#include "vanto/dsn.h"
#include "vanto/locale.h"
#include "vanto/module.h"
#include "vanto/ui/msgbox.h"
#include "wx_support.h"

namespace fs = std::filesystem;
using desk::PeriodTotal;

namespace {

VNT_DATE day(int y, int m, int d) {
    return VNT_DATE{static_cast<std::uint16_t>(y), static_cast<std::uint8_t>(m), static_cast<std::uint8_t>(d)};
}

// ---------------------------------------------------------------------------
// The totals
// ---------------------------------------------------------------------------

struct TotalsCase {
    const char* what;
    std::vector<desk::OrderRow> rows;
    std::vector<PeriodTotal> months, weeks;
    long skipped;
};

TEST(StatTotals, MonthsAndIsoWeeksOnBothSidesOfTheirLimits) {
    const TotalsCase cases[] = {
        {"a 53-week year: its last Thursday and the Sunday after New Year are week 53, Monday is week 1",
         {{day(2020, 12, 31), 100.00, 19}, {day(2021, 1, 3), 50.00, 7}, {day(2021, 1, 4), 10.00, 19}},
         {{2020, 12, 1, 100.00, 119.00}, {2021, 1, 2, 60.00, 65.40}},
         {{2020, 53, 2, 150.00, 172.50}, {2021, 1, 1, 10.00, 11.90}},
         0},
        {"a week 1 that starts in December belongs to the next year",
         {{day(2024, 12, 29), 1.00, 0}, {day(2024, 12, 30), 2.00, 0}, {day(2025, 1, 1), 4.00, 0}},
         {{2024, 12, 2, 3.00, 3.00}, {2025, 1, 1, 4.00, 4.00}},
         {{2024, 52, 1, 1.00, 1.00}, {2025, 1, 2, 6.00, 6.00}},
         0},
        {"a year of 52 weeks: 1 January on a Friday is still week 53 of the year before",
         {{day(2015, 12, 31), 1.00, 0}, {day(2016, 1, 1), 1.00, 0}, {day(2016, 1, 3), 1.00, 0},
          {day(2016, 1, 4), 1.00, 0}, {day(2016, 12, 31), 1.00, 0}, {day(2017, 1, 1), 1.00, 0},
          {day(2017, 1, 2), 1.00, 0}},
         {{2015, 12, 1, 1.00, 1.00}, {2016, 1, 3, 3.00, 3.00}, {2016, 12, 1, 1.00, 1.00}, {2017, 1, 2, 2.00, 2.00}},
         {{2015, 53, 3, 3.00, 3.00}, {2016, 1, 1, 1.00, 1.00}, {2016, 52, 2, 2.00, 2.00}, {2017, 1, 1, 1.00, 1.00}},
         0},
        {"each order's VAT is rounded on its own: three times 0.05 at 7 % stays 0.15",
         {{day(2023, 6, 5), 0.05, 7}, {day(2023, 6, 6), 0.05, 7}, {day(2023, 6, 7), 0.05, 7},
          {day(2023, 6, 8), 1.05, 19}},
         {{2023, 6, 4, 1.20, 1.40}},
         {{2023, 23, 4, 1.20, 1.40}},
         0},
        {"rows without a valid date are counted and left out",
         {{day(0, 0, 0), 5.00, 19}, {day(2023, 2, 30), 5.00, 19}, {day(2023, 2, 28), 5.00, 19}},
         {{2023, 2, 1, 5.00, 5.95}},
         {{2023, 9, 1, 5.00, 5.95}},
         2},
        {"no orders", {}, {}, {}, 0},
    };
    for (const TotalsCase& c : cases) {
        SCOPED_TRACE(c.what);
        const desk::OrderTotals t = desk::TotalOrders(c.rows);
        EXPECT_EQ(t.months, c.months);
        EXPECT_EQ(t.weeks, c.weeks);
        EXPECT_EQ(t.skipped, c.skipped);
    }
}

// ---------------------------------------------------------------------------
// The modules through the loader
// ---------------------------------------------------------------------------

using namespace vnt::wxtest;

long arg(const char* text) { return static_cast<long>(reinterpret_cast<std::intptr_t>(text)); }

std::string boxText(const VntBoxModel& box) {
    std::string text;
    for (const std::string& l : box.lines) text += l + "\n";
    return text;
}

// A file's bytes and time, or a directory's time, by the path below the root.
struct Entry {
    std::string bytes;
    fs::file_time_type time;
    bool operator==(const Entry&) const = default;
};
std::map<std::string, Entry> snapshot(const fs::path& root) {
    std::map<std::string, Entry> out;
    out["."] = {"<dir>", fs::last_write_time(root)};
    for (const auto& e : fs::recursive_directory_iterator(root)) {
        std::string bytes = "<dir>";
        if (e.is_regular_file()) {
            std::ifstream in(e.path(), std::ios::binary);
            bytes.assign(std::istreambuf_iterator<char>(in), {});
        }
        out[fs::relative(e.path(), root).string()] = {bytes, e.last_write_time()};
    }
    return out;
}

void writeFile(const fs::path& file, const std::string& bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

// Calls `step` every few milliseconds while the modules run (their modal
// loops and progress windows serve timers) until it answers true.
class Poller : public wxTimer {
public:
    explicit Poller(std::function<bool()> step) : step_(std::move(step)) { Start(5); }
    void Notify() override {
        Stop();  // the step may serve events itself: no second call meanwhile
        done = step_();
        if (!done) Start(5);
    }
    bool done = false;

private:
    std::function<bool()> step_;
};

// The shown top-level dialog that `match` accepts, or null.
wxDialog* findDialog(const std::function<bool(wxDialog*)>& match) {
    for (wxWindow* w : wxTopLevelWindows)
        if (auto* d = dynamic_cast<wxDialog*>(w); d && d->IsShown() && match(d)) return d;
    return nullptr;
}

class DeskModules : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        VNT_PATH dir;
        ASSERT_TRUE(Vnt_LfnProgDirName(dir, sizeof dir) && Vnt_LfnDirSet(dir));
        char host[4096];
        ASSERT_TRUE(Vnt_LfnToHost(dir, host, sizeof host));
        inst_ = host;
        fs::remove_all(inst_ / "Daten");
        fs::remove_all(inst_ / "Sicherung");
        writeFile(inst_ / "INI" / "dsn.ini", "[Settings]\nDefaultDriver=SQLite3\nCount=0\n");
        previous_ = Vnt_UiSetPresenter(&boxes_);
        ASSERT_TRUE(Vnt_AppMainInit());
        Vnt_ResSetLanguage("DEU");
    }
    static void TearDownTestSuite() {
        Vnt_AppConnClose();
        Vnt_AppMainTerm();
        Vnt_UiSetPresenter(previous_);
    }
    void SetUp() override { boxes_.shown.clear(); }

    // Loads module `number`; its result, or -1 when it did not load.
    static long run(long number, long arg1 = 0) {
        return Vnt_AppModLoad(number, arg1, 0) ? Vnt_AppModResult() : -1;
    }
    // A new client: its directory and database (24), connected, base data (23).
    static void newClient(const char* name, const char* path) {
        ASSERT_EQ(run(24, arg(path)), 1);
        ASSERT_NE(Vnt_AppConnect(name, path), nullptr);
        ASSERT_EQ(run(23), 1);
    }
    static long count(const char* sql) {
        VntRecordset rs(Vnt_AppGetConnect());
        long n = -1;
        return rs.Open(sql) && rs.GetFieldValue(0, n) ? n : -1;
    }

    static inline fs::path inst_;
    static inline VntScriptedPresenter boxes_;
    static inline VntMsgPresenter* previous_ = nullptr;
};

TEST_F(DeskModules, InstallationMakesTheClientAndRefusesBadPaths) {
    // 24, started as the client dialogs start it: the directory chain and
    // the database with every table of schema.sql.
    const fs::path db = inst_ / "Daten" / "Neu" / "M1" / "Desk.db";
    ASSERT_TRUE(Vnt_DsnInstallClient("Daten\\Neu\\M1"));
    EXPECT_TRUE(boxes_.shown.empty());
    ASSERT_TRUE(fs::is_regular_file(db));
    EXPECT_EQ(std::distance(fs::directory_iterator(db.parent_path()), fs::directory_iterator()), 1)
        << "nothing but the database";
    {
        VntDatabase check;
        ASSERT_TRUE(check.OpenEx(("Driver=SQLite3;Database=" + db.string() + ";").c_str()));
        VntRecordset rs(&check);
        long tables = 0;
        ASSERT_TRUE(rs.Open("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name IN "
                            "('customer', 'article', 'orders')") && rs.GetFieldValue(0, tables));
        EXPECT_EQ(tables, 3);
    }
    // An existing database is kept as it is (named by its file, the directory is installed).
    const auto before = fs::last_write_time(db);
    EXPECT_TRUE(Vnt_DsnInstallClient("Daten\\Neu\\M1\\Desk.db"));
    EXPECT_EQ(fs::last_write_time(db), before);

    // Refused with a message, nothing made: a file in the way of the
    // directory; a path whose database name needs 260 characters (one
    // shorter still fits).
    // The full name of "Daten" + "\" + x... + "\Desk.db" + ".neu" in 259 characters.
    VNT_PATH daten = "Daten";
    ASSERT_TRUE(Vnt_LfnNameMakeAbs(daten));
    const std::string longest = "Daten\\" + std::string(259 - std::strlen(daten) - 1 - 8 - 4, 'x');
    struct Bad { std::string path; const char* says; fs::path absent; };
    const Bad bad[] = {
        {"schema.sql\\M2", "kann nicht angelegt werden", inst_ / "schema.sql"},
        {longest + "y", "zu lang", inst_ / "Daten" / (longest.substr(6) + "y")},
        {"", "kein Verzeichnis", {}},
    };
    for (const Bad& b : bad) {
        SCOPED_TRACE(b.path);
        boxes_.shown.clear();
        EXPECT_EQ(run(24, arg(b.path.c_str())), 0);
        ASSERT_EQ(boxes_.shown.size(), 1u);
        EXPECT_NE(boxText(boxes_.shown[0]).find(b.says), std::string::npos) << boxText(boxes_.shown[0]);
        if (!b.absent.empty()) {
            EXPECT_FALSE(fs::is_directory(b.absent));
        }
    }
    boxes_.shown.clear();
    EXPECT_EQ(run(24, arg(longest.c_str())), 1) << (boxes_.shown.empty() ? "" : boxText(boxes_.shown[0]));
    EXPECT_TRUE(fs::is_regular_file(inst_ / "Daten" / longest.substr(6) / "Desk.db"));

    // 23: base data into the connected client, once; without a client a message.
    Vnt_AppConnClose();
    boxes_.shown.clear();
    EXPECT_EQ(run(23), 0);
    EXPECT_EQ(boxes_.shown.size(), 1u);
    ASSERT_NE(Vnt_AppConnect("Neu", "Daten\\Neu\\M1"), nullptr);
    EXPECT_EQ(run(23), 1);
    EXPECT_EQ(count("SELECT COUNT(*) FROM article WHERE net_price > 0 AND vat_percent IN (7, 19)"), 5);
    EXPECT_EQ(count("SELECT COUNT(DISTINCT vat_percent) FROM article"), 2);
    EXPECT_EQ(run(23), 1);
    EXPECT_EQ(count("SELECT COUNT(*) FROM article"), 5) << "a second run adds nothing";
}

TEST_F(DeskModules, StatisticsShowTheTotalsInGermanAndEnglish) {
    newClient("Statistik GmbH", "Daten\\M2");
    VntDatabase* db = Vnt_AppGetConnect();
    // Article 1 is at 19 %, article 4 at 7 %; article 99 does not exist (no VAT).
    ASSERT_TRUE(db->ExecuteSQL("INSERT INTO orders (nr, customer_nr, article_nr, quantity, net_amount, order_date) "
                               "VALUES (1, 1, 1, 10, 100.00, '2020-12-31'), (2, 1, 4, 5, 50.00, '2021-01-03'), "
                               "(3, 2, 1, 1, 10.00, '2021-01-04'), (4, 2, 99, 1, 5.00, '2021-01-04')"));
    struct Language {
        const char* lang;
        const char* decimal;
        const char* title;
        const char* close;
        std::vector<std::vector<std::string>> rows;
    };
    const Language languages[] = {
        {"DEU", ",", "Auftragsstatistik", "&Schließen",
         {{"Monate", "", "", ""},
          {"Dezember 2020", "1", "100,00", "119,00"},
          {"Januar 2021", "3", "65,00", "70,40"},
          {"Kalenderwochen", "", "", ""},
          {"KW 53/2020", "2", "150,00", "172,50"},
          {"KW 01/2021", "2", "15,00", "16,90"},
          {"Gesamt", "4", "165,00", "189,40"}}},
        {"ENU", ".", "Order statistics", "&Close",
         {{"Months", "", "", ""},
          {"December 2020", "1", "100.00", "119.00"},
          {"January 2021", "3", "65.00", "70.40"},
          {"Calendar weeks", "", "", ""},
          {"Week 53/2020", "2", "150.00", "172.50"},
          {"Week 01/2021", "2", "15.00", "16.90"},
          {"Total", "4", "165.00", "189.40"}}},
    };
    for (const Language& l : languages) {
        SCOPED_TRACE(l.lang);
        Vnt_ResSetLanguage(l.lang);
        VntIntlTable conventions{{"sDecimal", l.decimal}, {"iCurrDigits", "2"}};
        Vnt_SysSetIntlSource(&conventions);
        Vnt_SysInfo(VNT_SI_RELOAD);
        std::vector<std::vector<std::string>> rows;
        std::string title, client, close, shot;
        Poller poll([&] {
            wxDialog* dlg = findDialog([](wxDialog* d) { return d->FindWindow("stat_list") != nullptr; });
            if (!dlg) return false;
            auto* list = dynamic_cast<wxListCtrl*>(dlg->FindWindow("stat_list"));
            for (long r = 0; list && r < list->GetItemCount(); ++r) {
                rows.emplace_back();
                for (int c = 0; c < list->GetColumnCount(); ++c)
                    rows.back().push_back(std::string(list->GetItemText(r, c).utf8_str()));
            }
            title = dlg->GetTitle().utf8_str();
            close = dlg->FindWindow(wxID_OK)->GetLabel().utf8_str();
            client = dlg->FindWindow(1001)->GetLabel().utf8_str();
            shot = picture(dlg, std::string("desk_stat_") + l.lang);
            dlg->EndModal(wxID_OK);
            return true;
        });
        EXPECT_EQ(run(50), 1);
        EXPECT_TRUE(poll.done) << "the dialog was shown";
        EXPECT_EQ(rows, l.rows);
        EXPECT_EQ(title, l.title);
        EXPECT_EQ(close, l.close);
        EXPECT_NE(client.find("Statistik GmbH"), std::string::npos) << client;
        EXPECT_TRUE(fs::is_regular_file(shot));
        Vnt_SysSetIntlSource(nullptr);
        Vnt_SysInfo(VNT_SI_RELOAD);
    }
    Vnt_ResSetLanguage("DEU");
    EXPECT_TRUE(boxes_.shown.empty());
}

TEST_F(DeskModules, BackupCopiesTheTreeWithItsTimesAndCancelKeepsTheOldOne) {
    newClient("Sicherung KG", "Daten\\M3");
    const fs::path data = inst_ / "Daten" / "M3", backup = inst_ / "Sicherung" / "M3";
    writeFile(data / "Belege" / "2021" / "Rechnung 1.txt", "Rechnung 1\n");
    fs::last_write_time(data / "Belege" / "2021" / "Rechnung 1.txt",
                        fs::file_time_type::clock::now() - std::chrono::hours(24 * 400) + std::chrono::nanoseconds(123));
    fs::create_directories(data / "Leer");
    // Enough to copy that a Cancel can come in the middle.
    for (int i = 0; i < 24; ++i) writeFile(data / "Archiv" / ("Teil" + std::to_string(i)), std::string(256 << 10, char('a' + i)));

    EXPECT_EQ(run(51), 1);
    EXPECT_TRUE(boxes_.shown.empty());
    ASSERT_TRUE(fs::is_directory(backup));
    EXPECT_EQ(snapshot(backup), snapshot(data)) << "bytes and times";
    const auto first = snapshot(backup);

    // Cancel while the copy is under way: the old backup stays, the partial copy goes.
    writeFile(data / "Neu.txt", "neu\n");
    bool confirmed = false;
    std::string shot;
    Poller cancel([&] {
        const fs::path fresh = inst_ / "Sicherung" / "M3.neu";
        std::error_code ec;
        if (!fs::exists(fresh / "Archiv", ec) || fs::is_empty(fresh / "Archiv", ec)) return false;
        wxDialog* status = findDialog([](wxDialog* d) { return d->GetTitle() == "Datensicherung"; });
        if (!status) return false;
        shot = picture(status, "desk_backup_DEU");
        status->Close();  // Cancel, with the question
        wxDialog* question = findDialog([](wxDialog* d) { return d->FindWindow(wxID_YES) != nullptr; });
        if (!question) return false;
        wxCommandEvent yes(wxEVT_BUTTON, wxID_YES);
        question->ProcessWindowEvent(yes);
        confirmed = true;
        return true;
    });
    EXPECT_EQ(run(51), 0);
    EXPECT_TRUE(confirmed) << "cancelled during the copy";
    EXPECT_TRUE(fs::is_regular_file(shot));
    EXPECT_TRUE(boxes_.shown.empty()) << "a Cancel needs no message";
    EXPECT_EQ(snapshot(backup), first);
    auto left = [&] {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(inst_ / "Sicherung")) names.push_back(e.path().filename().string());
        return names;
    };
    EXPECT_EQ(left(), std::vector<std::string>{"M3"});

    // Run again: the new file is in the backup, which replaced the old one.
    EXPECT_EQ(run(51), 1);
    EXPECT_EQ(snapshot(backup), snapshot(data));
    EXPECT_EQ(left(), std::vector<std::string>{"M3"});
}

}  // namespace
