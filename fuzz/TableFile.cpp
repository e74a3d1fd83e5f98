// Table files, with and without a header: loading agrees with the plain reader, saving writes the
// values as the format says, and what is loaded again is the same but for the losses that
// docs/format-table.md lists.

#include "support/TableFileModel.h"

#include "Fuzz.h"

namespace {

// Fixed: the first piece of the file, and a scratch row. The dearest line is the "x" of a file with
// one column: two bytes for a row, its slot, a string and its place in the table, lists growing by
// doubling: 38 bytes and 1 allocation a byte. Values met lately take 2 KiB a column when it has
// seen 64, of two bytes or more: 16 bytes a byte. What is read ahead adds 3.
constexpr Bounds loading{.live = {40'000, 80}, .sum = {40'000, 110}, .blocks = {100, 2}};
// Rows are not kept as text but go through a buffer of 256 KiB, which is there for the smallest
// file. A column "Tag" takes a string for each row.
constexpr Bounds saving{.live = {290'000, 40}, .sum = {300'000, 60}, .blocks = {100, 1}};

void expectAgrees(const oledb& table, const std::string& bytes, bool requireHeader) {
    const FileModel::LoadedFile model = FileModel::FileReader{bytes, requireHeader}.file;
    ASSERT_EQ(table.get_valid() != 0, model.valid);
    ASSERT_TRUE(errorOf(table) == model.error ||
                (model.error == "none" && errorOf(table) == "2 3 0 0"))
        << errorOf(table) << " and " << model.error;
    ASSERT_EQ(paramsOf(table), model.params);
    if (!model.valid) {
        return;
    }
    Texts names;
    for (unsigned i = 0; i < table.get_num_fields(); ++i) {
        names.emplace_back(const_cast<oledb&>(table).get_fieldname(i));
    }
    ASSERT_EQ(names, model.names);
    for (unsigned i = 0; i < model.timecodes.size(); ++i) {
        ASSERT_EQ(const_cast<oledb&>(table).get_fieldtype(i),
                  model.timecodes[i] ? DBFieldTypes::TIMECODE : DBFieldTypes::TEXT);
    }
    ASSERT_EQ(table.get_num_records(), model.rows.size());
    for (unsigned i = 0; i < table.get_num_records(); ++i) {
        const dbrecord& row = *table.get_record(i);
        ASSERT_EQ(row.nfields(), model.counts[i]);
        const unsigned inUse = std::min<unsigned>(row.nfields(), table.get_num_fields());
        for (unsigned short col = 0; col < inUse; ++col) {
            ASSERT_EQ(row.get_field(col), model.rows[i][col]) << "row " << i << " column " << col;
        }
    }
}

bool hasAny(const Texts& texts, const char* bytes) {
    return std::any_of(texts.begin(), texts.end(), [=](const std::string& text) {
        return text.find_first_of(bytes) != std::string::npos;
    });
}

/// Nothing in a row is among what the format loses, nor does it come from behind a second heading.
bool survives(const Texts& values, std::size_t columns) {
    const auto loses = [](const std::string& value) {
        return value.find('\r') != std::string::npos || value.find("\\n") != std::string::npos ||
               (!value.empty() &&
                (FileModel::isWhite(value.front()) || FileModel::isWhite(value.back())));
    };
    return values.size() == columns && values[0] != "OLEDB" &&
           FileModel::writeRow(values).size() <= 4095 &&
           std::none_of(values.begin(), values.end(), loses);
}

std::string saved(oledb& table, int (oledb::*save)(), std::size_t inputBytes) {
    table.set_filename(files().wide("saved"));
    const int rows = within(saving, inputBytes, [&] { return (table.*save)(); });
    EXPECT_EQ(rows, static_cast<int>(table.get_num_records()));
    return files().read("saved");
}

/// What names and rows look like in the file.
std::string expectedEnd(oledb& table) {
    std::string names;
    for (unsigned i = 0; i < table.get_num_fields(); ++i) {
        names += std::string{i == 0 ? "\"" : ",\""} + table.get_fieldname(i) + "\"";
    }
    std::string text = names + "\r\n";
    for (const Texts& row : rowsOf(table)) {
        text += FileModel::writeRow(row) + "\r\n";
    }
    return text;
}

oledb loaded(const LightweightString<wchar_t>& path, bool requireHeader, std::size_t inputBytes) {
    return within(loading, inputBytes, [&] {
        return oledb{path, std::numeric_limits<int>::max(), requireHeader};
    });
}

void saveAndLoadAgain(oledb& table, std::size_t inputBytes) {
    for (const bool header : {true, false}) {
        const auto save = header ? &oledb::save_text : &oledb::save_text_without_header;
        const std::string bytes = saved(table, save, inputBytes);
        ASSERT_TRUE(bytes.ends_with(expectedEnd(table))) << bytes;
        const oledb again = loaded(files().wide("saved"), header, bytes.size());
        ASSERT_NO_FATAL_FAILURE(expectAgrees(again, bytes, header));
        Texts heading = paramsOf(table);
        std::size_t namesLength = 0;
        for (unsigned i = 0; i < table.get_num_fields(); ++i) {
            heading.emplace_back(table.get_fieldname(i));
            namesLength += heading.back().size() + 3;
        }
        const Rows rows = rowsOf(table);
        if (header && namesLength <= 4095 && !hasAny(heading, "\n\"") &&
            std::all_of(rows.begin(), rows.end(),
                        [&](const Texts& row) { return survives(row, table.get_num_fields()); })) {
            ASSERT_EQ(again.get_valid(), 1);
            ASSERT_EQ(rowsOf(again), rows);
        }
    }
}

} // namespace

void fuzz(std::string_view input) {
    for (const bool requireHeader : {true, false}) {
        oledb table = loaded(written("table", input), requireHeader, input.size());
        ASSERT_NO_FATAL_FAILURE(expectAgrees(table, std::string{input}, requireHeader));
        if (table.get_valid() != 0) {
            ASSERT_NO_FATAL_FAILURE(saveAndLoadAgain(table, input.size()));
        }
    }
}
