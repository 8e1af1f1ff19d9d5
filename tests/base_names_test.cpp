// The one compare and trim of names: Windows-1252 letters fold, nothing
// else does, and the result is the same under any C locale.
#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <string>

#include "base/names.h"
#include "base/strbuf.h"

namespace {

TEST(BaseNames, SameText) {
    struct Row { const char* a; const char* b; bool equal; };
    const Row rows[] = {
        {"Main", "MAIN", true},
        {"", "", true},
        {"ab", "abc", false},               // lengths differ
        {"a[", "A{", false},                // "|0x20" folding would call these equal
        {"x@", "X`", false},
        {"Gr\xE4\xDF" "e", "GR\xC4\xDF" "E", true},  // ä/Ä; ß has no upper case and stays
        {"\x9A\x9C\x9E\xFF", "\x8A\x8C\x8E\x9F", true},  // š œ ž ÿ
        {"\xF7", "\xD7", false},            // ÷ and × are no letters
        {"\xE9", "e", false},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(vnt::sameText(r.a, r.b), r.equal) << r.a << " / " << r.b;
        EXPECT_EQ(vnt::sameText(r.b, r.a), r.equal) << r.b << " / " << r.a;
    }
    // The C run time's locale plays no part.
    const std::string saved = std::setlocale(LC_CTYPE, nullptr);
    if (std::setlocale(LC_CTYPE, "C.UTF-8")) {
        EXPECT_TRUE(vnt::sameText("\xE4", "\xC4"));
        EXPECT_FALSE(vnt::sameText("[", "{"));
    }
    std::setlocale(LC_CTYPE, saved.c_str());
    EXPECT_EQ(vnt::foldText("a\xE4[z\xDF"), "A\xC4[Z\xDF");
}

TEST(BaseNames, SameTextOverFixedWidth) {
    struct Row { const char* a; const char* b; std::size_t n; bool equal; };
    const Row rows[] = {
        {"APPMSG", "appmsg", 8, true},
        {"ABCDEFGH", "abcdefgh", 8, true},      // exactly 8, unterminated in the record
        {"ABCDEFGHX", "abcdefghY", 8, true},    // the 9th character is not looked at
        {"ABCDEFG", "abcdefgY", 8, false},      // the 8th is
        {"AB", "ABC", 8, false},
        {"", "", 8, true},
        {"X", "Y", 0, true},
    };
    for (const Row& r : rows) EXPECT_EQ(vnt::sameTextN(r.a, r.b, r.n), r.equal) << r.a << " / " << r.b;
}

TEST(BaseNames, Trim) {
    struct Row { const char* in; const char* chars; const char* out; };
    const Row rows[] = {
        {" \t a b \t", nullptr, "a b"},
        {"", nullptr, ""},
        {" \t ", nullptr, ""},
        {"x", nullptr, "x"},
        {"\r\nx\r\n", nullptr, "\r\nx\r\n"},   // line ends are no blanks
        {"\r\n x \r\n", " \t\r\n", "x"},
    };
    for (const Row& r : rows) {
        const std::string_view got = r.chars ? vnt::trim(r.in, r.chars) : vnt::trim(r.in);
        EXPECT_EQ(got, r.out) << '"' << r.in << '"';
        if (!r.chars) {
            char buf[32];
            vnt::copyBounded(buf, r.in);
            EXPECT_STREQ(vnt::trimInPlace(buf), r.out);
        }
    }
}

}  // namespace
