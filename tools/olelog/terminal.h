#pragma once

#include <cstddef>
#include <optional>

/// The width of the terminal that standard output goes to: COLUMNS where it is set, else what the
/// terminal says, else 80. Nothing when it goes elsewhere.
std::optional<std::size_t> terminalWidth();

/// Whether bold and the like may be used on standard output: on a terminal, unless NO_COLOR is set
/// or the terminal is a dumb one.
bool mayStyleOutput();

/// Tells on a terminal what is being done, and takes that away when it is done. Elsewhere nothing.
class Progress {
public:
    Progress();
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(const char* doing, const char* name);
    void clear();

private:
    bool enabled_;
    bool standing_ = false;
};
