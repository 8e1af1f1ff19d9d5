// vanto/amount.h - decimal amounts and money.
//
// Amounts are doubles. Every amount passes through one rounding rule:
// halves are rounded away from zero, and the remainder is judged in single
// precision, so the nearest double of 2.345 (a hair below it) still rounds
// to 2.35. Money is rounded to the currency's decimal places of the locale
// (vanto/locale.h, "iCurrDigits"). Texts use the locale's decimal character;
// reading accepts "," and "." alike and never depends on the C run time's
// locale.
#pragma once

#include <string>

#include "vanto/base.h"

/// Rounds `*value` in place to `decimals` places (below 0: the currency
/// places; more than 12: 12). True when the value changed by 2^-52 or more.
/// The scale 10^decimals is held in single precision, so at 11 and 12 places
/// the result is a multiple of 1/99999997952 or 1/999999995904, not of the
/// decimal unit (0.1 at 12 places: 0.0999999999996). Infinities and NaN stay
/// as they are (false); a null `value` is an internal error (false).
///   -2.345, 2 => -2.35     2.344999, 2 => 2.34     2.345, 2 => 2.35
///   2.3449999999, 2 => 2.35 (remainder within single precision of a half)
VANTO_API bool Vnt_FloatRound(double* value, int decimals);
/// Vnt_FloatRound(value, 2).
VANTO_API bool Vnt_FloatRound2(double* value);
/// Vnt_FloatRound(value, currency places).
VANTO_API bool Vnt_MoneyRound(double* value);
/// True when `value` rounded to the currency places is zero.
///   (2 places) 0.004 => true     0.005 => false
VANTO_API bool Vnt_MoneyIsNull(double value);

/// The percentage amount, rounded as money. `included`: the percentage is
/// part of `amount` (tax in a gross price): amount / (100 + percent) *
/// percent; otherwise amount * percent / 100. A percent of -100 with
/// `included` divides by zero as doubles do (infinite or NaN result).
///   119.00, 19%, included => 19.00     100.00, 19% => 19.00
VANTO_API void Vnt_FloatProzBetrag(double* out, double amount, double percent, bool included);
/// Applies a discount in place (`deduct`: amount - amount * percent / 100),
/// or takes it back (amount + amount / (100 - percent) * percent); the
/// discount is rounded as money, the amount is not. Taking back 100 percent
/// divides by zero as doubles do.
///   200.00, 10%, deduct => 180.00     180.00, 10% => 200.00
VANTO_API void Vnt_FloatRabattBetrag(double* amount, double percent, bool deduct);
/// Adds (`add`) or subtracts the percentage amount of the unrounded amount
/// to the amount rounded as money. Net to gross: included false, add true;
/// gross to net: included true, add false.
VANTO_API void Vnt_FloatBetrag(double* amount, double percent, bool included, bool add);

/// The text of `value` with `decimals` places (below 0: the currency places;
/// above 20: 20; 0: no decimal character) into `buf` of `size` bytes:
/// right-aligned in size - 1 characters, or from the start with
/// `leftAligned`; "-" for negative values, no thousands separators.
/// The value is rounded with Vnt_FloatRound first, so above 12 places the
/// 12-place value shows (0.1 at 20 places: "0.09999999999960000...").
/// The decimal character is the locale's ("." when the record has none);
/// the C run time's locale plays no part.
/// A value that does not fit (judged on the rounded text: 9.995 needs
/// "10.00"), an infinity or a NaN fills size - 1 characters with "?" and
/// counts an overflow. A non-zero value that rounds to zero is written as
/// zero, without "-", and counted as too small.
/// Returns true when the text did not fit or is rounded, that is when the
/// digit one place beyond `decimals` is not 0 (so 0.0004 at 2 places gives
/// "0.00" and false). False, with nothing written, for a null `buf` or a
/// `size` of 1 or less, after an internal error (code 1).
///   1234.5, 2, size 9 => " 1234.50"   size 8 => "1234.50"   size 7 => "??????", true
///   -0.05, 2 => "-0.05"     0.004, 2 => "0.00", true (small)
VANTO_API bool Vnt_FloatToStr(char* buf, unsigned size, double value, int decimals,
                              bool leftAligned);
/// The same through a 60-byte buffer into `text` (right-aligned: 59 wide).
VANTO_API bool Vnt_FloatToStr(std::string& text, double value, int decimals, bool leftAligned);
/// Vnt_FloatToStr with the currency places.
VANTO_API bool Vnt_MoneyToStr(char* buf, unsigned size, double value, bool leftAligned);
VANTO_API bool Vnt_MoneyToStr(std::string& text, double value, bool leftAligned);

/// Reads a decimal value: blanks, a sign, digits, the first "," or "." as
/// the decimal point, digits, an exponent ("1e3"); reading stops at the
/// first character that cannot belong to the number, and no number reads
/// as 0. Infinities, NaNs and hexadecimal numbers are not read.
/// The value is then rounded to `decimals` places by way of its text
/// (Vnt_FloatToStr into 40 characters and read again); below 0, the places
/// are Vnt_FloatDecPlaces(text), counted after the locale's decimal
/// character only (German: "3.14159" => 0 places => 3). A value whose text
/// does not fit 40 characters (beyond double's range too) reads as 0.
/// Returns what the text form returned; the overflow and small-value
/// counters are left as they were. At most 40 characters are read, in a
/// static buffer: not re-entrant. A null `text` or `value` is an internal
/// error (false).
///   "1,25" => 1.25     "-3.5kg" => -3.5     "2,345", 2 => 2.35, true
///   "1.234,5", 2 => 1.23, true (the second separator ends the number)
VANTO_API bool Vnt_FloatFromStr(const char* text, double* value, int decimals);
VANTO_API bool Vnt_FloatFromStr(const char* text, int decimals, double* value);
/// Vnt_FloatFromStr with the currency places.
VANTO_API bool Vnt_MoneyFromStr(const char* text, double* value);

/// The digits directly after the first decimal character of the locale in
/// `text` ("." when the record has none); 0 when there is none or `text` is
/// null.   "12,345" (",") => 3     "12.345" (",") => 0
VANTO_API int Vnt_FloatDecPlaces(const char* text);

/// The counters of the text form: values that did not fit their field, and
/// values too small to show any digit.
VANTO_API long Vnt_FloatOverflowCount();
VANTO_API long Vnt_FloatSmallCount();
