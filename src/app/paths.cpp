// The process-wide paths of the current client (vanto/app.h).

#include "app/paths.h"

#include "base/strbuf.h"
#include "vanto/app.h"

namespace {

struct PathState {
    char dsn[VNT_MAX_PATH] = {};       // data source name of the current client
    char dataPath[VNT_MAX_PATH] = {};  // its data directory
    char ddPath[VNT_MAX_PATH] = {};    // its DD directory
};

PathState& state() {
    static PathState s;
    return s;
}

}  // namespace

namespace vnt::app {

void resetPaths() { state() = PathState{}; }

}  // namespace vnt::app

bool Vnt_AppSetDSN(const char* value) {
    vnt::copyBounded(state().dsn, value);
    return true;
}

bool Vnt_AppSetDataPath(const char* value) {
    vnt::copyBounded(state().dataPath, value);
    return true;
}

bool Vnt_AppSetDDPath(const char* value) {
    vnt::copyBounded(state().ddPath, value);
    return true;
}

const char* Vnt_AppDSN() { return state().dsn; }
const char* Vnt_AppDataPath() { return state().dataPath; }
const char* Vnt_AppDDPath() { return state().ddPath; }
