// Saving without loss: what cannot be loaded is not saved, what changes is told.

#include "checkedSave.h"

#include "Command.h"
#include "files.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "Progress.h"
#include "SaveTarget.h"
#include "shownText.h"
#include "tableFile.h"
#include "tableLosses.h"
#include "tableValues.h"
#include "tarn/numbers.h"

#include <algorithm>
#include <cerrno>
#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

namespace {

constexpr int greatestTag = 255;

/// Saving writes the tags over the column "Tag": takes them from there first. Says which of its
/// values are no tags and will be lost, and returns whether there are none.
bool takeTagsFromColumn(oledb& table, const RowOrigins& origins) {
    const int found = table.get_fieldnum("Tag");
    const auto col = static_cast<unsigned>(found);
    Findings findings;
    for (unsigned row = 0; found >= 0 && row < table.get_num_records(); ++row) {
        const std::string text{valueOf(table, row, col)};
        if (!takeTag(table, row, col)) {
            findings.tell(fmt::format("{}: Tag: {} is no tag, and the column \"Tag\" of a table "
                                      "file keeps nothing else",
                                      origins.of(row), inQuotes(text)));
        }
    }
    findings.close();
    return !findings.any();
}

/// Puts the written file in its place, unless that is not wanted.
int finish(const SaveTarget& place, TemporaryFile& written, bool lossless, const SaveRules& rules) {
    if (!lossless && rules.strict) {
        return refuseLoss(place.name());
    }
    if (!rules.dryRun) {
        if (const int error = place.take(written)) {
            return cannotWrite(place.name(), error);
        }
    }
    return lossless ? exitFine : exitFindings;
}

} // namespace

int cannotWrite(const std::string& name, int error) {
    if (error == SaveTarget::changedMeanwhile) {
        say("{} was changed by somebody else meanwhile; run it again", name);
        return exitFailure;
    }
    std::error_code failed;
    const std::string folder = std::filesystem::path{name}.parent_path().string();
    const bool lacksFolder =
        error == ENOENT && !folder.empty() && !std::filesystem::exists(folder, failed);
    say("{}: cannot be written: {}; nothing was changed", name == "-" ? "standard output" : name,
        lacksFolder ? fmt::format("there is no folder {}", folder) : reasonText(error));
    return exitFailure;
}

bool takeTag(oledb& table, unsigned row, unsigned col) {
    const std::string text{valueOf(table, row, col)};
    const int tag = std::clamp(Tarn::parseInt(text.c_str()), 0, greatestTag);
    table.set_tag(row, tag);
    table.set_field(row, col, tag); // as saving will; it counts for the length of the row
    return text.empty() || text == std::to_string(tag);
}

int writeTable(oledb& table, const std::string& path) {
    const SignalPause pause; // the module writes through a file that we cannot remove
    const auto filename = table.get_filename();
    table.set_filename(modulePath(path));
    errno = 0;
    const int rows = table.save_text();
    const int error = errno;
    table.set_filename(filename);
    if (rows != 0 || table.get_num_records() == 0) {
        return 0;
    }
    return error == 0 ? EIO : error;
}

void addStrictOption(CLI::App& command, bool& strict) {
    command.add_flag("--strict", strict,
                     "Write nothing where the table file would give back anything changed");
}

int refuseLoss(const std::string& target) {
    say("{}: not written, as --strict asks: the table would not come back as it is",
        target == "-" ? "standard output" : target);
    return exitFailure;
}

int saveChecked(oledb& table, const SaveTarget& place, const RowOrigins& origins,
                const SaveRules& rules) {
    const std::string& target = place.name();
    if (const int error = place.whyNotWritable()) {
        return cannotWrite(target, error);
    }
    const std::string shownName = target == "-" ? "standard output" : target;
    Progress progress{"writing " + shownName};
    progress.unmeasured(table.get_num_records());
    const bool tagsKept = takeTagsFromColumn(table, origins);
    if (tellUnsavableRows(table, origins)) {
        say("{}: not written", shownName);
        return exitFailure;
    }
    auto written = rules.dryRun ? TemporaryFile::anywhere() : place.makeSibling();
    if (!written) {
        return cannotWrite(target, errno);
    }
    written->close();
    if (const int error = writeTable(table, written->path())) {
        return cannotWrite(target, error);
    }
    progress.nowDoing("reading it back");
    const std::unique_ptr<oledb> loaded = loadTableQuietly(written->path());
    progress.nowDoing("comparing");
    if (const std::string why = whyNotTheSame(table, *loaded); !why.empty()) {
        say("{}: not written, for the table would not come back whole: {}", target, why);
        return exitFailure;
    }
    const bool changed = tellChanges(table, *loaded, origins, progress);
    return finish(place, *written, tagsKept && !changed, rules);
}

bool canBeSaved(const std::string& target) {
    const SaveTarget place{target};
    int error = place.whyNotWritable();
    if (error == 0 && !place.makeSibling()) {
        error = errno;
    }
    if (error != 0) {
        cannotWrite(target, error);
    }
    return error == 0;
}
