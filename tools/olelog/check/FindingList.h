#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// What a finding means for an import.
enum class Severity {
    Refused,  ///< no table can be made of the log
    Lost,     ///< something of the log would not be in the table
    Changed,  ///< it would be in the table, but otherwise
    Doubtful, ///< it would be taken as it is, and looks like a mistake
};

/// A kind of finding. The code never changes: scripts and people look for it.
struct FindingKind {
    std::string_view code;
    Severity severity;
};

namespace finding {
inline constexpr FindingKind emptyFile{"empty-file", Severity::Refused};
inline constexpr FindingKind tableFile{"table-file", Severity::Refused};
inline constexpr FindingKind utf16{"utf-16", Severity::Refused};
inline constexpr FindingKind crLineEnds{"cr-line-ends", Severity::Refused};
inline constexpr FindingKind sectionWord{"section-word", Severity::Refused};
inline constexpr FindingKind blankNames{"blank-names", Severity::Refused};
inline constexpr FindingKind noNames{"no-names", Severity::Refused};
inline constexpr FindingKind noRowFits{"no-row-fits", Severity::Refused};
inline constexpr FindingKind rowTooLong{"row-too-long", Severity::Refused};
inline constexpr FindingKind columnWithoutField{"column-without-field", Severity::Lost};
inline constexpr FindingKind titleSpelling{"title-spelling", Severity::Lost};
inline constexpr FindingKind tooManyValues{"too-many-values", Severity::Lost};
inline constexpr FindingKind headingLine{"heading-line", Severity::Lost};
inline constexpr FindingKind unreadLine{"unread-line", Severity::Lost};
inline constexpr FindingKind parameterLost{"parameter-lost", Severity::Lost};
inline constexpr FindingKind zeroByte{"zero-byte", Severity::Lost};
inline constexpr FindingKind keyNumberCut{"key-number-cut", Severity::Lost};
inline constexpr FindingKind leadingTab{"leading-tab", Severity::Changed};
inline constexpr FindingKind emptyTitle{"empty-title", Severity::Changed};
inline constexpr FindingKind joinedColumns{"joined-columns", Severity::Changed};
inline constexpr FindingKind keyNumber{"key-number", Severity::Changed};
inline constexpr FindingKind trimmedValue{"trimmed-value", Severity::Changed};
inline constexpr FindingKind changedValue{"changed-value", Severity::Changed};
inline constexpr FindingKind parameterChanged{"parameter-changed", Severity::Changed};
inline constexpr FindingKind byteOrderMark{"byte-order-mark", Severity::Doubtful};
inline constexpr FindingKind encoding{"encoding", Severity::Doubtful};
inline constexpr FindingKind mixedLineEnds{"mixed-line-ends", Severity::Doubtful};
inline constexpr FindingKind noLineEnd{"no-line-end", Severity::Doubtful};
inline constexpr FindingKind sectionLine{"section-line", Severity::Doubtful};
inline constexpr FindingKind filmFormat{"film-format", Severity::Doubtful};
inline constexpr FindingKind duplicateTitle{"duplicate-title", Severity::Doubtful};
inline constexpr FindingKind tooFewValues{"too-few-values", Severity::Doubtful};
inline constexpr FindingKind noTimecode{"no-timecode", Severity::Doubtful};
inline constexpr FindingKind mixedPunctuation{"mixed-punctuation", Severity::Doubtful};
inline constexpr FindingKind endBeforeStart{"end-before-start", Severity::Doubtful};
inline constexpr FindingKind overlap{"overlap", Severity::Doubtful};
} // namespace finding

/// All kinds, the gravest first.
const std::vector<FindingKind>& findingKinds();

/// "refused", "lost", "changed", "doubtful".
std::string_view nameOf(Severity severity);

struct Finding {
    FindingKind kind;
    std::string message;              ///< about the first line
    std::vector<unsigned> lines;      ///< all lines that it is true of
    std::vector<std::string> columns; ///< the columns concerned, where it is about some
};

/// What was found in a log. Things of one group come together in the finding of the first of them,
/// so that a log with one trouble in each of a thousand rows does not get a thousand findings.
class FindingList {
public:
    void add(const FindingKind& kind, unsigned line, std::string message,
             std::vector<std::string> columns = {});
    void addToGroup(std::string_view group, const FindingKind& kind, unsigned line,
                    std::string message, std::vector<std::string> columns = {});

    /// Leaves out the findings of these codes.
    void ignore(const std::vector<std::string>& codes);
    void sortByLine();
    [[nodiscard]] const std::vector<Finding>& all() const { return findings_; }

private:
    std::vector<Finding> findings_;
    std::map<std::string, std::size_t> groups_; // the finding of each, while findings come
};
