// vanto/text.h - the library's texts at the edges.
//
// Narrow texts inside the library (messages, configuration, names) are
// Windows-1252 on every host. These functions convert at the edges: host
// file names, terminals, window toolkits, UTF-8 sources.
#pragma once

#include <string>
#include <string_view>

#include "vanto/base.h"

/// UTF-8 form of a Windows-1252 text. Total: the five bytes Windows-1252
/// leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the C1 controls of
/// the same value, as the Windows conversion does, so every byte round-trips.
///   "Gr\xFC\xDF" => "Grüß"     "\x80" => "€"
VANTO_API std::string Vnt_TxtToUtf8(std::string_view cp1252);

/// Windows-1252 form of a UTF-8 text into `out`. False on malformed UTF-8
/// (overlong forms and surrogates included) or a character without a
/// Windows-1252 form; `badPos` then receives the byte offset of the
/// offending sequence and `out` holds the text before it.
///   "Grüß" => "Gr\xFC\xDF"     "ā" => false, badPos 0
VANTO_API bool Vnt_TxtFromUtf8(std::string_view utf8, std::string& out,
                               std::size_t* badPos = nullptr);

/// Upper case of a Windows-1252 character, as the library compares names:
/// ASCII letters, the accented letters, and š œ ž ÿ. "ß" stays as it is.
VANTO_API unsigned char Vnt_TxtUpper(unsigned char c);

/// The character of a Windows-1252 byte (total, as Vnt_TxtToUtf8).
///   0x41 => U+0041   0x80 => U+20AC   0xE4 => U+00E4   0x81 => U+0081
VANTO_API char32_t Vnt_TxtCharToUnicode(unsigned char byte);

/// The Windows-1252 byte of a character; false when it has none.
///   U+00E4 => 0xE4   U+20AC => 0x80   U+4E2D => false
VANTO_API bool Vnt_TxtCharFromUnicode(char32_t cp, unsigned char& byte);

/// Decodes one UTF-8 character at `pos` of `s` and advances `pos`. False
/// (pos unchanged) on a malformed, overlong or truncated sequence, a
/// surrogate or a value above U+10FFFF.
VANTO_API bool Vnt_TxtDecodeUtf8(std::string_view s, std::size_t& pos, char32_t& cp);

/// Appends the UTF-8 form of `cp` to `out`.
VANTO_API void Vnt_TxtAppendUtf8(std::string& out, char32_t cp);
