// Faults on demand, for tests: host calls that fail as a real disk, file
// system or loader would, so that the code above can be tried on each of
// its error paths. Every injected failure reads as ErrorKind::IO (a short
// write as NoSpace). Cleared by faultReset() and by reset().
#pragma once

#include <cstddef>

namespace vnt::host {

/// The host operations a fault can hit.
enum class Op { Open, Read, Seek, Write, Rename, Remove, Stat, List, Load, Count };

/// Makes `op` fail on a name that matches `pattern`, once, after `skip`
/// calls of it on matching names went through. The pattern is a library
/// path compared without regard to case, "*" any run of characters and "?"
/// one; "" matches every call, also those on no name. A call's names:
///   Open, Stat, Remove, List, Load: the name handed to the call
///   Read, Seek, Write: the name the file was opened with (for a file that
///     replaces another, the target's name)
///   Rename, and Remove of the file a replacement gives up: the new name
///   freeSpace (Stat): the volume's root, "X:\"
///   faultOn(Op::Open, "T:\\src\\a")      the next open of T:\src\a fails
///   faultOn(Op::Read, "*\\a", 1)         the second read of a file named a fails
void faultOn(Op op, const char* pattern, int skip = 0);
/// Makes the disk full for files that match `pattern`: the next
/// `bytesLeft` bytes written to them go out, then each write fails
/// (NoSpace) with what fitted written, as on a real full disk.
void faultShortWrite(const char* pattern, long bytesLeft);
/// Makes the n-th following call of `op` fail, whatever its name (n = 1:
/// the next one). Only where the order of the calls is the point; say
/// what is meant with faultOn otherwise.
void faultAt(Op op, int nth);
/// Clears every fault.
void faultReset();

// Inside the host.

/// True when this call of `op` on `name` (null: a call on no name) shall fail.
bool faultHit(Op op, const char* name = nullptr);
/// True when a fault by name is set: a file opened now keeps its name for
/// the faults of its reads and writes.
bool faultByName();
/// How many of `want` bytes a write to `name` may put out (want when no
/// short write is set); what it allows is counted as written.
std::size_t faultWriteRoom(const char* name, std::size_t want);

}  // namespace vnt::host
