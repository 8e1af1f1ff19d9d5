// The whole library back to the state of a fresh process: for tests, and
// for a host that starts the library again in the same process.
#pragma once

namespace vnt {

/// Resets every subsystem's process-wide state, from the top layer down, so
/// that nothing is left holding what a lower layer has already dropped: the
/// client connection, the module loader and the application frame, the INI
/// engine and the profile cache, dates and locale, progress, messages and
/// message libraries, file names and the client's paths, the ports, and last
/// the host (volume table, current directories, faults and short writes,
/// watches, last error, clock). The calls the message layer makes to the
/// layers above it (msg/upcalls.h) are wiring, not state: they stay.
void resetLibrary();

}  // namespace vnt
