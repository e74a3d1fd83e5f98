// Runs a fuzzer over files, and over all files in folders, as libFuzzer does with its corpus: for
// every compiler, and for looking into a finding.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace {

int replayed = 0;

/// What cannot be read throws: taken as an empty input, it would pass.
std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file;
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file.open(path, std::ios::binary);
    return {std::istreambuf_iterator<char>{file}, {}};
}

void replay(const std::filesystem::path& path) {
    std::fprintf(stderr, "%s\n", path.c_str());
    const std::string bytes = bytesOf(path);
    LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    ++replayed;
}

void replayAll(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        replay(path);
        return;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator{path}) {
        if (entry.is_regular_file()) {
            replay(entry.path());
        }
    }
}

} // namespace

/// usage: replay_NAME PATH...; a path is a file, a folder, or $VARIABLE of the environment, passed
/// over where that is not set. Exit status 2 where there is nothing to run or a path cannot be
/// read.
int main(int argc, char** argv) try {
    for (int i = 1; i < argc; ++i) {
        const char* const path = argv[i][0] == '$' ? std::getenv(argv[i] + 1) : argv[i];
        if (path) {
            replayAll(path);
        }
    }
    std::fprintf(stderr, "%d inputs\n", replayed);
    return replayed == 0 ? 2 : 0;
} catch (const std::system_error& error) {
    std::fprintf(stderr, "cannot be read: %s\n", error.what());
    return 2;
}
