// Shared by the module libraries of the desktop example: texts in the
// library's language, and the message box with them.
#pragma once

#include <cstring>
#include <string>

#include <vanto/msg.h>
#include <vanto/text.h>

namespace desk {

/// True while the library speaks English.
inline bool English() { return std::strncmp(Vnt_ResLanguage(), "EN", 2) == 0; }

/// The German or the English text (UTF-8), as the library speaks.
inline const char* Tr(const char* de, const char* en) { return English() ? en : de; }

/// The Windows-1252 form of a UTF-8 text of these sources, for the library.
inline std::string Lib(const char* utf8) {
    std::string out;
    if (!Vnt_TxtFromUtf8(utf8, out)) out = utf8;  // every text here has a Windows-1252 form
    return out;
}

/// Shows the German or English text (with the prefixes of the message box)
/// in the library's message box, formatted with the (Windows-1252)
/// arguments; the box's answer.
template <typename... Args>
VNT_RESP Tell(const char* de, const char* en, Args... args) {
    const std::string format = Lib(Tr(de, en));
    return Vnt_MsgH(nullptr, format.c_str(), args...);
}

}  // namespace desk
