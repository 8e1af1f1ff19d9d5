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
/// leaves undefined become the C1 controls of the same value.
///   "Gr\xFC\xDF" => "Grüß"     "\x80" => "€"
VANTO_API std::string Vnt_TxtToUtf8(std::string_view cp1252);

/// Windows-1252 form of a UTF-8 text into `out`. False on malformed UTF-8 or
/// a character without a Windows-1252 form; `badPos` then receives the byte
/// offset of the offending sequence and `out` holds the text before it.
///   "Grüß" => "Gr\xFC\xDF"     "ā" => false, badPos 0
VANTO_API bool Vnt_TxtFromUtf8(std::string_view utf8, std::string& out,
                               std::size_t* badPos = nullptr);

/// Upper case of a Windows-1252 character, as the library compares names.
VANTO_API unsigned char Vnt_TxtUpper(unsigned char c);
