// VntIni: construction, file and section selection, entry access, opening
// and closing (the line reader and the section rewrite are in
// inifile_lines.cpp).

#include <cstdlib>
#include <cstring>
#include <string>

#include "base/format.h"
#include "base/names.h"
#include "base/strbuf.h"
#include "host/error.h"
#include "host/file.h"
#include "ini/ini_stream.h"
#include "vanto/ini.h"
#include "vanto/ini.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"

namespace {

constexpr VNTINI_TYPE kInitialType = VNTINI_ACCESS_RW | VNTINI_USER;

bool given(const char* s) { return s != nullptr && *s != '\0'; }

// The directory part of a file name, created with every missing parent.
void makeFileDir(const char* file) { Vnt_LfnDirCreateFromFile(file); }

// A stand-in for the Windows directory on hosts without one: the program's
// own directory, the one place every application of the family can write.
void systemConfigDir(char (&dir)[VNT_MAX_PATH]) {
    if (!Vnt_LfnProgDirName(dir, sizeof dir)) dir[0] = '\0';
}

}  // namespace

VntAppProfile::~VntAppProfile() = default;

// ---------------------------------------------------------------------------
// Construction and copies
// ---------------------------------------------------------------------------

VntIni::VntIni(const char* file, const char* section, VNTINI_TYPE type)
    : file_{}, section_{}, type_(kInitialType), app_(nullptr), line_{}, tokenCursor_(nullptr),
      tokenSeps_{}, tokenNext_(nullptr), stream_(nullptr), input_(nullptr), temp_{}, badName_(false), vtm_(false),
      vtmPos_(0), vtmSection_(0), vtmLast_(0), vtmHandle_(nullptr) {
    vnt::copyBounded(tokenSeps_, ",\t\n");
    Setup(file, section, nullptr, type);
    // Setup selects a file only when one is given or the type changes.
    const bool fileSelected = given(file) || type == VNTINI_DEFAULT ||
                              (type != VNTINI_KEEP && type != kInitialType);
    if (!fileSelected) SetFile(nullptr, VNTINI_KEEP);
    if (section == nullptr) SetSection(nullptr, -2);
}

VntIni::~VntIni() { Close(true); }

// Copies share the open streams (reference-counted, so the last holder
// closes them); a VTM handle is not shared: the copy opens its own.
VntIni::VntIni(const VntIni& o)
    : file_{}, section_{}, type_(o.type_), app_(o.app_), line_{}, tokenCursor_(nullptr),
      tokenSeps_{}, tokenNext_(nullptr), stream_(o.stream_), input_(o.input_), temp_{},
      badName_(o.badName_), vtm_(o.vtm_), vtmPos_(o.vtmPos_), vtmSection_(o.vtmSection_), vtmLast_(o.vtmLast_),
      vtmHandle_(nullptr) {
    std::memcpy(file_, o.file_, sizeof file_);
    std::memcpy(section_, o.section_, sizeof section_);
    std::memcpy(line_, o.line_, sizeof line_);
    std::memcpy(tokenSeps_, o.tokenSeps_, sizeof tokenSeps_);
    std::memcpy(temp_, o.temp_, sizeof temp_);
    // Token positions point into the line buffer: carry them over to ours.
    if (o.tokenCursor_) tokenCursor_ = line_ + (o.tokenCursor_ - o.line_);
    if (o.tokenNext_) tokenNext_ = line_ + (o.tokenNext_ - o.line_);
    if (stream_) ++stream_->refs;
    if (input_) ++input_->refs;
}

VntIni& VntIni::operator=(const VntIni& o) {
    if (this == &o) return *this;
    Close(true);
    VntIni copy(o);
    std::memcpy(file_, copy.file_, sizeof file_);
    std::memcpy(section_, copy.section_, sizeof section_);
    std::memcpy(line_, copy.line_, sizeof line_);
    std::memcpy(tokenSeps_, copy.tokenSeps_, sizeof tokenSeps_);
    std::memcpy(temp_, copy.temp_, sizeof temp_);
    type_ = copy.type_;
    app_ = copy.app_;
    badName_ = copy.badName_;
    tokenCursor_ = copy.tokenCursor_ ? line_ + (copy.tokenCursor_ - copy.line_) : nullptr;
    tokenNext_ = copy.tokenNext_ ? line_ + (copy.tokenNext_ - copy.line_) : nullptr;
    stream_ = copy.stream_;
    input_ = copy.input_;
    copy.stream_ = copy.input_ = nullptr;  // the references move to us
    vtm_ = copy.vtm_;
    vtmPos_ = copy.vtmPos_;
    vtmSection_ = copy.vtmSection_;
    vtmLast_ = copy.vtmLast_;
    return *this;
}

// ---------------------------------------------------------------------------
// Selection
// ---------------------------------------------------------------------------

void VntIni::Setup(const char* file, const char* section, VntAppProfile* app, VNTINI_TYPE type) {
    if (type == VNTINI_DEFAULT) {
        SetFile(nullptr, VNTINI_DEFAULT);
        SetSection(nullptr, -2);
        return;
    }
    const bool typeChanged = type != VNTINI_KEEP && type != type_;
    if (type != VNTINI_KEEP) type_ = type;
    if (given(file) || typeChanged) SetFile(file, type);
    if (section) SetSection(section, -1);
    if (app) SetApp(app);
}

void VntIni::SetApp(VntAppProfile* app) { app_ = app; }

/* Selects the file: a path is taken as it stands, anything else names a
   file in the directory of the first type bit present. */
void VntIni::SetFile(const char* file, VNTINI_TYPE type) {
    if (type == VNTINI_DEFAULT) file = nullptr;
    else if (type != VNTINI_KEEP) type_ = type;
    const char* name = given(file) ? file : nullptr;
    // A name the buffer cannot hold is refused, never cut into another file's name.
    badName_ = name && std::strlen(name) >= sizeof file_;
    if (badName_) {
        file_[0] = '\0';
    } else if (name && Vnt_LfnNameIsPath(name)) {
        vnt::copyBounded(file_, name);
    } else if (type_ & VNTINI_USER) {
        Vnt_IniUserFile(file_, name);
    } else if (type_ & VNTINI_DAT) {
        Vnt_IniDatFile(file_, name);
    } else if (type_ & VNTINI_APP) {
        Vnt_IniAppFile(file_, name);
    } else if (type_ & VNTINI_APPRW) {
        Vnt_IniAppRWFile(file_, name);
    } else if (type_ & VNTINI_WINDIR) {
        char base[VNT_MAX_PATH], dir[VNT_MAX_PATH];
        if (name) {
            vnt::copyBounded(base, name);
        } else {
            Vnt_IniUserFile(base, nullptr);
        }
        Vnt_LfnNameSplit(base, nullptr, base, nullptr);
        systemConfigDir(dir);
        Vnt_LfnNameMake(file_, dir, base, nullptr);
    }
    char ext[VNT_MAX_PATH];
    Vnt_LfnNameSplit(file_, nullptr, nullptr, ext);
    vtm_ = vnt::sameText(ext, "vtm");
    if (vtm_ && !(type_ & VNTINI_ACCESS_RO)) {
        type_ |= VNTINI_ACCESS_RO;
        type_ &= ~VNTINI_ACCESS_RW;
    }
}

void VntIni::SetSection(const char* section, int num) {
    if (num == -2) {
        if (type_ & VNTINI_USER) vnt::copyBounded(section_, "Main");
        else if (type_ & (VNTINI_DAT | VNTINI_APP | VNTINI_APPRW)) vnt::copyBounded(section_, "Settings");
        return;
    }
    if (section == nullptr) {
        section_[0] = '\0';
        return;
    }
    vnt::copyBounded(section_, NumEntry(section, num));
    SectionNameClean(section_);
    // A message library is searched at once; SectionFind sets the guard.
    if (vtm_ && !vnt::ini::engine().sectionGuard) SectionFind(section_);
}

const char* VntIni::NumEntry(const char* name, int num) {
    if (num < 0) return name;
    std::string s = name ? name : "";
    s += std::to_string(num);
    char* buf = vnt::ini::engine().numEntry;
    vnt::copyBounded(buf, sizeof vnt::ini::engine().numEntry, s);
    return buf;
}

// ---------------------------------------------------------------------------
// Opening and closing
// ---------------------------------------------------------------------------

bool VntIni::Open(const char* file, VNTINI_TYPE type, bool report) {
    return ini_open(file, type, report, false);
}

void VntIni::Flush() { Vnt_ProfileFlush(file_[0] ? file_ : nullptr); }

namespace {

// Reports a file that could not be opened, with the host's reason.
void reportOpenFailure(const char* file) {
    if (!vnt::host::lastError()) vnt::host::setLastError(vnt::host::ErrorKind::NotFound);
    Vnt_MsgErrLastError(Vnt_LfnNameOut(file));
}

}  // namespace

/* Opens the file for reading (a message library in VTM mode); any reading
   or rewrite under way is closed, with commit, first. */
bool VntIni::ini_open(const char* file, VNTINI_TYPE type, bool report, bool forWriting) {
    if (given(file)) SetFile(file, type);
    vtmPos_ = 0;
    Flush();
    Close(true);
    if (badName_) {
        vnt::host::setLastError(vnt::host::ErrorKind::Invalid);
        return false;
    }
    if (forWriting) {
        if (Vnt__InternalError(vtm_, 2, __FILE__, __LINE__)) return false;
        if (!report) makeFileDir(file_);
    }
    if (vtm_) {
        if (!report) Vnt__MsgExtCheck(0, -1, -1);
        vtmHandle_ = Vnt_MsgHInit(nullptr, file_);
        if (!report) Vnt__MsgExtCheck(1, -1, -1);
        return vtmHandle_ != nullptr;
    }
    stream_ = vnt::ini::Stream::openRead(file_);
    if (!stream_ && report) reportOpenFailure(file_);
    return stream_ != nullptr;
}

void VntIni::release_streams() {
    for (vnt::ini::Stream** s : {&stream_, &input_}) {
        if (*s == nullptr) continue;
        if (--(*s)->refs == 0) {
            if ((*s)->writing && !(*s)->writeOut()) reportOpenFailure((*s)->name.c_str());
            delete *s;
        }
        *s = nullptr;
    }
}

/* Ends reading or writing. A rewrite is committed by putting the temporary
   file in the old file's place in one step, so that the file is at every
   moment the old or the new one; the user is asked when the old file cannot
   be given up (60500) or the temporary file cannot be moved (60501).
   Without commit the temporary file goes and the old file stays. */
void VntIni::Close(bool commit) {
    if (vtmHandle_) Vnt_MsgHTerm(&vtmHandle_);
    vtmHandle_ = nullptr;
    // Another copy still holding the streams closes them later.
    const bool last = input_ && input_->refs == 1 && (!stream_ || stream_->refs == 1);
    bool written = true;
    if (stream_) {
        if (--stream_->refs == 0) {
            if (stream_->writing && !stream_->writeOut()) {
                written = false;
                reportOpenFailure(stream_->name.c_str());
            }
            delete stream_;
        }
        stream_ = nullptr;
    }
    if (!input_) return;
    if (--input_->refs == 0) delete input_;
    input_ = nullptr;
    if (!last) return;
    if (!commit || !written) {
        vnt::host::removeFile(temp_);
        return;
    }
    vnt::host::ReplaceFail fail = vnt::host::ReplaceFail::Rename;
    bool plain = false;  // the user said to rename over the old file as it is
    while (!(plain ? vnt::host::renameFile(temp_, file_) : vnt::host::replaceFile(temp_, file_, fail))) {
        if (!plain && fail == vnt::host::ReplaceFail::Target) {
            const VNT_RESP r = Vnt_MsgSys(60500, Vnt_LfnNameOut(file_));
            if (r == VNT_RESP_CANCEL) return;  // both files stay
            plain = r == VNT_RESP_NO;
            continue;
        }
        if (Vnt_MsgSys(60501, Vnt_LfnNameOut(temp_), Vnt_LfnNameOut(file_)) != VNT_RESP_OK) return;
    }
}

// ---------------------------------------------------------------------------
// Entry access
// ---------------------------------------------------------------------------

/* Reads `entry` into the line buffer: through the profile functions, or
   in VTM mode from the current section's messages. Returns its length. */
int VntIni::profile_string(const char* entry, const char* def) {
    if (!vtm_) return static_cast<int>(Vnt_ProfileGetString(section_, entry, def, line_, sizeof line_, file_));
    line_[0] = '\0';
    const bool found = entry ? entry_find(entry) : read_buf(true);
    if (!found) vnt::copyBounded(line_, def);
    return static_cast<int>(std::strlen(line_));
}

int VntIni::ReadStr(const char* entry, const char* def, char* buf, unsigned size, int num) {
    const char* name = NumEntry(entry, num);
    if (def == nullptr) def = "";
    // A single blank is asked for as the default, so that a missing entry
    // can be told from an empty one.
    if (app_) {
        vnt::copyBounded(line_, app_->GetProfileString(section_, name, " "));
    } else {
        profile_string(name, " ");
    }
    // An empty value or a single blank counts as missing, kept for compatibility.
    const std::size_t len = std::strlen(line_);
    if (len == 0 || (len == 1 && line_[0] == ' ')) vnt::copyBounded(line_, def);
    if (buf && size) vnt::copyBounded(buf, size, line_);
    return static_cast<int>(std::strlen(line_));
}

/* Writes or deletes an entry; a value equal to its default is deleted, so
   that only differences from the defaults are stored. */
bool VntIni::WriteStr(const char* entry, const char* value, int num, bool quote, const char* def) {
    if (vtm_) {
        const std::string detail = vnt::format("File:\t\t%s\nSection:\t\t[%s]\nEntry:\t\t%s", file_, section_,
                                               entry ? entry : "");
        Vnt__MsgErr(__FILE__, __LINE__, "#Internal Error:\n\nVntIni::WriteStr(): VTM mode is read only.",
                    detail.c_str());
        return false;
    }
    std::string quoted;
    const char* v = given(value) ? value : nullptr;
    if (quote && v) {
        quoted = std::string("\"") + v + "\"";
        v = quoted.c_str();
    }
    const char* name = entry ? NumEntry(entry, num) : nullptr;
    if (badName_ && !app_) {
        vnt::host::setLastError(vnt::host::ErrorKind::Invalid);
        return false;
    }
    // Compared after quoting: a quoted value is stored even when it equals
    // an unquoted default, kept for compatibility.
    if (def && v && std::strcmp(def, v) == 0) v = nullptr;
    if (app_) return app_->WriteProfileString(section_, name, v);
    makeFileDir(file_);
    return Vnt_ProfileWriteString(section_, name, v, file_);
}

// ---------------------------------------------------------------------------
// Data exchange
// ---------------------------------------------------------------------------

void VntIni::DoDataExchange(bool) {}

void VntIni::Read() { DoDataExchange(false); }

bool VntIni::Write() {
    try {
        DoDataExchange(true);
    } catch (const vnt::ini::ExchangeAborted&) {
        return false;  // a DX write failed; the application's own exceptions pass
    }
    return true;
}
