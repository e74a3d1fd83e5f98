// Gathers lines into pieces of 256 KiB. Failures are kept by the file and told at the end.

#include "tarn/TextFileOutput.h"

namespace Tarn {
namespace {

constexpr std::size_t pieceBytes = std::size_t{256} * 1024;

} // namespace

TextFileOutput::TextFileOutput(const char* path, std::string_view lineEnd, bool flush)
    : lineEnd_{lineEnd}, file_{path, flush} {
    gathered_.reserve(pieceBytes);
}

void TextFileOutput::appendLine(std::string_view line) {
    append(line);
    append(lineEnd_);
}

bool TextFileOutput::finish() noexcept {
    writeGathered();
    return file_.commit();
}

void TextFileOutput::append(std::string_view bytes) {
    if (bytes.size() > pieceBytes - gathered_.size()) {
        writeGathered();
    }
    if (bytes.size() > pieceBytes) {
        file_.write(bytes);
        return;
    }
    gathered_.append(bytes);
}

void TextFileOutput::writeGathered() noexcept {
    file_.write(gathered_);
    gathered_.clear();
}

} // namespace Tarn
