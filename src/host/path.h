// The host's volumes, current directories and path conversion.
//
// Paths handed in and out of the host are library paths (backslashes, "X:"
// volumes, Windows-1252); the host converts them at this boundary.
#pragma once

#include <string>

namespace vnt::host {

/// Maps a letter (A-Z, either case) to a host directory (UTF-8, must exist).
bool volMap(char letter, const char* hostDir);
/// Removes a mapping; false if there was none.
bool volUnmap(char letter);
/// True if the letter is mapped to a directory that exists now.
bool volKnown(char letter);

/// Current directory as a library path ("Z:\work\main").
std::string curDir();
/// The remembered current directory of a volume ("C:\" when it has none
/// yet); empty for an unmapped letter.
std::string volCurDir(char letter);
/// Makes `libPath` (absolute: "X:\..." after completion) the current
/// directory of its volume and that volume current. False if it does not
/// exist as a directory or cannot be represented.
bool setCurDir(const std::string& libPath);

/// Library path -> host path (UTF-8). Relative names are taken against the
/// current directory; components that do not exist as written are matched
/// without regard to case. False: unmapped volume, UNC name, a name not
/// representable on the host.
bool toHost(const char* libPath, std::string& hostPath);
/// Host path -> library path through the volume holding it (longest mapping).
bool fromHost(const char* hostPath, std::string& libPath);

}  // namespace vnt::host
