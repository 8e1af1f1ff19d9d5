// vanto/wx/doc.h - a document template the module loader can use.
//
// A module library's entry function may return a document template
// (vanto/module.h); the loader then opens a new untitled, visible document
// through it, and when the module's last window closed it takes the
// template out of the application and destroys it before the library goes.
// VntWxDocTemplate is wx's template with those four operations:
//
//   VNT_APP_MODULE_EXPORT std::intptr_t ModEntry(long, long) {
//       auto* t = new VntWxDocTemplate(wxDocManager::GetDocumentManager(), "Kunden", "*.kd", "", "kd",
//                                      "Kunden-Dokument", "Kunden-Ansicht",
//                                      wxCLASSINFO(KundenDoc), wxCLASSINFO(KundenView));
//       return reinterpret_cast<std::intptr_t>(static_cast<VntDocTemplate*>(t));
//   }
//
// The application keeps one wxDocManager (wx's document manager) alive.
#pragma once

#include <wx/docview.h>

#include "vanto/module.h"

class VANTO_API VntWxDocTemplate : public wxDocTemplate, public VntDocTemplate {
public:
    /// wx's template constructor; the template joins `manager`'s list.
    VntWxDocTemplate(wxDocManager* manager, const wxString& description, const wxString& filter,
                     const wxString& dir, const wxString& ext, const wxString& docTypeName,
                     const wxString& viewTypeName, wxClassInfo* docClassInfo, wxClassInfo* viewClassInfo,
                     long flags = wxDEFAULT_TEMPLATE_FLAGS);

    /// A new untitled document of this template with its view (visible);
    /// the document's template, or null when none could be made.
    VntDocTemplate* OpenNewDocument() override;
    /// True while a document of this template is open in the manager.
    bool HasOpenDocuments() override;
    /// Leaves the manager's list of templates.
    void RemoveFromApp() override;
    /// Deletes the template.
    void Destroy() override;
};
