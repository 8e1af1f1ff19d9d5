// The terminal: standard error and standard input. A console takes and
// gives UTF-16 (its code page is not ours); a file or pipe takes the UTF-8
// bytes as they are.
#include "host/win32/host_call.h"

namespace vnt::host {
namespace {

bool isConsole(DWORD which) {
    DWORD mode;
    HANDLE h = ::GetStdHandle(which);
    return h != nullptr && h != INVALID_HANDLE_VALUE && ::GetConsoleMode(h, &mode);
}

}  // namespace

bool interactiveTerminal() { return isConsole(STD_ERROR_HANDLE) && isConsole(STD_INPUT_HANDLE); }

bool stderrTerminal() { return isConsole(STD_ERROR_HANDLE); }

void writeStderr(const std::string& utf8) {
    HANDLE h = ::GetStdHandle(STD_ERROR_HANDLE);
    if (h == nullptr || h == INVALID_HANDLE_VALUE || utf8.empty()) return;
    std::wstring w;
    if (isConsole(STD_ERROR_HANDLE) && toWide(utf8, w)) {
        DWORD done = 0;
        ::WriteConsoleW(h, w.data(), static_cast<DWORD>(w.size()), &done, nullptr);
        return;
    }
    std::size_t done = 0;
    while (done < utf8.size()) {
        DWORD w2 = 0;
        if (!::WriteFile(h, utf8.data() + done, static_cast<DWORD>(utf8.size() - done), &w2, nullptr) || w2 == 0) return;
        done += w2;
    }
}

bool readLine(std::string& line) {
    line.clear();
    HANDLE h = ::GetStdHandle(STD_INPUT_HANDLE);
    if (h == nullptr || h == INVALID_HANDLE_VALUE) return false;
    if (isConsole(STD_INPUT_HANDLE)) {
        std::wstring w;
        bool any = false;
        for (;;) {
            wchar_t c;
            DWORD r = 0;
            if (!::ReadConsoleW(h, &c, 1, &r, nullptr) || r == 0) break;
            any = true;
            if (c == L'\n') break;
            if (c != L'\r') w += c;
        }
        line = toUtf8(w.c_str(), static_cast<int>(w.size()));
        return any;
    }
    char c;
    for (;;) {
        DWORD r = 0;
        if (!::ReadFile(h, &c, 1, &r, nullptr) || r == 0) return !line.empty();
        if (c == '\n') return true;
        if (c != '\r') line += c;
    }
}

}  // namespace vnt::host
