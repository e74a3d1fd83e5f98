#pragma once

#include "TemporaryFile.h"

#include <optional>
#include <string>
#include <sys/stat.h>

/// Where a file is to be saved: a path, or - for standard output. Behind symbolic links it is their
/// target that is replaced; devices and pipes take bytes and are not replaced.
///
/// It is made before a command reads anything: what stands there then is what may be replaced.
class SaveTarget {
public:
    /// What `take` answers where somebody else changed the file since this was made.
    static constexpr int changedMeanwhile = -1;

    explicit SaveTarget(const std::string& name);

    [[nodiscard]] const std::string& name() const { return name_; }

    /// 0, or the number of the error that stands in the way.
    [[nodiscard]] int whyNotWritable() const;
    /// An empty file that can become the target's contents; nothing, `errno` telling why, where
    /// there can be none.
    [[nodiscard]] std::optional<TemporaryFile> makeSibling() const;
    /// Puts the file in its place, with the permissions of the one that it replaces; 0, an error
    /// number, or `changedMeanwhile`. A pipe whose reader has gone counts as served.
    int take(TemporaryFile& written) const;

private:
    [[nodiscard]] bool isStream() const;
    [[nodiscard]] mode_t mode() const;
    [[nodiscard]] bool isAsItWas() const;
    [[nodiscard]] int replaceBy(TemporaryFile& written) const;

    std::string name_;
    std::string path_; // behind links
    struct stat status_ {};
    bool exists_;
    int error_; // why it cannot even be looked at
};
