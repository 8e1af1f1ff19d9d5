// VntIni: typed values (numbers, rectangles, colours), the DX operations of
// settings classes, and token lists in the line buffer.

#include <climits>
#include <cstdint>
#include <cstring>
#include <string>

#include "base/format.h"
#include "base/names.h"
#include "base/strbuf.h"
#include "host/error.h"
#include "ini/ini_stream.h"
#include "vanto/ini.h"

namespace {

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

/* A decimal number: leading blanks, an optional sign, the digits up to the
   first other character; no digits is 0. Saturates at the range of long. */
long decimalOf(const char* s) {
    while (vnt::isBlank(*s)) ++s;
    const bool neg = *s == '-';
    if (*s == '-' || *s == '+') ++s;
    unsigned long v = 0;
    const unsigned long limit = neg ? static_cast<unsigned long>(LONG_MAX) + 1 : LONG_MAX;
    for (; *s >= '0' && *s <= '9'; ++s) {
        const unsigned d = static_cast<unsigned>(*s - '0');
        v = v > (limit - d) / 10 ? limit : v * 10 + d;
    }
    if (!neg) return static_cast<long>(v);
    return v == limit ? LONG_MIN : -static_cast<long>(v);
}

/* A number in one of the text forms: "$1F" and "0x1F" hexadecimal, taken
   as 32 bits like the values they store ("$FFFFFFFF" is -1), anything else
   decimal. */
long numberOf(const char* s) {
    const char* hex = nullptr;
    if (s[0] == '$') hex = s + 1;
    else if (s[0] == '0' && (s[1] == 'x' || s[1] == 'X')) hex = s + 2;
    if (!hex) return decimalOf(s);
    uint32_t v = 0;
    for (int d; (d = hexDigit(*hex)) >= 0; ++hex) v = v << 4 | static_cast<uint32_t>(d);
    return static_cast<int32_t>(v);
}

int32_t clamp32(long v) {
    return v < INT32_MIN ? INT32_MIN : v > INT32_MAX ? INT32_MAX : static_cast<int32_t>(v);
}

// Sums of rectangle fields may meet the unset mark: wrap as 32-bit
// arithmetic does instead of overflowing.
int32_t add32(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

/* Splits `text` in place at any of `seps` (runs count as one) and hands
   each part to `take` until it returns false. */
template <class F>
void splitParts(char* text, const char* seps, F take) {
    char* p = text;
    for (;;) {
        p += std::strspn(p, seps);
        if (!*p) return;
        char* end = p + std::strcspn(p, seps);
        const bool last = *end == '\0';
        *end = '\0';
        if (!take(static_cast<const char*>(p)) || last) return;
        p = end + 1;
    }
}

/* The decimal text of `v` in the library-wide number buffer. */
const char* numberText(long v) {
    char(&buf)[80] = vnt::ini::engine().numberText;
    vnt::copyBounded(buf, vnt::format("%ld", v));
    return buf;
}

}  // namespace

// ---------------------------------------------------------------------------
// Typed values
// ---------------------------------------------------------------------------

long VntIni::ReadInt(const char* entry, long def, int num) {
    char buf[40];
    if (ReadStr(entry, numberText(def), buf, sizeof buf, num) == 0) return def;
    return numberOf(buf);
}

long VntIni::ReadInt(long def) { return ReadInt(nullptr, def, -1); }

bool VntIni::WriteInt(const char* entry, long value, int num, long def) {
    return WriteStr(entry, value == def ? nullptr : numberText(value), num);
}

/* Reads "x, y, width, height" into the library-wide rectangle, starting
   from the default turned into edges; sizes become right and bottom by
   adding the position. */
tagRECT* VntIni::ReadRect(const char* entry, const XYWH* def, int num) {
    char buf[80];
    ReadStr(entry, "", buf, sizeof buf, num);
    tagRECT& r = vnt::ini::engine().rect;
    r = {VNTINI_RECT_UNSET, VNTINI_RECT_UNSET, VNTINI_RECT_UNSET, VNTINI_RECT_UNSET};
    if (def) r = {def->x, def->y, def->width, def->height};
    if (r.right != VNTINI_RECT_UNSET) {
        r.right = add32(r.right, r.left);
        // The bottom too is tested on the width, kept for compatibility.
        r.bottom = add32(r.bottom, r.top);
    }
    if (!buf[0]) return &r;
    int32_t* fields[] = {&r.left, &r.top, &r.right, &r.bottom};
    int n = 0;
    splitParts(buf, ", \t", [&](const char* part) {
        *fields[n++] = clamp32(decimalOf(part));
        return n < 4;
    });
    if (r.right != VNTINI_RECT_UNSET && r.left != VNTINI_RECT_UNSET) r.right = add32(r.right, r.left);
    if (r.bottom != VNTINI_RECT_UNSET && r.top != VNTINI_RECT_UNSET) r.bottom = add32(r.bottom, r.top);
    return &r;
}

bool VntIni::WriteRect(const char* entry, const tagRECT* rect, int num, const XYWH* def) {
    if (rect == nullptr) {
        vnt::host::setLastError(vnt::host::ErrorKind::Invalid);
        return false;
    }
    const long x = rect->left, y = rect->top;
    const long w = static_cast<long>(rect->right) - rect->left;
    const long h = static_cast<long>(rect->bottom) - rect->top;
    if (def && def->x == x && def->y == y && def->width == w && def->height == h)
        return WriteStr(entry, nullptr, num);
    const std::string text = vnt::format("%ld, %ld, %ld, %ld", x, y, w < 0 ? 0L : w, h < 0 ? 0L : h);
    return WriteStr(entry, text.c_str(), num);
}

unsigned long VntIni::ReadColor(const char* entry, const char* defText, unsigned long def, int num) {
    char buf[40];
    ReadStr(entry, defText ? defText : "", buf, sizeof buf, num);
    if (!buf[0]) {
        if (!defText) return def;
        vnt::copyBounded(buf, defText);
    }
    unsigned long parts[3] = {0, 0, 0};
    int n = 0;
    splitParts(buf, ", ", [&](const char* part) {
        parts[n++] = static_cast<unsigned long>(decimalOf(part)) & 0xFF;
        return n < 3;
    });
    return parts[0] | parts[1] << 8 | parts[2] << 16;
}

bool VntIni::WriteColor(const char* entry, unsigned long color, int num, const char* defText, unsigned long def) {
    // Every part is the red one, so a colour reads back as a grey; kept for compatibility.
    const unsigned long red = color & 0xFF;
    const std::string text = vnt::format(" %lu, %lu, %lu", red, red, red);
    const bool isDefault = (defText && text == defText) || (def != 0xFFFFFFFF && color == def);
    return WriteStr(entry, isDefault ? nullptr : text.c_str(), num);
}

// ---------------------------------------------------------------------------
// Data exchange
// ---------------------------------------------------------------------------

using vnt::ini::written;

void VntIni::DX(bool write, const char* entry, char* buf, unsigned size, const char* def, int num, bool quote) {
    if (write) written(WriteStr(entry, buf, num, quote, nullptr));
    else ReadStr(entry, def, buf, size, num);
}

void VntIni::DX(bool write, const char* entry, std::string& value, const char* def, int num, bool quote) {
    if (write) {
        written(WriteStr(entry, value.c_str(), num, quote, nullptr));
    } else {
        ReadStr(entry, def, nullptr, 0, num);
        value = line_;
    }
}

void VntIni::DX(bool write, const char* entry, long& value, long def, int num) {
    if (write) written(WriteInt(entry, value, num, def));
    else value = ReadInt(entry, def, num);
}

void VntIni::DX(bool write, const char* entry, int& value, int def, int num) {
    long v = value;
    DX(write, entry, v, static_cast<long>(def), num);
    if (!write) value = clamp32(v);
}

void VntIni::DX(bool write, const char* entry, short& value, short def, int num) {
    long v = value;
    DX(write, entry, v, static_cast<long>(def), num);
    if (!write) value = static_cast<short>(static_cast<uint16_t>(v));  // the low 16 bits
}

void VntIni::DX(bool write, const char* entry, bool& value, bool def, int num) {
    long v = value ? 1 : 0;
    DX(write, entry, v, def ? 1L : 0L, num);
    if (!write) value = v != 0;
}

void VntIni::DX(bool write, const char* entry, tagRECT& value, const XYWH* def, int num) {
    if (write) written(WriteRect(entry, &value, num, def));
    else value = *ReadRect(entry, def, num);
}

void VntIni::DX(bool write, const char* entry, unsigned long& color, const char* defText, unsigned long def,
                int num) {
    if (write) written(WriteColor(entry, color, num, defText, def));
    else color = ReadColor(entry, defText, def, num);
}

// ---------------------------------------------------------------------------
// Token lists
// ---------------------------------------------------------------------------

char VntIni::TokenSeparator(char c) {
    if (c) {
        tokenSeps_[0] = c;
        tokenSeps_[1] = '\0';
    }
    return tokenSeps_[0];
}

const char* VntIni::TokenSeparators(const char* set, bool append) {
    if (!set) return tokenSeps_;
    if (!*set) {
        vnt::copyBounded(tokenSeps_, ",\t\n");
    } else if (append) {
        const std::size_t used = std::strlen(tokenSeps_);
        vnt::copyBounded(tokenSeps_ + used, sizeof tokenSeps_ - used, set);
    } else {
        vnt::copyBounded(tokenSeps_, set);
    }
    return tokenSeps_;
}

/* Delimits the next item of the line buffer in place: leading blanks and
   tabs skipped, ended at the first separator (the next item starts behind
   it) or at the end of the text (no next item), trailing blanks and tabs
   cut. The item goes to `buf` as text or to `out` as a number; an empty or
   missing item delivers the defaults. Returns the item, null when the list
   is used up. */
char* VntIni::token_next(bool first, char* buf, unsigned size, long* out, const char* def, long defNum,
                         bool afterEquals) {
    char* cursor = tokenNext_;
    if (first) {
        cursor = line_;
        if (afterEquals) {
            if (char* eq = std::strchr(line_, '=')) cursor = eq + 1;
        }
        tokenNext_ = nullptr;
    }
    char* token = nullptr;
    if (cursor) {
        while (vnt::isBlank(*cursor)) ++cursor;
        char* sep = std::strpbrk(cursor, tokenSeps_);
        if (sep) {
            *sep = '\0';
            tokenNext_ = sep + 1;
        } else {
            tokenNext_ = nullptr;
        }
        std::size_t len = std::strlen(cursor);
        while (len && vnt::isBlank(cursor[len - 1])) cursor[--len] = '\0';
        token = cursor;
    }
    tokenCursor_ = token;
    const bool present = token && *token;
    if (buf && size) vnt::copyBounded(buf, size, present ? token : def);
    if (out) *out = present ? numberOf(token) : defNum;
    return token;
}

char* VntIni::TokenFirst(const char* def, char* buf, unsigned size, bool afterEquals) {
    return token_next(true, buf, size, nullptr, def, 0, afterEquals);
}

char* VntIni::TokenFirst(long def, long* out, bool afterEquals) {
    return token_next(true, nullptr, 0, out, "", def, afterEquals);
}

char* VntIni::TokenFirst(int def, int* out, bool afterEquals) {
    long v = 0;
    char* token = token_next(true, nullptr, 0, &v, "", def, afterEquals);
    if (out) *out = clamp32(v);
    return token;
}

char* VntIni::TokenNext(const char* def, char* buf, unsigned size) {
    return token_next(false, buf, size, nullptr, def, 0, false);
}

char* VntIni::TokenNext(long def, long* out) { return token_next(false, nullptr, 0, out, "", def, false); }

char* VntIni::TokenNext(int def, int* out) {
    long v = 0;
    char* token = token_next(false, nullptr, 0, &v, "", def, false);
    if (out) *out = clamp32(v);
    return token;
}

/* Appends one item to the line buffer (emptied first for the first item):
   the item, then unless it is the last one the first separator padded with
   blanks to `width` + 1, or with one blank for width 0. Nothing is written
   when the item would not leave room. */
bool VntIni::token_set_next(bool first, const char* text, long value, int width) {
    if (first) line_[0] = '\0';
    std::string item = text ? text : numberText(value);
    const std::size_t used = std::strlen(line_);
    const std::size_t span = width >= 0 ? static_cast<std::size_t>(width) + 1 : 0;
    const std::size_t need = item.size() > span ? item.size() : span;
    if (need + 1 >= sizeof line_ - used) return false;
    if (width >= 0) {
        item += tokenSeps_[0];
        if (width == 0) item += ' ';
        else if (item.size() < span) item.resize(span, ' ');
    }
    // The room test leaves no byte for width 0's blank right at the end: it is cut there.
    vnt::copyBounded(line_ + used, sizeof line_ - used, item);
    return true;
}

bool VntIni::TokenSetFirst(const char* text, int width) { return token_set_next(true, text, 0, width); }

bool VntIni::TokenSetFirst(long value, int width) { return token_set_next(true, nullptr, value, width); }

bool VntIni::TokenSetNext(const char* text, int width) { return token_set_next(false, text, 0, width); }

bool VntIni::TokenSetNext(long value, int width) { return token_set_next(false, nullptr, value, width); }
