// The sample application: starts the library on its installation (built
// beside this program: INI\App.vtm, INI\Modules.vtm, the system library,
// its own message library Sample.vtm, USR), loads modules by number, shows
// messages through the console presenter, prints today's date and week and
// a few amounts in the locale's form, connects the user's default client
// (INI\dsn.ini, an SQLite database in the client's data directory) and
// counts the articles of its database, and ends the library.
//
//     Sample            the run
//     Sample --setup    creates the clients' databases with their articles
//                       (only where there is none yet); the build runs it
#include <cstring>
#include <cstdio>
#include <string>

#include <vanto/vanto.h>

namespace {

// Library texts are Windows-1252; this source and the terminal are UTF-8.
std::string lib(const std::string& cp1252) { return Vnt_TxtToUtf8(cp1252); }
void say(const std::string& utf8) { std::printf("%s\n", utf8.c_str()); }

// The main window: a window of the headless window system that tells what
// it receives.
long mainWindow(VNT_HWND, unsigned msg, uintptr_t wparam, intptr_t) {
    if (msg == VNT_WM_COMMAND)
        say("  [Hauptfenster] Menübefehl " + std::to_string(wparam) + " (gesperrtes Modul)");
    return 0;
}

void load(long module, long arg1 = 0, long arg2 = 0) {
    const VNT_APP_MODINFO* info = Vnt_AppModInfo(module);
    say("Modul " + std::to_string(module) + " (" + (info ? lib(info->szDescription) : "?") + "):");
    const bool ok = Vnt_AppModLoad(module, arg1, arg2);
    say(std::string("  ") + (ok ? "gestartet" : "nicht gestartet") +
        (ok ? ", Ergebnis " + std::to_string(Vnt_AppModResult()) : std::string()));
}

// The client: the client selection connects the user's default client
// (without windows it takes the default; with no client at all the program
// ends with exit code 2, saying why), the client-change module greets, and
// the articles of the client's database are counted. A run never creates a
// database: the clients' lines in dsn.ini say "NoCreat=1", so a deleted one
// is an error of the connection, not a new empty database.
void showClient() {
    Vnt_AppConnect("");
    std::string count = "?";
    VntRecordset rs;
    if (Vnt_AppGetConnect(&rs) && rs.Open("SELECT COUNT(*) AS anzahl FROM artikel")) rs.GetFieldValue("anzahl", count);
    say("Mandant: " + lib(Vnt_AppDSN()) + " (" + lib(Vnt_AppDataPath()) + "), " + count + " Artikel");
    Vnt_AppConnClose();
}

// The set-up: the database of each client in its data directory (relative
// to the installation), with the article table and three articles. An
// existing database is left as it is.
int setup() {
    int rc = 0;
    for (const char* dir : {"Daten\\M1", "Daten\\M2"}) {
        VNT_PATH file;
        Vnt_LfnNameMake(file, dir, "Sample.db", nullptr);
        char host[4096];
        if (!Vnt_LfnToHost(file, host, sizeof host)) {
            std::fprintf(stderr, "Sample: cannot name %s\n", file);
            rc = 1;
            continue;
        }
        if (std::FILE* there = std::fopen(host, "rb")) {
            std::fclose(there);
            say(std::string("Datenbank ") + host + " ist schon da.");
            continue;
        }
        VntDatabase db;
        const bool ok = db.OpenEx((std::string("Driver=SQLite3;Database=") + host + ";").c_str()) &&
                        db.ExecuteSQL("CREATE TABLE artikel (nr INTEGER PRIMARY KEY, bezeichnung VARCHAR(40),"
                                      " preis NUMERIC(10,2))") &&
                        db.ExecuteSQL("INSERT INTO artikel VALUES (1, 'Kaffeem\xFChle', 49.90), (2, 'Teekanne', 19.50),"
                                      " (3, 'Gew\xFCrzregal', 24.00)");
        say(std::string("Datenbank ") + host + (ok ? " mit 3 Artikeln angelegt." : " konnte nicht angelegt werden."));
        if (!ok) rc = 1;
    }
    return rc;
}

}  // namespace

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);  // in step with the boxes on standard error
    // Boxes go to standard error; without a terminal each is answered as if
    // closed, so the program never waits.
    VntConsolePresenter console;
    Vnt_UiSetPresenter(&console);
    auto* windows = dynamic_cast<VntHeadlessWindowPort*>(&Vnt_UiWindow());
    VNT_HWND main = windows ? windows->CreateFake("Sample", mainWindow) : nullptr;
    if (windows) windows->SetMainWindow(main);

    // Like a desktop shortcut's "start in": the installation is the
    // current directory, to which the clients' data paths are relative.
    VNT_PATH progDir;
    if (Vnt_LfnProgDirName(progDir, sizeof progDir)) Vnt_LfnDirSet(progDir);
    if (argc > 1 && std::strcmp(argv[1], "--setup") == 0) return setup();

    if (!Vnt_AppMainInit()) {
        std::fprintf(stderr, "Sample: the library could not be started.\n");
        return 1;
    }
    Vnt_AppInit(main, 0);
    Vnt_AppModSetFunctionName("ModuleMain");  // for modules whose line names no function
    const VNT_APP_VER* ver = Vnt_AppVerInfo();
    say(lib(ver->pszText1) + " " + std::to_string(ver->nMajor) + "." + std::to_string(ver->nMinor) + " (" +
        lib(Vnt_AppProgDir()) + ")");
    // The title of the boxes: the application's name from its library.
    Vnt_MsgSetTitle(Vnt_AppMsgLoad(1000));
    Vnt_MsgBoxAppTitle(Vnt_AppMsgLoad(1000));

    // Modules by number: a library that answers with a result, a program,
    // a program named through an INI file, and a module switched off.
    load(10, 40, 2);
    load(20);
    load(30);
    const long disabled[] = {40, 0};
    Vnt_AppModLoad(VNT_APP_MOD_DISABLE_LIST, reinterpret_cast<long>(disabled));
    load(40);
    Vnt_Delay(300);  // the started programs print their lines meanwhile

    // Today in the locale's form, with the week of the application's
    // settings, greeted through the application's message library.
    VntDate today(true);
    char day[20];
    Vnt_DateToStr(day, &today.date);
    Vnt_AppMsg(1001, "Anwenderin", today.DayOfWeekStr(), day, today.WeekOfYear());
    say("Heute: " + lib(today.DayOfWeekStr()) + ", " + lib(day) + ", Woche " + std::to_string(today.WeekOfYear()));

    // Amounts: net to gross with 19 %, and the tax back out of the gross.
    double amount = 1234.5, tax = 0;
    std::string net, gross, taxText;
    Vnt_MoneyToStr(net, amount, true);
    Vnt_FloatBetrag(&amount, 19, false, true);
    Vnt_MoneyToStr(gross, amount, true);
    Vnt_FloatProzBetrag(&tax, amount, 19, true);
    Vnt_MoneyToStr(taxText, tax, true);
    say(lib(Vnt_MsgHSprintf(Vnt_AppMsgGetHandle(), 1003, net.c_str(), "19", gross.c_str())));
    say("  darin Steuer " + lib(taxText));
    double read = 0;
    Vnt_MoneyFromStr("2,345", &read);
    std::string readText;
    Vnt_MoneyToStr(readText, read, true);
    say("\"2,345\" als Geldbetrag gelesen: " + lib(readText));

    showClient();

    Vnt_AppTerm(main);
    Vnt_AppMainTerm();
    say("Ende.");
    return 0;
}
