// Windows-1252 <-> UTF-8. The library's narrow texts are Windows-1252 on every
// host; UTF-8 appears only at the edges (host file names, terminal, windows,
// message sources).
#include "vanto/text.h"

#include "base/names.h"

namespace {

// Code points of 0x80..0x9F. The five bytes Windows-1252 leaves undefined map
// to the C1 controls of the same value, as the Windows conversion does.
constexpr char16_t kHigh[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80-87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88-8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90-97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98-9F
};

}  // namespace

char32_t Vnt_TxtCharToUnicode(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80] : byte;
}

bool Vnt_TxtCharFromUnicode(char32_t cp, unsigned char& byte) {
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

bool Vnt_TxtDecodeUtf8(std::string_view s, std::size_t& pos, char32_t& cp) {
    if (pos >= s.size()) return false;
    const auto b0 = static_cast<unsigned char>(s[pos]);
    std::size_t len;
    char32_t value, min;
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
    // Overlong forms are malformed, not another spelling of the character.
    if (value < min || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return false;
    cp = value;
    pos += len;
    return true;
}

void Vnt_TxtAppendUtf8(std::string& out, char32_t cp) {
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

std::string Vnt_TxtToUtf8(std::string_view cp1252) {
    std::string out;
    out.reserve(cp1252.size());
    for (char c : cp1252) Vnt_TxtAppendUtf8(out, Vnt_TxtCharToUnicode(static_cast<unsigned char>(c)));
    return out;
}

bool Vnt_TxtFromUtf8(std::string_view utf8, std::string& out, std::size_t* badPos) {
    out.clear();
    out.reserve(utf8.size());
    for (std::size_t pos = 0; pos < utf8.size();) {
        const std::size_t at = pos;
        char32_t cp;
        unsigned char byte;
        if (!Vnt_TxtDecodeUtf8(utf8, pos, cp) || !Vnt_TxtCharFromUnicode(cp, byte)) {
            if (badPos) *badPos = at;
            return false;
        }
        out += static_cast<char>(byte);
    }
    return true;
}

unsigned char Vnt_TxtUpper(unsigned char c) { return vnt::foldRule(c); }
