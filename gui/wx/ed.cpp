// The typed edit control on a wx text control: properties, typing filter,
// value layer and data exchange.
#include "vanto/wx/ed.h"

#include <cmath>
#include <limits>

#include <sqltypes.h>

#include <wx/clipbrd.h>
#include <wx/dataobj.h>
#include <wx/utils.h>

#include "vanto/db.h"
#include "vanto/locale.h"
#include "vanto/ui/window.h"
#include "wx_state.h"
#include "wxtext.h"

using vnt::wx::fromWx;
using vnt::wx::toWx;

wxIMPLEMENT_DYNAMIC_CLASS(CVantoEd, wxTextCtrl);
wxIMPLEMENT_DYNAMIC_CLASS(VantoEd, CVantoEd);

namespace {

wxColour fromColorRef(unsigned long c) {
    return wxColour(static_cast<unsigned char>(c & 0xFF), static_cast<unsigned char>((c >> 8) & 0xFF),
                    static_cast<unsigned char>((c >> 16) & 0xFF));
}

bool isNumberType(long t) { return t >= VNT_ED_DECIMAL && t <= VNT_ED_LONG; }

char decimalChar() {
    const char c = Vnt_SysInfo(VNT_SI_GET).cDecimal;
    return c ? c : '.';
}

}  // namespace

// ---------------------------------------------------------------------------
// VntDataExchange
// ---------------------------------------------------------------------------

void VntDataExchange::Fail(wxWindow* ctl) {
    failed_ = true;
    Vnt_UiWindow().Beep();
    if (!ctl) return;
    ctl->SetFocus();
    if (auto* t = dynamic_cast<wxTextCtrl*>(ctl)) t->SelectAll();
}

// ---------------------------------------------------------------------------
// CVantoEd
// ---------------------------------------------------------------------------

CVantoEd::CVantoEd(wxWindow* parent, wxWindowID id, long type, const wxPoint& pos, const wxSize& size, long style,
                   const wxString& name) {
    type_ = type;
    Create(parent, id, pos, size, style, name);
}

bool CVantoEd::Create(wxWindow* parent, wxWindowID id, const wxPoint& pos, const wxSize& size, long style,
                      const wxString& name) {
    style &= ~(wxTE_MULTILINE | wxTE_LEFT | wxTE_RIGHT | wxTE_CENTRE);
    style |= alignH_ == VNT_ED_ALIGN_RIGHT ? wxTE_RIGHT : alignH_ == VNT_ED_ALIGN_CENTER ? wxTE_CENTRE : wxTE_LEFT;
    if (borderStyle_ == 0) style |= wxBORDER_NONE;
    if (readOnly_ || displayOnly_) style |= wxTE_READONLY;
    autoHeight_ = size.y <= 0;
    if (!wxTextCtrl::Create(parent, id, wxEmptyString, pos, size, style, wxDefaultValidator, name)) return false;
    Bind(wxEVT_CHAR, &CVantoEd::onChar, this);
    Bind(wxEVT_TEXT_PASTE, &CVantoEd::onPaste, this);
    // A new theme or resolution gives plain fields another height.
    Bind(wxEVT_SYS_COLOUR_CHANGED, &CVantoEd::onLookChanged, this);
    Bind(wxEVT_DPI_CHANGED, &CVantoEd::onLookChanged, this);
    if (maxLength_ > 0) wxTextCtrl::SetMaxLength(static_cast<unsigned long>(maxLength_));
    applyColors();
    applyFont();
    return true;
}

void CVantoEd::SetType(long type) { type_ = type; }

void CVantoEd::SetMaxLength(unsigned long len) {
    maxLength_ = static_cast<short>(std::min<unsigned long>(len, 0x7FFF));
    if (GetHandle()) wxTextCtrl::SetMaxLength(static_cast<unsigned long>(maxLength_));
}

void CVantoEd::SetReadOnly(bool on) {
    readOnly_ = on;
    if (GetHandle()) SetEditable(!(readOnly_ || displayOnly_));
}

void CVantoEd::SetDisplayOnly(bool on) {
    displayOnly_ = on;
    if (!GetHandle()) return;
    SetEditable(!(readOnly_ || displayOnly_));
    applyColors();
}

void CVantoEd::SetAlignH(short align) {
    alignH_ = align;
    if (!GetHandle()) return;
    long style = GetWindowStyleFlag() & ~(wxTE_LEFT | wxTE_RIGHT | wxTE_CENTRE);
    style |= align == VNT_ED_ALIGN_RIGHT ? wxTE_RIGHT : align == VNT_ED_ALIGN_CENTER ? wxTE_CENTRE : wxTE_LEFT;
    SetWindowStyleFlag(style);
}

void CVantoEd::SetBorderStyle(short s) {
    borderStyle_ = s;
    if (!GetHandle()) return;
    long style = GetWindowStyleFlag() & ~wxBORDER_MASK;
    SetWindowStyleFlag(style | (s == 0 ? wxBORDER_NONE : wxBORDER_DEFAULT));
}

void CVantoEd::SetUseColors(bool on) {
    useColors_ = on;
    applyColors();
}

void CVantoEd::SetBackColor(unsigned long c) {
    backColor_ = c;
    applyColors();
}

void CVantoEd::SetForeColor(unsigned long c) {
    foreColor_ = c;
    applyColors();
}

void CVantoEd::applyColors() {
    if (!GetHandle()) return;
    if (useColors_) {
        SetBackgroundColour(fromColorRef(backColor_));
        SetForegroundColour(fromColorRef(foreColor_));
    } else if (displayOnly_ && GetParent()) {
        SetBackgroundColour(GetParent()->GetBackgroundColour());
        SetForegroundColour(wxNullColour);
    } else {
        SetBackgroundColour(wxNullColour);
        SetForegroundColour(wxNullColour);
    }
    Refresh();
}

void CVantoEd::SetUseFont(bool on) {
    useFont_ = on;
    applyFont();
}

bool CVantoEd::SetFont(const wxFont& font) {
    font_ = font;
    applyFont();
    return true;
}

void CVantoEd::applyFont() {
    if (!GetHandle()) return;
    if (useFont_ && font_.IsOk()) wxTextCtrl::SetFont(font_);
    else if (GetParent()) wxTextCtrl::SetFont(GetParent()->GetFont());
    pinHeight();
}

// GTK measures a field with its own colours taller once it is on the screen
// (and only the fields of the page shown first get measured then), so a
// field without a given height keeps that of a plain text field in its font
// (measured once per font: a field made to measure costs as much as four
// edit controls).
void CVantoEd::pinHeight() {
    if (!autoHeight_ || !GetParent()) return;
    auto& heights = vnt::wx::state().plainHeights;
    const wxString font = GetFont().GetNativeFontInfoDesc();
    auto it = heights.find(font);
    if (it == heights.end()) {
        wxTextCtrl probe;
        probe.Hide();
        if (!probe.Create(GetParent(), wxID_ANY)) return;
        probe.SetFont(GetFont());
        it = heights.emplace(font, probe.GetBestSize().y).first;
    }
    SetMinSize(wxSize(GetMinSize().x, it->second));
}

void CVantoEd::onLookChanged(wxEvent& e) {
    vnt::wx::state().plainHeights.clear();
    pinHeight();
    e.Skip();
}

std::string CVantoEd::GetText() const { return fromWx(GetValue()); }

void CVantoEd::SetText(const char* text) { ChangeValue(toWx(text ? text : "")); }

void CVantoEd::SetDefault() {
    if (!dfltText_.empty()) {
        SetText(dfltText_.c_str());
        return;
    }
    const int dec = type_ == VNT_ED_DECIMAL || type_ == VNT_ED_AMOUNT ? decPlaces_ : 0;
    SetText(Vnt__EdSetVal(type_, nullptr, dfltVal_, dec));
}

void CVantoEd::GetSel(long* start, long* end) const {
    long s = 0, e = 0;
    GetSelection(&s, &e);
    if (start) *start = s;
    if (end) *end = e;
}

bool CVantoEd::AcceptsFocusFromKeyboard() const {
    return !displayOnly_ && wxTextCtrl::AcceptsFocusFromKeyboard();
}

bool CVantoEd::AcceptsChar(wchar_t c, long pos, const wxString& text, long selFrom, long selTo) const {
    // What stays of the text around the typing position.
    wxString rest = text;
    if (selTo > selFrom) rest.erase(static_cast<size_t>(selFrom), static_cast<size_t>(selTo - selFrom));
    const auto sign = [&] { return signed_ && pos == 0 && !rest.StartsWith("-"); };
    switch (type_) {
    case VNT_ED_DECIMAL:
    case VNT_ED_AMOUNT:
        if (c >= '0' && c <= '9') return !(pos == 0 && rest.StartsWith("-"));
        if (c == '-') return sign();
        if (c == static_cast<unsigned char>(decimalChar()) || c == '.' || c == ',')
            return decPlaces_ > 0 && rest.Find(wxUniChar(static_cast<unsigned char>(decimalChar()))) == wxNOT_FOUND &&
                   !(pos == 0 && rest.StartsWith("-"));
        return false;
    case VNT_ED_SHORT:
    case VNT_ED_LONG:
        if (c >= '0' && c <= '9') return !(pos == 0 && rest.StartsWith("-"));
        return c == '-' && sign();
    case VNT_ED_DATE: {
        const VNT_SYS_INFO& si = Vnt_SysInfo(VNT_SI_GET);
        return (c >= '0' && c <= '9') || c == '/' || c == '.' || c == '-' ||
               (si.cDateSep1 && c == static_cast<unsigned char>(si.cDateSep1)) ||
               (si.cDateSep2 && c == static_cast<unsigned char>(si.cDateSep2));
    }
    case VNT_ED_CHAR:
        return rest.empty();
    case VNT_ED_NONE:
        return false;
    default:
        return true;
    }
}

void CVantoEd::onChar(wxKeyEvent& e) {
    const wxChar c = e.GetUnicodeKey();
    // Keys without a character (arrows, Home, F-keys), control characters
    // (Backspace, Tab, Enter) and shortcuts go their usual way.
    if (c == WXK_NONE || c < 32 || c == 127 || e.ControlDown() || e.AltDown()) {
        e.Skip();
        return;
    }
    long from = 0, to = 0;
    GetSelection(&from, &to);
    const long pos = to > from ? from : GetInsertionPoint();
    if (!AcceptsChar(c, pos, GetValue(), from, to)) return;  // swallowed
    // Either decimal character stands for the locale's.
    if ((type_ == VNT_ED_DECIMAL || type_ == VNT_ED_AMOUNT) && (c == '.' || c == ',')) {
        const wxString dec = toWx(std::string(1, decimalChar()));
        if (maxLength_ > 0 && static_cast<long>(GetValue().length()) - (to - from) >= maxLength_) return;
        WriteText(dec);
        return;
    }
    e.Skip();
}

void CVantoEd::onPaste(wxClipboardTextEvent& e) {
    if (!Vnt_EdIsTextType(type_) && type_ != VNT_ED_CHAR) {
        wxString in;
        if (wxTheClipboard->Open()) {
            wxTextDataObject data;
            if (wxTheClipboard->GetData(data)) in = data.GetText();
            wxTheClipboard->Close();
        }
        long from = 0, to = 0;
        GetSelection(&from, &to);
        wxString text = GetValue();
        text.erase(static_cast<size_t>(from), static_cast<size_t>(to - from));
        long pos = from;
        wxString kept;
        for (wxUniChar u : in) {
            const wchar_t c = static_cast<wchar_t>(u.GetValue());
            if (!AcceptsChar(c, pos, text, pos, pos)) continue;
            const wxString add = (type_ <= VNT_ED_AMOUNT && (c == '.' || c == ','))
                                     ? toWx(std::string(1, decimalChar())) : wxString(u);
            if (maxLength_ > 0 && static_cast<long>(text.length()) >= maxLength_) break;
            text.insert(static_cast<size_t>(pos), add);
            kept += add;
            ++pos;
        }
        WriteText(kept);
        return;  // not skipped: the native paste would take everything
    }
    e.Skip();
}

// ---------------------------------------------------------------------------
// VantoEd: values
// ---------------------------------------------------------------------------

long VantoEd::EdType() {
    if (cachedType_ < 0) cachedType_ = GetType();
    return cachedType_;
}

int VantoEd::decimals() {
    const long t = EdType();
    return t == VNT_ED_DECIMAL || t == VNT_ED_AMOUNT ? GetDecPlaces() : 0;
}

double VantoEd::GetVal() {
    const std::string text = GetText();
    return Vnt__EdGetVal(EdType(), text.c_str(), nullptr, decimals(), nullptr);
}

void VantoEd::SetVal(double value) { SetText(Vnt__EdSetVal(EdType(), nullptr, value, decimals())); }

bool VantoEd::GetVal(VNT_DATE& date) {
    bool empty = true;
    const std::string text = GetText();
    return Vnt__EdGetDate(EdType(), text.c_str(), &date, &empty) && !empty;
}

void VantoEd::SetVal(const VNT_DATE& date) {
    const char* text = Vnt__EdSetDate(EdType(), &date);
    if (EdType() == VNT_ED_DATE) SetText(text);
}

bool VantoEd::GetVal(tagTIMESTAMP_STRUCT& ts) {
    VNT_DATE d{};
    const bool got = GetVal(d);
    if (EdType() != VNT_ED_DATE) return false;
    ts = tagTIMESTAMP_STRUCT{};
    ts.year = static_cast<decltype(ts.year)>(d.year);
    ts.month = d.month;
    ts.day = d.day;
    return got;
}

void VantoEd::SetVal(const tagTIMESTAMP_STRUCT& ts) {
    SetVal(VNT_DATE{static_cast<std::uint16_t>(ts.year), static_cast<std::uint8_t>(ts.month),
                    static_cast<std::uint8_t>(ts.day)});
}

bool VantoEd::GetVal(VntDate& date) {
    VNT_DATE d{};
    const bool got = GetVal(d);
    if (EdType() != VNT_ED_DATE) return false;
    date.Set(d);
    return got;
}

void VantoEd::SetVal(const VntDate& date) { SetVal(date.date); }

void VantoEd::SetVal(const char* text) { Vnt__EdSetString(EdType(), text, nullptr, this); }

bool VantoEd::Validate() {
    const long t = EdType();
    const std::string text = GetText();
    if (isNumberType(t)) {
        bool empty = true;
        const double v = Vnt__EdGetVal(t, text.c_str(), nullptr, decimals(), &empty);
        if (empty) return true;
        if (v < 0 && !GetSigned()) return false;
        if (GetMinVal() == 0 && GetMaxVal() == 0) return true;
        return v >= GetMinVal() && v <= GetMaxVal();
    }
    if (t == VNT_ED_DATE) {
        VNT_DATE d{};
        bool empty = true;
        Vnt__EdGetDate(t, text.c_str(), &d, &empty);
        return empty || Vnt_DateIsValid(d, false);
    }
    return true;
}

// ---------------------------------------------------------------------------
// VantoEd: data exchange
// ---------------------------------------------------------------------------

namespace {

bool fieldInUse(VntRecordset* rs, const char* field) { return rs && field && *field && rs->IsOpen(); }

template <class T>
bool ddxInteger(VantoEd& ed, VntDataExchange* dx, T& v, VntRecordset* rs, const char* field,
                bool (VantoEd::*number)(VntDataExchange*, double&, double, double, VntRecordset*, const char*)) {
    double d = static_cast<double>(v);
    if (!(ed.*number)(dx, d, static_cast<double>(std::numeric_limits<T>::min()),
                      static_cast<double>(std::numeric_limits<T>::max()), rs, field))
        return false;
    if (dx && dx->m_bSaveAndValidate) v = static_cast<T>(std::llround(d));
    return true;
}

}  // namespace

// The common part of the number exchanges: `lo`..`hi` is what the
// variable holds.
bool VantoEd::ddxNumber(VntDataExchange* dx, double& v, double lo, double hi, VntRecordset* rs, const char* field) {
    if (!dx || dx->Failed()) return false;
    const long t = EdType();
    const int dec = decimals();
    if (!dx->m_bSaveAndValidate) {
        if (fieldInUse(rs, field)) {
            if (rs->IsFieldNull(field)) {
                SetText("");
                return true;
            }
            rs->GetFieldValue(field, v);
        }
        SetVal(v);
        return true;
    }
    bool empty = true;
    const std::string text = GetText();
    double value = Vnt__EdGetVal(t, text.c_str(), nullptr, dec, &empty);
    if (!isNumberType(t)) return true;  // the type message was shown
    if (empty && fieldInUse(rs, field)) {
        rs->SetFieldNull(field);
        v = 0;
        return true;
    }
    const bool ok = empty || (Validate() && value >= lo && value <= hi);
    SetVal(value);  // the normalised text, also after a failure
    if (!ok) {
        dx->Fail(this);
        return false;
    }
    v = value;
    if (fieldInUse(rs, field)) {
        if (t <= VNT_ED_AMOUNT) rs->SetFieldValue(field, value);
        else rs->SetFieldValue(field, static_cast<long>(std::llround(value)));
    }
    return true;
}

bool VantoEd::DDX(VntDataExchange* dx, std::int8_t& v, VntRecordset* rs, const char* field) {
    return ddxInteger(*this, dx, v, rs, field, &VantoEd::ddxNumber);
}
bool VantoEd::DDX(VntDataExchange* dx, std::uint8_t& v, VntRecordset* rs, const char* field) {
    return ddxInteger(*this, dx, v, rs, field, &VantoEd::ddxNumber);
}
bool VantoEd::DDX(VntDataExchange* dx, std::int16_t& v, VntRecordset* rs, const char* field) {
    return ddxInteger(*this, dx, v, rs, field, &VantoEd::ddxNumber);
}
bool VantoEd::DDX(VntDataExchange* dx, std::uint16_t& v, VntRecordset* rs, const char* field) {
    return ddxInteger(*this, dx, v, rs, field, &VantoEd::ddxNumber);
}
bool VantoEd::DDX(VntDataExchange* dx, std::int32_t& v, VntRecordset* rs, const char* field) {
    return ddxInteger(*this, dx, v, rs, field, &VantoEd::ddxNumber);
}
bool VantoEd::DDX(VntDataExchange* dx, std::uint32_t& v, VntRecordset* rs, const char* field) {
    return ddxInteger(*this, dx, v, rs, field, &VantoEd::ddxNumber);
}
bool VantoEd::DDX(VntDataExchange* dx, double& v, VntRecordset* rs, const char* field) {
    return ddxNumber(dx, v, -std::numeric_limits<double>::max(), std::numeric_limits<double>::max(), rs, field);
}

bool VantoEd::DDX(VntDataExchange* dx, std::string& v, VntRecordset* rs, const char* field) {
    if (!dx || dx->Failed()) return false;
    const long t = EdType();
    if (!dx->m_bSaveAndValidate) {
        if (fieldInUse(rs, field)) {
            if (rs->IsFieldNull(field)) v.clear();
            else rs->GetFieldValue(field, v);
        }
        return Vnt__EdSetString(t, v.c_str(), nullptr, this);
    }
    std::string text;
    if (!Vnt__EdGetString(t, text, nullptr, this)) return true;  // the type message was shown
    v = text;
    if (fieldInUse(rs, field)) {
        if (v.empty()) rs->SetFieldNull(field);
        else rs->SetFieldValue(field, v.c_str());
    }
    return true;
}

bool VantoEd::ddxDate(VntDataExchange* dx, VNT_DATE& d, VntRecordset* rs, const char* field) {
    if (!dx || dx->Failed()) return false;
    const long t = EdType();
    if (!dx->m_bSaveAndValidate) {
        if (fieldInUse(rs, field)) {
            if (rs->IsFieldNull(field)) d = VNT_DATE{};
            else rs->GetFieldValue(field, d);
        }
        SetVal(d);
        return true;
    }
    VNT_DATE read{};
    bool empty = true;
    const std::string text = GetText();
    if (!Vnt__EdGetDate(t, text.c_str(), &read, &empty)) return true;  // the type message was shown
    const bool ok = empty || Validate();
    SetVal(read);
    if (!ok) {
        dx->Fail(this);
        return false;
    }
    d = read;
    if (fieldInUse(rs, field)) {
        if (empty) rs->SetFieldNull(field);
        else rs->SetFieldValue(field, d);
    }
    return true;
}

bool VantoEd::DDX(VntDataExchange* dx, VntDate& v, VntRecordset* rs, const char* field) {
    VNT_DATE d = v.date;
    if (!ddxDate(dx, d, rs, field)) return false;
    if (dx->m_bSaveAndValidate || fieldInUse(rs, field)) v.Set(d);
    return true;
}

bool VantoEd::DDX(VntDataExchange* dx, tagTIMESTAMP_STRUCT& v, VntRecordset* rs, const char* field) {
    VNT_DATE d{static_cast<std::uint16_t>(v.year), static_cast<std::uint8_t>(v.month),
               static_cast<std::uint8_t>(v.day)};
    if (!ddxDate(dx, d, rs, field)) return false;
    if (dx->m_bSaveAndValidate || fieldInUse(rs, field)) {
        v = tagTIMESTAMP_STRUCT{};
        v.year = static_cast<decltype(v.year)>(d.year);
        v.month = d.month;
        v.day = d.day;
    }
    return true;
}

// ---------------------------------------------------------------------------
// Text transfer by control number
// ---------------------------------------------------------------------------

bool Vnt_EdGetString(wxWindow* parent, int id, long type, std::string& text) {
    wxWindow* w = parent ? parent->FindWindow(id) : nullptr;
    if (auto* ed = dynamic_cast<CVantoEd*>(w)) return Vnt__EdGetString(type, text, nullptr, ed);
    auto* plain = dynamic_cast<wxTextCtrl*>(w);
    if (!Vnt_EdIsTextType(type)) return Vnt__EdGetString(type, text, nullptr, nullptr);  // the type message
    if (!plain) return false;
    text = fromWx(plain->GetValue());
    return true;
}

bool Vnt_EdSetString(wxWindow* parent, int id, long type, const char* text) {
    wxWindow* w = parent ? parent->FindWindow(id) : nullptr;
    if (auto* ed = dynamic_cast<CVantoEd*>(w)) return Vnt__EdSetString(type, text, nullptr, ed);
    auto* plain = dynamic_cast<wxTextCtrl*>(w);
    if (!Vnt_EdIsTextType(type)) return Vnt__EdSetString(type, text, nullptr, nullptr);
    if (!plain) return false;
    plain->ChangeValue(toWx(text ? text : ""));
    return true;
}
