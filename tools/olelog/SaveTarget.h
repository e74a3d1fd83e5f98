#pragma once

#include "TemporaryFile.h"

#include <optional>
#include <string>
#include <sys/stat.h>

/// Where a file is to be saved: a path, or - for standard output. Behind symbolic links it is their
/// target that is replaced; devices and pipes take bytes and are not replaced.
class SaveTarget {
public:
    explicit SaveTarget(const std::string& name);

    /// 0, or the number of the error that stands in the way.
    [[nodiscard]] int whyNotWritable() const;
    /// An empty file that can become the target's contents; nothing, `errno` telling why, where
    /// there can be none.
    [[nodiscard]] std::optional<TemporaryFile> makeSibling() const;
    /// Puts the file in its place, with the permissions of the one that it replaces; 0, or an error
    /// number. A pipe whose reader has gone counts as served.
    int take(TemporaryFile& written) const;

private:
    [[nodiscard]] bool isStream() const;
    [[nodiscard]] mode_t mode() const;

    std::string name_;
    std::string path_; // behind links
    struct stat status_ {};
    bool exists_;
    int error_; // why it cannot even be looked at
};
