// Field values of a record set and their conversions: what a field holds,
// how it reads as another kind, and the public field types in and out of
// it. No driver is involved; the record set and its cursor build on this.
#pragma once

#include <climits>
#include <optional>
#include <string>
#include <string_view>

#include "cal/odbc_timestamp.h"
#include "vanto/date.h"
#include "vanto/db.h"

namespace vnt::db {

using Kind = VntDbKind;

/// A date and time; fraction in nanoseconds.
struct Stamp {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    unsigned long fraction = 0;
};

/// One field's value.
struct Value {
    bool null = true;
    Kind kind = Kind::Text;
    std::string text;  ///< Text, Decimal, Binary
    long long i = 0;   ///< Integer
    double d = 0;      ///< Double
    Stamp ts;          ///< Date, Time, Timestamp
};

/// The text of a value as a text field shows it: "42", "10.5", "2024-02-29",
/// "13:14:15.5", "2024-02-29 13:14:15"; texts, DECIMALs and bytes as they are.
std::string textOf(const Value& v);

/// The value of a decimal text ("  -12,5e3 ": sign, digits, one "." or ",",
/// digits, an exponent), read with the amount functions where it fits them
/// so that "10.5" and "10,5" read the same in every locale. False for
/// anything else ("12abc", "").
bool parseNumber(std::string_view s, double& d);

/// The value `src` as a value of kind `to`; `decimals` are the target's
/// places (DECIMAL). False when it does not convert (see GetFieldValue in
/// vanto/db.h for the rules): "10.00" => Integer 10, "10.5" => false,
/// "2024-02-29T13:14:15" => Timestamp, a Time => Date false.
bool convert(const Value& src, Kind to, int decimals, Value& out);

// -- the public field types ----------------------------------------------------

/// How a field reads as `T`: `kind` is the kind converted to, `direct` takes a
/// field that already has a fitting kind (nullopt when it has not: convert
/// then), `from` takes the converted value (false when it does not fit `T`).
template <class T>
struct FieldType;

template <>
struct FieldType<std::string> {
    static constexpr Kind kind = Kind::Text;
    static std::optional<bool> direct(const Value& v, std::string& out) {
        if (v.kind != Kind::Text && v.kind != Kind::Decimal && v.kind != Kind::Binary) return std::nullopt;
        out = v.text;
        return true;
    }
    static bool from(const Value& v, std::string& out) { return out = v.text, true; }
};

template <>
struct FieldType<long> {
    static constexpr Kind kind = Kind::Integer;
    static std::optional<bool> direct(const Value& v, long& out) {
        if (v.kind != Kind::Integer || v.i < LONG_MIN || v.i > LONG_MAX) return std::nullopt;
        out = static_cast<long>(v.i);
        return true;
    }
    static bool from(const Value& v, long& out) {
        if (v.i < LONG_MIN || v.i > LONG_MAX) return false;
        out = static_cast<long>(v.i);
        return true;
    }
};

template <>
struct FieldType<double> {
    static constexpr Kind kind = Kind::Double;
    // Texts and DECIMALs are read here, so that the usual case needs no copy.
    static std::optional<bool> direct(const Value& v, double& out) {
        if (v.kind == Kind::Double) return out = v.d, true;
        if (v.kind == Kind::Decimal || v.kind == Kind::Text) return parseNumber(v.text, out);
        return std::nullopt;
    }
    static bool from(const Value& v, double& out) { return out = v.d, true; }
};

template <>
struct FieldType<VNT_DATE> {
    static constexpr Kind kind = Kind::Date;
    static std::optional<bool> direct(const Value& v, VNT_DATE& out) {
        if (v.kind != Kind::Date) return std::nullopt;
        return from(v, out);
    }
    static bool from(const Value& v, VNT_DATE& out) {
        out = VNT_DATE{static_cast<std::uint16_t>(v.ts.year), static_cast<std::uint8_t>(v.ts.month),
                       static_cast<std::uint8_t>(v.ts.day)};
        return true;
    }
};

template <>
struct FieldType<VNT_TIME> {
    static constexpr Kind kind = Kind::Time;
    static std::optional<bool> direct(const Value&, VNT_TIME&) { return std::nullopt; }
    static bool from(const Value& v, VNT_TIME& out) {
        out = VNT_TIME{static_cast<std::uint8_t>(v.ts.hour), static_cast<std::uint8_t>(v.ts.minute),
                       static_cast<std::uint8_t>(v.ts.second), static_cast<std::uint8_t>(v.ts.fraction / 10000000ul)};
        return true;
    }
};

template <>
struct FieldType<tagTIMESTAMP_STRUCT> {
    static constexpr Kind kind = Kind::Timestamp;
    static std::optional<bool> direct(const Value&, tagTIMESTAMP_STRUCT&) { return std::nullopt; }
    static bool from(const Value& v, tagTIMESTAMP_STRUCT& out) {
        out = tagTIMESTAMP_STRUCT{static_cast<SQLSMALLINT>(v.ts.year), static_cast<SQLUSMALLINT>(v.ts.month),
                                  static_cast<SQLUSMALLINT>(v.ts.day), static_cast<SQLUSMALLINT>(v.ts.hour),
                                  static_cast<SQLUSMALLINT>(v.ts.minute), static_cast<SQLUSMALLINT>(v.ts.second),
                                  static_cast<SQLUINTEGER>(v.ts.fraction)};
        return true;
    }
};

/// Reads `v` (null when there is no record) as `T`: the field as it is when
/// its kind fits, else converted. False, with `out` emptied or zeroed, for
/// no value, null, or a value that does not convert.
template <class T>
bool readValue(const Value* v, T& out) {
    using F = FieldType<T>;
    if (v && !v->null)
        if (const std::optional<bool> taken = F::direct(*v, out)) {
            if (!*taken) out = T{};
            return *taken;
        }
    Value converted;
    if (v && convert(*v, F::kind, 0, converted) && F::from(converted, out)) return true;
    out = T{};
    return false;
}

/// The value of a field a caller sets; a null text is null.
Value valueOf(const char* text);
Value valueOf(long i);
Value valueOf(double d);
Value valueOf(const VNT_DATE& date);
Value valueOf(const tagTIMESTAMP_STRUCT& ts);
Value valueOf(const VntDate& date);

}  // namespace vnt::db
