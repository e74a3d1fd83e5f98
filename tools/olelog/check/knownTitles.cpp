// Titles that an import looks for to the letter. Titles that are the field's own name are found in
// any case.

#include "check/knownTitles.h"

#include "tarn/Ascii.h"
#include "tarn/StringFunctions.h"

#include <algorithm>

namespace {

std::string withoutBlanks(std::string_view title) {
    std::string compact{title};
    std::erase_if(compact, [](char c) { return c == ' ' || c == '_'; });
    return compact;
}

} // namespace

bool isOneSlip(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty() && Tarn::toLower(a.front()) == Tarn::toLower(b.front())) {
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    while (!a.empty() && !b.empty() && Tarn::toLower(a.back()) == Tarn::toLower(b.back())) {
        a.remove_suffix(1);
        b.remove_suffix(1);
    }
    const bool swapped = a.size() == 2 && b.size() == 2 &&
                         Tarn::toLower(a[0]) == Tarn::toLower(b[1]) &&
                         Tarn::toLower(a[1]) == Tarn::toLower(b[0]);
    return swapped || (a.size() <= 1 && b.size() <= 1);
}

const std::vector<std::string>& knownTitles() {
    static const std::vector<std::string> titles{
        "Name",    "Tracks",      "Start",      "End",      "Tape",       "Reel",
        "Scene",   "Take",        "Note",       "Notes",    "Duration",   "Camroll",
        "Perf",    "Description", "DailyRoll",  "Labroll",  "Soundroll",  "Sound TC",
        "Film TC", "TC 24",       "Ink Number", "KN Start", "Shoot Date", "SoundFile",
    };
    return titles;
}

std::string nearKnownTitle(std::string_view title) {
    const std::string wanted = withoutBlanks(title);
    for (const std::string& known : knownTitles()) {
        if (title == known) {
            return {};
        }
    }
    for (const std::string& known : knownTitles()) {
        if (compareIgnoringCase(wanted, withoutBlanks(known)) == 0) {
            return known;
        }
    }
    return {};
}

std::string misspeltTitle(std::string_view title) {
    for (const std::string& known : knownTitles()) {
        if (isOneSlip(title, known)) {
            return known;
        }
    }
    return {};
}
