// VantoDesk: a small order-and-customer program for several clients on the
// library and its window toolkit. It lives in its installation (built in
// <build>/desk): the program, its message libraries, INI\App.vtm,
// INI\Modules.vtm, INI\dsn.ini with two clients whose SQLite databases lie
// in Daten\M1 and Daten\M2, the module libraries, USR for the users.
//
//     VantoDesk                    the program (client selection first)
//     VantoDesk --lang en|de       in English or German (default: the
//                                  locale's language, German when it has none)
//     VantoDesk --tour <folder>    the scripted tour, a picture per step
//     VantoDesk --setup            makes the clients' databases (the build
//                                  runs it; an existing database is kept)
#include <cstdio>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <utility>

#include <wx/cmdline.h>
#include <wx/image.h>

#include "desk.h"

namespace {

// The conventions of the two languages, for a locale that names none.
VntIntlTable kGerman{{"sShortDate", "dd.MM.yyyy"}, {"sDecimal", ","}, {"sThousand", "."},
                     {"iCurrDigits", "2"}, {"sCurrency", "EUR"}, {"sLanguage", "DEU"}};
VntIntlTable kEnglish{{"sShortDate", "MM/dd/yyyy"}, {"sDecimal", "."}, {"sThousand", ","},
                      {"iCurrDigits", "2"}, {"sCurrency", "EUR"}, {"sLanguage", "ENU"}};

std::string fromUtf8(const char* utf8) {
    std::string out;
    Vnt_TxtFromUtf8(utf8, out);
    return out;
}

// ---------------------------------------------------------------------------
// The set-up: each client's database from schema.sql and demonstration data
// ---------------------------------------------------------------------------

struct Article { const char* name; double price; double vat; long stock; };
struct Customer { const char* name; const char* street; const char* zip; const char* city; double discount;
                  long days; double limit; };

const Article kArticlesM1[] = {
    {"Büroklammern (1000 Stück)", 4.95, 19, 420},  {"Kopierpapier A4 (500 Blatt)", 5.49, 19, 1200},
    {"Ordner breit, blau", 2.89, 19, 310},         {"Fachbuch Buchhaltung", 39.90, 7, 25},
    {"Schreibtischlampe LED", 59.00, 19, 40},      {"Druckerpatrone schwarz", 24.95, 19, 150},
};
const Customer kCustomersM1[] = {
    {"Schulze & Partner KG", "Hafenstraße 12", "28195", "Bremen", 3, 30, 15000},
    {"Meyer Bürobedarf GmbH", "Lindenallee 4", "24103", "Kiel", 5, 14, 8000},
    {"Dr. Weiß Steuerberatung", "Am Markt 7", "20095", "Hamburg", 0, 30, 5000},
    {"Köhler Druck OHG", "Gartenweg 21", "30159", "Hannover", 2.5, 10, 12000},
    {"Fischer Logistik AG", "Industriestraße 88", "44135", "Dortmund", 7.5, 45, 40000},
    {"Bäckerei Sonnenschein", "Dorfstraße 1", "23552", "Lübeck", 0, 7, 1500},
    {"Architekturbüro Lange", "Rosenstraße 5", "18055", "Rostock", 2, 30, 6000},
    {"Stadtwerke Nordheim", "Rathausplatz 2", "26122", "Oldenburg", 10, 60, 60000},
};
const Article kArticlesM2[] = {
    {"Kaffeemühle", 49.90, 19, 35}, {"Teekanne Porzellan", 19.50, 19, 60},
    {"Gewürzregal Eiche", 24.00, 19, 18}, {"Kochbuch Nordküche", 22.00, 7, 44},
};
const Customer kCustomersM2[] = {
    {"Café Möwe", "Strandweg 3", "25980", "Sylt", 5, 14, 3000},
    {"Hotel Seeblick GmbH", "Uferpromenade 10", "23743", "Grömitz", 8, 30, 20000},
    {"Feinkost Jürgensen", "Marktgasse 9", "24937", "Flensburg", 3, 21, 7000},
    {"Küchenstudio Brandt", "Werftstraße 44", "24534", "Neumünster", 0, 30, 9000},
    {"Landgasthof Elbe", "Deichstraße 2", "21635", "Jork", 4, 30, 5000},
};

std::string sqlText(const char* utf8) {
    std::string s = fromUtf8(utf8), out = "'";
    for (char c : s) out += c == '\'' ? std::string("''") : std::string(1, c);
    return out + "'";
}

std::string num(double v, int places) {
    char buf[41];
    std::snprintf(buf, sizeof buf, "%.*f", places, v);  // SQL wants the point
    return buf;
}

// One row: "INSERT INTO <table> VALUES (<values>)", the values already SQL.
bool insert(VntDatabase& db, const char* table, std::initializer_list<std::string> values) {
    std::string sql = std::string("INSERT INTO ") + table + " VALUES (";
    const char* sep = "";
    for (const std::string& v : values) sql += std::exchange(sep, ", ") + v;
    return db.ExecuteSQL((sql + ")").c_str());
}

std::string day(int year, int month, int dayOfMonth) {
    char buf[40];  // room for any int, so the compiler sees no truncation
    std::snprintf(buf, sizeof buf, "'%04d-%02d-%02d'", year, month, dayOfMonth);
    return buf;
}

// Orders over `months` months from `year`-`month`: a fixed pseudo-random
// series, so that every set-up makes the same data.
bool fillClient(VntDatabase& db, const Article* articles, int nArticles, const Customer* customers, int nCustomers,
                int year, int month, int months, int perMonth, unsigned seed) {
    using std::to_string;
    bool ok = true;
    for (int i = 0; i < nArticles; ++i) {
        const Article& a = articles[i];
        ok = ok && insert(db, "article", {to_string(101 + i), sqlText(a.name), num(a.price, 2), num(a.vat, 1),
                                          to_string(a.stock), "'2025-01-01'"});
    }
    for (int i = 0; i < nCustomers; ++i) {
        const Customer& c = customers[i];
        ok = ok && insert(db, "customer", {to_string(1001 + i), sqlText(c.name), sqlText(c.street), sqlText(c.zip),
                                           sqlText(c.city), num(c.discount, 2), to_string(c.days), num(c.limit, 2),
                                           day(2015 + i, 1 + (i * 5) % 12, 1 + (i * 7) % 28), day(year, month, 3 + i),
                                           "NULL"});
    }
    unsigned r = seed;
    auto next = [&r](unsigned n) { r = r * 1103515245u + 12345u; return (r >> 16) % n; };
    long nr = 1;
    for (int m = 0; m < months; ++m) {
        const int y = year + (month - 1 + m) / 12, mo = (month - 1 + m) % 12 + 1;
        const int count = perMonth + static_cast<int>(next(5));
        for (int k = 0; k < count; ++k) {
            const int ci = static_cast<int>(next(static_cast<unsigned>(nCustomers)));
            const int ai = static_cast<int>(next(static_cast<unsigned>(nArticles)));
            const long qty = 1 + static_cast<long>(next(20));
            double net = articles[ai].price * static_cast<double>(qty);
            Vnt_FloatRabattBetrag(&net, customers[ci].discount, true);
            Vnt_MoneyRound(&net);
            const int dom = 1 + static_cast<int>(next(28));
            ok = ok && insert(db, "orders", {to_string(nr++), to_string(1001 + ci), to_string(101 + ai),
                                             to_string(qty), num(net, 2), day(y, mo, dom)});
        }
    }
    return ok;
}

// The statements of schema.sql: each ends with a semicolon at a line's end;
// "--" starts a comment.
std::vector<std::string> schemaStatements(const std::string& file) {
    std::ifstream in(file);
    std::vector<std::string> out;
    std::string line, stmt;
    while (std::getline(in, line)) {
        const auto dash = line.find("--");
        if (dash != std::string::npos) line.erase(dash);
        while (!line.empty() && (line.back() == ' ' || line.back() == '\r')) line.pop_back();
        if (line.empty()) continue;
        stmt += line + "\n";
        if (line.back() == ';') {
            stmt.erase(stmt.size() - 2);  // the semicolon and the line end
            out.push_back(stmt);
            stmt.clear();
        }
    }
    return out;
}

int setup() {
    VNT_PATH progDir;
    Vnt_LfnProgDirName(progDir, sizeof progDir);
    char hostDir[4096];
    if (!Vnt_LfnToHost(progDir, hostDir, sizeof hostDir)) return 1;
    const std::vector<std::string> schema = schemaStatements(std::string(hostDir) + "/schema.sql");
    if (schema.empty()) {
        std::fprintf(stderr, "VantoDesk: %s/schema.sql holds no statements\n", hostDir);
        return 1;
    }
    struct Client { const char* dir; int which; };
    int rc = 0;
    for (const Client& c : {Client{"Daten\\M1", 1}, Client{"Daten\\M2", 2}}) {
        VNT_PATH file;
        Vnt_LfnNameMake(file, c.dir, "Desk.db", nullptr);
        Vnt_LfnNameMakeAbs(file);
        char host[4096];
        if (!Vnt_LfnToHost(file, host, sizeof host)) return 1;
        if (std::FILE* there = std::fopen(host, "rb")) {
            std::fclose(there);
            std::printf("VantoDesk: %s is there already\n", host);
            continue;
        }
        // Made under a temporary name and renamed when complete, so that a
        // failed set-up leaves no half-filled database behind.
        const std::string temp = std::string(host) + ".new";
        std::remove(temp.c_str());
        bool ok;
        {
            VntDatabase db;
            ok = db.OpenEx(("Driver=SQLite3;Database=" + temp + ";").c_str());
            for (const std::string& s : schema) ok = ok && db.ExecuteSQL(s.c_str());
            ok = ok && (c.which == 1 ? fillClient(db, kArticlesM1, 6, kCustomersM1, 8, 2026, 1, 6, 9, 17)
                                     : fillClient(db, kArticlesM2, 4, kCustomersM2, 5, 2025, 10, 6, 5, 29));
            db.Close();
        }
        ok = ok && std::rename(temp.c_str(), host) == 0;
        if (!ok) {
            std::remove(temp.c_str());
            rc = 1;
        }
        std::printf("VantoDesk: %s %s\n", host, ok ? "made" : "could not be made");
    }
    return rc;
}

// ---------------------------------------------------------------------------
// The program
// ---------------------------------------------------------------------------

class DeskApp : public VntWxApp {
public:
    bool OnInit() override;
    int OnExit() override;
    int OnRun() override {
        const int rc = VntWxApp::OnRun();
        return desk::TourResult() >= 0 ? desk::TourResult() : rc;
    }
    void OnInitCmdLine(wxCmdLineParser& parser) override {
        VntWxApp::OnInitCmdLine(parser);
        parser.AddOption("", "lang", "de or en");
        parser.AddOption("", "tour", "run the tour, pictures into this folder");
    }
    bool OnCmdLineParsed(wxCmdLineParser& parser) override {
        wxString v;
        if (parser.Found("lang", &v)) lang_ = v.Lower().StartsWith("en") ? "ENU" : "DEU";
        if (parser.Found("tour", &v)) tour_ = std::string(v.utf8_str());
        return VntWxApp::OnCmdLineParsed(parser);
    }

private:
    void chooseLanguage();
    std::string lang_;
    std::string tour_;
    std::unique_ptr<wxDocManager> docs_;
    bool started_ = false;
};

// The library language: --lang, else the locale's, else German. English
// takes the system library and the program's texts from ENU\.
void DeskApp::chooseLanguage() {
    std::string lang = lang_;
    const VNT_SYS_INFO& info = Vnt_SysInfo(VNT_SI_RELOAD);
    const bool localeNamesOne = info.szLanguage[0] != '\0';
    if (lang.empty()) lang = localeNamesOne && std::strncmp(info.szLanguage, "EN", 2) == 0 ? "ENU" : "DEU";
    const bool english = lang == "ENU";
    // A locale of the other language, or none, gets that language's conventions.
    if (!lang_.empty() || !localeNamesOne) {
        Vnt_SysSetIntlSource(english ? &kEnglish : &kGerman);
        Vnt_SysInfo(VNT_SI_RELOAD);
    }
    Vnt_ResSetLanguage(lang.c_str());
    if (english) {
        VNT_PATH dir, name;
        Vnt_LfnProgDirName(dir, sizeof dir);
        Vnt_LfnNameMake(name, dir, "ENU\\VNT60LIB.VTM", nullptr);
        // Names the system library for the start that follows.
        Vnt_MsgItfInit(nullptr, 0, name);
        Vnt_MsgItfTerm();
        Vnt_LfnNameMake(name, dir, "ENU\\VantoDesk", nullptr);
        Vnt_AppMsgSetName(name);
    }
}

bool DeskApp::OnInit() {
    if (!VntWxApp::OnInit()) return false;
    wxInitAllImageHandlers();
    // Like a desktop shortcut's "start in": the installation is the current
    // directory, to which the clients' data paths are relative.
    VNT_PATH progDir;
    if (Vnt_LfnProgDirName(progDir, sizeof progDir)) Vnt_LfnDirSet(progDir);
    chooseLanguage();
    if (!Vnt_AppMainInit()) {
        std::fprintf(stderr, "VantoDesk: the library could not be started\n");
        return false;
    }
    started_ = true;
    Vnt_MsgSetTitle(Vnt_AppMsgLoad(desk::kMsgTitle));
    Vnt_MsgBoxAppTitle(Vnt_AppMsgLoad(desk::kMsgTitle));
    SetAppDisplayName(desk::appText(desk::kMsgTitle));
    VNT_PATH xrc;
    Vnt_LfnNameMake(xrc, progDir, "VantoDesk.xrc", nullptr);
    if (!Vnt_WxAddResourceFile(xrc)) {
        std::fprintf(stderr, "VantoDesk: its dialogs (VantoDesk.xrc) could not be read\n");
        return false;
    }
    docs_ = std::make_unique<wxDocManager>();
    auto* frame = new desk::MainFrame(docs_.get());
    SetTopWindow(frame);
    frame->Show();
    Vnt_AppInit(Vnt_WxHandle(frame), 0);
    if (!tour_.empty()) {
        desk::StartTour(frame, tour_);
        return true;
    }
    // The client first: the selection, once the frame is on the screen.
    CallAfter([frame] {
        if (!frame->SelectClient(true)) frame->Exit(false);
    });
    return true;
}

int DeskApp::OnExit() {
    if (started_) {
        Vnt_AppConnClose();
        Vnt_AppMainTerm();
    }
    docs_.reset();
    return VntWxApp::OnExit();
}

}  // namespace

wxIMPLEMENT_APP_NO_MAIN(DeskApp);

namespace desk {
namespace {
const std::chrono::steady_clock::time_point g_started = std::chrono::steady_clock::now();
}
std::chrono::steady_clock::time_point StartTime() { return g_started; }
}  // namespace desk

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    if (argc > 1 && std::strcmp(argv[1], "--setup") == 0) {
        VNT_PATH progDir;
        if (Vnt_LfnProgDirName(progDir, sizeof progDir)) Vnt_LfnDirSet(progDir);
        return setup();
    }
    return wxEntry(argc, argv);
}
