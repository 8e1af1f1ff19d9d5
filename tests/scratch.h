// Scratch directories of the tests: one per process and test, so that runs
// side by side never share one, and removed when the process ends, also
// when it ends inside a death test whose child ran its own set-up.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace vnt::test {

namespace detail {
// Removed by the process that made them: a forked death-test child ends
// with exit() too and must leave its parent's directories alone.
struct ScratchList {
    std::vector<std::pair<std::filesystem::path, pid_t>> dirs;
    ~ScratchList() {
        std::error_code ec;
        for (const auto& [dir, owner] : dirs)
            if (owner == ::getpid()) std::filesystem::remove_all(dir, ec);
    }
};
inline ScratchList& scratchList() {
    static ScratchList list;
    return list;
}
}  // namespace detail

/// The extension of module libraries as the host's tools build them.
#if defined(_WIN32)
inline constexpr const char* kModuleExt = ".dll";
#else
inline constexpr const char* kModuleExt = ".so";
#endif

/// A host path in the form the library's host functions take: UTF-8 (on
/// Windows `string()` would give the ANSI code page).
inline std::string hostStr(const std::filesystem::path& p) {
#if defined(_WIN32)
    const std::u8string s = p.u8string();
    return std::string(s.begin(), s.end());
#else
    return p.string();
#endif
}

/// Sets an environment variable of the process (also for the system's own
/// calls on Windows, where the C run time keeps a copy).
inline void setEnv(const char* name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name, value.c_str());
#else
    ::setenv(name, value.c_str(), 1);
#endif
}

/// Removes an environment variable of the process.
inline void unsetEnv(const char* name) {
#if defined(_WIN32)
    _putenv_s(name, "");
#else
    ::unsetenv(name);
#endif
}

/// `s` quoted for the system's command interpreter: '...' for sh, "..."
/// for cmd.exe (names with a quote of that kind are not supported).
inline std::string shellQuote(const std::string& s) {
#if defined(_WIN32)
    return "\"" + s + "\"";
#else
    return "'" + s + "'";
#endif
}

/// Runs a command line through the command interpreter; the program's exit
/// code, -1 when it did not end by itself.
inline int runCommand(const std::string& cmd) {
#if defined(_WIN32)
    // cmd.exe takes the outermost quotes off a line that begins with one.
    return std::system(("\"" + cmd + "\"").c_str());
#else
    const int status = std::system(cmd.c_str());
    // A wait status: the exit code is in bits 8..15 when no signal ended the program.
    return status != -1 && (status & 0x7f) == 0 ? (status >> 8) & 0xff : -1;
#endif
}

/// `<temp>/<prefix><suite>_<test>_<pid>`, emptied; removed at the latest
/// when the process ends.
inline std::filesystem::path scratchDir(const std::string& prefix) {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string test = info ? std::string(info->test_suite_name()) + "_" + info->name() : "";
    std::replace(test.begin(), test.end(), '/', '_');
    const std::filesystem::path dir =
        std::filesystem::temp_directory_path() / (prefix + test + "_" + std::to_string(::getpid()));
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
    detail::scratchList().dirs.emplace_back(dir, ::getpid());
    return dir;
}

}  // namespace vnt::test
