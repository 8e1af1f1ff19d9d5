// Reading amounts from arbitrary bytes. The first byte chooses the places
// (as a signed number, so below 0 and beyond 20 too) and, by its low bit, a
// German or an English record; the rest is the text. The value read is
// written again in fields of several sizes, and every text form must fill
// its field exactly and stay within it.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "vanto/amount.h"
#include "vanto/locale.h"

namespace {

VntIntlTable german{{"sDecimal", ","}, {"iCurrDigits", "2"}};
VntIntlTable english{{"sDecimal", "."}, {"iCurrDigits", "2"}};

void check(bool ok) {
    if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const int decimals = static_cast<std::int8_t>(data[0]);
    Vnt_SysSetIntlSource(data[0] & 1 ? &german : &english);
    Vnt_SysInfo(VNT_SI_RELOAD);
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);  // cut at a NUL byte

    double value = 0;
    Vnt_FloatFromStr(text.c_str(), &value, decimals);
    const int places = Vnt_FloatDecPlaces(text.c_str());
    check(places >= 0 && static_cast<std::size_t>(places) < size);

    for (unsigned field : {2u, 8u, 16u, 41u, 64u}) {
        char buf[80];
        std::memset(buf, 'x', sizeof buf);
        Vnt_FloatToStr(buf, field, value, decimals, false);
        check(std::strlen(buf) == field - 1 && buf[field] == 'x');
        Vnt_FloatToStr(buf, field, value, decimals, true);
        check(std::strlen(buf) <= field - 1 && buf[field] == 'x');
    }
    return 0;
}
