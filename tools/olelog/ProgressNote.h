#pragma once

#include <string>

/// While one lives, a note stands on a terminal as long as the module is at a long operation.
class ProgressNote {
public:
    explicit ProgressNote(std::string doing);
    ~ProgressNote();
    ProgressNote(const ProgressNote&) = delete;
    ProgressNote& operator=(const ProgressNote&) = delete;
};
