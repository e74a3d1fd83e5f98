// What an import makes of a log is found out by importing it.

#include "check/CheckedLog.h"

#include "checkedSave.h"
#include "Progress.h"
#include "standardFields.h"
#include "tableFile.h"
#include "tableLosses.h"
#include "TemporaryFile.h"

#include <cerrno>
#include <utility>

CheckedLog::CheckedLog(const InputFile& file, std::vector<LogLine> lines)
    : lines_{std::move(lines)}, head_{readLogHead(file)}, imported_{tableWith(standardFields())} {
    Progress progress{"trying the import"};
    ALE::fillODB(*imported_, modulePath(file.path()), report_);
    progress.nowDoing("trying the table file");
    saveAndLoad();
}

void CheckedLog::saveAndLoad() {
    auto file = TemporaryFile::anywhere();
    error_ = file ? 0 : errno;
    if (!file) {
        return;
    }
    file->close();
    const auto tag = static_cast<unsigned>(imported_->get_fieldnum("Tag"));
    for (unsigned row = 0; row < imported_->get_num_records(); ++row) {
        takeTag(*imported_, row, tag);
    }
    error_ = writeTable(*imported_, file->path());
    auto loaded = loadTableQuietly(file->path());
    whyNotKept_ = whyNotTheSame(*imported_, *loaded);
    if (whyNotKept_.empty()) {
        kept_ = std::move(loaded);
    }
}
