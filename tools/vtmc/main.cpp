// vtmc - compiles a message library source (UTF-8 text) into a .vtm file.
//
//   vtmc SOURCE -o FILE
//
// Exit status 0 on success, 1 on any error (messages on standard error as
// "SOURCE:LINE:COL: error: ..."). The output file is replaced atomically and
// left untouched when compiling fails.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>

#include "vtmtool/vtm_source.h"
#include "vtmtool/vtm_writer.h"

namespace {

// A source line is never this long (a text has at most 1024 characters,
// written as at most four bytes each); longer means no source at all.
constexpr std::size_t kMaxLine = 64 * 1024;

/*
 * Reads the source, refusing what cannot be one as soon as it shows: an
 * empty file, a NUL byte, an over-long line. Memory stays bounded by the
 * part read so far, so a large binary file is refused at its first line.
 */
std::string readSource(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return vtmtool::readFile(path);  // its error names the cause
    std::string text;
    char chunk[65536];
    int line = 1;
    std::size_t lineStart = 0;
    while (in.read(chunk, sizeof chunk) || in.gcount() > 0) {
        const std::size_t got = static_cast<std::size_t>(in.gcount());
        for (std::size_t i = 0; i < got; ++i) {
            const std::size_t at = text.size() + i;
            if (chunk[i] == '\0')
                throw vtmtool::SourceError(path, line, int(at - lineStart + 1), "a NUL byte: this is no text source");
            if (chunk[i] == '\n') ++line, lineStart = at + 1;
            else if (at - lineStart >= kMaxLine)
                throw vtmtool::SourceError(path, line, 1, "a line longer than 65536 bytes: this is no text source");
        }
        text.append(chunk, got);
    }
    if (in.bad()) return vtmtool::readFile(path);
    if (text.empty()) throw vtmtool::SourceError(path, 1, 1, "the file is empty");
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Compiles a message library source (UTF-8) into a .vtm message library file.\n"
                 "The source format is described in vtm-source.md, installed in " VANTO_DOC_DIR "."};
    // A path such as "/tmp/x" is a path, not a Windows-style "/option".
    app.allow_windows_style_options(false);
    std::string source;
    std::string output;
    app.add_option("SOURCE", source, "source file (UTF-8)")->required();
    app.add_option("-o,--output", output, "message library file to write")->required();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? 0 : 1;
    }

    try {
        std::error_code ec;
        if (std::filesystem::equivalent(source, output, ec)) {
            std::fprintf(stderr, "vtmc: the output '%s' is the source itself; name another file\n", output.c_str());
            return 1;
        }
        const std::string text = readSource(source);
        const std::vector<unsigned char> bytes = vtmtool::compileSource(text, source);
        vtmtool::writeFileAtomic(output, bytes);
    } catch (const vtmtool::SourceError& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "vtmc: %s\n", e.what());
        return 1;
    }
    return 0;
}
