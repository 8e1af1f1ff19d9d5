// The module loader's document template on wx's.
#include "vanto/wx/doc.h"

VntWxDocTemplate::VntWxDocTemplate(wxDocManager* manager, const wxString& description, const wxString& filter,
                                   const wxString& dir, const wxString& ext, const wxString& docTypeName,
                                   const wxString& viewTypeName, wxClassInfo* docClassInfo,
                                   wxClassInfo* viewClassInfo, long flags)
    : wxDocTemplate(manager, description, filter, dir, ext, docTypeName, viewTypeName, docClassInfo,
                    viewClassInfo, flags) {}

VntDocTemplate* VntWxDocTemplate::OpenNewDocument() {
    wxDocument* doc = CreateDocument(wxString(), wxDOC_NEW);
    if (!doc) return nullptr;
    // As the manager does for "New": a title, and views that show.
    if (!doc->OnNewDocument()) {
        doc->DeleteAllViews();
        return nullptr;
    }
    for (wxView* v : doc->GetViewsVector())
        if (wxWindow* frame = v->GetFrame()) frame->Show();
    return dynamic_cast<VntDocTemplate*>(doc->GetDocumentTemplate());
}

bool VntWxDocTemplate::HasOpenDocuments() {
    wxDocManager* m = GetDocumentManager();
    if (!m) return false;
    for (wxDocument* d : m->GetDocumentsVector())
        if (d->GetDocumentTemplate() == this) return true;
    return false;
}

void VntWxDocTemplate::RemoveFromApp() {
    if (wxDocManager* m = GetDocumentManager()) m->DisassociateTemplate(this);
}

void VntWxDocTemplate::Destroy() { delete this; }
