// Process-wide state of the database layer and the client registry, and
// its reset for tests.
#pragma once

#include <string>

#include "vanto/base.h"

class VntDatabase;

namespace vnt::db {

struct State {
    // ODBC
    void* env = nullptr;   ///< the environment handle (SQLHENV), made on first use
    long connections = 0;  ///< connection handles alive on it
    std::string lastState; ///< SQLSTATE of the last failed call
    std::string lastText;  ///< its text, Windows-1252
    long lastNative = 0;

    // Client registry: the application settings, read once.
    bool dsnSettingsRead = false;
    char pathSpec[40] = {};       ///< "DsnPathSpec": the key of a client's path
    char fileFilter[260] = {};    ///< "DsnFileFilter", doubled for a file dialog
    char dbFileName[40] = {};     ///< "DsnDBFileName"
    long isFile = 1;              ///< "DsnIsFile"
    long liveRegistries = 0;      ///< DsnIni objects alive

    // The connection of the current client.
    VntDatabase* connection = nullptr;  ///< null when none; owned here
    std::string lastGood;               ///< connect string of the last database that opened
    std::string savedConnect;           ///< kept by Vnt_AppConnectSaveClose
    bool closeHookSet = false;          ///< Vnt_AppConnClose installed for the exit
};

State& state();

/// Back to a fresh process: the connection closed and deleted, settings to
/// be read again, no last failure. The ODBC environment goes only when no
/// connection is left on it.
void reset();

/// True when `path` (the library's form, no wildcards) names an existing
/// file, not a directory.
bool fileExists(const char* path);
/// True when `path` (the library's form, no wildcards) names an existing
/// directory or volume.
bool dirExists(const char* path);

}  // namespace vnt::db
