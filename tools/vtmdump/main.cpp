// vtmdump - looks into message library files through the library's reader.
//
//   vtmdump check FILE [SEGMENT]            status N: MEANING
//   vtmdump get FILE [--segment NAME] [--system SYSFILE] REF...
//                                           N<TAB>TEXT per reference
//   vtmdump list FILE [SEGMENT]             ID<TAB>LENGTH<TAB>P|F<TAB>TEXT per entry
//   vtmdump decompile FILE                  a source that vtmc compiles back
//
// Scripts and tests read these forms; keep them exactly. Texts are printed in
// UTF-8 with control characters and backslashes escaped as in C. The reader's
// own reports go to standard error.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <deque>
#include <exception>
#include <string>
#include <vector>

#include "vanto/lfn.h"
#include "vanto/vtm.h"
#include "vtmtool/cp1252.h"
#include "vtmtool/vtm_source.h"
#include "vtmtool/vtm_writer.h"

namespace {

// A failure that ends the command with exit status 1.
struct Failure {
    std::string message;
};

// Every write to standard output is checked: a full disk or a closed pipe
// ends the command with exit status 1 instead of a silently cut output.
void writeOut(const std::string& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        throw Failure{std::string("cannot write to standard output: ") + std::strerror(errno)};
}

void printLine(const std::string& line) { writeOut(line + "\n"); }

std::string statusLine(long status) {
    return "status " + std::to_string(status) + ": " + Vnt_VtmStatusText(status);
}

// Converts a UTF-8 argument to Windows-1252, as the reader expects it.
std::string argToCp1252(const std::string& arg, const char* what) {
    std::string out;
    if (!vtmtool::utf8ToCp1252(arg, out))
        throw Failure{std::string(what) + " '" + arg + "' has a character without a Windows-1252 form"};
    return out;
}

// Opens a file given as a host path through the reader.
VNT_MSG openFile(const std::string& hostPath) {
    std::error_code ec;
    if (std::filesystem::is_regular_file(hostPath, ec) && std::filesystem::file_size(hostPath, ec) == 0 && !ec)
        throw Failure{"'" + hostPath + "' is empty: not a message library"};
    VNT_PATH path;
    if (!Vnt_LfnFromHost(path, hostPath.c_str()))
        throw Failure{"cannot use '" + hostPath +
                      "': no volume holds it or it has a character without a Windows-1252 form"};
    return Vnt_VtmOpen(path);
}

// Holds the libraries a command opened and closes them, last first.
class Opened {
public:
    ~Opened() {
        for (auto it = libs_.rbegin(); it != libs_.rend(); ++it) Vnt_VtmClose(*it);
    }
    VNT_MSG add(VNT_MSG lib) {
        if (lib) libs_.push_back(lib);
        return lib;
    }

private:
    std::vector<VNT_MSG> libs_;
};

// Opens FILE (and its SEGMENT when given); throws with the reader's status.
VNT_MSG openTarget(Opened& opened, const std::string& file, const std::string& segment) {
    VNT_MSG lib = opened.add(openFile(file));
    if (!lib) throw Failure{"cannot open '" + file + "': " + statusLine(Vnt_VtmStatus())};
    if (segment.empty()) return lib;
    VNT_MSG seg = opened.add(Vnt_VtmOpenSeg(lib, argToCp1252(segment, "segment name").c_str()));
    if (!seg)
        throw Failure{"cannot open segment '" + segment + "' of '" + file + "': " +
                      statusLine(Vnt_VtmStatus())};
    return seg;
}

// check: prints the status of the open; success only for status 0.
int cmdCheck(const std::string& file, const std::string& segment) {
    Opened opened;
    VNT_MSG lib = opened.add(openFile(file));
    if (lib && !segment.empty())
        lib = opened.add(Vnt_VtmOpenSeg(lib, argToCp1252(segment, "segment name").c_str()));
    const long status = Vnt_VtmStatus();
    printLine(statusLine(status));
    return lib && status == 0 ? 0 : 1;
}

// A command-line reference: an integer is a message reference (1..65535,
// 0 first, -1 next); anything else is a literal text.
bool parseInteger(const std::string& s, long long& value) {
    std::size_t i = s[0] == '-' ? 1 : 0;
    if (i == s.size() || s.size() - i > 12) return false;
    value = 0;
    for (; i < s.size(); ++i) {
        if (s[i] < '0' || s[i] > '9') return false;
        value = value * 10 + (s[i] - '0');
    }
    if (s[0] == '-') value = -value;
    return true;
}

// get: reads each reference as the reader does; success when every read
// gave status 0.
int cmdGet(const std::string& file, const std::string& segment, const std::string& sysFile,
           const std::vector<std::string>& refs) {
    Opened opened;
    if (!sysFile.empty() && !opened.add(openFile(sysFile)))
        throw Failure{"cannot open '" + sysFile + "': " + statusLine(Vnt_VtmStatus())};
    VNT_MSG lib = openTarget(opened, file, segment);
    std::deque<std::string> literals;  // keeps literal texts alive while read
    int rc = 0;
    for (const std::string& arg : refs) {
        long long number;
        VntMsgRef ref = parseInteger(arg, number)
                            ? VntMsgRef(number)
                            : VntMsgRef(literals.emplace_back(argToCp1252(arg, "text")).c_str());
        const char* text = Vnt_VtmRead(lib, ref);
        const long status = Vnt_VtmStatus();
        if (status != 0) rc = 1;
        printLine(std::to_string(status) + "\t" + vtmtool::escapeText(text ? text : ""));
    }
    return rc;
}

// list: iterates with 0 and then -1 as the reader does and prints each
// delivered entry. The entry is found through the reader's cursor.
int cmdList(const std::string& file, const std::string& segment) {
    Opened opened;
    VNT_MSG lib = openTarget(opened, file, segment);
    VNT_VTM_INFO info{};
    Vnt_VtmInfo(lib, &info);
    if (info.segmentCount > 0) {
        std::string names;
        VNT_VTM_SEGENTRY se{};
        for (long n = 0; Vnt_VtmSegEntry(lib, n, &se); ++n) names += std::string(" ") + se.name;
        throw Failure{"'" + file + "' is a container; name one of its segments:" +
                      vtmtool::cp1252ToUtf8(names)};
    }
    int rc = 0;
    long previous = -1;
    for (bool first = true;; first = false) {
        const std::string text = Vnt_VtmRead(lib, first ? VntMsgRef(0) : VntMsgRef(-1));
        const long status = Vnt_VtmStatus();
        Vnt_VtmInfo(lib, &info);
        VNT_VTM_ENTRY entry{};
        // The end: the cursor stops at the entry count, past the last entry.
        if (info.cursor <= previous || !Vnt_VtmEntry(lib, info.cursor, &entry)) break;
        previous = info.cursor;
        if (status != 0) rc = 1;
        printLine(std::to_string(entry.id) + "\t" + std::to_string(entry.length) + "\t" +
                  (entry.preloaded ? "P" : "F") + "\t" + vtmtool::escapeText(text));
    }
    return rc;
}

// Reads one plain library or segment entry by entry, texts as stored.
vtmtool::Library readLibrary(VNT_MSG lib, const std::string& where, std::vector<std::string>& problems) {
    VNT_VTM_INFO info{};
    Vnt_VtmInfo(lib, &info);
    vtmtool::Library out;
    out.name = info.name;
    out.version = info.version;
    out.systemFlag = info.systemFlag;
    out.preload = info.preloadCount >= info.entryCount ? -1 : info.preloadCount;
    for (long n = 0; n < info.entryCount; ++n) {
        VNT_VTM_ENTRY entry{};
        if (!Vnt_VtmEntry(lib, n, &entry)) break;
        const char* text = Vnt_VtmEntryText(lib, n);
        const long status = Vnt_VtmStatus();
        if (status != 0)
            problems.push_back(where + "entry " + std::to_string(n + 1) + " (message " +
                               std::to_string(entry.id) + "): " + statusLine(status));
        out.messages.push_back({entry.id, text ? text : ""});
    }
    if (!out.name.empty() && !vtmtool::isSourceName(out.name))
        problems.push_back(where + "name '" + vtmtool::cp1252ToUtf8(out.name) +
                           "' cannot be written in a source");
    return out;
}

// decompile: prints the source; exit 1 when a text could not be read. A
// source that does not give back the same bytes (a file not written by vtmc)
// is only warned about.
int cmdDecompile(const std::string& file) {
    // Read each file as it is: no system-ID redirection, no registration.
    const int oldRaw = Vnt_VtmSwRaw(1);
    struct RestoreRaw {
        int old;
        ~RestoreRaw() { Vnt_VtmSwRaw(old); }
    } restore{oldRaw};

    Opened opened;
    VNT_MSG lib = openTarget(opened, file, {});
    VNT_VTM_INFO info{};
    Vnt_VtmInfo(lib, &info);
    std::vector<std::string> problems;
    std::string source;
    std::vector<unsigned char> rebuilt;
    const std::string comment = "decompiled from " + file;
    try {
        if (info.segmentCount > 0) {
            vtmtool::Container box;
            box.name = info.name;
            box.version = info.version;
            VNT_VTM_SEGENTRY se{};
            for (long n = 0; Vnt_VtmSegEntry(lib, n, &se); ++n) {
                VNT_MSG seg = opened.add(Vnt_VtmOpenSeg(lib, se.name));
                const std::string where = "segment " + vtmtool::cp1252ToUtf8(se.name) + ": ";
                if (!seg)
                    throw Failure{"cannot open " + where + statusLine(Vnt_VtmStatus())};
                box.segments.push_back(readLibrary(seg, where, problems));
            }
            source = vtmtool::decompileContainer(box, comment);
            rebuilt = vtmtool::writeContainer(box);
        } else {
            vtmtool::Library one = readLibrary(lib, "", problems);
            source = vtmtool::decompileLibrary(one, comment);
            rebuilt = vtmtool::writeLibrary(one);
        }
    } catch (const vtmtool::WriteError& e) {
        if (source.empty()) throw;
        std::fprintf(stderr, "vtmdump: warning: the source will not compile: %s\n", e.what());
    }
    writeOut(source);
    for (const std::string& p : problems) std::fprintf(stderr, "vtmdump: %s\n", p.c_str());
    if (!rebuilt.empty()) {
        std::string original;
        try {
            original = vtmtool::readFile(file);
        } catch (const std::exception&) {
        }
        if (original.size() != rebuilt.size() ||
            !std::equal(rebuilt.begin(), rebuilt.end(), original.begin(),
                        [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); }))
            std::fprintf(stderr,
                         "vtmdump: warning: '%s' was not written by vtmc; compiling this source "
                         "gives a different file\n",
                         file.c_str());
    }
    return problems.empty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Looks into message library files (.vtm) through the library's reader.\n"
                 "Texts are printed in UTF-8 with control characters and backslashes escaped as in C."};
    // A path such as "/tmp/x" is a path, not a Windows-style "/option".
    app.allow_windows_style_options(false);
    app.require_subcommand(1);

    std::string file, segment, sysFile;
    std::vector<std::string> refs;

    CLI::App* check = app.add_subcommand(
        "check", "Opens FILE (and SEGMENT) and prints 'status N: MEANING'; exit 0 only for status 0.");
    check->add_option("FILE", file, "message library file")->required();
    check->add_option("SEGMENT", segment, "segment of a container");

    CLI::App* get = app.add_subcommand(
        "get", "Reads each REF as the reader does and prints 'N<TAB>TEXT', N the status after the read.\n"
               "REF is a message ID, 0 (first), -1 (next) or any other text, returned as it stands\n"
               "(a text cannot begin with '-'). Exit 0 when every status is 0.");
    get->add_option("FILE", file, "message library file")->required();
    get->add_option("--segment", segment, "read from this segment of FILE");
    get->add_option("--system", sysFile, "open this system library first");
    get->add_option("REF", refs, "message references")->required();

    CLI::App* list = app.add_subcommand(
        "list", "Iterates FILE (or its SEGMENT) as the reader does and prints one line per entry:\n"
                "'ID<TAB>STORED LENGTH<TAB>P|F<TAB>TEXT' (P preloaded, F read from the file).");
    list->add_option("FILE", file, "message library file")->required();
    list->add_option("SEGMENT", segment, "segment of a container");

    CLI::App* decompile = app.add_subcommand(
        "decompile", "Prints a source that vtmc compiles back into the same file.");
    decompile->add_option("FILE", file, "message library file")->required();

    // A first word that is no option and no subcommand is named as such.
    const std::vector<std::string> commands{"check", "get", "list", "decompile"};
    if (argc > 1 && argv[1][0] != '-' && std::find(commands.begin(), commands.end(), argv[1]) == commands.end()) {
        std::fprintf(stderr, "vtmdump: unknown subcommand '%s' (one of: check, get, list, decompile)\n", argv[1]);
        return 1;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? 0 : 1;
    }

    try {
        int rc = 1;
        if (*check) rc = cmdCheck(file, segment);
        else if (*get) rc = cmdGet(file, segment, sysFile, refs);
        else if (*list) rc = cmdList(file, segment);
        else if (*decompile) rc = cmdDecompile(file);
        if (std::fflush(stdout) != 0 || std::ferror(stdout))
            throw Failure{std::string("cannot write to standard output: ") + std::strerror(errno)};
        return rc;
    } catch (const Failure& f) {
        std::fflush(stdout);
        std::fprintf(stderr, "vtmdump: %s\n", f.message.c_str());
    } catch (const std::exception& e) {
        std::fflush(stdout);
        std::fprintf(stderr, "vtmdump: %s\n", e.what());
    }
    return 1;
}
