// Faults on demand: the countdowns and the faults by name.
#include "host/fault.h"

#include <string>
#include <vector>

#include "base/names.h"

namespace vnt::host {
namespace {

struct ByName {
    Op op;
    std::string pattern;  // "" = any call
    int skip;             // matching calls still to go through
};

struct FaultState {
    int countdown[static_cast<int>(Op::Count)] = {};  // 0 = none
    std::vector<ByName> byName;
    std::string shortPattern;  // for shortLeft
    long shortLeft = -1;       // bytes still to go out; -1 = no short write
};

FaultState& faults() {
    static FaultState s;
    return s;
}

// "*" any run, "?" one character, others compared without case.
bool matches(const char* pat, const char* name) {
    const char *star = nullptr, *resume = nullptr;
    while (*name) {
        if (*pat == '*') {
            star = ++pat;
            resume = name;
        } else if (*pat && (*pat == '?' || foldCase(*pat) == foldCase(*name))) {
            ++pat, ++name;
        } else if (star) {
            pat = star;
            name = ++resume;
        } else {
            return false;
        }
    }
    while (*pat == '*') ++pat;
    return *pat == '\0';
}

bool named(const std::string& pattern, const char* name) {
    return pattern.empty() || (name && matches(pattern.c_str(), name));
}

}  // namespace

void faultOn(Op op, const char* pattern, int skip) {
    faults().byName.push_back({op, pattern ? pattern : "", skip > 0 ? skip : 0});
}

void faultShortWrite(const char* pattern, long bytesLeft) {
    faults().shortPattern = pattern ? pattern : "";
    faults().shortLeft = bytesLeft < 0 ? -1 : bytesLeft;
}

void faultAt(Op op, int nth) { faults().countdown[static_cast<int>(op)] = nth > 0 ? nth : 0; }

void faultReset() { faults() = FaultState{}; }

bool faultHit(Op op, const char* name) {
    FaultState& s = faults();
    int& f = s.countdown[static_cast<int>(op)];
    if (f > 0 && --f == 0) return true;
    for (auto it = s.byName.begin(); it != s.byName.end(); ++it) {
        if (it->op != op || !named(it->pattern, name)) continue;
        if (it->skip-- > 0) continue;
        s.byName.erase(it);
        return true;
    }
    return false;
}

bool faultByName() {
    const FaultState& s = faults();
    return !s.byName.empty() || s.shortLeft >= 0;
}

std::size_t faultWriteRoom(const char* name, std::size_t want) {
    FaultState& s = faults();
    if (s.shortLeft < 0 || !named(s.shortPattern, name)) return want;
    const std::size_t room = want < static_cast<std::size_t>(s.shortLeft) ? want : static_cast<std::size_t>(s.shortLeft);
    s.shortLeft -= static_cast<long>(room);
    return room;
}

}  // namespace vnt::host
