// The terminal as a place to draw on (progress lines redrawn in place).
#include <unistd.h>

#include "host/host.h"

namespace vnt::host {

bool stderrTerminal() { return ::isatty(STDERR_FILENO) == 1; }

}  // namespace vnt::host
