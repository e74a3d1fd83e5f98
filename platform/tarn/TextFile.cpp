// Text files: loading in one piece, cutting into lines, saving through `TextFileOutput`.
//
// A line is known by its start alone; it reaches up to the next start. A loaded line holds its
// terminator as its last byte, except perhaps the last one, and no other, so the end is found when
// the line is asked for.

#include "tarn/TextFile.h"

#include "tarn/StringFunctions.h"
#include "tarn/systemFile.h"
#include "tarn/TextFileInput.h"
#include "tarn/TextFileOutput.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace {

std::atomic<bool>& flushSetting() noexcept {
    static std::atomic<bool> flush{true};
    return flush;
}

} // namespace

/// Where a save or a stream goes to, and what it was asked for.
class TextFile::Output {
public:
    Output(const LightweightString<wchar_t>& path, eEOLStyle style)
        : path_{path}, style_{style}, file_{pathToBytes(path).c_str(), lineEnd(style),
                                            flushSetting().load()} {}

    [[nodiscard]] bool isFor(const LightweightString<wchar_t>& path,
                             eEOLStyle style) const noexcept {
        return path_ == path && style_ == style;
    }
    void append(std::string_view line) { file_.appendLine(line); }
    bool finish() noexcept { return file_.finish(); }

private:
    static std::string_view lineEnd(eEOLStyle style) noexcept {
        switch (style) {
        case eEOLStyleCRLF:
            return "\r\n";
        case eEOLStyleCR:
            return "\r";
        case eEOLStyleLF:
            break;
        }
        return "\n";
    }

    LightweightString<wchar_t> path_;
    eEOLStyle style_;
    Tarn::TextFileOutput file_;
};

TextFile::TextFile() = default;

TextFile::TextFile(const LightweightString<wchar_t>& path, bool loadNow) : path_{path} {
    if (loadNow) {
        load(path, '\n', true);
    }
}

TextFile::~TextFile() = default;

TextFile::TextFile(TextFile&& other) noexcept {
    swap(other);
}

TextFile& TextFile::operator=(TextFile&& other) noexcept {
    TextFile taken{std::move(other)};
    swap(taken);
    return *this;
}

void TextFile::swap(TextFile& other) noexcept {
    loaded_.swap(other.loaded_);
    appended_.swap(other.appended_);
    starts_.swap(other.starts_);
    std::swap(loadedLines_, other.loadedLines_);
    std::swap(terminator_, other.terminator_);
    std::swap(current_, other.current_);
    path_.swap(other.path_);
    output_.swap(other.output_);
    input_.swap(other.input_);
}

void TextFile::clear() noexcept {
    loaded_ = {};
    std::string{}.swap(appended_);
    std::vector<std::size_t>{}.swap(starts_);
    loadedLines_ = 0;
    current_ = 0;
    input_.reset();
}

bool TextFile::load(const LightweightString<wchar_t>& path, char terminator, bool /*convert*/) {
    output_.reset();
    clear();
    path_ = path;
    if (!loaded_.read(pathToBytes(path).c_str())) {
        return false;
    }
    cutLines(terminator);
    return true;
}

bool TextFile::streamFrom(const LightweightString<wchar_t>& path, char terminator) {
    output_.reset();
    clear();
    path_ = path;
    input_ = std::make_unique<Tarn::TextFileInput>(pathToBytes(path).c_str(), terminator);
    return !input_->failed();
}

bool TextFile::streamFailed() const noexcept {
    return input_ && input_->failed();
}

void TextFile::startLine(std::size_t start) {
    if (starts_.size() == std::numeric_limits<unsigned>::max()) {
        throw std::bad_alloc{}; // `numLines` could not tell of it
    }
    starts_.push_back(start);
}

void TextFile::cutLines(char terminator) {
    terminator_ = terminator;
    const std::string_view text = loaded_.view();
    std::size_t start = 0;
    while (start < text.size()) {
        startLine(start);
        ++loadedLines_; // at once: memory may run out for the next
        const std::size_t end = text.find(terminator, start);
        start = end == std::string_view::npos ? text.size() : end + 1;
    }
}

LightweightString<char> TextFile::operator[](unsigned i) const {
    return i < starts_.size() ? LightweightString<char>{lineView(i)} : LightweightString<char>{};
}

std::string_view TextFile::lineView(unsigned i) const noexcept {
    const std::size_t n = i;
    if (n >= starts_.size()) {
        return {};
    }
    const bool isLoaded = n < loadedLines_;
    const std::string_view store = isLoaded ? loaded_.view() : std::string_view{appended_};
    const bool isLast = n + 1 == (isLoaded ? loadedLines_ : starts_.size());
    const std::size_t end = isLast ? store.size() : starts_[n + 1];
    const std::string_view line = store.substr(starts_[n], end - starts_[n]);
    return isLoaded ? loadedLine(line) : line;
}

std::string_view TextFile::loadedLine(std::string_view withEnd) const noexcept {
    if (withEnd.back() == terminator_) {
        withEnd.remove_suffix(1);
    }
    if (!withEnd.empty() && withEnd.back() == '\r') {
        withEnd.remove_suffix(1);
    }
    return withEnd;
}

void TextFile::setLine(unsigned n) noexcept {
    current_ = std::min(n, numLines());
}

bool TextFile::atEnd() const {
    return input_ ? input_->atEnd() : current_ >= numLines();
}

std::string_view TextFile::nextLine() {
    if (input_) {
        return input_->nextLine();
    }
    return atEnd() ? std::string_view{} : lineView(current_++);
}

void TextFile::appendLine(std::string_view text) {
    if (output_) {
        output_->append(text);
        return;
    }
    startLine(appended_.size());
    try {
        appended_.append(text);
    } catch (...) {
        starts_.pop_back();
        throw;
    }
}

const LightweightString<wchar_t>&
TextFile::pathOrBound(const LightweightString<wchar_t>& path) const noexcept {
    return path.empty() ? path_ : path;
}

void TextFile::writeLines(Output& output) const {
    for (unsigned i = 0; i < numLines(); ++i) {
        output.append(lineView(i));
    }
}

void TextFile::stream(const LightweightString<wchar_t>& path, eEOLStyle style) {
    auto output = std::make_unique<Output>(pathOrBound(path), style);
    writeLines(*output);
    output_ = std::move(output);
    clear();
}

bool TextFile::save(const LightweightString<wchar_t>& path, eEOLStyle style) {
    const LightweightString<wchar_t>& target = pathOrBound(path);
    if (const std::unique_ptr<Output> streamed = std::move(output_)) {
        return streamed->isFor(target, style) && streamed->finish();
    }
    if (input_) {
        return false;
    }
    Output output{target, style};
    writeLines(output);
    return output.finish();
}

void TextFile::setFlushToDisk(bool flush) noexcept {
    flushSetting().store(flush);
}
