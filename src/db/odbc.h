// Private helpers of the database layer: the ODBC environment, reporting
// diagnostics, the text conversions at the driver's edge and connect
// strings.
#pragma once

#include "host/sql.h"

#include <string>
#include <string_view>
#include <vector>

namespace vnt::db {

/// The environment handle, made on first use (ODBC 3 behaviour); null when
/// the driver manager refuses (reported).
SQLHENV environment();

/// True when `rc` succeeded. Otherwise keeps the diagnostics of `handle`
/// as the last failure and shows them (message 60310) with `what`, the
/// action in Windows-1252 (shortened for the box).
bool check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, std::string_view what);
/// Keeps and shows a failure the driver manager could not describe.
void fail(std::string_view what, const char* sqlState, std::string_view text);

/// A statement text shortened for a message box.
std::string shortText(std::string_view text);

// Texts. The library's are Windows-1252; the driver takes UTF-8 statements
// and UTF-16 field texts. Characters without a Windows-1252 form read as '?'.
std::string toUtf8(std::string_view cp1252);
std::string fromUtf8(std::string_view utf8);
std::vector<SQLWCHAR> toWide(std::string_view cp1252);
std::string fromWide(const SQLWCHAR* text, std::size_t count);
/// The same into `out`, whose storage is reused (rows read one after another).
void fromWide(const SQLWCHAR* text, std::size_t count, std::string& out);

/// A connect string as the driver gets it: without "ODBC;", library paths
/// of the values as host paths, in UTF-8.
std::string driverConnect(std::string_view connect);
/// Why the "Driver" values of `connect` cannot name a driver library:
/// empty when they can (or there is none). A value that is blank, ends in a
/// path separator or holds nothing but separators and ":" names none, and the driver manager must never see it:
/// unixODBC aborts the process on an empty driver it cannot look up and on a
/// driver of separators only.
std::string unusableDriver(std::string_view connect);

}  // namespace vnt::db
