// The processes the host starts (programs and the desktop's opener): one
// list, reaped in one place so that none lingers as a zombie.
#include "host/posix/host_call.h"

#include <cerrno>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace vnt::host {
namespace {

// Started and not yet reaped.
std::vector<pid_t>& children() {
    static std::vector<pid_t> pids;
    return pids;
}

}  // namespace

void reapChildren() {
    std::vector<pid_t>& c = children();
    for (std::size_t i = 0; i < c.size();) {
        int status;
        const pid_t r = ::waitpid(c[i], &status, WNOHANG);
        if (r == c[i] || (r < 0 && errno == ECHILD)) c.erase(c.begin() + static_cast<std::ptrdiff_t>(i));
        else ++i;
    }
}

bool spawnChild(const std::string& program, bool searchPath, std::vector<char*>& argv, const std::string& hostDir) {
    reapChildren();
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    if (!hostDir.empty()) ::posix_spawn_file_actions_addchdir_np(&actions, hostDir.c_str());
    pid_t pid;
    const int rc = searchPath ? ::posix_spawnp(&pid, program.c_str(), &actions, nullptr, argv.data(), environ)
                              : ::posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (rc != 0) {
        errno = rc;
        return false;
    }
    children().push_back(pid);
    return true;
}

}  // namespace vnt::host
