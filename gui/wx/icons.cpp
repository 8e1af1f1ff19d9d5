// The message icons: the desktop theme's, or drawn (a virtual display and
// some themes have none), so that a box never shows without its icon.
#include "icons.h"

#include <wx/artprov.h>
#include <wx/dcmemory.h>
#include <wx/log.h>
#include <wx/xrc/xmlres.h>

namespace vnt::wx {

namespace {

// A filled circle (a rounded square for the exclamation) with a symbol.
wxBitmap drawn(long number, int size) {
    wxColour fill;
    wxString symbol;
    switch (number) {
        case 30061: fill = wxColour(0x1E, 0x64, 0xC8); symbol = "i"; break;
        case 30062: fill = wxColour(0xE6, 0xA0, 0x00); symbol = "!"; break;
        case 30063: fill = wxColour(0x1E, 0x64, 0xC8); symbol = "?"; break;
        default: fill = wxColour(0xC8, 0x1E, 0x1E); symbol = "X"; break;
    }
    wxBitmap bmp(size, size, 32);
    {
        wxMemoryDC dc(bmp);
        dc.SetBackground(*wxWHITE_BRUSH);
        dc.Clear();
        dc.SetPen(wxPen(fill.ChangeLightness(70)));
        dc.SetBrush(wxBrush(fill));
        if (number == 30062) dc.DrawRoundedRectangle(1, 1, size - 2, size - 2, size / 5);
        else dc.DrawEllipse(1, 1, size - 2, size - 2);
        wxFont font(wxFontInfo(size * 9 / 16).Bold().Family(wxFONTFAMILY_SWISS));
        dc.SetFont(font);
        dc.SetTextForeground(*wxWHITE);
        const wxSize t = dc.GetTextExtent(symbol);
        dc.DrawText(symbol, (size - t.x) / 2, (size - t.y) / 2);
    }
    // White outside the shape becomes transparent.
    wxImage out = bmp.ConvertToImage();
    out.SetMaskColour(255, 255, 255);
    return wxBitmap(out);
}

const char* artFor(long number) {
    switch (number) {
        case 30061: return wxART_INFORMATION;
        case 30062: return wxART_WARNING;
        case 30063: return wxART_QUESTION;
        case 30064: return wxART_ERROR;
        default: return nullptr;
    }
}

}  // namespace

wxBitmap messageIcon(long number, int size) {
    const char* art = artFor(number);
    if (!art) return wxNullBitmap;
    wxBitmap themed;
    {
        wxLogNull quiet;
        themed = wxArtProvider::GetBitmap(art, wxART_MESSAGE_BOX, wxSize(size, size));
    }
    return themed.IsOk() ? themed : drawn(number, size);
}

wxIcon iconFor(long number) {
    if (artFor(number)) {
        wxIcon icon;
        icon.CopyFromBitmap(messageIcon(number));
        return icon;
    }
    const wxString name = wxString::Format("icon%ld", number);
    if (!wxXmlResource::Get()->GetResourceNode(name)) return wxNullIcon;
    wxLogNull quiet;
    return wxXmlResource::Get()->LoadIcon(name);
}

}  // namespace vnt::wx
