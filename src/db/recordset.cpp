// VntRecordset: a query over a database, moving through its rows, reading
// and writing fields, with changes written by key-based statements.

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstddef>
#include <cmath>
#include <map>
#include <vector>

#include "base/format.h"
#include "cal/odbc_timestamp.h"
#include "db/db_state.h"
#include "db/odbc.h"
#include "vanto/amount.h"
#include "vanto/db.h"
#include "vanto/msg.h"

namespace {

using Kind = VntDbKind;
using vnt::db::check;
using vnt::db::sameText;

// The library's time stamp is the driver manager's own structure.
static_assert(sizeof(tagTIMESTAMP_STRUCT) == sizeof(SQL_TIMESTAMP_STRUCT) &&
              offsetof(tagTIMESTAMP_STRUCT, fraction) == offsetof(SQL_TIMESTAMP_STRUCT, fraction));

constexpr long kMsgNoTable = 60311;    // table or query
constexpr long kMsgNotOneRow = 60312;  // table, records touched

// A date and time; fraction in nanoseconds.
struct Stamp {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    unsigned long fraction = 0;
};

struct Value {
    bool null = true;
    Kind kind = Kind::Text;
    std::string text;  // Text, Decimal, Binary
    long long i = 0;   // Integer
    double d = 0;      // Double
    Stamp ts;          // Date, Time, Timestamp
};

struct Column {
    std::string name;
    SQLSMALLINT sqlType = SQL_VARCHAR;
    SQLULEN size = 0;
    SQLSMALLINT decimals = 0;
    Kind kind = Kind::Text;
};

struct Row {
    std::vector<Value> values;
    bool deleted = false;
};

void misuse(int line, const std::string& what) {
    Vnt__MsgErr("db/VntRecordset", line, ("!Internal Error: " + what).c_str());
}

Kind kindOf(SQLSMALLINT type) {
    switch (type) {
    case SQL_BIT: case SQL_TINYINT: case SQL_SMALLINT: case SQL_INTEGER: case SQL_BIGINT:
        return Kind::Integer;
    case SQL_REAL: case SQL_FLOAT: case SQL_DOUBLE:
        return Kind::Double;
    case SQL_DECIMAL: case SQL_NUMERIC:
        return Kind::Decimal;
    case SQL_TYPE_DATE: case SQL_DATE:
        return Kind::Date;
    case SQL_TYPE_TIME: case SQL_TIME:
        return Kind::Time;
    case SQL_TYPE_TIMESTAMP: case SQL_TIMESTAMP:
        return Kind::Timestamp;
    case SQL_BINARY: case SQL_VARBINARY: case SQL_LONGVARBINARY:
        return Kind::Binary;
    default:
        return Kind::Text;
    }
}

std::string_view trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t' || s.front() == '\r' || s.front() == '\n'))
        s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n'))
        s.remove_suffix(1);
    return s;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// -- texts of values ---------------------------------------------------------

std::string doubleText(double d) {
    char buf[64];
    const auto r = std::to_chars(buf, buf + sizeof buf, d);
    return std::string(buf, r.ptr);
}

std::string dateText(const Stamp& t) { return vnt::format("%04d-%02d-%02d", t.year, t.month, t.day); }

std::string timeText(const Stamp& t) {
    std::string s = vnt::format("%02d:%02d:%02d", t.hour, t.minute, t.second);
    if (t.fraction) {
        std::string f = vnt::format("%09lu", t.fraction % 1000000000ul);
        while (f.back() == '0') f.pop_back();
        s += "." + f;
    }
    return s;
}

std::string textOf(const Value& v) {
    switch (v.kind) {
    case Kind::Integer: return std::to_string(v.i);
    case Kind::Double: return doubleText(v.d);
    case Kind::Date: return dateText(v.ts);
    case Kind::Time: return timeText(v.ts);
    case Kind::Timestamp: return dateText(v.ts) + " " + timeText(v.ts);
    default: return v.text;
    }
}

// A decimal number "  -12,5e3 ": sign, digits, one "." or ",", digits, an
// exponent. `out` gets it with "." and without blanks.
bool numberText(std::string_view s, std::string& out, int& places, bool& exponent) {
    s = trim(s);
    out.clear();
    places = 0;
    exponent = false;
    std::size_t i = 0;
    int digits = 0;
    if (i < s.size() && (s[i] == '-' || s[i] == '+')) out += s[i++];
    for (; i < s.size() && isDigit(s[i]); ++i, ++digits) out += s[i];
    if (i < s.size() && (s[i] == '.' || s[i] == ',')) {
        out += '.';
        for (++i; i < s.size() && isDigit(s[i]); ++i, ++digits, ++places) out += s[i];
    }
    if (digits == 0) return false;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        exponent = true;
        out += 'e';
        ++i;
        if (i < s.size() && (s[i] == '-' || s[i] == '+')) out += s[i++];
        const std::size_t start = i;
        for (; i < s.size() && isDigit(s[i]); ++i) out += s[i];
        if (i == start) return false;
    }
    if (!out.empty() && out[0] == '+') out.erase(0, 1);
    return i == s.size();
}

// The value of a decimal text, read with the amount functions where the text
// fits them, so that "10.5" and "10,5" read the same in every locale.
bool parseNumber(std::string_view s, double& d) {
    std::string n;
    int places;
    bool exponent;
    if (!numberText(s, n, places, exponent)) return false;
    const std::size_t intDigits = n.find_first_of(".e") == std::string::npos ? n.size() : n.find_first_of(".e");
    if (!exponent && places <= 12 && intDigits + 12 + 3 <= 40) {
        Vnt_FloatFromStr(n.c_str(), &d, places);
        return true;
    }
    const auto r = std::from_chars(n.data(), n.data() + n.size(), d);
    return r.ec == std::errc() && std::isfinite(d);
}

bool parseInteger(std::string_view s, long long& i) {
    s = trim(s);
    if (!s.empty() && s[0] == '+') s.remove_prefix(1);
    const auto r = std::from_chars(s.data(), s.data() + s.size(), i);
    if (r.ec == std::errc() && r.ptr == s.data() + s.size()) return true;
    double d;
    if (!parseNumber(s, d) || d != std::floor(d) || std::fabs(d) >= 9.2e18) return false;
    i = static_cast<long long>(d);
    return true;
}

// Reads `n` digits at `i` into `out`.
bool digitsAt(std::string_view s, std::size_t& i, int n, int& out) {
    out = 0;
    for (int k = 0; k < n; ++k, ++i) {
        if (i >= s.size() || !isDigit(s[i])) return false;
        out = out * 10 + (s[i] - '0');
    }
    return true;
}

// "hh:mm[:ss[.fffffffff]]" at `i`, to the end of the text.
bool parseTime(std::string_view s, std::size_t i, Stamp& t) {
    if (!digitsAt(s, i, 2, t.hour) || i >= s.size() || s[i++] != ':' || !digitsAt(s, i, 2, t.minute)) return false;
    t.second = 0;
    t.fraction = 0;
    if (i < s.size() && s[i] == ':') {
        ++i;
        if (!digitsAt(s, i, 2, t.second)) return false;
        if (i < s.size() && s[i] == '.') {
            unsigned long scale = 100000000ul;
            for (++i; i < s.size() && isDigit(s[i]); ++i, scale /= 10) t.fraction += (s[i] - '0') * scale;
        }
    }
    return i == s.size() && t.hour < 24 && t.minute < 60 && t.second < 62;
}

// "yyyy-mm-dd", "yyyy-mm-dd hh:mm[:ss[.f]]" ("T" for the blank), or, with
// `timeOnly` allowed, a time alone.
bool parseStamp(std::string_view s, Stamp& t, bool& hasDate, bool& hasTime) {
    s = trim(s);
    t = Stamp{};
    hasDate = hasTime = false;
    std::size_t i = 0;
    if (s.size() >= 3 && s[2] == ':') return (hasTime = parseTime(s, 0, t));
    if (!digitsAt(s, i, 4, t.year) || i >= s.size() || s[i++] != '-' || !digitsAt(s, i, 2, t.month) ||
        i >= s.size() || s[i++] != '-' || !digitsAt(s, i, 2, t.day))
        return false;
    const VNT_DATE d{static_cast<std::uint16_t>(t.year), static_cast<std::uint8_t>(t.month),
                     static_cast<std::uint8_t>(t.day)};
    if (!Vnt_DateIsValid(d, false)) return false;
    hasDate = true;
    if (i == s.size()) return true;
    if (s[i] != ' ' && s[i] != 'T') return false;
    return (hasTime = parseTime(s, i + 1, t));
}

// The value `src` as a value of kind `to`; `decimals` are the target's
// places (DECIMAL). False when it does not convert.
bool convert(const Value& src, Kind to, int decimals, Value& out) {
    out = Value{};
    out.kind = to;
    if (src.null) return false;
    out.null = false;
    const bool textual = src.kind == Kind::Text || src.kind == Kind::Decimal;
    switch (to) {
    case Kind::Text:
        out.text = textOf(src);
        return true;
    case Kind::Binary:
        out.text = src.text;
        return src.kind == Kind::Text || src.kind == Kind::Binary;
    case Kind::Integer:
        if (src.kind == Kind::Integer) { out.i = src.i; return true; }
        if (src.kind == Kind::Double) {
            if (!std::isfinite(src.d) || src.d != std::floor(src.d) || std::fabs(src.d) >= 9.2e18) return false;
            out.i = static_cast<long long>(src.d);
            return true;
        }
        return textual && parseInteger(src.text, out.i);
    case Kind::Double:
        if (src.kind == Kind::Integer) { out.d = static_cast<double>(src.i); return true; }
        if (src.kind == Kind::Double) { out.d = src.d; return true; }
        return textual && parseNumber(src.text, out.d);
    case Kind::Decimal: {
        if (src.kind == Kind::Integer) { out.text = std::to_string(src.i); return true; }
        if (src.kind == Kind::Double) {
            if (!std::isfinite(src.d)) return false;
            char buf[60];
            if (decimals > 0 && decimals <= 12 && !Vnt_FloatToStr(buf, sizeof buf, src.d, decimals, true)) {
                out.text = buf;
                // The locale's decimal character becomes the driver's ".".
                for (char& c : out.text)
                    if (c != '-' && !isDigit(c)) c = '.';
            } else {
                out.text = doubleText(src.d);
            }
            return true;
        }
        int places;
        bool exponent;
        return textual && numberText(src.text, out.text, places, exponent);
    }
    case Kind::Date:
    case Kind::Time:
    case Kind::Timestamp: {
        Stamp t = src.ts;
        bool hasDate = src.kind == Kind::Date || src.kind == Kind::Timestamp;
        bool hasTime = src.kind == Kind::Time || src.kind == Kind::Timestamp;
        if (src.kind == Kind::Text && !parseStamp(src.text, t, hasDate, hasTime)) return false;
        if (src.kind != Kind::Text && !hasDate && !hasTime) return false;
        if (to == Kind::Date) {
            if (!hasDate) return false;
            t.hour = t.minute = t.second = 0;
            t.fraction = 0;
        } else if (to == Kind::Time) {
            if (!hasTime) return false;
            t.year = t.month = t.day = 0;
        } else if (!hasDate) {
            return false;
        }
        out.ts = t;
        return true;
    }
    }
    return false;
}

// -- statement parameters ----------------------------------------------------

struct Param {
    SQLSMALLINT cType = SQL_C_CHAR;
    SQLSMALLINT sqlType = SQL_VARCHAR;
    SQLULEN size = 1;
    SQLSMALLINT decimals = 0;
    std::vector<SQLWCHAR> wide;
    std::string bytes;
    SQLBIGINT i = 0;
    double d = 0;
    SQL_DATE_STRUCT date{};
    SQL_TIME_STRUCT time{};
    SQL_TIMESTAMP_STRUCT ts{};
    SQLLEN ind = 0;

    SQLPOINTER buffer() {
        switch (cType) {
        case SQL_C_WCHAR: return wide.data();
        case SQL_C_SBIGINT: return &i;
        case SQL_C_DOUBLE: return &d;
        case SQL_C_TYPE_DATE: return &date;
        case SQL_C_TYPE_TIME: return &time;
        case SQL_C_TYPE_TIMESTAMP: return &ts;
        default: return bytes.data();
        }
    }
    SQLLEN bufferLength() const {
        switch (cType) {
        case SQL_C_WCHAR: return static_cast<SQLLEN>(wide.size() * sizeof(SQLWCHAR));
        case SQL_C_CHAR: case SQL_C_BINARY: return static_cast<SQLLEN>(bytes.size());
        default: return 0;
        }
    }
};

// A parameter for a value of column `c` (the value has the column's kind).
Param paramOf(const Value& v, const Column& c) {
    Param p;
    p.sqlType = c.sqlType;
    p.size = std::max<SQLULEN>(c.size, 1);
    p.decimals = c.decimals;
    if (v.null) {
        p.ind = SQL_NULL_DATA;
        p.bytes.assign(1, '\0');
        return p;
    }
    switch (v.kind) {
    case Kind::Text:
        p.cType = SQL_C_WCHAR;
        p.wide = vnt::db::toWide(v.text);
        p.ind = static_cast<SQLLEN>((p.wide.size() - 1) * sizeof(SQLWCHAR));
        p.size = std::max<SQLULEN>(p.size, p.wide.size() - 1);
        break;
    case Kind::Decimal:
    case Kind::Binary:
        p.cType = v.kind == Kind::Decimal ? SQL_C_CHAR : SQL_C_BINARY;
        p.bytes = v.text;
        p.ind = static_cast<SQLLEN>(p.bytes.size());
        p.size = std::max<SQLULEN>(p.size, p.bytes.size());
        if (p.bytes.empty()) p.bytes.assign(1, '\0');
        break;
    case Kind::Integer:
        p.cType = SQL_C_SBIGINT;
        p.i = v.i;
        break;
    case Kind::Double:
        p.cType = SQL_C_DOUBLE;
        p.d = v.d;
        break;
    case Kind::Date:
        p.cType = SQL_C_TYPE_DATE;
        p.date = {static_cast<SQLSMALLINT>(v.ts.year), static_cast<SQLUSMALLINT>(v.ts.month),
                  static_cast<SQLUSMALLINT>(v.ts.day)};
        p.size = 10;
        p.decimals = 0;
        break;
    case Kind::Time:
        p.cType = SQL_C_TYPE_TIME;
        p.time = {static_cast<SQLUSMALLINT>(v.ts.hour), static_cast<SQLUSMALLINT>(v.ts.minute),
                  static_cast<SQLUSMALLINT>(v.ts.second)};
        p.size = 8;
        p.decimals = 0;
        break;
    case Kind::Timestamp: {
        // The fraction is cut to the places the column keeps: more would be
        // refused as a truncation.
        const int places = std::clamp<int>(c.decimals, 0, 9);
        unsigned long unit = 1;
        for (int k = places; k < 9; ++k) unit *= 10;
        p.cType = SQL_C_TYPE_TIMESTAMP;
        p.ts = {static_cast<SQLSMALLINT>(v.ts.year), static_cast<SQLUSMALLINT>(v.ts.month),
                static_cast<SQLUSMALLINT>(v.ts.day), static_cast<SQLUSMALLINT>(v.ts.hour),
                static_cast<SQLUSMALLINT>(v.ts.minute), static_cast<SQLUSMALLINT>(v.ts.second),
                static_cast<SQLUINTEGER>(v.ts.fraction / unit * unit)};
        p.decimals = static_cast<SQLSMALLINT>(places);
        p.size = c.size >= 19 ? c.size : static_cast<SQLULEN>(19 + (places ? places + 1 : 0));
        break;
    }
    }
    return p;
}

// -- reading the query -------------------------------------------------------

bool identChar(char c) {
    const unsigned char u = static_cast<unsigned char>(c);
    return u >= 0x80 || isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '$' ||
           c == '.' || c == '"' || c == '`' || c == '[' || c == ']';
}

// The top-level words of a statement (outside quotes and parentheses) with
// their positions.
std::vector<std::pair<std::size_t, std::string_view>> topWords(std::string_view s) {
    std::vector<std::pair<std::size_t, std::string_view>> words;
    int depth = 0;
    for (std::size_t i = 0; i < s.size();) {
        const char c = s[i];
        if (c == '\'' || c == '"' || c == '`') {
            const std::size_t end = s.find(c, i + 1);
            if (depth == 0 && c != '\'') words.emplace_back(i, s.substr(i, (end == s.npos ? s.size() : end + 1) - i));
            i = end == s.npos ? s.size() : end + 1;
        } else if (c == '(') {
            ++depth, ++i;
        } else if (c == ')') {
            --depth, ++i;
        } else if (identChar(c)) {
            std::size_t e = i;
            while (e < s.size() && identChar(s[e]) && s[e] != '"') ++e;
            if (depth == 0) words.emplace_back(i, s.substr(i, e - i));
            i = e;
        } else {
            if (depth == 0 && c == ',') words.emplace_back(i, s.substr(i, 1));
            ++i;
        }
    }
    return words;
}

// The single table of a plain query ("" when there is none) and the
// statement to run: a bare name is a table read whole.
std::string updateTable(std::string_view sql, std::string& run) {
    sql = trim(sql);
    run = std::string(sql);
    if (!sql.empty() && std::all_of(sql.begin(), sql.end(), identChar)) {
        run = "SELECT * FROM " + std::string(sql);
        return std::string(sql);
    }
    const auto words = topWords(sql);
    if (words.size() < 4 || !sameText(words[0].second, "SELECT") || sameText(words[1].second, "DISTINCT"))
        return {};
    std::size_t from = 0;
    for (std::size_t k = 1; k < words.size() && !from; ++k)
        if (sameText(words[k].second, "FROM")) from = k;
    if (!from || from + 1 >= words.size()) return {};
    std::size_t next = from + 2;
    std::string table(words[from + 1].second);
    // A quoted name may be followed by ".name".
    while (next < words.size() && words[next].first == words[next - 1].first + words[next - 1].second.size()) {
        table += words[next].second;
        ++next;
    }
    if (next < words.size()) {
        const std::string_view w = words[next].second;
        if (!sameText(w, "WHERE") && !sameText(w, "ORDER") && !sameText(w, "LIMIT")) return {};
    }
    for (std::size_t k = next; k < words.size(); ++k)
        for (const char* w : {"UNION", "GROUP", "INTERSECT", "EXCEPT", "JOIN", "HAVING"})
            if (sameText(words[k].second, w)) return {};
    return table;
}

std::string unquote(std::string_view s) {
    if (s.size() >= 2 && (s.front() == '"' || s.front() == '`' || s.front() == '[')) return std::string(s.substr(1, s.size() - 2));
    return std::string(s);
}

}  // namespace

struct VntRecordset::Impl {
    VntDatabase* db = nullptr;  // the database opened on
    SQLHSTMT stmt = SQL_NULL_HSTMT;
    std::string run;            // the statement run
    std::string table;          // update table
    std::string keyList;        // SetKeyColumns
    unsigned options = 0;
    std::vector<Column> cols;
    std::vector<int> keys;      // key fields
    bool scroll = false;

    long pos = 0;               // 0 before the first record, count + 1 after the last
    long count = -1;            // rows of the result, -1 while unknown
    bool bof = true, eof = true;
    bool haveCur = false;
    Row cur;
    std::map<long, Row> changed;  // records updated or deleted, by position
    std::vector<Row> cache;       // read forward: the rows read so far
    bool cursorDone = false;

    VntEditMode mode = VntEditMode::None;
    Row edit;
    std::vector<bool> dirty;

    std::string name() const { return table.empty() ? vnt::db::shortText(run) : table; }
    std::string quoted(const std::string& id) const {
        const char q = db->QuoteChar();
        if (q == ' ') return id;
        std::string out(1, q);
        for (char c : id) {
            out += c;
            if (c == q) out += q;
        }
        return out + q;
    }

    // -- reading rows ------------------------------------------------------

    // Text and DECIMAL fields in wide characters, in pieces of any length.
    bool readText(SQLUSMALLINT col, Value& v) {
        std::vector<SQLWCHAR> all;
        SQLWCHAR buf[512];
        for (;;) {
            SQLLEN ind = 0;
            const SQLRETURN rc = SQLGetData(stmt, col, SQL_C_WCHAR, buf, sizeof buf, &ind);
            if (rc == SQL_NO_DATA) break;
            if (!check(rc, SQL_HANDLE_STMT, stmt, run)) return false;
            if (ind == SQL_NULL_DATA) return true;
            const std::size_t room = sizeof buf / sizeof buf[0] - 1;
            const bool whole = ind != SQL_NO_TOTAL && static_cast<std::size_t>(ind) / sizeof(SQLWCHAR) <= room;
            const std::size_t got = whole ? static_cast<std::size_t>(ind) / sizeof(SQLWCHAR) : room;
            if (whole && all.empty()) {  // the usual case: in one piece, no gathering
                v.null = false;
                vnt::db::fromWide(buf, got, v.text);
                return true;
            }
            all.insert(all.end(), buf, buf + got);
            if (whole) break;
        }
        v.null = false;
        vnt::db::fromWide(all.data(), all.size(), v.text);
        return true;
    }

    bool readBinary(SQLUSMALLINT col, Value& v) {
        std::string all;
        char buf[1024];
        for (;;) {
            SQLLEN ind = 0;
            const SQLRETURN rc = SQLGetData(stmt, col, SQL_C_BINARY, buf, sizeof buf, &ind);
            if (rc == SQL_NO_DATA) break;
            if (!check(rc, SQL_HANDLE_STMT, stmt, run)) return false;
            if (ind == SQL_NULL_DATA) return true;
            const bool whole = ind != SQL_NO_TOTAL && static_cast<std::size_t>(ind) <= sizeof buf;
            all.append(buf, whole ? static_cast<std::size_t>(ind) : sizeof buf);
            if (whole) break;
        }
        v.null = false;
        v.text = std::move(all);
        return true;
    }

    template <class T>
    bool readFixed(SQLUSMALLINT col, SQLSMALLINT cType, T& out, Value& v) {
        SQLLEN ind = 0;
        if (!check(SQLGetData(stmt, col, cType, &out, sizeof out, &ind), SQL_HANDLE_STMT, stmt, run)) return false;
        v.null = ind == SQL_NULL_DATA;
        return true;
    }

    // The current row of the cursor into `r`, whose buffers are reused. A
    // field that cannot be read is shown and stays null.
    void readRow(Row& r) {
        r.values.resize(cols.size());
        r.deleted = false;
        for (std::size_t k = 0; k < cols.size(); ++k) {
            Value& v = r.values[k];
            v.null = true;
            v.text.clear();
            v.kind = cols[k].kind;
            const auto col = static_cast<SQLUSMALLINT>(k + 1);
            switch (v.kind) {
            case Kind::Text:
            case Kind::Decimal:
                readText(col, v);
                break;
            case Kind::Binary:
                readBinary(col, v);
                break;
            case Kind::Integer: {
                SQLBIGINT i = 0;
                if (readFixed(col, SQL_C_SBIGINT, i, v)) v.i = i;
                break;
            }
            case Kind::Double:
                readFixed(col, SQL_C_DOUBLE, v.d, v);
                break;
            case Kind::Date: {
                SQL_DATE_STRUCT d{};
                if (readFixed(col, SQL_C_TYPE_DATE, d, v)) v.ts = {d.year, d.month, d.day, 0, 0, 0, 0};
                break;
            }
            case Kind::Time: {
                SQL_TIME_STRUCT t{};
                if (readFixed(col, SQL_C_TYPE_TIME, t, v)) v.ts = {0, 0, 0, t.hour, t.minute, t.second, 0};
                break;
            }
            case Kind::Timestamp: {
                SQL_TIMESTAMP_STRUCT t{};
                if (readFixed(col, SQL_C_TYPE_TIMESTAMP, t, v))
                    v.ts = {t.year, t.month, t.day, t.hour, t.minute, t.second, t.fraction};
                break;
            }
            }
        }
    }
    enum class Fetch { Row, End, Error };

    Fetch fetch(SQLSMALLINT orientation) {
        const SQLRETURN rc = scroll ? SQLFetchScroll(stmt, orientation, 0) : SQLFetch(stmt);
        if (rc == SQL_NO_DATA) return Fetch::End;
        return check(rc, SQL_HANDLE_STMT, stmt, run) ? Fetch::Row : Fetch::Error;
    }

    // Read forward: makes the cache hold `n` rows, or all there are.
    void fill(long n) {
        while (static_cast<long>(cache.size()) < n && !cursorDone) {
            if (fetch(SQL_FETCH_NEXT) == Fetch::Row) readRow(cache.emplace_back());
            else cursorDone = true;
        }
        if (cursorDone) count = static_cast<long>(cache.size());
    }

    // Makes position `p` (a record) current, from `row` or the changes.
    // Makes row `p` current: a row changed here as changed, else a copy of
    // `row` or, without one, the cursor's row (read into the current
    // record's buffers: moving allocates little).
    void land(long p, const Row* row) {
        pos = p;
        bof = eof = false;
        if (auto it = changed.find(p); it != changed.end()) cur = it->second;
        else if (row) cur = *row;
        else readRow(cur);
        haveCur = true;
    }
    void atBof() {
        pos = 0;
        bof = true;
        eof = count == 0;
        haveCur = false;
    }
    void atEof() {
        pos = count + 1;
        eof = true;
        bof = count == 0;
        haveCur = false;
    }

    // The number of rows, counted by walking the cursor once (only when the
    // driver cannot tell the position of the last row).
    long countRows() {
        long n = 0;
        for (Fetch f = fetch(SQL_FETCH_FIRST); f == Fetch::Row; f = fetch(SQL_FETCH_NEXT)) ++n;
        return n;
    }

    bool move(SQLSMALLINT orientation) {
        mode = VntEditMode::None;
        if (!stmt) return false;
        if (!scroll) {
            long target = 0;
            switch (orientation) {
            case SQL_FETCH_FIRST: target = 1; break;
            case SQL_FETCH_NEXT: if (eof) return false; target = pos + 1; break;
            case SQL_FETCH_PRIOR: if (bof) return false; target = pos - 1; break;
            default: fill(LONG_MAX); target = static_cast<long>(cache.size()); break;
            }
            if (target >= 1) fill(target);
            if (target >= 1 && target <= static_cast<long>(cache.size())) {
                land(target, &cache[static_cast<std::size_t>(target - 1)]);
                return true;
            }
            if (orientation == SQL_FETCH_PRIOR) atBof();
            else atEof();
            return false;
        }
        if ((orientation == SQL_FETCH_NEXT && eof) || (orientation == SQL_FETCH_PRIOR && bof)) return false;
        const Fetch f = fetch(orientation);
        if (f == Fetch::Error) return false;
        if (f == Fetch::End) {
            switch (orientation) {
            case SQL_FETCH_NEXT: count = pos; atEof(); break;
            case SQL_FETCH_PRIOR: atBof(); break;
            default: count = 0; atBof(); atEof(); break;
            }
            return false;
        }
        long p = 0;
        switch (orientation) {
        case SQL_FETCH_FIRST: p = 1; break;
        case SQL_FETCH_NEXT: p = pos + 1; break;
        case SQL_FETCH_PRIOR: p = pos - 1; break;
        default: {
            SQLULEN n = 0;
            if (count < 0 && SQL_SUCCEEDED(SQLGetStmtAttr(stmt, SQL_ATTR_ROW_NUMBER, &n, 0, nullptr)) && n > 0)
                count = static_cast<long>(n);
            if (count < 0) {
                count = countRows();
                if (fetch(SQL_FETCH_LAST) != Fetch::Row) return false;
            }
            p = count;
        }
        }
        land(p, nullptr);
        return true;
    }

    // -- writing -----------------------------------------------------------

    // Runs a change with its parameters; it must touch exactly one row, else
    // it is undone (where the driver has transactions) and 60312 is shown.
    bool change(const std::string& sql, std::vector<Param>& params) {
        SQLHDBC dbc = db->Handle();
        const bool txn = db->CanTransact();
        if (txn && !check(SQLSetConnectAttr(dbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0),
                          SQL_HANDLE_DBC, dbc, sql))
            return false;
        SQLHSTMT st = SQL_NULL_HSTMT;
        bool ran = false;
        SQLLEN rows = 0;
        if (check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &st), SQL_HANDLE_DBC, dbc, sql)) {
            bool bound = true;
            for (std::size_t k = 0; k < params.size() && bound; ++k) {
                Param& p = params[k];
                bound = check(SQLBindParameter(st, static_cast<SQLUSMALLINT>(k + 1), SQL_PARAM_INPUT, p.cType, p.sqlType,
                                               p.size, p.decimals, p.buffer(), p.bufferLength(), &p.ind),
                              SQL_HANDLE_STMT, st, sql);
            }
            if (bound) {
                std::string text = vnt::db::toUtf8(sql);
                const SQLRETURN rc = SQLExecDirect(st, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS);
                ran = rc == SQL_NO_DATA || check(rc, SQL_HANDLE_STMT, st, sql);
                if (ran && rc != SQL_NO_DATA && !SQL_SUCCEEDED(SQLRowCount(st, &rows))) rows = -1;
            }
            SQLFreeHandle(SQL_HANDLE_STMT, st);
        }
        const bool ok = ran && rows == 1;
        if (txn) {
            check(SQLEndTran(SQL_HANDLE_DBC, dbc, ok ? SQL_COMMIT : SQL_ROLLBACK), SQL_HANDLE_DBC, dbc, sql);
            check(SQLSetConnectAttr(dbc, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0),
                  SQL_HANDLE_DBC, dbc, sql);
        }
        if (ran && rows != 1) Vnt_MsgSys(kMsgNotOneRow, name().c_str(), static_cast<long>(rows));
        return ok;
    }

    // " WHERE key = ? AND ..." for the current record, adding its parameters.
    std::string where(std::vector<Param>& params) const {
        std::string sql = " WHERE ";
        for (std::size_t k = 0; k < keys.size(); ++k) {
            const std::size_t c = static_cast<std::size_t>(keys[k]);
            if (k) sql += " AND ";
            sql += quoted(cols[c].name);
            if (cur.values[c].null) {
                sql += " IS NULL";
            } else {
                sql += " = ?";
                params.push_back(paramOf(cur.values[c], cols[c]));
            }
        }
        return sql;
    }

    bool findKeys() {
        keys.clear();
        std::vector<std::string> names;
        if (!keyList.empty()) {
            std::string_view rest = keyList;
            while (!rest.empty()) {
                const std::size_t comma = std::min(rest.find(','), rest.size());
                const std::string_view n = trim(rest.substr(0, comma));
                if (!n.empty()) names.emplace_back(n);
                rest.remove_prefix(std::min(comma + 1, rest.size()));
            }
        } else if (!table.empty()) {
            // The table's primary key, by its parts "schema.table".
            std::string schema, bare = table;
            const std::size_t dot = table.rfind('.');
            if (dot != std::string::npos) {
                schema = unquote(std::string_view(table).substr(0, dot));
                bare = table.substr(dot + 1);
            }
            bare = unquote(bare);
            std::string s8 = vnt::db::toUtf8(schema), t8 = vnt::db::toUtf8(bare);
            SQLHSTMT st = SQL_NULL_HSTMT;
            if (!check(SQLAllocHandle(SQL_HANDLE_STMT, db->Handle(), &st), SQL_HANDLE_DBC, db->Handle(), "SQLPrimaryKeys"))
                return false;
            std::map<int, std::string> ordered;
            const SQLRETURN rc = SQLPrimaryKeys(st, nullptr, 0, schema.empty() ? nullptr : reinterpret_cast<SQLCHAR*>(s8.data()),
                                                schema.empty() ? 0 : SQL_NTS, reinterpret_cast<SQLCHAR*>(t8.data()), SQL_NTS);
            // A driver without primary keys leaves the records unchangeable
            // (60311 when tried), which is no error of its own.
            if (SQL_SUCCEEDED(rc)) {
                while (SQL_SUCCEEDED(SQLFetch(st))) {
                    SQLCHAR col[256] = {};
                    SQLSMALLINT seq = 0;
                    SQLLEN ind = 0, ind2 = 0;
                    SQLGetData(st, 4, SQL_C_CHAR, col, sizeof col, &ind);
                    SQLGetData(st, 5, SQL_C_SSHORT, &seq, sizeof seq, &ind2);
                    ordered[ind2 == SQL_NULL_DATA ? static_cast<int>(ordered.size()) + 1 : seq] =
                        vnt::db::fromUtf8(reinterpret_cast<const char*>(col));
                }
            }
            SQLFreeHandle(SQL_HANDLE_STMT, st);
            for (auto& [seq, n] : ordered) names.push_back(n);
        }
        for (const std::string& n : names) {
            int found = -1;
            for (std::size_t c = 0; c < cols.size() && found < 0; ++c)
                if (sameText(cols[c].name, n)) found = static_cast<int>(c);
            if (found < 0) {
                if (!keyList.empty()) misuse(__LINE__, "the key field \"" + n + "\" is not a field of the record set.");
                keys.clear();
                return false;
            }
            keys.push_back(found);
        }
        return !keys.empty();
    }

    void close() {
        mode = VntEditMode::None;
        if (stmt) {
            SQLFreeHandle(SQL_HANDLE_STMT, stmt);
            stmt = SQL_NULL_HSTMT;
        }
        if (db) db->detach(owner);
        db = nullptr;
        cols.clear();
        keys.clear();
        table.clear();
        run.clear();
        cache.clear();
        changed.clear();
        cursorDone = false;
        count = -1;
        pos = 0;
        bof = eof = true;
        haveCur = false;
        cur = Row{};
    }

    // Runs the statement from the start and makes the first record current.
    bool execute() {
        cache.clear();
        changed.clear();
        cursorDone = false;
        count = -1;
        pos = 0;
        bof = eof = true;
        haveCur = false;
        mode = VntEditMode::None;
        SQLFreeStmt(stmt, SQL_CLOSE);
        std::string text = vnt::db::toUtf8(run);
        if (!check(SQLExecDirect(stmt, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS), SQL_HANDLE_STMT, stmt, run))
            return false;
        move(SQL_FETCH_FIRST);
        return true;
    }

    VntRecordset* owner = nullptr;

    // The value a read sees: the edited record during Edit/AddNew, else the
    // current record; null when there is none or it is deleted.
    const Value* field(int index) const {
        if (index < 0 || index >= static_cast<int>(cols.size())) {
            misuse(__LINE__, vnt::format("the record set has no field %d.", index));
            return nullptr;
        }
        if (mode != VntEditMode::None) return &edit.values[static_cast<std::size_t>(index)];
        if (!haveCur || cur.deleted) return nullptr;
        return &cur.values[static_cast<std::size_t>(index)];
    }

    // Converts `v` into field `index` of the edited record.
    bool set(int index, const Value& v, int line) {
        if (mode == VntEditMode::None) {
            misuse(line, "a field is set without Edit or AddNew.");
            return false;
        }
        if (index < 0 || index >= static_cast<int>(cols.size())) {
            misuse(line, vnt::format("the record set has no field %d.", index));
            return false;
        }
        const Column& c = cols[static_cast<std::size_t>(index)];
        Value out;
        if (v.null) {
            out.kind = c.kind;
        } else if (!convert(v, c.kind, c.decimals, out)) {
            misuse(line, "the value \"" + vnt::db::shortText(textOf(v)) + "\" does not suit the field \"" + c.name + "\".");
            return false;
        }
        edit.values[static_cast<std::size_t>(index)] = std::move(out);
        dirty[static_cast<std::size_t>(index)] = true;
        return true;
    }
};

VntRecordset::VntRecordset(VntDatabase* db) : m_pDatabase(db), impl_(std::make_unique<Impl>()) {
    impl_->owner = this;
}

VntRecordset::~VntRecordset() { Close(); }

void VntRecordset::SetKeyColumns(const char* list) { impl_->keyList = list ? list : ""; }

bool VntRecordset::Open(const char* sql, unsigned options) {
    Impl& m = *impl_;
    Close();
    if (!m_pDatabase || !m_pDatabase->IsOpen()) {
        misuse(__LINE__, "a record set is opened without an open database.");
        return false;
    }
    if (!sql || trim(sql).empty()) {
        misuse(__LINE__, "a record set is opened without a query.");
        return false;
    }
    VntDatabase* db = m_pDatabase;
    m.options = options;
    m.table = updateTable(sql, m.run);
    SQLHDBC dbc = db->Handle();
    SQLHSTMT st = SQL_NULL_HSTMT;
    if (!check(SQLAllocHandle(SQL_HANDLE_STMT, dbc, &st), SQL_HANDLE_DBC, dbc, m.run)) return false;
    m.stmt = st;
    m.db = db;
    db->attach(this);
    m.scroll = false;
    if (!(options & VNT_RS_FORWARDONLY)) {
        // A driver that cannot scroll refuses or changes the cursor type; the
        // record set then reads forward and keeps the rows itself.
        const SQLRETURN rc = SQLSetStmtAttr(st, SQL_ATTR_CURSOR_TYPE, reinterpret_cast<SQLPOINTER>(SQL_CURSOR_STATIC), 0);
        SQLULEN type = SQL_CURSOR_FORWARD_ONLY;
        m.scroll = SQL_SUCCEEDED(rc) && SQL_SUCCEEDED(SQLGetStmtAttr(st, SQL_ATTR_CURSOR_TYPE, &type, 0, nullptr)) &&
                   type != SQL_CURSOR_FORWARD_ONLY;
    }
    std::string text = vnt::db::toUtf8(m.run);
    if (!check(SQLExecDirect(st, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS), SQL_HANDLE_STMT, st, m.run)) {
        m.close();
        return false;
    }
    SQLSMALLINT n = 0;
    SQLNumResultCols(st, &n);
    if (n <= 0) {
        misuse(__LINE__, "the statement of a record set gives no records: " + vnt::db::shortText(m.run));
        m.close();
        return false;
    }
    for (SQLSMALLINT c = 1; c <= n; ++c) {
        SQLCHAR name[256] = {};
        SQLSMALLINT len = 0, nullable = 0;
        Column col;
        if (!check(SQLDescribeCol(st, static_cast<SQLUSMALLINT>(c), name, sizeof name, &len, &col.sqlType, &col.size,
                                  &col.decimals, &nullable),
                   SQL_HANDLE_STMT, st, m.run)) {
            m.close();
            return false;
        }
        col.name = vnt::db::fromUtf8(reinterpret_cast<const char*>(name));
        col.kind = kindOf(col.sqlType);
        if (col.kind == Kind::Text) {
            // SQLite's driver describes a DECIMAL column as VARCHAR; its type
            // name still tells, and the amount rules then apply.
            SQLCHAR type[64] = {};
            SQLSMALLINT tlen = 0;
            if (SQL_SUCCEEDED(SQLColAttribute(st, static_cast<SQLUSMALLINT>(c), SQL_DESC_TYPE_NAME, type, sizeof type,
                                              &tlen, nullptr))) {
                const std::string_view t(reinterpret_cast<const char*>(type));
                if (sameText(t.substr(0, 7), "DECIMAL") || sameText(t.substr(0, 7), "NUMERIC")) col.kind = Kind::Decimal;
            }
        }
        m.cols.push_back(std::move(col));
    }
    if (!m.table.empty() || !m.keyList.empty()) m.findKeys();
    m.move(SQL_FETCH_FIRST);
    return true;
}

bool VntRecordset::IsOpen() const { return impl_->stmt != SQL_NULL_HSTMT; }

void VntRecordset::Close() { impl_->close(); }

bool VntRecordset::Requery() {
    if (!IsOpen()) {
        misuse(__LINE__, "Requery on a record set that is not open.");
        return false;
    }
    return impl_->execute();
}

bool VntRecordset::CanScroll() const { return IsOpen() && impl_->scroll; }

bool VntRecordset::CanAppend() const {
    const Impl& m = *impl_;
    return IsOpen() && !m.table.empty() && !(m.options & VNT_RS_READONLY) && !m.db->readOnly_;
}

bool VntRecordset::CanUpdate() const { return CanAppend() && !impl_->keys.empty(); }

const char* VntRecordset::TableName() const { return impl_->table.c_str(); }

bool VntRecordset::IsBOF() const { return impl_->bof; }
bool VntRecordset::IsEOF() const { return impl_->eof; }
bool VntRecordset::IsDeleted() const { return impl_->haveCur && impl_->cur.deleted; }
bool VntRecordset::MoveFirst() { return impl_->move(SQL_FETCH_FIRST); }
bool VntRecordset::MoveNext() { return impl_->move(SQL_FETCH_NEXT); }
bool VntRecordset::MovePrev() { return impl_->move(SQL_FETCH_PRIOR); }
bool VntRecordset::MoveLast() { return impl_->move(SQL_FETCH_LAST); }

int VntRecordset::GetFieldCount() const { return static_cast<int>(impl_->cols.size()); }

const char* VntRecordset::GetFieldName(int index) const {
    return index >= 0 && index < GetFieldCount() ? impl_->cols[static_cast<std::size_t>(index)].name.c_str() : "";
}

int VntRecordset::GetFieldIndex(const char* name) const {
    if (!name) return -1;
    for (std::size_t c = 0; c < impl_->cols.size(); ++c)
        if (sameText(impl_->cols[c].name, name)) return static_cast<int>(c);
    return -1;
}

VntDbKind VntRecordset::GetFieldKind(int index) const {
    return index >= 0 && index < GetFieldCount() ? impl_->cols[static_cast<std::size_t>(index)].kind : Kind::Text;
}

namespace {

int indexOf(const VntRecordset& rs, const char* name) {
    const int i = rs.GetFieldIndex(name);
    if (i < 0) misuse(__LINE__, std::string("the record set has no field \"") + (name ? name : "(null)") + "\".");
    return i;
}

Stamp stampOf(const tagTIMESTAMP_STRUCT& t) {
    return {t.year, t.month, t.day, t.hour, t.minute, t.second, t.fraction};
}

}  // namespace

bool VntRecordset::IsFieldNull(int index) const {
    const Value* v = impl_->field(index);
    return !v || v->null;
}
bool VntRecordset::IsFieldNull(const char* name) const { return IsFieldNull(indexOf(*this, name)); }

// Each read converts the field into a value of the kind asked for; a field
// already of that kind is taken as it is (the usual case, read per row).
#define VNT_RS_GET(Type, kind, fast, assign, clear)                                  \
    bool VntRecordset::GetFieldValue(int index, Type& value) const {                 \
        const Value* v = impl_->field(index);                                        \
        if (v && !v->null) { fast; }                                                 \
        Value out;                                                                   \
        if (v && convert(*v, kind, 0, out)) {                                        \
            assign;                                                                  \
            return true;                                                             \
        }                                                                            \
        clear;                                                                       \
        return false;                                                                \
    }                                                                                \
    bool VntRecordset::GetFieldValue(const char* name, Type& value) const {          \
        const int i = indexOf(*this, name);                                          \
        if (i < 0) {                                                                 \
            clear;                                                                   \
            return false;                                                            \
        }                                                                            \
        return GetFieldValue(i, value);                                              \
    }

VNT_RS_GET(std::string, Kind::Text,
           if (v->kind == Kind::Text || v->kind == Kind::Decimal || v->kind == Kind::Binary) {
               value = v->text;
               return true;
           },
           value = out.text, value.clear())
VNT_RS_GET(long, Kind::Integer,
           if (v->kind == Kind::Integer && v->i >= LONG_MIN && v->i <= LONG_MAX) {
               value = static_cast<long>(v->i);
               return true;
           },
           if (out.i < LONG_MIN || out.i > LONG_MAX) { value = 0; return false; } value = static_cast<long>(out.i),
           value = 0)
VNT_RS_GET(double, Kind::Double,
           if (v->kind == Kind::Double) {
               value = v->d;
               return true;
           } else if (v->kind == Kind::Decimal || v->kind == Kind::Text) {
               if (parseNumber(v->text, value)) return true;
               value = 0;
               return false;
           },
           value = out.d, value = 0)
VNT_RS_GET(VNT_DATE, Kind::Date,
           if (v->kind == Kind::Date) {
               value = (VNT_DATE{static_cast<std::uint16_t>(v->ts.year), static_cast<std::uint8_t>(v->ts.month),
                                 static_cast<std::uint8_t>(v->ts.day)});
               return true;
           },
           value = (VNT_DATE{static_cast<std::uint16_t>(out.ts.year), static_cast<std::uint8_t>(out.ts.month),
                             static_cast<std::uint8_t>(out.ts.day)}),
           value = VNT_DATE{})
VNT_RS_GET(VNT_TIME, Kind::Time, {},
           value = (VNT_TIME{static_cast<std::uint8_t>(out.ts.hour), static_cast<std::uint8_t>(out.ts.minute),
                             static_cast<std::uint8_t>(out.ts.second),
                             static_cast<std::uint8_t>(out.ts.fraction / 10000000ul)}),
           value = VNT_TIME{})
VNT_RS_GET(tagTIMESTAMP_STRUCT, Kind::Timestamp, {},
           value = (tagTIMESTAMP_STRUCT{static_cast<SQLSMALLINT>(out.ts.year), static_cast<SQLUSMALLINT>(out.ts.month),
                                        static_cast<SQLUSMALLINT>(out.ts.day), static_cast<SQLUSMALLINT>(out.ts.hour),
                                        static_cast<SQLUSMALLINT>(out.ts.minute),
                                        static_cast<SQLUSMALLINT>(out.ts.second),
                                        static_cast<SQLUINTEGER>(out.ts.fraction)}),
           value = tagTIMESTAMP_STRUCT{})
#undef VNT_RS_GET

bool VntRecordset::GetFieldValue(int index, VntDate& value) const {
    tagTIMESTAMP_STRUCT ts{};
    if (!GetFieldValue(index, ts)) return false;
    value.Set(ts);
    return true;
}
bool VntRecordset::GetFieldValue(const char* name, VntDate& value) const {
    const int i = indexOf(*this, name);
    return i >= 0 && GetFieldValue(i, value);
}

// -- changes -------------------------------------------------------------

bool VntRecordset::Edit() {
    Impl& m = *impl_;
    if (!IsOpen()) {
        misuse(__LINE__, "Edit on a record set that is not open.");
        return false;
    }
    if (!m.haveCur || m.cur.deleted) {
        misuse(__LINE__, m.haveCur ? "Edit on a deleted record." : "Edit without a current record.");
        return false;
    }
    if (!CanUpdate()) {
        if (!CanAppend() && !m.table.empty()) misuse(__LINE__, "Edit on a read-only record set.");
        else Vnt_MsgSys(kMsgNoTable, m.name().c_str());
        return false;
    }
    m.mode = VntEditMode::Edit;
    m.edit = m.cur;
    m.dirty.assign(m.cols.size(), false);
    return true;
}

bool VntRecordset::AddNew() {
    Impl& m = *impl_;
    if (!IsOpen()) {
        misuse(__LINE__, "AddNew on a record set that is not open.");
        return false;
    }
    if (!CanAppend()) {
        if (!m.table.empty()) misuse(__LINE__, "AddNew on a read-only record set.");
        else Vnt_MsgSys(kMsgNoTable, m.name().c_str());
        return false;
    }
    m.mode = VntEditMode::AddNew;
    m.edit = Row{};
    m.edit.values.resize(m.cols.size());
    for (std::size_t c = 0; c < m.cols.size(); ++c) m.edit.values[c].kind = m.cols[c].kind;
    m.dirty.assign(m.cols.size(), false);
    return true;
}

bool VntRecordset::Update() {
    Impl& m = *impl_;
    if (m.mode == VntEditMode::None) {
        misuse(__LINE__, "Update without Edit or AddNew.");
        return false;
    }
    std::vector<Param> params;
    std::string names, marks;
    for (std::size_t c = 0; c < m.cols.size(); ++c) {
        if (!m.dirty[c]) continue;
        params.push_back(paramOf(m.edit.values[c], m.cols[c]));
        if (!names.empty()) names += ", ", marks += ", ";
        names += m.mode == VntEditMode::Edit ? m.quoted(m.cols[c].name) + " = ?" : m.quoted(m.cols[c].name);
        marks += "?";
    }
    if (m.mode == VntEditMode::Edit) {
        if (params.empty()) {
            m.mode = VntEditMode::None;
            return true;
        }
        const std::string sql = "UPDATE " + m.table + " SET " + names + m.where(params);
        if (!m.change(sql, params)) return false;
        m.cur = m.edit;
        m.changed[m.pos] = m.cur;
    } else {
        const std::string sql = "INSERT INTO " + m.table +
                                (params.empty() ? std::string(" DEFAULT VALUES") : " (" + names + ") VALUES (" + marks + ")");
        if (!m.change(sql, params)) return false;
    }
    m.mode = VntEditMode::None;
    return true;
}

void VntRecordset::CancelUpdate() { impl_->mode = VntEditMode::None; }

bool VntRecordset::Delete() {
    Impl& m = *impl_;
    m.mode = VntEditMode::None;
    if (!IsOpen() || !m.haveCur || m.cur.deleted) {
        misuse(__LINE__, !IsOpen() ? "Delete on a record set that is not open."
                                   : m.haveCur ? "Delete of a deleted record." : "Delete without a current record.");
        return false;
    }
    if (!CanUpdate()) {
        if (!CanAppend() && !m.table.empty()) misuse(__LINE__, "Delete on a read-only record set.");
        else Vnt_MsgSys(kMsgNoTable, m.name().c_str());
        return false;
    }
    std::vector<Param> params;
    const std::string sql = "DELETE FROM " + m.table + m.where(params);
    if (!m.change(sql, params)) return false;
    m.cur.deleted = true;
    m.changed[m.pos] = m.cur;
    return true;
}

VntEditMode VntRecordset::GetEditMode() const { return impl_->mode; }

namespace {

Value textValue(const char* s) {
    Value v;
    v.null = s == nullptr;
    v.text = s ? s : "";
    return v;
}
Value intValue(long i) {
    Value v;
    v.null = false;
    v.kind = Kind::Integer;
    v.i = i;
    return v;
}
Value doubleValue(double d) {
    Value v;
    v.null = false;
    v.kind = Kind::Double;
    v.d = d;
    return v;
}
Value stampValue(const Stamp& t, Kind kind) {
    Value v;
    v.null = false;
    v.kind = kind;
    v.ts = t;
    return v;
}

}  // namespace

#define VNT_RS_SET(Type, make)                                                                   \
    bool VntRecordset::SetFieldValue(int index, Type value) {                                    \
        return impl_->set(index, make, __LINE__);                                          \
    }                                                                                            \
    bool VntRecordset::SetFieldValue(const char* name, Type value) {                             \
        const int i = indexOf(*this, name);                                                      \
        return i >= 0 && SetFieldValue(i, value);                                                \
    }

VNT_RS_SET(const char*, textValue(value))
VNT_RS_SET(long, intValue(value))
VNT_RS_SET(double, doubleValue(value))
VNT_RS_SET(const VNT_DATE&, stampValue(Stamp{value.year, value.month, value.day, 0, 0, 0, 0}, Kind::Date))
VNT_RS_SET(const tagTIMESTAMP_STRUCT&, stampValue(stampOf(value), Kind::Timestamp))
VNT_RS_SET(const VntDate&,
           stampValue((Stamp{value.date.year, value.date.month, value.date.day, value.time.hour, value.time.minute,
                             value.time.second, value.time.fraction * 10000000ul}),
                      Kind::Timestamp))
#undef VNT_RS_SET

bool VntRecordset::SetFieldNull(int index) { return impl_->set(index, Value{}, __LINE__); }
bool VntRecordset::SetFieldNull(const char* name) {
    const int i = indexOf(*this, name);
    return i >= 0 && SetFieldNull(i);
}
