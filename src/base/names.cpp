#include "base/names.h"

#include <cstring>

namespace vnt {

bool sameText(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && foldCase(a[i]) != foldCase(b[i])) return false;
    return true;
}

bool sameTextN(const char* a, const char* b, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        if (foldCase(a[i]) != foldCase(b[i])) return false;
        if (a[i] == '\0') return true;
    }
    return true;
}

std::string foldText(std::string_view s) {
    std::string out(s.size(), '\0');
    for (std::size_t i = 0; i < s.size(); ++i) out[i] = static_cast<char>(foldCase(s[i]));
    return out;
}

std::string_view trim(std::string_view s, std::string_view chars) noexcept {
    const std::size_t first = s.find_first_not_of(chars);
    if (first == std::string_view::npos) return {};
    return s.substr(first, s.find_last_not_of(chars) - first + 1);
}

char* trimInPlace(char* s) noexcept {
    const std::string_view t = trim(s);
    if (!t.empty() && t.data() != s) std::memmove(s, t.data(), t.size());
    s[t.size()] = '\0';
    return s;
}

}  // namespace vnt
