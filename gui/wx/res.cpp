// Dialog resources by number: the library's embedded XRC files and the
// applications' own, loaded through wxXmlResource.
#include <memory>
#include <string>

#include <wx/file.h>
#include <wx/filefn.h>
#include <wx/log.h>
#include <wx/mstream.h>
#include <wx/xml/xml.h>
#include <wx/xrc/xmlres.h>

#include "res_table.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"
#include "vanto/text.h"
#include "vanto/wx/res.h"
#include "wxtext.h"

namespace vnt::wx {

wxString toWx(const std::string& cp1252) { return wxString::FromUTF8(Vnt_TxtToUtf8(cp1252)); }

std::string fromWx(const wxString& s) {
    std::string out;
    for (wxUniChar c : s) {
        unsigned char b;
        out += Vnt_TxtCharFromUnicode(static_cast<char32_t>(c.GetValue()), b) ? static_cast<char>(b) : '?';
    }
    return out;
}

namespace {

// Parses XRC text and hands it to wxXmlResource under `name`, replacing an
// earlier source of that name.
bool addDocument(const void* data, std::size_t size, const wxString& name) {
    wxMemoryInputStream in(data, size);
    auto doc = std::make_unique<wxXmlDocument>();
    {
        wxLogNull quiet;  // a broken text is our false, not a log window
        if (!doc->Load(in, "UTF-8") || !doc->GetRoot() || doc->GetRoot()->GetName() != "resource") return false;
    }
    wxXmlResource* res = wxXmlResource::Get();
    res->Unload(name);
    return res->LoadDocument(doc.release(), name);
}

}  // namespace

bool loadEmbeddedResources() {
    static bool loaded = false;
    if (loaded) return true;
    wxXmlResource::Get()->InitAllHandlers();
    addEdXmlHandler();
    bool ok = true;
    for (const EmbeddedXrc* x = kEmbeddedXrc; x->name; ++x)
        ok = addDocument(x->data, x->size, wxString("vantortl:") + x->name) && ok;
    loaded = true;
    return ok;
}

}  // namespace vnt::wx

std::string Vnt_WxResName(long number, const char* language) {
    std::string name = "dlg" + std::to_string(number);
    if (language && *language) name += std::string("_") + language;
    return name;
}

namespace {

// The object to load for `number`: the library language's version first.
wxString resourceFor(long number) {
    const wxXmlResource* res = wxXmlResource::Get();
    const std::string local = Vnt_WxResName(number, Vnt_ResLanguage());
    if (res->GetResourceNode(local)) return local;
    const std::string plain = Vnt_WxResName(number);
    if (res->GetResourceNode(plain)) return plain;
    return {};
}

}  // namespace

bool Vnt_WxResExists(long number) {
    vnt::wx::loadEmbeddedResources();
    return !resourceFor(number).empty();
}

/*
 * A missing resource is a fault of the program, not of the user: it is an
 * internal error whose code is the resource number, so that the report
 * names it.
 */
bool Vnt_WxLoadDialog(wxDialog* dlg, wxWindow* parent, long number) {
    if (dlg == nullptr) return false;
    vnt::wx::loadEmbeddedResources();
    const wxString name = resourceFor(number);
    if (Vnt__InternalError(name.empty(), static_cast<int>(number), "Wx/VntRes", __LINE__)) return false;
    wxLogNull quiet;
    return wxXmlResource::Get()->LoadDialog(dlg, parent, name);
}

bool Vnt_WxAddResources(const char* xrc, const char* name) {
    if (xrc == nullptr || name == nullptr) return false;
    vnt::wx::loadEmbeddedResources();
    return vnt::wx::addDocument(xrc, std::char_traits<char>::length(xrc), wxString("app:") + wxString::FromUTF8(name));
}

bool Vnt_WxAddResourceFile(const char* libPath) {
    char host[4096];
    if (libPath == nullptr || !Vnt_LfnToHost(libPath, host, sizeof host)) return false;
    wxFile f;
    {
        wxLogNull quiet;
        if (!wxFileExists(wxString::FromUTF8(host)) || !f.Open(wxString::FromUTF8(host))) return false;
    }
    const wxFileOffset len = f.Length();
    if (len <= 0) return false;
    std::string data(static_cast<std::size_t>(len), '\0');
    if (f.Read(data.data(), data.size()) != static_cast<ssize_t>(data.size())) return false;
    vnt::wx::loadEmbeddedResources();
    return vnt::wx::addDocument(data.data(), data.size(), wxString("file:") + wxString::FromUTF8(host));
}
