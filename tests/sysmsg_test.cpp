// The system message library as built (German and English): every system
// message the code formats is there in both languages, its printf
// directives take exactly the arguments the code passes, its questions
// carry the buttons the caller acts on, and every system message ID the
// sources use is known to the registry.

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "msg/sysmsg.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/ui/msgbox.h"
#include "vanto/vtm.h"

namespace fs = std::filesystem;
namespace sys = vnt::msg::sys;

namespace {

// The argument kinds of a text's printf directives (letters as in
// msg/sysmsg.h); false with `err` set for a directive the code could never
// pass safely.
bool directiveKinds(const std::string& t, std::string& kinds, std::string& err) {
    kinds.clear();
    for (std::size_t i = 0; i < t.size(); ++i) {
        if (t[i] != '%') continue;
        const std::size_t start = i++;
        auto fail = [&](const char* why) {
            err = std::string(why) + " at \"" + t.substr(start, i - start + 1) + "\"";
            return false;
        };
        if (i >= t.size()) return fail("lone %");
        if (t[i] == '%') continue;
        while (i < t.size() && std::string_view("-+ #0'").find(t[i]) != std::string_view::npos) ++i;
        if (i < t.size() && t[i] == '*') kinds += 'd', ++i;
        while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) ++i;
        if (i < t.size() && t[i] == '.') {
            ++i;
            if (i < t.size() && t[i] == '*') kinds += 'd', ++i;
            while (i < t.size() && std::isdigit(static_cast<unsigned char>(t[i]))) ++i;
        }
        std::string len;
        while (i < t.size() && std::string_view("hlLzjt").find(t[i]) != std::string_view::npos) len += t[i++];
        if (i >= t.size()) return fail("unfinished directive");
        const char c = t[i];
        if (std::string_view("diouxXc").find(c) != std::string_view::npos) {
            if (len.empty() || len == "h" || len == "hh") kinds += 'd';
            else if (len == "l") kinds += 'l';
            else return fail("integer length the code never passes");
        } else if (c == 's' && len.empty()) {
            kinds += 's';
        } else if (std::string_view("feEgGaA").find(c) != std::string_view::npos && (len.empty() || len == "l")) {
            kinds += 'f';
        } else if (c == 'p' && len.empty()) {
            kinds += 'p';
        } else {
            return fail("unsupported directive");
        }
    }
    return true;
}

// Every message of a built system library, opened raw: not registered as
// the system library, so that both languages can be read side by side.
std::map<long, std::string> readLibrary(const char* hostPath, VNT_VTM_INFO& info, std::string& err) {
    std::map<long, std::string> out;
    char lib[VNT_MAX_PATH];
    if (!Vnt_LfnFromHost(lib, hostPath)) {
        err = std::string("not a library path: ") + hostPath;
        return out;
    }
    const int oldRaw = Vnt_VtmSwRaw(1);
    Vnt_VtmNoShare(+1);  // both languages carry the same library name
    VNT_MSG h = Vnt_VtmOpen(lib);
    Vnt_VtmNoShare(-1);
    Vnt_VtmSwRaw(oldRaw);
    if (!h) {
        err = std::string(hostPath) + ": " + Vnt_VtmStatusText(Vnt_VtmStatus());
        return out;
    }
    Vnt_VtmInfo(h, &info);
    VNT_VTM_ENTRY e;
    for (long n = 0; Vnt_VtmEntry(h, n, &e); ++n) {
        if (out.count(e.id)) err += "ID " + std::to_string(e.id) + " twice; ";
        out[e.id] = Vnt_VtmEntryText(h, n);
    }
    Vnt_VtmClose(h);
    return out;
}

struct Language {
    const char* name;
    const char* path;
};
const Language kLanguages[] = {{"de", VANTO_SYSLIB_DE}, {"en", VANTO_SYSLIB_EN}};

class SystemLibrary : public ::testing::Test {
protected:
    void SetUp() override {
        vnt::vtm::reset();
        for (const Language& l : kLanguages) {
            std::string err;
            texts[l.name] = readLibrary(l.path, info[l.name], err);
            ASSERT_TRUE(err.empty()) << l.name << ": " << err;
        }
    }
    void TearDown() override { vnt::vtm::reset(); }

    std::map<std::string, std::map<long, std::string>> texts;
    std::map<std::string, VNT_VTM_INFO> info;
};

// The registry's own named IDs are registry entries.
constexpr bool registered(long id) {
    for (const sys::SysMsg& m : sys::kSysMsgs)
        if (m.id == id) return true;
    return false;
}
static_assert(registered(sys::kExceptContext) && registered(sys::kExceptReport) && registered(sys::kExceptAccess));
static_assert(registered(sys::kDetails) && registered(sys::kInternalError) && registered(sys::kInternalDesc));
static_assert(registered(sys::kHelpKeyDetails) && registered(sys::kHelpKeyMessage));

TEST(SysMsgDirectives, KindsOfPrintfDirectives) {
    struct Row {
        const char* name;
        const char* text;
        const char* kinds;  // null: refused
    };
    const Row rows[] = {
        {"none", "Kein Argument", ""},
        {"percent sign is no argument", "100%% sicher: %s", "s"},
        {"int, string, line", "%s/%d", "sd"},
        {"flags, width, precision", "%-08.3lX|% +5i|%#o", "ldd"},
        {"star width takes an int", "%*s", "ds"},
        {"star precision takes an int", "%.*s", "ds"},
        {"long unsigned", "(Code = %lu)", "l"},
        {"double", "%5.2f %g", "ff"},
        {"pointer", "%p", "p"},
        {"short promotes to int", "%hd", "d"},
        {"lone percent at the end", "50%", nullptr},
        {"writes through a pointer", "%n", nullptr},
        {"long long is never passed", "%lld", nullptr},
        {"wide string", "%ls", nullptr},
        {"unknown conversion", "%y", nullptr},
    };
    for (const Row& r : rows) {
        std::string kinds, err;
        const bool ok = directiveKinds(r.text, kinds, err);
        if (r.kinds) {
            EXPECT_TRUE(ok) << r.name << ": " << err;
            EXPECT_EQ(kinds, r.kinds) << r.name;
        } else {
            EXPECT_FALSE(ok) << r.name << " accepted as " << kinds;
        }
    }
}

TEST_F(SystemLibrary, BuiltAsWhollyPreloadedSystemLibrary) {
    for (const Language& l : kLanguages) {
        const VNT_VTM_INFO& i = info[l.name];
        EXPECT_STREQ(i.name, "VNT60LIB") << l.name;
        EXPECT_EQ(i.systemFlag, 1) << l.name;
        EXPECT_EQ(i.segmentCount, 0) << l.name;
        EXPECT_EQ(i.preloadCount, i.entryCount) << l.name;
        // Opened normally it becomes the system library and needs its file no longer.
        char lib[VNT_MAX_PATH];
        ASSERT_TRUE(Vnt_LfnFromHost(lib, l.path));
        VNT_MSG h = Vnt_VtmOpen(lib);
        ASSERT_NE(h, nullptr) << l.name << ": status " << Vnt_VtmStatus();
        EXPECT_EQ(Vnt_VtmStatus(), VNT_VTM_OK) << l.name;
        EXPECT_EQ(Vnt_VtmSystem(), h) << l.name;
        VNT_VTM_INFO now;
        ASSERT_TRUE(Vnt_VtmInfo(h, &now));
        EXPECT_FALSE(now.fileOpen) << l.name;
        Vnt_VtmClose(h);
        EXPECT_EQ(Vnt_VtmSystem(), nullptr);
    }
}

TEST_F(SystemLibrary, EveryRegisteredMessageTakesTheArgumentsTheCodePasses) {
    for (const sys::SysMsg& m : sys::kSysMsgs) {
        for (const Language& l : kLanguages) {
            const auto& lib = texts[l.name];
            auto it = lib.find(m.id);
            if (it == lib.end()) {
                ADD_FAILURE() << m.id << " (" << m.use << ") is missing in " << l.name;
                continue;
            }
            std::string kinds, err;
            EXPECT_TRUE(directiveKinds(it->second, kinds, err)) << m.id << " " << l.name << ": " << err;
            EXPECT_EQ(kinds, m.kinds) << m.id << " " << l.name << " (" << m.use << "): \"" << it->second
                                      << "\"";
        }
    }
}

TEST_F(SystemLibrary, BothLanguagesHoldTheSameRegisteredMessages) {
    std::set<long> de, en;
    for (const auto& [id, text] : texts["de"]) de.insert(id);
    for (const auto& [id, text] : texts["en"]) en.insert(id);
    EXPECT_EQ(de, en);
    for (long id : de) {
        EXPECT_GE(id, 32768) << "not a system message";
        EXPECT_NE(sys::find(id), nullptr) << id << " is in the library but not in the registry";
        EXPECT_FALSE(texts["de"][id].empty()) << id << " de";
        EXPECT_FALSE(texts["en"][id].empty()) << id << " en";
    }
    // The registry lists each ID once, in order.
    for (std::size_t i = 1; i < sys::kSysMsgCount; ++i)
        EXPECT_LT(sys::kSysMsgs[i - 1].id, sys::kSysMsgs[i].id) << "registry entry " << i;
}

TEST_F(SystemLibrary, QuestionsCarryTheButtonsTheCallerActsOn) {
    for (const sys::SysMsg& m : sys::kSysMsgs) {
        const VntBoxModel de = Vnt_MsgBoxModel(texts["de"][m.id].c_str());
        const VntBoxModel en = Vnt_MsgBoxModel(texts["en"][m.id].c_str());
        EXPECT_EQ(de.icon, en.icon) << m.id << ": the languages show different icons";
        EXPECT_EQ(de.type, en.type) << m.id << ": the languages show different boxes";
        if (m.box != sys::Box::None) {
            EXPECT_EQ(de.type & 7, static_cast<int>(m.box)) << m.id << " (" << m.use << ")";
        }
    }
    // The description of other internal error codes fits its 60-character buffer.
    EXPECT_LT(texts["de"][sys::kInternalDesc].size(), 60u);
    EXPECT_LT(texts["en"][sys::kInternalDesc].size(), 60u);
}

// ---------------------------------------------------------------------------
// System message IDs used by the sources
// ---------------------------------------------------------------------------

// The code without comments, string and character literals (blanked).
std::string codeOnly(const std::string& src) {
    std::string out;
    out.reserve(src.size());
    for (std::size_t i = 0; i < src.size(); ++i) {
        const char c = src[i];
        if (c == '/' && i + 1 < src.size() && src[i + 1] == '/') {
            while (i < src.size() && src[i] != '\n') ++i;
            out += '\n';
        } else if (c == '/' && i + 1 < src.size() && src[i + 1] == '*') {
            i += 2;
            while (i + 1 < src.size() && !(src[i] == '*' && src[i + 1] == '/')) ++i;
            ++i;
            out += ' ';
        } else if (c == '"' || c == '\'') {
            ++i;
            while (i < src.size() && src[i] != c) i += src[i] == '\\' ? 2 : 1;
            out += "\"\"";
        } else {
            out += c;
        }
    }
    return out;
}

/*
 * The system message IDs (5-digit literals 32768..65535) a source passes to
 * the message functions: literals in a statement that calls one, and named
 * constants ("constexpr long kName = 62001;") that such a statement uses.
 * A literal next to a comparison is a range bound, not a message.
 */
std::set<long> systemIdsUsed(const std::string& source) {
    static const std::regex call(R"(\b(Vnt_\w*Msg\w*|Vnt__\w*Msg\w*|Vnt_VtmRead|Vnt_VtmResolve)\s*[({]|\bVntMsgRef\b)");
    static const std::regex literal(R"((<=|>=|==|!=|<|>)?\s*\b([0-9]{5})\b\s*(<=|>=|==|!=|<|>)?)");
    static const std::regex constant(R"(\b([A-Za-z_]\w*)\s*[=({]\s*([0-9]{5})\s*[)}]?\s*$)");
    static const std::regex identifier(R"(\b[A-Za-z_]\w*\b)");
    auto isSystem = [](long v) { return v >= 32768 && v <= 65535; };
    std::vector<std::string> statements;
    std::map<std::string, long> constants;
    std::stringstream in(codeOnly(source));
    for (std::string st; std::getline(in, st, ';');) {
        std::smatch m;
        if (std::regex_search(st, m, constant)) constants[m[1]] = std::stol(m[2]);
        if (std::regex_search(st, call)) statements.push_back(st);
    }
    std::set<long> ids;
    for (const std::string& st : statements) {
        for (auto it = std::sregex_iterator(st.begin(), st.end(), literal); it != std::sregex_iterator(); ++it) {
            const long v = std::stol((*it)[2]);
            if (isSystem(v) && !(*it)[1].matched && !(*it)[3].matched) ids.insert(v);
        }
        for (auto it = std::sregex_iterator(st.begin(), st.end(), identifier); it != std::sregex_iterator(); ++it) {
            auto c = constants.find(it->str());
            if (c != constants.end() && isSystem(c->second)) ids.insert(c->second);
        }
    }
    return ids;
}

TEST(SysMsgSources, ScannerFindsMessageIdsNotBounds) {
    struct Row {
        const char* name;
        const char* code;
        std::set<long> ids;
    };
    const Row rows[] = {
        {"show with arguments", "return Vnt_MsgH(nullptr, 60296, n);", {60296}},
        {"internal form over lines", "r = Vnt__Msg(h,\n  34001, args, 0, -1);", {34001}},
        {"text into the ring", "const char* t = Vnt_MsgHSprintf(nullptr, 60451, name, p);", {60451}},
        {"reference object", "VntMsgRef ref(62001);", {62001}},
        {"named constant", "constexpr long kSave = 34001;\nr = Vnt_MsgH(h, kSave);", {34001}},
        {"constant with braces", "constexpr long kTpl{62001};\nt = Vnt_MsgHLoad(nullptr, kTpl);", {62001}},
        {"constant not passed to a message function", "constexpr int kMove = 61456;\nsend(w, kMove);", {}},
        {"range bound", "if (id >= 32768 && Vnt_MsgHLoad(h, id)[0]) x();", {}},
        {"bound on the right", "bool sys = 32768 <= VntMsgRef(id).Id();", {}},
        {"application message", "Vnt_MsgH(h, 1234);", {}},
        {"in a comment", "// Vnt_MsgH(h, 60000)\nint x = 60000;", {}},
        {"in a string", "Vnt_MsgBox(\"Fehler 60001\");", {}},
        {"no message call", "int w = 61456;", {}},
    };
    for (const Row& r : rows) EXPECT_EQ(systemIdsUsed(r.code), r.ids) << r.name;
}

TEST(SysMsgSources, EverySystemMessageTheSourcesUseIsRegistered) {
    const fs::path root = VANTO_SOURCE_DIR;
    int files = 0;
    for (const auto& e : fs::recursive_directory_iterator(root)) {
        const std::string ext = e.path().extension().string();
        if (!e.is_regular_file() || (ext != ".cpp" && ext != ".h")) continue;
        if (e.path().filename() == "sysmsg.h") continue;  // the registry itself
        std::ifstream in(e.path(), std::ios::binary);
        const std::string src((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        ++files;
        for (long id : systemIdsUsed(src))
            EXPECT_NE(sys::find(id), nullptr)
                << fs::relative(e.path(), root).string() << " uses system message " << id
                << ", which is not in msg/sysmsg.h (and so not checked against the libraries)";
    }
    EXPECT_GT(files, 10) << "scanned " << root;
}

}  // namespace
