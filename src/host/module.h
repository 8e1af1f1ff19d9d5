// Module libraries: loading by host name and by library name, symbols, the
// file a module came from. A module handle is what the host's loader gave
// (dlopen on POSIX).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vnt::host {

/// Loads a library by host name or path; null on failure (Op::Load faults
/// apply; errorText of lastError() or moduleError() tells why).
void* moduleOpen(const std::string& hostName);
void moduleClose(void* handle);
/// The loader's description of the last failure.
std::string moduleError();
/// Library path of a loaded module's file; empty when it cannot be told.
std::string moduleFile(void* handle);

/// Loads the module library `libName` (a library path, or a bare name for
/// the host's library search): "x.dll" (or "x", "x.so") is tried as "x.so",
/// then as "libx.so", in the same directory. Null on failure (Op::Load
/// faults apply) with lastError() NotFound when no candidate exists,
/// NotLoadable when one exists but did not load, and moduleError() the
/// loader's text.
void* moduleLoad(const char* libName);
/// The library names moduleLoad tries for `libName`, in its order
/// ("Z:\m\x.dll" => "Z:\m\x.so", "Z:\m\libx.so"); empty without a file part.
std::vector<std::string> moduleFileNames(const char* libName);
/// The address of the exported symbol `name` of a loaded module, or null;
/// `size`, when given, receives the symbol's size (0 when not told).
void* moduleSymbol(void* handle, const char* name, std::size_t* size = nullptr);

}  // namespace vnt::host
