// Locales written by the tests into their own directory (LOCPATH), so that no
// locale has to be installed. glibc only: one category's binary form is a
// magic number, the item count, each item's offset, then the items (texts;
// wide characters and numbers as 32-bit words).
#pragma once

#ifdef __GLIBC__

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <langinfo.h>
#include <locale.h>

#if defined(__SANITIZE_ADDRESS__)
#define VNT_TEST_LSAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VNT_TEST_LSAN 1
#endif
#endif
#ifdef VNT_TEST_LSAN
#include <sanitizer/lsan_interface.h>
#endif

namespace vnt::test {

/// While LOCPATH is set, glibc's newlocale() keeps a never freed copy of the
/// path for every call; the leak checker is told so while this object lives.
struct LocalePathLeaks {
#ifdef VNT_TEST_LSAN
    LocalePathLeaks() { __lsan_disable(); }
    ~LocalePathLeaks() { __lsan_enable(); }
#else
    LocalePathLeaks() {}
#endif
    LocalePathLeaks(const LocalePathLeaks&) = delete;
};

/// A 32-bit word item.
inline std::string localeWord(std::uint32_t w) { return std::string(reinterpret_cast<const char*>(&w), 4); }

/// Writes `dir`/`name`/`file`, the category with `count` items; `items` by
/// nl_item, each ended by four zero bytes; the others empty.
inline bool writeLocaleCategory(const std::filesystem::path& dir, const char* name, const char* file, int category,
                                unsigned count, const std::map<nl_item, std::string>& items) {
    std::vector<std::uint32_t> head{0x20031115u ^ static_cast<std::uint32_t>(category), count};
    const std::size_t start = (2 + count) * 4;
    std::string data(8, '\0');  // the empty item
    head.resize(2 + count, static_cast<std::uint32_t>(start));
    for (const auto& [item, value] : items) {
        head[2 + static_cast<unsigned>(_NL_ITEM_INDEX(item))] = static_cast<std::uint32_t>(start + data.size());
        data += value + std::string(4 - value.size() % 4 + 4, '\0');  // ended, next one aligned
    }
    std::error_code ec;
    std::filesystem::create_directories(dir / name, ec);
    std::ofstream out(dir / name / file, std::ios::binary);
    out.write(reinterpret_cast<const char*>(head.data()), static_cast<std::streamsize>(head.size() * 4));
    out.write(data.data(), static_cast<std::streamsize>(data.size()));
    return !ec && out.good();
}

/// A numeric category with "," as the decimal point and `thousands`.
inline bool writeCommaNumeric(const std::filesystem::path& dir, const char* name, char thousands = '.') {
    return writeLocaleCategory(dir, name, "LC_NUMERIC", LC_NUMERIC, _NL_ITEM_INDEX(_NL_NUM_LC_NUMERIC),
                               {{DECIMAL_POINT, ","}, {THOUSANDS_SEP, std::string(1, thousands)}, {GROUPING, "\3\3"},
                                {_NL_NUMERIC_DECIMAL_POINT_WC, localeWord(',')},
                                {_NL_NUMERIC_THOUSANDS_SEP_WC, localeWord(static_cast<unsigned char>(thousands))},
                                {_NL_NUMERIC_CODESET, "ANSI_X3.4-1968"}});
}

}  // namespace vnt::test

#endif
