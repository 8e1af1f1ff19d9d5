// Copying files, by pattern and whole trees, with a progress dialog and
// retry questions.
#include "vanto/filecopy.h"

#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "base/strbuf.h"
#include "host/error.h"
#include "host/file.h"
#include "host/path.h"
#include "host/watch.h"
#include "vanto/stat.h"

namespace {

constexpr const char* kSource = "VntFileCopy";
constexpr std::size_t kChunk = 16384;
constexpr unsigned long kMiB = 1048576;

// Message numbers of the system library.
constexpr long kMsgCopying = 60022;
constexpr long kMsgScanning = 60023;
constexpr long kMsgSkipping = 60024;
constexpr long kMsgNotFound = 60025;
constexpr long kMsgCopyFailed = 60026;

std::string displayName(const char* name, long width) { return Vnt_LfnNameOut(name, width); }

// True when both names lead to one file (another spelling, a volume mapped
// onto the same directory, a link): opening it as the target would
// truncate the source.
bool sameFile(const char* a, const char* b) {
    std::string ha, hb;
    if (!vnt::host::toHost(a, ha) || !vnt::host::toHost(b, hb)) return false;
    const vnt::host::FileStamp sa = vnt::host::fileStamp(ha), sb = vnt::host::fileStamp(hb);
    return sa.size >= 0 && sb.size >= 0 && sa.inode == sb.inode && sa.device == sb.device;
}

}  // namespace

// A progress dialog made by the copier, given its message handle, a Cancel
// button and the overall count when one was set (the title follows once it
// is open).
VntStat* VntFileCopy::makeDialog() {
    auto* stat = new (std::nothrow) VntStat(0, 1, 0);
    if (!stat) return nullptr;
    if (msg_) stat->Setup(0, 1, 0, msg_);
    stat->EnableCancel(true);  // the user may stop a copy the copier shows
    if (forAll_) stat->SetCountForAll(forAllTotal_);
    return stat;
}

void VntFileCopy::_init_(int objectSize, int procTableSize, VntStat* stat, long title) {
    // Diagnostics only: a caller built against another layout goes on.
    if (objectSize != static_cast<int>(sizeof(VntFileCopy)))
        Vnt_MsgBox("!'VntFileCopy' size is %d - should be %d.\n", objectSize, static_cast<int>(sizeof(VntFileCopy)));
    if (procTableSize != kProcTableSize)
        Vnt_MsgBox("!'VntFileCopy' proc table size is %d - should be %d.\n", procTableSize, kProcTableSize);
    objectSize_ = objectSize;
    procTableSize_ = procTableSize;
    stat_ = stat;
    title_ = title;
}

VntFileCopy::~VntFileCopy() {
    Close();
    delete singleStat_;
    delete[] paths_;
}

void VntFileCopy::Setup(VntStat* stat, long title, VNT_MSG msg) {
    if (stat) {
        // A dialog of a pattern copy goes first, so that it cannot take the
        // new one with it.
        Close();
        stat_ = stat;
    }
    title_ = title;
    if (msg) msg_ = msg;
}

bool VntFileCopy::SetFolders(const char* source, const char* target) {
    if (!paths_) paths_ = new (std::nothrow) char[4][VNT_MAX_PATH]();
    if (Vnt__InternalError(!paths_, 1, kSource, __LINE__)) return false;
    if (source) {
        vnt::copyBounded(paths_[0], source);
        sourceLen_ = std::strlen(paths_[0]);
    }
    if (target) vnt::copyBounded(paths_[1], target);
    return true;
}

bool VntFileCopy::ensureFolders() { return !Vnt__InternalError(!paths_, 2, kSource, __LINE__); }

void VntFileCopy::Close() {
    Vnt_LfnFindClose(&find_);
    if (patternStat_) {
        delete patternStat_;
        patternStat_ = nullptr;
        stat_ = nullptr;
    }
}

// ---------------------------------------------------------------------------
// Pattern copy
// ---------------------------------------------------------------------------

bool VntFileCopy::CopyFirst(const char* source, const char* target, const char* pattern, char* found) {
    if (!SetFolders(source, target) || !ensureFolders()) return false;
    Vnt_LfnFindClose(&find_);
    if (!Vnt_LfnFileFindFirst(found, paths_[0], pattern, &find_)) return false;
    if (!stat_) stat_ = patternStat_ = makeDialog();
    Copy(paths_[0], paths_[1], Vnt_LfnFileName());
    return error_ == VNT_FC_OK;
}

bool VntFileCopy::CopyNext(char* found) {
    if (!ensureFolders() || !find_) return false;
    if (!Vnt_LfnFileFindNext(&find_, found)) return false;
    Copy(paths_[0], paths_[1], Vnt_LfnFileName());
    return error_ == VNT_FC_OK;
}

// ---------------------------------------------------------------------------
// One file
// ---------------------------------------------------------------------------

std::uint32_t VntFileCopy::Copy(const char* sourceDir, const char* targetDir, const char* name) {
    VNT_PATH source, target;
    Vnt_LfnNameMake(source, sourceDir, name, nullptr);
    Vnt_LfnNameMake(target, targetDir, name, nullptr);
    return Copy(source, target);
}

std::uint32_t VntFileCopy::Copy(const char* name) {
    if (!ensureFolders()) return 0;
    return Copy(paths_[0], paths_[1], name);
}

std::uint32_t VntFileCopy::Copy(const char* source, const char* target) {
    error_ = VNT_FC_OK;
    if (!source || !target) return 0;
    // Our own copies: the names may live in buffers the searches below reuse.
    VNT_PATH src, dst;
    vnt::copyBounded(src, source);
    vnt::copyBounded(dst, target);
    if (!Vnt_LfnFileFind(src, nullptr)) return 0;
    length_ = static_cast<std::uint32_t>(Vnt_LfnFileLength());
    sourceAttr_ = static_cast<std::uint32_t>(Vnt_LfnFileAttr());
    sourceTime_ = static_cast<std::uint32_t>(Vnt_LfnFileDateTime());
    targetAttr_ = targetTime_ = 0;

    if (!stat_) {
        stat_ = singleStat_ = makeDialog();
        if (!stat_) return 0;
    }
    const std::uint32_t result = do_copy(src, dst);
    if (singleStat_) {
        delete singleStat_;
        if (stat_ == singleStat_) stat_ = nullptr;
        singleStat_ = nullptr;
    }
    return result;
}

// The files of one copy under way.
struct VntFileCopy::OneCopy {
    vnt::host::File in, out;
    std::string temp;              // the new file beside the target, until it takes its name
    std::unique_ptr<char[]> buf;   // for a copy the host cannot make by itself
    std::size_t chunk = kChunk;    // bytes a step copies
    std::uint32_t bytes = 0;       // copied so far
    bool ontoItself = false;       // the target is the source under another name
    bool sourceOpened = false;     // this attempt got as far as the source's data

    // Closes both files; the new file goes unless it took the target's name.
    void close() {
        in.close();
        out.close();
        if (!temp.empty()) vnt::host::removeFile(temp.c_str());
        temp.clear();
    }
};

std::uint32_t VntFileCopy::do_copy(const char* src, const char* dst) {
    OneCopy c;
    if (keepTarget(src, dst, c.ontoItself) || treeMode_ != TM_COPY) return length_;
    c.buf.reset(new (std::nothrow) char[kChunk]);
    if (!c.buf) {
        error_ = VNT_FC_NOMEM;
        return 0;
    }
    bool done = false;
    for (;;) {
        error_ = VNT_FC_OK;
        c.bytes = 0;
        if (openFiles(c, src, dst)) {
            if (!do_progress(src, dst, false, 0)) break;
            done = copyData(c, dst);
            if (done || error_ == VNT_FC_CANCEL) break;  // no question after a cancel
        }
        if (!askRetry(c, src, dst)) break;
    }
    // A copy that did not finish leaves the target as it was.
    c.close();
    if (stat_ && !forAll_) stat_->SetCount(0, 0);
    return done ? c.bytes : 0;
}

/*
 * Whether an existing target stays as it is: never overwritten, or newer
 * than the source where only an older one is (then said as skipped, unless
 * a tree is scanned). Notes the target's attributes and time, and whether
 * it is the source itself under another name.
 */
bool VntFileCopy::keepTarget(const char* src, const char* dst, bool& ontoItself) {
    ontoItself = false;
    if (!Vnt_LfnFileFind(dst, nullptr)) return false;
    ontoItself = sameFile(src, dst);
    targetAttr_ = static_cast<std::uint32_t>(Vnt_LfnFileAttr());
    targetTime_ = static_cast<std::uint32_t>(Vnt_LfnFileDateTime());
    if (overwrite_ == OW_NEVER || (overwrite_ == OW_IFNOTNEWER && targetTime_ > sourceTime_)) {
        error_ = VNT_FC_SKIPPED;
        if (!(treeMode_ & 1)) do_progress(src, dst, true, 0);
        return true;
    }
    return false;
}

/*
 * Opens the source (after its time, which tells a missing one) and the new
 * file that takes the target's name only when complete, so that a copy that
 * fails or is killed never leaves a partial target (nor truncates an old
 * one). A copy onto the source itself is refused. False with error_ set.
 */
bool VntFileCopy::openFiles(OneCopy& c, const char* src, const char* dst) {
    unsigned long packed = 0;
    c.sourceOpened = false;
    if (!Vnt_LfnFileTimeGetp(src, &packed) || !(c.sourceOpened = c.in.openRead(src))) {
        error_ = VNT_FC_SOURCE;
        return false;
    }
    c.in.adviseSequential();
    // A file shorter than a chunk is read in one piece of its own length;
    // the length noted is only the low 32 bits, so a short one is asked of
    // the file itself.
    if (length_ < kChunk) {
        const std::int64_t size = c.in.size();
        c.chunk = size < 0 || static_cast<std::uint64_t>(size) >= kChunk ? kChunk : static_cast<std::size_t>(size);
    }
    Vnt_LfnDirCreateFromFile(dst);
    if (c.ontoItself) {
        vnt::host::setLastError(vnt::host::ErrorKind::Invalid);
        error_ = VNT_FC_TARGET;
        return false;
    }
    if (!c.out.openReplacement(dst, c.temp)) {
        error_ = VNT_FC_TARGET;
        return false;
    }
    c.out.reserve(length_);
    return true;
}

/*
 * Copies step by step with the progress shown, then gives the new file the
 * source's time (to the nanosecond, which the packed form cannot hold) and
 * the target's name. False with error_ set: cancelled, a read or a write
 * failed.
 */
bool VntFileCopy::copyData(OneCopy& c, const char* dst) {
    for (;;) {
        if (stat_->IsCancel()) {
            error_ = VNT_FC_CANCEL;
            return false;
        }
        vnt::host::File::CopyFail fail;
        const std::size_t n = c.out.copyFrom(c.in, c.buf.get(), c.chunk ? c.chunk : kChunk, fail);
        if (fail != vnt::host::File::CopyFail::None) {
            error_ = fail == vnt::host::File::CopyFail::Read ? VNT_FC_READ : VNT_FC_WRITE;
            return false;
        }
        if (n == 0) break;
        c.bytes += static_cast<std::uint32_t>(n);
        stat_->Progress(static_cast<unsigned long>(forAll_ ? n : c.bytes));
    }
    c.out.copyTimeFrom(c.in);
    const bool synced = c.out.sync();
    c.out.close();
    if (synced && vnt::host::renameFile(c.temp.c_str(), dst)) {
        c.temp.clear();
        return true;
    }
    error_ = VNT_FC_WRITE;
    return false;
}

/*
 * Asks whether to try again, naming the file that failed with the host's
 * reason; a source that is missing is only said. Both files are closed and
 * the new one removed first.
 */
bool VntFileCopy::askRetry(OneCopy& c, const char* src, const char* dst) {
    const vnt::host::Error err = vnt::host::lastError();
    const bool missing = err.kind == vnt::host::ErrorKind::NotFound && !c.sourceOpened;
    c.close();
    vnt::host::setLastError(err);
    const VNT_RESP r = Vnt_MsgSys(missing ? kMsgNotFound : kMsgCopyFailed,
                                  displayName(c.sourceOpened ? dst : src, 38).c_str(),
                                  vnt::host::errorText(err).c_str());
    return r != VNT_RESP_CANCEL && r != VNT_RESP_NO && !missing;
}

bool VntFileCopy::do_progress(const char* source, const char* target, bool skipped, std::uint32_t bytes) {
    if (!stat_) return false;
    // In the "for all" mode the dialog counts the bytes of the whole run.
    if (!forAll_) stat_->SetCount(length_, 0);
    if (skipped && (treeMode_ & 1)) return true;
    const bool wasOpen = stat_->IsOpen();
    const std::string to = displayName(target, 34);
    bool shown;
    if (skipped) {
        shown = stat_->IsOpen() ? stat_->Msg(kMsgSkipping, to.c_str()) : stat_->Begin(kMsgSkipping, to.c_str());
    } else {
        const std::string from = displayName(source, 34);
        const long id = (treeMode_ & 1) ? kMsgScanning : kMsgCopying;
        shown = stat_->IsOpen() ? stat_->Msg(id, from.c_str(), to.c_str())
                                : stat_->Begin(id, from.c_str(), to.c_str());
    }
    if (shown && !wasOpen && title_ && (stat_ == singleStat_ || stat_ == patternStat_)) stat_->SetTitle(title_);
    if (stat_->IsOpen()) {
        if (!forAll_) stat_->Progress(static_cast<unsigned long>(bytes));
        return true;
    }
    error_ = VNT_FC_NODIALOG;
    return false;
}

void VntFileCopy::SetCountForAll(double total) {
    if (total < 0) total = total_;
    forAll_ = true;
    forAllTotal_ = static_cast<unsigned long>(total);
    if (stat_) stat_->SetCountForAll(forAllTotal_);
}

// ---------------------------------------------------------------------------
// Tree walk
// ---------------------------------------------------------------------------

bool VntFileCopy::TreeCopy(const char* source) { return tree(TM_COPY, source); }
bool VntFileCopy::TreeScan(const char* source) { return tree(TM_SCAN, source); }
bool VntFileCopy::TreeCompare(const char* source) { return tree(TM_COMPARE, source); }

bool VntFileCopy::tree(int mode, const char* source) {
    treeMode_ = mode;
    error_ = VNT_FC_OK;
    total_ = 0;
    totalMiB_ = totalRest_ = 0;
    differences_ = 0;
    depth_ = 0;
    const bool ok = SetFolders(source, nullptr) && ensureFolders() && walk(paths_[0]);
    treeMode_ = TM_COPY;
    return ok;
}

// The target name of a name below the source folder.
void VntFileCopy::targetOf(const char* source, char (&target)[VNT_MAX_PATH]) const {
    const char* rel = source + (std::strlen(source) >= sourceLen_ ? sourceLen_ : std::strlen(source));
    while (*rel == '\\') ++rel;
    if (*rel)
        Vnt_LfnNameMake(target, paths_[1], rel, nullptr);
    else
        vnt::copyBounded(target, paths_[1]);
}

bool VntFileCopy::walk(const char* dir) {
    const bool scanning = (treeMode_ & 1) != 0;
    if (depth_ == 0 && !stat_) stat_ = patternStat_ = makeDialog();
    ++depth_;
    VNT_PATH here, there;
    vnt::copyBounded(here, dir);
    targetOf(here, there);
    if (!scanning) Vnt_LfnDirCreate(there);

    bool ok = true;
    VNT_PATH found, target;
    VNT_LFN_HFIND h = nullptr;
    // Subdirectories first, depth first.
    for (bool more = Vnt_LfnDirFindFirst(found, here, "*.*", &h); more && ok;
         more = Vnt_LfnDirFindNext(&h, found)) {
        targetOf(found, target);
        bool skip = false;
        ok = scanning ? OnScanDir(found, target, &skip) : OnCopyDir(found, target, &skip);
        if (ok && !skip) ok = walk(found);
    }
    Vnt_LfnFindClose(&h);

    for (bool more = ok && Vnt_LfnFileFindFirst(found, here, "*.*", &h); more && ok;
         more = Vnt_LfnFileFindNext(&h, found)) {
        const unsigned long length = Vnt_LfnFileLength();
        const unsigned long stamp = Vnt_LfnFileDateTime();
        total_ += static_cast<double>(length);
        totalRest_ += length % kMiB;
        totalMiB_ += length / kMiB + totalRest_ / kMiB;
        totalRest_ %= kMiB;
        targetOf(found, target);
        bool skip = false;
        ok = scanning ? OnScanFile(found, target, &skip) : OnCopyFile(found, target, &skip);
        if (!ok) break;
        if (skip) continue;
        if (scanning) {
            // A scan shows each file as it goes and can be cancelled between
            // files.
            length_ = static_cast<std::uint32_t>(length);
            if (!do_progress(found, target, false, 0)) {
                ok = false;
                break;
            }
            if (stat_->IsCancel()) {
                error_ = VNT_FC_CANCEL;
                ok = false;
                break;
            }
        }
        if (treeMode_ == TM_COMPARE) {
            // The file differs when the target is missing, or has another
            // length or time.
            if (!Vnt_LfnFileFind(target, nullptr) || Vnt_LfnFileLength() != length ||
                Vnt_LfnFileDateTime() != stamp)
                ++differences_;
        } else if (!scanning) {
            Copy(found, target);
            ok = !IsError() && !IsCancel();
        }
    }
    Vnt_LfnFindClose(&h);
    --depth_;
    return ok;
}

bool VntFileCopy::OnScanFile(char*, char*, bool*) { return true; }
bool VntFileCopy::OnCopyFile(char*, char*, bool*) { return true; }
bool VntFileCopy::OnScanDir(char*, char*, bool*) { return true; }
bool VntFileCopy::OnCopyDir(char*, char*, bool*) { return true; }
