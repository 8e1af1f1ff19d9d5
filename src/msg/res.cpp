// Resource strings: the string tables that modules register (a host without
// resources has no other place for them), the library's own strings in
// German and English, and VntRes, which reads them like messages.
#include <cstdio>
#include <cstring>

#include "base/strbuf.h"
#include "msg/msg_state.h"

namespace {

// The library's own strings (Windows-1252). 30062 is German in both.
const char* const k30061De =
    "Interner Fehler! (%s / %d). Bitte schlie\xDF" "en Sie das Programm und starten Sie es neu.";
const char* const k30061En = "Internal Error! (%s / %d). Please close and restart the application.";
const char* const k30062 =
    "Bei wiederholtem Auftreten des Fehlers und Mi\xDFlingen eventueller L\xF6sungsvorschl\xE4ge "
    "notieren Sie bitte die vorangegangene Fehlermeldung (schieben Sie notfalls dieses Fenster "
    "zur Seite) und die folgenden Angaben und setzen sich unter Angabe der Seriennr. mit dem "
    "VANTO-Support in Verbindung:\n\n%s\n\nQuelldatei/Zeile: %s/%d";

const char* const kNoString = "!Internal Error - did not find resource string.";

constexpr std::size_t kResSize = 1024;

// Its address is the library's own module handle.
const char g_libModule = 0;

const char* builtIn(long id) {
    switch (id) {
        case 30061: return vnt::msg::textState().english ? k30061En : k30061De;
        case 30062: return k30062;
        default: return nullptr;
    }
}

}  // namespace

using namespace vnt::msg;

void Vnt_ResRegister(VNT_HINSTANCE module, const VNT_RES_STRING* table, std::size_t count) {
    auto& res = textState().res;
    if (!table || count == 0) {
        res.erase(module);
        return;
    }
    std::map<long, std::string> strings;
    for (std::size_t i = 0; i < count; ++i) strings.emplace(table[i].id, table[i].text ? table[i].text : "");
    res[module] = std::move(strings);
}

VNT_HINSTANCE Vnt_ResLibInstance() {
    return reinterpret_cast<VNT_HINSTANCE>(const_cast<char*>(&g_libModule));
}

/*
 * A registered table wins; the library's own module falls back to its
 * built-in strings in the current language.
 */
bool Vnt_ResLoadString(VNT_HINSTANCE module, long id, char* buf, unsigned size) {
    const auto& res = textState().res;
    const char* text = nullptr;
    if (auto m = res.find(module); m != res.end())
        if (auto s = m->second.find(id); s != m->second.end()) text = s->second.c_str();
    if (!text && module == Vnt_ResLibInstance()) text = builtIn(id);
    vnt::copyBounded(buf, size, text ? text : "");
    return text != nullptr;
}

void Vnt_ResSetLanguage(const char* lang) {
    textState().english = lang && (lang[0] == 'E' || lang[0] == 'e') && (lang[1] == 'N' || lang[1] == 'n');
    textState().languageSet = true;
}

const char* Vnt_ResLanguage() { return textState().english ? "ENU" : "DEU"; }

VntRes::VntRes() : buf{}, title_{}, fmt_{} {}

void VntRes::setup(VNT_HINSTANCE inst, VNT_HWND win) {
    inst_ = inst;
    win_ = win;
}

void VntRes::set_inst(VNT_HINSTANCE inst) { inst_ = inst; }
void VntRes::set_win(VNT_HWND win) { win_ = win; }

void VntRes::set_title(VntMsgRef title) {
    if (title.Raw() == 0) {  // null text or 0
        title_[0] = '\0';
        return;
    }
    char text[kResSize];
    load(title, text, nullptr);
    vnt::copyBounded(title_, text);
}

/*
 * Loads a string into `out` (kResSize bytes): an ID outside 1..65535 is a
 * literal text; an ID comes from the module's string table. ID 0 takes the
 * text from the first variable argument, of which only 3 characters are
 * copied: kept for compatibility.
 */
bool VntRes::load(VntMsgRef id, char* out, va_list* firstArg) {
    if (!id.IsText() && id.Raw() == 0) {
        if (!firstArg) {  // no argument to take the text from
            vnt::copyBounded(out, kResSize, kNoString);
            return false;
        }
        vnt::copyBounded(out, 4, va_arg(*firstArg, const char*));
        return true;
    }
    if (!id.IsId()) {
        vnt::copyBounded(out, kResSize, id.Text());
        return true;
    }
    if (inst_ && Vnt_ResLoadString(inst_, id.Id(), out, kResSize)) return true;
    vnt::copyBounded(out, kResSize, kNoString);
    return false;
}

// Loads the string into the format buffer and formats it with the
// arguments into the next public buffer.
char* VntRes::vstr(VntMsgRef id, va_list* args) {
    load(id, fmt_, args);
    char* out = buf[next_++ % 4];
    formatInto(out, kResSize, fmt_, *args);
    return out;
}

char* VntRes::str(VntMsgRef id, ...) {
    va_list ap;
    va_start(ap, id);
    char* out = vstr(id, &ap);
    va_end(ap);
    return out;
}

char* VntRes::str_load(VntMsgRef id) {
    char* out = buf[next_++ % 4];
    load(id, out, nullptr);
    return out;
}

unsigned VntRes::str_get(VntMsgRef id, char* dst, unsigned size, ...) {
    va_list ap;
    va_start(ap, size);
    vstr(id, &ap);
    va_end(ap);
    return str_cpy(dst, size);
}

unsigned VntRes::str_cpy(char* dst, unsigned size) {
    if (!dst || size == 0) return 0;
    return unsigned(vnt::copyBounded(dst, size, buf[(next_ + 3) % 4]));
}
