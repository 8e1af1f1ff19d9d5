// The common ground of the Win32 host: text conversion at the boundary,
// handles, the last error, times and the start of a call on a library path.
//
// Host paths are UTF-8 Windows paths ("C:\Users\x\a.ini") wherever the host
// interface hands them out; the wide (W) calls get them in UTF-16.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <string>
#include <string_view>

#include "host/host.h"

namespace vnt::host {

/// UTF-8 -> UTF-16; false for text that is not valid UTF-8.
bool toWide(std::string_view utf8, std::wstring& out);
/// UTF-16 -> UTF-8 (`len` -1: up to the terminating NUL).
std::string toUtf8(const wchar_t* text, int len = -1);
/// Library path -> host path in UTF-16 (see toHost).
bool toHostWide(const char* libPath, std::wstring& host);
/// Host path in UTF-16 -> library path (see fromHost).
bool fromHostWide(const std::wstring& host, std::string& libPath);

inline HANDLE handleOf(File::Handle h) { return reinterpret_cast<HANDLE>(h); }
inline File::Handle numberOf(HANDLE h) { return reinterpret_cast<File::Handle>(h); }

/// Records the Win32 error `code` as the host's last error; returns false.
bool fail(DWORD code);
/// fail(GetLastError()), taken at once, before anything else can change it.
bool failLast();

/// Converts `libPath` to its host path and consults the fault table for
/// `op`. False (NotFound for a name without host form, IO for an injected
/// fault) when the call must not go on.
bool hostCall(const char* libPath, Op op, std::wstring& host);

/// CreateFileW with every sharing mode, so that others may read, write,
/// rename and remove the file while it is open, as on POSIX.
HANDLE openHost(const std::wstring& path, DWORD access, DWORD disposition, DWORD flags = FILE_ATTRIBUTE_NORMAL);
/// True when the host path names a directory.
bool isHostDir(const std::wstring& path);
/// The host directory and last component of a host path.
void splitHostWide(const std::wstring& path, std::wstring& dir, std::wstring& base);

/// A file time (UTC) as local time, with the zone's rules of that day.
LocalTime localOf(const FILETIME& utc);

/// Creates a new temporary file of this process beside the host path
/// `host` (".<name>.<pid>.<n>.tmp", exclusively; Op::Open faults apply)
/// after removing those of dead writers. Returns the handle
/// (INVALID_HANDLE_VALUE, last error set, on failure) and the name in
/// `tmp`; `libName` is the target's name for faults.
HANDLE createTemp(const std::wstring& host, std::wstring& tmp, const char* libName);

/// Reads up to `n` bytes at `pos` until they came, the file ended or an
/// error occurred (last error set; `failed` tells which).
std::size_t readAtHandle(HANDLE h, void* buf, std::size_t n, std::uint64_t pos, bool& failed);
/// Writes all of `n` bytes at `pos`; false (last error set) when the host refuses.
bool writeAtHandle(HANDLE h, std::uint64_t pos, const char* p, std::size_t n, std::size_t& done);

}  // namespace vnt::host
