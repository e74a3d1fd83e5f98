// Titles that an import looks for to the letter. Titles that are the field's own name are found in
// any case.

#include "check/knownTitles.h"

#include "tarn/StringFunctions.h"

#include <algorithm>

namespace {

std::string withoutBlanks(std::string_view title) {
    std::string compact{title};
    std::erase_if(compact, [](char c) { return c == ' ' || c == '_'; });
    return compact;
}

} // namespace

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
