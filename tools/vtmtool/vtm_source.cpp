// vtmtool/vtm_source.cpp - compiles message library sources and writes them
// back as sources.
#include "vtmtool/vtm_source.h"

#include <charconv>
#include <utility>

#include "vtmtool/cp1252.h"

namespace vtmtool {

SourceError::SourceError(const std::string& file, int line, int column, const std::string& message)
    : std::runtime_error(file + ":" + std::to_string(line) + ":" + std::to_string(column) +
                         ": error: " + message),
      line_(line), column_(column), message_(message) {}

bool isSourceName(std::string_view name) {
    if (name.empty() || name.size() > kMaxNameLength) return false;
    for (char c : name) {
        const bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                        std::string_view("_-$@!&+~").find(c) != std::string_view::npos;
        if (!ok) return false;
    }
    return true;
}

namespace {

// "U+00E4" for error messages.
std::string codePointName(char32_t cp) {
    static const char kHex[] = "0123456789ABCDEF";
    std::string digits;
    for (char32_t v = cp; v != 0 || digits.size() < 4; v >>= 4) digits.insert(digits.begin(), kHex[v & 15]);
    return "U+" + digits;
}

bool equalsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'A' && x <= 'Z') x = static_cast<char>(x + 32);
        if (y >= 'A' && y <= 'Z') y = static_cast<char>(y + 32);
        if (x != y) return false;
    }
    return true;
}

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// A line-by-line parser. Each statement stands on one line; the only
// multi-line construct is a message text continued by further literals.
class Parser {
public:
    Parser(std::string_view text, const std::string& file) : text_(text), file_(file) {}

    Source run() {
        if (text_.substr(0, 3) == "\xEF\xBB\xBF") text_.remove_prefix(3);  // UTF-8 byte order mark
        std::size_t start = 0;
        while (start <= text_.size()) {
            std::size_t end = text_.find('\n', start);
            if (end == std::string_view::npos) end = text_.size();
            line_ = text_.substr(start, end - start);
            if (!line_.empty() && line_.back() == '\r') line_.remove_suffix(1);
            ++lineNo_;
            pos_ = 0;
            statement();
            start = end + 1;
        }
        if (scope_ == Scope::None)
            throw SourceError(file_, 1, 1, "the source has no 'library' or 'container' statement");
        return std::move(src_);
    }

private:
    enum class Scope { None, Library, Container, Segment };

    [[noreturn]] void fail(std::size_t at, const std::string& message) const {
        throw SourceError(file_, lineNo_, column(at), message);
    }

    // 1-based column in characters: UTF-8 continuation bytes do not count.
    int column(std::size_t at) const {
        int col = 1;
        for (std::size_t i = 0; i < at && i < line_.size(); ++i)
            if ((static_cast<unsigned char>(line_[i]) & 0xC0) != 0x80) ++col;
        return col;
    }

    void skipBlanks() {
        while (pos_ < line_.size() && isBlank(line_[pos_])) ++pos_;
    }

    bool atEnd() {
        skipBlanks();
        return pos_ >= line_.size() || line_[pos_] == '#';
    }

    void expectEnd(const char* after) {
        if (!atEnd()) fail(pos_, std::string("unexpected text after ") + after);
    }

    // A run of characters up to a blank, '#' or '"'.
    std::string_view word() {
        skipBlanks();
        std::size_t start = pos_;
        while (pos_ < line_.size() && !isBlank(line_[pos_]) && line_[pos_] != '#' && line_[pos_] != '"')
            ++pos_;
        return line_.substr(start, pos_ - start);
    }

    long number(std::string_view w, std::size_t at, long min, long max, const std::string& what) {
        long value = 0;
        bool digits = !w.empty();
        for (char c : w) digits = digits && isDigit(c);
        auto [end, ec] = std::from_chars(w.data(), w.data() + w.size(), value);
        if (!digits || end != w.data() + w.size())
            fail(at, what + " must be a decimal number, not '" + std::string(w) + "'");
        if (ec == std::errc::result_out_of_range || value < min || value > max)
            fail(at, what + " " + std::string(w) + " is outside " + std::to_string(min) + ".." +
                         std::to_string(max));
        return value;
    }

    // One quoted literal at pos_, appended to `out` as Windows-1252 bytes.
    void literal(std::string& out) {
        const std::size_t open = pos_++;
        for (;;) {
            if (pos_ >= line_.size()) fail(open, "text is not closed by '\"' on this line");
            const char c = line_[pos_];
            if (c == '"') {
                ++pos_;
                return;
            }
            if (c == '\\') {
                escape(out);
                continue;
            }
            const auto b = static_cast<unsigned char>(c);
            if (b < 0x80) {
                if ((b < 0x20 && c != '\t') || b == 0x7F)
                    fail(pos_, "control character " + codePointName(b) +
                                   " in a text; write it as an escape such as \\x" +
                                   std::string(1, "0123456789abcdef"[b >> 4]) +
                                   std::string(1, "0123456789abcdef"[b & 15]));
                out += c;
                ++pos_;
                continue;
            }
            std::size_t at = pos_;
            char32_t cp;
            unsigned char byte;
            if (!decodeUtf8(line_, pos_, cp)) fail(at, "invalid UTF-8 byte sequence");
            if (!unicodeToCp1252(cp, byte)) {
                std::string shown;
                if (cp >= 0xA0) appendUtf8(shown, cp), shown = " '" + shown + "'";
                fail(at, "character " + codePointName(cp) + shown + " has no Windows-1252 form");
            }
            out += static_cast<char>(byte);
        }
    }

    // An escape sequence at pos_ (the backslash).
    void escape(std::string& out) {
        const std::size_t at = pos_++;
        if (pos_ >= line_.size()) fail(at, "'\\' at the end of the line");
        const char c = line_[pos_++];
        switch (c) {
        case 'n': out += '\n'; return;
        case 't': out += '\t'; return;
        case 'r': out += '\r'; return;
        case '\\': out += '\\'; return;
        case '"': out += '"'; return;
        case 'x': {
            const int hi = pos_ < line_.size() ? hexValue(line_[pos_]) : -1;
            const int lo = pos_ + 1 < line_.size() ? hexValue(line_[pos_ + 1]) : -1;
            if (hi < 0 || lo < 0) fail(at, "'\\x' must be followed by two hex digits");
            pos_ += 2;
            if (hi == 0 && lo == 0) fail(at, "'\\x00': a text cannot contain a NUL character");
            out += static_cast<char>(hi * 16 + lo);
            return;
        }
        default:
            fail(at, "unknown escape sequence; use \\n \\t \\r \\\\ \\\" or \\xHH");
        }
    }

    // One or more literals separated by blanks, up to the end of the line.
    void literals(std::string& out) {
        do {
            skipBlanks();
            if (pos_ >= line_.size() || line_[pos_] != '"') fail(pos_, "expected a text in double quotes");
            literal(out);
        } while (!atEnd());
    }

    void statement() {
        if (atEnd()) return;  // blank line or comment
        const char first = line_[pos_];
        if (first == '"') {
            if (lastMessage_ == nullptr) fail(pos_, "a continued text must follow a message");
            literals(lastMessage_->text);
            return;
        }
        lastMessage_ = nullptr;
        const std::size_t at = pos_;
        const std::string_view w = word();
        if (w.empty()) fail(at, "expected a statement or a message");
        if (isDigit(first)) return message(w, at);
        if (equalsNoCase(w, "library")) return openLibrary(at);
        if (equalsNoCase(w, "container")) return openContainer(at);
        if (equalsNoCase(w, "segment")) return openSegment(at);
        if (equalsNoCase(w, "version")) return version(at);
        if (equalsNoCase(w, "system")) return system(at);
        if (equalsNoCase(w, "preload")) return preload(at);
        fail(at, "unknown statement '" + std::string(w) + "'");
    }

    // The optional (library, container) or required (segment) name.
    std::string name(const char* what, bool required) {
        const std::size_t at = (skipBlanks(), pos_);
        const std::string_view w = word();
        if (w.empty() && !atEnd()) fail(pos_, std::string("expected the ") + what + " name");
        if (w.empty() && required) fail(at, std::string("'") + what + "' needs a name");
        if (!w.empty() && !isSourceName(w))
            fail(at, std::string(what) + " name '" + std::string(w) +
                         "' is not 1 to 8 letters, digits or _-$@!&+~");
        expectEnd("the name");
        return std::string(w);
    }

    void openLibrary(std::size_t at) {
        if (scope_ != Scope::None) fail(at, "a source holds one 'library' or 'container'; this is a second one");
        src_.library.name = name("library", false);
        src_.lines.emplace_back().statement = lineNo_;
        lib_ = &src_.library;
        lines_ = &src_.lines.back();
        scope_ = Scope::Library;
    }

    void openContainer(std::size_t at) {
        if (scope_ != Scope::None) fail(at, "a source holds one 'library' or 'container'; this is a second one");
        src_.isContainer = true;
        src_.container.name = name("container", false);
        src_.containerLine = lineNo_;
        scope_ = Scope::Container;
    }

    void openSegment(std::size_t at) {
        if (scope_ == Scope::None || scope_ == Scope::Library)
            fail(at, "'segment' belongs in a container; begin the source with 'container NAME'");
        const std::size_t nameAt = (skipBlanks(), pos_);
        std::string n = name("segment", true);
        for (const Library& seg : src_.container.segments)
            if (equalsNoCase(seg.name, n)) fail(nameAt, "segment name '" + n + "' is used twice");
        if (src_.container.segments.size() >= kMaxSegments)
            fail(at, "a container holds at most 256 segments");
        lib_ = &src_.container.segments.emplace_back();
        lib_->name = std::move(n);
        lines_ = &src_.lines.emplace_back();
        lines_->statement = lineNo_;
        scope_ = Scope::Segment;
    }

    // Checks that a library setting is given once and before the messages.
    void setting(std::size_t at, const char* what, int& line) {
        if (line != 0) fail(at, std::string("'") + what + "' is given twice (first on line " + std::to_string(line) + ")");
        if (!lib_->messages.empty()) fail(at, std::string("'") + what + "' must come before the first message");
        line = lineNo_;
    }


    // The value word of a setting statement and where it stands; `missing`
    // is the error when there is none.
    std::pair<std::size_t, std::string_view> valueWord(const char* missing) {
        skipBlanks();
        const std::size_t at = pos_;
        const std::string_view w = word();
        if (w.empty()) fail(at, missing);
        return {at, w};
    }
    void version(std::size_t at) {
        if (scope_ == Scope::None) fail(at, "'version' must follow 'library' or 'container'");
        const auto [valueAt, w] = valueWord("'version' needs a number");
        const auto v = static_cast<int32_t>(number(w, valueAt, 10, 199, "version"));
        expectEnd("the version");
        if (scope_ == Scope::Container) {
            if (src_.containerVersionLine != 0) fail(at, "'version' is given twice for the container");
            src_.containerVersionLine = lineNo_;
            src_.container.version = v;
        } else {
            setting(at, "version", lines_->version);
            lib_->version = v;
        }
    }

    void system(std::size_t at) {
        if (scope_ == Scope::None) fail(at, "'system' must follow 'library'");
        if (scope_ == Scope::Container) fail(at, "'system' belongs to a library or segment, not to a container");
        const auto [valueAt, w] = valueWord("'system' needs a number (0 or 1)");
        const auto v = static_cast<int32_t>(number(w, valueAt, 0, 2147483647, "system flag"));
        expectEnd("the system flag");
        setting(at, "system", lines_->system);
        lib_->systemFlag = v;
    }

    void preload(std::size_t at) {
        if (scope_ == Scope::None) fail(at, "'preload' must follow 'library' or 'segment'");
        if (scope_ == Scope::Container) fail(at, "'preload' belongs to a segment, not to the container");
        const auto [valueAt, w] = valueWord("'preload' needs a count or 'all'");
        const long v = equalsNoCase(w, "all") ? -1 : number(w, valueAt, 0, 2147483647, "preload count");
        expectEnd("the preload count");
        setting(at, "preload", lines_->preload);
        lib_->preload = v;
    }

    void message(std::string_view w, std::size_t at) {
        if (scope_ == Scope::None) fail(at, "a message must follow 'library' or 'segment'");
        if (scope_ == Scope::Container) fail(at, "a message in a container must follow a 'segment' statement");
        const auto id = static_cast<uint16_t>(number(w, at, 1, 65535, "message ID"));
        Message& m = lib_->messages.emplace_back();
        m.id = id;
        lines_->messages.push_back(lineNo_);
        literals(m.text);
        lastMessage_ = &m;
    }

    std::string_view text_;
    const std::string& file_;
    std::string_view line_;
    std::size_t pos_ = 0;
    int lineNo_ = 0;
    Scope scope_ = Scope::None;
    Source src_;
    Library* lib_ = nullptr;          // library or segment being filled
    SourceLines* lines_ = nullptr;    // its lines
    Message* lastMessage_ = nullptr;  // message a text line may continue
};

// Splits a text after each '\n' that has more text behind it, so that
// multi-line texts read as lines in the source.
std::vector<std::string_view> textPieces(std::string_view text) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    for (std::size_t nl = text.find('\n'); nl != std::string_view::npos && nl + 1 < text.size();
         nl = text.find('\n', start)) {
        pieces.push_back(text.substr(start, nl + 1 - start));
        start = nl + 1;
    }
    pieces.push_back(text.substr(start));
    return pieces;
}

void appendSettings(std::string& out, const Library& lib) {
    out += "version " + std::to_string(lib.version) + "\n";
    if (lib.systemFlag != 0) out += "system " + std::to_string(lib.systemFlag) + "\n";
    const bool all = lib.preload == -1 || static_cast<std::size_t>(lib.preload) == lib.messages.size();
    out += "preload " + (all ? std::string("all") : std::to_string(lib.preload)) + "\n";
    if (!lib.messages.empty()) out += "\n";
    for (const Message& m : lib.messages) {
        const std::string id = std::to_string(m.id);
        bool first = true;
        for (std::string_view piece : textPieces(m.text)) {
            out += first ? id + " " : std::string(id.size() + 1, ' ');
            out += "\"" + escapeText(piece, true) + "\"\n";
            first = false;
        }
    }
}

std::string headLine(const char* keyword, const std::string& name) {
    return name.empty() ? std::string(keyword) + "\n" : std::string(keyword) + " " + escapeText(name) + "\n";
}

std::string commentLine(const std::string& comment) {
    return comment.empty() ? std::string() : "# " + comment + "\n";
}

}  // namespace

Source parseSource(std::string_view text, const std::string& fileName) {
    return Parser(text, fileName).run();
}

// Runs the writer and turns its complaint into an error on the source line
// that the faulty value came from (the statement's line when it was defaulted).
std::vector<unsigned char> buildSource(const Source& source, const std::string& fileName) {
    try {
        return source.isContainer ? writeContainer(source.container) : writeLibrary(source.library);
    } catch (const WriteError& e) {
        using F = WriteError::Field;
        int line = source.isContainer ? source.containerLine : 1;
        const long si = source.isContainer ? e.segment() : 0;
        if (source.isContainer && si < 0) {
            if (e.field() == F::Version && source.containerVersionLine) line = source.containerVersionLine;
        } else if (si >= 0 && static_cast<std::size_t>(si) < source.lines.size()) {
            const SourceLines& l = source.lines[static_cast<std::size_t>(si)];
            const auto orStatement = [&](int specific) { return specific ? specific : l.statement; };
            line = l.statement;
            if (e.field() == F::Version) line = orStatement(l.version);
            if (e.field() == F::Preload) line = orStatement(l.preload);
            if (e.field() == F::System) line = orStatement(l.system);
            if (e.field() == F::Message && e.message() >= 0 &&
                static_cast<std::size_t>(e.message()) < l.messages.size())
                line = l.messages[static_cast<std::size_t>(e.message())];
        }
        throw SourceError(fileName, line, 1, e.what());
    }
}

std::vector<unsigned char> compileSource(std::string_view text, const std::string& fileName) {
    return buildSource(parseSource(text, fileName), fileName);
}

std::string decompileLibrary(const Library& lib, const std::string& comment) {
    std::string out = commentLine(comment) + headLine("library", lib.name);
    appendSettings(out, lib);
    return out;
}

std::string decompileContainer(const Container& box, const std::string& comment) {
    std::string out = commentLine(comment) + headLine("container", box.name);
    out += "version " + std::to_string(box.version) + "\n";
    for (const Library& seg : box.segments) {
        out += "\n" + headLine("segment", seg.name);
        appendSettings(out, seg);
    }
    return out;
}

}  // namespace vtmtool
