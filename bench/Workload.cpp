// The rows, and nothing about files. All chance comes from one generator of fixed seed
// (SplitMix64).

#include "Workload.h"

#include <cstdio>

namespace bench {

using enum DBFieldTypes::eType;

const std::array<Column, columnCount> columns{{
    {"Name", "Name", TEXT},
    {"Tracks", "chans", TEXT},
    {"Start", "start time", TIMECODE},
    {"End", "end time", TIMECODE},
    {"Duration", "Duration", TIMECODE_S},
    {"Tape", "reel", TEXT},
    {"Scene", "Scene", TEXT},
    {"Take", "shot", TEXT},
    {"Camroll", "cam reel", TEXT},
    {"Soundroll", "snd reel", TEXT},
    {"Labroll", "comp reel", TEXT},
    {"DailyRoll", "lab reel", TEXT},
    {"KN Start", "start keycode", TEXT},
    {"Ink Number", "start inkcode", TEXT},
    {"Shoot Date", "cam_date", DATE},
    {"Note", "notes", TEXT},
    {"Description", "Description", TEXT},
    {"Who", "Who", TEXT},
    {"Sound TC", "snd start", TIMECODE},
    {"Film TC", "Start camcode", TIMECODE},
}};

namespace {

enum At : std::size_t {
    Name,
    Tracks,
    Start,
    End,
    Duration,
    Tape,
    Scene,
    Take,
    Camroll,
    Soundroll,
    Labroll,
    DailyRoll,
    KeyNumber,
    Ident,
    ShootDate,
    Note,
    Description,
    Who,
    SoundTime,
    FilmTime
};
static_assert(Ident == identifierColumn);

constexpr std::array trackSets{"V", "VA1", "VA1A2", "A1A2", "VA1A2A3A4"};
constexpr std::array people{"K. Larsen", "M. Okafor", "Zoë Hart",  "Søren Dahl", "J. Smith",
                            "A. Tanaka", "R. Diaz",   "P. O'Neil", "J. Łuczak",  "B-unit"};
constexpr std::array places{"INT. KITCHEN - DAY",  "EXT. HARBOUR - NIGHT", "INT. CAR",
                            "EXT. ROOFTOP - DAWN", "INT. STAGE 4",         "EXT. STREET, RAIN",
                            "INT. CAFÉ - DAY",     "EXT. FIELD",           "VFX PLATE"};
constexpr std::array common{
    "take",  "tape",   "good",     "best",  "hold", "print",  "NG",     "false",  "start", "sound",
    "boom",  "shadow", "in frame", "bump",  "soft", "focus",  "at end", "slate",  "late",  "mos",
    "wild",  "track",  "pickup",   "from",  "line", "two",    "actor",  "misses", "mark",  "nice",
    "move",  "slow",   "push",     "crane", "up",   "down",   "tilt",   "pan",    "left",  "right",
    "plane", "noise",  "reset",    "tail",  "clap", "audio",  "check",  "wide",   "close", "single",
    "over",  "insert", "table",    "talk",  "time", "second", "half",   "usable", "first", "copy"};
constexpr std::array rare{"\"speed\"",  "hair in gate, check",
                          "6'2\" mark", "café",
                          "Straße",     "夜景",
                          "Ночь",       "naïve",
                          "ND.6",       "Ångström"};

std::string digits(unsigned number, int atLeast) {
    char text[16];
    return {text,
            static_cast<std::size_t>(std::snprintf(text, sizeof text, "%0*u", atLeast, number))};
}

std::string timecode(unsigned frames) {
    const unsigned seconds = frames / 24 % 86400;
    return digits(seconds / 3600, 2) + ':' + digits(seconds / 60 % 60, 2) + ':' +
           digits(seconds % 60, 2) + ':' + digits(frames % 24, 2);
}

} // namespace

std::string cookieOfRow(unsigned row) {
    char text[40];
    std::snprintf(text, sizeof text, "M%08X%024XFF", row, 0x5EEDU);
    return text;
}

std::uint64_t Workload::random() noexcept {
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t z = state_;
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
    return z ^ (z >> 31U);
}

unsigned Workload::below(unsigned n) noexcept {
    return static_cast<unsigned>((random() >> 32U) * n >> 32U);
}

template <class List>
const char* Workload::oneOf(const List& list) noexcept {
    return list[below(static_cast<unsigned>(list.size()))];
}

std::string Workload::words(std::size_t longest) {
    std::string text;
    for (;;) {
        const std::string word = chance(5) ? oneOf(rare) : oneOf(common);
        if (text.size() + word.size() + 2 > longest) {
            return text;
        }
        text += text.empty() ? "" : chance(6) ? ", " : " ";
        text += word;
    }
}

/// A new scene and place; a scene has up to twelve takes, some with two cameras.
void Workload::nextSetup() {
    ++setup_;
    take_ = 0;
    takes_ = 1 + below(1 + below(12));
    cameras_ = chance(30) ? 2 : 1;
    scene_ = std::to_string(1 + below(180));
    if (chance(65)) {
        scene_ += static_cast<char>((chance(5) ? 'a' : 'A') + static_cast<char>(below(8)));
    }
    place_ = oneOf(places);
    const unsigned day = setup_ / 24;
    date_ = digits(2019 + day / 300 % 20, 4) + '-' + digits(1 + day % 300 / 25, 2) + '-' +
            digits(1 + day % 25, 2);
}

void Workload::nextTake() {
    camera_ = 0;
    if (++take_ > takes_) {
        nextSetup();
        take_ = 1;
    }
    start_ = clock_;
    length_ = 24 * (6 + below(90)) + below(24);
    clock_ += length_ + 3 * 24;
}

std::string Workload::clipName() {
    const std::string shot = scene_ + '-' + row_[Take];
    if (chance(45)) {
        return cameras_ == 2 ? shot + (camera_ == 0 ? " A" : " B") : shot;
    }
    if (chance(80)) {
        return row_[Tape] + 'C' + digits(clip_ % 26 + 1, 3) + '_' + date_.substr(2, 2) +
               date_.substr(5, 2) + date_.substr(8) + "_R" + digits(below(10000), 4);
    }
    return std::string{chance(50) ? "slate " : oneOf(rare)} + ' ' + shot;
}

std::string Workload::description() {
    if (chance(20)) {
        return {};
    }
    if (chance(1)) {
        return place_ + std::string{"\nsee log"};
    }
    const std::string more = chance(50) ? words(26) : "";
    return more.empty() ? place_ : place_ + (", " + more);
}

void Workload::fillRolls() {
    const unsigned reel = clip_ / 26;
    const std::string day = digits(setup_ / 24 % 999 + 1, 3);
    const bool film = chance(68);
    foot_ += 1 + length_ / 16;
    row_[Tape] =
        static_cast<char>('A' + (reel / 999 * 2 + camera_) % 8) + digits(reel % 999 + 1, 3);
    row_[Camroll] = row_[Tape] + '-' + digits(clip_ % 4 + 1, 1);
    row_[Soundroll] = "SR" + day;
    row_[DailyRoll] = 'D' + day;
    row_[Labroll] = film ? 'L' + digits(reel % 9999, 4) : "";
    row_[KeyNumber] = film ? "KJ" + digits(120000 + foot_ / 10000 % 800000, 6) + ' ' +
                                 digits(foot_ % 10000, 4) + '+' + digits(length_ % 16, 2)
                           : "";
    row_[FilmTime] = film ? timecode(start_ / 4 * 5) : "";
}

void Workload::fillTimes() {
    row_[Start] = timecode(10 * 3600 * 24 + start_);
    row_[End] = timecode(10 * 3600 * 24 + start_ + length_);
    row_[Duration] = timecode(length_);
    row_[SoundTime] = chance(90) ? timecode(10 * 3600 * 24 + start_ + 12) : "";
    row_[ShootDate] = date_;
}

const Workload::Row& Workload::next() {
    if (++camera_ >= cameras_ || made_ == 0) {
        nextTake();
    }
    ++clip_;
    row_[Tracks] = oneOf(trackSets);
    row_[Scene] = scene_;
    row_[Take] = std::to_string(take_);
    fillRolls();
    fillTimes();
    row_[Name] = clipName();
    row_[Ident] = identifier_ == Identifier::Cookie ? cookieOfRow(made_) : 'A' + digits(made_, 8);
    row_[Note] = chance(30) ? "" : words(4 + below(77));
    row_[Description] = description();
    row_[Who] = chance(68) ? oneOf(people) : "";
    ++made_;
    return row_;
}

} // namespace bench
