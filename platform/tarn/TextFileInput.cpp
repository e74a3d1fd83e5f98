#include "tarn/TextFileInput.h"

#include "misc/SystemWatchdog.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace Tarn {
namespace {

// A small file takes little; a large one comes in pieces that make few calls and stay in the
// processor's cache.
constexpr std::size_t firstPiece = std::size_t{8} * 1024;
constexpr std::size_t largestPiece = std::size_t{256} * 1024;

std::uint64_t sizeOf(const FileDescriptor& file) {
    struct stat status {};
    const bool known = file.isOpen() && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
    return known ? static_cast<std::uint64_t>(status.st_size) : 0;
}

} // namespace

TextFileInput::TextFileInput(const char* path, char terminator)
    : file_{openFile(path, O_RDONLY)},
      terminator_{terminator}, failed_{!file_.isOpen()}, ended_{failed_}, size_{sizeOf(file_)} {}

/// Makes room for more than is there: twice as much where the last piece filled it, up to the
/// largest piece, and for a line that is longer than that.
void TextFileInput::makeRoom() {
    const bool filled = to_ == bytes_.size();
    if (from_ != 0) {
        const auto rest = ahead();
        std::copy(rest.begin(), rest.end(), bytes_.begin());
        to_ = rest.size();
        from_ = 0;
    }
    if (filled && (to_ == bytes_.size() || bytes_.size() < largestPiece)) {
        bytes_.resize(std::max(firstPiece, 2 * bytes_.size()));
    }
}

/// Reads on behind what is there; false at the end.
bool TextFileInput::readMore() {
    if (ended_) {
        return false;
    }
    makeRoom();
    const auto got = readSome(file_.get(), bytes_.data() + to_, bytes_.size() - to_);
    to_ += got > 0 ? static_cast<std::size_t>(got) : 0;
    failed_ = got < 0;
    read_ += got > 0 ? static_cast<std::uint64_t>(got) : 0;
    if (size_ != 0 && read_ <= size_) { // beyond it the file is growing
        SystemWatchdog::reportProgress(read_, size_);
    }
    ended_ = got <= 0;
    return !ended_;
}

bool TextFileInput::atEnd() {
    return from_ == to_ && !readMore();
}

std::string_view TextFileInput::nextLine() {
    std::size_t end = ahead().find(terminator_);
    while (end == std::string_view::npos) {
        const std::size_t known = ahead().size();
        if (!readMore()) {
            break;
        }
        end = ahead().find(terminator_, known);
    }
    std::string_view line = ahead().substr(0, end);
    from_ += std::min(line.size() + 1, ahead().size());
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

} // namespace Tarn
