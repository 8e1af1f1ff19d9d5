// The system message library as built (German and English) against the
// registry msg/sysmsg.h: every registered message is there in both
// languages, its printf directives take exactly the arguments the code
// passes, its questions carry the buttons the caller acts on, and every
// system message ID the sources use is registered.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <cstring>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "msg/sysmsg.h"
#include "msg/vtm_internal.h"
#include "vanto/lfn.h"
#include "vanto/ui/msgbox.h"
#include "vanto/vtm.h"

namespace fs = std::filesystem;
namespace sys = vnt::msg::sys;

namespace {

// The argument kinds of a text's printf directives (letters as in
// msg/sysmsg.h); a '?' marks a directive the code could never pass safely.
std::string directiveKinds(const std::string& t) {
    static const std::regex directive(R"(%(%|[-+ #0']*(\*?)[0-9]*(?:\.(\*?)[0-9]*)?([hlLzjt]*)(.?)))");
    auto oneOf = [](const char* set, const std::string& c) { return c.size() == 1 && std::strchr(set, c[0]); };
    std::string kinds;
    for (auto it = std::sregex_iterator(t.begin(), t.end(), directive); it != std::sregex_iterator(); ++it) {
        const std::smatch& m = *it;
        if (m[1] == "%") continue;
        kinds += std::string(m[2].length() + m[3].length(), 'd');  // '*' width and precision
        const std::string len = m[4], c = m[5];
        const bool intLen = len.empty() || len == "h" || len == "hh";
        if (oneOf("diouxXc", c) && (intLen || len == "l")) kinds += intLen ? 'd' : 'l';
        else if (len.empty() && (c == "s" || c == "p")) kinds += c;
        else if (oneOf("feEgGaA", c) && (len.empty() || len == "l")) kinds += 'f';
        else kinds += '?';
    }
    return kinds;
}

TEST(SysMsgDirectives, KindsOfPrintfDirectives) {
    struct Row { const char* name; const char* text; const char* kinds; };
    const Row rows[] = {
        {"percent sign, flags, width, precision, length", "100%% %-08.3lX|% +5i|%#o|%hd|%s", "lddds"},
        {"star width and precision take an int", "%*s %.*s", "dsds"},
        {"double and pointer", "%5.2f %g %p", "ffp"},
        {"refused: pointer write, long long, wide string, lone percent", "%n %lld %ls 50%", "????"},
    };
    for (const Row& r : rows) EXPECT_EQ(directiveKinds(r.text), r.kinds) << r.name;
}

struct Library { VNT_VTM_INFO info{}; std::map<long, std::string> texts; };

// Every message of a built system library, opened raw and unshared: both
// languages carry the same name and must be read side by side.
Library readLibrary(const char* hostPath) {
    Library out;
    char lib[VNT_MAX_PATH];
    EXPECT_TRUE(Vnt_LfnFromHost(lib, hostPath)) << hostPath;
    const int oldRaw = Vnt_VtmSwRaw(1);
    Vnt_VtmNoShare(+1);
    VNT_MSG h = Vnt_VtmOpen(lib);
    Vnt_VtmNoShare(-1);
    Vnt_VtmSwRaw(oldRaw);
    if (!h) { ADD_FAILURE() << hostPath << ": " << Vnt_VtmStatusText(Vnt_VtmStatus()); return out; }
    Vnt_VtmInfo(h, &out.info);
    VNT_VTM_ENTRY e;
    for (long n = 0; Vnt_VtmEntry(h, n, &e); ++n)
        EXPECT_TRUE(out.texts.emplace(e.id, Vnt_VtmEntryText(h, n)).second) << hostPath << ": ID " << e.id << " twice";
    Vnt_VtmClose(h);
    return out;
}

TEST(SystemLibrary, BothLanguagesHoldExactlyTheRegisteredMessages) {
    for (long id : {sys::kExceptContext, sys::kExceptReport, sys::kExceptAccess, sys::kDetails, sys::kInternalError,
                    sys::kInternalDesc, sys::kHelpKeyDetails, sys::kHelpKeyMessage})
        EXPECT_NE(sys::find(id), nullptr) << "named ID " << id << " is not registered";
    vnt::vtm::reset();
    std::map<std::string, Library> libs = {{"de", readLibrary(VANTO_SYSLIB_DE)}, {"en", readLibrary(VANTO_SYSLIB_EN)}};
    vnt::vtm::reset();
    for (std::size_t i = 1; i < sys::kSysMsgCount; ++i)
        EXPECT_LT(sys::kSysMsgs[i - 1].id, sys::kSysMsgs[i].id) << "registry: each ID once, in order";
    for (auto& [lang, lib] : libs) {
        SCOPED_TRACE(lang);
        EXPECT_TRUE(!std::strcmp(lib.info.name, "VNT60LIB") && lib.info.systemFlag == 1) << "the system library";
        EXPECT_TRUE(lib.info.segmentCount == 0 && lib.info.preloadCount == lib.info.entryCount) << "wholly preloaded";
        for (const auto& [id, text] : lib.texts)
            EXPECT_TRUE(id >= 32768 && sys::find(id) && !text.empty()) << id << " is empty or not in the registry";
        for (const sys::SysMsg& m : sys::kSysMsgs) {
            auto it = lib.texts.find(m.id);
            if (it == lib.texts.end()) { ADD_FAILURE() << m.id << " (" << m.use << ") is missing"; continue; }
            EXPECT_EQ(directiveKinds(it->second), m.kinds) << m.id << " (" << m.use << "): \"" << it->second << "\"";
            const VntBoxModel box = Vnt_MsgBoxModel(it->second.c_str());
            const VntBoxModel de = Vnt_MsgBoxModel(libs["de"].texts[m.id].c_str());
            EXPECT_TRUE(box.icon == de.icon && box.type == de.type) << m.id << ": the languages show different boxes";
            EXPECT_TRUE(m.box == sys::Box::None || (box.type & 7) == static_cast<int>(m.box)) << m.id << " (" << m.use
                                                                                       << "): box " << box.type;
        }
        // The description of other internal error codes fits its 60-character buffer.
        EXPECT_LT(lib.texts[sys::kInternalDesc].size(), 60u);
    }
}

// The code without comments, string and character literals.
std::string codeOnly(const std::string& src) {
    std::string out;
    for (std::size_t i = 0; i < src.size(); ++i) {
        const char c = src[i], next = i + 1 < src.size() ? src[i + 1] : '\0';
        if (c == '/' && next == '/') {
            while (i + 1 < src.size() && src[i + 1] != '\n') ++i;
        } else if (c == '/' && next == '*') {
            for (i += 2; i + 1 < src.size() && !(src[i] == '*' && src[i + 1] == '/');) ++i;
            ++i, out += ' ';
        } else if (c == '"' || c == '\'') {
            for (++i; i < src.size() && src[i] != c;) i += src[i] == '\\' ? 2 : 1;
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
    auto isSys = [](long v) { return v >= 32768 && v <= 65535; };
    std::map<std::string, long> constants;
    std::set<long> ids;
    std::stringstream in(codeOnly(source));
    for (std::string st; std::getline(in, st, ';');) {
        std::smatch m;
        if (std::regex_search(st, m, constant)) constants[m[1]] = std::stol(m[2]);
        if (!std::regex_search(st, call)) continue;
        for (auto it = std::sregex_iterator(st.begin(), st.end(), literal); it != std::sregex_iterator(); ++it)
            if (const long v = std::stol((*it)[2]); isSys(v) && !(*it)[1].matched && !(*it)[3].matched) ids.insert(v);
        for (auto it = std::sregex_iterator(st.begin(), st.end(), identifier); it != std::sregex_iterator(); ++it)
            if (auto c = constants.find(it->str()); c != constants.end() && isSys(c->second)) ids.insert(c->second);
    }
    return ids;
}

TEST(SysMsgSources, ScannerFindsMessageIdsNotBounds) {
    struct Row { const char* name; const char* code; std::set<long> ids; };
    const Row rows[] = {
        {"internal form over lines", "r = Vnt__Msg(h,\n  34001, args, 0, -1);", {34001}},
        {"reference object", "VntMsgRef ref(62001);", {62001}},
        {"named constants", "constexpr long kA = 34001;\nlong kB{62001};\nVnt_MsgH(h, kA, kB);", {34001, 62001}},
        {"constant not passed to a message function", "constexpr int kMove = 61456;\nsend(w, kMove);", {}},
        {"range bounds", "if (id >= 32768 && Vnt_MsgHLoad(h, id)[0]) s = 32768 <= VntMsgRef(id).Id();", {}},
        {"outside the system range", "Vnt_MsgH(h, 12345, 32767, 65536);", {}},
        {"in comments and strings", "// Vnt_MsgH(h, 60000)\nVnt_MsgBox(/* 60001 */ \"Fehler 60002\", '\"');", {}},
    };
    for (const Row& r : rows) EXPECT_EQ(systemIdsUsed(r.code), r.ids) << r.name;
}

TEST(SysMsgSources, EverySystemMessageTheSourcesUseIsRegistered) {
    const fs::path root = VANTO_SOURCE_DIR;
    int files = 0;
    for (const auto& e : fs::recursive_directory_iterator(root)) {
        const std::string ext = e.path().extension().string();
        if (!e.is_regular_file() || (ext != ".cpp" && ext != ".h") || e.path().filename() == "sysmsg.h") continue;
        std::ifstream in(e.path(), std::ios::binary);
        ++files;
        for (long id : systemIdsUsed(std::string(std::istreambuf_iterator<char>(in), {})))
            EXPECT_NE(sys::find(id), nullptr) << fs::relative(e.path(), root).string() << " uses system message " << id
                                              << ", which is not in msg/sysmsg.h";
    }
    EXPECT_GT(files, 10) << "scanned " << root;
}

}  // namespace
