// vtmtool/cp1252.cpp - Windows-1252 table, UTF-8 coding and escaped display.
#include "vtmtool/cp1252.h"

namespace vtmtool {
namespace {

constexpr char32_t kNone = 0xFFFFFFFFu;

// 0x80..0x9F; every other byte is the Latin-1 character of the same value.
constexpr char32_t kHigh[32] = {
    0x20AC, kNone,  0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, kNone,  0x017D, kNone,   // 88
    kNone,  0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, kNone,  0x017E, 0x0178,  // 98
};

}  // namespace

char32_t cp1252ToUnicode(unsigned char byte) {
    if (byte >= 0x80 && byte <= 0x9F) return kHigh[byte - 0x80];
    return byte;
}

bool unicodeToCp1252(char32_t cp, unsigned char& byte) {
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
        byte = static_cast<unsigned char>(cp);
        return true;
    }
    for (unsigned i = 0; i < 32; ++i) {
        if (kHigh[i] == cp) {
            byte = static_cast<unsigned char>(0x80 + i);
            return true;
        }
    }
    return false;
}

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool decodeUtf8(std::string_view s, std::size_t& pos, char32_t& cp) {
    if (pos >= s.size()) return false;
    const auto b0 = static_cast<unsigned char>(s[pos]);
    std::size_t len;
    char32_t value;
    char32_t min;
    if (b0 < 0x80) {
        cp = b0;
        ++pos;
        return true;
    } else if ((b0 & 0xE0) == 0xC0) {
        len = 2, value = b0 & 0x1F, min = 0x80;
    } else if ((b0 & 0xF0) == 0xE0) {
        len = 3, value = b0 & 0x0F, min = 0x800;
    } else if ((b0 & 0xF8) == 0xF0) {
        len = 4, value = b0 & 0x07, min = 0x10000;
    } else {
        return false;
    }
    if (pos + len > s.size()) return false;
    for (std::size_t i = 1; i < len; ++i) {
        const auto b = static_cast<unsigned char>(s[pos + i]);
        if ((b & 0xC0) != 0x80) return false;
        value = (value << 6) | (b & 0x3F);
    }
    if (value < min || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return false;
    cp = value;
    pos += len;
    return true;
}

void appendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

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
