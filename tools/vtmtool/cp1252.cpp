// vtmtool/cp1252.cpp - Windows-1252 table, UTF-8 coding and escaped display.
#include "vtmtool/cp1252.h"

#include "vanto/text.h"

namespace vtmtool {
namespace {

constexpr char32_t kNone = 0xFFFFFFFFu;

// The library maps the five undefined bytes to C1 controls so that host names
// round-trip; in a message source they are no characters and must be escaped.
bool isUndefined(char32_t cp) {
    return cp == 0x81 || cp == 0x8D || cp == 0x8F || cp == 0x90 || cp == 0x9D;
}

}  // namespace

char32_t cp1252ToUnicode(unsigned char byte) {
    const char32_t cp = Vnt_TxtCharToUnicode(byte);
    return isUndefined(cp) ? kNone : cp;
}

bool unicodeToCp1252(char32_t cp, unsigned char& byte) {
    return !isUndefined(cp) && Vnt_TxtCharFromUnicode(cp, byte);
}

bool decodeUtf8(std::string_view s, std::size_t& pos, char32_t& cp) { return Vnt_TxtDecodeUtf8(s, pos, cp); }

void appendUtf8(std::string& out, char32_t cp) { Vnt_TxtAppendUtf8(out, cp); }

std::string cp1252ToUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        char32_t cp = cp1252ToUnicode(static_cast<unsigned char>(c));
        appendUtf8(out, cp == kNone ? U'\uFFFD' : cp);
    }
    return out;
}

bool utf8ToCp1252(std::string_view text, std::string& out) {
    out.clear();
    for (std::size_t pos = 0; pos < text.size();) {
        char32_t cp;
        unsigned char byte;
        if (!decodeUtf8(text, pos, cp) || !unicodeToCp1252(cp, byte)) return false;
        out += static_cast<char>(byte);
    }
    return true;
}

std::string escapeText(std::string_view cp1252, bool quotes) {
    static const char kHex[] = "0123456789abcdef";
    std::string out;
    out.reserve(cp1252.size() + 8);
    for (char c : cp1252) {
        const auto b = static_cast<unsigned char>(c);
        switch (b) {
        case '\n': out += "\\n"; continue;
        case '\t': out += "\\t"; continue;
        case '\r': out += "\\r"; continue;
        case '\\': out += "\\\\"; continue;
        case '"':
            out += quotes ? "\\\"" : "\"";
            continue;
        default: break;
        }
        const char32_t cp = cp1252ToUnicode(b);
        if (b < 0x20 || b == 0x7F || cp == kNone) {
            out += "\\x";
            out += kHex[b >> 4];
            out += kHex[b & 15];
        } else {
            appendUtf8(out, cp);
        }
    }
    return out;
}

}  // namespace vtmtool
