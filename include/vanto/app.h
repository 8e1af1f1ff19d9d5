// vanto/app.h - the application's start and end, and the process-wide
// values of the application frame.
//
// An application calls Vnt_AppMainInit once at start and Vnt_AppMainTerm at
// the end (or Vnt_AppMainExitApplication to leave at once). In between the
// library keeps the program's names and start directory, the version record
// of the application's message library and the paths of the current client.
// A few small utilities of the frame (busy cursor, delays, keyboard state,
// number prefix ranges) live here as well. One thread only.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vanto/base.h"

// ---------------------------------------------------------------------------
// Start and end
// ---------------------------------------------------------------------------

/// Starts the application once. Does nothing and answers true when the
/// module table is already loaded. Else records the program directory, the
/// program name, its base name (without extension) and the current
/// directory as start directory; opens the application's message library
/// (named after the program, segment "APPMSG") - false when that fails;
/// loads the module table "Modules.vtm" and, only when it loaded, starts the
/// library services (Vnt_LibInit; false when that fails). Without a module
/// table the services are deliberately not started and the result is true.
/// Finally reads the version record. `commandLine` is accepted and not used.
VANTO_API bool Vnt_AppMainInit(const char* commandLine = nullptr);

/// Ends the application, only when the module table is loaded: Vnt_LibTerm,
/// closes "APPMSG", frees the module table. Without a module table nothing
/// is done (the message library of Vnt_AppMainInit stays open).
VANTO_API void Vnt_AppMainTerm();

/// Leaves at once: closes the database connection (the hook of
/// Vnt_AppSetConnCloseHook), destroys the main window of the window port if
/// there is one, and ends the process with `code`.
[[noreturn]] VANTO_API void Vnt_AppMainExitApplication(int code);

/// Installs the function that closes the current client's database
/// connection for Vnt_AppMainExitApplication (the database layer installs
/// it; null: none). Returns the previous one.
VANTO_API void (*Vnt_AppSetConnCloseHook(void (*closeConnection)()))();

/// Starts the library services in this order, stopping at the first that
/// fails with false: the message interface (title string 0xE000 of the
/// library's own resources, default system library), the locale settings,
/// the edit control (Vnt_EdInit, whose result is the result).
VANTO_API bool Vnt_LibInit();
/// Stops them in reverse order: Vnt_EdTerm, Vnt_SysTerm, Vnt_MsgItfTerm.
VANTO_API void Vnt_LibTerm();

/// The edit control's start and end with the library. The window toolkit
/// installs them (Vnt_EdSetHooks); until then Vnt_EdInit answers true and
/// Vnt_EdTerm does nothing.
VANTO_API bool Vnt_EdInit();
VANTO_API void Vnt_EdTerm();
/// Installs the edit control's start and end (null: none).
VANTO_API void Vnt_EdSetHooks(bool (*init)(), void (*term)());

// ---------------------------------------------------------------------------
// The program's names
// ---------------------------------------------------------------------------

/// Buffers of 260 characters filled by Vnt_AppMainInit: never null, empty
/// before it. The program directory ("Z:\opt\acme"), the program's file
/// name ("Fibu.exe"), that name without extension ("Fibu"), and the current
/// directory at initialisation (where module files without a path are
/// looked for).
VANTO_API const char* Vnt_AppProgDir();
VANTO_API const char* Vnt_AppProgName();
VANTO_API const char* Vnt_AppProgBaseName();
VANTO_API const char* Vnt_AppStartDir();

// ---------------------------------------------------------------------------
// The version record
// ---------------------------------------------------------------------------

/// The application's version, from section "APPVER" of its message library
/// (entries 1 to 9). The fields stand in this order.
struct VNT_APP_VER {
    std::int32_t nMajor;    ///< entry 3
    std::int32_t nMinor;    ///< entry 4
    std::int32_t nVersion;  ///< nMajor * 100 + nMinor
    std::int32_t nEntry6;   ///< entry 6
    std::int32_t nEntry5;   ///< entry 5
    char szEntry7[4];       ///< entry 7, at most 3 characters
    char szEntry8[4];       ///< entry 8, at most 3 characters
    char* pszText1;         ///< entry 1, a library buffer of 128 characters
    char* pszText2;         ///< entry 2, a library buffer of 60 characters
    char szEntry9[6];       ///< entry 9, at most 5 characters
};

/// The one process-wide record (never null; the caller does not free it).
/// Read on first use and kept while nMajor is not 0; a major version 0 (or
/// no "APPVER" section: all zero, empty texts) is read again on every call.
/// Numbers are taken as atoi does: leading digits, else 0.
VANTO_API const VNT_APP_VER* Vnt_AppVerInfo();

// ---------------------------------------------------------------------------
// The paths of the current client
// ---------------------------------------------------------------------------

/// Copies at most 259 characters of `value` (null: "") into the matching
/// buffer and terminates it; a longer value is cut without a report. Always
/// true.   Vnt_AppSetDataPath("C:\Daten\M1") => Vnt_AppDataPath() "C:\Daten\M1"
VANTO_API bool Vnt_AppSetDSN(const char* value);
VANTO_API bool Vnt_AppSetDataPath(const char* value);
VANTO_API bool Vnt_AppSetDDPath(const char* value);

/// The buffers themselves: never null, empty until set.
VANTO_API const char* Vnt_AppDSN();
VANTO_API const char* Vnt_AppDataPath();
VANTO_API const char* Vnt_AppDDPath();

// ---------------------------------------------------------------------------
// Utilities of the frame
// ---------------------------------------------------------------------------

/// Shows the wait cursor (through the window port) and sets the busy mark.
/// There is no nesting count: one Vnt_Unbusy ends any number of Vnt_Busy.
VANTO_API void Vnt_Busy();
/// Shows the arrow cursor again, only when the busy mark is set.
VANTO_API void Vnt_Unbusy();

/// Waits `ms` milliseconds while the window port's pending events are
/// handled, in short sleeps (no busy loop); 0 returns at once. `dialog` is
/// accepted for compatibility: the port hands dialog keys to dialogs itself.
VANTO_API void Vnt_Delay(unsigned long ms, VNT_HWND dialog = nullptr);
/// Waits `ms` milliseconds without handling events (sleeps).
VANTO_API void Vnt_DelayWait(unsigned long ms);

/// The modifier keys held down; the bits combine (Shift+Ctrl is 3).
enum KEYSTATE : int {
    KEYSTATE_NONE = 0,
    KEYSTATE_SHIFT = 1,
    KEYSTATE_CTRL = 2,
    KEYSTATE_ALT = 4,
};
/// The Shift, Ctrl and Alt state now, from the window port.
VANTO_API KEYSTATE Vnt_KeyState();

/// The numbers between `low` and `high` whose decimal text begins with the
/// digits of `prefix`: *outLow is low's text with every character '0' and
/// prefix's digits copied over its start (raised to `low` when below it),
/// *outHigh the same from high's text with '9'. Returns the computed low
/// value (before raising) when the range lies within, else - deliberately -
/// the computed high value, and sets *outHigh to `high`. Null outputs are
/// allowed.
///   (12, 1000, 9999) => 1200..1299, result 1200
///   (5, 10, 40)      => 50..40,     result 59
VANTO_API long Vnt_LongBeginsWith(long prefix, long low, long high, long* outLow, long* outHigh);
