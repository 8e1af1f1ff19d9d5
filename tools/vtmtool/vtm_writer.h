// vtmtool/vtm_writer.h - builds message library files (.vtm) in memory.
//
// The library itself only reads message libraries; the tools and tests write
// them with this writer. Layout of a plain library (or of one segment, whose
// offsets are all absolute within the file):
//
//   header (204 bytes) | index (8 bytes per entry) | text area
//
// The text area starts directly after the index and its first part is the
// preload area, so a text's position is the same whether counted from the
// start of the preload area or from the text offset. A container is
//
//   header (204 bytes) | directory (12 bytes per segment) | segment | segment ...
//
// Runtime, annex and reserved header bytes are always written as zero.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace vtmtool {

/// One message: ID 1..65535 and its text as Windows-1252 bytes (no NUL, at
/// most 1024 bytes). A text beginning with ';' is a comment text (skipped when
/// iterating), one beginning with '~' a control text.
struct Message {
    uint16_t id = 0;
    std::string text;
};

/// A plain library, or one segment of a container.
struct Library {
    std::string name;        ///< 0..8 characters (a segment needs 1..8)
    int32_t version = 60;    ///< 10..199
    int32_t systemFlag = 0;  ///< non-zero: the system library (all texts preloaded)
    long preload = -1;       ///< entries whose texts are preloaded; -1 = all
    std::vector<Message> messages;
};

/// A container of 1..256 named segments.
struct Container {
    std::string name;        ///< 0..8 characters
    int32_t version = 60;    ///< 10..199
    std::vector<Library> segments;
};

/// What the writer refuses. `field()` says which part of the input is wrong;
/// `segment()` and `message()` locate it (0-based indexes into
/// Container::segments and Library::messages, else -1), so that a compiler
/// can name the source line.
class WriteError : public std::runtime_error {
public:
    enum class Field { None, Name, Version, Preload, System, Message, Segments };

    WriteError(const std::string& what, Field field, long segment = -1, long message = -1)
        : std::runtime_error(what), field_(field), segment_(segment), message_(message) {}
    Field field() const noexcept { return field_; }
    long segment() const noexcept { return segment_; }
    long message() const noexcept { return message_; }

private:
    Field field_;
    long segment_;
    long message_;
};

/// Size of the file header and of one index / directory entry.
inline constexpr std::size_t kHeaderSize = 204;
inline constexpr std::size_t kEntrySize = 8;
inline constexpr std::size_t kDirEntrySize = 12;
/// Limits the reader enforces.
inline constexpr std::size_t kMaxTextBytes = 1024;
inline constexpr std::size_t kMaxPreloadSize = 65535;
inline constexpr std::size_t kMaxSegments = 256;
inline constexpr std::size_t kMaxNameLength = 8;

/// Writes a plain library. Throws WriteError when the library breaks a rule
/// of the format: a name over 8 characters or with a NUL; version outside
/// 10..199; ID 0; a text over 1024 bytes or with a NUL; a preload count above
/// the entry count (or below -1); a preloaded entry, other than the last
/// preloaded one, whose ID is not below the last preloaded ID; a
/// non-preloaded entry whose ID is not above it; a system flag without every
/// entry preloaded; a preload area above 65535 bytes.
///   {name "X", messages {1 "a"}, preload all} => 204 + 8 + 2 bytes
std::vector<unsigned char> writeLibrary(const Library& lib);

/// Writes a container with its segments. Besides the rules of writeLibrary
/// for each segment: 1..256 segments, each with a 1..8 character name,
/// names unique without regard to case, no system flag on a segment (the
/// reader would close the container's shared file), and the whole file
/// below 2 GiB.
std::vector<unsigned char> writeContainer(const Container& box);

/// Writes `bytes` to `path` atomically: into a new temporary file in the same
/// directory, then renamed over `path`. On any failure the temporary file is
/// removed, `path` is left as it was, and std::runtime_error is thrown with
/// a message naming the file and the cause.
void writeFileAtomic(const std::filesystem::path& path, const std::vector<unsigned char>& bytes);

/// Reads a whole file as bytes; throws std::runtime_error naming the file and
/// the cause when it cannot be read.
std::string readFile(const std::filesystem::path& path);

}  // namespace vtmtool
