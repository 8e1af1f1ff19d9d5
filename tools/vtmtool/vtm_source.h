// vtmtool/vtm_source.h - the text source of message libraries: compiler and
// decompiler. The format is described in docs/vtm-source.md.
//
//   # German texts of the sample
//   library SAMPLE
//   version 60
//   preload all
//   1001 "Datei %s nicht gefunden."
//   1002 ";nur ein Kommentar"
//   1003 "~&Öffnen"
//   1004 "Zeile 1\n"
//        "Zeile 2"
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "vtmtool/vtm_writer.h"

namespace vtmtool {

/// A fault in a source, located by 1-based line and column (column in
/// characters). what() is "FILE:LINE:COL: error: MESSAGE".
class SourceError : public std::runtime_error {
public:
    SourceError(const std::string& file, int line, int column, const std::string& message);
    int line() const noexcept { return line_; }
    int column() const noexcept { return column_; }
    const std::string& message() const noexcept { return message_; }

private:
    int line_;
    int column_;
    std::string message_;
};

/// Where the statements of one library or segment stand (1-based lines; 0
/// when the statement is absent and its default applies).
struct SourceLines {
    int statement = 0;          ///< "library" or "segment"
    int version = 0;
    int system = 0;
    int preload = 0;
    std::vector<int> messages;  ///< one per message
};

/// A parsed source: a plain library or a container of segments. Texts are
/// Windows-1252 bytes.
struct Source {
    bool isContainer = false;
    Library library;                ///< when !isContainer
    Container container;            ///< when isContainer
    int containerLine = 0;          ///< line of "container"
    int containerVersionLine = 0;   ///< line of the container's "version"
    std::vector<SourceLines> lines; ///< the library, or one per segment
};

/// Parses a UTF-8 source. `fileName` only names the file in errors. Throws
/// SourceError at the first fault (syntax, bad escape, a character without a
/// Windows-1252 form, a value out of range, a misplaced statement).
Source parseSource(std::string_view text, const std::string& fileName);

/// Writes a parsed source as a .vtm file image. A rule of the file format
/// that the source breaks is thrown as a SourceError on the line concerned.
std::vector<unsigned char> buildSource(const Source& source, const std::string& fileName);

/// parseSource and buildSource in one.
std::vector<unsigned char> compileSource(std::string_view text, const std::string& fileName);

/// Source text (UTF-8) for a library or a container; compiling it gives the
/// same file that writeLibrary / writeContainer gives for the input.
/// `comment`, when not empty, is put first as a "#" line.
std::string decompileLibrary(const Library& lib, const std::string& comment = {});
std::string decompileContainer(const Container& box, const std::string& comment = {});

/// True when `name` can stand in a source as a library or segment name:
/// 1..8 characters, each a letter, a digit or one of "_-$@!&+~".
bool isSourceName(std::string_view name);

}  // namespace vtmtool
