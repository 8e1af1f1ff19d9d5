// The ports the core talks to, and their headless implementations: a window
// system without windows, a scripted presenter for tests and a console
// presenter for tools and programs without a window system.
#include <string>

#include "base/port_slot.h"
#include "host/term.h"
#include "host/time.h"
#include "ui/ui_state.h"
#include "vanto/text.h"
#include "vanto/ui/msgbox.h"
#include "vanto/ui/window.h"

VntWindowPort::~VntWindowPort() = default;

// Sleeps between passes so that a wait costs no processor time.
void VntWindowPort::Wait(long ms) {
    const std::int64_t end = vnt::host::tickMs() + (ms > 0 ? ms : 0);
    for (;;) {
        PumpEvents();
        const std::int64_t left = end - vnt::host::tickMs();
        if (left <= 0) return;
        vnt::host::sleepMs(static_cast<long>(left < 10 ? left : 10));
    }
}
VntMsgPresenter::~VntMsgPresenter() = default;

namespace {

struct Ports {
    VntHeadlessWindowPort headless;
    VntConsolePresenter console;
    vnt::PortSlot<VntWindowPort> window{headless};
    vnt::PortSlot<VntMsgPresenter> presenter{console};
};

Ports& ports() {
    static Ports p;
    return p;
}

// Caption without the access-key marker, in UTF-8.
std::string plainCaption(const std::string& caption) {
    std::string out;
    for (char c : caption)
        if (c != '&') out += c;
    return Vnt_TxtToUtf8(out);
}

// The access key of a caption ("&Ja" => 'j'), or 0.
char accessKey(const std::string& caption) {
    std::size_t amp = caption.find('&');
    if (amp == std::string::npos || amp + 1 >= caption.size()) return 0;
    return static_cast<char>(Vnt_TxtUpper(static_cast<unsigned char>(caption[amp + 1])));
}

const char* iconWord(int icon) {
    switch (icon) {
        case VNT_ICON_EXCLAMATION: return "[!] ";
        case VNT_ICON_QUESTION: return "[?] ";
        case VNT_ICON_STOP: return "[X] ";
        case VNT_ICON_INFORMATION: return "[i] ";
        default: return "";
    }
}

/*
 * Draws a box on standard error and asks for one of its buttons: by access
 * key or by number, an empty answer taking the default. Without a terminal
 * nobody can answer: OK where that is the only real answer (reports), else
 * the answer of closing the box, so that no question, a retry above all, is
 * ever asked again and again.
 */
int ask(const std::string& title, int icon, const std::vector<std::string>& lines,
        const std::vector<VntBoxButton>& buttons, int defaultIndex, int closeAnswer,
        const std::string& checkbox) {
    std::string out = "\n== " + Vnt_TxtToUtf8(title) + " ==\n";
    for (std::size_t i = 0; i < lines.size(); ++i)
        out += lines[i].empty() ? std::string("\n")
                                : (i == 0 ? iconWord(icon) : std::string(icon ? 4 : 0, ' ')) + Vnt_TxtToUtf8(lines[i]) + "\n";
    if (!checkbox.empty()) out += "[ ] " + plainCaption(checkbox) + "\n";
    bool onlyOk = true;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        out += (i ? "  " : "") + std::string("[") + std::to_string(i + 1) + "] " + plainCaption(buttons[i].caption);
        if (buttons[i].id != VNT_BTN_OK && buttons[i].id != VNT_BTN_HELP && buttons[i].id != VNT_BTN_SUPPORT)
            onlyOk = false;
    }
    out += "\n";
    if (!vnt::host::interactiveTerminal()) {
        int answer = onlyOk ? VNT_BTN_OK : closeAnswer;
        std::string caption = "?";
        for (const VntBoxButton& b : buttons)
            if (b.id == answer) caption = plainCaption(b.caption);
        out += onlyOk ? "(no terminal: answered " + caption + ")\n"
                      : "(no terminal: closed the box, answer " + caption + ")\n";
        vnt::host::writeStderr(out);
        return answer;
    }
    vnt::host::writeStderr(out);
    const std::size_t def = defaultIndex >= 0 && std::size_t(defaultIndex) < buttons.size() ? std::size_t(defaultIndex) : 0;
    for (;;) {
        vnt::host::writeStderr("? ");
        std::string line;
        if (!vnt::host::readLine(line)) return closeAnswer;
        if (line.empty()) return buttons.empty() ? closeAnswer : buttons[def].id;
        if (line.size() <= 2 && line[0] >= '1' && line[0] <= '9') {
            std::size_t n = std::stoul(line);
            if (n >= 1 && n <= buttons.size()) return buttons[n - 1].id;
        }
        char key = static_cast<char>(Vnt_TxtUpper(static_cast<unsigned char>(line[0])));
        for (const VntBoxButton& b : buttons)
            if (line.size() == 1 && accessKey(b.caption) == key) return b.id;
    }
}

// Buttons of a plain box by its type; English captions, as the platform's
// own box would show them on an English system.
std::vector<VntBoxButton> plainButtons(long type) {
    switch (type & 7) {
        case 1: return {{VNT_BTN_OK, "&OK"}, {VNT_BTN_CANCEL, "&Cancel"}};
        case 2: return {{VNT_BTN_ABORT, "&Abort"}, {VNT_BTN_RETRY, "&Retry"}, {VNT_BTN_IGNORE, "&Ignore"}};
        case 3: return {{VNT_BTN_YES, "&Yes"}, {VNT_BTN_NO, "&No"}, {VNT_BTN_CANCEL, "&Cancel"}};
        case 4: return {{VNT_BTN_YES, "&Yes"}, {VNT_BTN_NO, "&No"}};
        case 5: return {{VNT_BTN_RETRY, "&Retry"}, {VNT_BTN_CANCEL, "&Cancel"}};
        default: return {{VNT_BTN_OK, "&OK"}};
    }
}

// The answer of closing a plain box: Cancel where there is one, No in a
// Yes/No box, Abort in an Abort/Retry/Ignore box.
int plainCloseAnswer(long type) {
    switch (type & 7) {
        case 2: return VNT_BTN_ABORT;
        case 4: return VNT_BTN_NO;
        case 0: return VNT_BTN_OK;
        default: return VNT_BTN_CANCEL;
    }
}

int plainIcon(long type) {
    switch (type & 0xF0) {
        case 16: return VNT_ICON_STOP;
        case 32: return VNT_ICON_QUESTION;
        case 48: return VNT_ICON_EXCLAMATION;
        case 64: return VNT_ICON_INFORMATION;
        default: return VNT_ICON_NONE;
    }
}

// Lines of a plain text.
std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (;;) {
        std::size_t nl = text.find('\n', start);
        lines.push_back(text.substr(start, nl == std::string::npos ? std::string::npos : nl - start));
        if (nl == std::string::npos) return lines;
        start = nl + 1;
    }
}

}  // namespace

namespace vnt::ui {

void resetHeadless() {
    VntHeadlessWindowPort& h = ports().headless;
    h.Clear();
    h.clipboard.clear();
    h.busy = false;
    h.beeps = h.keys = h.modalDefault = 0;
}

}  // namespace vnt::ui

VntWindowPort& Vnt_UiWindow() { return ports().window.get(); }

VntWindowPort* Vnt_UiSetWindow(VntWindowPort* port) { return ports().window.set(port); }

VntMsgPresenter& Vnt_UiPresenter() { return ports().presenter.get(); }

VntMsgPresenter* Vnt_UiSetPresenter(VntMsgPresenter* presenter) { return ports().presenter.set(presenter); }

bool VntScriptedPresenter::Show(const VntBoxModel& box, VntBoxAnswer& answer) {
    shown.push_back(box);
    if (failNext) {
        failNext = false;
        return false;
    }
    if (during) during(box);
    answer = VntBoxAnswer{VNT_BTN_OK, false};
    if (!answers.empty()) {
        answer = answers.front();
        answers.pop_front();
    }
    return true;
}

int VntScriptedPresenter::ShowPlain(const VntPlainBox& box) {
    plainShown.push_back(box);
    if (plainAnswers.empty()) return VNT_BTN_OK;
    int a = plainAnswers.front();
    plainAnswers.pop_front();
    return a;
}

bool VntConsolePresenter::Show(const VntBoxModel& box, VntBoxAnswer& answer) {
    answer.checked = false;
    answer.button = ask(box.title, box.icon, box.lines, box.buttons, box.defaultButton, box.escapeButton,
                        box.checkbox ? box.checkboxCaption : std::string());
    return true;
}

int VntConsolePresenter::ShowPlain(const VntPlainBox& box) {
    return ask(box.title, plainIcon(box.type), splitLines(box.text), plainButtons(box.type), 0,
               plainCloseAnswer(box.type), std::string());
}
