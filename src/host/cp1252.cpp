// Windows-1252 <-> UTF-8. The library's narrow texts are Windows-1252 on every
// host; UTF-8 appears only at the edges (host file names, terminal, windows).
#include "host/host.h"

namespace vnt::host {
namespace {

// Code points of 0x80..0x9F. The five bytes Windows-1252 leaves undefined
// (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the C1 controls of the same value,
// as the Windows conversion functions do, so that every byte round-trips.
constexpr char16_t kHigh[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80-87
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88-8F
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90-97
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98-9F
};

void putUtf8(char32_t c, std::string& out) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// The Windows-1252 byte of a code point, or -1.
int toByte(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<int>(c);
    for (int i = 0; i < 32; ++i)
        if (kHigh[i] == c) return 0x80 + i;
    return -1;
}

}  // namespace

void cp1252ToUtf8(const char* src, std::size_t len, std::string& out) {
    out.reserve(out.size() + len);
    for (std::size_t i = 0; i < len; ++i) {
        unsigned char b = static_cast<unsigned char>(src[i]);
        if (b >= 0x80 && b < 0xA0)
            putUtf8(kHigh[b - 0x80], out);
        else
            putUtf8(b, out);
    }
}

std::string cp1252ToUtf8(const std::string& src) {
    std::string out;
    cp1252ToUtf8(src.data(), src.size(), out);
    return out;
}

bool utf8ToCp1252(const char* src, std::size_t len, std::string& out, std::size_t* badPos) {
    out.reserve(out.size() + len);
    std::size_t i = 0;
    while (i < len) {
        unsigned char b = static_cast<unsigned char>(src[i]);
        char32_t c;
        std::size_t n;
        if (b < 0x80) { c = b; n = 1; }
        else if ((b & 0xE0) == 0xC0) { c = b & 0x1F; n = 2; }
        else if ((b & 0xF0) == 0xE0) { c = b & 0x0F; n = 3; }
        else if ((b & 0xF8) == 0xF0) { c = b & 0x07; n = 4; }
        else { if (badPos) *badPos = i; return false; }
        if (i + n > len) { if (badPos) *badPos = i; return false; }
        for (std::size_t k = 1; k < n; ++k) {
            unsigned char t = static_cast<unsigned char>(src[i + k]);
            if ((t & 0xC0) != 0x80) { if (badPos) *badPos = i; return false; }
            c = (c << 6) | (t & 0x3F);
        }
        // Overlong forms are malformed, not another spelling of the character.
        static constexpr char32_t kMin[5] = {0, 0, 0x80, 0x800, 0x10000};
        int byte = c < kMin[n] ? -1 : toByte(c);
        if (byte < 0) { if (badPos) *badPos = i; return false; }
        out += static_cast<char>(byte);
        i += n;
    }
    return true;
}

unsigned char cp1252Upper(unsigned char c) {
    if (c >= 'a' && c <= 'z') return static_cast<unsigned char>(c - 32);
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return static_cast<unsigned char>(c - 32);
    switch (c) {
        case 0x9A: return 0x8A;  // š
        case 0x9C: return 0x8C;  // œ
        case 0x9E: return 0x8E;  // ž
        case 0xFF: return 0x9F;  // ÿ
        default: return c;
    }
}

}  // namespace vnt::host
