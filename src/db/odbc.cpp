// The ODBC environment, diagnostics shown through the message system, the
// text conversions at the driver's edge and connect strings.

#include "db/odbc.h"

#include <algorithm>
#include <cstring>

#include "base/names.h"
#include "db/db_state.h"
#include "vanto/db.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/text.h"

namespace vnt::db {

namespace {

constexpr long kMsgDbError = 60310;  // what was done, SQLSTATE, text

}  // namespace

State& state() {
    static State s;
    return s;
}

void reset() {
    State& s = state();
    delete s.connection;  // before the environment it lives on
    s.connection = nullptr;
    void* env = s.env;
    const long connections = s.connections;
    if (env && connections == 0) {
        SQLFreeHandle(SQL_HANDLE_ENV, env);
        env = nullptr;
    }
    s = State{};
    // A connection a test left open keeps its environment.
    s.env = env;
    s.connections = env ? connections : 0;
}

SQLHENV environment() {
    State& s = state();
    if (s.env) return s.env;
    SQLHENV env = SQL_NULL_HENV;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env))) {
        fail("SQLAllocHandle", "HY001", "The ODBC driver manager cannot make an environment.");
        return SQL_NULL_HENV;
    }
    const SQLRETURN rc = SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    if (!check(rc, SQL_HANDLE_ENV, env, "SQLSetEnvAttr")) {
        SQLFreeHandle(SQL_HANDLE_ENV, env);
        return SQL_NULL_HENV;
    }
    s.env = env;
    return env;
}

std::string shortText(std::string_view text) {
    constexpr std::size_t kMax = 300;
    if (text.size() <= kMax) return std::string(text);
    return std::string(text.substr(0, kMax - 3)) + "...";
}

void fail(std::string_view what, const char* sqlState, std::string_view text) {
    State& s = state();
    s.lastState = sqlState;
    s.lastText = std::string(text);
    s.lastNative = 0;
    const std::string w = shortText(what);
    Vnt_MsgSys(kMsgDbError, w.c_str(), s.lastState.c_str(), s.lastText.c_str());
}

bool check(SQLRETURN rc, SQLSMALLINT type, SQLHANDLE handle, std::string_view what) {
    if (SQL_SUCCEEDED(rc)) return true;
    State& s = state();
    s.lastState = rc == SQL_INVALID_HANDLE ? "HY000" : "";
    s.lastText.clear();
    s.lastNative = 0;
    if (rc != SQL_INVALID_HANDLE && handle != SQL_NULL_HANDLE) {
        for (SQLSMALLINT rec = 1; rec <= 8; ++rec) {
            SQLCHAR st[6] = {};
            SQLINTEGER native = 0;
            SQLCHAR text[1024] = {};
            SQLSMALLINT len = 0;
            if (!SQL_SUCCEEDED(SQLGetDiagRec(type, handle, rec, st, &native, text, sizeof text, &len))) break;
            if (rec == 1) {
                s.lastState = reinterpret_cast<const char*>(st);
                s.lastNative = native;
            } else {
                s.lastText += '\n';
            }
            s.lastText += fromUtf8(reinterpret_cast<const char*>(text));
        }
    }
    if (s.lastState.empty()) s.lastState = "HY000";
    if (s.lastText.empty()) s.lastText = rc == SQL_INVALID_HANDLE ? "Invalid handle." : "No diagnostics.";
    const std::string w = shortText(what);
    Vnt_MsgSys(kMsgDbError, w.c_str(), s.lastState.c_str(), s.lastText.c_str());
    return false;
}

std::string toUtf8(std::string_view cp1252) { return Vnt_TxtToUtf8(cp1252); }

std::string fromUtf8(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t pos = 0; pos < utf8.size();) {
        char32_t cp;
        unsigned char b;
        if (!Vnt_TxtDecodeUtf8(utf8, pos, cp)) {
            ++pos;
            out += '?';
        } else {
            out += Vnt_TxtCharFromUnicode(cp, b) ? static_cast<char>(b) : '?';
        }
    }
    return out;
}

std::vector<SQLWCHAR> toWide(std::string_view cp1252) {
    std::vector<SQLWCHAR> out;
    out.reserve(cp1252.size() + 1);
    // Every Windows-1252 character lies in the basic plane: one unit each.
    for (char c : cp1252) out.push_back(static_cast<SQLWCHAR>(Vnt_TxtCharToUnicode(static_cast<unsigned char>(c))));
    out.push_back(0);
    return out;
}

std::string fromWide(const SQLWCHAR* text, std::size_t count) {
    std::string out;
    fromWide(text, count, out);
    return out;
}

void fromWide(const SQLWCHAR* text, std::size_t count, std::string& out) {
    out.resize(count);
    std::size_t n = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const char32_t u = text[i];
        unsigned char b;
        if (u < 0x80) {
            out[n++] = static_cast<char>(u);  // ASCII, the bulk of most texts
        } else if (u >= 0xD800 && u <= 0xDBFF && i + 1 < count && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            ++i;  // a character beyond the basic plane: none has a Windows-1252 form
            out[n++] = '?';
        } else {
            out[n++] = Vnt_TxtCharFromUnicode(u, b) ? static_cast<char>(b) : '?';
        }
    }
    out.resize(n);
}

namespace {

// One "key=value" or bare item of a connect string; a value may stand in
// braces and then hold ";" (a "}" inside doubled).
struct Item {
    std::string_view key;    // trimmed; empty for a bare item
    std::string_view value;  // as written, braces included
    bool pair = false;
};

std::vector<Item> split(std::string_view s) {
    std::vector<Item> items;
    std::size_t i = 0;
    while (i < s.size()) {
        const std::size_t start = i;
        Item it;
        const std::size_t eq = s.find_first_of("=;", i);
        if (eq != std::string_view::npos && s[eq] == '=') {
            it.pair = true;
            it.key = trim(s.substr(start, eq - start));
            i = eq + 1;
            std::size_t v = i;
            while (v < s.size() && (s[v] == ' ' || s[v] == '\t')) ++v;
            if (v < s.size() && s[v] == '{') {
                for (++v; v < s.size(); ++v) {
                    if (s[v] != '}') continue;
                    if (v + 1 < s.size() && s[v + 1] == '}') { ++v; continue; }
                    ++v;
                    break;
                }
            }
            const std::size_t end = std::min(s.find(';', v), s.size());
            it.value = s.substr(i, end - i);
            i = end;
        } else {
            const std::size_t end = eq == std::string_view::npos ? s.size() : eq;
            it.value = s.substr(start, end - start);
            i = end;
        }
        items.push_back(it);
        if (i < s.size()) ++i;  // the ";"
    }
    return items;
}

bool isPassword(std::string_view key) { return sameText(key, "PWD") || sameText(key, "PASSWORD"); }

}  // namespace

std::string driverConnect(std::string_view connect) {
    if (connect.size() >= 4 && sameText(connect.substr(0, 4), "ODBC") &&
        (connect.size() == 4 || connect[4] == ';'))
        connect.remove_prefix(std::min<std::size_t>(5, connect.size()));
    std::string out;
    for (const Item& it : split(connect)) {
        if (!it.pair) {
            if (!trim(it.value).empty()) out += toUtf8(it.value) + ";";
            continue;
        }
        const std::string_view v = trim(it.value);
        std::string value = toUtf8(it.value);
        // Absolute library paths, and whatever the DD path and a client's
        // path key hold (they may be relative to the current directory).
        const State& st = state();
        const bool pathKey = sameText(trim(it.key), "Ddfpath") ||
                             (st.dsnSettingsRead && st.pathSpec[0] && sameText(trim(it.key), st.pathSpec));
        if ((v.size() >= 3 && v[1] == ':' && v[2] == '\\') || (pathKey && !v.empty() && v.front() != '{')) {
            char host[4096];
            const std::string path(v);
            if (Vnt_LfnToHost(path.c_str(), host, sizeof host)) {
                value = host;
                if (value.find_first_of(";{}") != std::string::npos || value.front() == ' ') {
                    std::string braced = "{";
                    for (char c : value) braced += c == '}' ? std::string("}}") : std::string(1, c);
                    value = braced + "}";
                }
            }
        }
        out += toUtf8(it.key) + "=" + value + ";";
    }
    return out;
}

std::string unusableDriver(std::string_view connect) {
    auto judge = [](std::string_view v) -> std::string {
        v = trim(v);
        std::string value;
        if (!v.empty() && v.front() == '{') {
            // Up to the closing brace ("}}" is one "}"); what follows it
            // before the ";" is ignored, by us and by the driver manager.
            for (std::size_t i = 1; i < v.size(); ++i) {
                if (v[i] == '}' && !(i + 1 < v.size() && v[i + 1] == '}')) break;
                value += v[i];
                if (v[i] == '}') ++i;
            }
        } else {
            value = v;
        }
        if (trim(value).empty()) return "The connect string names an empty driver.";
        // libltdl also drops the ":" of a search path: "::" is no file either.
        if (value.back() == '/' || value.back() == '\\' || value.find_first_not_of("/\\:") == std::string::npos)
            return "The driver '" + fromUtf8(value) + "' names a directory, not a driver library.";
        return {};
    };
    for (const Item& it : split(connect))
        if (it.pair && sameText(it.key, "Driver"))
            if (std::string why = judge(it.value); !why.empty()) return why;
    // The driver manager reads braces only right after the "=": the items
    // between semicolons, braces ignored, are judged as well.
    for (std::size_t pos = 0; pos <= connect.size();) {
        const std::size_t end = std::min(connect.find(';', pos), connect.size());
        const std::string_view item = connect.substr(pos, end - pos);
        const std::size_t eq = item.find('=');
        if (eq != std::string_view::npos && sameText(trim(item.substr(0, eq)), "Driver"))
            if (std::string why = judge(item.substr(eq + 1)); !why.empty()) return why;
        pos = end + 1;
    }
    return {};
}

}  // namespace vnt::db

const char* Vnt_DbLastState() { return vnt::db::state().lastState.c_str(); }
const char* Vnt_DbLastError() { return vnt::db::state().lastText.c_str(); }
long Vnt_DbLastNative() { return vnt::db::state().lastNative; }

void Vnt_DbClearError() {
    vnt::db::State& s = vnt::db::state();
    s.lastState.clear();
    s.lastText.clear();
    s.lastNative = 0;
}

std::string Vnt_DbMaskConnect(const char* connect) {
    if (!connect) return {};
    const std::string_view s(connect);
    std::string out;
    std::size_t done = 0;
    for (const vnt::db::Item& it : vnt::db::split(s)) {
        if (!it.pair || !vnt::db::isPassword(it.key)) continue;
        const std::size_t at = static_cast<std::size_t>(it.value.data() - s.data());
        out.append(s.substr(done, at - done));
        out += "****";
        done = at + it.value.size();
    }
    out.append(s.substr(done));
    return out;
}
