// National conventions from the process's locale environment.
//
// The locale is read with newlocale() and nl_langinfo_l(), never through
// setlocale(): the library must not change the C run time's locale under
// the application. Where the named locale is not installed on the machine,
// a small table of the conventions of the common locales stands in, so a
// German user gets "," and "dd.MM.yyyy" also on a minimal system.
#include "host/host.h"
#include "vanto/text.h"

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <langinfo.h>
#include <locale.h>
#include <sys/utsname.h>

namespace vnt::host {

namespace {

// The locale name the environment gives for a category, as setlocale(cat, "")
// would pick it: LC_ALL, then LC_<category>, then LANG.
std::string envLocale(const char* categoryVar) {
    for (const char* var : {"LC_ALL", categoryVar, "LANG"}) {
        const char* v = std::getenv(var);
        if (v && *v) return v;
    }
    return {};
}

// "de_DE.UTF-8@euro" -> language "de", territory "DE".
void splitName(const std::string& name, std::string& lang, std::string& terr) {
    std::size_t end = name.find_first_of(".@");
    std::string base = name.substr(0, end);
    std::size_t us = base.find('_');
    lang = base.substr(0, us);
    terr = us == std::string::npos ? std::string{} : base.substr(us + 1);
    for (char& c : lang) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (char& c : terr) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

bool isCLocale(const std::string& name) {
    std::string lang, terr;
    splitName(name, lang, terr);
    return name.empty() || lang == "c" || lang == "posix";
}

struct Convention {
    const char* lang;
    const char* terr;      // null: any territory of the language
    const char* code;      // three-letter language code
    char decimal, thousand;
    const char* shortDate;
    int currDigits;
    int country;
};

// Stand-ins for locales that are named but not installed; the first row
// of a language without territory catches its other territories.
constexpr Convention kConventions[] = {
    {"de", "DE", "DEU", ',', '.', "dd.MM.yyyy", 2, 49},
    {"de", "AT", "DEA", ',', '.', "dd.MM.yyyy", 2, 43},
    {"de", "CH", "DES", '.', '\'', "dd.MM.yyyy", 2, 41},
    {"de", "LU", "DEL", ',', '.', "dd.MM.yyyy", 2, 352},
    {"de", nullptr, "DEU", ',', '.', "dd.MM.yyyy", 2, 49},
    {"en", "US", "ENU", '.', ',', "MM/dd/yyyy", 2, 1},
    {"en", "GB", "ENG", '.', ',', "dd/MM/yyyy", 2, 44},
    {"en", "CA", "ENC", '.', ',', "yyyy-MM-dd", 2, 1},
    {"en", "AU", "ENA", '.', ',', "dd/MM/yyyy", 2, 61},
    {"en", "IE", "ENI", '.', ',', "dd/MM/yyyy", 2, 353},
    {"en", nullptr, "ENU", '.', ',', "MM/dd/yyyy", 2, 1},
    {"fr", "CH", "FRS", '.', '\'', "dd.MM.yyyy", 2, 41},
    {"fr", "BE", "FRB", ',', '.', "dd/MM/yyyy", 2, 32},
    {"fr", nullptr, "FRA", ',', ' ', "dd/MM/yyyy", 2, 33},
    {"it", nullptr, "ITA", ',', '.', "dd/MM/yyyy", 2, 39},
    {"es", nullptr, "ESP", ',', '.', "dd/MM/yyyy", 2, 34},
    {"nl", nullptr, "NLD", ',', '.', "dd-MM-yyyy", 2, 31},
    {"pt", "BR", "PTB", ',', '.', "dd/MM/yyyy", 2, 55},
    {"pt", nullptr, "PTG", ',', '.', "dd/MM/yyyy", 2, 351},
    {"da", nullptr, "DAN", ',', '.', "dd-MM-yyyy", 2, 45},
    {"sv", nullptr, "SVE", ',', ' ', "yyyy-MM-dd", 2, 46},
    {"nb", nullptr, "NOR", ',', ' ', "dd.MM.yyyy", 2, 47},
    {"fi", nullptr, "FIN", ',', ' ', "dd.MM.yyyy", 2, 358},
    {"pl", nullptr, "PLK", ',', ' ', "dd.MM.yyyy", 2, 48},
    {"cs", nullptr, "CSY", ',', ' ', "dd.MM.yyyy", 2, 420},
};

const Convention* convention(const std::string& name) {
    std::string lang, terr;
    splitName(name, lang, terr);
    for (const Convention& c : kConventions)
        if (lang == c.lang && (!c.terr || terr == c.terr)) return &c;
    return nullptr;
}

// An installed locale for one category, freed on scope exit.
class Locale {
public:
    Locale(int mask, const std::string& name)
        : loc_(newlocale(mask, name.empty() ? "C" : name.c_str(), locale_t{})) {}
    ~Locale() {
        if (loc_) freelocale(loc_);
    }
    Locale(const Locale&) = delete;
    Locale& operator=(const Locale&) = delete;
    explicit operator bool() const { return loc_ != locale_t{}; }
    std::string_view info(nl_item item) const {
        const char* s = nl_langinfo_l(item, loc_);
        return s ? std::string_view(s) : std::string_view{};
    }

private:
    locale_t loc_;
};

// "%d.%m.%Y" -> "dd.MM.yyyy"; false when a conversion has no pattern form.
bool translateDateFormat(std::string_view fmt, std::string& out) {
    out.clear();
    for (std::size_t i = 0; i < fmt.size(); ++i) {
        if (fmt[i] != '%') {
            out += fmt[i];
            continue;
        }
        if (++i == fmt.size()) return false;
        char c = fmt[i];
        if (c == 'E' || c == 'O' || c == '-' || c == '_' || c == '0') {  // modifiers and flags
            if (++i == fmt.size()) return false;
            c = fmt[i];
        }
        switch (c) {
            case 'd': out += "dd"; break;
            case 'e': out += "d"; break;
            case 'm': out += "MM"; break;
            case 'y': out += "yy"; break;
            case 'Y': out += "yyyy"; break;
            case 'F': out += "yyyy-MM-dd"; break;
            case 'D': out += "MM/dd/yy"; break;
            case '%': out += '%'; break;
            default: return false;
        }
    }
    return !out.empty();
}

bool toCp1252(std::string_view utf8, std::string& value) {
    return Vnt_TxtFromUtf8(utf8, value) && !value.empty();
}

bool numericValue(const char* key, std::string& value) {
    const std::string name = envLocale("LC_NUMERIC");
    const bool decimal = std::strcmp(key, "sDecimal") == 0;
    Locale loc(LC_NUMERIC_MASK, name);
    if (loc) return toCp1252(loc.info(decimal ? RADIXCHAR : THOUSEP), value);
    if (const Convention* c = convention(name)) {
        value.assign(1, decimal ? c->decimal : c->thousand);
        return true;
    }
    return false;
}

bool monetaryValue(const char* key, std::string& value) {
    const std::string name = envLocale("LC_MONETARY");
    if (isCLocale(name)) return false;
    Locale loc(LC_MONETARY_MASK, name);
    if (std::strcmp(key, "iCurrDigits") == 0) {
        if (loc) {
            std::string_view d = loc.info(FRAC_DIGITS);
            if (d.empty() || static_cast<unsigned char>(d[0]) == CHAR_MAX) return false;
            value = std::to_string(static_cast<unsigned char>(d[0]));
            return true;
        }
        if (const Convention* c = convention(name)) {
            value = std::to_string(c->currDigits);
            return true;
        }
        return false;
    }
    // "sCurrency": the symbol without the position mark in front.
    if (!loc) return false;
    std::string_view s = loc.info(CRNCYSTR);
    if (!s.empty() && (s[0] == '-' || s[0] == '+' || s[0] == '.')) s.remove_prefix(1);
    return toCp1252(s, value);
}

bool dateValue(std::string& value) {
    const std::string name = envLocale("LC_TIME");
    if (isCLocale(name)) return false;  // its "%m/%d/%y" is nobody's choice
    Locale loc(LC_TIME_MASK, name);
    if (loc) return translateDateFormat(loc.info(D_FMT), value);
    if (const Convention* c = convention(name)) {
        value = c->shortDate;
        return true;
    }
    return false;
}

bool timeSeparator(std::string& value) {
    const std::string name = envLocale("LC_TIME");
    Locale loc(LC_TIME_MASK, name);
    std::string_view f = loc ? loc.info(T_FMT) : std::string_view("%H:%M:%S");
    for (std::size_t i = 0; i < f.size(); ++i) {
        if (f[i] == '%') {
            ++i;
            continue;
        }
        if (!std::isalnum(static_cast<unsigned char>(f[i])) && f[i] != ' ') {
            value.assign(1, f[i]);
            return true;
        }
    }
    return false;
}

bool countryValue(std::string& value) {
    const std::string name = envLocale("LC_TELEPHONE");
    if (isCLocale(name)) return false;
#ifdef __GLIBC__  // the telephone category is glibc's (its items are enumerators, not macros)
    Locale loc(LC_TELEPHONE_MASK, name);
    if (loc) {
        std::string_view p = loc.info(_NL_TELEPHONE_INT_PREFIX);
        if (!p.empty()) {
            value = std::string(p);
            return true;
        }
    }
#endif
    if (const Convention* c = convention(name)) {
        value = std::to_string(c->country);
        return true;
    }
    return false;
}

bool languageValue(std::string& value) {
    const std::string name = envLocale("LC_MESSAGES");
    if (isCLocale(name)) return false;
    if (const Convention* c = convention(name)) {
        value = c->code;
        return true;
    }
    // Another language: its two letters and "X", upper case, as a code
    // that names no known language but keeps the language recognisable.
    std::string lang, terr;
    splitName(name, lang, terr);
    if (lang.size() < 2) return false;
    value = lang.substr(0, 2) + "X";
    for (char& c : value) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return true;
}

}  // namespace

bool intlValue(const char* key, std::string& value) {
    value.clear();
    if (!key) return false;
    std::string_view k(key);
    if (k == "sDecimal" || k == "sThousand") return numericValue(key, value);
    if (k == "iCurrDigits" || k == "sCurrency") return monetaryValue(key, value);
    if (k == "sShortDate") return dateValue(value);
    if (k == "sTime") return timeSeparator(value);
    if (k == "iCountry") return countryValue(value);
    if (k == "sLanguage") return languageValue(value);
    return false;
}

unsigned osVersion() {
    utsname u{};
    if (uname(&u) != 0) return 0;
    char* p = nullptr;
    unsigned long major = std::strtoul(u.release, &p, 10);
    unsigned long minor = (p && *p == '.') ? std::strtoul(p + 1, nullptr, 10) : 0;
    return static_cast<unsigned>(major * 100 + (minor > 99 ? 99 : minor));
}

}  // namespace vnt::host
