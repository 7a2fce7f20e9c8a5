// Source and diagnostics are two streams sorted by line, merged here. A stream that is exhausted
// counts as being at a line beyond all others.

#include "diag/orvoerr_list.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

#include "diag/orvoerr_fatal.h"
#include "diag/orvoerr_text.h"
#include "diag/orvozov.h"
#include "tree/orvomod.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr int64_t noLine = std::numeric_limits<int64_t>::max();

/// The text of a file or a text in memory, line by line.
class Lines {
  public:
    Lines(std::FILE* source, std::string_view text) : source_(source), text_(text) {}

    /// The next line, its line feed included, until another one is asked for; empty at the end. A
    /// line is listed whole however long it is: cut in two it would shift the numbers that the
    /// diagnostics refer to.
    std::string_view next() {
        size_t end = text_.find('\n');
        while (end == std::string_view::npos && source_ != nullptr) {
            const size_t read = readMore();
            if (read == 0) break;
            end = text_.find('\n', text_.size() - read);
        }
        const std::string_view line = text_.substr(0, end == text_.npos ? end : end + 1);
        text_.remove_prefix(line.size());
        return line;
    }

  private:
    static constexpr size_t blockSize = 65536;

    /// Moves what is left to the front of the buffer and reads a block behind it.
    size_t readMore() {
        buffer_.erase(0, buffer_.size() - text_.size());
        const size_t kept = buffer_.size();
        buffer_.resize(kept + blockSize);
        const size_t read = std::fread(buffer_.data() + kept, 1, blockSize, source_);
        if (read < blockSize && std::ferror(source_) != 0)
            fatalError(Fatal::Read, cMP->options.sourceFileName);
        buffer_.resize(kept + read);
        text_ = buffer_;
        return read;
    }

    std::FILE* source_;     // null: the text is all there is
    std::string buffer_;    // what was read of the source; the text is its end
    std::string_view text_; // what is still to come
};

/// Numbered lines on their way to the listing.
class Output {
  public:
    explicit Output(std::FILE* stream) : stream_(stream) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output() { flush(); }

    /// The number in five columns at least, and the line.
    void putLine(int64_t number, std::string_view line) {
        char digits[24];
        const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
        const auto length = static_cast<size_t>(end - digits);
        if (length < numberColumns) text_.append(numberColumns - length, ' ');
        text_.append(digits, length).append(":  ").append(line);
        if (line.back() != '\n') text_ += '\n';
        if (text_.size() >= chunkSize) flush();
    }
    void flush() {
        put(stream_, text_);
        text_.clear();
    }

  private:
    static constexpr size_t numberColumns = 5, chunkSize = 65536;
    std::FILE* stream_;
    std::string text_;
};

bool isShown(const ErrRec& error) {
    return run.verboseEx > 2 || error.errClass == ERR_SEMANTIC || error.errClass == ERR_SYNTAX ||
           (error.errClass == ERR_WARNING && run.verboseEx > 1);
}

void showError(std::FILE* stream, const ErrRec& error, bool fromFile) {
    if (!isShown(error)) return;
    size_t textStart = 0;
    const std::string line = printError(error, textStart);
    put(stream, line);
    const OptionBlock& options = cMP->options;
    if (run.verbose == VERBOSE_TOOL && fromFile)
        put(stdout, concat(options.sourceDir, options.sourceFileName, "(",
                           std::to_string(error.line), ") : ", line));
    if (zovIsActive())
        zovSummaryWarning(options.sourceDir, options.sourceFileName, error.line,
                          errClassNames[error.errClass], std::string_view(line).substr(textStart));
}

} // namespace

void printListing(std::FILE* stream, bool numberLines, std::FILE* source, std::string_view text) {
    const auto& errors = cMP->errors;
    int64_t lineNr = numberLines ? 1 : noLine;
    size_t next = 0;
    Lines lines(source, text);
    Output output(stream);
    while (lineNr != noLine || next < errors.size()) {
        const int64_t errorLine = next < errors.size() ? errors[next].line : noLine;
        while (lineNr != noLine && lineNr <= errorLine) {
            const std::string_view line = lines.next();
            if (line.empty()) {
                lineNr = noLine;
                break;
            }
            output.putLine(lineNr, line);
            ++lineNr;
        }
        output.flush();
        for (; next < errors.size() && errors[next].line < lineNr; ++next)
            showError(stream, errors[next], cMP != run.iso8824MP);
    }
}

} // namespace orvo
