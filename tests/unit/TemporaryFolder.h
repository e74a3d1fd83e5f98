#pragma once

#include "tarn/LightweightString.h"
#include "tarn/StringFunctions.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <stdlib.h>
#include <string>

/// A folder of a test's own, empty at first and gone at the end.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "ole-test-XXXXXX").string();
        if (!mkdtemp(name.data())) {
            throw std::runtime_error{"no temporary folder"};
        }
        folder_ = name;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(folder_, ignored);
    }

    std::string path(const std::string& name = {}) const {
        return name.empty() ? folder_ : folder_ + "/" + name;
    }
    LightweightString<wchar_t> wide(const std::string& name = {}) const {
        return pathFromBytes(path(name));
    }
    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream{path(name), std::ios::binary} << bytes;
    }
    std::string read(const std::string& name) const {
        std::ifstream file{path(name), std::ios::binary};
        return {std::istreambuf_iterator<char>{file}, {}};
    }
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator{folder_}) {
            found.insert(entry.path().filename().string());
        }
        return found;
    }

private:
    std::string folder_;
};
