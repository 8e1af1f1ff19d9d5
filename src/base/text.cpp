// Public face of the Windows-1252 conversions of the host layer.
#include "vanto/text.h"

#include "host/host.h"

std::string Vnt_TxtToUtf8(std::string_view cp1252) {
    std::string out;
    vnt::host::cp1252ToUtf8(cp1252.data(), cp1252.size(), out);
    return out;
}

bool Vnt_TxtFromUtf8(std::string_view utf8, std::string& out, std::size_t* badPos) {
    out.clear();
    return vnt::host::utf8ToCp1252(utf8.data(), utf8.size(), out, badPos);
}

unsigned char Vnt_TxtUpper(unsigned char c) { return vnt::host::cp1252Upper(c); }
