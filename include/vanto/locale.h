// vanto/locale.h - national conventions and the text form of dates.
//
// The system's "intl" settings (currency places, decimal and thousands
// characters, the short date format, ...) are read once into VNT_SYS_INFO.
// From the short date format the library derives the order of day, month
// and year and a print format; every date text of the library is made and
// read here.
//
// On POSIX the settings come from the process's locale environment (LC_ALL,
// LC_<category>, LANG), never from the C run time's current locale, with the
// defaults below where the environment says nothing. An application or a
// test can put its own source in place (Vnt_SysSetIntlSource).
#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>

#include "vanto/base.h"

struct VNT_DATE;

/// The system's conventions, as loaded by Vnt_SysInfo.
struct VNT_SYS_INFO {
    std::int32_t iCurrDigits;  ///< currency decimal places ("iCurrDigits", 2)
    std::int32_t iCountry;     ///< country code ("iCountry", 49)
    char cDecimal;             ///< decimal character ("sDecimal", 0 when absent)
    char cThousand;            ///< thousands character ("sThousand", 0 when absent)
    char cDateSep1;            ///< first date separator (from the short date format, ".")
    char cDateSep2;            ///< second date separator (from the short date format, ".")
    char cTime;                ///< time separator ("sTime", 0 when absent)
    char szCurrency[7];        ///< currency symbol ("sCurrency", "")
    char szLanguage[4];        ///< three-letter language code ("sLanguage", "")
    char szShortDate[16];      ///< short date format ("sShortDate", "dd.MM.yyyy")
};
static_assert(sizeof(VNT_SYS_INFO) == 40, "VNT_SYS_INFO keeps its layout");

/// Argument of Vnt_SysInfo.
typedef int VNT_SI_TYPE;
constexpr VNT_SI_TYPE VNT_SI_RELOAD = -1;  ///< read the settings again
constexpr VNT_SI_TYPE VNT_SI_GET = -2;     ///< the record (loaded on first use)

/// Date orders of Vnt_SysDateOrder.
constexpr int VNT_DATE_ORDER_MDY = 0;
constexpr int VNT_DATE_ORDER_DMY = 1;
constexpr int VNT_DATE_ORDER_YMD = 2;

/// Where the "intl" values come from. `value` delivers the text of a key
/// ("iCurrDigits", "iCountry", "sDecimal", "sThousand", "sTime",
/// "sCurrency", "sLanguage", "sShortDate") in Windows-1252, or false when
/// the source has none (the default then applies).
class VANTO_API VntIntlSource {
public:
    virtual ~VntIntlSource();
    virtual bool value(const char* key, std::string& out) = 0;
};

/// A source from a fixed table, for tests and for applications that keep
/// their conventions in their own configuration.
///   VntIntlTable de{{"sShortDate", "dd.MM.yyyy"}, {"sDecimal", ","}};
class VANTO_API VntIntlTable : public VntIntlSource {
public:
    VntIntlTable() = default;
    VntIntlTable(std::initializer_list<std::pair<const std::string, std::string>> values)
        : values_(values) {}
    void set(const std::string& key, const std::string& value) { values_[key] = value; }
    bool value(const char* key, std::string& out) override;

private:
    std::map<std::string, std::string> values_;
};

/// Installs `source` (null: the host's locale environment again) and returns
/// the previous one (null when it was the host's). The record is not read
/// again until Vnt_SysInfo(VNT_SI_RELOAD).
VANTO_API VntIntlSource* Vnt_SysSetIntlSource(VntIntlSource* source);

/// The record: loaded on first use, read again with VNT_SI_RELOAD.
/// Loading resets the print format, reads every value (characters: the
/// first one of the text) and derives order, separators and widths from the
/// short date format:
///   "dd.MM.yyyy" => day-month-year, "%02d.%02d.%04d"
///   "d/M/yy"     => day-month-year, "%01d/%01d/%02d"
///   "yyyy-MM-dd" => year-month-day, "%04d-%02d-%02d"
///   anything not starting with "d" or "y" => month-day-year.
/// A field's width is counted up to the first separator, the last field's
/// up to the second: "dd-MM yyyy" => "%02d-%07d %00d".
VANTO_API const VNT_SYS_INFO& Vnt_SysInfo(VNT_SI_TYPE type);

/// Starts the locale settings with the library: reads the record afresh.
/// True.
VANTO_API bool Vnt_SysInit();
/// Ends them: the record is read again on its next use.
VANTO_API void Vnt_SysTerm();

/// The date order (VNT_DATE_ORDER_...) of the loaded record; all bits set
/// (-1) before the first loading.
VANTO_API int Vnt_SysDateOrder();
/// The date print format of the loaded record ("%02d.%02d.%04d"); before the
/// first loading "%02d_%02d_%02d".
VANTO_API const char* Vnt_SysDateFormat();

/// The text of a date in the locale's order into 20 bytes.
///  - any of year, month, day equal to 99: an empty text (20 zero bytes);
///  - a year 65535, a month or day 255: today's part;
///  - `twoDigits`: day and month with width 2 for this call;
///  - the year in full with `fullYear`, else modulo 100 when its field is
///    2 wide.
///   ("dd.MM.yyyy") 1999, 3, 5 => "05.03.1999"     ("d/M/yy") 1999, 3, 5, full => "5/3/1999"
VANTO_API void Vnt_SysDateToStr(int year, int month, int day, char (*buf)[20], bool twoDigits,
                                bool fullYear);

/// Reads a date in the locale's order. Blanks before the first field are
/// skipped; "*" or any other non-digit leaves a field unset; day and month
/// take at most two digits (one when two would be out of range), the year
/// every digit; a date separator after a number is skipped. Unset fields
/// take today's part, two-digit years are expanded and month and day
/// brought into range. An empty text gives the empty date 99.99.99.
/// `end`, when given, receives where reading stopped.
/// Returns false only when the date is exactly the fields as read and no
/// field had surplus digits; true when it was completed, corrected,
/// expanded or empty.
///   ("dd.MM.yyyy") "05.03.1999" => 5 March 1999, false
///   "5.3.99" => 5 March 1999, true       "45.03.1999" => 4 May 2003, true
VANTO_API bool Vnt_SysDateFromStr(VNT_DATE& date, const char* text, const char** end);
/// Vnt_SysDateFromStr in month-day-year order, whatever the locale's.
VANTO_API bool Vnt_SysDateFromUSStr(VNT_DATE& date, const char* text, const char** end);

/// Whether the year field of the short date format is at most two digits
/// wide. The width is held as a digit character and compared as a number,
/// so the answer is false for every format; callers rely on that.
VANTO_API bool Vnt_SysIsShortYear();

/// The operating system's version as major * 100 + minor (Linux 6.1: 601).
VANTO_API unsigned short Vnt_SysWinVer();
