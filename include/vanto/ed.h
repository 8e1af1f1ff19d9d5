// vanto/ed.h - the conversions of the typed edit control.
//
// The typed edit control (VantoEd, vanto/wx/ed.h) shows numbers, amounts,
// dates and texts. Its conversions between text and typed values are the
// free functions below, so that plain edit windows can use them too.
//
// Edit types (the control's Type):
//
//   type      kind                    value form
//   0, 1      decimal number, amount  double, shown with the decimals given
//   2         16-bit integer          short
//   3         32-bit integer          long (32 bits)
//   4         single character        one character
//   5, 6, 9   text                    string
//   7         date                    VNT_DATE, timestamp or VntDate (size code)
//   8         no value                empty text
//
// Empty values: a double of the bits 0xC413C84846922B8C (VNT_ED_EMPTY_DOUBLE,
// about -9.123e19), a 16-bit 32484 and a 32-bit 0x4A4D4120 mean "no value"
// and are shown as empty text.
//
// Using a value operation on a type that has no such value, or a text
// operation on a non-text type, shows the type message
//   "---> Type %d does not support '%s'. <---\n(%s these operations)"
// with "Get/SetVal()" or "Get/SetText()", and "text types do not support"
// or "non-text types do not support". It is shown once for a type: the same
// type again in a row is not reported (another type's report re-arms it).
//
// One user-interface thread; the returned texts live in static buffers that
// the next call reuses.
#pragma once

#include <cstdint>
#include <string>

#include "vanto/base.h"
#include "vanto/date.h"
#include "vanto/ui/window.h"

/// Edit types.
enum : long {
    VNT_ED_DECIMAL = 0,
    VNT_ED_AMOUNT = 1,
    VNT_ED_SHORT = 2,
    VNT_ED_LONG = 3,
    VNT_ED_CHAR = 4,
    VNT_ED_TEXT = 5,
    VNT_ED_TEXT2 = 6,
    VNT_ED_DATE = 7,
    VNT_ED_NONE = 8,
    VNT_ED_TEXT3 = 9,
};

/// The empty markers.
VANTO_API extern const double VNT_ED_EMPTY_DOUBLE;       ///< bits 0xC413C84846922B8C
inline constexpr std::int16_t VNT_ED_EMPTY_SHORT = 32484;
inline constexpr std::int32_t VNT_ED_EMPTY_LONG = 0x4A4D4120;

/// Size codes of the date conversions: what the value pointer points at.
inline constexpr int VNT_ED_DATE_CTIME = 4;       ///< the old time class: refused when reading
inline constexpr int VNT_ED_DATE_TIMESTAMP = 16;  ///< tagTIMESTAMP_STRUCT (year, month, day used)
inline constexpr int VNT_ED_DATE_VNTDATE = 48;    ///< VntDate

/// The text types 5, 6 and 9.
VANTO_API bool Vnt_EdIsTextType(long type);

/// Text of a value, in a static buffer of 60 characters (the next call
/// reuses it). `value` (may be null) points at the value; without it
/// `dValue` is used (dates need the pointer). `sizeOrDec`: the decimals for
/// types 0 and 1 (below 0: the currency's), the size of the variable for
/// types 2 and 7.
///   type 0/1: *(double*)value or dValue; the empty marker => "";
///             else Vnt_FloatToStr left-aligned: (0, 1234.5, dec 2) => "1234.50"
///   type 2:   value: int16 (size 2) or int32 (size 4, low 16 bits), else
///             dValue; 32484 => ""; (2, -7) => "-7"; 70000 => "4464"
///   type 3:   int32 (value or dValue); 0x4A4D4120 => ""
///   type 4:   the character *(char*)value, or (char)dValue; 0 => ""
///   type 7:   no pointer => ""; size 16 a timestamp, size 4 and 48 a record
///             beginning like VNT_DATE (48 is a VntDate): Vnt_DateToStr
///             ("05.03.1999"); an all-zero date => ""; any other size: an
///             internal error of "Vnt_Ed", ""
///   type 8:   ""; types 5, 6, 9 and unknown types: the type message, ""
VANTO_API const char* Vnt__EdSetVal(long type, const void* value, double dValue, int sizeOrDec);

/// Value of a text. Returns it as double and, when `value` is given, also
/// stores it there (`sizeOrDec` as for Vnt__EdSetVal). `empty` (may be
/// null) tells whether the text was empty (blanks only count as empty).
///   type 0/1: Vnt_FloatFromStr with the decimals ("1,235" dec 2 => 1.24);
///             empty text => 0 (stored as 0)
///   type 2:   a 32-bit number, its low 16 bits; stored as int16 when size
///             is 2, not stored when size is 4 ("70000" => 4464)
///   type 3:   a 32-bit number ("12abc" => 12, "" => 0)
///   type 4:   the first character (its code; stored as char)
///   type 7:   Vnt_SysDateFromStr: size 16 fills a timestamp's date (time
///             zero), 48 a VntDate (its text renewed), 4 is refused
///             ("!Internal Error: CTime is no more supported for date
///             controls." as an internal error report of "Vnt_Ed"; result
///             0, nothing stored), any other size a VNT_DATE. Empty text
///             gives an all-zero date. Result 1 when a date was stored.
///   type 8:   reads nothing, 0
///   text types and unknown types: the type message, 0
VANTO_API double Vnt__EdGetVal(long type, const char* text, void* value, int sizeOrDec, bool* empty);

/// Text of a date (type 7 only; another type: the type message, "").
/// Null or all-zero date: "". Static buffer of 20 characters.
VANTO_API const char* Vnt__EdSetDate(long type, const VNT_DATE* date);
/// Reads a date (type 7 only; another type: the type message, false).
/// Empty text: all zeros, `empty` true. True when the text was read into
/// `date` (also when the date had to be completed).
VANTO_API bool Vnt__EdGetDate(long type, const char* text, VNT_DATE* date, bool* empty);

/// The text side of an edit control, for the text transfers below.
class VANTO_API VntEdTextItf {
public:
    virtual ~VntEdTextItf();
    virtual std::string EdGetText() const = 0;
    virtual void EdSetText(const char* text) = 0;
};

/// Window messages of plain edit windows (the window port's Send).
inline constexpr unsigned VNT_WM_SETTEXT = 0x000C;
inline constexpr unsigned VNT_WM_GETTEXT = 0x000D;
inline constexpr unsigned VNT_WM_GETTEXTLENGTH = 0x000E;

/// Text transfer, text types (5, 6, 9) only; another type: the type message
/// ("Get/SetText()", "non-text types do not support") and false.
/// Reads the whole text (any length) of the plain window `win` (through
/// WM_GETTEXTLENGTH and WM_GETTEXT) or, when `win` is null, of `control`.
/// False when both are null.
VANTO_API bool Vnt__EdGetString(long type, std::string& text, VNT_HWND win, const VntEdTextItf* control);
/// Writes `text` into the plain window (WM_SETTEXT) or the control.
VANTO_API bool Vnt__EdSetString(long type, const char* text, VNT_HWND win, VntEdTextItf* control);
