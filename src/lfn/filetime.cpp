// The packed date and time of the old file system, used for file times and
// by dates that are stored in that form.
#include "vanto/lfn.h"

std::uint16_t Vnt_LfnTimePack(const VNT_TIME& t) {
    return static_cast<std::uint16_t>(t.hour * 2048 + t.minute * 32 + t.second / 2);
}

std::uint16_t Vnt_LfnDatePack(const VNT_DATE& d) {
    int year = d.year;
    if (year < 80)
        year += 2000;
    else if (year < 100)
        year += 1900;
    if (year < 1980) year = 1980;
    return static_cast<std::uint16_t>(((year - 1980) % 128) * 512 + (d.month % 16) * 32 + d.day % 32);
}

void Vnt_LfnTimeUnpack(std::uint16_t packed, VNT_TIME* t) {
    if (!t) return;
    t->hour = static_cast<std::uint8_t>(packed / 2048);
    t->minute = static_cast<std::uint8_t>((packed / 32) % 64);
    t->second = static_cast<std::uint8_t>((packed % 32) * 2);
    t->fraction = 0;
}

void Vnt_LfnDateUnpack(std::uint16_t packed, VNT_DATE* d) {
    if (!d) return;
    d->year = static_cast<std::uint16_t>(packed / 512 + 1980);
    d->month = static_cast<std::uint8_t>((packed / 32) % 16);
    d->day = static_cast<std::uint8_t>(packed % 32);
}
