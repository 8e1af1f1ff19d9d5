// The host layer: the only code that talks to the operating system.
//
// Each area has its own header; this one brings them all, with the reset of
// the whole host. Paths handed in and out are library paths (backslashes,
// "X:" volumes, Windows-1252); the host converts them at this boundary. The
// interface uses no operating-system types so that a Win32 host can stand
// beside the POSIX one (host/win32, chosen by CMake) without touching its
// callers.
#pragma once

#include "host/dir.h"
#include "host/error.h"
#include "host/fault.h"
#include "host/file.h"
#include "host/intl.h"
#include "host/module.h"
#include "host/path.h"
#include "host/process.h"
#include "host/term.h"
#include "host/time.h"
#include "host/watch.h"

namespace vnt::host {

/// Restores the whole host state to its start (volume table, current
/// directories, faults, watches, the last error, the clock). For tests.
void reset();

}  // namespace vnt::host
