// The one way to fill a fixed character buffer: bounded and always
// terminated. The helper itself is public (Vnt_StrCopy in vanto/base.h, so
// that the window toolkit fills its buffers the same way); this is the
// core's name for it.
#pragma once

#include <cstddef>
#include <string_view>

#include "vanto/base.h"

namespace vnt {

inline std::size_t copyBounded(char* dst, std::size_t size, std::string_view src) noexcept {
    return Vnt_StrCopy(dst, size, src);
}
inline std::size_t copyBounded(char* dst, std::size_t size, const char* src) noexcept {
    return Vnt_StrCopy(dst, size, src);
}
template <std::size_t N>
inline std::size_t copyBounded(char (&dst)[N], std::string_view src) noexcept {
    return Vnt_StrCopy(dst, N, src);
}
template <std::size_t N>
inline std::size_t copyBounded(char (&dst)[N], const char* src) noexcept {
    return Vnt_StrCopy(dst, N, src);
}

}  // namespace vnt
