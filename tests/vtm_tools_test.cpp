// The message-library tools: the writer's byte layout and its refusals, the
// source compiler (texts, escapes, errors with line and column), decompiling,
// and round trips through the real vtmc and vtmdump programs.
#ifdef VANTO_HAVE_TOOLS

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "vanto/vtm.h"
#include "vtmtool/cp1252.h"
#include "vtmtool/vtm_source.h"
#include "vtmtool/vtm_writer.h"

namespace fs = std::filesystem;
using namespace vtmtool;

namespace {

using Bytes = std::vector<unsigned char>;

uint32_t le32(const Bytes& b, std::size_t at) {
    return uint32_t(b.at(at)) | uint32_t(b.at(at + 1)) << 8 | uint32_t(b.at(at + 2)) << 16 |
           uint32_t(b.at(at + 3)) << 24;
}
uint16_t le16(const Bytes& b, std::size_t at) { return uint16_t(b.at(at) | b.at(at + 1) << 8); }

// The NUL-terminated text at an absolute offset.
std::string textAt(const Bytes& b, std::size_t at) {
    std::string s;
    while (b.at(at) != 0) s += static_cast<char>(b[at++]);
    return s;
}

Library lib(std::string name, std::vector<Message> messages, long preload = -1) {
    Library l;
    l.name = std::move(name);
    l.messages = std::move(messages);
    l.preload = preload;
    return l;
}

// The one message text of a compiled one-message library.
std::string compiledText(const std::string& literal) {
    Source s = parseSource("library X\n1 " + literal + "\n", "t.vtms");
    return s.library.messages.at(0).text;
}

// ---------------------------------------------------------------------------
// Writer: layout
// ---------------------------------------------------------------------------

TEST(VtmWriter, PlainLibraryLayout) {
    Library l = lib("ORDERS", {{10, "eins"}, {20, ""}, {30, "drei\n"}, {40, "vier"}}, 2);
    l.version = 123;
    const Bytes b = writeLibrary(l);
    const uint32_t n = 4, index = 204, text = 204 + 8 * n;

    EXPECT_EQ(std::string(b.begin(), b.begin() + 8), "VANTOVTM");
    EXPECT_EQ(std::string(b.begin() + 8, b.begin() + 12), std::string("123\0", 4));
    EXPECT_EQ(le32(b, 12), 123u);
    EXPECT_EQ(std::string(b.begin() + 24, b.begin() + 32), std::string("ORDERS\0\0", 8));
    EXPECT_EQ(le32(b, 36), 0u);             // segment count
    EXPECT_EQ(le32(b, 40), 0u);             // base offset
    EXPECT_EQ(le32(b, 44), b.size());       // library size
    EXPECT_EQ(le32(b, 48), index);
    EXPECT_EQ(le32(b, 52), text);
    EXPECT_EQ(le32(b, 56), n);
    EXPECT_EQ(le32(b, 60), 0u);             // system flag
    EXPECT_EQ(le32(b, 64), 2u);             // preload count
    EXPECT_EQ(le32(b, 68), 5u + 1u);        // "eins\0" + "\0"
    EXPECT_EQ(le32(b, 72), 20u);            // last preload ID
    for (std::size_t i : {16, 17, 22, 23, 32, 35, 76, 103, 104, 163, 164, 167, 168, 203})
        EXPECT_EQ(b[i], 0) << "header byte " << i;

    // Positions run on from the text offset, preload area first.
    const uint32_t positions[] = {0, 5, 6, 12};
    const uint16_t lengths[] = {5, 1, 6, 5};
    for (uint32_t i = 0; i < n; ++i) {
        EXPECT_EQ(le32(b, index + 8 * i), positions[i]) << i;
        EXPECT_EQ(le16(b, index + 8 * i + 4), l.messages[i].id) << i;
        EXPECT_EQ(le16(b, index + 8 * i + 6), lengths[i]) << i;
        EXPECT_EQ(textAt(b, text + positions[i]), l.messages[i].text) << i;
    }
    EXPECT_EQ(b.size(), text + 5 + 1 + 6 + 5);
}

TEST(VtmWriter, PreloadNoneAndAllAndEmpty) {
    const Bytes none = writeLibrary(lib("A", {{1, "x"}, {2, "yy"}}, 0));
    EXPECT_EQ(le32(none, 64), 0u);
    EXPECT_EQ(le32(none, 68), 0u);
    EXPECT_EQ(le32(none, 72), 0u);  // no ID counts as preloaded
    const Bytes all = writeLibrary(lib("A", {{1, "x"}, {2, "yy"}}));
    EXPECT_EQ(le32(all, 64), 2u);
    EXPECT_EQ(le32(all, 68), 5u);
    EXPECT_EQ(le32(all, 72), 2u);
    EXPECT_EQ(writeLibrary(lib("A", {{1, "x"}, {2, "yy"}}, 2)), all);  // 2 of 2 is "all"
    const Bytes empty = writeLibrary(lib("", {}));
    EXPECT_EQ(empty.size(), 204u);
    EXPECT_EQ(le32(empty, 56), 0u);
    EXPECT_EQ(le32(empty, 52), 204u);
}

TEST(VtmWriter, ContainerLayout) {
    Container box;
    box.name = "BOX";
    box.version = 61;
    box.segments = {lib("DEU", {{1, "Hallo"}}), lib("ENU", {{1, "Hello"}, {2, "World"}}, 1)};
    box.segments[1].version = 70;
    const Bytes b = writeContainer(box);

    EXPECT_EQ(le32(b, 12), 61u);
    EXPECT_EQ(le32(b, 36), 2u);  // segment count
    EXPECT_EQ(le32(b, 56), 2u);  // entry count = segment count
    EXPECT_EQ(le32(b, 44), b.size());
    EXPECT_EQ(le32(b, 48), 204u);
    for (std::size_t s = 0; s < 2; ++s) {
        const uint32_t off = le32(b, 204 + 12 * s);
        EXPECT_EQ(std::string(b.begin() + 204 + 12 * s + 4, b.begin() + 204 + 12 * s + 12),
                  box.segments[s].name + std::string(8 - box.segments[s].name.size(), '\0'));
        // Each segment is a complete library with absolute offsets.
        EXPECT_EQ(std::string(b.begin() + off, b.begin() + off + 8), "VANTOVTM");
        EXPECT_EQ(le32(b, off + 12), uint32_t(box.segments[s].version));
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(&b[off + 24])), box.segments[s].name);
        EXPECT_EQ(le32(b, off + 36), 0u);
        EXPECT_EQ(le32(b, off + 40), off);
        EXPECT_EQ(le32(b, off + 48), off + 204);
        const uint32_t text = le32(b, off + 52);
        EXPECT_EQ(text, off + 204 + 8 * box.segments[s].messages.size());
        for (std::size_t i = 0; i < box.segments[s].messages.size(); ++i)
            EXPECT_EQ(textAt(b, text + le32(b, off + 204 + 8 * i)), box.segments[s].messages[i].text);
        const uint32_t end = s == 0 ? le32(b, 204 + 12) : uint32_t(b.size());
        EXPECT_EQ(off + le32(b, off + 44), end) << "segment " << s << " size";
    }
}

// ---------------------------------------------------------------------------
// Writer: refusals
// ---------------------------------------------------------------------------

TEST(VtmWriter, RefusesBrokenLibraries) {
    using F = WriteError::Field;
    struct Row {
        const char* name;
        Library lib;
        F field;
        long message;
        const char* says;
    };
    Library sys = lib("SYS", {{1, "a"}, {2, "b"}}, 1);
    sys.systemFlag = 1;
    Library oldVersion = lib("A", {});
    oldVersion.version = 9;
    Library newVersion = lib("A", {});
    newVersion.version = 200;
    std::vector<Message> big;
    for (uint16_t id = 1; id <= 64; ++id) big.push_back({id, std::string(1024, 'x')});
    const Row rows[] = {
        {"name of 9", lib("ABCDEFGHI", {}), F::Name, -1, "longer than 8"},
        {"name with NUL", lib(std::string("A\0B", 3), {}), F::Name, -1, "NUL"},
        {"version 9", oldVersion, F::Version, -1, "outside 10..199"},
        {"version 200", newVersion, F::Version, -1, "outside 10..199"},
        {"ID 0", lib("A", {{1, "a"}, {0, "b"}}), F::Message, 1, "ID 0"},
        {"text of 1025", lib("A", {{1, std::string(1025, 'x')}}), F::Message, 0, "1025 bytes"},
        {"text with NUL", lib("A", {{1, std::string("a\0b", 3)}}), F::Message, 0, "NUL"},
        {"preload above entries", lib("A", {{1, "a"}}, 2), F::Preload, -1, "above the 1 entries"},
        {"preload -2", lib("A", {{1, "a"}}, -2), F::Preload, -1, "negative"},
        {"not preloaded, ID equal", lib("A", {{1, "a"}, {5, "b"}, {5, "c"}}, 2), F::Message, 2,
         "must be above the last preloaded ID 5"},
        {"not preloaded, ID below", lib("A", {{1, "a"}, {5, "b"}, {3, "c"}}, 2), F::Message, 2,
         "must be above"},
        {"preloaded, ID above last", lib("A", {{9, "a"}, {5, "b"}, {30, "c"}}, 2), F::Message, 0,
         "must be below the last preloaded ID 5"},
        {"preloaded, repeated last ID", lib("A", {{5, "a"}, {5, "b"}}), F::Message, 0, "must be below"},
        {"system without all preloaded", sys, F::System, -1, "1 of 2 preloaded"},
        {"preload area of 64 KiB", lib("A", big), F::Preload, -1, "65600 bytes, more than 65535"},
    };
    for (const Row& r : rows) {
        try {
            writeLibrary(r.lib);
            ADD_FAILURE() << r.name << ": accepted";
        } catch (const WriteError& e) {
            EXPECT_EQ(e.field(), r.field) << r.name;
            EXPECT_EQ(e.message(), r.message) << r.name;
            EXPECT_NE(std::string(e.what()).find(r.says), std::string::npos) << r.name << ": " << e.what();
        }
    }
    // The same preload area minus one text fits: 63 x 1025 bytes.
    big.pop_back();
    EXPECT_NO_THROW(writeLibrary(lib("A", big)));
    // Repeated IDs after the preloaded run are allowed (first match wins).
    EXPECT_NO_THROW(writeLibrary(lib("A", {{1, "a"}, {7, "b"}, {7, "c"}}, 1)));
}

TEST(VtmWriter, RefusesBrokenContainers) {
    struct Row {
        const char* name;
        std::vector<Library> segments;
        long segment;
        const char* says;
    };
    Library sysSeg = lib("S", {{1, "a"}});
    sysSeg.systemFlag = 1;
    std::vector<Library> many;
    for (int i = 0; i < 257; ++i) many.push_back(lib("S" + std::to_string(i), {}));
    const Row rows[] = {
        {"no segments", {}, -1, "at least one segment"},
        {"257 segments", many, 256, "at most 256"},
        {"unnamed segment", {lib("A", {}), lib("", {})}, 1, "has no name"},
        {"names equal without case", {lib("Deu", {}), lib("DEU", {})}, 1, "used twice"},
        {"system segment", {sysSeg}, 0, "system flag"},
        {"broken segment", {lib("A", {}), lib("B", {{0, "x"}})}, 1, "ID 0"},
    };
    for (const Row& r : rows) {
        Container box;
        box.segments = r.segments;
        try {
            writeContainer(box);
            ADD_FAILURE() << r.name << ": accepted";
        } catch (const WriteError& e) {
            EXPECT_EQ(e.segment(), r.segment) << r.name;
            EXPECT_NE(std::string(e.what()).find(r.says), std::string::npos) << r.name << ": " << e.what();
        }
    }
    many.pop_back();
    Container full;
    full.segments = many;
    EXPECT_EQ(le32(writeContainer(full), 36), 256u);
}

// ---------------------------------------------------------------------------
// Atomic file writes
// ---------------------------------------------------------------------------

class VtmToolsDir : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() /
               ("vanto_vtmtools_" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(dir_);
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::vector<std::string> listing() const {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(dir_)) names.push_back(e.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    void put(const std::string& name, const std::string& text) const {
        std::ofstream(dir_ / name, std::ios::binary) << text;
    }
    fs::path dir_;
};

TEST_F(VtmToolsDir, AtomicWriteReplacesAndLeavesNoTemporary) {
    put("out.vtm", "old contents");
    writeFileAtomic(dir_ / "out.vtm", Bytes{'n', 'e', 'w'});
    EXPECT_EQ(readFile(dir_ / "out.vtm"), "new");
    writeFileAtomic(dir_ / "empty.vtm", Bytes{});
    EXPECT_EQ(readFile(dir_ / "empty.vtm"), "");
    EXPECT_EQ(listing(), (std::vector<std::string>{"empty.vtm", "out.vtm"}));
}

TEST_F(VtmToolsDir, AtomicWriteFailureRemovesTemporary) {
    // The rename cannot replace a non-empty directory.
    fs::create_directories(dir_ / "busy" / "inner");
    EXPECT_THROW(writeFileAtomic(dir_ / "busy", Bytes{'x'}), std::runtime_error);
    EXPECT_EQ(listing(), std::vector<std::string>{"busy"});
    EXPECT_TRUE(fs::is_directory(dir_ / "busy" / "inner"));
    try {
        writeFileAtomic(dir_ / "missing" / "out.vtm", Bytes{'x'});
        ADD_FAILURE() << "wrote into a missing directory";
    } catch (const std::runtime_error& e) {
        EXPECT_NE(std::string(e.what()).find("missing/out.vtm"), std::string::npos) << e.what();
    }
    EXPECT_THROW(readFile(dir_ / "nothing.vtm"), std::runtime_error);
}

// ---------------------------------------------------------------------------
// Windows-1252 and the display form
// ---------------------------------------------------------------------------

TEST(VtmToolsCp1252, TableAndDisplayForm) {
    struct Row {
        unsigned char byte;
        char32_t cp;
    };
    const Row rows[] = {{0x41, U'A'}, {0x80, U'\u20AC'}, {0x84, U'\u201E'}, {0x8A, U'\u0160'},
                        {0x9F, U'\u0178'}, {0xA0, U'\u00A0'}, {0xDF, U'\u00DF'}, {0xFF, U'\u00FF'}};
    for (const Row& r : rows) {
        EXPECT_EQ(cp1252ToUnicode(r.byte), r.cp) << int(r.byte);
        unsigned char back = 0;
        EXPECT_TRUE(unicodeToCp1252(r.cp, back));
        EXPECT_EQ(back, r.byte);
    }
    for (unsigned char undefined : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
        EXPECT_EQ(cp1252ToUnicode(undefined), 0xFFFFFFFFu);
        unsigned char b;
        EXPECT_FALSE(unicodeToCp1252(undefined, b)) << "C1 control U+00" << std::hex << int(undefined);
    }
    EXPECT_EQ(escapeText("a\tb\nc\rd\\e\"f"), "a\\tb\\nc\\rd\\\\e\"f");
    EXPECT_EQ(escapeText("\"", true), "\\\"");
    EXPECT_EQ(escapeText("\x01\x1f\x7f\x81\xe4\x80"), "\\x01\\x1f\\x7f\\x81\xC3\xA4\xE2\x82\xAC");
}

// ---------------------------------------------------------------------------
// Source: texts and escapes
// ---------------------------------------------------------------------------

TEST(VtmSource, TextsAndEscapes) {
    struct Row {
        const char* name;
        std::string literal;
        std::string bytes;
    };
    const Row rows[] = {
        {"plain", "\"Hallo Welt\"", "Hallo Welt"},
        {"named escapes", R"("a\nb\tc\rd\\e\"f")", "a\nb\tc\rd\\e\"f"},
        {"hex escapes", R"("\x41\xe4\xE4\x81\x7f")", "A\xe4\xe4\x81\x7f"},
        {"hex then digit", R"("\x412")", "A2"},
        {"umlauts and euro", "\"\xC3\xA4\xC3\xB6\xC3\x9F\xE2\x82\xAC\"", "\xe4\xf6\xdf\x80"},
        {"leading and trailing blanks", "\"  x  \"", "  x  "},
        {"empty", "\"\"", ""},
        {"literal tab", "\"a\tb\"", "a\tb"},
        {"joined literals", "\"ab\" \"cd\"\t\"\"", "abcd"},
        {"hash inside", "\"#1\" # a comment", "#1"},
        {"comment text", "\";nicht angezeigt\"", ";nicht angezeigt"},
        {"control text", "\"~&Datei\"", "~&Datei"},
    };
    for (const Row& r : rows) EXPECT_EQ(compiledText(r.literal), r.bytes) << r.name;

    // A text continues on lines that begin with a literal; blank and
    // comment lines in between do not end it.
    Source s = parseSource("library X\n1 \"Zeile 1\\n\"\n   \"Zeile 2\"\n\n# note\n  \"!\"\n2 \"b\"\n", "t");
    ASSERT_EQ(s.library.messages.size(), 2u);
    EXPECT_EQ(s.library.messages[0].text, "Zeile 1\nZeile 2!");
    EXPECT_EQ(s.lines[0].messages, (std::vector<int>{2, 7}));
}

TEST(VtmSource, StatementsAndDefaults) {
    Source s = parseSource("\xEF\xBB\xBF# sample\r\n"
                           "LIBRARY Vnt60Lib   # the system library\r\n"
                           "Version 61\r\n"
                           "system 1\r\n"
                           "preload ALL\r\n"
                           "32768 \"a\"\r\n",
                           "t");
    EXPECT_FALSE(s.isContainer);
    EXPECT_EQ(s.library.name, "Vnt60Lib");
    EXPECT_EQ(s.library.version, 61);
    EXPECT_EQ(s.library.systemFlag, 1);
    EXPECT_EQ(s.library.preload, -1);
    ASSERT_EQ(s.library.messages.size(), 1u);
    EXPECT_EQ(s.library.messages[0].id, 32768);
    EXPECT_EQ(s.library.messages[0].text, "a");  // CR of CR LF not part of the text

    Source d = parseSource("library\n5 \"x\"\n", "t");
    EXPECT_EQ(d.library.name, "");
    EXPECT_EQ(d.library.version, 60);
    EXPECT_EQ(d.library.systemFlag, 0);
    EXPECT_EQ(d.library.preload, -1);

    Source c = parseSource("container BOX\nversion 70\nsegment A\npreload 0\n1 \"a\"\n"
                           "segment b\nversion 80\n",
                           "t");
    ASSERT_TRUE(c.isContainer);
    EXPECT_EQ(c.container.version, 70);
    ASSERT_EQ(c.container.segments.size(), 2u);
    EXPECT_EQ(c.container.segments[0].version, 60);
    EXPECT_EQ(c.container.segments[0].preload, 0);
    EXPECT_EQ(c.container.segments[1].name, "b");
    EXPECT_EQ(c.container.segments[1].version, 80);
    EXPECT_EQ(c.container.segments[1].messages.size(), 0u);
}

// ---------------------------------------------------------------------------
// Source: errors with line and column
// ---------------------------------------------------------------------------

TEST(VtmSource, ErrorsNameLineAndColumn) {
    struct Row {
        const char* name;
        std::string source;
        int line;
        int column;
        const char* says;
    };
    const std::string lib = "library X\n";
    const Row rows[] = {
        {"no character in Windows-1252", lib + "1 \"ab\xE4\xB8\xAD\"", 2, 6, "U+4E2D"},
        {"column counts characters", lib + "1 \"\xC3\xA4\xC3\xA4\xE2\x86\x92\"", 2, 6, "U+2192"},
        {"C1 control", lib + "1 \"\xC2\x81\"", 2, 4, "U+0081 has no Windows-1252 form"},
        {"invalid UTF-8", lib + "1 \"a\xFF\"", 2, 5, "invalid UTF-8"},
        {"truncated UTF-8", lib + "1 \"a\xC3\"", 2, 5, "invalid UTF-8"},
        {"unknown escape", lib + "1 \"a\\q\"", 2, 5, "unknown escape"},
        {"short hex escape", lib + "1 \"\\x4\"", 2, 4, "two hex digits"},
        {"NUL escape", lib + "1 \"ab\\x00\"", 2, 6, "NUL"},
        {"backslash at the end", lib + "1 \"ab\\", 2, 6, "end of the line"},
        {"unclosed text", lib + "1 \"abc", 2, 3, "not closed"},
        {"raw control character", lib + "1 \"a\x01\"", 2, 5, "control character U+0001"},
        {"no text", lib + "1", 2, 2, "expected a text"},
        {"unquoted text", lib + "1 abc", 2, 3, "expected a text"},
        {"text then junk", lib + "1 \"a\" x", 2, 7, "expected a text"},
        {"ID 0", lib + "0 \"a\"", 2, 1, "outside 1..65535"},
        {"ID 65536", lib + "\n65536 \"a\"", 3, 1, "outside 1..65535"},
        {"ID with letters", lib + "  12a \"a\"", 2, 3, "decimal number"},
        {"unknown statement", "librarx X", 1, 1, "unknown statement 'librarx'"},
        {"empty source", "# nothing\n\n", 1, 1, "no 'library' or 'container'"},
        {"message first", "1 \"a\"\nlibrary X", 1, 1, "must follow 'library'"},
        {"second library", lib + "container Y", 2, 1, "second one"},
        {"name of 9", "library ABCDEFGHI", 1, 9, "1 to 8"},
        {"name with a dot", "library A.B", 1, 9, "1 to 8"},
        {"quoted name", "library \"A\"", 1, 9, "expected the library name"},
        {"two names", "library A B", 1, 11, "unexpected text after the name"},
        {"version 9", lib + "version 9", 2, 9, "outside 10..199"},
        {"version 200", lib + "version 200", 2, 9, "outside 10..199"},
        {"version missing", lib + "version", 2, 8, "needs a number"},
        {"version twice", lib + "version 60\nversion 61", 3, 1, "given twice (first on line 2)"},
        {"preload after a message", lib + "1 \"a\"\npreload 1", 3, 1, "before the first message"},
        {"preload word", lib + "preload some", 2, 9, "decimal number"},
        {"system negative", lib + "system -1", 2, 8, "decimal number"},
        {"continuation first", lib + "\"a\"", 2, 1, "must follow a message"},
        {"continuation after a statement", "container C\nsegment A\n1 \"a\"\nsegment B\n\"b\"", 5, 1,
         "must follow a message"},
        {"segment in a library", lib + "segment A", 2, 1, "belongs in a container"},
        {"segment without name", "container C\nsegment", 2, 8, "needs a name"},
        {"message before segment", "container C\n1 \"a\"", 2, 1, "must follow a 'segment'"},
        {"preload in container", "container C\npreload 1", 2, 1, "not to the container"},
        {"system in container", "container C\nsystem 1", 2, 1, "not to a container"},
        {"segment names without case", "container C\nsegment Deu\nsegment dEU", 3, 9, "used twice"},
        {"CR LF lines count", "library X\r\n\r\n1 \"\\q\"\r\n", 3, 4, "unknown escape"},
    };
    for (const Row& r : rows) {
        try {
            compileSource(r.source, "src.vtms");
            ADD_FAILURE() << r.name << ": accepted";
        } catch (const SourceError& e) {
            EXPECT_EQ(e.line(), r.line) << r.name << ": " << e.what();
            EXPECT_EQ(e.column(), r.column) << r.name << ": " << e.what();
            EXPECT_NE(e.message().find(r.says), std::string::npos) << r.name << ": " << e.what();
            const std::string prefix = "src.vtms:" + std::to_string(r.line) + ":" + std::to_string(r.column) + ": error: ";
            EXPECT_EQ(std::string(e.what()).rfind(prefix, 0), 0u) << r.name << ": " << e.what();
        }
    }
}

// Rules of the file format that the writer checks are reported on the line
// of the statement or message concerned.
TEST(VtmSource, FormatRulesNameTheirLine) {
    struct Row {
        const char* name;
        std::string source;
        int line;
        const char* says;
    };
    std::string bigTexts = "library X\n";
    for (int id = 1; id <= 64; ++id) bigTexts += std::to_string(id) + " \"" + std::string(1024, 'x') + "\"\n";
    const Row rows[] = {
        {"preload above entries", "library X\n# c\npreload 2\n1 \"a\"\n", 3, "above the 1 entries"},
        {"ID not above last preloaded", "library X\npreload 2\n1 \"a\"\n5 \"b\"\n6 \"c\"\n5 \"d\"\n", 6,
         "must be above the last preloaded ID 5"},
        {"preloaded ID not below last", "library X\npreload 2\n9 \"a\"\n5 \"b\"\n", 3, "must be below"},
        {"system without all preloaded", "library X\nsystem 1\npreload 1\n1 \"a\"\n2 \"b\"\n", 2,
         "must preload all"},
        {"text of 1025 bytes", "library X\n\n7 \"" + std::string(1024, 'x') + "\"\n  \"y\"\n", 3, "1025 bytes"},
        {"umlauts count one byte each", "library X\n7 \"" + std::string(1023, 'x') + "\xC3\xA4\xC3\xA4\"\n", 2,
         "1025 bytes"},
        {"preload area defaulted", bigTexts, 1, "more than 65535"},
        {"empty container", "# c\ncontainer C\nversion 60\n", 2, "at least one segment"},
        {"system segment", "container C\nsegment A\nsystem 1\n", 3, "only a plain library"},
        {"segment preload", "container C\nsegment A\n1 \"a\"\nsegment B\n1 \"a\"\npreload 3\n", 6,
         "before the first message"},
        {"segment rule", "container C\nsegment A\n1 \"a\"\nsegment B\npreload 3\n1 \"a\"\n", 5,
         "above the 1 entries"},
    };
    for (const Row& r : rows) {
        try {
            compileSource(r.source, "f.vtms");
            ADD_FAILURE() << r.name << ": accepted";
        } catch (const SourceError& e) {
            EXPECT_EQ(e.line(), r.line) << r.name << ": " << e.what();
            EXPECT_NE(e.message().find(r.says), std::string::npos) << r.name << ": " << e.what();
        }
    }
    // 1024 bytes is the limit, not more.
    EXPECT_NO_THROW(compileSource("library X\n7 \"" + std::string(1024, 'x') + "\"\n", "f"));
}

// ---------------------------------------------------------------------------
// Decompiling in memory
// ---------------------------------------------------------------------------

TEST(VtmSource, DecompileCompilesBackToTheSameBytes) {
    std::string everyByte;
    for (int b = 1; b < 256; ++b) everyByte += static_cast<char>(b);
    Library one = lib("ALL", {{1, everyByte},
                              {2, everyByte.substr(100)},
                              {3, ""},
                              {4, "\n"},
                              {5, "a\n\nb\n"},
                              {6, "  \"quoted\"  \\ "},
                              {7, ";comment"},
                              {8, "~&Datei"},
                              {9, "#not a comment"}},
                      5);
    one.version = 199;
    const std::string src = decompileLibrary(one, "test");
    EXPECT_EQ(src.rfind("# test\nlibrary ALL\nversion 199\npreload 5\n", 0), 0u) << src;
    EXPECT_EQ(compileSource(src, "d.vtms"), writeLibrary(one)) << src;

    Library sys = lib("", {{32768, "S"}});
    sys.systemFlag = 1;
    const std::string sysSrc = decompileLibrary(sys);
    EXPECT_EQ(sysSrc, "library\nversion 60\nsystem 1\npreload all\n\n32768 \"S\"\n");
    EXPECT_EQ(compileSource(sysSrc, "d"), writeLibrary(sys));

    Container box;
    box.name = "BOX";
    box.version = 10;
    box.segments = {lib("DEU", {{1, "Zeile\nzwei"}}, 0), lib("ENU", {})};
    const std::string boxSrc = decompileContainer(box);
    EXPECT_EQ(boxSrc,
              "container BOX\nversion 10\n\nsegment DEU\nversion 60\npreload 0\n\n"
              "1 \"Zeile\\n\"\n  \"zwei\"\n\nsegment ENU\nversion 60\npreload all\n");
    EXPECT_EQ(compileSource(boxSrc, "d"), writeContainer(box));
}

// ---------------------------------------------------------------------------
// The programs
// ---------------------------------------------------------------------------

struct ToolRun {
    int rc;
    std::string out;
    std::string err;
};

class VtmToolsRun : public VtmToolsDir {
protected:
    // Runs a program with arguments (each single-quoted) and captures both
    // output streams.
    ToolRun run(const std::string& exe, const std::vector<std::string>& args) const {
        std::string cmd = "'" + exe + "'";
        for (const std::string& a : args) cmd += " '" + a + "'";
        cmd += " >'" + (dir_ / "stdout").string() + "' 2>'" + (dir_ / "stderr").string() + "'";
        const int status = std::system(cmd.c_str());
        ToolRun r;
        // A POSIX wait status: exit code in bits 8..15 when no signal ended it.
        r.rc = status != -1 && (status & 0x7f) == 0 ? (status >> 8) & 0xff : -1;
        r.out = readFile(dir_ / "stdout");
        r.err = readFile(dir_ / "stderr");
        return r;
    }
    ToolRun vtmc(const std::vector<std::string>& args) const { return run(VTMC_EXE, args); }
    ToolRun vtmdump(const std::vector<std::string>& args) const { return run(VTMDUMP_EXE, args); }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }

    // Compiles `source` to NAME.vtm, checking that vtmc succeeds.
    std::string compile(const std::string& name, const std::string& source) {
        put(name + ".vtms", source);
        const ToolRun r = vtmc({path(name + ".vtms"), "-o", path(name + ".vtm")});
        EXPECT_EQ(r.rc, 0) << r.err;
        return path(name + ".vtm");
    }

    // vtmc -> vtmdump decompile -> vtmc must give the same bytes.
    void expectRoundTrip(const std::string& vtm) {
        const ToolRun d = vtmdump({"decompile", vtm});
        ASSERT_EQ(d.rc, 0) << d.err;
        EXPECT_EQ(d.err, "");
        put("again.vtms", d.out);
        const ToolRun c = vtmc({path("again.vtms"), "-o", path("again.vtm")});
        ASSERT_EQ(c.rc, 0) << c.err << d.out;
        EXPECT_EQ(readFile(path("again.vtm")), readFile(vtm)) << d.out;
    }
};

const char* const kLibrary =
    "library ORDERS\n"
    "preload 3\n"
    "1 \";Kommentar\"\n"
    "10 \"Auftrag\\tgespeichert\"\n"
    "20 \"Pfad C:\\\\Daten\\n\"\n"
    "30 \"\xC3\x84nderung \xE2\x82\xAC\"\n"
    "40 \";noch ein Kommentar\"\n"
    "50 \"\"\n";

TEST_F(VtmToolsRun, RoundTrips) {
    expectRoundTrip(compile("orders", kLibrary));
    expectRoundTrip(compile("sys", "library VNT60LIB\nsystem 1\n32768 \"a\"\n40000 \"b\\x81\"\n"));
    expectRoundTrip(compile("none", "library\npreload 0\n5 \"x\"\n3 \"y\"\n3 \"z\"\n"));
    expectRoundTrip(compile("empty", "library E\n"));
    const fs::path sample = fs::path(__FILE__).parent_path().parent_path() / "examples" / "sample.vtms";
    const ToolRun c = vtmc({sample.string(), "-o", path("sample.vtm")});
    ASSERT_EQ(c.rc, 0) << c.err;
    expectRoundTrip(path("sample.vtm"));
}

TEST_F(VtmToolsRun, ListAndGetAndCheck) {
    const std::string vtm = compile("orders", kLibrary);
    const ToolRun list = vtmdump({"list", vtm});
    EXPECT_EQ(list.rc, 0) << list.err;
    EXPECT_EQ(list.out,
              "10\t20\tP\tAuftrag\\tgespeichert\n"
              "20\t15\tP\tPfad C:\\\\Daten\\n\n"
              "30\t11\tF\t\xC3\x84nderung \xE2\x82\xAC\n"
              "50\t1\tF\t\n");

    const ToolRun get = vtmdump({"get", vtm, "30", "1", "77", "0", "-1", "hallo welt"});
    EXPECT_EQ(get.rc, 1);  // one read failed
    EXPECT_EQ(get.out,
              "0\t\xC3\x84nderung \xE2\x82\xAC\n"
              "0\t;Kommentar\n"   // by ID a comment text is delivered
              "101\t\n"
              "0\tAuftrag\\tgespeichert\n"
              "0\tPfad C:\\\\Daten\\n\n"
              "0\thallo welt\n");
    EXPECT_NE(get.err.find("Message ID 77 not found."), std::string::npos) << get.err;
    EXPECT_EQ(vtmdump({"get", vtm, "10", "20"}).rc, 0);

    const ToolRun check = vtmdump({"check", vtm});
    EXPECT_EQ(check.rc, 0);
    EXPECT_EQ(check.out, "status 0: " + std::string(Vnt_VtmStatusText(0)) + "\n");

    put("bad.vtm", std::string(204, 'x'));
    const ToolRun bad = vtmdump({"check", path("bad.vtm")});
    EXPECT_EQ(bad.rc, 1);
    EXPECT_EQ(bad.out, "status 5: " + std::string(Vnt_VtmStatusText(5)) + "\n");
    const ToolRun missing = vtmdump({"check", path("missing.vtm")});
    EXPECT_EQ(missing.rc, 1);
    EXPECT_EQ(missing.out, "status 1: " + std::string(Vnt_VtmStatusText(1)) + "\n");
}

TEST_F(VtmToolsRun, SegmentsAndSystemLibrary) {
    const std::string box = compile("box", "container BOX\n"
                                           "segment DEU\n1 \"Datei\"\n2 \"~&Ja\"\n"
                                           "segment ENU\npreload 0\n1 \"File\"\n");
    EXPECT_EQ(vtmdump({"check", box, "enu"}).out, "status 0: " + std::string(Vnt_VtmStatusText(0)) + "\n");
    const ToolRun noSeg = vtmdump({"check", box, "FRA"});
    EXPECT_EQ(noSeg.rc, 1);
    EXPECT_EQ(noSeg.out, "status 13: " + std::string(Vnt_VtmStatusText(13)) + "\n");
    EXPECT_EQ(vtmdump({"list", box, "DEU"}).out, "1\t6\tP\tDatei\n2\t5\tP\t~&Ja\n");
    EXPECT_EQ(vtmdump({"list", box, "ENU"}).out, "1\t5\tF\tFile\n");
    const ToolRun whole = vtmdump({"list", box});
    EXPECT_EQ(whole.rc, 1);
    EXPECT_NE(whole.err.find("container"), std::string::npos) << whole.err;
    EXPECT_EQ(vtmdump({"get", box, "--segment", "ENU", "1"}).out, "0\tFile\n");

    // System IDs are read from the system library opened first.
    const std::string sys = compile("sys", "library SYS\nsystem 1\n40000 \"System\\n\"\n");
    const std::string app = compile("app", "library APP\n1 \"App\"\n");
    const ToolRun g = vtmdump({"get", app, "--system", sys, "1", "40000"});
    EXPECT_EQ(g.rc, 0) << g.err;
    EXPECT_EQ(g.out, "0\tApp\n0\tSystem\\n\n");
}

TEST_F(VtmToolsRun, CompileErrorsKeepTheOutput) {
    put("out.vtm", "previous");
    put("bad.vtms", "library X\n1 \"a\\q\"\n");
    const ToolRun r = vtmc({path("bad.vtms"), "-o", path("out.vtm")});
    EXPECT_EQ(r.rc, 1);
    EXPECT_EQ(r.err, path("bad.vtms") + ":2:5: error: unknown escape sequence; use \\n \\t \\r \\\\ \\\" or \\xHH\n");
    EXPECT_EQ(readFile(path("out.vtm")), "previous");

    const ToolRun missing = vtmc({path("nothing.vtms"), "-o", path("out.vtm")});
    EXPECT_EQ(missing.rc, 1);
    EXPECT_NE(missing.err.find("nothing.vtms"), std::string::npos) << missing.err;
    EXPECT_EQ(vtmc({path("bad.vtms")}).rc, 1);  // no -o
    EXPECT_EQ(vtmc({"--help"}).rc, 0);
    EXPECT_EQ(vtmdump({"--help"}).rc, 0);
    EXPECT_EQ(vtmdump({"frobnicate"}).rc, 1);
    EXPECT_EQ(readFile(path("out.vtm")), "previous");
}

// A file from another writer still decompiles, with a warning that the
// source will not give back the same bytes.
TEST_F(VtmToolsRun, DecompileWarnsAboutForeignLayout) {
    Bytes b = writeLibrary(lib("X", {{1, "a"}}));
    b[104] = 'Z';  // annex data vtmc never writes
    writeFileAtomic(dir_ / "foreign.vtm", b);
    const ToolRun d = vtmdump({"decompile", path("foreign.vtm")});
    EXPECT_EQ(d.rc, 0);
    EXPECT_NE(d.out.find("1 \"a\"\n"), std::string::npos) << d.out;
    EXPECT_NE(d.err.find("was not written by vtmc"), std::string::npos) << d.err;
}

}  // namespace

#endif  // VANTO_HAVE_TOOLS
