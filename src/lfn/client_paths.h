// The process-wide paths of the current client: set through the application
// frame (Vnt_AppSetDSN, Vnt_AppSetDataPath, Vnt_AppSetDDPath) and kept here,
// below the INI layer, whose standard files ask for them.
#pragma once

#include "vanto/base.h"

namespace vnt::lfn {

struct ClientPaths {
    char dsn[VNT_MAX_PATH] = {};       // data source name of the current client
    char dataPath[VNT_MAX_PATH] = {};  // its data directory
    char ddPath[VNT_MAX_PATH] = {};    // its DD directory
};

/// The one set of paths (all empty at the start).
ClientPaths& clientPaths();
/// Empties the data source name, data path and DD path.
void resetClientPaths();

}  // namespace vnt::lfn
