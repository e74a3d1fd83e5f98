// Which table field a log's column goes to.
//
// The user's map file "ALEFieldMap.txt" in the preferences folder holds lines of the form
// column=field. It is read once in a process; of several lines for one column the first counts.

#include "ole/interchange/AleColumns.h"

#include "misc/AttribValuePair.h"
#include "misc/OS.h"
#include "misc/paths.h"
#include "tarn/TextFile.h"

#include <array>
#include <map>

namespace {

using ColumnMap = std::map<LightweightString<char>, LightweightString<char>>;

/// Adds what the map file holds, if there is one; true once that was tried. In the place of the
/// file may stand what never ends, as a pipe or a device.
bool readUserMap(ColumnMap& map) {
    const auto path = getPrefsDirectory(iSettings::eUser) + L"ALEFieldMap.txt";
    if (!OS().isRegularFile(path)) {
        return true;
    }
    const TextFile file{path, true};
    for (unsigned i = 0; i < file.numLines(); ++i) {
        const Tarn::AttribValuePair pair{file[i], "="};
        if (pair.valid()) {
            map.emplace(pair.attribute(), pair.value());
        }
    }
    return true;
}

const ColumnMap& userMapOnce() {
    static ColumnMap userMap;
    [[maybe_unused]] static const bool loadedUserMapFile = readUserMap(userMap);
    return userMap;
}

struct BuiltIn {
    const char* column;
    const char* field;
};

constexpr std::array<BuiltIn, 18> builtIns{{
    {"Tracks", "chans"},
    {"Start", "start time"},
    {"End", "end time"},
    {"Tape", "reel"},
    {"Note", "notes"},
    {"Take", "shot"},
    {"DailyRoll", "lab reel"},
    {"Labroll", "comp reel"},
    {"Camroll", "cam reel"},
    {"Soundroll", "snd reel"},
    {"Sound TC", "snd start"},
    {"Film TC", "Start camcode"},
    {"Ink Number", "start inkcode"},
    {"KN Start", "start keycode"},
    {"Shoot Date", "cam_date"},
    {"TC 24", "start 24p code"},
    {"Perf", "start perf"},
    {"SoundFile", "orig soundfile"},
}};

} // namespace

LightweightString<char> fieldNameForAleColumn(const LightweightString<char>& column) {
    const ColumnMap& userMap = userMapOnce();
    if (const auto found = userMap.find(column); found != userMap.end()) {
        return found->second;
    }
    for (const BuiltIn& known : builtIns) {
        if (column == known.column) {
            return known.field;
        }
    }
    return column;
}
