// Errors of host calls, as the rest of the library tells them apart.
//
// Each host maps its own codes (errno, GetLastError) to an ErrorKind at this
// boundary; the raw code travels along only so that reports can show it with
// the host's description ("(Code = 2)\n\nNo such file or directory").
#pragma once

#include <string>

namespace vnt::host {

/// What went wrong, as far as a caller decides anything on it.
///   a name or one of its directories does not exist      => NotFound
///   a name to be created exists already                   => Exists
///   no permission, a read-only file, a directory as file  => Access
///   a name or value the call cannot take                  => Invalid
///   the device failed (and every injected fault)          => IO
///   the disk or the user's quota is full                  => NoSpace
///   the file or directory is in use                       => Busy
///   a module library exists but cannot be loaded          => NotLoadable
///   anything else                                         => Other
enum class ErrorKind { None, NotFound, Exists, Access, Invalid, IO, NoSpace, Busy, NotLoadable, Other };

/// One error: its kind and the host's own code (0 with None).
struct Error {
    ErrorKind kind = ErrorKind::None;
    unsigned long code = 0;
    explicit operator bool() const { return kind != ErrorKind::None; }
};

/// The last error of the library's host calls ({} when none). Every failing
/// host call sets it; one that succeeds leaves it alone, as the platform's
/// own last-error value behaves.
Error lastError();
/// Sets the last error to `kind` with the host's usual code for it
/// (None clears it): for callers that refuse a request themselves.
void setLastError(ErrorKind kind);
/// Puts back an error taken with lastError() earlier.
void setLastError(const Error& error);
/// The error of `kind` with the host's usual code for it (NotFound: ENOENT
/// on POSIX, ERROR_FILE_NOT_FOUND on Win32; both are 2).
Error errorOf(ErrorKind kind);
/// The host's description of an error, for messages.
std::string errorText(const Error& error);
/// errorText(lastError()).
std::string lastErrorText();

}  // namespace vnt::host
