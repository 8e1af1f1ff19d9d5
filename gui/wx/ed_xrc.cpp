// The XRC handler of the typed edit control: class "VantoEd" in dialog
// resources.
#include <wx/xrc/xmlres.h>

#include "vanto/wx/ed.h"
#include "wxtext.h"

namespace {

class VantoEdXmlHandler : public wxXmlResourceHandler {
public:
    bool CanHandle(wxXmlNode* node) override { return IsOfClass(node, "VantoEd"); }

    // wx's GetFloat reads single precision: 99999.99 would become 100000.
    double getDouble(const char* param) {
        double v = 0;
        return GetParamValue(param).Trim().Trim(false).ToCDouble(&v) ? v : 0.0;
    }

    wxObject* DoCreateResource() override {
        XRC_MAKE_INSTANCE(ed, VantoEd)
        // What shapes the native control is set before it is created.
        ed->SetType(GetLong("type", VNT_ED_TEXT));
        ed->SetAlignH(static_cast<short>(GetLong("alignh", VNT_ED_ALIGN_LEFT)));
        ed->SetBorderStyle(static_cast<short>(GetLong("borderstyle", 1)));
        ed->SetReadOnly(GetBool("readonly"));
        ed->SetDisplayOnly(GetBool("displayonly"));
        ed->SetMaxLength(static_cast<unsigned long>(GetLong("maxlength", 0)));
        ed->SetUseColors(GetBool("usecolors"));
        if (HasParam("backcolor")) ed->SetBackColor(static_cast<unsigned long>(GetLong("backcolor")));
        if (HasParam("forecolor")) ed->SetForeColor(static_cast<unsigned long>(GetLong("forecolor")));
        ed->SetUseFont(GetBool("usefont"));
        ed->Create(m_parentAsWindow, GetID(), GetPosition(), GetSize(), GetStyle(), GetName());
        ed->SetMinVal(getDouble("minval"));
        ed->SetMaxVal(getDouble("maxval"));
        ed->SetDfltVal(getDouble("dfltval"));
        ed->SetSigned(GetBool("signed"));
        ed->SetAlignV(static_cast<short>(GetLong("alignv", 0)));
        ed->SetDecPlaces(static_cast<short>(GetLong("decplaces", 2)));
        ed->SetAppearance(static_cast<short>(GetLong("appearance", 1)));
        ed->SetDfltText(vnt::wx::fromWx(GetText("dflttext")).c_str());
        if (HasParam("value")) ed->SetText(vnt::wx::fromWx(GetText("value")).c_str());
        SetupWindow(ed);
        return ed;
    }
};

}  // namespace

namespace vnt::wx {

// Called when the library's resources are loaded.
void addEdXmlHandler() {
    static bool added = false;
    if (added) return;
    wxXmlResource::Get()->AddHandler(new VantoEdXmlHandler);
    added = true;
}

}  // namespace vnt::wx
