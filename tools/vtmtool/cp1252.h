// vtmtool/cp1252.h - Windows-1252 <-> Unicode for the message tools, and the
// C-style escaped display form of message texts.
//
// Message texts are stored in Windows-1252; sources and terminal output are
// UTF-8. Five bytes (0x81, 0x8D, 0x8F, 0x90, 0x9D) have no character in
// Windows-1252: they are shown as "\xHH" and can only be written that way.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vtmtool {

/// The character of a Windows-1252 byte, or 0xFFFFFFFF for the five bytes
/// without one.  0x41 => U+0041, 0x80 => U+20AC, 0xE4 => U+00E4, 0x81 => none.
char32_t cp1252ToUnicode(unsigned char byte);

/// The Windows-1252 byte of a character; false when it has none.
///   U+00E4 => 0xE4, U+20AC => 0x80, U+4E2D => false, U+0081 => false
bool unicodeToCp1252(char32_t cp, unsigned char& byte);

/// Decodes one UTF-8 character at `pos` of `s` into `cp` and advances `pos`.
/// False (pos unchanged) on a malformed, overlong or truncated sequence or a
/// surrogate.
bool decodeUtf8(std::string_view s, std::size_t& pos, char32_t& cp);

/// Appends the UTF-8 form of `cp` to `out`.
void appendUtf8(std::string& out, char32_t cp);

/// Converts Windows-1252 text to UTF-8; a byte without a character becomes
/// U+FFFD. For file names and plain messages, not for message texts.
std::string cp1252ToUtf8(std::string_view text);

/// Converts UTF-8 text to Windows-1252; false when it is not valid UTF-8 or a
/// character has no Windows-1252 form.
bool utf8ToCp1252(std::string_view text, std::string& out);

/// The display form of a Windows-1252 text in UTF-8: "\n", "\t", "\r" and
/// "\\" as in C, other control characters and the five bytes without a
/// character as "\xHH" (two hex digits), with `quotes` also '"' as "\"".
///   "a\tb"  => "a\\tb"     "C:\\x" => "C:\\\\x"    "\xe4" => "ä"
std::string escapeText(std::string_view cp1252, bool quotes = false);

}  // namespace vtmtool
