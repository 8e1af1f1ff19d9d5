// vanto/base.h - types shared by every family of the VantoRtl interface.
//
// Included by every other public header; applications rarely include it on
// its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(_WIN32)
#  if defined(VANTORTL_BUILDING)
#    define VANTO_API __declspec(dllexport)
#  elif defined(VANTORTL_STATIC)
#    define VANTO_API
#  else
#    define VANTO_API __declspec(dllimport)
#  endif
#else
#  define VANTO_API __attribute__((visibility("default")))
#endif

/// Size of a path buffer: 259 characters and the terminating NUL.
inline constexpr std::size_t VNT_MAX_PATH = 260;

/// A path buffer. Every copy into one is cut at 259 characters and terminated.
using VNT_PATH = char[VNT_MAX_PATH];

/// The one way to fill a fixed character buffer: copies at most `size` - 1
/// characters of `src` into `dst` and terminates it. Overlapping buffers are
/// allowed; a `size` of 0 (or a null `dst`) writes nothing; a null `src`
/// copies "". Returns the number of characters copied. The C-string form
/// reads `src` only as far as `dst` can hold.
///
///   char b[4]; Vnt_StrCopy(b, sizeof b, "abcdef")  => 3, b = "abc"
///   VNT_PATH p; Vnt_StrCopy(p, "C:\\x")            => 4, p = "C:\\x"
///   Vnt_StrCopy(b, 0, "abc")                       => 0, b unchanged
inline std::size_t Vnt_StrCopy(char* dst, std::size_t size, std::string_view src) noexcept {
    if (size == 0 || dst == nullptr) return 0;
    const std::size_t n = src.size() < size - 1 ? src.size() : size - 1;
    if (n) std::memmove(dst, src.data(), n);
    dst[n] = '\0';
    return n;
}
inline std::size_t Vnt_StrCopy(char* dst, std::size_t size, const char* src) noexcept {
    if (src == nullptr) return Vnt_StrCopy(dst, size, std::string_view{});
    const void* nul = size ? std::memchr(src, '\0', size - 1) : nullptr;
    const std::size_t len = nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - src) : (size ? size - 1 : 0);
    return Vnt_StrCopy(dst, size, std::string_view(src, len));
}
/// Array forms: the size is the array's.
template <std::size_t N>
inline std::size_t Vnt_StrCopy(char (&dst)[N], std::string_view src) noexcept {
    return Vnt_StrCopy(dst, N, src);
}
template <std::size_t N>
inline std::size_t Vnt_StrCopy(char (&dst)[N], const char* src) noexcept {
    return Vnt_StrCopy(dst, N, src);
}

/// Answer of every function that shows a message box:
/// 1 OK/Yes/Retry (or a suppressed message), 2 Cancel/Abort (or an empty
/// text), 7 No/Ignore (or Cancel in a Yes/No box), -1 the box could not be
/// created.
using VNT_RESP = long;

inline constexpr VNT_RESP VNT_RESP_OK = 1;
inline constexpr VNT_RESP VNT_RESP_CANCEL = 2;
inline constexpr VNT_RESP VNT_RESP_NO = 7;
inline constexpr VNT_RESP VNT_RESP_ERROR = -1;

/// A loaded module of the application (a module library, or null for the
/// program itself): the owner of a string table (see VntRes in vanto/msg.h).
struct VNT_MODULE_;
using VNT_HINSTANCE = VNT_MODULE_*;

/// A window of the window system port (see vanto/ui/window.h).
struct VNT_WINDOW_;
using VNT_HWND = VNT_WINDOW_*;

/// A message reference: either a message number or the address of a literal
/// text that is used as it stands.
///
///   VntMsgRef(1..65535)   message number (32768 and above: system messages)
///   VntMsgRef(0)          the first message when iterating
///   VntMsgRef(-1)         the next message when iterating
///   VntMsgRef("text")     the literal text "text"
///
/// The reference is tagged, so a text keeps its meaning on hosts whose
/// `long` is narrower than a pointer. An integer outside -1..65535 that is
/// not a text stands for the empty literal text.
class VntMsgRef {
public:
    constexpr VntMsgRef() noexcept = default;
    constexpr VntMsgRef(int id) noexcept : value_(id) {}
    constexpr VntMsgRef(long id) noexcept : value_(static_cast<std::intptr_t>(id)) {}
    constexpr VntMsgRef(long long id) noexcept : value_(static_cast<std::intptr_t>(id)) {}
    constexpr VntMsgRef(unsigned id) noexcept : value_(static_cast<std::intptr_t>(id)) {}
    constexpr VntMsgRef(unsigned long id) noexcept : value_(static_cast<std::intptr_t>(id)) {}
    VntMsgRef(const char* text) noexcept
        : value_(reinterpret_cast<std::intptr_t>(text)), text_(true) {}

    /// True when the reference names a literal text (a null text included).
    constexpr bool IsText() const noexcept { return text_ || value_ < -1 || value_ > 65535; }
    /// True for a message number 1..65535.
    constexpr bool IsId() const noexcept { return !text_ && value_ >= 1 && value_ <= 65535; }
    /// True for 0 (first) and -1 (next).
    constexpr bool IsIteration() const noexcept { return !text_ && (value_ == 0 || value_ == -1); }
    /// The message number, 0 or -1; meaningless for a text.
    constexpr long Id() const noexcept { return static_cast<long>(value_); }
    /// The literal text; "" for an integer outside -1..65535 or a null text.
    const char* Text() const noexcept {
        if (text_) {
            const char* p = reinterpret_cast<const char*>(value_);
            return p ? p : "";
        }
        return "";
    }
    /// The raw value: the number, or the text's address.
    constexpr std::intptr_t Raw() const noexcept { return value_; }

    friend constexpr bool operator==(const VntMsgRef& a, const VntMsgRef& b) noexcept {
        return a.value_ == b.value_ && a.text_ == b.text_;
    }

private:
    std::intptr_t value_ = 0;
    bool text_ = false;
};
