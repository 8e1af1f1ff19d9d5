// The folders of the library include only what docs/layers.md allows: the
// tables of that page are read here, so the page and the code cannot drift.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Rules {
    std::map<std::string, std::set<std::string>> uses;      // folder => folders it may use
    std::map<std::string, std::string> headerFolder;        // "vanto/x.h" or "vanto/ui/*" => folder
};

// The backquoted names of a table cell.
std::vector<std::string> names(const std::string& cell) {
    std::vector<std::string> out;
    static const std::regex quoted("`([^`]*)`");
    for (std::sregex_iterator it(cell.begin(), cell.end(), quoted), end; it != end; ++it) out.push_back((*it)[1]);
    return out;
}

std::vector<std::string> cells(const std::string& line) {
    std::vector<std::string> out;
    std::stringstream s(line.substr(1));
    for (std::string c; std::getline(s, c, '|');) out.push_back(c);
    return out;
}

Rules readRules(const fs::path& page) {
    Rules r;
    std::ifstream in(page);
    std::string line, section;
    while (std::getline(in, line)) {
        if (line.rfind("## ", 0) == 0) section = line.substr(3);
        if (line.empty() || line[0] != '|' || line.find("---") != std::string::npos) continue;
        const std::vector<std::string> c = cells(line);
        if (c.size() < 2 || names(c[0]).size() != 1) continue;  // the heading row
        const std::string first = names(c[0])[0];
        const std::vector<std::string> second = names(c[1]);
        if (section == "Who may use whom") r.uses[first].insert(second.begin(), second.end());
        else if (section == "Public headers" && second.size() == 1) r.headerFolder[first] = second[0];
    }
    return r;
}

// The folder a quoted include belongs to; "" when the page does not say.
std::string folderOf(const Rules& r, const std::string& header) {
    if (header.rfind("vanto/ui/", 0) == 0) return r.headerFolder.count("vanto/ui/*") ? r.headerFolder.at("vanto/ui/*") : "";
    if (header.rfind("vanto/", 0) == 0) return r.headerFolder.count(header) ? r.headerFolder.at(header) : "";
    const std::size_t slash = header.find('/');
    return slash == std::string::npos ? "" : header.substr(0, slash);
}

TEST(Layers, EverySourceIncludesOnlyWhatItsFolderMayUse) {
    const fs::path src = VANTO_SOURCE_DIR;
    const Rules rules = readRules(src.parent_path() / "docs" / "layers.md");
    ASSERT_GE(rules.uses.size(), 10u) << "the table of docs/layers.md was not read";
    ASSERT_FALSE(rules.headerFolder.empty());
    static const std::regex include(R"re(^\s*#\s*include\s*"([^"]+)")re");
    std::size_t files = 0;
    for (const auto& e : fs::recursive_directory_iterator(src)) {
        if (!e.is_regular_file()) continue;
        const std::string rel = "src/" + fs::relative(e.path(), src).generic_string();
        const std::string folder = rel.substr(4, rel.find('/', 4) - 4);
        if (rel.find('/', 4) == std::string::npos) continue;  // src/CMakeLists.txt
        ++files;
        ASSERT_TRUE(rules.uses.count(folder)) << "docs/layers.md has no row for the folder of " << rel;
        const std::set<std::string>& allowed = rules.uses.at(folder);
        std::ifstream in(e.path());
        int lineNo = 0;
        for (std::string line; std::getline(in, line);) {
            ++lineNo;
            std::smatch m;
            if (!std::regex_search(line, m, include)) continue;
            const std::string header = m[1];
            const std::string to = folderOf(rules, header);
            EXPECT_FALSE(to.empty()) << rel << ":" << lineNo << ": \"" << header << "\" belongs to no folder of docs/layers.md";
            if (to.empty() || to == folder || allowed.count(to)) continue;
            ADD_FAILURE() << rel << ":" << lineNo << ": " << folder << " may not use " << to << " (\"" << header
                          << "\"); see docs/layers.md";
        }
    }
    EXPECT_GT(files, 50u);
}

// The window toolkit sits above the core: it includes public headers and
// its own, never a header of src/ (its build has no path to them either).
TEST(Layers, WindowToolkitIncludesOnlyPublicAndItsOwnHeaders) {
    const fs::path wx = fs::path(VANTO_SOURCE_DIR).parent_path() / "gui" / "wx";
    const Rules rules = readRules(wx.parent_path().parent_path() / "docs" / "layers.md");
    static const std::regex include(R"re(^\s*#\s*include\s*"([^"]+)")re");
    std::size_t files = 0;
    for (const auto& e : fs::directory_iterator(wx)) {
        const std::string ext = e.path().extension().string();
        if (ext != ".cpp" && ext != ".h") continue;
        ++files;
        std::ifstream in(e.path());
        int lineNo = 0;
        for (std::string line; std::getline(in, line);) {
            ++lineNo;
            std::smatch m;
            if (!std::regex_search(line, m, include)) continue;
            const std::string header = m[1];
            const bool own = header.find('/') == std::string::npos && fs::exists(wx / header);
            const bool pub = header.rfind("vanto/wx/", 0) == 0 || !folderOf(rules, header).empty();
            EXPECT_TRUE(own || (pub && header.rfind("vanto/", 0) == 0))
                << "gui/wx/" << e.path().filename().string() << ":" << lineNo << ": \"" << header
                << "\" is neither a public header nor one of the toolkit's own; see docs/layers.md";
        }
    }
    EXPECT_GT(files, 10u);
}

}  // namespace
