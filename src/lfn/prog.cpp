// The program's own file, directory and name.
#include "base/strbuf.h"
#include "host/module.h"
#include "host/process.h"
#include "vanto/lfn.h"

namespace {

// Library path of the module's file: the program's for the null module,
// else the file the host loaded the module from.
bool progFile(VNT_HINSTANCE module, VNT_PATH& out) {
    std::string file = module ? vnt::host::moduleFile(module) : vnt::host::programFile();
    if (file.empty() || file.size() >= VNT_MAX_PATH) return false;
    vnt::copyBounded(out, file);
    return true;
}

bool deliver(char* buf, std::size_t size, const char* text) {
    if (buf == nullptr || size == 0) return false;
    return vnt::copyBounded(buf, size, text) == std::char_traits<char>::length(text);
}

}  // namespace

bool Vnt_LfnProgFileName(char* buf, std::size_t size, VNT_HINSTANCE module) {
    VNT_PATH file;
    return progFile(module, file) && deliver(buf, size, file);
}

bool Vnt_LfnProgDirName(char* buf, std::size_t size, VNT_HINSTANCE module) {
    VNT_PATH file, dir;
    if (!progFile(module, file)) return false;
    Vnt_LfnNameSplit(file, dir, nullptr, nullptr);
    return deliver(buf, size, dir);
}

bool Vnt_LfnProgName(char* buf, std::size_t size, VNT_HINSTANCE module) {
    VNT_PATH file, name;
    if (!progFile(module, file)) return false;
    Vnt_LfnNameSplit(file, nullptr, name, nullptr);
    return deliver(buf, size, name);
}
