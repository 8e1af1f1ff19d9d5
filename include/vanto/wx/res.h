// vanto/wx/res.h - dialog resources by number.
//
// A dialog resource is an XRC object (the resource format of wxWidgets,
// written by the usual dialog designers) of class wxDialog. The dialog with
// resource number N is the object named "dlg" + N; a version for a language
// is named "dlg" + N + "_" + the library language (Vnt_ResLanguage), and is
// taken before the plain one when the library speaks that language:
//
//   number 30061, language "DEU"   => "dlg30061_DEU", else "dlg30061"
//   number 30061, language "ENU"   => "dlg30061_ENU", else "dlg30061"
//   number 4711                    => "dlg4711_..." / "dlg4711"
//
// Controls that code refers to by number are named with the number
// (name="1001" gives the control the window ID 1001); the standard IDs
// have their stock names (wxID_OK, wxID_CANCEL, wxID_HELP).
//
// The library's own dialogs (30061-30063, 30021-30026) are XRC files in
// gui/wx/xrc/, compiled into the library by the build: nothing loose is
// installed. An application adds its own dialogs with Vnt_WxAddResources
// (text compiled in) or Vnt_WxAddResourceFile (a file beside the program),
// or through wxXmlResource::Get() directly; docs/dialogs.md shows how.
//
// Adding one of the library's own dialogs: put "<number>.xrc" (or add the
// object to an existing file) in gui/wx/xrc/ with the object named
// "dlg<number>" (German texts, as the resource stands) and, beside it,
// "dlg<number>_ENU" with the English texts; the build embeds every file of
// that folder, and Vnt_WxInit loads them. Load it with Vnt_WxLoadDialog or
// derive from VntDlg (vanto/wx/dlg.h) with the number.
#pragma once

#include <string>

#include <wx/dialog.h>

#include "vanto/base.h"

/// The object name of resource `number` ("dlg30061"); with `language`
/// (e.g. "ENU") the name of that language's version ("dlg30061_ENU").
VANTO_API std::string Vnt_WxResName(long number, const char* language = nullptr);

/// True when a dialog resource for `number` is loaded (any language).
VANTO_API bool Vnt_WxResExists(long number);

/// Creates `dlg` (made with wxDialog's default constructor, not yet
/// created) from resource `number` with `parent`. A number with no
/// resource is reported as internal error <number> of source "Wx/VntRes"
/// (the report names the number) and gives false; `dlg` stays uncreated.
VANTO_API bool Vnt_WxLoadDialog(wxDialog* dlg, wxWindow* parent, long number);

/// Adds dialog resources from XRC text (UTF-8); `name` tells this source
/// from others (adding the same name again replaces it). False when the
/// text is not XRC.
VANTO_API bool Vnt_WxAddResources(const char* xrc, const char* name);

/// Adds dialog resources from an XRC file, given by its library path
/// ("Z:\opt\acme\Fibu.xrc"). False when it cannot be read or is not XRC.
VANTO_API bool Vnt_WxAddResourceFile(const char* libPath);
