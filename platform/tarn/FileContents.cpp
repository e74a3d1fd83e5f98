// Reading a file whole. Its bytes go into memory that nobody filled with zeros first; that of a
// large file comes straight from the system.

#include "tarn/FileContents.h"

#include "tarn/PageMemory.h"
#include "tarn/systemFile.h"

#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>

namespace Tarn {
namespace {

constexpr std::size_t firstPiece = std::size_t{64} * 1024;

/// Room for the whole file and one byte more, so that the end shows without growing.
std::size_t expectedSize(int file) noexcept {
    struct stat status {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size <= 0) {
        return firstPiece;
    }
    return static_cast<std::size_t>(status.st_size) + 1;
}

char* take(std::size_t size) {
    return static_cast<char*>(size < PageMemory::largePage ? ::operator new(size)
                                                           : PageMemory::take(size));
}

void give(char* bytes, std::size_t size) noexcept {
    if (size < PageMemory::largePage) {
        ::operator delete(bytes);
    } else {
        PageMemory::give(bytes, size);
    }
}

} // namespace

FileContents::~FileContents() {
    give(bytes_, size_);
}

void FileContents::grow(std::size_t size) {
    char* const bytes = take(size);
    if (used_ != 0) {
        std::memcpy(bytes, bytes_, used_);
    }
    give(bytes_, size_);
    bytes_ = bytes;
    size_ = size;
}

bool FileContents::readAll(int file) {
    grow(expectedSize(file));
    for (;;) {
        const auto got = readSome(file, bytes_ + used_, size_ - used_);
        if (got <= 0) {
            return got == 0;
        }
        used_ += static_cast<std::size_t>(got);
        if (used_ == size_) {
            grow(2 * size_);
        }
    }
}

bool FileContents::read(const char* path) {
    FileContents contents;
    const FileDescriptor file = openFile(path, O_RDONLY);
    const bool whole = file.isOpen() && contents.readAll(file.get());
    *this = whole ? std::move(contents) : FileContents{};
    return whole;
}

} // namespace Tarn
