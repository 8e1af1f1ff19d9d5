// The scan of a statement's text for the table a record set updates: a pure
// function of the text, no driver involved.
#pragma once

#include <string>
#include <string_view>

namespace vnt::db {

/// The update table of a record set opened with `sql` ("" when it has none),
/// and in `run` the statement to run. A bare name (letters, digits, "_$.",
/// quotes and brackets) is a table read whole; a plain
/// "SELECT ... FROM table [WHERE|ORDER|LIMIT ...]" names its single table;
/// anything else (DISTINCT, a join, a union, a grouping, a sub-select after
/// FROM) has none. Words in quotes or parentheses are not looked at.
///   "kunden"                                => "kunden", run "SELECT * FROM kunden"
///   "select a, b from t where x = 'from y'" => "t", run as written
///   "SELECT * FROM \"s\".\"t\" ORDER BY a"  => "\"s\".\"t\""
///   "SELECT DISTINCT a FROM t"              => ""
///   "SELECT * FROM a, b"                    => ""
std::string updateTable(std::string_view sql, std::string& run);

/// A name without its enclosing quotes, backquotes or brackets:
/// "\"t\"" => "t", "[t]" => "t", "t" => "t".
std::string unquote(std::string_view s);

}  // namespace vnt::db
