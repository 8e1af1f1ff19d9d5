// The process-wide paths of the current client.
#include "lfn/client_paths.h"

namespace vnt::lfn {

ClientPaths& clientPaths() {
    static ClientPaths p;
    return p;
}

void resetClientPaths() { clientPaths() = ClientPaths{}; }

}  // namespace vnt::lfn
