// Private: the profile functions' cache of parsed files, for tests and the
// benchmark.
#pragma once

namespace vnt::ini {

/// Drops every cached file, ends the change watches and switches
/// notification back on.
void profileReset();
/// False makes the cache ignore change notification and compare each
/// file's time, size and identity instead, as on a host without it.
void profileUseNotify(bool on);
/// How often a file has been read and parsed since the last reset.
unsigned long profileLoads();

}  // namespace vnt::ini
