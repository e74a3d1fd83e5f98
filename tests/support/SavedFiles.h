#pragma once

// Every kind of file that the module saves, in two versions of several pieces each, and what may
// stand in a folder after a save that came to no good end.

#include "ole/interchange/CSV.h"
#include "ole/interchange/ODBFieldView.h"
#include "ole/oledb/TarnContainerFile.h"
#include "support/Captured.h"
#include "support/Views.h"
#include "tarn/TextFile.h"
#include "unit/TemporaryFolder.h"

#include <climits>
#include <gtest/gtest.h>
#include <optional>
#include <ostream>

using WidePath = LightweightString<wchar_t>;

/// A table, a view of all its rows and a container of the same size, filled with one letter.
struct Version {
    static constexpr unsigned rows = 2000;

    explicit Version(char letter) {
        const std::string text(360, letter);
        Rows texts(rows);
        for (unsigned i = 0; i < rows; ++i) {
            texts[i] = {std::to_string(i), text};
            container.addItem(cookieNo(i))->set_field(1, text.c_str());
        }
        addRows(table, texts);
        table.set_all_tags(1);
        view->displayAllRecords();
    }

    DBFieldDesc items[3] = {{"Cookie", DBFieldTypes::TEXT}, {"Note", DBFieldTypes::TEXT}, {}};
    oledb table{descriptors({"Name", "Note"}).data()};
    ODBView view{&table};
    TarnContainerFile::Writer container{items};
};

/// A kind of file. CSV and containers have no result that would tell a failure.
struct FileKind {
    const char* name;
    bool tells;
    bool (*save)(Version&, const WidePath&);
    bool isTable = true;

    [[nodiscard]] bool loads(const WidePath& path) const {
        if (!isTable) {
            return TextFile{path, true}.numLines() == Version::rows + 2;
        }
        const oledb table{path, INT_MAX, false};
        return table.get_valid() != 0 && table.get_num_records() == Version::rows;
    }
};

inline void PrintTo(const FileKind& kind, std::ostream* out) {
    *out << kind.name;
}
inline std::string nameOfKind(const testing::TestParamInfo<FileKind>& kind) {
    return kind.param.name;
}

inline bool saveCsvLines(Version& version, const WidePath& path) {
    const CSV csv{version.view};
    TextFile file{path, false};
    csv.writeHeader(file);
    for (unsigned i = 0; i < Version::rows; ++i) {
        csv.writeRecord(file, i);
    }
    return file.save({}, TextFile::eEOLStyleCRLF);
}

template <auto Save>
bool saveTable(Version& version, const WidePath& path) {
    version.table.set_filename(path);
    return (version.table.*Save)() != 0;
}

inline bool saveView(Version& version, const WidePath& path) {
    return version.view->saveAsText(path, false) != 0;
}
inline bool saveTagged(Version& version, const WidePath& path) {
    const Captured quiet; // a failed check is told each time
    return version.view->saveOnlyTagged(path) != 0;
}
inline bool saveCsv(Version& version, const WidePath& path) {
    return CSV{version.view}.writeTo(path);
}
inline bool saveContainer(Version& version, const WidePath& path) {
    version.container.save(path);
    return true;
}

inline bool saveFieldView(Version& version, const WidePath& path) {
    const char* const names[] = {"Name", "Note", nullptr};
    ODBFieldView fields{version.view, names};
    fields.setFileName(path);
    return fields.exportNewOleDb(false) != 0;
}

inline const FileKind fileKinds[] = {
    {"Table", true, saveTable<&oledb::save_text>},
    {"TableWithoutHeader", true, saveTable<&oledb::save_text_without_header>},
    {"TaggedRows", true, saveTable<&oledb::save_tags>},
    {"View", true, saveView},
    {"TaggedRecords", true, saveTagged},
    {"FieldView", true, saveFieldView},
    {"Csv", false, saveCsv, false},
    {"CsvLines", true, saveCsvLines, false},
    {"Container", false, saveContainer},
};
/// One for each way of saving; the others differ in what they write and how they tell.
inline const FileKind mainKinds[] = {fileKinds[0], fileKinds[6], fileKinds[8]};

/// A folder with a file that is saved again and again, in one of two versions.
class SavedFile : public testing::TestWithParam<FileKind> {
protected:
    using Bytes = std::optional<std::string>;

    SavedFile() {
        TextFile::setFlushToDisk(false);
        for (unsigned i = 0; i < 2; ++i) {
            EXPECT_TRUE(save(i));
            bytes_[i] = folder_.read("f");
            EXPECT_TRUE(GetParam().loads(path())) << "version " << i;
        }
        EXPECT_GT(bytes_[0]->size(), 600'000U);
        EXPECT_NE(bytes_[0], bytes_[1]);
        TextFile::setFlushToDisk(true);
    }
    ~SavedFile() override { TextFile::setFlushToDisk(true); }

    [[nodiscard]] WidePath path() const { return folder_.wide("f"); }
    bool save(unsigned version) { return GetParam().save(versions_[version], path()); }

    [[nodiscard]] Bytes at(const char* name) const {
        return std::filesystem::exists(folder_.path(name)) ? Bytes{folder_.read(name)} : Bytes{};
    }
    [[nodiscard]] bool holds(unsigned version) const { return at("f") == bytes_[version]; }
    /// The other names in the folder: what a save has left behind.
    [[nodiscard]] std::set<std::string> siblings() const {
        std::set<std::string> names = folder_.names();
        names.erase("f");
        return names;
    }
    void removeSiblings() const {
        for (const std::string& name : siblings()) {
            std::filesystem::remove(folder_.path(name));
        }
    }

    /// What stood there before, or the new version, stands whole at its path.
    void expectWhole(const Bytes& before, unsigned version) const {
        const Bytes found = at("f");
        EXPECT_TRUE(found == before || found == bytes_[version])
            << "found " << (found ? std::to_string(found->size()) + " bytes" : "nothing");
    }
    /// What a save has left beside the file is in nobody's way: loading and saving go on.
    void expectUsableBesideSiblings(unsigned version) {
        if (siblings().empty()) {
            return;
        }
        EXPECT_EQ(GetParam().loads(path()), at("f").has_value());
        TextFile::setFlushToDisk(false);
        EXPECT_TRUE(save(version));
        TextFile::setFlushToDisk(true);
        EXPECT_TRUE(holds(version));
        removeSiblings();
    }

    TemporaryFolder folder_;
    Version versions_[2] = {Version{'a'}, Version{'b'}};
    Bytes bytes_[2];
};
