// vanto/msg.h - messages: handles and texts, the message box, reports.
//
// Every user-visible text lives in a message library (.vtm, see vanto/vtm.h)
// and is fetched by number through a handle, formatted with the C
// formatted-print rules, and shown in the library's message box, whose
// buttons, icon, help and switch-off checkbox are chosen by a few control
// characters at the front of the text. The box answers with a VNT_RESP:
// callers test for 1 (OK, Yes, Retry), 2 (Cancel, Abort) and 7 (No, Ignore).
//
// A message reference (VntMsgRef) is a number 1..65535 (32768 and above:
// system messages, always from the system library "VNT60LIB"), 0/-1 to
// iterate, or a literal text used as it stands.
//
// Texts returned without a caller buffer lie in a ring of four 1024-byte
// buffers (valid until four further texts were taken) or, for preloaded
// messages, in the library itself. One thread only.
#pragma once

#include <cstdarg>

#include "vanto/base.h"
#include "vanto/vtm.h"

// ---------------------------------------------------------------------------
// Handles
// ---------------------------------------------------------------------------

/// Opens a handle.
///   (null, null)    the system library (opened on first use, then shared)
///   (null, "name")  the main library "name" (".vtm" added when it has no
///                   extension), searched as written, then in the program
///                   directory and two and four levels above it; holds one
///                   reference of the system library as well
///   (lib, "seg")    the segment "seg" of lib (file-name part, 8 characters)
/// Null when the library cannot be found ("!Could not find Message Library
/// \"%s\"" is reported unless switched off by Vnt__MsgExtCheck); a main
/// library is not opened without the system library. A failed open takes no
/// reference. A name given as a small number is internal error 1000; a
/// parent that is not open, 999.
VANTO_API VNT_MSG Vnt_MsgHInit(VNT_MSG parent = nullptr, const char* name = nullptr);

/// Closes a handle; clears *handle when it was the system library (other
/// handles are left as they are). Before a system library reference goes,
/// checks the init counter against the system library's references
/// (internal errors 996, 997, 998; after 996 nothing is closed). A null
/// handle does nothing; one that is not open is internal error 999.
VANTO_API void Vnt_MsgHTerm(VNT_MSG* handle);

/// Starts the message interface: the system library name (null keeps
/// "VNT60LIB"; may be a full path), the default box title from string
/// `titleId` of `instance`. False when already started.
/// The system library is opened on first use: as named (relative names
/// against the current directory), else by its file name in the program
/// directory, in the directory that the environment variable
/// VANTORTL_MSGDIR names, and in the installed share/vantortl/<language>/
/// beside this library (<language> "en" for an English locale, else "de").
/// A file found there that is no library ends the search and is reported
/// as damaged with the reader's status; when none is found, the report
/// names every place looked at.
VANTO_API bool Vnt_MsgItfInit(VNT_HINSTANCE instance, long titleId,
                              const char* systemLibraryName = nullptr);
/// Ends the message interface.
VANTO_API void Vnt_MsgItfTerm();

// ---------------------------------------------------------------------------
// Texts
// ---------------------------------------------------------------------------

/// The text without formatting: in place when preloaded, else in the ring.
/// A text beginning with '~' loses it and every further '~' becomes '&'.
VANTO_API const char* Vnt_MsgHLoad(VNT_MSG h, VntMsgRef ref);

/// Copies at most size - 1 characters of the text into buf. Returns the
/// preloaded text in place when the message is preloaded, else buf.
VANTO_API const char* Vnt_MsgHGet(VNT_MSG h, VntMsgRef ref, char* buf, unsigned size);

/// The text used as a printf format with the arguments, in the ring.
VANTO_API const char* Vnt_MsgHSprintf(VNT_MSG h, VntMsgRef ref, ...);
VANTO_API const char* Vnt_MsgHVSprintf(VNT_MSG h, VntMsgRef ref, va_list args);

/// Formats into buf (at most 1023 characters and the NUL) and returns the
/// count written. A null buf, or buf being the text itself, formats into the
/// ring instead and returns the ring buffer's address (as an integer).
VANTO_API std::uintptr_t Vnt_MsgH_sprintf(VNT_MSG h, VntMsgRef ref, char* buf, ...);
VANTO_API std::uintptr_t Vnt_MsgH_vsprintf(VNT_MSG h, VntMsgRef ref, char* buf, va_list args);

/// ID of the last text fetched (0 after an iteration that failed).
VANTO_API long Vnt_MsgGetID();

/// The message box title (at most 119 characters) copied into buf; with a
/// null buf the title itself.
VANTO_API const char* Vnt_MsgGetTitle(char* buf, unsigned size);
/// Sets the box title (null restores the default); returns the previous one.
VANTO_API const char* Vnt_MsgSetTitle(const char* title);

/// Adjusts the switch counters: a = 0 raises the "not found" report counter
/// (no reports while above 0), a = 1 lowers it; b = 0/1 raise/lower the
/// second counter; c = 1 raises the third, and b = 0 lowers it (sic: kept
/// for compatibility); c = 1/0 raise/lower the reader's no-sharing counter.
VANTO_API void Vnt__MsgExtCheck(int a, int b, int c);

/// The counters of Vnt__MsgExtCheck (for callers elsewhere): `which` 0 the
/// "not found" report counter, 1 the second, 2 the third; others give 0.
VANTO_API int Vnt__MsgExtCounter(int which);

// ---------------------------------------------------------------------------
// Showing
// ---------------------------------------------------------------------------

/// Formats the message and shows it; the box's answer.
VANTO_API VNT_RESP Vnt_MsgH(VNT_MSG h, VntMsgRef ref, ...);
/// Shows a message of the system library, held open while it is shown, so
/// that the library's own questions can be asked before any application
/// library is open.
VANTO_API VNT_RESP Vnt_MsgSys(VntMsgRef ref, ...);
/// The same with a help context for the Help button.
VANTO_API VNT_RESP Vnt_MsgHHelp(VNT_MSG h, long helpId, VntMsgRef ref, ...);
/// The common path: an empty formatted text answers 2 without a box.
VANTO_API VNT_RESP Vnt__Msg(VNT_MSG h, VntMsgRef ref, va_list args, long helpId,
                            int defaultButton);
/// Internal forms of the text functions.
VANTO_API const char* Vnt__MsgGet(VNT_MSG h, VntMsgRef ref, char* buf, unsigned size);
VANTO_API const char* Vnt__MsgSprintf(VNT_MSG h, VntMsgRef ref, char* buf, va_list args);

/// A literal text in the plain box (no library, no checkbox memory): the
/// icon character ('-' = none) and button code of the message box grammar,
/// the rest formatted with the arguments. Answers 1, 2 or 7.
VANTO_API VNT_RESP Vnt_MsgBox(const char* format, ...);
/// The same with the arguments as the address of a `va_list` (null: the text
/// is used as it stands, unformatted). `owner` is advisory: the presenter
/// chooses the owner window. With `fixedAnswer` the answer does not depend on
/// the button: 2 for boxes with Cancel or Abort, 7 for the others (kept for
/// compatibility).
VANTO_API VNT_RESP Vnt_MsgBox(const char* format, char* args, VNT_HWND owner, bool fixedAnswer);

/// The application title of the plain box (at most 119 characters); null
/// only reads it.
VANTO_API const char* Vnt_MsgBoxAppTitle(const char* title);

// ---------------------------------------------------------------------------
// The application's library and its segment "APPMSG"
// ---------------------------------------------------------------------------

/// Sets the application library's name (default: the program's name).
VANTO_API void Vnt_AppMsgSetName(const char* name);
/// Opens the application library and its segment "APPMSG"; returns that
/// segment, or the named segment of the application library.
VANTO_API VNT_MSG Vnt_AppMsgInit(const char* segment = nullptr);
/// Closes the given handle and "APPMSG" (once when the handle is "APPMSG"
/// itself) and clears *handle. The application library stays open and is
/// reused by the next Vnt_AppMsgInit.
VANTO_API void Vnt_AppMsgTerm(VNT_MSG* handle);
VANTO_API VNT_MSG Vnt_AppMsgGetHandle();
VANTO_API VNT_RESP Vnt_AppMsg(VntMsgRef ref, ...);
VANTO_API const char* Vnt_AppMsgLoad(VntMsgRef ref);
/// A null buf is internal error 500 and yields null.
VANTO_API const char* Vnt_AppMsgGet(VntMsgRef ref, char* buf, unsigned size);

// ---------------------------------------------------------------------------
// Reports
// ---------------------------------------------------------------------------

/// Reports internal error `code` of a source file's check when `condition`
/// holds, and returns `condition`. Use as a guard:
///   if (Vnt__InternalError(p == nullptr, 12, __FILE__, __LINE__)) return false;
VANTO_API bool Vnt__InternalError(bool condition, int code, const char* sourceFile, int line);
#define Vnt_InternalError(cond, code) Vnt__InternalError((cond), (code), __FILE__, __LINE__)

/// Shows `text` as an internal error report (exclamation icon, OK and
/// Support) with the details page filled from description, file and line.
VANTO_API VNT_RESP Vnt__MsgErr(const char* sourceFile, int line, const char* text,
                               const char* description = nullptr, long helpId = 0);

/// Reports the host's last error (of the library's own host calls), if any,
/// after `text`; then clears it. False when there was none.
VANTO_API bool Vnt_MsgErrLastError(const char* text = nullptr);

/// A structured exception, as the host's exception filter sees it.
struct VNT_EXCEPTION_RECORD {
    uint32_t code;          ///< exception code (0xC0000005 access violation ...)
    uint32_t flags;         ///< 0 continuable, 1 non-continuable
    const void* address;    ///< where it happened
    uintptr_t info[2];      ///< access violations: read/write, address accessed
};

/// The body of an exception filter: reports the exception through the plain
/// box and returns the verdict: -1 continue execution (answer 1), 0 go on
/// searching (other answers); answer 2 ends the application with exit code 3.
VANTO_API int Vnt_ExceptHandleException__(const char* sourceFile, int line,
                                          const VNT_EXCEPTION_RECORD* info,
                                          const char* context);

// ---------------------------------------------------------------------------
// Resource strings of a module
// ---------------------------------------------------------------------------

/// One string of a module's string table.
struct VNT_RES_STRING {
    long id;
    const char* text;  ///< Windows-1252
};

/// Registers the string table of a module (a module without resources does
/// this when it loads); replaces an earlier table of the same module.
VANTO_API void Vnt_ResRegister(VNT_HINSTANCE module, const VNT_RES_STRING* table, std::size_t count);
/// The library's own module (strings 30061, 30062).
VANTO_API VNT_HINSTANCE Vnt_ResLibInstance();
/// Loads string `id` of `module` into buf (at most size - 1 characters); false
/// when there is none.
VANTO_API bool Vnt_ResLoadString(VNT_HINSTANCE module, long id, char* buf, unsigned size);
/// Language of the library's own strings and box captions: "DEU" or "ENU";
/// any text beginning with "EN" (either case) is English, every other
/// German. Until the application sets one, the language is that of the
/// system message library (its message 62000) once it is open, German
/// before.
VANTO_API void Vnt_ResSetLanguage(const char* lang);
/// The language in use: "DEU" or "ENU".
VANTO_API const char* Vnt_ResLanguage();

/// Resource strings of a module, with the same ID-or-text convention as
/// messages: an ID outside 1..65535 is a literal text.
class VANTO_API VntRes {
public:
    VntRes();
    void setup(VNT_HINSTANCE inst, VNT_HWND win);
    void set_inst(VNT_HINSTANCE inst);
    void set_win(VNT_HWND win);
    /// Title (at most 119 characters) from a text or a string ID; null or 0 clears.
    void set_title(VntMsgRef title);
    const char* title() const { return title_; }
    /// Loads and formats into the next public buffer.
    char* str(VntMsgRef id, ...);
    /// Loads unformatted into the next public buffer.
    char* str_load(VntMsgRef id);
    /// As str, then copies at most size - 1 characters into buf; the count.
    unsigned str_get(VntMsgRef id, char* buf, unsigned size, ...);
    /// Copies the current public buffer (size 0 copies nothing, returns 0).
    unsigned str_cpy(char* buf, unsigned size);

    char buf[4][1024];  ///< the public buffers, used in turn

private:
    bool load(VntMsgRef id, char* out, va_list* firstArg);
    char* vstr(VntMsgRef id, va_list* args);
    VNT_HINSTANCE inst_ = nullptr;
    VNT_HWND win_ = nullptr;
    char title_[120];
    char fmt_[1024];
    unsigned next_ = 0;
};
