// The scan of a statement's text for the table a record set updates.
#include "db/sql_scan.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/names.h"

namespace vnt::db {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool identChar(char c) {
    const unsigned char u = static_cast<unsigned char>(c);
    return u >= 0x80 || isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c == '$' ||
           c == '.' || c == '"' || c == '`' || c == '[' || c == ']';
}

// The top-level words of a statement (outside quotes and parentheses) with
// their positions; "," and "*" count as words, so that "SELECT * FROM t"
// has a column list as "SELECT a FROM t" has.
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
            if (depth == 0 && (c == ',' || c == '*')) words.emplace_back(i, s.substr(i, 1));
            ++i;
        }
    }
    return words;
}

}  // namespace

std::string updateTable(std::string_view sql, std::string& run) {
    sql = vnt::trim(sql, " \t\r\n");
    run = std::string(sql);
    if (!sql.empty() && std::all_of(sql.begin(), sql.end(), identChar)) {
        run = "SELECT * FROM " + std::string(sql);
        return std::string(sql);
    }
    const auto words = topWords(sql);
    if (words.size() < 4 || !vnt::sameText(words[0].second, "SELECT") || vnt::sameText(words[1].second, "DISTINCT"))
        return {};
    std::size_t from = 0;
    for (std::size_t k = 1; k < words.size() && !from; ++k)
        if (vnt::sameText(words[k].second, "FROM")) from = k;
    if (!from || from + 1 >= words.size()) return {};
    // The table follows FROM directly: not a subquery, not a "*".
    const std::size_t fromEnd = words[from].first + words[from].second.size();
    const std::string_view between = sql.substr(fromEnd, words[from + 1].first - fromEnd);
    if (words[from + 1].second == "*" ||
        !std::all_of(between.begin(), between.end(), [](char c) { return vnt::isBlank(c) || c == '\r' || c == '\n'; }))
        return {};
    std::size_t next = from + 2;
    std::string table(words[from + 1].second);
    // A quoted name may be followed by ".name".
    while (next < words.size() && words[next].first == words[next - 1].first + words[next - 1].second.size()) {
        table += words[next].second;
        ++next;
    }
    if (next < words.size()) {
        const std::string_view w = words[next].second;
        if (!vnt::sameText(w, "WHERE") && !vnt::sameText(w, "ORDER") && !vnt::sameText(w, "LIMIT")) return {};
    }
    for (std::size_t k = next; k < words.size(); ++k)
        for (const char* w : {"UNION", "GROUP", "INTERSECT", "EXCEPT", "JOIN", "HAVING"})
            if (vnt::sameText(words[k].second, w)) return {};
    return table;
}

std::string unquote(std::string_view s) {
    if (s.size() >= 2 && (s.front() == '"' || s.front() == '`' || s.front() == '[')) return std::string(s.substr(1, s.size() - 2));
    return std::string(s);
}

}  // namespace vnt::db
