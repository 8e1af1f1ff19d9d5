// National conventions from the user's regional settings (GetLocaleInfoEx).
#include "host/win32/host_call.h"

#include <cstring>

#include "vanto/text.h"

namespace vnt::host {

namespace {

struct Key {
    const char* name;
    LCTYPE type;
};

// The "intl" keys and the regional setting each is read from.
constexpr Key kKeys[] = {
    {"iCurrDigits", LOCALE_ICURRDIGITS}, {"iCountry", LOCALE_ICOUNTRY},   {"sDecimal", LOCALE_SDECIMAL},
    {"sThousand", LOCALE_STHOUSAND},     {"sTime", LOCALE_STIME},         {"sCurrency", LOCALE_SCURRENCY},
    {"sLanguage", LOCALE_SABBREVLANGNAME}, {"sShortDate", LOCALE_SSHORTDATE},
};

}  // namespace

bool intlValue(const char* key, std::string& value) {
    value.clear();
    if (!key) return false;
    for (const Key& k : kKeys) {
        if (std::strcmp(key, k.name) != 0) continue;
        wchar_t buf[128];
        const int n = ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, k.type, buf, 128);
        if (n <= 1) return false;  // the count includes the terminating NUL
        return Vnt_TxtFromUtf8(toUtf8(buf, n - 1), value) && !value.empty();
    }
    return false;
}

/*
 * The version the system really has: GetVersionEx answers what the
 * program's manifest declares, the kernel's own call does not.
 */
unsigned osVersion() {
    using RtlGetVersionFn = LONG(WINAPI*)(OSVERSIONINFOW*);
    OSVERSIONINFOW v{};
    v.dwOSVersionInfoSize = sizeof v;
    HMODULE ntdll = ::GetModuleHandleW(L"ntdll.dll");
    auto get = ntdll ? reinterpret_cast<RtlGetVersionFn>(reinterpret_cast<void*>(::GetProcAddress(ntdll, "RtlGetVersion"))) : nullptr;
    if (!get || get(&v) != 0) return 0;
    return static_cast<unsigned>(v.dwMajorVersion * 100 + (v.dwMinorVersion > 99 ? 99 : v.dwMinorVersion));
}

}  // namespace vnt::host
