// Private side of the module loader shared by its sources and the tests.
#pragma once

#include <cstdint>
#include <string>

#include "vanto/module.h"

namespace vnt::app {

/// Source name of the loader's internal errors and reports.
inline constexpr const char* kModSource = "App/Vnt_App";
inline constexpr int kWindowSlots = 100;
inline constexpr int kStackSize = 10;

/// The loader's process-wide state (resetModules puts it back).
struct ModState {
    VNT_APP_MODINFOEX* table = nullptr;  ///< count + 1 records, or null
    long count = 0;
    struct Slot {
        VNT_HWND window;
        VNT_APP_MODINFOEX* record;
    };
    Slot slots[kWindowSlots] = {};       ///< occupied slots at the front
    VNT_APP_MODINFOEX* current = nullptr;
    VNT_APP_MODINFOEX* exclusive = nullptr;
    long cursor = -1;
    bool allowLoad = false;
    bool silent = false;                 ///< the module loaded by number is numbered -1
    long result = 0;
    const char* defaultFunction = "";
    long stack[kStackSize] = {};
    int top = -1;
    // The last load of the table that failed: its file, the reader's status
    // (0: no load tried yet), and whether that was reported already.
    std::string tableFile;
    long tableStatus = 0;
    bool tableReported = false;
};
ModState& modState();

/// Reports internal error `code` of the loader when `cond` holds.
bool modInternalError(bool cond, int code, int line);
/// The loader's check: reports internal error `code` with the line of the
/// check when `cond` holds, and yields `cond` (`if (MOD_IE(p == nullptr, 3))`).
#define MOD_IE(cond, code) vnt::app::modInternalError((cond), (code), __LINE__)

/// The start directory of the application; before Vnt_AppMainInit recorded
/// it, the current directory (which it would record).
std::string startDir();

/// The command identifier of a module number: + 10000 for 1..65535.
std::int32_t commandId(long number);
/// Removes the flag prefixes from `file` (in place) and returns their bits.
VNT_APP_MODFLAGS parsePrefixes(char* file);
/// An entry function's result that is a plain value, not a template.
bool isPlainResult(std::intptr_t result);

/// The record of a module number (moves the enumeration cursor to it).
VNT_APP_MODINFOEX* findRecord(long number);
/// Frees a module library: without a record at once; with one only when it
/// has no open windows, clearing its instance and unload mark.
void freeLibrary(VNT_HINSTANCE instance, VNT_APP_MODINFOEX* record);
/// Frees the libraries whose unload is pending, except `keep`'s.
void runPendingUnloads(const VNT_APP_MODINFOEX* keep);

}  // namespace vnt::app
