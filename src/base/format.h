// printf-style formatting into a std::string, for texts of any length.
#pragma once

#include <cstdarg>
#include <string>

namespace vnt {

std::string format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
std::string vformat(const char* fmt, va_list args);

}  // namespace vnt
