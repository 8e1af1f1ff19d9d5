// The process-wide paths of the current client (vanto/app.h), kept in
// lfn/client_paths.h.

#include "base/strbuf.h"
#include "lfn/client_paths.h"
#include "vanto/app.h"

using vnt::lfn::clientPaths;

bool Vnt_AppSetDSN(const char* value) {
    vnt::copyBounded(clientPaths().dsn, value);
    return true;
}

bool Vnt_AppSetDataPath(const char* value) {
    vnt::copyBounded(clientPaths().dataPath, value);
    return true;
}

bool Vnt_AppSetDDPath(const char* value) {
    vnt::copyBounded(clientPaths().ddPath, value);
    return true;
}

const char* Vnt_AppDSN() { return clientPaths().dsn; }
const char* Vnt_AppDataPath() { return clientPaths().dataPath; }
const char* Vnt_AppDDPath() { return clientPaths().ddPath; }
