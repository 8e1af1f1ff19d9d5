// vanto/dsn.h - the client registry "dsn.ini".
//
// An installation holds several clients, each with its own data directory
// and database. "dsn.ini" lists them; it lies beside the application file
// (INI type VNTINI_APP | VNTINI_ACCESS_RW, see vanto/ini.h):
//
//   [Settings]
//   DefaultDriver=SQLite3        ODBC driver of clients that name none
//   Count=2                      number of client sections
//   [Dsn1]                       one section per client, numbered from 1
//   *=Müller GmbH                display name
//   DtaPth=T:\Daten\Mueller      data path
//   Driver=SQLite3               further lines go into the connect string
//
// Display name: the first non-empty of "*", "DSN", "DtaPth", the path-spec
// key, "Datapath", "DBQ"; data path: the first non-empty of "DtaPth", the
// path-spec key, "Datapath", "DBQ". Paths stay in the library's form.
//
// Four settings of the application file (section "Settings") are read once
// per process: "DsnPathSpec" (the key naming a client's path in the
// connect string; default "DBQ"), "DsnFileFilter" (default "*.dat;*.mdb"),
// "DsnDBFileName" (default empty) and "DsnIsFile" (default 1).
//
// Paths and database files. With "DsnIsFile" set, a client's path names its
// database file or its data directory:
//  - a path naming an existing file is the database file, and the file's
//    directory is the data path (ReadEntry keeps only the directory, so
//    that after a write-back "DtaPth" holds the directory);
//  - any other path is the data directory, and the database file is
//    "DsnDBFileName" in it; with no "DsnDBFileName" (reported as an
//    inconsistency when the settings are read) the path itself is taken as
//    the database file, so that a driver can create it.
// Without "DsnIsFile" the path is the data path and what the driver gets,
// and "DsnDBFileName" plays no part. See DsnIni::ResolvePath.
#pragma once

#include <string>
#include <vector>

#include "vanto/base.h"
#include "vanto/ini.h"

/// Size of a connect-string buffer: connect strings stay below 2047
/// characters.
inline constexpr int VNT_DSN_CONNECT_SIZE = 2048;

/// Adds a pair to a connect-string buffer of VNT_DSN_CONNECT_SIZE
/// characters whose length is *length: an empty buffer first becomes
/// "ODBC;"; then "key=value;" (without a key: "value;") is appended when the
/// result stays below 2047 characters. Else internal error 1 and false, the
/// pair not added.   ("", "Driver", "SQLite3") => "ODBC;Driver=SQLite3;"
VANTO_API bool Vnt_DsnConnectAdd(char* buffer, long* length, const char* key, const char* value);

/// One client, as read from its section.
struct DsnEntry {
    char name[VNT_MAX_PATH];  ///< display name
    char path[VNT_MAX_PATH];  ///< data path
    char section[4096];       ///< the lines of its section, each ended by "\n"
};

/// The client registry: all entries of "dsn.ini" in memory.
class VANTO_API DsnIni {
public:
    /// Points the registry at "dsn.ini", section "Settings". `owner` is the
    /// selection dialog that owns the registry (null: none); with one,
    /// LoadSettings loads the entries too.
    explicit DsnIni(void* owner = nullptr);
    virtual ~DsnIni();
    DsnIni(const DsnIni&) = delete;
    DsnIni& operator=(const DsnIni&) = delete;

    /// Reads the settings: shows message 60351 with the file's path and
    /// returns false when "dsn.ini" does not exist. Reads "DefaultDriver"
    /// (default "Microsoft Access Driver (*.mdb)"), the application settings
    /// (the first time in the process, with their consistency reports) and
    /// "Count". With an owner, loads the entries as well (their failure is
    /// false).
    bool LoadSettings();
    /// Reads the "Settings" text and the entries; with a count of 0 the
    /// client sections are counted (CountSections). The first entry that
    /// cannot be read ends the list. Takes the file's time, which
    /// WriteEntries checks. A missing file gives an empty list (true).
    bool LoadEntries();
    /// The number of consecutive client sections from "Dsn1" in the file.
    int CountSections();
    /// Reads the client of section "Dsn<index + 1>"; false when it has no
    /// display name (or no section).
    bool ReadEntry(DsnEntry& entry, int index);
    /// The number (from 1) of the first client section of the file whose
    /// display name equals `name` without regard to case; 0 when none.
    int FindEntry(const char* name);
    /// Adds a client at `pos` (negative or beyond the end: at the end) and
    /// returns its index. A null name is empty. Without `replace`, an entry
    /// of the same display name is internal error 3, one of the same path
    /// internal error 4: -1. With `replace` such an entry (by name, else by
    /// path) takes the new name and path and its index is returned; nothing
    /// else changes (not marked modified). -1 before the entries are loaded.
    int AppendEntry(const char* name, const char* path, int pos = -1, bool replace = false);
    /// Removes entry `index` (-1: the last); returns the index now at that
    /// place (the new last one when it was the last), -1 when the index is
    /// out of range, and also when the list became empty.
    int RemoveEntry(int index = -1);
    /// Gives entry `index` the name and path (259 characters each, null is
    /// empty); its other lines stay. Lines that named the entry before go
    /// when the name changes ("DSN"), lines that gave its old path go when
    /// the path changes ("DBQ", "Datapath", the path-spec key), so that the
    /// file and the connect string name the new ones. Marks the registry
    /// modified; false for an index out of range.
    ///   "DSN=Alt\nDBQ=T:\A\nDriver=X\n", ("Neu", "T:\B") => "Driver=X\n"
    bool ChangeEntry(int index, const char* name, const char* path);
    /// Moves entry `from` with all its lines to place `to` (the entries
    /// between close up). Marks the registry modified; false when either
    /// index is out of range. (0, 2) of A B C => B C A.
    bool MoveEntry(int from, int to);
    /// Writes the registry back when it was changed (true without writing
    /// when not; false before the entries are loaded). When the file's time
    /// differs from the time at load, asks message 60363: Cancel gives
    /// false, No true without writing. The file then holds the "Settings"
    /// text and one section per entry in list order (older client sections
    /// beyond the count go); "Count" is written, and per entry "*" is
    /// removed when the name is empty or equals the path (any case) or, with
    /// "DsnIsFile", names a file directly in the path (a client known by its
    /// database file, whose name ReadEntry took from the path), else
    /// written; "DBQ" and "Datapath" are removed; the path goes under
    /// "DtaPth". The time at load becomes the file's new time.
    bool WriteEntries();

    /// Database file and data directory of a client's path (see the file
    /// comment); either output may be null. False for an empty path.
    ///   (DsnIsFile 1, DsnDBFileName "vanto.db") "T:\D\M" => "T:\D\M\vanto.db", "T:\D\M"
    ///   "T:\D\M\x.db" (exists) => "T:\D\M\x.db", "T:\D\M"
    static bool ResolvePath(const char* path, char (*dbFile)[VNT_MAX_PATH], char (*dataDir)[VNT_MAX_PATH]);

    // -- state -----------------------------------------------------------
    /// The entry count ("Count" of the file until the entries are loaded).
    int Count() const { return count_; }
    int CountAtLoad() const { return countAtLoad_; }
    /// Entry `index`, null when out of range.
    const DsnEntry* Entry(int index) const;
    const char* DefaultDriver() const { return defaultDriver_; }
    /// The "Settings" section as read, each line ended by "\n".
    const char* SettingsText() const { return settings_; }
    bool IsModified() const { return modified_; }
    bool HasEntries() const { return loaded_; }
    /// The full name of "dsn.ini".
    const char* File() const { return ini_.File(); }
    /// The packed time (date high, time low) of "dsn.ini" at load; 0 when
    /// it did not exist.
    unsigned long TimeAtLoad() const { return timeAtLoad_; }
    void* Owner() const { return owner_; }
    VntIniX& Ini() { return ini_; }

    // -- the application settings, read once per process ----------------
    /// "DsnPathSpec".
    static const char* PathSpec();
    /// "DsnFileFilter"; when shorter than 127 characters it is followed by a
    /// copy of itself behind its terminator and a second NUL: description
    /// and pattern of a file dialog.
    static const char* FileFilter();
    /// "DsnDBFileName".
    static const char* DBFileName();
    /// "DsnIsFile" != 0.
    static bool IsFile();
    /// Registries alive in the process.
    static long LiveCount();

    // -- connecting a client ---------------------------------------------
    /// Connects the process-wide database to a client (the settings must be
    /// loaded, LoadSettings). An empty or null `name` means the registry's
    /// current name (Name()). With a null `path` the client comes from
    /// "dsn.ini" (found by its display name; none: false); with a path the
    /// connection goes directly to that path, stored under the path-spec key.
    /// The connect string holds, in this order: "Ddfpath" (empty: the program
    /// directory), "Datapath" (from "dsn.ini"; with a path: the path-spec
    /// pair instead), "Driver" (empty: DefaultDriver()), "UID",
    /// "MAXBUFFERSIZE=4096", then the client's other lines in file order:
    /// "DtaPth" and path-spec lines as the path-spec pair, every other line
    /// as it stands; "*" and "DSN" name the client, "Driver", "UID",
    /// "Ddfpath" and "Datapath" are not repeated. The path-spec value is the
    /// database file of the path (ResolvePath), the data path its data
    /// directory. No data path at all is an internal error report: false.
    /// On success the process-wide data source name, DD path and data path
    /// describe the client and the main window gets 0x7F15; on failure the
    /// previous connection is open again (when there was one) and the
    /// registry takes the process-wide values back.
    bool Connect(const char* name, const char* path = nullptr);
    /// The connect string built by the last Connect ("ODBC;..."), the
    /// client's name, data path, DD path, driver and user identifier.
    const char* ConnectString() const { return connect_; }
    const char* Name() const { return name_; }
    const char* DataPath() const { return dataPath_; }
    const char* DDPath() const { return ddPath_; }
    const char* Driver() const { return driver_; }
    const char* UID() const { return uid_; }
    /// Forgets the changes made to the list in memory (the modified mark);
    /// the file stays as it is.
    void DiscardChanges() { modified_ = false; }

private:
    bool readName(int number, char (&name)[VNT_MAX_PATH]);
    bool add(const char* key, const char* value);
    bool addPath(const char* value);

    VntIniX ini_;
    void* owner_;
    char defaultDriver_[VNT_MAX_PATH];
    char settings_[4096];
    std::vector<DsnEntry> entries_;
    int count_ = 0;
    int countAtLoad_ = 0;
    unsigned long timeAtLoad_ = 0;
    bool modified_ = false;
    bool loaded_ = false;
    // The connection being built (Connect).
    char connect_[VNT_DSN_CONNECT_SIZE] = {};
    long connectLen_ = 0;
    char name_[VNT_MAX_PATH] = {};
    char dataPath_[VNT_MAX_PATH] = {};
    char ddPath_[VNT_MAX_PATH] = {};
    char driver_[80] = {};
    char uid_[80] = {};
};

// ---------------------------------------------------------------------------
// The connection of the current client
// ---------------------------------------------------------------------------
//
// The application works on one database connection at a time. The process-
// wide data source name, data path and DD path (vanto/app.h) describe it,
// in the library's path form, and the main window gets 0x7F15 (0, 0) after
// every successful connect, restore and close. A failed open brings the
// last connection that opened back, so the application keeps its client.
//
// The saved-connection text (Vnt_AppConnSave) is three lines joined by a
// line feed: the connect string, the data source name, the data path.

class VntDatabase;
class VntRecordset;

/// Connects directly to `path` (empty or null: `name` is the path) under the
/// display name `name`: closes the current connection, loads the registry's
/// settings and connects (DsnIni::Connect). The connection, or null when the
/// settings or the connect failed. Always a path: Vnt_AppConnect("Muster KG",
/// nullptr) opens a database in the directory "Muster KG". To connect a
/// client of "dsn.ini" by its name, call Vnt_DsnConnectClient("Muster KG").
VANTO_API VntDatabase* Vnt_AppConnect(const char* name, const char* path);
/// Without `restore` an open connection is returned as it is. Else (or
/// without one) the client selection runs with `text` (null or empty: the
/// text of system message 60300) through Vnt_DlgDsn. The connection; the
/// application ends (code 2) when none could be opened.
VANTO_API VntDatabase* Vnt_AppConnect(const char* text, bool restore = false, bool dialogOnly = false);
/// Opens the client's database: unless `dialogOnly`, first `text` as a
/// connect string (only when it holds a "key=value" pair: this host has no
/// driver prompt that could complete "ODBC;" alone); then, until a database
/// is open, the client selection (vanto/ui/clientsel.h, Vnt_DsnSelect). When
/// no database is open afterwards the application ends with exit code 2
/// (Vnt_AppMainExitApplication): the applications cannot run without a
/// client. `connection` (may be null) receives the connection. True when the
/// direct open or the selection succeeded. `restore` is handed to the
/// selection.
VANTO_API bool Vnt_DlgDsn(const char* text, VntDatabase** connection, bool restore, bool dialogOnly);
/// Remembers the open connection's connect string ("" when none is open)
/// and closes it (Vnt_AppCloseConnect; nothing else changes). The
/// remembered text, valid until the next call.
VANTO_API const char* Vnt_AppConnectSaveClose();
/// Vnt_AppConnect(connect, true, false); an empty or null `connect` is the
/// one Vnt_AppConnectSaveClose remembered.
VANTO_API VntDatabase* Vnt_AppConnectRestore(const char* connect = nullptr);
/// Closes and deletes the connection; the process-wide paths stay.
VANTO_API void Vnt_AppCloseConnect();
/// Vnt_AppCloseConnect, empties the data source name, DD path and data
/// path, and sends 0x7F15 to the main window. Vnt_AppMainExitApplication
/// calls it (installed when a connection is first made).
VANTO_API void Vnt_AppConnClose();
/// The connection, null when none.
VANTO_API VntDatabase* Vnt_AppGetConnect();
/// Sets the record set's database to the connection; true when that is
/// open; false for a null record set.
VANTO_API bool Vnt_AppGetConnect(VntRecordset* recordset);
/// The open connection's connect string (passwords included: not for
/// showing); "" when none is open.
VANTO_API std::string Vnt_AppConnGet();
/// The parts of a saved-connection text (null is ""):
/// the connect string - the text before the first line feed, "" when there
/// is no line feed after the first character;
VANTO_API std::string Vnt_AppConnGet(const char* saved);
/// the data source name - between the first and the second line feed (all
/// after the first when there is no second), "" without a line feed;
VANTO_API std::string Vnt_AppConnGetDsn(const char* saved);
/// the data path - all after the second line feed ("" with fewer than two;
/// further lines are part of it).
VANTO_API std::string Vnt_AppConnGetDatapath(const char* saved);
/// The saved-connection text of the connection now: connect string, line
/// feed, data source name, line feed, data path.
VANTO_API void Vnt_AppConnSave(std::string& saved);
/// Opens the saved connection again (Vnt_AppConnectRestore with its
/// connect string) and sets the data source name and data path from it:
/// true, and 0x7F15. With an empty connect string: Vnt_AppConnClose and
/// false. When the selection had to step in and the user chose another
/// client, that client stays connected: false.
VANTO_API bool Vnt_AppConnRestore(const char* saved);
/// Adds a client to "dsn.ini" at the end or, when a client of that name
/// (else of that path) exists, gives it the new name and path. Only an
/// added client is written: a replacement stays in memory and is not saved
/// (true). False when the list cannot be written.
VANTO_API bool Vnt_AppConnectDSNAppend(const char* name, const char* path);
/// Removes a client from "dsn.ini": found by `path` when one is given, else
/// by `name`; a client not found removes the LAST client (kept as the
/// applications know it). The result of writing the list.
VANTO_API bool Vnt_AppConnectDSNRemove(const char* name, const char* path);

// ---------------------------------------------------------------------------
// What the client selection does (vanto/ui/clientsel.h shows it)
// ---------------------------------------------------------------------------

/// Connects the client `name` of "dsn.ini" through `registry` (settings
/// loaded) and then runs the client-change modules (Vnt_AppModRunClientChain);
/// when they fail the connection is closed (Vnt_AppConnClose). True when the
/// client is connected and the chain passed.
VANTO_API bool Vnt_DsnConnectClient(DsnIni& registry, const char* name);
/// The same with a registry of its own (false when "dsn.ini" is missing).
VANTO_API bool Vnt_DsnConnectClient(const char* name);
/// True when a client's path exists: with "DsnIsFile" its database file
/// (DsnIni::ResolvePath), else the path as a directory or file.
VANTO_API bool Vnt_DsnPathExists(const char* path);
/// Starts the client installation (module 24, by number) for `path`: with
/// "DsnIsFile" and a path whose file name is "DsnDBFileName" (any case) for
/// its directory, else for the path; argument 1 is a `const char*` to that
/// text. True when the module loaded and its result is not 0.
VANTO_API bool Vnt_DsnInstallClient(const char* path);
/// OK of the selection for entry `index` of `registry` (entries loaded):
/// a path that does not exist is asked about (60358; only Yes goes on) and
/// the installation started for it; the list is written; the connection now
/// is kept in `saved` (Vnt_AppConnSave); then the client is connected
/// (Vnt_DsnConnectClient). True when the selection may close with OK; false
/// keeps it open (also for a bad index).
VANTO_API bool Vnt_DsnSelectOk(DsnIni& registry, int index, std::string& saved);
/// Cancel of the selection: a changed list is asked about (60359; Cancel and
/// No keep the selection open: false) and its changes dropped without
/// writing. When `registry` is the only registry alive, the connection
/// `saved` when the selection began is restored (Vnt_AppConnRestore) if it
/// differs from the connection now or none is open. True: close with Cancel.
VANTO_API bool Vnt_DsnSelectCancel(DsnIni& registry, const char* saved);
/// The installation step of the entry dialog for a client `name` at `path`
/// (`moved`: the path is new or changed): starts the installation
/// (Vnt_DsnInstallClient; failure: false, nothing else done), keeps the
/// connection now, then - moved - connects the registry to name and path
/// or - not moved - makes `name` the data source name, sends 0x7F15 and
/// loads module 23 by number. True when that module loaded with a non-zero
/// result. Otherwise the kept connection is restored, `formerPath` (may be
/// null) receives the data source name now, and false.
VANTO_API bool Vnt_DsnSetUpClient(DsnIni& registry, const char* name, const char* path, bool moved,
                                  char (*formerPath)[VNT_MAX_PATH]);
