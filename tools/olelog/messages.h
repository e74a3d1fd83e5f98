#pragma once

#include <fmt/format.h>
#include <string>
#include <string_view>
#include <vector>

/// Prints one line on standard error, the tool's name before it: what is wrong, or what a person
/// should look at. Anything that could disturb a terminal is spelled out.
void sayLine(std::string_view text);

template <class... Values>
void say(fmt::format_string<Values...> format, Values&&... values) {
    sayLine(fmt::format(format, std::forward<Values>(values)...));
}

/// The same for what was done as it was asked for; nothing where the tool is to be quiet.
void noteLine(std::string_view text);

template <class... Values>
void note(fmt::format_string<Values...> format, Values&&... values) {
    noteLine(fmt::format(format, std::forward<Values>(values)...));
}

/// Shows a line on the terminal of the messages in place of the one before, until the next message
/// or `clearProgress`. The caller asks whether there is a terminal.
void showProgress(std::string_view line);
void clearProgress();

/// From now on what the module prints goes to standard error, as lines of the tool. It would
/// otherwise stand between the data on standard output.
void redirectModuleMessages();

/// While one lives, what the module prints is dropped: for work whose result the caller explains.
class ModuleSilence {
public:
    ModuleSilence();
    ~ModuleSilence();
    ModuleSilence(const ModuleSilence&) = delete;
    ModuleSilence& operator=(const ModuleSilence&) = delete;
};

/// Names for people, with commas between them: A, B, "C, D". At most `most` of them, then how many
/// there are beyond.
std::string listed(const std::vector<std::string>& names, std::size_t most = 1000);

/// "1 row", "2 rows".
std::string counted(std::size_t n, std::string_view one, std::string_view many);
inline std::string counted(std::size_t n, std::string_view one) {
    return counted(n, one, std::string{one} + "s");
}

/// Tells the first findings of a kind, and at the end how many more there were.
class Findings {
public:
    void tell(std::string_view text);
    void close() const;
    [[nodiscard]] bool any() const { return count_ != 0; }
    [[nodiscard]] std::size_t count() const { return count_; }

private:
    std::size_t count_ = 0;
};
