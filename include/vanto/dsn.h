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
