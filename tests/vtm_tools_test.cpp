// The message-library tools: the writer's byte layout and its refusals, the
// source compiler (texts, escapes, errors with line and column), decompiling,
// and round trips through the real vtmc and vtmdump programs.

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

#include "vanto/vtm.h"
#include "vtmtool/cp1252.h"
#include "vtmtool/vtm_source.h"
#include "vtmtool/vtm_writer.h"
#include "scratch.h"

namespace fs = std::filesystem;
using namespace vtmtool;

namespace {

using Bytes = std::vector<unsigned char>;
using F = WriteError::Field;

uint32_t le32(const Bytes& b, std::size_t at) {
    return uint32_t(b.at(at)) | uint32_t(b.at(at + 1)) << 8 | uint32_t(b.at(at + 2)) << 16 | uint32_t(b.at(at + 3)) << 24;
}
std::string str(const Bytes& b, std::size_t at, std::size_t n) { return std::string(b.begin() + at, b.begin() + at + n); }

Library lib(std::string name, std::vector<Message> messages, long preload = -1, int32_t version = 60, int32_t system = 0) {
    return Library{std::move(name), version, system, preload, std::move(messages)};
}

// Runs `fn`, expecting it to throw E with `says` in its text, and hands the error to `check`.
template <class E, class Fn, class Check = void (*)(const E&)>
void expectRefusal(const std::string& name, const std::string& says, Fn fn, Check check = [](const E&) {}) {
    try { fn(); } catch (const E& e) {
        EXPECT_NE(std::string(e.what()).find(says), std::string::npos) << name << ": " << e.what();
        return check(e);
    }
    ADD_FAILURE() << name << ": accepted";
}

TEST(VtmWriter, LibraryLayout) {
    const Bytes b = writeLibrary(lib("ORDERS", {{10, "eins"}, {20, ""}, {30, "drei\n"}, {40, "vier"}}, 2, 123));
    // Magic, version as text and as number, name; reserved bytes zero.
    EXPECT_EQ(str(b, 0, 36), std::string("VANTOVTM123\0{\0\0\0\0\0\0\0\0\0\0\0ORDERS\0\0\0\0\0\0", 36));
    // Segments, base, size, index, text, entries, system, preload count/size/last ID.
    const uint32_t fields[] = {0, 0, 253, 204, 204 + 8 * 4, 4, 0, 2, 5 + 1, 20};
    for (uint32_t i = 0; i < 10; ++i) EXPECT_EQ(le32(b, 36 + 4 * i), fields[i]) << "header offset " << 36 + 4 * i;
    EXPECT_EQ(str(b, 76, 128), std::string(128, '\0'));  // runtime, annex and reserved bytes
    // Index entries: position counted from the text offset (= start of the preload area), ID | length << 16.
    const uint32_t index[] = {0, 10 | 5 << 16, 5, 20 | 1 << 16, 6, 30 | 6 << 16, 12, 40 | 5 << 16};
    for (uint32_t i = 0; i < 8; ++i) EXPECT_EQ(le32(b, 204 + 4 * i), index[i]) << "index word " << i;
    EXPECT_EQ(str(b, 236, b.size() - 236), std::string("eins\0\0drei\n\0vier\0", 17));
    EXPECT_EQ(writeLibrary(lib("", {})).size(), 204u);
    // Preload count, size and last ID; with none preloaded no ID counts as preloaded.
    for (auto [preload, count, size, lastId] : {std::array<long, 4>{0, 0, 0, 0}, {1, 1, 2, 1}, {-1, 2, 5, 2}}) {
        const Bytes p = writeLibrary(lib("A", {{1, "x"}, {2, "yy"}}, preload));
        EXPECT_EQ((std::vector<long long>{le32(p, 64), le32(p, 68), le32(p, 72)}), (std::vector<long long>{count, size, lastId})) << preload;
    }
}

TEST(VtmWriter, ContainerLayout) {
    const Container box{"BOX", 61, {lib("DEU", {{1, "Hallo"}}), lib("ENU", {{1, "Hello"}, {2, "World"}}, 1, 70)}};
    const Bytes b = writeContainer(box);
    // Version, segments, size, directory offset, first segment, entries = segments.
    EXPECT_EQ((std::vector<uint32_t>{le32(b, 12), le32(b, 36), le32(b, 44), le32(b, 48), le32(b, 52), le32(b, 56)}),
              (std::vector<uint32_t>{61, 2, uint32_t(b.size()), 204, 204 + 24, 2}));
    uint32_t off = 204 + 2 * 12;
    for (std::size_t s = 0; s < 2; ++s) {
        const Bytes alone = writeLibrary(box.segments[s]);
        const uint32_t n = uint32_t(box.segments[s].messages.size()), size = uint32_t(alone.size());
        EXPECT_EQ(le32(b, 204 + 12 * s), off) << s;
        EXPECT_EQ(str(b, 204 + 12 * s + 4, 8), str(alone, 24, 8)) << s;  // name, NUL-padded
        // A segment is the library it would be alone, its offsets absolute in the file.
        EXPECT_EQ(str(b, off, 40) + str(b, off + 56, size - 56), str(alone, 0, 40) + str(alone, 56, size - 56)) << s;
        EXPECT_EQ((std::vector<uint32_t>{le32(b, off + 40), le32(b, off + 44), le32(b, off + 48), le32(b, off + 52)}),
                  (std::vector<uint32_t>{off, size, off + 204, off + 204 + 8 * n})) << s;
        off += size;
    }
    EXPECT_EQ(b.size(), off);
}

// Each row is a plain library, or with `box` a container of the given segments.
TEST(VtmWriter, RefusesBrokenInput) {
    struct Row { const char* name; bool box; std::vector<Library> libs; F field; long segment, message; const char* says; };
    std::vector<Message> big;
    for (uint16_t id = 1; id <= 64; ++id) big.push_back({id, std::string(1024, 'x')});
    std::vector<Library> many;
    for (int i = 0; i < 257; ++i) many.push_back(lib("S" + std::to_string(i), {}));
    const Row rows[] = {
        {"name of 9", false, {lib("ABCDEFGHI", {})}, F::Name, -1, -1, "longer than 8"},
        {"name with NUL", false, {lib(std::string("A\0B", 3), {})}, F::Name, -1, -1, "NUL"},
        {"version 9", false, {lib("A", {}, -1, 9)}, F::Version, -1, -1, "outside 10..199"},
        {"version 200", false, {lib("A", {}, -1, 200)}, F::Version, -1, -1, "outside 10..199"},
        {"ID 0", false, {lib("A", {{1, "a"}, {0, "b"}})}, F::Message, -1, 1, "ID 0"},
        {"text of 1025", false, {lib("A", {{1, std::string(1025, 'x')}})}, F::Message, -1, 0, "1025 bytes"},
        {"text with NUL", false, {lib("A", {{1, std::string("a\0b", 3)}})}, F::Message, -1, 0, "NUL"},
        {"preload above entries", false, {lib("A", {{1, "a"}}, 2)}, F::Preload, -1, -1, "above the 1 entries"},
        {"preload -2", false, {lib("A", {{1, "a"}}, -2)}, F::Preload, -1, -1, "negative"},
        {"not preloaded, ID equal", false, {lib("A", {{1, "a"}, {5, "b"}, {5, "c"}}, 2)}, F::Message, -1, 2, "must be above the last preloaded ID 5"},
        {"preloaded, repeated last ID", false, {lib("A", {{5, "a"}, {5, "b"}})}, F::Message, -1, 0, "must be below the last preloaded ID 5"},
        {"system without all preloaded", false, {lib("S", {{1, "a"}, {2, "b"}}, 1, 60, 1)}, F::System, -1, -1, "1 of 2 preloaded"},
        {"preload area of 64 KiB", false, {lib("A", big)}, F::Preload, -1, -1, "65600 bytes, more than 65535"},
        {"no segments", true, {}, F::Segments, -1, -1, "at least one segment"},
        {"257 segments", true, many, F::Segments, 256, -1, "at most 256"},
        {"unnamed segment", true, {lib("A", {}), lib("", {})}, F::Name, 1, -1, "has no name"},
        {"names equal without case", true, {lib("Deu", {}), lib("DEU", {})}, F::Name, 1, -1, "used twice"},
        {"system segment", true, {lib("S", {{1, "a"}}, -1, 60, 1)}, F::System, 0, -1, "system flag"},
        {"broken segment", true, {lib("A", {}), lib("B", {{0, "x"}})}, F::Message, 1, 0, "ID 0"},
    };
    for (const Row& r : rows) {
        const auto write = [&] { r.box ? writeContainer(Container{"", 60, r.libs}) : writeLibrary(r.libs.at(0)); };
        expectRefusal<WriteError>(r.name, r.says, write, [&](const WriteError& e) {
            EXPECT_EQ(std::make_tuple(e.field(), e.segment(), e.message()), std::make_tuple(r.field, r.segment, r.message)) << r.name;
        });
    }
    EXPECT_NO_THROW(writeLibrary(lib("A", {big.begin(), big.end() - 1})));  // 63 x 1025 bytes fit
    // Repeated IDs after the preloaded run are allowed (first match wins).
    EXPECT_NO_THROW(writeLibrary(lib("A", {{1, "a"}, {7, "b"}, {7, "c"}}, 1)));
    EXPECT_EQ(le32(writeContainer(Container{"", 60, {many.begin(), many.end() - 1}}), 36), 256u);
}

TEST(VtmToolsCp1252, TableAndDisplayForm) {
    const std::pair<unsigned char, char32_t> rows[] = {{0x41, U'A'}, {0x80, U'\u20AC'}, {0x8A, U'\u0160'}, {0x9F, U'\u0178'}, {0xA0, U'\u00A0'}, {0xFF, U'\u00FF'}};
    unsigned char back = 0;
    for (const auto& [byte, cp] : rows)
        EXPECT_TRUE(cp1252ToUnicode(byte) == cp && unicodeToCp1252(cp, back) && back == byte) << int(byte);
    // The five bytes without a character; the C1 controls of the same value have no byte.
    for (unsigned char undefined : {0x81, 0x8D, 0x8F, 0x90, 0x9D})
        EXPECT_TRUE(cp1252ToUnicode(undefined) == 0xFFFFFFFFu && !unicodeToCp1252(undefined, back)) << int(undefined);
    EXPECT_EQ(escapeText("a\tb\nc\rd\\e\"f") + escapeText("\"", true), "a\\tb\\nc\\rd\\\\e\"f\\\"");
    EXPECT_EQ(escapeText("\x01\x1f\x7f\x81\xe4\x80"), "\\x01\\x1f\\x7f\\x81\xC3\xA4\xE2\x82\xAC");
}

TEST(VtmSource, CompilesTextsAndStatements) {
    struct Row { const char* name; std::string source; Bytes expected; };
    const auto one = [](const std::string& text) { return writeLibrary(lib("X", {{1, text}})); };
    const Row rows[] = {
        {"named escapes", "library X\n1 \"a\\nb\\tc\\rd\\\\e\\\"f\"", one("a\nb\tc\rd\\e\"f")},
        {"hex escapes", "library X\n1 \"\\x41\\xe4\\xE4\\x81\\x7f\"", one("A\xe4\xe4\x81\x7f")},
        {"hex then digit", "library X\n1 \"\\x412\"", one("A2")},
        {"umlauts and euro", "library X\n1 \"\xC3\xA4\xC3\xB6\xC3\x9F\xE2\x82\xAC\"", one("\xe4\xf6\xdf\x80")},
        {"literal tab", "library X\n1 \"a\tb\"", one("a\tb")},
        {"joined literals", "library X\n1 \"ab\" \"cd\"\t\"\"", one("abcd")},
        {"hash inside a text", "library X\n1 \"#1\" # a comment", one("#1")},
        // Blank and comment lines do not end a text continued on lines that begin with a literal.
        {"continued text", "library X\n1 \"Zeile 1\\n\"\n   \"Zeile 2\"\n\n# note\n  \"!\"\n", one("Zeile 1\nZeile 2!")},
        {"BOM, CR LF, any case, comments", "\xEF\xBB\xBF# s\r\nLIBRARY Vnt60Lib   # sys\r\nVersion 61\r\nsystem 1\r\npreload ALL\r\n32768 \"a\"\r\n",
         writeLibrary(lib("Vnt60Lib", {{32768, "a"}}, -1, 61, 1))},
        {"defaults", "library\n5 \"x\"\n", writeLibrary(lib("", {{5, "x"}}))},
        {"container and segment versions", "container BOX\nversion 70\nsegment A\npreload 0\n1 \"a\"\nsegment b\nversion 80\n",
         writeContainer(Container{"BOX", 70, {lib("A", {{1, "a"}}, 0), lib("b", {}, -1, 80)}})},
    };
    for (const Row& r : rows) EXPECT_EQ(compileSource(r.source, "t"), r.expected) << r.name;
}

// Syntax errors point at line and column; rules of the file format that the
// writer checks name the line of the statement or message concerned.
TEST(VtmSource, ErrorsNameLineAndColumn) {
    struct Row { const char* name; std::string source; int line, column; const char* says; };
    const std::string lib = "library X\n";
    std::string bigTexts = lib;
    for (int id = 1; id <= 64; ++id) bigTexts += std::to_string(id) + " \"" + std::string(1024, 'x') + "\"\n";
    const Row rows[] = {
        {"column counts characters", lib + "1 \"\xC3\xA4\xE4\xB8\xAD\"", 2, 5, "character U+4E2D '\xE4\xB8\xAD' has no Windows-1252 form"},
        {"C1 control", lib + "1 \"\xC2\x81\"", 2, 4, "U+0081 has no Windows-1252 form"},
        {"invalid UTF-8", lib + "1 \"a\xFF\"", 2, 5, "invalid UTF-8"},
        {"unknown escape", lib + "1 \"a\\q\"", 2, 5, "unknown escape"},
        {"short hex escape", lib + "1 \"\\x4\"", 2, 4, "two hex digits"},
        {"NUL escape", lib + "1 \"ab\\x00\"", 2, 6, "NUL"},
        {"backslash at the end", lib + "1 \"ab\\", 2, 6, "end of the line"},
        {"unclosed text", lib + "1 \"abc", 2, 3, "not closed"},
        {"raw control character", lib + "1 \"a\x01\"", 2, 5, "control character U+0001"},
        {"text then junk", lib + "1 \"a\" x", 2, 7, "expected a text"},
        {"ID 65536", lib + "\n65536 \"a\"", 3, 1, "outside 1..65535"},
        {"ID with letters", lib + "  12a \"a\"", 2, 3, "decimal number"},
        {"unknown statement", "librarx X", 1, 1, "unknown statement 'librarx'"},
        {"empty source", "# nothing\n\n", 1, 1, "no 'library' or 'container'"},
        {"message first", "1 \"a\"\nlibrary X", 1, 1, "must follow 'library'"},
        {"second library", lib + "container Y", 2, 1, "second one"},
        {"name of 9", "library ABCDEFGHI", 1, 9, "1 to 8"},
        {"version twice", lib + "version 60\nversion 61", 3, 1, "given twice (first on line 2)"},
        {"preload after a message", lib + "1 \"a\"\npreload 1", 3, 1, "before the first message"},
        {"continuation first", lib + "\"a\"", 2, 1, "must follow a message"},
        {"continuation after a statement", "container C\nsegment A\n1 \"a\"\nsegment B\n\"b\"", 5, 1, "must follow a message"},
        {"segment in a library", lib + "segment A", 2, 1, "belongs in a container"},
        {"segment without name", "container C\nsegment", 2, 8, "needs a name"},
        {"message before segment", "container C\n1 \"a\"", 2, 1, "must follow a 'segment'"},
        {"preload in container", "container C\npreload 1", 2, 1, "not to the container"},
        {"segment names without case", "container C\nsegment Deu\nsegment dEU", 3, 9, "used twice"},
        // Rules the writer checks, on the line concerned (column 1).
        {"preload above entries", "library X\n# c\npreload 2\n1 \"a\"\n", 3, 1, "above the 1 entries"},
        {"ID not above last preloaded", lib + "preload 2\n1 \"a\"\n5 \"b\"\n6 \"c\"\n5 \"d\"\n", 6, 1, "must be above the last preloaded ID 5"},
        {"system without all preloaded", lib + "system 1\npreload 1\n1 \"a\"\n2 \"b\"\n", 2, 1, "must preload all"},
        {"continued text of 1025 bytes", lib + "\n7 \"" + std::string(1024, 'x') + "\"\n  \"y\"\n", 3, 1, "1025 bytes"},
        {"preload area defaulted", bigTexts, 1, 1, "more than 65535"},
        {"empty container", "# c\ncontainer C\nversion 60\n", 2, 1, "at least one segment"},
        {"segment rule", "container C\nsegment A\n1 \"a\"\nsegment B\npreload 3\n1 \"a\"\n", 5, 1, "above the 1 entries"},
    };
    for (const Row& r : rows) {
        const std::string at = "src.vtms:" + std::to_string(r.line) + ":" + std::to_string(r.column) + ": error: ";
        expectRefusal<SourceError>(r.name, r.says, [&] { compileSource(r.source, "src.vtms"); },
                                   [&](const SourceError& e) { EXPECT_EQ(std::string(e.what()).rfind(at, 0), 0u) << r.name << ": " << e.what(); });
    }
    // 1024 bytes after conversion is the limit: an umlaut counts one byte.
    EXPECT_NO_THROW(compileSource(lib + "7 \"" + std::string(1022, 'x') + "\xC3\xA4\xC3\xA4\"\n", "f"));
}

TEST(VtmSource, DecompileCompilesBackToTheSameBytes) {
    std::string everyByte;
    for (int b = 1; b < 256; ++b) everyByte += static_cast<char>(b);
    const Library one = lib("ALL", {{1, everyByte}, {2, ""}, {3, "\n"}, {4, "a\n\nb\n"}, {5, "  \"q\"  \\ "}, {6, "#x"}}, 3, 199);
    const std::string src = decompileLibrary(one, "test");
    EXPECT_EQ(src.rfind("# test\nlibrary ALL\nversion 199\npreload 3\n", 0), 0u) << src;
    EXPECT_EQ(compileSource(src, "d.vtms"), writeLibrary(one)) << src;
}

struct ToolRun {
    int rc;
    std::string out, err;
    std::string withOut() const { return std::to_string(rc) + " " + out; }
    std::string withErr() const { return std::to_string(rc) + " " + err; }
};

class VtmToolsRun : public ::testing::Test {
protected:
    VtmToolsRun() { fs::remove_all(dir_), fs::create_directories(dir_); }
    ~VtmToolsRun() override { fs::remove_all(dir_); }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    void put(const std::string& name, const std::string& text) const { std::ofstream(dir_ / name, std::ios::binary) << text; }

    // Runs a program with quoted arguments, capturing both streams.
    // `out` replaces the file that receives standard output.
    ToolRun run(const std::string& exe, const std::vector<std::string>& args, const std::string& out = {}) const {
        using vnt::test::shellQuote;
        std::string cmd = shellQuote(exe);
        for (const std::string& a : args) cmd += " " + shellQuote(a);
        const std::string to = out.empty() ? path("stdout") : out;
        cmd += " >" + shellQuote(to) + " 2>" + shellQuote(path("stderr"));
        return {vnt::test::runCommand(cmd), out.empty() ? readFile(to) : "",
                readFile(path("stderr"))};
    }
    std::string dump(const std::vector<std::string>& args) const { return run(VTMDUMP_EXE, args).withOut(); }
    static std::string status(int n) { return "status " + std::to_string(n) + ": " + Vnt_VtmStatusText(n) + "\n"; }

    // Compiles `source` to NAME.vtm, checking that vtmc succeeds.
    std::string compile(const std::string& name, const std::string& source) const {
        put(name + ".vtms", source);
        EXPECT_EQ(run(VTMC_EXE, {path(name + ".vtms"), "-o", path(name + ".vtm")}).withErr(), "0 ") << name;
        return path(name + ".vtm");
    }
    // vtmc -> vtmdump decompile -> vtmc must give the same bytes.
    void expectRoundTrip(const std::string& vtm) const {
        const ToolRun d = run(VTMDUMP_EXE, {"decompile", vtm});
        EXPECT_EQ(d.withErr(), "0 ") << vtm;
        EXPECT_EQ(readFile(compile("again", d.out)), readFile(vtm)) << d.out;
    }
    const fs::path dir_ = vnt::test::scratchDir("vanto_vtmtools_");
};

const char* const kLibrary = "library ORDERS\npreload 3\n1 \";Kommentar\"\n10 \"Auftrag\\tgespeichert\"\n"
                             "20 \"Pfad C:\\\\Daten\\n\"\n30 \"\xC3\x84nderung \xE2\x82\xAC\"\n40 \";noch ein Kommentar\"\n50 \"\"\n";

TEST_F(VtmToolsRun, RoundTrips) {
    expectRoundTrip(compile("orders", kLibrary));
    expectRoundTrip(compile("sys", "library VNT60LIB\nsystem 1\n32768 \"a\"\n40000 \"b\\x81\"\n"));
    expectRoundTrip(compile("repeated", "library\npreload 0\n5 \"x\"\n3 \"y\"\n3 \"z\"\n"));
    expectRoundTrip(compile("empty", "library E\n"));
    expectRoundTrip(compile("sample", readFile(fs::path(VANTO_SOURCE_DIR).parent_path() / "examples" / "sample.vtms")));
    // A file from another writer still decompiles, with a warning that the source gives other bytes.
    Bytes b = writeLibrary(lib("X", {{1, "a"}}));
    b[104] = 'Z';  // annex data vtmc never writes
    writeFileAtomic(path("foreign.vtm"), b);
    const ToolRun d = run(VTMDUMP_EXE, {"decompile", path("foreign.vtm")});
    EXPECT_TRUE(d.rc == 0 && d.out.find("\n1 \"a\"\n") != std::string::npos && d.err.find("was not written by vtmc") != std::string::npos)
        << d.out << d.err;
}

TEST_F(VtmToolsRun, ListAndGetAndCheck) {
    const std::string vtm = compile("orders", kLibrary);
    EXPECT_EQ(dump({"list", vtm}), "0 10\t20\tP\tAuftrag\\tgespeichert\n20\t15\tP\tPfad C:\\\\Daten\\n\n"
                                   "30\t11\tF\t\xC3\x84nderung \xE2\x82\xAC\n50\t1\tF\t\n");
    // Exit 1 as one read fails; by ID a comment text is delivered; 0 and -1 iterate; a string passes.
    const ToolRun get = run(VTMDUMP_EXE, {"get", vtm, "30", "1", "77", "0", "-1", "hallo welt"});
    EXPECT_EQ(get.withOut(), "1 0\t\xC3\x84nderung \xE2\x82\xAC\n0\t;Kommentar\n101\t\n0\tAuftrag\\tgespeichert\n"
                             "0\tPfad C:\\\\Daten\\n\n0\thallo welt\n");
    EXPECT_NE(get.err.find("Message ID 77 not found."), std::string::npos) << get.err;
    EXPECT_EQ(dump({"get", vtm, "10", "20"}), "0 0\tAuftrag\\tgespeichert\n0\tPfad C:\\\\Daten\\n\n");
    put("bad.vtm", std::string(204, 'x'));
    EXPECT_EQ(dump({"check", vtm}) + dump({"check", path("bad.vtm")}) + dump({"check", path("missing.vtm")}),
              "0 " + status(0) + "1 " + status(5) + "1 " + status(1));
}

TEST_F(VtmToolsRun, SegmentsAndSystemLibrary) {
    const std::string box = compile("box", "container BOX\nsegment DEU\n1 \"Datei\"\n2 \"~&Ja\"\nsegment ENU\npreload 0\n1 \"File\"\n");
    EXPECT_EQ(dump({"check", box, "enu"}) + dump({"check", box, "FRA"}), "0 " + status(0) + "1 " + status(13));
    EXPECT_EQ(dump({"list", box, "DEU"}) + dump({"list", box, "ENU"}), "0 1\t6\tP\tDatei\n2\t5\tP\t~&Ja\n0 1\t5\tF\tFile\n");
    const ToolRun whole = run(VTMDUMP_EXE, {"list", box});
    EXPECT_TRUE(whole.rc == 1 && whole.err.find("container") != std::string::npos) << whole.err;
    EXPECT_EQ(dump({"get", box, "--segment", "ENU", "1"}), "0 0\tFile\n");
    // System IDs are read from the system library opened first.
    const std::string sys = compile("sys", "library SYS\nsystem 1\n40000 \"System\\n\"\n");
    EXPECT_EQ(dump({"get", compile("app", "library APP\n1 \"App\"\n"), "--system", sys, "1", "40000"}), "0 0\tApp\n0\tSystem\\n\n");
}

// Output files are replaced whole or not at all.
TEST_F(VtmToolsRun, FailuresKeepTheOutput) {
    put("out.vtm", "previous");
    put("bad.vtms", "library X\n1 \"a\\q\"\n");
    EXPECT_EQ(run(VTMC_EXE, {path("bad.vtms"), "-o", path("out.vtm")}).withErr(),
              "1 " + path("bad.vtms") + ":2:5: error: unknown escape sequence; use \\n \\t \\r \\\\ \\\" or \\xHH\n");
    const ToolRun missing = run(VTMC_EXE, {path("nothing.vtms"), "-o", path("out.vtm")});
    EXPECT_TRUE(missing.rc == 1 && missing.err.find("nothing.vtms") != std::string::npos) << missing.err;
    EXPECT_EQ(readFile(path("out.vtm")), "previous");
    // No -o, help, an unknown command.
    EXPECT_EQ((std::vector<int>{run(VTMC_EXE, {path("bad.vtms")}).rc, run(VTMC_EXE, {"--help"}).rc, run(VTMDUMP_EXE, {"--help"}).rc,
                                run(VTMDUMP_EXE, {"frobnicate"}).rc}), (std::vector<int>{1, 0, 0, 1}));

    writeFileAtomic(path("out.vtm"), Bytes{'n', 'e', 'w'});
    EXPECT_EQ(readFile(path("out.vtm")), "new");
    fs::create_directories(dir_ / "busy" / "inner");  // a rename cannot replace a non-empty directory
    EXPECT_THROW(writeFileAtomic(dir_ / "busy", Bytes{'x'}), std::runtime_error);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir_), fs::directory_iterator()), 5) << "a temporary file was left";
    expectRefusal<std::runtime_error>("missing dir", "missing/out.vtm", [&] { writeFileAtomic(dir_ / "missing" / "out.vtm", Bytes{'x'}); });
}

// What is no input, a failing standard output and a source named as its own
// output: a clear error each, exit status 1, and nothing overwritten.
TEST_F(VtmToolsRun, RefusesWhatIsNoInputAndFailedWrites) {
    static const char kLate[] = "library X\n1 \"a\"\n2 \"b\0\"\n";
    const std::string vtm = compile("orders", kLibrary);
    put("empty.vtm", ""), put("empty.vtms", ""), put("zeros.vtms", std::string(4 << 20, '\0'));
    put("long.vtms", std::string(70000, 'a')), put("late.vtms", std::string(kLate, sizeof kLate - 1));
    put("self.vtms", "library X\n1 \"a\"\n");
    struct Row { const char* name; const char* exe; std::vector<std::string> args; std::string out; const char* says; };
    const Row rows[] = {
        {"unknown subcommand named", VTMDUMP_EXE, {"bogus", "x"}, "", "unknown subcommand 'bogus'"},
        {"decompile to a full disk", VTMDUMP_EXE, {"decompile", vtm}, "/dev/full", "cannot write to standard output"},
        {"list to a full disk", VTMDUMP_EXE, {"list", vtm}, "/dev/full", "cannot write to standard output"},
        {"empty library", VTMDUMP_EXE, {"check", path("empty.vtm")}, "", "is empty: not a message library"},
        {"empty source", VTMC_EXE, {path("empty.vtms"), "-o", path("x.vtm")}, "", "empty.vtms:1:1: error: the file is empty"},
        {"zeros", VTMC_EXE, {path("zeros.vtms"), "-o", path("x.vtm")}, "", "zeros.vtms:1:1: error: a NUL byte"},
        {"NUL on line 3", VTMC_EXE, {path("late.vtms"), "-o", path("x.vtm")}, "", "late.vtms:3:5: error: a NUL byte"},
        {"over-long line", VTMC_EXE, {path("long.vtms"), "-o", path("x.vtm")}, "", "long.vtms:1:1: error: a line longer"},
        {"output is the source", VTMC_EXE, {path("self.vtms"), "-o", path("self.vtms")}, "", "is the source itself"},
        {"output is the source by another name", VTMC_EXE, {path("self.vtms"), "-o", (dir_ / "." / "self.vtms").string()}, "", "is the source itself"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.name);
        const ToolRun t = run(r.exe, r.args, r.out);
        EXPECT_EQ(t.rc, 1);
        EXPECT_NE(t.err.find(r.says), std::string::npos) << t.err;
        EXPECT_EQ(t.err.find("Internal Error"), std::string::npos) << t.err;
    }
    EXPECT_FALSE(fs::exists(dir_ / "x.vtm"));
    EXPECT_EQ(readFile(path("self.vtms")), "library X\n1 \"a\"\n");
    // The description of the source format is named where it is installed.
    EXPECT_NE(run(VTMC_EXE, {"--help"}).out.find("/doc/vantortl"), std::string::npos);
}

}  // namespace
