// The system messages (IDs 32768..65535) that the library formats or shows,
// with the arguments each caller passes. The texts live in the system
// message library VNT60LIB (messages/<language>/vnt60lib.vtms); a test
// checks both languages against this table, so that a text's format
// directives always match what the code passes.
//
// Argument kinds, one letter per argument in order:
//   d  int            (%d %i %u %x %X %o %c, also a '*' width)
//   l  long           (%ld %lu %lx %lX %lo)
//   s  const char*    (%s)
//   f  double         (%f %e %g %a)
//   p  const void*    (%p)
#pragma once

#include <cstddef>

namespace vnt::msg::sys {

// Reports (exception and internal error reports, the box's details page).
inline constexpr long kExceptContext = 32905;    // default context of an exception report
inline constexpr long kExceptReport = 60450;     // the exception report
inline constexpr long kExceptAccess = 60451;     // name of an access violation
inline constexpr long kLanguage = 62000;         // the library's language: "DEU" or "ENU"
inline constexpr long kDetails = 62001;          // details page template
inline constexpr long kInternalError = 62002;    // internal error report
inline constexpr long kInternalDesc = 62003;     // description of other codes
inline constexpr long kHelpKeyDetails = 62005;   // help keyword of the details page
inline constexpr long kHelpKeyMessage = 62006;   // help keyword without a help context

/// What a caller does with the box of a message.
enum class Box : int {
    None = -1,      ///< not a question: a text, a template, a report
    Ok = 0,         ///< OK only (the answer does not matter)
    OkCancel = 1,
    AbortRetryIgnore = 2,
    YesNoCancel = 3,
    YesNo = 4,
    RetryCancel = 5,
};

struct SysMsg {
    long id;
    const char* kinds;  ///< the arguments the caller passes, in order
    Box box;            ///< the buttons the caller relies on
    const char* use;    ///< who formats it, with what
};

/// Every system message of the library, in ID order.
inline constexpr SysMsg kSysMsgs[] = {
    {32905, "", Box::None, "exception report: context when the caller gives none"},
    {34001, "", Box::YesNoCancel, "record view: save the changes? Yes saves, No discards, Cancel stays"},
    {34503, "s", Box::Ok, "file fit: file not found (display name)"},
    {60000, "s", Box::Ok, "volume cannot be reached (volume or path)"},
    {60001, "s", Box::Ok, "not enough free space (volume)"},
    {60002, "ss", Box::Ok, "configuration file cannot be written (file, error text)"},
    {60022, "ss", Box::None, "file copy progress: copying (source, target)"},
    {60023, "ss", Box::None, "file copy progress: scanning (source, target)"},
    {60024, "s", Box::None, "file copy progress: skipped (target)"},
    {60025, "ss", Box::RetryCancel, "file copy: source not found (display name, error text)"},
    {60026, "ss", Box::RetryCancel, "file copy failed (display name, error text)"},
    {60285, "s", Box::YesNo, "module loader: close the exclusive module? (description)"},
    {60290, "s", Box::None, "module version too old, main window (module file), report"},
    {60291, "s", Box::None, "module version too old, no main window (module file), report"},
    {60292, "sls", Box::Ok, "module table unreadable (file, reader's status, its meaning)"},
    {60295, "lss", Box::None, "module load failure (error code, system text, file)"},
    {60296, "l", Box::Ok, "no module of that number (module number)"},
    {60297, "ss", Box::None, "optional module not loaded (display name, text of 60295), report"},
    {60298, "ss", Box::None, "module not loaded (display name, text of 60295), report"},
    {60299, "ss", Box::Ok, "entry function missing (function, display name)"},
    {60300, "", Box::None, "client name or connect string when none is given"},
    {60310, "sss", Box::Ok, "database call failed (what was done, SQLSTATE, driver's text)"},
    {60311, "s", Box::Ok, "records cannot be changed: no single table with a key (table or query)"},
    {60312, "sl", Box::Ok, "change touched no record or several (table, records touched)"},
    {60350, "s", Box::Ok, "client list names no client (path)"},
    {60351, "s", Box::Ok, "client list missing (path)"},
    {60352, "s", Box::Ok, "client entry dialog: name already in the list (name)"},
    {60353, "", Box::Ok, "client entry dialog: no path given"},
    {60354, "ss", Box::Ok, "client entry dialog: path already in the list (path, name of its client)"},
    {60355, "s", Box::YesNo, "client dialog: remove the client? (display name)"},
    {60358, "s", Box::YesNo, "client dialog: data directory missing, set it up? (path)"},
    {60359, "", Box::YesNo, "client dialog: discard unsaved changes?"},
    {60362, "", Box::YesNo, "client dialog: complete the set-up?"},
    {60363, "s", Box::YesNoCancel, "client list changed on disk: overwrite? (path)"},
    {60450, "sslssdpss", Box::AbortRetryIgnore,
     "exception report (origin, severity, code, context, source file, line, address, name, flags)"},
    {60451, "sp", Box::None, "access violation name (name, address accessed)"},
    {60500, "s", Box::AbortRetryIgnore, "configuration file cannot be deleted (file)"},
    {60501, "ss", Box::RetryCancel, "configuration file cannot be renamed (temporary, file)"},
    {62000, "", Box::None, "the library's language (DEU or ENU)"},
    {62001, "ssd", Box::None, "details page (description, source file, line)"},
    {62002, "ds", Box::None, "internal error report (code, description)"},
    {62003, "", Box::None, "internal error description of other codes (at most 59 characters)"},
    {62005, "", Box::None, "help keyword of the details page"},
    {62006, "", Box::None, "help keyword of a message without a help context"},
};

inline constexpr std::size_t kSysMsgCount = sizeof(kSysMsgs) / sizeof(kSysMsgs[0]);

/// The entry of `id`, or null.
constexpr const SysMsg* find(long id) {
    for (const SysMsg& m : kSysMsgs)
        if (m.id == id) return &m;
    return nullptr;
}

}  // namespace vnt::msg::sys
