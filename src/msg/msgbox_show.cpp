// Showing the message box: two nesting levels and the plain fallback for a
// third, the memory of switched-off messages in "Msg.ini", the details page
// behind the Support button, the Help button, the plain box of Vnt_MsgBox,
// and the box's copy and editor actions.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "base/strbuf.h"
#include "host/file.h"
#include "host/process.h"
#include "msg/msgbox_internal.h"
#include "msg/upcalls.h"
#include "vanto/lfn.h"
#include "vanto/ui/help.h"
#include "vanto/ui/window.h"

namespace vnt::msg::box {
namespace {

constexpr long kDetailsTemplate = 62001;  // the details page: description, source file, line
constexpr long kHelpKeyDetails = 62005;   // help index entry of the details page
constexpr long kHelpKeyNone = 62006;      // help index entry of a message without help
constexpr long kResThirdBox = 30061;      // library string: "Internal Error! (%s / %d). ..."
constexpr long kResSupport = 30062;       // library string: the support text, a details template

// Last resorts when neither the system library nor the library's strings
// give a usable text.
constexpr const char* kThirdBoxText = "Internal Error! (%s / %d). Please close and restart the application.";
constexpr const char* kDetailsText = "%s\n\n%s/%d";
constexpr const char* kDefaultDescription = "(unknown)";
constexpr const char* kUnknownFile = "(unknown)";

// The check that reports a checkbox on a literal text: file and line as the
// library has always named them.
constexpr const char* kSource301 = "Msg/DlgMsg";
constexpr int kLine301 = 1703;
constexpr const char* kText301 =
    "!okInternal error (301): Checkbox messages MUST use a message ID (not a string address).";

constexpr const char* kText302 = "Vnt_Msg-Interface: Internal Error 302";
constexpr const char* kTitle302 = "Vnt_Msg-Interface";

/*
 * True when the printf directives of `fmt` are exactly `kinds`, in order
 * ('s' a string, 'd' an int). A message text is data: one whose directives
 * do not match the arguments would read garbage, so it is not used.
 */
bool directivesAre(std::string_view fmt, std::string_view kinds) {
    std::string got;
    for (std::size_t i = 0; i < fmt.size(); ++i) {
        if (fmt[i] != '%') continue;
        if (++i >= fmt.size()) return false;
        if (fmt[i] == '%') continue;
        while (i < fmt.size() && std::strchr("-+ #0", fmt[i])) ++i;
        while (i < fmt.size() && fmt[i] >= '0' && fmt[i] <= '9') ++i;
        if (i < fmt.size() && fmt[i] == '.') {
            ++i;
            while (i < fmt.size() && fmt[i] >= '0' && fmt[i] <= '9') ++i;
        }
        if (i >= fmt.size()) return false;
        if (fmt[i] == 'd' || fmt[i] == 'i') got += 'd';
        else if (fmt[i] == 's') got += 's';
        else return false;
    }
    return got == kinds;
}

// `fmt` (checked by directivesAre) with the arguments, at most 1023 characters.
template <typename... Args>
std::string format(const std::string& fmt, Args... args) {
    std::vector<char> buf(kTextSize);
    int n = std::snprintf(buf.data(), buf.size(), fmt.c_str(), args...);
    if (n < 0) return {};
    return std::string(buf.data(), std::min<std::size_t>(static_cast<std::size_t>(n), buf.size() - 1));
}

// A string of the library's own resources when it has the directives.
bool libString(long id, std::string_view kinds, std::string& out) {
    char buf[kTextSize];
    if (!Vnt_ResLoadString(Vnt_ResLibInstance(), id, buf, sizeof buf) || !directivesAre(buf, kinds)) return false;
    out = buf;
    return true;
}

/*
 * The details text: the template (system message 62001, else the library's
 * support text) filled with the description, the source file and the line.
 */
std::string detailsText(const std::string& description, const std::string& file, int line) {
    std::string tmpl = boxState().detailsTemplate;
    if (!directivesAre(tmpl, "ssd") && !libString(kResSupport, "ssd", tmpl)) tmpl = kDetailsText;
    return format(tmpl, description.c_str(), file.c_str(), line);
}

bool suppressed(const std::string& key) {
    bool (*isOff)(const std::string&) = upcalls().isSwitchedOff;
    return isOff && isOff(key);
}

void suppress(const std::string& key) {
    if (void (*off)(const std::string&) = upcalls().switchOff) off(key);
}

/*
 * The key of a message in "Msg.ini": library name and message ID. A literal
 * text has no ID: that is reported, and ID 0 stands for it. An iteration
 * reference stands for the message last fetched.
 */
std::string suppressionKey(const std::string& libName, VntMsgRef ref) {
    long id;
    if (ref.IsText()) {
        Vnt__MsgErr(kSource301, kLine301, kText301, nullptr, 0);
        id = 0;
    } else if (ref.IsId()) {
        id = ref.Id();
    } else {
        id = Vnt_MsgGetID();
    }
    return libName + "." + std::to_string(id);
}

bool hasButton(const VntBoxModel& m, int id) {
    for (const VntBoxButton& b : m.buttons)
        if (b.id == id) return true;
    return false;
}

/*
 * Opens the program's help for the box: the context number, the contents
 * (-1), a partial-key search for the help part's keyword, and otherwise a
 * key search for the index entry that system message 62005 (details page)
 * or 62006 (a message without help) names.
 */
void openHelp(const VntBoxModel& m) {
    VntHelpRequest r;
    if (!Vnt_HelpFileName(r.file)) return;
    if (m.detailsMode) {
        r.command = VntHelpCommand::Key;
        r.key = Vnt_MsgHLoad(nullptr, kHelpKeyDetails);
    } else if (m.helpContext > 0) {
        r.command = VntHelpCommand::Context;
        r.context = m.helpContext;
    } else if (m.helpContext == -1) {
        r.command = VntHelpCommand::Contents;
    } else if (!m.helpKeyword.empty()) {
        r.command = VntHelpCommand::PartialKey;
        r.key = m.helpKeyword;
    } else {
        r.command = VntHelpCommand::Key;
        r.key = Vnt_MsgHLoad(nullptr, kHelpKeyNone);
    }
    Vnt_UiHelp().Open(r);
}

/*
 * A third box cannot open: the plain box says where it was raised, with the
 * library's string 30061, and the answer is No. The empty title lets the
 * presenter use its own default, as the platform's box does.
 */
VNT_RESP thirdBox(const char* sourceFile, int line) {
    std::string fmt;
    if (!libString(kResThirdBox, "sd", fmt)) fmt = kThirdBoxText;
    VntPlainBox plain;
    plain.text = format(fmt, sourceFile ? sourceFile : kUnknownFile, line);
    plain.type = 48;
    Vnt_UiPresenter().ShowPlain(plain);
    return VNT_RESP_NO;
}

// Fetches the details template once; true while that fetch is under way.
bool loadingTemplate() {
    BoxState& s = boxState();
    if (s.templateLoaded) return false;
    if (s.templateLoading) return true;
    s.templateLoading = true;
    const char* t = Vnt_MsgHLoad(nullptr, kDetailsTemplate);
    s.detailsTemplate.assign(t ? t : "", t ? strnlen(t, kTemplateSize - 1) : 0);
    s.templateLoading = false;
    s.templateLoaded = true;
    return false;
}

struct Request {
    std::string text, description, sourceFile, libName;
    bool internalError = false, detailsMode = false;
    long helpContext = 0, typeOverride = -1;
    int line = 0, defaultButton = -1;
    VntMsgRef ref;
};

VNT_RESP show(const Request& req);

// One box on its level; the level is taken and given back by show().
VNT_RESP showOnLevel(const Request& req, Slot& slot, int level) {
    slot = Slot{};
    slot.text = req.text;
    slot.details = detailsText(req.description.empty() ? kDefaultDescription : req.description,
                               req.sourceFile.empty() ? kUnknownFile : req.sourceFile, req.line);
    slot.helpContext = req.helpContext;
    slot.libName = req.libName;
    slot.ref = req.ref;
    slot.typeOverride = req.typeOverride;

    VntBoxModel m = Vnt_MsgBoxModel(req.text.c_str(), req.internalError, req.detailsMode, req.typeOverride,
                                    req.helpContext);
    m.level = level;
    m.details = slot.details;
    if (req.defaultButton >= 0 && static_cast<std::size_t>(req.defaultButton) < m.buttons.size())
        m.defaultButton = req.defaultButton;
    slot.type = m.type;
    slot.checkboxKey = parsePrefix(req.text.c_str(), req.internalError, req.detailsMode, false).checkboxKey;
    slot.helpKeyword = m.helpKeyword;

    std::string key;
    if (m.checkbox) {
        key = suppressionKey(req.libName, req.ref);
        if (suppressed(key)) return VNT_RESP_OK;
    }

    VntWindowPort& win = Vnt_UiWindow();
    VNT_HWND focus = win.Focus();
    VNT_RESP result;
    for (;;) {
        VntBoxAnswer answer;
        if (!Vnt_UiPresenter().Show(m, answer)) {
            VntPlainBox plain{kText302, kTitle302, 48};
            Vnt_UiPresenter().ShowPlain(plain);
            result = VNT_RESP_ERROR;
            break;
        }
        if (answer.button == VNT_BTN_HELP && hasButton(m, VNT_BTN_HELP)) {
            openHelp(m);
            continue;
        }
        if (answer.button == VNT_BTN_SUPPORT && hasButton(m, VNT_BTN_SUPPORT)) {
            Request page = req;
            page.text = slot.details;
            page.detailsMode = true;
            page.internalError = false;
            page.typeOverride = -1;
            page.defaultButton = -1;
            show(page);
            continue;
        }
        // Anything else ends the box, an unknown answer as closing does.
        int button = answer.button >= VNT_BTN_OK && answer.button <= VNT_BTN_NO ? answer.button : m.escapeButton;
        if (m.checkbox && answer.checked) suppress(key);
        result = mapAnswer(button, m.escapeButton == VNT_BTN_NO);
        break;
    }
    if (focus != nullptr) win.SetFocus(focus);
    return result;
}

VNT_RESP show(const Request& req) {
    if (loadingTemplate()) return VNT_RESP_OK;
    BoxState& s = boxState();
    if (s.level >= 2) return thirdBox(req.sourceFile.empty() ? nullptr : req.sourceFile.c_str(), req.line);
    const int level = ++s.level;
    VNT_RESP r = showOnLevel(req, s.slots[level - 1], level);
    if (s.level > 0) --s.level;
    return r;
}

/*
 * The plain box: icon character and button code of the prefix, the rest
 * formatted with the arguments when there are any. With `fixedAnswer` the
 * answer is 2 for boxes that can cancel or abort and 7 for the others
 * whatever was pressed; kept for compatibility.
 */
VNT_RESP plainBox(const char* format, va_list* args, bool fixedAnswer) {
    const Prefix pre = parsePrefix(format, false, false, true);
    const long buttons = pre.code >= 0 ? pre.code : defaultButtons(pre.icon);
    VntPlainBox plain;
    if (args != nullptr) {
        std::vector<char> buf(kTextSize);
        va_list copy;
        va_copy(copy, *args);
        int n = std::vsnprintf(buf.data(), buf.size(), pre.text.c_str(), copy);
        va_end(copy);
        if (n > 0) plain.text.assign(buf.data(), std::min<std::size_t>(static_cast<std::size_t>(n), buf.size() - 1));
    } else {
        plain.text = pre.text.substr(0, kTextSize - 1);
    }
    plain.title = Vnt_MsgBoxAppTitle(nullptr);
    if (plain.title.empty()) {
        copyBounded(boxState().appTitle, boxTitle());
        plain.title = boxState().appTitle;
    }
    plain.type = buttons | pre.iconBits;
    const int pressed = Vnt_UiPresenter().ShowPlain(plain);
    if (pressed == 0) return VNT_RESP_ERROR;
    if (fixedAnswer) return buttons == 1 || buttons == 2 || buttons == 3 || buttons == 5 ? VNT_RESP_CANCEL : VNT_RESP_NO;
    return mapAnswer(pressed, buttons == 4);
}

// The waits of the copy and editor actions: the windows are served at least
// once, also when no time is given.
void waitServed(long ms) { Vnt_UiWindow().Wait(ms); }

// What the copy and editor actions hand on: the text, then the details.
std::string actionText(const VntBoxModel& box) {
    return box.details.empty() ? box.text : box.text + "\n\n" + box.details;
}

}  // namespace

BoxState& boxState() {
    static BoxState s;
    return s;
}

}  // namespace vnt::msg::box

namespace vnt::msg {

/*
 * Copies the request first: its texts may lie in the ring, which fetching
 * the details template or help keys reuses.
 */
VNT_RESP showBox(const ShowRequest& req) {
    box::Request r;
    r.text = req.text ? req.text : "";
    r.description = req.description ? req.description : "";
    r.sourceFile = req.sourceFile ? req.sourceFile : "";
    r.libName = req.libName ? std::string(req.libName).substr(0, 8) : "";
    r.internalError = req.internalError;
    r.helpContext = req.helpContext;
    r.typeOverride = req.typeOverride;
    r.line = req.line;
    r.defaultButton = req.defaultButton;
    r.ref = req.ref;
    return box::show(r);
}

void resetBox() { box::boxState() = box::BoxState{}; }

}  // namespace vnt::msg

VNT_RESP Vnt_MsgBox(const char* format, ...) {
    va_list args;
    va_start(args, format);
    VNT_RESP r = vnt::msg::box::plainBox(format, &args, false);
    va_end(args);
    return r;
}

// `args` is null (the text is shown as it stands) or the address of a
// va_list: the argument list of the old interface was a plain pointer.
VNT_RESP Vnt_MsgBox(const char* format, char* args, VNT_HWND owner, bool fixedAnswer) {
    (void)owner;  // the presenter chooses the owner: the active window
    return vnt::msg::box::plainBox(format, reinterpret_cast<va_list*>(args), fixedAnswer);
}

const char* Vnt_MsgBoxAppTitle(const char* title) {
    char* t = vnt::msg::box::boxState().appTitle;
    if (title != nullptr) vnt::copyBounded(t, vnt::msg::kTitleSize, title);
    return t;
}

bool Vnt_MsgBoxCopy(const VntBoxModel& box) {
    VntWindowPort& win = Vnt_UiWindow();
    win.BusyCursor(true);
    const bool ok = win.SetClipboardText(vnt::msg::box::actionText(box));
    vnt::msg::box::waitServed(vnt::msg::box::boxState().copyWaitMs);
    win.BusyCursor(false);
    return ok;
}

/*
 * Writes the text to "VantoErr.tmp" in the program's temporary directory,
 * opens it with the desktop's opener, gives the editor time to read it and
 * removes it again.
 */
bool Vnt_MsgBoxEdit(const VntBoxModel& box) {
    VNT_PATH dir, file;
    if (!Vnt_LfnProgDirName(dir, sizeof dir)) return false;
    if (!Vnt_LfnNameMake(dir, dir, "TEMP", nullptr) || !Vnt_LfnDirCreate(dir)) return false;
    if (!Vnt_LfnNameMake(file, dir, "VantoErr.tmp", nullptr)) return false;
    VntWindowPort& win = Vnt_UiWindow();
    win.BusyCursor(true);
    bool ok = vnt::host::writeFileAtomic(file, vnt::msg::box::actionText(box));
    if (ok) {
        ok = vnt::host::openDocument(file);
        if (ok) vnt::msg::box::waitServed(vnt::msg::box::boxState().editWaitMs);
        vnt::host::removeFile(file);
    }
    win.BusyCursor(false);
    return ok;
}
