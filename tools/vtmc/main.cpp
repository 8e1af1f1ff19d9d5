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
#include <string>

#include "vtmtool/vtm_source.h"
#include "vtmtool/vtm_writer.h"

int main(int argc, char** argv) {
    CLI::App app{"Compiles a message library source (UTF-8) into a .vtm message library file.\n"
                 "The source format is described in docs/vtm-source.md."};
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
        const std::string text = vtmtool::readFile(source);
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
