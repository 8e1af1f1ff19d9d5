#include "base/format.h"

#include <cstdio>

namespace vnt {

std::string vformat(const char* fmt, va_list args) {
    va_list again;
    va_copy(again, args);
    int n = std::vsnprintf(nullptr, 0, fmt, args);
    std::string out;
    if (n > 0) {
        out.resize(std::size_t(n) + 1);
        std::vsnprintf(out.data(), out.size(), fmt, again);
        out.resize(std::size_t(n));
    }
    va_end(again);
    return out;
}

std::string format(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    std::string out = vformat(fmt, ap);
    va_end(ap);
    return out;
}

}  // namespace vnt
