// Texts between the library (Windows-1252) and wx (Unicode).
#pragma once

#include <string>

#include <wx/string.h>

namespace vnt::wx {

/// A library text (Windows-1252) as a wx string.
wxString toWx(const std::string& cp1252);
/// A wx string as a library text; characters without a Windows-1252 form
/// become '?'.
std::string fromWx(const wxString& s);

}  // namespace vnt::wx
