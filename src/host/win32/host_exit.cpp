// Ending the process (src/host/process.h).
#include <cstdio>
#include <cstdlib>

#include "host/host.h"

namespace vnt::host {

/*
 * Written data is flushed and the exit handlers run, as a library's
 * process-detach does; the process then ends with the code.
 */
void exitProcess(int code) {
    std::fflush(nullptr);
    std::exit(code);
}

}  // namespace vnt::host
