// VntIni line access: the line stream, the line reader, section lookup and
// enumeration, the section rewrite, section name forms, and VntIniX.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "base/names.h"
#include "base/strbuf.h"
#include "host/error.h"
#include "host/file.h"
#include "ini/ini_stream.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"

namespace vnt::ini {

namespace {

constexpr std::size_t kPiece = 1023;  // characters of one line read

}  // namespace

bool rewriteTemp(const char* file, char (&temp)[VNT_MAX_PATH]) {
    if (file == nullptr || *file == '\0' || std::strlen(file) >= sizeof temp) return false;
    copyBounded(temp, file);
    return Vnt_LfnNameExt(temp, "tmp") && !vnt::sameText(temp, file);
}

bool takeLeftoverRewrite(const char* file) {
    char temp[VNT_MAX_PATH];
    if (!rewriteTemp(file, temp) || host::fileExists(file) || !host::fileExists(temp)) return false;
    return host::renameFile(temp, file);
}

Stream* Stream::openRead(const char* file) {
    auto* s = new Stream;
    s->name = file;
    bool missing = false;
    if (!host::readFile(file, s->data, &missing) &&
        !(missing && takeLeftoverRewrite(file) && host::readFile(file, s->data))) {
        delete s;
        return nullptr;
    }
    return s;
}

Stream* Stream::openWrite(const char* file) {
    if (!host::writeFileAtomic(file, std::string())) return nullptr;
    auto* s = new Stream;
    s->name = file;
    s->writing = true;
    return s;
}

bool Stream::readLine(char* buf) {
    if (pos >= data.size()) {
        buf[0] = '\0';
        return false;
    }
    const std::size_t end = std::min(data.size(), pos + kPiece);
    std::size_t stop = pos;
    while (stop < end && data[stop] != '\r' && data[stop] != '\n') ++stop;
    // Characters after a NUL are dropped, as a C string would drop them.
    copyBounded(buf, kPiece + 1, std::string_view(data.data() + pos, stop - pos));
    pos = stop;
    // The line end behind the piece goes with it ("\r\n", "\n" or "\r").
    if (pos < data.size() && data[pos] == '\r') ++pos;
    if (pos < data.size() && data[pos] == '\n' && (pos == stop || data[pos - 1] == '\r')) ++pos;
    return true;
}

bool Stream::writeOut() const { return host::writeFileAtomic(name.c_str(), data); }

}  // namespace vnt::ini

using vnt::sameText;

namespace {

constexpr long kNoSection = -2;  // vtmSection_ after a search that failed

// A bare section name a header line can hold so that it reads back: no line
// end and no "]"; invalid argument otherwise.
bool headerName(const char* bare) {
    if (std::strpbrk(bare, "\r\n]") == nullptr) return true;
    vnt::host::setLastError(vnt::host::ErrorKind::Invalid);
    return false;
}

const char* skipBlanks(const char* p) {
    while (vnt::isBlank(*p)) ++p;
    return p;
}

}  // namespace

// ---------------------------------------------------------------------------
// The line reader
// ---------------------------------------------------------------------------

/* Reads the next line into the line buffer: from the message library in VTM
   mode, else from the old file during a rewrite or from the file read. The
   file is opened on first use. No start-up call is needed before reading:
   the library-wide objects are made on first use. */
bool VntIni::read_buf(bool trim) {
    if (vtm_) {
        if (!vtmHandle_) {
            const long pos = vtmPos_;  // the lazy open must not move the reader
            if (!Open(nullptr, VNTINI_KEEP, true)) return false;
            vtmPos_ = pos;
        }
        const char* text = Vnt_MsgHGet(vtmHandle_, VntMsgRef(vtmPos_), line_, sizeof line_);
        if (text != line_) vnt::copyBounded(line_, text);
        const long id = Vnt_MsgGetID();
        vtmPos_ = -1;
        if (id <= 0) {
            line_[0] = '\0';
            return false;
        }
        vtmLast_ = id;
    } else {
        if (!stream_ && !Open(nullptr, VNTINI_KEEP, true)) return false;
        vnt::ini::Stream* in = input_ ? input_ : stream_;
        if (!in || in->writing || !in->readLine(line_)) {
            line_[0] = '\0';
            return false;
        }
    }
    if (trim) vnt::trimInPlace(line_);
    return true;
}

bool VntIni::ReadStr(char* buf, unsigned size) {
    char* target = (buf && size) ? buf : line_;
    const unsigned cap = (buf && size) ? size : sizeof line_;
    target[0] = '\0';
    while (read_buf(true)) {
        if (line_[0] == '\0' || line_[0] == ';') continue;
        if (line_[0] == '[') return false;  // stays in the line buffer for SectionNext
        if (target != line_) vnt::copyBounded(target, cap, line_);
        return true;
    }
    return false;
}

const char* VntIni::ReadString(const char* def, char* buf, unsigned size) {
    if (!ReadStr(buf, size)) {
        if (buf && size) vnt::copyBounded(buf, size, def);
        else vnt::copyBounded(line_, def);
    }
    return line_;
}

/* Counts the lines left in the section. A message library is set back to
   where it was; a plain file is not, kept for compatibility: the caller
   finds the section again before reading it. */
long VntIni::CountEntries() {
    const long pos = vtmPos_, last = vtmLast_;
    long n = 0;
    while (ReadStr(nullptr, 0)) ++n;
    if (vtm_) {
        if (pos == -1 && last > 0 && vtmHandle_) {
            char scratch[1024];
            Vnt_MsgHGet(vtmHandle_, VntMsgRef(last), scratch, sizeof scratch);  // "next" follows it again
            vtmLast_ = last;
        }
        vtmPos_ = pos;
    }
    return n;
}

// ---------------------------------------------------------------------------
// Sections
// ---------------------------------------------------------------------------

bool VntIni::SectionFind(const char* section) {
    bool& guard = vnt::ini::engine().sectionGuard;
    const bool was = guard;
    guard = true;
    if (section && section != section_) SetSection(section, -1);
    guard = was;
    if (!section_[0]) return false;
    return section_find(section_, nullptr, false, true);
}

bool VntIni::SectionFirst(char (*name)[100]) { return section_find(nullptr, name, true, true); }

bool VntIni::SectionNext(char (*name)[100]) { return section_find(nullptr, name, true, false); }

/* Searches a header from the top (a name given) or takes the next header
   (enumerating); a found section becomes current. */
bool VntIni::section_find(const char* name, char (*out)[100], bool enumerate, bool fromTop) {
    const bool searching = name && *name && !enumerate;
    auto take = [&]() {
        if (out) {
            vnt::copyBounded(*out, std::string_view(line_, std::min<std::size_t>(std::strlen(line_), 99)));
            SectionNameClean(*out);
        }
        vnt::copyBounded(section_, std::string_view(line_, std::min<std::size_t>(std::strlen(line_), 99)));
        SectionNameClean(section_);
        line_[0] = '\0';
        if (vtm_) vtmSection_ = vtmLast_;
        return true;
    };
    if (!searching && !fromTop && line_[0] == '[') return take();
    if (searching || fromTop) {
        if (vtm_) vtmPos_ = 0;
        else if (vnt::ini::Stream* in = input_ ? input_ : stream_) in->rewind();
    }
    char header[100] = {};
    if (searching) SectionNameMake(header, name);
    if (enumerate && !fromTop && vtm_) {
        if (vtmSection_ == kNoSection) return false;
        vtmPos_ = vtmSection_;
        if (!read_buf(true)) return false;
    }
    while (read_buf(true)) {
        if (line_[0] != '[') continue;
        if (!searching) return take();
        if (sameText(line_, header)) {
            line_[0] = '\0';
            if (vtm_) vtmSection_ = vtmLast_;
            return true;
        }
    }
    // A failed search leaves no section to read entries from.
    if (searching && vtm_) vtmSection_ = kNoSection;
    return false;
}

/* VTM mode: finds `entry` in the current section, split at the first "=",
   and leaves its value in the line buffer. */
bool VntIni::entry_find(const char* entry) {
    if (Vnt__InternalError(!vtm_, 4, __FILE__, __LINE__)) return false;
    if (vtmSection_ == kNoSection) return false;
    vtmPos_ = vtmSection_;
    if (!read_buf(true)) return false;  // the header
    std::string want = entry;
    while (!want.empty() && vnt::isBlank(want.back())) want.pop_back();
    while (read_buf(true)) {
        if (line_[0] == '[') break;
        char* eq = std::strchr(line_, '=');
        if (line_[0] == ';' || eq == nullptr) continue;
        char* nameEnd = eq;
        while (nameEnd > line_ && vnt::isBlank(nameEnd[-1])) --nameEnd;
        *nameEnd = '\0';
        if (!sameText(line_, want.c_str())) continue;
        const char* value = skipBlanks(eq + 1);
        std::memmove(line_, value, std::strlen(value) + 1);
        vnt::trimInPlace(line_);
        return true;
    }
    line_[0] = '\0';
    return false;
}

bool VntIni::SectionNameMake(char (&name)[100], const char* src) {
    const char* s = src ? src : name;
    const std::size_t len = std::strlen(s);
    const bool closing = len > 0 && s[len - 1] == ']';
    const bool opening = s[0] == '[';
    std::size_t bare = len;
    if (closing) --bare;
    if (opening && bare) --bare;
    const std::size_t keep = closing ? 98 : 97;
    if (src) {
        // A separate source is copied behind a "[" of its own.
        std::string out = "[";
        out.append(s, std::min(len, keep));
        if (!closing) out += ']';
        vnt::copyBounded(name, out);
    } else {
        if (!opening) {
            const std::size_t n = std::min(len, keep);
            std::memmove(name + 1, name, n);
            name[0] = '[';
            name[n + 1] = '\0';
        }
        if (!closing) {
            if (bare > 97) {
                name[98] = ']';
                name[99] = '\0';
            } else {
                const std::size_t l = std::strlen(name);
                name[l] = ']';
                name[l + 1] = '\0';
            }
        }
    }
    return bare < 98;
}

void VntIni::SectionNameClean(char* name, char** start, unsigned* length) {
    if (name == nullptr) return;
    char* p = name;
    while (vnt::isBlank(*p)) ++p;
    char* last = nullptr;
    if (*p == '[') {
        ++p;
        last = std::strrchr(p, ']');
    }
    if (start) {
        *start = p;
        if (length) *length = static_cast<unsigned>(last ? last - p : static_cast<std::ptrdiff_t>(std::strlen(p)));
        return;
    }
    if (last) *last = '\0';
    std::memmove(name, p, std::strlen(p) + 1);
}

// ---------------------------------------------------------------------------
// Writing
// ---------------------------------------------------------------------------

bool VntIni::WriteBuf() {
    if (!stream_ || !stream_->writing) return false;
    stream_->write(line_, std::strlen(line_));
    stream_->write("\r\n", 2);
    return true;
}

/* Opens the rewrite: output to the temporary file "<name>.tmp" beside an
   existing file (which becomes the input), or straight to a new file. */
bool VntIni::open_for_writing(const char* file) {
    if (Vnt__InternalError(vtm_, 2, __FILE__, __LINE__)) return false;
    if (file && *file && std::strcmp(file, file_) != 0) SetFile(file, VNTINI_KEEP);
    if (badName_) {
        vnt::host::setLastError(vnt::host::ErrorKind::Invalid);
        return false;
    }
    if (Vnt__InternalError(!file_[0], 1, __FILE__, __LINE__)) return false;
    if (Vnt__InternalError(vtm_, 2, __FILE__, __LINE__)) return false;
    Flush();
    if (vtmHandle_) Vnt_MsgHTerm(&vtmHandle_);
    vtmHandle_ = nullptr;
    release_streams();
    vnt::ini::takeLeftoverRewrite(file_);
    if (vnt::host::fileExists(file_)) {
        // A file whose own extension is "tmp" would be its own temporary file.
        if (!vnt::ini::rewriteTemp(file_, temp_)) {
            vnt::copyBounded(temp_, file_);
            Vnt_LfnNameExt(temp_, "tmp");
            vnt::host::setLastError(vnt::host::ErrorKind::Exists);
            Vnt_MsgErrLastError(Vnt_LfnNameOut(temp_));
            temp_[0] = '\0';
            return false;
        }
        stream_ = vnt::ini::Stream::openWrite(temp_);
        if (!stream_) {
            Vnt_MsgErrLastError(Vnt_LfnNameOut(temp_));
            return false;
        }
        input_ = vnt::ini::Stream::openRead(file_);
        if (!input_) {
            Vnt_MsgErrLastError(Vnt_LfnNameOut(file_));
            delete stream_;
            stream_ = nullptr;
            vnt::host::removeFile(temp_);
            return false;
        }
        return true;
    }
    stream_ = vnt::ini::Stream::openWrite(file_);
    if (!stream_) Vnt_MsgErrLastError(Vnt_LfnNameOut(file_));
    return stream_ != nullptr;
}

/* Begins rewriting the current section: copies the old file up to the
   section's header and the empty and comment lines directly behind it, or
   appends an empty line and the header when the section is new. */
bool VntIni::SectionWriteBegin(const char* section) {
    if (vtm_) {
        Vnt__MsgErr(__FILE__, __LINE__,
                    "#Internal Error:\n\nVntIni::SectionWriteBegin(): VTM mode does not support writing back to a file");
        return false;
    }
    if (section) SetSection(section, -1);
    if (!headerName(section_) || !open_for_writing(nullptr)) return false;
    SectionNameMake(section_, nullptr);
    bool ok = true, passed = false;
    if (input_) {
        for (;;) {
            const std::size_t mark = input_->pos;
            if (!input_->readLine(line_)) break;
            const char* p = skipBlanks(line_);
            if (passed && *p && *p != ';') {
                input_->pos = mark;  // read again by SectionWriteEnd
                break;
            }
            if (!(ok = WriteBuf())) break;
            vnt::trimInPlace(line_);
            if (sameText(line_, section_)) passed = true;
        }
    }
    if (ok && !passed) {
        line_[0] = '\0';
        ok = WriteBuf();
        vnt::copyBounded(line_, std::string_view(section_));
        ok = ok && WriteBuf();
    }
    line_[0] = '\0';
    SectionNameClean(section_);
    if (!ok) {
        SectionWriteEnd(false);
        return false;
    }
    return true;
}

/* Ends the rewrite: the old section's entries are dropped, its comments and
   every line from the next header on are copied; then Close(commit). */
void VntIni::SectionWriteEnd(bool commit) {
    if (vtm_) {
        Vnt__MsgErr(__FILE__, __LINE__,
                    "#Internal Error:\n\nVntIni::SectionWriteEnd(): VTM mode does not support writing back to a file");
        return;
    }
    if (commit && input_ && stream_) {
        bool header = false;
        while (input_->readLine(line_)) {
            const char* p = skipBlanks(line_);
            if (*p == '[') header = true;
            if (header || *p == '\0' || *p == ';') WriteBuf();
        }
        line_[0] = '\0';
    }
    Close(commit);
}

// ---------------------------------------------------------------------------
// VntIniX
// ---------------------------------------------------------------------------

VntIniX::VntIniX(const char* file, const char* section, VNTINI_TYPE type) : VntIni(file, section, type) {}

VntIniX::~VntIniX() = default;

bool VntIniX::IsOpen() const { return stream_ != nullptr; }

bool VntIniX::OpenWrite(const char* file) { return open_for_writing(file); }

bool VntIniX::ReadRawLine(char* buf, int size) {
    if (!read_buf(true)) return false;
    if (buf && size >= 1 && buf != line_) vnt::copyBounded(buf, static_cast<std::size_t>(size), line_);
    return true;
}

// Never delivers a line: kept for compatibility, callers use ReadRawLine.
bool VntIniX::ReadLine(char*, int) {
    while (ReadRawLine(nullptr, 0)) {
        if (line_[0] == '[') return false;
    }
    return false;
}

/* The section's raw lines, each ended by "\n", as long as they fit in
   size - 2 characters; the next header ends it. */
void VntIniX::ReadSection(char* buf, int size, const char* section) {
    if (buf == nullptr || size < 1) return;
    buf[0] = '\0';
    if (size < 2) return;
    const bool wasOpen = IsOpen() || vtmHandle_;
    if (!wasOpen && !Open(nullptr, VNTINI_KEEP, true)) return;
    if (SectionFind(section ? section : section_)) {
        std::string text;
        const std::size_t limit = static_cast<std::size_t>(size) - 2;
        while (ReadRawLine(nullptr, 0) && line_[0] != '[') {
            if (text.size() + std::strlen(line_) + 1 >= limit) break;
            text += line_;
            text += '\n';
        }
        vnt::copyBounded(buf, static_cast<std::size_t>(size), text);
    }
    buf[size - 1] = '\0';
    if (!wasOpen) Close(true);
}

/* Writes the header and each "\n"-separated line of `text` (1023
   characters at most); a file not open for writing is replaced by one that
   holds only this section. */
bool VntIniX::WriteSection(const char* text, const char* section) {
    char header[100];
    if (!SectionNameMake(header, section ? section : section_)) return false;
    char* bare;
    unsigned length;
    VntIni::SectionNameClean(header, &bare, &length);
    if (!headerName(std::string(bare, length).c_str())) return false;
    const bool wasOpen = stream_ && stream_->writing;
    if (!wasOpen && !open_for_writing(nullptr)) return false;
    vnt::copyBounded(line_, std::string_view(header));
    bool ok = WriteBuf();
    for (const char* p = text; ok && p && *p;) {
        const char* nl = std::strchr(p, '\n');
        std::size_t n = nl ? static_cast<std::size_t>(nl - p) : std::strlen(p);
        const std::size_t next = nl ? n + 1 : n;
        if (n && p[n - 1] == '\r') --n;  // a text with CR LF ends keeps single line ends
        vnt::copyBounded(line_, std::string_view(p, std::min<std::size_t>(n, 1023)));
        ok = WriteBuf();
        p += next;
    }
    line_[0] = '\0';
    if (!wasOpen) Close(true);
    return ok;
}
