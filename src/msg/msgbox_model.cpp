// The message box model: what the leading control characters of a message
// text ask for (icon, checkbox, labels, help, buttons), the buttons with
// their captions and answers, and the text broken into the box's lines.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "msg/msgbox_internal.h"

namespace vnt::msg::box {
namespace {

// Captions of dialog 30061, German as they stand in the resource, and
// English. Windows-1252.
struct Captions {
    const char *ok, *yes, *retry, *no, *ignore, *cancel, *abort, *support, *help, *checkbox;
};
constexpr Captions kGerman = {"&OK", "&Ja", "&Wiederholen", "&Nein", "&Ignorieren", "&Abbrechen",
                              "&Abbrechen", "&Support", "&Hilfe",
                              "Diese Meldung k\xFC" "nftig &nicht mehr anzeigen."};
constexpr Captions kEnglish = {"&OK", "&Yes", "&Retry", "&No", "&Ignore", "&Cancel",
                               "&Abort", "&Support", "&Help", "Do &not show this message again."};

const Captions& cap() { return Vnt_ResLanguage()[0] == 'E' ? kEnglish : kGerman; }

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool startsWith(std::string_view s, std::string_view p) { return s.substr(0, p.size()) == p; }

/*
 * Reads "[...]" after a marker letter: the text inside, at most 39 of its
 * characters kept. Without a closing bracket nothing is read.
 */
bool bracket(std::string_view& p, std::string& inside) {
    if (p.empty() || p.front() != '[') return false;
    std::size_t close = p.find(']');
    if (close == std::string_view::npos) return false;
    inside.assign(p.substr(1, std::min(close - 1, kKeySize - 1)));
    p.remove_prefix(close + 1);
    return true;
}

// The help part: "h" alone (contents), "h[123]" (a context), "h[name]" (a keyword).
bool helpPart(std::string_view& p, Prefix& out) {
    if (p.empty() || p.front() != 'h') return false;
    p.remove_prefix(1);
    out.help = true;
    out.helpContext = -1;
    std::string inside;
    if (bracket(p, inside) && !inside.empty()) {
        bool digits = inside.size() <= 9;
        for (char c : inside) digits = digits && c >= '0' && c <= '9';
        if (digits) {
            out.helpContext = std::stol(inside);
        } else {
            out.helpContext = 0;
            out.helpKeyword = inside;
        }
    }
    return true;
}

// The button codes, longest first where one begins another.
struct Code {
    const char* text;
    long buttons;
};
constexpr Code kCodes[] = {{"okc", 1}, {"ok", 0}, {"oc", 1}, {"ari", 2}, {"rc", 5}, {"ync", 3}, {"yn", 4}};

void buttonCode(std::string_view& p, Prefix& out) {
    for (const Code& c : kCodes) {
        if (startsWith(p, c.text)) {
            p.remove_prefix(std::strlen(c.text));
            out.code = c.buttons;
            return;
        }
    }
    // Kept for compatibility: an "o" before any other letter is dropped.
    if (p.size() >= 2 && p[0] == 'o' && isLetter(p[1])) p.remove_prefix(1);
}

std::string labelCaption(std::string_view label) {
    std::string s(label);
    for (char& c : s)
        if (c == '~') c = '&';
    return s;
}

void addButtons(long buttons, std::vector<VntBoxButton>& out) {
    switch (buttons) {
        case 1: out = {{VNT_BTN_OK, cap().ok}, {VNT_BTN_CANCEL, cap().cancel}}; break;
        case 2: out = {{VNT_BTN_RETRY, cap().retry}, {VNT_BTN_IGNORE, cap().ignore}, {VNT_BTN_ABORT, cap().abort}}; break;
        case 3: out = {{VNT_BTN_YES, cap().yes}, {VNT_BTN_NO, cap().no}, {VNT_BTN_CANCEL, cap().cancel}}; break;
        case 4: out = {{VNT_BTN_YES, cap().yes}, {VNT_BTN_NO, cap().no}}; break;
        case 5: out = {{VNT_BTN_RETRY, cap().retry}, {VNT_BTN_CANCEL, cap().cancel}}; break;
        default: out = {{VNT_BTN_OK, cap().ok}}; break;
    }
}

void setCaption(std::vector<VntBoxButton>& buttons, int id, const std::string& caption) {
    for (VntBoxButton& b : buttons)
        if (b.id == id) b.caption = caption;
}

int iconOfBits(long bits) {
    switch (bits) {
        case 16: return VNT_ICON_STOP;
        case 32: return VNT_ICON_QUESTION;
        case 48: return VNT_ICON_EXCLAMATION;
        case 64: return VNT_ICON_INFORMATION;
        default: return VNT_ICON_NONE;
    }
}

long bitsOfIcon(int icon) {
    switch (icon) {
        case VNT_ICON_STOP: return 16;
        case VNT_ICON_QUESTION: return 32;
        case VNT_ICON_EXCLAMATION: return 48;
        case VNT_ICON_INFORMATION: return 64;
        default: return 0;
    }
}

/*
 * Breaks the text into the box's lines: at every line feed, and where a
 * paragraph is wider than a line at its last blank that keeps the line
 * within the width (hard at the width when there is none). The blanks at a
 * break vanish. Lines beyond the fifteenth are not shown; empty lines at the
 * very end would only make the box taller.
 */
std::vector<std::string> breakLines(std::string_view text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start <= text.size() && lines.size() < kMaxLines) {
        std::size_t nl = text.find('\n', start);
        std::string_view para = text.substr(start, nl == std::string_view::npos ? std::string_view::npos : nl - start);
        if (!para.empty() && para.back() == '\r') para.remove_suffix(1);
        do {
            if (para.size() <= kLineWidth) {
                lines.emplace_back(para);
                break;
            }
            std::size_t cut = para.substr(0, kLineWidth + 1).rfind(' ');
            std::size_t end = cut;
            while (end != std::string_view::npos && end > 0 && para[end - 1] == ' ') --end;
            if (cut == std::string_view::npos || end == 0) {
                lines.emplace_back(para.substr(0, kLineWidth));
                para.remove_prefix(kLineWidth);
            } else {
                lines.emplace_back(para.substr(0, end));
                para.remove_prefix(cut + 1);
                while (!para.empty() && para.front() == ' ') para.remove_prefix(1);
            }
        } while (!para.empty() && lines.size() < kMaxLines);
        if (nl == std::string_view::npos) break;
        start = nl + 1;
    }
    if (lines.size() > kMaxLines) lines.resize(kMaxLines);
    while (!lines.empty() && lines.back().empty()) lines.pop_back();
    return lines;
}

}  // namespace

/*
 * Reads the control characters in their order: icon character, a single
 * '&', checkbox marker with its layout, then either "|" labels or the help
 * part, button code and help part again. What is read is not shown.
 */
Prefix parsePrefix(const char* text, bool internalError, bool detailsMode, bool plain) {
    Prefix out;
    std::string_view p = text ? text : "";
    bool iconRead = true;
    switch (p.empty() ? '\0' : p.front()) {
        case '!': out.iconBits = 48; break;
        case '#': out.iconBits = 16; break;
        case '-': out.iconBits = 0; break;
        case '?': out.iconBits = 32; break;
        case 'i': out.iconBits = 64; break;
        default: iconRead = false; break;
    }
    if (iconRead) p.remove_prefix(1);
    if (internalError && (!iconRead || out.iconBits == 0 || out.iconBits == 32)) out.iconBits = 48;
    if (detailsMode) out.iconBits = 64;
    out.icon = iconOfBits(out.iconBits);

    if (!plain) {
        if (iconRead && !p.empty() && p.front() == '&') p.remove_prefix(1);
        if (!p.empty() && p.front() == 'x') {
            p.remove_prefix(1);
            out.checkbox = true;
            bracket(p, out.checkboxKey);
            // The layout characters belong to the checkbox.
            for (int i = 0; i < 2 && !p.empty(); ++i) {
                char c = p.front();
                if (c == '^') out.checkboxBelow = false;
                else if (c == '.') out.checkboxBelow = true;
                else if (c == '<') out.checkboxLeft = true;
                else if (c == '>') out.checkboxLeft = false;
                else break;
                p.remove_prefix(1);
            }
        }
        std::size_t bar = p.find('|');
        if (!internalError && !detailsMode && bar != std::string_view::npos) {
            std::string_view rest = p.substr(bar + 1);
            p = p.substr(0, bar);
            while (out.labels.size() < 3) {
                std::size_t next = rest.find('|');
                out.labels.push_back(labelCaption(rest.substr(0, next)));
                if (next == std::string_view::npos) break;
                rest.remove_prefix(next + 1);
            }
            out.text.assign(p);
            return out;
        }
    }
    bool help = helpPart(p, out);
    buttonCode(p, out);
    if (!help) helpPart(p, out);
    out.text.assign(p);
    return out;
}

long defaultButtons(int icon) {
    if (icon == VNT_ICON_QUESTION) return 3;
    if (icon == VNT_ICON_EXCLAMATION) return 1;
    return 0;
}

VNT_RESP mapAnswer(int button, bool yesNoBox) {
    switch (button) {
        case VNT_BTN_OK:
        case VNT_BTN_YES:
        case VNT_BTN_RETRY: return VNT_RESP_OK;
        case VNT_BTN_NO:
        case VNT_BTN_IGNORE: return VNT_RESP_NO;
        default: return yesNoBox ? VNT_RESP_NO : VNT_RESP_CANCEL;
    }
}

}  // namespace vnt::msg::box

/*
 * Builds the whole box from the text: the prefix decides icon, buttons,
 * checkbox and help; a type override replaces the buttons (and the icon and
 * Help when it carries their bits); a report offers OK and Support, the
 * details page OK and Help, whatever the type. Help always comes last.
 */
VntBoxModel Vnt_MsgBoxModel(const char* text, bool internalError, bool detailsMode, long typeOverride,
                            long helpContext) {
    using namespace vnt::msg::box;
    const Prefix pre = parsePrefix(text, internalError, detailsMode, false);
    VntBoxModel m;
    m.internalError = internalError;
    m.detailsMode = detailsMode;
    m.icon = pre.icon;

    long buttons = pre.code >= 0 ? pre.code : defaultButtons(pre.icon);
    std::vector<std::pair<int, std::string>> captions;  // label captions by button
    const std::size_t nLabels = pre.labels.size();
    if (nLabels == 3) {
        buttons = 3;
        captions = {{VNT_BTN_YES, pre.labels[0]}, {VNT_BTN_NO, pre.labels[1]}, {VNT_BTN_CANCEL, pre.labels[2]}};
    } else if (nLabels == 2) {
        buttons = 4;
        captions = {{VNT_BTN_YES, pre.labels[0]}, {VNT_BTN_NO, pre.labels[1]}};
    } else if (nLabels == 1 && (pre.icon == VNT_ICON_QUESTION || pre.icon == VNT_ICON_EXCLAMATION)) {
        buttons = 4;
        captions = {{VNT_BTN_YES, pre.labels[0]}, {VNT_BTN_NO, cap().cancel}};
    } else if (nLabels == 1) {
        buttons = 0;
        captions = {{VNT_BTN_OK, pre.labels[0]}};
    }

    bool help = pre.help || helpContext != 0 || detailsMode;
    if (typeOverride >= 0) {
        buttons = typeOverride & 0xF;
        if (!detailsMode && iconOfBits(typeOverride & 0xF0) != VNT_ICON_NONE) m.icon = iconOfBits(typeOverride & 0xF0);
        if (typeOverride & 16384) help = true;
    }
    if (buttons > 5) buttons = 0;

    if (internalError) {
        m.buttons = {{VNT_BTN_OK, cap().ok}, {VNT_BTN_SUPPORT, cap().support}};
    } else if (detailsMode) {
        m.buttons = {{VNT_BTN_OK, cap().ok}};
    } else {
        addButtons(buttons, m.buttons);
        for (const auto& [id, caption] : captions) setCaption(m.buttons, id, caption);
    }
    if (help) m.buttons.push_back({VNT_BTN_HELP, cap().help});
    m.type = buttons | bitsOfIcon(m.icon) | (help ? 16384 : 0);
    m.escapeButton = (buttons == 4 && !internalError && !detailsMode) ? VNT_BTN_NO : VNT_BTN_CANCEL;

    // Reports and the details page cannot be switched off.
    m.checkbox = pre.checkbox && !internalError && !detailsMode;
    m.checkboxBelow = pre.checkboxBelow;
    m.checkboxLeft = pre.checkboxLeft;
    if (m.checkbox) m.checkboxCaption = cap().checkbox;

    // The caller's help context is the message's own; the text's help part
    // serves when there is none.
    if (helpContext != 0) {
        m.helpContext = helpContext;
    } else if (!detailsMode) {
        m.helpContext = pre.helpContext;
        m.helpKeyword = pre.helpKeyword;
    }
    m.text = pre.text;
    m.lines = breakLines(pre.text);
    m.title = vnt::msg::boxTitle();
    return m;
}
