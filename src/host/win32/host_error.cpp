// Host errors: Win32 error codes mapped to the error kinds of the host
// interface. The last error is the host's own (one per thread, as the
// platform's is), because the C++ run time may clear GetLastError() on its
// way (thread-local storage does) long before a caller asks.
#include "host/win32/host_call.h"

#include "vanto/text.h"

namespace vnt::host {

namespace {

constexpr DWORD kQuotaExceeded = 1295;  // ERROR_DISK_QUOTA_EXCEEDED, missing from MinGW's headers

thread_local Error tLast;

ErrorKind kindOf(DWORD code) {
    switch (code) {
        case ERROR_SUCCESS: return ErrorKind::None;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_DRIVE:
        case ERROR_NOT_READY:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
        case ERROR_MOD_NOT_FOUND:
        case ERROR_BAD_PATHNAME:
        case ERROR_DIRECTORY: return ErrorKind::NotFound;
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
        case ERROR_DIR_NOT_EMPTY: return ErrorKind::Exists;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
        case ERROR_CANNOT_MAKE:
        case ERROR_PRIVILEGE_NOT_HELD: return ErrorKind::Access;
        case ERROR_INVALID_NAME:
        case ERROR_INVALID_PARAMETER:
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_NO_UNICODE_TRANSLATION: return ErrorKind::Invalid;
        case ERROR_CRC:
        case ERROR_SECTOR_NOT_FOUND:
        case ERROR_WRITE_FAULT:
        case ERROR_READ_FAULT:
        case ERROR_GEN_FAILURE:
        case ERROR_IO_DEVICE: return ErrorKind::IO;
        case ERROR_HANDLE_DISK_FULL:
        case ERROR_DISK_FULL:
        case kQuotaExceeded: return ErrorKind::NoSpace;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_BUSY:
        case ERROR_USER_MAPPED_FILE: return ErrorKind::Busy;
        case ERROR_BAD_EXE_FORMAT:
        case ERROR_PROC_NOT_FOUND:
        case ERROR_DLL_INIT_FAILED:
        case ERROR_INVALID_DLL: return ErrorKind::NotLoadable;
        default: return ErrorKind::Other;
    }
}

DWORD codeOf(ErrorKind kind) {
    switch (kind) {
        case ErrorKind::None: return ERROR_SUCCESS;
        case ErrorKind::NotFound: return ERROR_FILE_NOT_FOUND;
        case ErrorKind::Exists: return ERROR_ALREADY_EXISTS;
        case ErrorKind::Access: return ERROR_ACCESS_DENIED;
        case ErrorKind::Invalid: return ERROR_INVALID_PARAMETER;
        case ErrorKind::IO: return ERROR_IO_DEVICE;
        case ErrorKind::NoSpace: return ERROR_DISK_FULL;
        case ErrorKind::Busy: return ERROR_SHARING_VIOLATION;
        case ErrorKind::NotLoadable: return ERROR_BAD_EXE_FORMAT;
        case ErrorKind::Other: break;
    }
    return ERROR_NOT_SUPPORTED;
}

}  // namespace

bool fail(DWORD code) {
    tLast = {kindOf(code), code};
    return false;
}

bool failLast() { return fail(::GetLastError()); }

Error lastError() { return tLast; }

void setLastError(ErrorKind kind) { tLast = errorOf(kind); }

void setLastError(const Error& error) { tLast = error; }

Error errorOf(ErrorKind kind) { return {kind, codeOf(kind)}; }

/*
 * The system's text for the code in Windows-1252, without the line end and
 * the full stop the system puts after it, so that it reads like the POSIX
 * host's texts inside a sentence.
 */
std::string errorText(const Error& error) {
    wchar_t* buf = nullptr;
    const DWORD n = ::FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                     nullptr, static_cast<DWORD>(error.code), 0, reinterpret_cast<wchar_t*>(&buf), 0, nullptr);
    std::string utf8 = n && buf ? toUtf8(buf, static_cast<int>(n)) : std::string();
    if (buf) ::LocalFree(buf);
    while (!utf8.empty() && (utf8.back() == '\n' || utf8.back() == '\r' || utf8.back() == ' ' || utf8.back() == '.'))
        utf8.pop_back();
    std::string text;
    if (utf8.empty() || !Vnt_TxtFromUtf8(utf8, text)) text = "Error " + std::to_string(error.code);
    return text;
}

std::string lastErrorText() { return errorText(tLast); }

}  // namespace vnt::host
