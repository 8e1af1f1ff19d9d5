// Starting programs (CreateProcessW) and opening documents (the shell).
#include "host/win32/host_call.h"

#include <shellapi.h>

#include "base/names.h"
#include "vanto/text.h"

namespace vnt::host {

namespace {

bool bareName(const std::string& name) { return name.find_first_of("\\:") == std::string::npos; }

// Extensions the system starts as programs; other files are documents.
bool runnable(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.find_first_of("\\:", dot) != std::string::npos) return false;
    const std::string ext = name.substr(dot + 1);
    return vnt::sameText(ext, "exe") || vnt::sameText(ext, "com") || vnt::sameText(ext, "bat") || vnt::sameText(ext, "cmd");
}

// "x.exe" may be given for a program that has its name without the extension.
bool withoutExe(const std::string& name, std::string& out) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.find_first_of("\\:", dot) != std::string::npos) return false;
    if (!vnt::sameText(name.substr(dot + 1), "exe")) return false;
    out = name.substr(0, dot);
    return true;
}

/*
 * The argument text goes to the program as its command line after the
 * quoted program name: the program's run time splits it at blanks and
 * tabs with double quotes grouping, as the interface says.
 */
bool spawn(const std::wstring& program, bool searchPath, const char* args, const std::wstring& workDir) {
    std::wstring wargs;
    if (args && *args && !toWide(Vnt_TxtToUtf8(args), wargs)) return fail(ERROR_NO_UNICODE_TRANSLATION);
    std::wstring cmd = L"\"" + program + L"\"";
    if (!wargs.empty()) cmd += L" " + wargs;
    STARTUPINFOW si{};
    si.cb = sizeof si;
    PROCESS_INFORMATION pi{};
    if (!::CreateProcessW(searchPath ? nullptr : program.c_str(), cmd.data(), nullptr, nullptr, FALSE, 0, nullptr,
                          workDir.empty() ? nullptr : workDir.c_str(), &si, &pi))
        return failLast();
    // Nothing waits for it: a process whose handles are closed leaves nothing behind.
    ::CloseHandle(pi.hThread);
    ::CloseHandle(pi.hProcess);
    return true;
}

}  // namespace

bool startProgram(const char* libPath, const char* args, const char* libWorkDir) {
    if (libPath == nullptr || !*libPath) return fail(ERROR_FILE_NOT_FOUND);
    if (faultHit(Op::Load, libPath)) return fail(ERROR_IO_DEVICE);
    std::wstring workDir;
    if (libWorkDir && *libWorkDir && !toHostWide(libWorkDir, workDir)) return fail(ERROR_FILE_NOT_FOUND);
    std::string name = libPath, plain;
    if (bareName(name)) {
        std::wstring w;
        if (!toWide(Vnt_TxtToUtf8(name), w)) return fail(ERROR_FILE_NOT_FOUND);
        return spawn(w, true, args, workDir);
    }
    std::wstring host;
    DWORD attrs = INVALID_FILE_ATTRIBUTES;
    if (toHostWide(name.c_str(), host)) attrs = ::GetFileAttributesW(host.c_str());
    if (attrs == INVALID_FILE_ATTRIBUTES) {
        if (!withoutExe(name, plain) || !toHostWide(plain.c_str(), host) ||
            (attrs = ::GetFileAttributesW(host.c_str())) == INVALID_FILE_ATTRIBUTES)
            return fail(ERROR_FILE_NOT_FOUND);
        name = plain;
    }
    if (attrs & FILE_ATTRIBUTE_DIRECTORY) return fail(ERROR_ACCESS_DENIED);
    if (runnable(name)) return spawn(host, false, args, workDir);
    return openDocument(name.c_str());
}

bool openDocument(const char* libPath) {
    std::wstring host;
    if (libPath == nullptr || !toHostWide(libPath, host)) return fail(ERROR_FILE_NOT_FOUND);
    const auto r = reinterpret_cast<INT_PTR>(::ShellExecuteW(nullptr, L"open", host.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    if (r > 32) return true;
    switch (r) {
        case SE_ERR_FNF:
        case SE_ERR_PNF:
        case SE_ERR_NOASSOC:
        case SE_ERR_ASSOCINCOMPLETE: return fail(ERROR_FILE_NOT_FOUND);
        case SE_ERR_ACCESSDENIED:
        case SE_ERR_SHARE: return fail(ERROR_ACCESS_DENIED);
        default: return fail(ERROR_NOT_SUPPORTED);
    }
}

}  // namespace vnt::host
