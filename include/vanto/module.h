// vanto/module.h - the module table and the module loader.
//
// An application is a main program plus optional modules: module libraries
// whose exported entry function the library calls in-process, separate
// programs, and help files. The modules of an installation are listed in
// the message library "Modules.vtm" (placed like the application file: the
// INI directory of the program directory), read by Vnt_AppMainInit. Each
// line of it is one module:
//
//   number, file, description, function, flags
//
// (number tokens may be written "$1F" or "0x1F"). The file may carry
// prefixes that add flags: "-" quiet, "hlp" help file, "i" a mark, "ini"
// indirection through an INI file, followed by "w", "s" and "a" for where
// that INI file lies. Menus carry a module's command identifier; the
// application starts a module with Vnt_AppModLoad.
//
// The library also keeps a table of the open main and module windows
// (Vnt_AppInit / Vnt_AppTerm), unloads a module library when the last window
// of its document template closed, passes a result and a small stack of
// values between caller and module, and checks a module file's version.
//
// Module libraries on POSIX: a module file "x.dll" (or "x" without an
// extension) is loaded as the shared library "x.so", else "libx.so", from
// the same directory (a name without a directory: through the host's
// library search). A module library resolves the library's functions from
// the process that loads it.
//
// Everything runs on the user-interface thread; the state is process-wide.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vanto/base.h"

// ---------------------------------------------------------------------------
// Flags of a module
// ---------------------------------------------------------------------------

/// Bits of a module's flags: the flags number of its line plus the bits of
/// the file's prefixes.
using VNT_APP_MODFLAGS = std::uint32_t;
/// Single instance: while the module's window exists, activate it instead.
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_SINGLE = 0x0001;
/// Ask the main window (message 0x7F13) before loading.
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_ASK = 0x0002;
/// Exclusive: once loaded, other loads first close it (asking the user).
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_EXCLUSIVE = 0x0004;
/// Keep the library loaded after its entry function gave a plain result.
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_KEEP = 0x0008;
/// Load even while an exclusive module is open.
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_ALLOW = 0x0010;
/// Quiet (prefix "-"): an optional module; see Vnt_AppModLoad's failure.
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_QUIET = 0x1000;
/// Help module (prefix "hlp", which also sets VNT_APP_MOD_MARK).
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_HELP = 0x2000;
/// Prefix "i": recorded only, the loader does not test it.
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_MARK = 0x4000;
/// Client-change module that each user can switch off in the user file.
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_USER_OPTION = 0x8000;
/// Prefix "ini": the module is named by an INI file (see Vnt_AppModLoad).
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_INI = 0x10000;
/// "w" after "ini": that INI file lies in the system's configuration
/// directory (INI type VNTINI_WINDIR; on POSIX the program directory).
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_INI_WINDIR = 0x20000;
/// "s" after "ini": that INI file lies in the system directory (on POSIX,
/// as for "w", the program directory).
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_INI_SYSDIR = 0x40000;
/// "a" after "ini": that INI file is placed like the application's
/// read-write file (VNTINI_APPRW | VNTINI_ACCESS_RW).
inline constexpr VNT_APP_MODFLAGS VNT_APP_MOD_INI_APPRW = 0x80000;

// ---------------------------------------------------------------------------
// Special module numbers
// ---------------------------------------------------------------------------

/// Vnt_AppModLoad: the record at the enumeration cursor.
inline constexpr long VNT_APP_MOD_AT_CURSOR = 0x7FFFFFFF;
/// Vnt_AppModLoad: argument 1 is a `const long*` to module numbers, ended
/// by a value below 1, all of which are disabled.
inline constexpr long VNT_APP_MOD_DISABLE_LIST = 0x7FFFFFFE;
/// Vnt_AppModInfoEx: the first record, and the next one. They are the two
/// smallest 32-bit numbers; on hosts whose long is wider, the same bit
/// patterns as positive numbers (0x80000000, 0x80000001) mean the same.
inline constexpr long VNT_APP_MODINFO_FIRST = INT32_MIN;
inline constexpr long VNT_APP_MODINFO_NEXT = INT32_MIN + 1L;

// ---------------------------------------------------------------------------
// Document templates
// ---------------------------------------------------------------------------

/// What the loader needs of a document template: a module library's entry
/// function may return one (see VNT_APP_MODENTRY). The window toolkit
/// implements it on its own templates; a module may implement it directly.
class VntDocTemplate {
public:
    virtual ~VntDocTemplate() = default;
    /// Opens a new untitled, visible document; returns the template of the
    /// document opened (usually this one), or null when none was opened.
    virtual VntDocTemplate* OpenNewDocument() = 0;
    /// True while documents of this template are open.
    virtual bool HasOpenDocuments() = 0;
    /// Takes the template out of the application's list of templates.
    virtual void RemoveFromApp() = 0;
    /// Destroys the template (called before its library is freed; the
    /// template is not used afterwards).
    virtual void Destroy() = 0;
};

// ---------------------------------------------------------------------------
// The module record
// ---------------------------------------------------------------------------

/// A module as the application sees it: the leading fields of
/// VNT_APP_MODINFOEX.
struct VNT_APP_MODINFO {
    std::int32_t nCmdId;         ///< the module number + 10000 for numbers 1..65535, else the number
    char szFile[20];             ///< module file without its prefixes (19 characters)
    char szDescription[40];      ///< display name in messages
    char szFunction[30];         ///< entry function; help key word; INI indirection
    VNT_APP_MODFLAGS nFlags;     ///< VNT_APP_MOD_* bits
    std::int32_t nModule;        ///< the module number
};

/// The full record kept in the module table.
struct VNT_APP_MODINFOEX {
    std::int32_t nCmdId;
    char szFile[20];
    char szDescription[40];
    char szFunction[30];
    VNT_APP_MODFLAGS nFlags;
    std::int32_t nModule;
    VNT_HWND hWndMain;            ///< the module's registered window (flags 1 and 4)
    VNT_HINSTANCE hInstance;      ///< the loaded module library, or null
    VntDocTemplate* pDocTemplate; ///< template the entry function gave, or null
    bool bUnloadPending;          ///< free the library once no window is open
    bool bDisabled;               ///< the module may not be started
    std::int32_t nOpenWindows;    ///< registered windows of this module
};

static_assert(offsetof(VNT_APP_MODINFO, szFile) == 4 && offsetof(VNT_APP_MODINFO, szDescription) == 24 &&
              offsetof(VNT_APP_MODINFO, szFunction) == 64 && offsetof(VNT_APP_MODINFO, nFlags) == 96 &&
              offsetof(VNT_APP_MODINFO, nModule) == 100 && sizeof(VNT_APP_MODINFO) == 104);
static_assert(offsetof(VNT_APP_MODINFOEX, szFile) == offsetof(VNT_APP_MODINFO, szFile) &&
              offsetof(VNT_APP_MODINFOEX, szDescription) == offsetof(VNT_APP_MODINFO, szDescription) &&
              offsetof(VNT_APP_MODINFOEX, szFunction) == offsetof(VNT_APP_MODINFO, szFunction) &&
              offsetof(VNT_APP_MODINFOEX, nFlags) == offsetof(VNT_APP_MODINFO, nFlags) &&
              offsetof(VNT_APP_MODINFOEX, nModule) == offsetof(VNT_APP_MODINFO, nModule) &&
              offsetof(VNT_APP_MODINFOEX, hWndMain) >= sizeof(VNT_APP_MODINFO),
              "VNT_APP_MODINFO is the leading part of VNT_APP_MODINFOEX");
static_assert(offsetof(VNT_APP_MODINFOEX, bDisabled) == offsetof(VNT_APP_MODINFOEX, bUnloadPending) + 1 &&
              sizeof(bool) == 1);

/// A module library's entry function, exported by name (extern "C"): takes
/// arguments 1 and 2 of the load and returns a plain result (below 0x10000
/// as an unsigned number, or -1) or the address of a VntDocTemplate. The
/// result is pointer-sized so that a template's address fits on 64-bit
/// hosts; on 32-bit hosts it is the `long` of old.
using VNT_APP_MODENTRY = std::intptr_t (*)(long arg1, long arg2);

/// Marks a function or object a module library exports by name.
#if defined(_WIN32)
#  define VNT_APP_MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#  define VNT_APP_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif

// ---------------------------------------------------------------------------
// The version record of a module file
// ---------------------------------------------------------------------------

/// A module file's fixed version block, 13 double words (52 bytes). On
/// POSIX a module library carries it as the exported object
/// `VntModuleVersion` (declare it with VNT_APP_MODULE_VERSION); the
/// exported object's size must be 52.
struct VNT_APP_MODVERSION {
    std::uint32_t dwSignature;         ///< 0xFEEF04BD
    std::uint32_t dwStrucVersion;      ///< 0x00010000
    std::uint32_t dwFileVersionMS;     ///< file version, high double word
    std::uint32_t dwFileVersionLS;     ///< file version, low double word
    std::uint32_t dwProductVersionMS;
    std::uint32_t dwProductVersionLS;
    std::uint32_t dwFileFlagsMask;
    std::uint32_t dwFileFlags;
    std::uint32_t dwFileOS;
    std::uint32_t dwFileType;          ///< 2: a library
    std::uint32_t dwFileSubtype;
    std::uint32_t dwFileDateMS;
    std::uint32_t dwFileDateLS;
};
static_assert(sizeof(VNT_APP_MODVERSION) == 52);

inline constexpr std::uint32_t VNT_APP_MODVERSION_SIGNATURE = 0xFEEF04BD;
/// The exported name of a module library's version block.
#define VNT_APP_MODVERSION_SYMBOL "VntModuleVersion"
/// Two 16-bit parts as one double word: VNT_APP_VERSION_DW(3, 1) == 0x00030001.
#define VNT_APP_VERSION_DW(high, low) ((static_cast<std::uint32_t>(high) << 16) | (static_cast<std::uint32_t>(low) & 0xFFFF))

/// Declares the module library's version block (at namespace scope, once):
///   VNT_APP_MODULE_VERSION(VNT_APP_VERSION_DW(3, 1), VNT_APP_VERSION_DW(0, 7));
/// gives file and product version 3.1.0.7.
#define VNT_APP_MODULE_VERSION(fileHigh, fileLow)                                                   \
    VNT_APP_MODULE_EXPORT const VNT_APP_MODVERSION VntModuleVersion = {                            \
        VNT_APP_MODVERSION_SIGNATURE, 0x00010000u, (fileHigh), (fileLow), (fileHigh), (fileLow), \
        0x3Fu, 0u, 0x40004u, 2u, 0u, 0u, 0u}

// ---------------------------------------------------------------------------
// Loading modules
// ---------------------------------------------------------------------------

/// Starts module `module` of the table with the two arguments; true when it
/// was started. VNT_APP_MOD_AT_CURSOR takes the record at the enumeration
/// cursor (internal error 6 outside the table); VNT_APP_MOD_DISABLE_LIST
/// disables the numbers `arg1` points to (an unknown number: internal error
/// 12, false; those before it stay disabled). An unknown number shows
/// message 60296; a disabled module sends VNT_WM_COMMAND with its command
/// identifier to the main window and gives false. With `search` the file
/// is looked for (Vnt_LfnFileFind: the current directory, then the program
/// directory) as named, then with the extension "DLL" and as that
/// library's host files ("x.so", "libx.so"), else taken from the program
/// directory. Then as the load by name, with
/// the record's file, function, flags and description; the record is the
/// current module (and stays so after a success). Without a table:
/// internal error 4, false.
VANTO_API bool Vnt_AppModLoad(long module, long arg1 = 0, long arg2 = 0, bool search = false);

/// Starts the module file `file`:
///  - VNT_APP_MOD_HELP: opens the help (program directory + `file`, with the
///    extension "html") at the key word `function`, or at the current
///    module's number as context; an empty `file` opens the program's own
///    help (needs a main window);
///  - VNT_APP_MOD_INI: `function` is "[Section] Key ArgKey"; the module's
///    path is read from Key of that section of the INI file `file`, and
///    its argument text from ArgKey (internal error 15 without "]", 16
///    without a key); an empty path fails the load;
///  - an exclusive module open: asks (message 60285) and closes its window
///    first, unless VNT_APP_MOD_ALLOW or Vnt_AppModAllowLoad allowed it;
///  - a single-instance current module whose window exists is activated
///    (VNT_WM_MDIACTIVATE to the main window) instead: true; with flag 2 or
///    4 a non-zero answer of the main window to 0x7F13 cancels;
///  - a file without a directory is taken from the start directory;
///  - an extension other than "dll" (or "so") names a program: started in
///    its directory with the argument text (a name without a directory is
///    retried through the PATH); true when it started;
///  - else a library: its entry function `function` (empty: the default of
///    Vnt_AppModSetFunctionName; none: internal error 2) is called with the
///    arguments; a plain result becomes the module result and the library
///    is freed unless VNT_APP_MOD_KEEP; a template opens a new document and
///    is kept with the library in the current module until its last window
///    closed. A missing entry function shows message 60299.
/// A module that cannot be started reports 60298 (60297 with
/// VNT_APP_MOD_QUIET) with 60295's text of the host's error; a quiet
/// client-change module (number -1) fails silently. An empty `file`:
/// internal error 1. `display` (empty: `file`) names the module in messages.
VANTO_API bool Vnt_AppModLoad(const char* file, long arg1, long arg2, const char* function,
                              VNT_APP_MODFLAGS flags, const char* display);

/// The record of module `module` (sets the enumeration cursor to it), or
/// with VNT_APP_MODINFO_FIRST / VNT_APP_MODINFO_NEXT the first and the next
/// record of the table. Null when there is none (no next record: the cursor
/// stays on the last). Without a loaded table: internal error 3, null. The
/// pointer stays valid until Vnt_AppMainTerm.
VANTO_API const VNT_APP_MODINFOEX* Vnt_AppModInfoEx(long module);
/// The same record through its leading fields.
VANTO_API const VNT_APP_MODINFO* Vnt_AppModInfo(long module);

/// The window in slot `slot` (0..99) of the window table; null for an empty
/// slot or a slot outside 0..99. Occupied slots are kept at the front.
VANTO_API VNT_HWND Vnt_AppModHwnd(long slot);

/// Registers a main or module window of module `module` (negative: the
/// module being loaded now; none: internal error 5, false). A window of no
/// module of the table is not registered: true. Windows of modules with
/// flag 1 or 4 become the module's window. False for a null window, a
/// window registered already, and a full table (internal error 8). Pending
/// unloads of other modules run first.
VANTO_API bool Vnt_AppInit(VNT_HWND window, long module);
/// Unregisters a window: the exclusive module ends (whichever window
/// closes), the module's window is forgotten, pending unloads of other
/// modules run, and when the module's last window closed and it holds a
/// document template its library is to be freed with the next registration
/// or unregistration of another module's window.
VANTO_API void Vnt_AppTerm(VNT_HWND window);

/// The module result: the last plain result of an entry function, or what
/// a module set. Set to 0 at the start of every load by name.
VANTO_API long Vnt_AppModResult();
VANTO_API void Vnt_AppModSetResult(long result);

/// The value stack between caller and module: at most 10 values, last in,
/// first out (named "queue" for compatibility). Push gives false when full;
/// pop gives the value pushed last, 0 when empty.
VANTO_API bool Vnt_AppModQueuePush(long value);
VANTO_API long Vnt_AppModQueuePop();

/// Sets the default entry function name (null: none). The pointer is kept,
/// not copied: the text must live as long as it is the default.
VANTO_API void Vnt_AppModSetFunctionName(const char* name);

/// Allows the next load while an exclusive module is open (cleared at the
/// end of every load by name).
VANTO_API void Vnt_AppModAllowLoad();

/// Checks that module file `file` (a path, else from the start directory)
/// carries a version of at least `minHigh` in the file version's high double
/// word and, compared on its own, `minLow` in its low double word (3.4
/// fails a minimum of 2.5: deliberately not one number). A file that cannot
/// be read fails; a library without a version block gives false without a
/// message; a block of a size other than 52 is internal error 13. A failed
/// check reports message 60290 (with a main window) or 60291 against the
/// caller's source file and line; without a main window the application
/// then ends (Vnt_AppMainExitApplication(0)).
VANTO_API bool Vnt__AppModCheckVer(const char* sourceFile, int line, const char* file, unsigned long minHigh,
                                   unsigned long minLow);
#define Vnt_AppModCheckVer(file, minHigh, minLow) Vnt__AppModCheckVer(__FILE__, __LINE__, (file), (minHigh), (minLow))

/// Runs a dialog window's modal loop: sends 0x7F11 (the window as wparam)
/// to the main window, then runs the loop with `flags`; returns the loop's
/// result.
VANTO_API int Vnt_AppModalLoop(VNT_HWND window, unsigned long flags);
/// Ends the dialog's modal loop with `result`, then sends 0x7F12 (the
/// window as wparam) to the main window.
VANTO_API void Vnt_AppModalEnd(VNT_HWND window, int result);

/// Runs the chain of client-change modules (number -1), for the database
/// layer after a client was connected: from the first record numbered -1 on,
/// while the records' command identifier is -1. A module with flag
/// VNT_APP_MOD_USER_OPTION is skipped when the user file's section "Main"
/// says 0 under the module's file name (default 1). Before the first module
/// runs, the splash window is hidden (VntWindowPort::HideSplash). Each module
/// is loaded with the module result set to 0; a result below 0 fails the chain, above
/// 0 is a module number that is loaded at once. A module that did not load
/// fails the chain unless it is quiet. False when the chain failed: the
/// caller then closes the connection. True without a table or without
/// client-change modules.
VANTO_API bool Vnt_AppModRunClientChain();
