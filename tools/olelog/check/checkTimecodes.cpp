// Start and End of takes, by the cells as they stand under their titles.
//
// What may be meant is no finding: a take that runs over midnight, a subclip within its clip, two
// cameras that run at once, a roll whose name is used again on another day or camera.

#include "check/checks.h"
#include "misc/time_def.h"
#include "shownText.h"
#include "tarn/Ascii.h"
#include "tarn/numbers.h"
#include "tarn/StringFunctions.h"
#include "tarn/trimmed.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <optional>
#include <set>
#include <tuple>

namespace {

constexpr int framesRoom = 100; // of a second in a comparable number
constexpr int hour = 3600 * framesRoom;
constexpr int longestOverMidnight = 6 * hour;

struct Timecode {
    std::string text;
    int place = 0; ///< grows with the time
    int frames = 0;
    bool isTimeOfDay = true; ///< hours, minutes and seconds are such
    std::string marks;
};

/// Frames of a second. Logs of film name its rate beside the timecodes of its video, so none is
/// taken to be less than that of NTSC.
int framesOfSecond(const LogHead& head) {
    constexpr double ntsc = 30;
    double rate = ntsc;
    for (const LogHead::Parameter& parameter : head.parameters) {
        if (parameter.name == "FPS") {
            rate = std::max(rate, Tarn::parseDouble(parameter.value.c_str()));
        }
    }
    return static_cast<int>(std::ceil(std::min<double>(rate, framesRoom)));
}

std::optional<Timecode> timecodeOf(std::string_view cell) {
    Timecode timecode;
    timecode.text = Tarn::trimmed(cell);
    const time_def time{timecode.text.c_str(), LABEL_TIMECODE};
    if (!time.valid()) {
        return std::nullopt;
    }
    const std::string digits{time.get_database_str().view().substr(0, 8)};
    const int number = std::stoi(digits);
    timecode.place = number / 1000000 * hour + number / 10000 % 100 * (hour / 60) +
                     number / 100 % 100 * framesRoom + number % 100;
    timecode.frames = number % 100;
    timecode.isTimeOfDay =
        number / 1000000 < 24 && number / 10000 % 100 < 60 && number / 100 % 100 < 60;
    std::copy_if(timecode.text.begin(), timecode.text.end(), std::back_inserter(timecode.marks),
                 [](char c) { return !Tarn::isDigit(c); });
    return timecode;
}

/// "VA1A2" as V, A1, A2.
std::set<std::string> tracksOf(std::string_view text) {
    std::set<std::string> tracks;
    std::string track;
    for (const char c : text) {
        if (!Tarn::isDigit(c) && !track.empty()) {
            tracks.insert(track);
            track.clear();
        }
        track += c;
    }
    tracks.insert(track);
    return tracks;
}

bool shareTracks(std::string_view a, std::string_view b) {
    const auto tracksOfA = tracksOf(a);
    const auto tracksOfB = tracksOf(b);
    return a.empty() || b.empty() ||
           std::any_of(tracksOfA.begin(), tracksOfA.end(),
                       [&](const std::string& track) { return tracksOfB.contains(track); });
}

struct Take {
    unsigned line;
    int start;
    int end;
    std::string startText;
    std::string tape;
    std::string tracks;
};

class TimecodeCheck {
public:
    TimecodeCheck(const CheckedLog& log, FindingList& findings)
        : log_{log}, findings_{findings}, framesOfSecond_{framesOfSecond(log.head())} {
        for (const std::string_view title : cellsOf(log.text(log.head().namesLine))) {
            titles_.emplace_back(Tarn::trimmed(title));
        }
        start_ = columnFor("start time");
        end_ = columnFor("end time");
        tape_ = columnFor("reel");
        tracks_ = columnFor("chans");
    }

    void run() {
        for (unsigned line = log_.head().words.data + 1; line <= log_.numLines(); ++line) {
            if (!isEssentiallyEmpty(log_.text(line))) {
                cells_ = cellsOf(log_.text(line));
                line_ = log_.number(line);
                checkRow();
            }
        }
        checkMarks();
        for (auto& [tape, takes] : takes_) {
            checkOverlaps(takes);
        }
    }

private:
    [[nodiscard]] std::optional<std::size_t> columnFor(const char* field) const {
        const int wanted = log_.imported().get_fieldnum(field);
        for (std::size_t i = 0; i < titles_.size(); ++i) {
            if (!titles_[i].empty() && log_.fieldOf(titles_[i]) == wanted) {
                return i;
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] std::string cell(std::optional<std::size_t> column) const {
        return column && *column < cells_.size() ? std::string{Tarn::trimmed(cells_[*column])}
                                                 : std::string{};
    }

    std::optional<Timecode> timecode(std::optional<std::size_t> column) {
        const std::string text = cell(column);
        auto timecode = timecodeOf(text);
        if (!text.empty() && !timecode) {
            findings_.addToGroup(titles_[*column], finding::noTimecode, line_,
                                 fmt::format("{}: {} is no timecode, and will not be found or "
                                             "sorted as one; write 01:02:03:04",
                                             shown(titles_[*column]), inQuotes(text)),
                                 {titles_[*column]});
        } else if (timecode && (!timecode->isTimeOfDay || timecode->frames >= framesOfSecond_)) {
            findings_.addToGroup(titles_[*column] + "\tbeyond", finding::noTimecode, line_,
                                 fmt::format("{}: {} is beyond 23:59:59:{:02}",
                                             shown(titles_[*column]), inQuotes(text),
                                             framesOfSecond_ - 1),
                                 {titles_[*column]});
        }
        return timecode;
    }

    void checkRow() {
        const auto start = timecode(start_);
        const auto end = timecode(end_);
        if (!start || !end) {
            noteMarks(start ? start : end);
            return;
        }
        if (start->marks != end->marks) {
            findings_.addToGroup(
                "row", finding::mixedPunctuation, line_,
                fmt::format("Start {} and End {} are written with different marks; "
                            "\";\" before the frames means drop frame",
                            inQuotes(start->text), inQuotes(end->text)),
                {titles_[*start_], titles_[*end_]});
        } else {
            noteMarks(start);
        }
        const bool overMidnight = end->place + 24 * hour - start->place <= longestOverMidnight;
        if (end->place < start->place && !overMidnight) {
            findings_.add(finding::endBeforeStart, line_,
                          fmt::format("End {} is before Start {}", end->text, start->text),
                          {titles_[*start_], titles_[*end_]});
            return;
        }
        noteTake({line_, start->place, end->place + (end->place < start->place ? 24 * hour : 0),
                  start->text, cell(tape_), cell(tracks_)});
    }

    void noteMarks(const std::optional<Timecode>& timecode) {
        if (timecode) {
            marks_[timecode->marks].push_back(line_);
            examples_.emplace(timecode->marks, timecode->text);
        }
    }

    /// Marks that differ between rows: most of them are taken to be right.
    void checkMarks() {
        const auto most =
            std::max_element(marks_.begin(), marks_.end(), [](const auto& a, const auto& b) {
                return a.second.size() < b.second.size();
            });
        for (const auto& [marks, lines] : marks_) {
            for (std::size_t i = 0; marks != most->first && i < lines.size(); ++i) {
                findings_.addToGroup(
                    marks, finding::mixedPunctuation, lines[i],
                    fmt::format("{} is written with other marks than {} in line {}; \";\" before "
                                "the frames means drop frame",
                                examples_[marks], examples_[most->first], most->second.front()));
            }
        }
    }

    /// Takes are compared within one tape: what else names the medium must be the same too.
    void noteTake(const Take& take) {
        if (take.tape.empty() || take.start == take.end) {
            return;
        }
        std::string medium = take.tape;
        for (const char* const title :
             {"Camera", "Camroll", "Labroll", "Reel", "Reel #", "Shoot Date", "Shoot date"}) {
            const auto found = std::find(titles_.begin(), titles_.end(), title);
            medium += '\t';
            medium += found == titles_.end()
                          ? std::string{}
                          : cell(static_cast<std::size_t>(found - titles_.begin()));
        }
        takes_[medium].push_back(take);
    }

    /// Takes in the order of their starts, longer ones first; `open` are those that still run.
    void checkOverlaps(std::vector<Take>& takes) {
        std::stable_sort(takes.begin(), takes.end(), [](const Take& a, const Take& b) {
            return std::tuple{a.start, -a.end} < std::tuple{b.start, -b.end};
        });
        std::vector<Take> open;
        for (const Take& take : takes) {
            while (!open.empty() && open.back().end <= take.start) {
                open.pop_back();
            }
            if (!open.empty() && shareTracks(open.back().tracks, take.tracks)) {
                compare(open.back(), take);
            }
            open.push_back(take);
        }
    }

    void compare(const Take& earlier, const Take& take) {
        if (earlier.start == take.start && earlier.end == take.end) {
            findings_.add(finding::overlap, std::max(earlier.line, take.line),
                          fmt::format("Start and End are those of line {}, on the same tape, {}",
                                      std::min(earlier.line, take.line), inQuotes(take.tape)));
        } else if (take.end > earlier.end) {
            findings_.add(finding::overlap, take.line,
                          fmt::format("Start {} is before the End of line {}, on the same tape, {}",
                                      take.startText, earlier.line, inQuotes(take.tape)));
        }
    }

    const CheckedLog& log_;
    FindingList& findings_;
    int framesOfSecond_;
    std::vector<std::string> titles_;
    std::optional<std::size_t> start_;
    std::optional<std::size_t> end_;
    std::optional<std::size_t> tape_;
    std::optional<std::size_t> tracks_;
    unsigned line_ = 0;
    std::vector<std::string_view> cells_;
    std::map<std::string, std::vector<unsigned>> marks_;
    std::map<std::string, std::string> examples_;
    std::map<std::string, std::vector<Take>> takes_;
};

} // namespace

void checkTimecodes(const CheckedLog& log, FindingList& findings) {
    TimecodeCheck{log, findings}.run();
}
