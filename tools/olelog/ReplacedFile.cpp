// What a command would write over. A table made anew gives back what the logs say, but not the tags
// and identifiers that rows got since.

#include "ReplacedFile.h"

#include "ContainerTable.h"
#include "messages.h"
#include "ole/oledb/oledb.h"
#include "Progress.h"
#include "repeatedRows.h"
#include "tableFile.h"
#include "tableValues.h"
#include "tarn/numbers.h"

#include <utility>

namespace {

std::size_t countTagged(const oledb& table) {
    const int col = table.get_fieldnum("Tag");
    std::size_t tagged = 0;
    for (unsigned row = 0; col >= 0 && row < table.get_num_records(); ++row) {
        const char* const text = table.get_field(row, col);
        tagged += text && Tarn::parseInt(text) != 0 ? 1 : 0;
    }
    return tagged;
}

std::size_t countIdentified(const oledb& table) {
    const int col = table.get_fieldnum("Cookie");
    return col < 0 ? 0 : countFilled(table, static_cast<unsigned>(col));
}

} // namespace

ReplacedFile::ReplacedFile(std::string target) : target_{std::move(target)} {
    if (target_ == "-") {
        return;
    }
    if (isTableFile(target_)) {
        look();
    } else if (isForeignFile(target_)) {
        kind_ = Kind::Foreign;
    }
}

void ReplacedFile::look() {
    const std::unique_ptr<oledb> table = loadTableQuietly(target_);
    kind_ = ::isContainer(*table) ? Kind::Container : Kind::Table;
    rows_ = table->get_num_records();
    tagged_ = countTagged(*table);
    identified_ = countIdentified(*table);
}

std::string ReplacedFile::whyKept() const {
    if (kind_ == Kind::Foreign) {
        return "exists and is no table";
    }
    if (kind_ == Kind::Container) {
        return fmt::format("is a container with {}, which would go", counted(rows_, "item"));
    }
    if (tagged_ == 0 && identified_ == 0) {
        return {};
    }
    return fmt::format("holds {}{}{}, which would go",
                       tagged_ == 0 ? "" : counted(tagged_, "tagged row"),
                       tagged_ == 0 || identified_ == 0 ? "" : " and ",
                       identified_ == 0 ? "" : counted(identified_, "identifier"));
}

bool ReplacedFile::standsInTheWay(bool inPlace, std::string_view otherWay) const {
    const std::string why = inPlace ? "" : whyKept();
    if (!why.empty()) {
        say("{} {}; {}--in-place allows {}", target_, why, isTable() ? otherWay : "",
            kind_ == Kind::Foreign ? "to replace it" : "that");
    }
    return !why.empty();
}

bool ReplacedFile::losesRowsTo(oledb& replacement, bool inPlace, std::string_view otherWay) const {
    if (inPlace || !isTable()) {
        return false;
    }
    const Progress progress{"comparing with " + target_};
    const std::unique_ptr<oledb> old = loadTableQuietly(target_);
    const unsigned missing = countMissing({*old, 0, old->get_num_records()},
                                          {replacement, 0, replacement.get_num_records()});
    if (missing != 0) {
        say("{} holds {}, {} of which {} not among the new ones and would go; {}--in-place allows "
            "to replace it",
            target_, counted(old->get_num_records(), "row"), missing, missing == 1 ? "is" : "are",
            otherWay);
    }
    return missing != 0;
}

void ReplacedFile::tell() const {
    if (kind_ == Kind::Table || kind_ == Kind::Container) {
        note("replaced {}, which held {}", target_,
             counted(rows_, kind_ == Kind::Container ? "item" : "row"));
    } else if (kind_ == Kind::Foreign) {
        note("replaced {}", target_);
    }
}
