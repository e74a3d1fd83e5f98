// Runs a fuzzer over files, and over all files in folders, as libFuzzer does with its corpus: for
// every compiler, and for looking into a finding.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

namespace {

int replayed = 0;

void replay(const std::filesystem::path& path) {
    std::fprintf(stderr, "%s\n", path.c_str());
    std::ifstream file{path, std::ios::binary};
    const std::string bytes{std::istreambuf_iterator<char>{file}, {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    ++replayed;
}

} // namespace

/// usage: replay_NAME FILE-OR-FOLDER...; exit status 2 where there is nothing to run.
int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            replay(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator{argv[i]}) {
            if (entry.is_regular_file()) {
                replay(entry.path());
            }
        }
    }
    std::fprintf(stderr, "%d inputs\n", replayed);
    return replayed == 0 ? 2 : 0;
}
