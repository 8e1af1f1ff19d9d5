// National conventions as the host's locale environment gives them.
#pragma once

#include <string>

namespace vnt::host {

/// One value of the system's "intl" settings, by its conventional key
/// ("iCurrDigits", "iCountry", "sDecimal", "sThousand", "sTime",
/// "sCurrency", "sLanguage", "sShortDate"), taken from the process's locale
/// environment (LC_ALL, LC_<category>, LANG) in Windows-1252. False when the
/// environment does not say (no locale set, the "C"/"POSIX" locale's date
/// format, an unknown key).
bool intlValue(const char* key, std::string& value);
/// The operating system's version as major * 100 + minor (kernel 6.1: 601).
unsigned osVersion();

}  // namespace vnt::host
