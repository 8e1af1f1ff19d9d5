// Shared by the tests: every subsystem back to the state of a fresh process.
#pragma once

#include "app/modtable.h"
#include "cal/cal_state.h"
#include "copy/stat_state.h"
#include "db/db_state.h"
#include "host/host.h"
#include "ini/ini_stream.h"
#include "ini/profile.h"
#include "lfn/lfn_state.h"
#include "lib/reset.h"
#include "msg/msg_internal.h"
#include "msg/vtm_internal.h"
#include "ui/ui_state.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vtmtool/vtm_writer.h"
#include "scratch.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace vnt::test {

/// The library's name of host path `p`, or "(not mappable)".
inline std::string libPath(const std::filesystem::path& p) {
    VNT_PATH b{};
    return Vnt_LfnFromHost(b, hostStr(p).c_str()) ? b : "(not mappable)";
}

/// The bytes of file `p`, or "(missing)" when it cannot be read.
inline std::string fileText(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return in ? std::string(std::istreambuf_iterator<char>(in), {}) : "(missing)";
}

/// Writes `text` as file `p`, its directories created.
inline void putFile(const std::filesystem::path& p, const std::string& text) {
    std::filesystem::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary) << text;
}

/// Writes INI\`name` below `programDir` as a message library with one
/// message a line (IDs from 1): the form of "App.vtm" and "Modules.vtm".
inline void writeIniLibrary(const std::filesystem::path& programDir, const std::string& name,
                            const std::vector<std::string>& lines) {
    vtmtool::Library l{"APPINI", 60, 0, -1, {}};
    for (std::size_t i = 0; i < lines.size(); ++i) l.messages.push_back({std::uint16_t(i + 1), lines[i]});
    std::filesystem::create_directories(programDir / "INI");
    vtmtool::writeFileAtomic(programDir / "INI" / name, vtmtool::writeLibrary(l));
}

/// Writes "App.vtm" with `settings` in its section "Settings", and lets the
/// INI engine and the client registry read it anew.
inline void writeAppSettings(const std::filesystem::path& programDir, const std::vector<std::string>& settings) {
    std::vector<std::string> lines{"[Settings]"};
    lines.insert(lines.end(), settings.begin(), settings.end());
    vnt::ini::reset();
    vnt::db::reset();
    writeIniLibrary(programDir, "App.vtm", lines);
}

/// Every subsystem back to the state of a fresh process.
inline void resetAll() { vnt::resetLibrary(); }

}  // namespace vnt::test
