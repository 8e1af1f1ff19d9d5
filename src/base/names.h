// Comparing and trimming names as the applications see them: one rule for
// the whole library, so that a key, a section, a file name or a column is
// equal to the same texts wherever it is looked up.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "vanto/text.h"

namespace vnt {

/// The form names are compared in: upper case in Windows-1252 (Vnt_TxtUpper).
/// Only letters fold, so "[" and "{" stay different, and the result does not
/// depend on the C run time's locale.
///   'a' => 'A'   0xE4 'ä' => 0xC4 'Ä'   0x9A 'š' => 0x8A 'Š'   '[' => '['   0xDF 'ß' => 0xDF
constexpr unsigned char foldRule(unsigned char c) noexcept {
    if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) return static_cast<unsigned char>(c - 32);
    switch (c) {
        case 0x9A: return 0x8A;  // š
        case 0x9C: return 0x8C;  // œ
        case 0x9E: return 0x8E;  // ž
        case 0xFF: return 0x9F;  // ÿ
        default: return c;
    }
}

namespace detail {
struct FoldTable {
    unsigned char upper[256];
    constexpr FoldTable() : upper() {
        for (int c = 0; c < 256; ++c) upper[c] = foldRule(static_cast<unsigned char>(c));
    }
};
inline constexpr FoldTable kFold;
}  // namespace detail

/// foldRule through a table: names are compared a character at a time.
inline unsigned char foldCase(char c) noexcept { return detail::kFold.upper[static_cast<unsigned char>(c)]; }

/// Equal without regard to case (foldCase on both sides); lengths must match.
///   "Main" "MAIN" => true   "Größe" "GRÖßE" => true   "a[" "A{" => false   "ab" "abc" => false
bool sameText(std::string_view a, std::string_view b) noexcept;

/// The same over at most `n` characters of two fixed-width names, each ending
/// at its first NUL or after `n` characters (unterminated 8-character names).
///   ("APPMSG", "appmsg\0", 8) => true   ("ABCDEFGHX", "abcdefghY", 8) => true   ("AB", "ABC", 8) => false
bool sameTextN(const char* a, const char* b, std::size_t n) noexcept;

/// `s` in the compared form (foldCase of every character), e.g. as a map key.
std::string foldText(std::string_view s);

/// True for the blanks the library's texts trim: space and tab.
inline bool isBlank(char c) noexcept { return c == ' ' || c == '\t'; }

/// `s` without leading and trailing characters of `chars` (blanks and tabs
/// by default).
///   " \t a b \t" => "a b"   "" => ""   ("\r\nx\r\n", " \t\r\n") => "x"
std::string_view trim(std::string_view s, std::string_view chars = " \t") noexcept;

/// Trims a terminated buffer in place (blanks and tabs); returns `s`.
char* trimInPlace(char* s) noexcept;

}  // namespace vnt
