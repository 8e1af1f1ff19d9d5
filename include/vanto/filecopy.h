// vanto/filecopy.h - copying files, by pattern and whole trees, with progress.
//
// VntFileCopy copies one file, the files of a folder that match a pattern, or
// a whole tree. Each file is shown in a progress dialog (VntStat) that the
// user can cancel; a file that cannot be read or written leads to a retry
// question; the copy keeps the source's last-write time and gets normal
// attributes (the source's are not copied). A copy that does not complete
// never leaves a partial target behind.
#pragma once

#include <cstdint>

#include "vanto/base.h"
#include "vanto/lfn.h"
#include "vanto/msg.h"

class VntStat;

/// Error codes of the last operation (VntFileCopy::Error()).
enum VNT_FILECOPY_ERROR : int {
    VNT_FC_OK = 0,
    VNT_FC_NOMEM = 1,       ///< the copy buffer could not be allocated
    VNT_FC_SOURCE = 2,      ///< the source's time could not be read or it could not be opened
    VNT_FC_READ = 3,        ///< reading the source failed
    VNT_FC_TARGET = 4,      ///< the target could not be opened for writing
    VNT_FC_WRITE = 5,       ///< writing the target failed
    VNT_FC_NODIALOG = 6,    ///< the progress dialog is not open
    VNT_FC_CANCEL = 100,    ///< cancelled by the user
    VNT_FC_SKIPPED = 101,   ///< the target exists (mode 1) or is newer (mode 2)
};

class VANTO_API VntFileCopy {
public:
    /// Tree modes; bit 0 means "do not copy".
    enum TreeMode : int { TM_COPY = 0, TM_SCAN = 1, TM_COMPARE = 3 };
    /// Overwrite modes.
    enum Overwrite : int { OW_ALWAYS = 0, OW_NEVER = 1, OW_IFNOTNEWER = 2 };

    /// Uses `stat` (borrowed, may be null: the copier makes its own) and the
    /// dialog title message `title` (0: none). The object and operation-table
    /// sizes the caller was built with are checked against the library's.
    explicit VntFileCopy(VntStat* stat = nullptr, long title = 0) {
        _init_(static_cast<int>(sizeof(VntFileCopy)), kProcTableSize, stat, title);
    }
    virtual ~VntFileCopy();
    VntFileCopy(const VntFileCopy&) = delete;
    VntFileCopy& operator=(const VntFileCopy&) = delete;

    /// A non-null `stat` ends a pattern copy (Close, which deletes a dialog
    /// the copier made for it) and then becomes the dialog; the title is
    /// replaced; a non-null `msg` replaces the message handle.
    void Setup(VntStat* stat, long title, VNT_MSG msg = nullptr);
    /// The folders of the name-only Copy and of the pattern copy (259
    /// characters each kept). False when their buffers cannot be allocated.
    bool SetFolders(const char* source, const char* target);
    /// Starts a pattern copy: the first file matching `pattern` in `source`
    /// is copied to `target`; its name goes to `found`. True only when that
    /// copy ended with code 0.
    bool CopyFirst(const char* source, const char* target, const char* pattern, char* found);
    /// The next file of the pattern copy; false at the end.
    bool CopyNext(char* found);
    /// Copies one file; the bytes copied (0 when the source does not exist,
    /// the copy failed or was cancelled; the source length when skipped or in
    /// a scan).
    std::uint32_t Copy(const char* source, const char* target);
    /// The same with `name` joined to both folders.
    std::uint32_t Copy(const char* sourceDir, const char* targetDir, const char* name);
    /// The same in the folders of SetFolders.
    std::uint32_t Copy(const char* name);
    /// Walks the tree below `source` (the target folder of SetFolders),
    /// subdirectories first: copying; scanning (totals and hooks, each file
    /// shown and the walk cancellable between files); or comparing as a
    /// scan does and counting the targets missing or with another length or
    /// time (Differences). False after an error, a cancel or a hook's false.
    bool TreeCopy(const char* source);
    bool TreeScan(const char* source);
    bool TreeCompare(const char* source);
    /// Sets the dialog's overall count (negative: the total of the last scan):
    /// from then on the dialog shows the bytes of the whole run rather than
    /// of each file.
    void SetCountForAll(double total);
    /// Ends a pattern copy and deletes a dialog the copier made for it.
    void Close();
    /// Codes 1-99.
    bool IsError() const { return error_ >= 1 && error_ <= 99; }
    /// Code 100.
    bool IsCancel() const { return error_ == VNT_FC_CANCEL; }
    int Error() const { return error_; }
    /// Sets the overwrite mode (OW_...).
    void SetOverwrite(int mode) { overwrite_ = mode; }
    int GetOverwrite() const { return overwrite_; }
    /// Totals of the last tree walk: bytes, as whole MiB units and the rest.
    double TotalBytes() const { return total_; }
    unsigned long TotalMiB() const { return totalMiB_; }
    unsigned long TotalRest() const { return totalRest_; }
    /// Files a compare walk found missing or different in the target.
    unsigned long Differences() const { return differences_; }

    // Hooks of the tree walk, called with the source and target names; set
    // *skip to leave a file uncopied; false stops the walk.
    virtual bool OnScanFile(char* source, char* target, bool* skip);
    virtual bool OnCopyFile(char* source, char* target, bool* skip);
    virtual bool OnScanDir(char* source, char* target, bool* skip);
    virtual bool OnCopyDir(char* source, char* target, bool* skip);

    // Reserved operations, so that later versions can add operations without
    // changing the layout callers were built with.
    virtual void pubRsrvd01() {}
    virtual void pubRsrvd02() {}
    virtual void pubRsrvd03() {}
    virtual void pubRsrvd04() {}
    virtual void pubRsrvd05() {}
    virtual void pubRsrvd06() {}
    virtual void pubRsrvd07() {}
    virtual void pubRsrvd08() {}
    virtual void pubRsrvd09() {}
    virtual void pubRsrvd10() {}

    /// The number of operations of the table as this header declares them.
    static constexpr int kProcTableSize = 1 + 4 + 10 + 10 + 1;

private:
    virtual void privRsrvd01() {}
    virtual void privRsrvd02() {}
    virtual void privRsrvd03() {}
    virtual void privRsrvd04() {}
    virtual void privRsrvd05() {}
    virtual void privRsrvd06() {}
    virtual void privRsrvd07() {}
    virtual void privRsrvd08() {}
    virtual void privRsrvd09() {}
    virtual void privRsrvd10() {}
    virtual void _lastproc_() {}

    void _init_(int objectSize, int procTableSize, VntStat* stat, long title);
    VntStat* makeDialog();
    bool do_progress(const char* source, const char* target, bool skipped, std::uint32_t bytes);
    struct OneCopy;  // the files of one copy under way
    std::uint32_t do_copy(const char* source, const char* target);
    bool keepTarget(const char* source, const char* target, bool& ontoItself);
    bool openFiles(OneCopy& c, const char* source, const char* target);
    bool copyData(OneCopy& c, const char* target);
    bool askRetry(OneCopy& c, const char* source, const char* target);
    bool tree(int mode, const char* source);
    bool walk(const char* dir);
    void targetOf(const char* source, char (&target)[VNT_MAX_PATH]) const;
    bool ensureFolders();

    int objectSize_ = 0;
    int procTableSize_ = 0;
    VNT_MSG msg_ = nullptr;
    VntStat* stat_ = nullptr;
    int error_ = 0;
    std::uint32_t length_ = 0;
    std::uint32_t sourceTime_ = 0, targetTime_ = 0;
    std::uint32_t sourceAttr_ = 0, targetAttr_ = 0;
    int overwrite_ = OW_ALWAYS;
    VNT_LFN_HFIND find_ = nullptr;
    VntStat* patternStat_ = nullptr;
    VntStat* singleStat_ = nullptr;
    long title_ = 0;
    char (*paths_)[VNT_MAX_PATH] = nullptr;  // source, target, two working names
    double total_ = 0;
    unsigned long totalMiB_ = 0, totalRest_ = 0;
    int treeMode_ = TM_COPY;
    std::size_t sourceLen_ = 0;
    int depth_ = 0;
    unsigned long differences_ = 0;
    bool forAll_ = false;
    unsigned long forAllTotal_ = 0;
};
