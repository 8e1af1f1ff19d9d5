// Module library "DeskInst.dll": the client installation of the desktop
// example.
//  - module 24, DeskInstCreate: the data directory of a new client and its
//    database, made from "schema.sql" beside the program;
//  - module 23, DeskInstInit: the base data (a few articles with prices and
//    VAT rates) in the database of the client just connected.
// Both answer 1 on success and 0 after telling the user why.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include <vanto/app.h>
#include <vanto/date.h>
#include <vanto/db.h>
#include <vanto/dsn.h>
#include <vanto/lfn.h>
#include <vanto/module.h>

#include "desk_common.h"

VNT_APP_MODULE_VERSION(VNT_APP_VERSION_DW(1, 0), VNT_APP_VERSION_DW(0, 1));

namespace fs = std::filesystem;
using desk::Lib;
using desk::Tell;
using desk::Tr;

namespace {

// The statements of a schema file: each ends with ";" at the end of a line;
// "--" outside quotes starts a comment that runs to the end of the line.
std::vector<std::string> readStatements(std::istream& in) {
    std::vector<std::string> out;
    std::string line, statement;
    while (std::getline(in, line)) {
        bool quoted = false;
        std::size_t end = line.size();
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '\'') quoted = !quoted;
            if (!quoted && line.compare(i, 2, "--") == 0) {
                end = i;
                break;
            }
        }
        line.erase(end);
        while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r')) line.pop_back();
        if (line.empty()) continue;
        statement += statement.empty() ? line : "\n" + line;
        if (line.back() == ';') {
            out.push_back(statement);
            statement.clear();
        }
    }
    if (statement.find_first_not_of(" \t\n") != std::string::npos) out.push_back(statement);
    return out;
}

std::string hostOf(const char* path) {
    char host[4096];
    return Vnt_LfnToHost(path, host, sizeof host) ? std::string(host) : std::string();
}

}  // namespace

VNT_APP_MODULE_EXPORT std::intptr_t DeskInstCreate(long arg1, long /*arg2*/) {
    const char* path = reinterpret_cast<const char*>(static_cast<std::intptr_t>(arg1));
    if (path == nullptr || *path == '\0') {
        Tell("!Für den neuen Mandanten ist kein Verzeichnis angegeben.",
             "!No directory was given for the new client.");
        return 0;
    }
    const char* dbName = DsnIni::DBFileName();
    if (*dbName == '\0') dbName = "Desk.db";
    // The directory, the database and its name while it is made must all
    // fit the library's paths.
    VNT_PATH dir{}, dbFile{}, dbTemp{};
    const int tempExtra = 4;  // ".neu"
    bool fits = std::snprintf(dir, sizeof dir, "%s", path) < static_cast<int>(sizeof dir);
    fits = fits && Vnt_LfnNameMakeAbs(dir) && Vnt_LfnNameMake(dbFile, dir, dbName, nullptr) &&
                      std::snprintf(dbTemp, sizeof dbTemp, "%s.neu", dbFile) < static_cast<int>(sizeof dbTemp);
    if (!fits) {
        Tell("!Der Pfad des neuen Mandanten ist zu lang:\n%s\n\nEin Pfad mit der Datenbank darf höchstens %d Zeichen "
             "haben.",
             "!The path of the new client is too long:\n%s\n\nA path with its database may have at most %d "
             "characters.",
             Vnt_LfnNameOut(path, 60), static_cast<int>(sizeof dbTemp) - 1 - tempExtra);
        return 0;
    }
    // An existing database is the client's: kept as it is.
    if (Vnt_LfnFileFind(dbFile, nullptr)) return 1;

    // Only the directories made here go again when the database cannot be made.
    const std::string hostDir = hostOf(dir);
    fs::path made;
    std::error_code ec;
    for (fs::path p = hostDir; !p.empty() && fs::symlink_status(p, ec).type() == fs::file_type::not_found;
         p = p.parent_path()) {
        made = p;
        if (p == p.parent_path()) break;
    }
    auto undo = [&] {
        if (!made.empty()) fs::remove_all(made, ec);
    };
    if (hostDir.empty() || !Vnt_LfnDirCreate(dir) || !fs::is_directory(hostDir, ec)) {
        undo();
        Tell("!Das Verzeichnis des neuen Mandanten kann nicht angelegt werden:\n%s",
             "!The directory of the new client cannot be created:\n%s", Vnt_LfnNameOut(dir, 60));
        return 0;
    }

    VNT_PATH progDir{}, schema{};
    Vnt_LfnProgDirName(progDir, sizeof progDir);
    Vnt_LfnNameMake(schema, progDir, "schema.sql", nullptr);
    std::ifstream in(hostOf(schema));
    const std::vector<std::string> statements = in ? readStatements(in) : std::vector<std::string>{};
    if (statements.empty()) {
        undo();
        Tell("!Die Beschreibung der Tabellen fehlt oder ist leer:\n%s", "!The description of the tables is missing "
             "or empty:\n%s", Vnt_LfnNameOut(schema, 60));
        return 0;
    }

    // The database is made under a name of its own and takes its name only
    // when every table is there, so a failure never leaves half a database.
    const std::string hostTemp = hostOf(dbTemp), hostFile = hostOf(dbFile);
    fs::remove(hostTemp, ec);
    bool ok = !hostTemp.empty() && !hostFile.empty();
    if (ok) {
        VntDatabase db;
        ok = db.OpenEx((std::string("Driver=SQLite3;Database=") + dbTemp + ";").c_str());
        for (std::size_t i = 0; ok && i < statements.size(); ++i) ok = db.ExecuteSQL(statements[i].c_str());
        db.Close();
    }
    if (ok) {
        fs::rename(hostTemp, hostFile, ec);
        ok = !ec;
    }
    if (!ok) {
        fs::remove(hostTemp, ec);
        undo();
        Tell("!Die Datenbank des neuen Mandanten kann nicht angelegt werden:\n%s",
             "!The database of the new client cannot be created:\n%s", Vnt_LfnNameOut(dbFile, 60));
        return 0;
    }
    return 1;
}

VNT_APP_MODULE_EXPORT std::intptr_t DeskInstInit(long /*arg1*/, long /*arg2*/) {
    VntDatabase* db = Vnt_AppGetConnect();
    if (db == nullptr || !db->IsOpen()) {
        Tell("!Es ist kein Mandant verbunden: die Grunddaten können nicht eingetragen werden.",
             "!No client is connected: the base data cannot be entered.");
        return 0;
    }
    // Only into an empty article table: a second run keeps what is there.
    long count = -1;
    {
        VntRecordset rs(db);
        if (!rs.Open("SELECT COUNT(*) FROM article") || !rs.GetFieldValue(0, count)) return 0;  // the library told why
    }
    if (count > 0) return 1;

    struct Article {
        const char* de;
        const char* en;
        const char* price;
        int vat;
        int stock;
    };
    static const Article articles[] = {
        {"Kopierpapier A4, 500 Blatt", "Copy paper A4, 500 sheets", "4.20", 19, 400},
        {"Kugelschreiber blau", "Ballpoint pen, blue", "0.85", 19, 1200},
        {"Aktenordner breit", "Lever arch file", "2.95", 19, 300},
        {"Kaffee, 1 kg", "Coffee, 1 kg", "12.90", 7, 60},
        {"Fachbuch Buchführung", "Bookkeeping handbook", "39.80", 7, 25},
    };
    VNT_DATE today{};
    Vnt_Date(&today);
    char since[16];
    std::snprintf(since, sizeof since, "%04u-%02u-%02u", today.year, today.month, today.day);
    // One statement: all articles or none.
    std::string sql = "INSERT INTO article (nr, name, net_price, vat_percent, stock, valid_from) VALUES ";
    int nr = 0;
    for (const Article& a : articles) {
        sql += nr ? ", (" : "(";
        sql += std::to_string(++nr) + ", '" + Lib(Tr(a.de, a.en)) + "', " + a.price + ", " +
               std::to_string(a.vat) + ", " + std::to_string(a.stock) + ", '" + since + "')";
    }
    if (!db->ExecuteSQL(sql.c_str())) {
        Tell("!Die Grunddaten des Mandanten %s konnten nicht eingetragen werden.",
             "!The base data of the client %s could not be entered.", Vnt_AppDSN());
        return 0;
    }
    return 1;
}
