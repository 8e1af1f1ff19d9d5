// The one way to fill a fixed character buffer: bounded and always terminated.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

namespace vnt {

/// Copies at most `size` - 1 characters of `src` (and never more than
/// `maxLen`) into `dst` and terminates it. Overlapping buffers are allowed.
/// Returns the number of characters copied. A `size` of 0 writes nothing.
inline std::size_t copyBounded(char* dst, std::size_t size, std::string_view src) noexcept {
    if (size == 0 || dst == nullptr) return 0;
    std::size_t n = src.size() < size - 1 ? src.size() : size - 1;
    if (n) std::memmove(dst, src.data(), n);
    dst[n] = '\0';
    return n;
}

inline std::size_t copyBounded(char* dst, std::size_t size, const char* src) noexcept {
    if (src == nullptr) return copyBounded(dst, size, std::string_view{});
    // Only look as far as the destination can hold.
    const void* nul = size ? std::memchr(src, '\0', size - 1) : nullptr;
    std::size_t len = nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - src)
                          : (size ? size - 1 : 0);
    return copyBounded(dst, size, std::string_view(src, len));
}

/// Array form: the size is the array's.
template <std::size_t N>
inline std::size_t copyBounded(char (&dst)[N], std::string_view src) noexcept {
    return copyBounded(dst, N, src);
}
template <std::size_t N>
inline std::size_t copyBounded(char (&dst)[N], const char* src) noexcept {
    return copyBounded(dst, N, src);
}

}  // namespace vnt
