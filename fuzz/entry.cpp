// The entry that libFuzzer and the replay program call.

#include "Fuzz.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    TextFile::setFlushToDisk(false);
    {
        const Captured messages;
        fuzz(size == 0 ? std::string_view{}
                       : std::string_view{reinterpret_cast<const char*>(data), size});
    }
    if (testing::Test::HasFailure()) {
        std::abort();
    }
    return 0;
}
