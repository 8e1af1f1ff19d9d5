// vanto/wx/ed.h - the typed edit control: CVantoEd and VantoEd.
//
// CVantoEd is a one-line wx text control with the typed edit control's
// properties, one get and one set operation each (GetMaxLength and
// SetMaxLength, ...). VantoEd adds the value layer: it converts between
// the text and typed values by the control's edit type (vanto/ed.h),
// validates, and exchanges values with dialog data and record set fields.
//
// Typing is filtered by the type:
//   0, 1 (decimal, amount)  digits; the locale's decimal character (typing
//                           "." or "," gives it) once, and not with DecPlaces 0
//   2, 3 (integers)         digits
//   7 (date)                digits, the locale's date separators, "/", ".", "-"
//   4 (character)           any one character
//   5, 6, 9 (text)          anything
//   8 (no value)            nothing
// With Signed, the number types also take one "-" at the front. A paste
// keeps only the characters typing would take. MaxLength (0: no limit)
// holds for typing and pasting.
//
// Applications place the control in their XRC dialogs as class "VantoEd":
//
//   <object class="VantoEd" name="1001">
//     <type>1</type> <decplaces>2</decplaces> <signed>1</signed>
//     <minval>0</minval> <maxval>99999.99</maxval> <alignh>1</alignh>
//     <maxlength>12</maxlength> <value>12,50</value>
//   </object>
//
// Further parameters: readonly, displayonly, alignv, usecolors, usefont,
// dfltval, dflttext, appearance, borderstyle, backcolor, forecolor (32-bit
// 0x00BBGGRR numbers); the usual window parameters (size, font, enabled,
// hidden, tooltip) as for any XRC control. The handler is installed with
// the library's resources (Vnt_WxInit).
//
// Data exchange, as dialogs do it:
//
//   VntDataExchange dx(this, true);       // true: from the controls to the data
//   amount.DDX(&dx, m_amount);            // VantoEd amount (type 1)
//   date.DDX(&dx, m_date, &rs, "Datum");  // and into the record set field
//   if (dx.Failed()) return false;        // a failure beeped and took the focus
#pragma once

#include <cstdint>
#include <string>

#include <wx/bitmap.h>
#include <wx/font.h>
#include <wx/textctrl.h>

#include "vanto/base.h"
#include "vanto/date.h"
#include "vanto/ed.h"

class VntRecordset;

/// One data exchange between a dialog's controls and its data. The first
/// failure marks it failed (beep, focus and selection to the control); the
/// exchanges after it do nothing.
class VANTO_API VntDataExchange {
public:
    VntDataExchange(wxWindow* dlg, bool saveAndValidate) : m_pDlgWnd(dlg), m_bSaveAndValidate(saveAndValidate) {}
    wxWindow* m_pDlgWnd;       ///< the dialog
    bool m_bSaveAndValidate;   ///< true: controls to data; false: data to controls
    bool Failed() const { return failed_; }
    /// Marks the exchange failed: beeps and puts the focus on `ctl` (may be null).
    void Fail(wxWindow* ctl);

private:
    bool failed_ = false;
};
using CDataExchange = VntDataExchange;

/// Horizontal alignment values of AlignH.
enum : short { VNT_ED_ALIGN_LEFT = 0, VNT_ED_ALIGN_RIGHT = 1, VNT_ED_ALIGN_CENTER = 2 };

/// The property wrapper. Colours are 32-bit 0x00BBGGRR values.
class VANTO_API CVantoEd : public wxTextCtrl, public VntEdTextItf {
public:
    CVantoEd() = default;
    CVantoEd(wxWindow* parent, wxWindowID id, long type = VNT_ED_TEXT, const wxPoint& pos = wxDefaultPosition,
             const wxSize& size = wxDefaultSize, long style = 0, const wxString& name = "VantoEd");
    /// Two-step creation (as XRC does): the type is set before or after.
    bool Create(wxWindow* parent, wxWindowID id, const wxPoint& pos = wxDefaultPosition,
                const wxSize& size = wxDefaultSize, long style = 0, const wxString& name = "VantoEd");

    long GetType() const { return type_; }
    void SetType(long type);
    /// 0: no limit. Also wx's SetMaxLength.
    short GetMaxLength() const { return maxLength_; }
    void SetMaxLength(unsigned long len) override;
    double GetMinVal() const { return minVal_; }
    void SetMinVal(double v) { minVal_ = v; }
    double GetMaxVal() const { return maxVal_; }
    void SetMaxVal(double v) { maxVal_ = v; }
    /// The value SetDefault shows when DfltText is empty.
    double GetDfltVal() const { return dfltVal_; }
    void SetDfltVal(double v) { dfltVal_ = v; }
    /// Negative numbers may be typed (a "-" at the front) and pass Validate.
    bool GetSigned() const { return signed_; }
    void SetSigned(bool on) { signed_ = on; }
    bool GetReadOnly() const { return readOnly_; }
    void SetReadOnly(bool on);
    /// Shows a value only: read-only, in the dialog's colour, and skipped
    /// by the Tab key.
    bool GetDisplayOnly() const { return displayOnly_; }
    void SetDisplayOnly(bool on);
    short GetAlignH() const { return alignH_; }
    void SetAlignH(short align);
    /// Kept; a one-line field is always centred vertically.
    short GetAlignV() const { return alignV_; }
    void SetAlignV(short align) { alignV_ = align; }
    /// With UseColors the BackColor and ForeColor are shown, else the
    /// system's colours.
    bool GetUseColors() const { return useColors_; }
    void SetUseColors(bool on);
    /// With UseFont the Font is shown, else the dialog's font.
    bool GetUseFont() const { return useFont_; }
    void SetUseFont(bool on);
    /// Picture and UsePicture are kept and have no effect.
    bool GetUsePicture() const { return usePicture_; }
    void SetUsePicture(bool on) { usePicture_ = on; }
    const wxBitmap& GetPicture() const { return picture_; }
    void SetPicture(const wxBitmap& b) { picture_ = b; }
    /// The text SetDefault shows (empty: DfltVal is shown).
    std::string GetDfltText() const { return dfltText_; }
    void SetDfltText(const char* text) { dfltText_ = text ? text : ""; }
    /// Decimals of types 0 and 1.
    short GetDecPlaces() const { return decPlaces_; }
    void SetDecPlaces(short n) { decPlaces_ = n; }
    bool GetEnabled() const { return IsEnabled(); }
    void SetEnabled(bool on) { Enable(on); }
    /// 0 flat, 1 three-dimensional: kept; GTK draws one style.
    short GetAppearance() const { return appearance_; }
    void SetAppearance(short a) { appearance_ = a; }
    /// The text, Windows-1252.
    std::string GetText() const;
    void SetText(const char* text);
    /// 0 none, 1 single. Takes effect when given before creation (XRC) or
    /// before the control is first shown.
    short GetBorderStyle() const { return borderStyle_; }
    void SetBorderStyle(short s);
    /// The Font property (what the control shows with UseFont).
    wxFont GetFont() const { return font_.IsOk() ? font_ : wxTextCtrl::GetFont(); }
    bool SetFont(const wxFont& font) override;
    unsigned long GetBackColor() const { return backColor_; }
    void SetBackColor(unsigned long c);
    unsigned long GetForeColor() const { return foreColor_; }
    void SetForeColor(unsigned long c);

    /// Shows DfltText, or DfltVal when DfltText is empty.
    virtual void SetDefault();
    /// The selection (start, end) as character positions.
    void GetSel(long* start, long* end) const;
    void SetSel(long start, long end) { SetSelection(start, end); }
    // Refresh: wx's own.

    bool AcceptsFocusFromKeyboard() const override;

    /// VntEdTextItf: the text.
    std::string EdGetText() const override { return GetText(); }
    void EdSetText(const char* text) override { SetText(text); }

    /// True when typing `c` at `pos` into `text` (without the selection
    /// [selFrom, selTo)) is allowed by the type.
    bool AcceptsChar(wchar_t c, long pos, const wxString& text, long selFrom, long selTo) const;

protected:
    void applyColors();
    void applyFont();

private:
    void onChar(wxKeyEvent& e);
    void pinHeight();
    void onLookChanged(wxEvent& e);
    void onPaste(wxClipboardTextEvent& e);

    long type_ = VNT_ED_TEXT;
    short maxLength_ = 0;
    double minVal_ = 0, maxVal_ = 0, dfltVal_ = 0;
    bool signed_ = false, readOnly_ = false, displayOnly_ = false;
    short alignH_ = VNT_ED_ALIGN_LEFT, alignV_ = 0;
    bool useColors_ = false, useFont_ = false, usePicture_ = false;
    wxBitmap picture_;
    std::string dfltText_;
    short decPlaces_ = 2;
    short appearance_ = 1, borderStyle_ = 1;
    bool autoHeight_ = true;  // no height given: that of a plain text field
    wxFont font_;
    unsigned long backColor_ = 0xFFFFFF, foreColor_ = 0;

    wxDECLARE_DYNAMIC_CLASS(CVantoEd);
};

/// The value layer.
///
/// Validate: a value of the number types (0-3) passes when it lies within
/// [MinVal, MaxVal], both bounds inclusive, and is not negative unless
/// Signed; with MinVal and MaxVal both 0 there is no range. Empty text
/// passes. A date passes when it is a calendar date (or empty).
///
/// DDX (numbers and dates): from the control, the text is converted; if it
/// was not empty, the value must pass Validate and fit the variable (an
/// 8-bit variable takes -128..127 or 0..255, and so on); then the control's
/// text is rewritten from the value, so the user sees the normalised value.
/// A failure beeps, takes the focus and stops the exchange; the variable
/// keeps its old value. To the control, the value is shown.
/// With a record set and a field name: to the control the value is first
/// read from the field (null: shown empty); from the control it is also
/// written into the field (the record set in Edit or AddNew), empty text
/// making the field null. Strings are transferred whole (text types only).
class VANTO_API VantoEd : public CVantoEd {
public:
    VantoEd() = default;
    VantoEd(wxWindow* parent, wxWindowID id, long type = VNT_ED_TEXT, const wxPoint& pos = wxDefaultPosition,
            const wxSize& size = wxDefaultSize, long style = 0, const wxString& name = "VantoEd")
        : CVantoEd(parent, id, type, pos, size, style, name) {}

    /// The edit type: read from the control once, then kept.
    long EdType();

    double GetVal();
    /// With the control's decimals for types 0 and 1, 0 for the others.
    void SetVal(double value);
    /// Dates (type 7; another type: the type message). False when the
    /// text is empty (the date is then all zero) or the type is wrong.
    bool GetVal(VNT_DATE& date);
    void SetVal(const VNT_DATE& date);
    bool GetVal(tagTIMESTAMP_STRUCT& ts);
    void SetVal(const tagTIMESTAMP_STRUCT& ts);
    bool GetVal(VntDate& date);
    void SetVal(const VntDate& date);
    /// Text (text types; another type: the type message).
    void SetVal(const char* text);

    /// See the class comment.
    bool Validate() override;

    bool DDX(VntDataExchange* dx, std::int8_t& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, std::uint8_t& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, std::int16_t& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, std::uint16_t& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, std::int32_t& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, std::uint32_t& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, double& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, std::string& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, VntDate& v, VntRecordset* rs = nullptr, const char* field = nullptr);
    bool DDX(VntDataExchange* dx, tagTIMESTAMP_STRUCT& v, VntRecordset* rs = nullptr,
             const char* field = nullptr);

private:
    bool ddxNumber(VntDataExchange* dx, double& v, double lo, double hi, VntRecordset* rs, const char* field);
    bool ddxDate(VntDataExchange* dx, VNT_DATE& d, VntRecordset* rs, const char* field);
    int decimals();
    long cachedType_ = -1;  // -1: not read yet

    wxDECLARE_DYNAMIC_CLASS(VantoEd);
};

/// Text transfer of a control in `parent` by number: a VantoEd's Text or a
/// plain text control's value; text types (5, 6, 9) only, else the type
/// message and false. False also when there is no such control.
VANTO_API bool Vnt_EdGetString(wxWindow* parent, int id, long type, std::string& text);
VANTO_API bool Vnt_EdSetString(wxWindow* parent, int id, long type, const char* text);
