// Container files: what the reader tells agrees with the plain reader of table files, and items
// that a writer takes over come back.

#include "ole/oledb/TarnContainerFile.h"
#include "support/TableFileModel.h"

#include "Fuzz.h"

#include <strings.h>

namespace {

using Reader = TarnContainerFile::Reader;
using Writer = TarnContainerFile::Writer;

// Fixed: the first piece of the file, and a scratch row. The dearest line is the "x" of a file with
// one column: two bytes for a row, its slot, a string and its place in the table, lists growing by
// doubling: 38 bytes and 1 allocation a byte. Values met lately take 2 KiB a column when it has
// seen 64, of two bytes or more: 16 bytes a byte. What is read ahead adds 3.
constexpr Bounds reading{.live = {40'000, 80}, .sum = {40'000, 110}, .blocks = {100, 2}};

/// The column of a name, ignoring case: of several the last.
int columnOf(const Texts& names, const char* name) {
    const auto found = std::find_if(names.rbegin(), names.rend(), [=](const std::string& known) {
        return strcasecmp(known.c_str(), name) == 0;
    });
    return static_cast<int>(names.rend() - found) - 1;
}

void expectItems(const Reader& reader, const FileModel::LoadedFile& file, std::size_t cookieAt) {
    CookieVec contents;
    ASSERT_EQ(reader.getNumItems(), file.rows.size());
    for (unsigned i = 0; i < file.rows.size(); ++i) {
        const Reader::Item item = reader.getItem(i);
        const auto inUse = std::min(static_cast<std::size_t>(file.counts[i]), file.names.size());
        const std::string text = cookieAt < inUse ? file.rows[i][cookieAt] : "";
        ASSERT_EQ(item.getCookie(), Cookie(text.c_str(), true)) << text;
        ASSERT_TRUE(reader.contains(Cookie{text.c_str(), false})) << text;
        for (unsigned col = 0; col < inUse; ++col) {
            ASSERT_EQ(item.getAttrib(col), file.rows[i][col].c_str());
        }
        if (std::find(contents.begin(), contents.end(), item.getCookie()) == contents.end()) {
            contents.push_back(item.getCookie());
        }
    }
    ASSERT_LE(reader.getContents().size(), contents.size());
    ASSERT_FALSE(reader.getItem(reader.getNumItems()).getCookie().valid());
}

/// Attributes by name, ignoring case, the first of each. Names that hold an equals sign are left
/// out: the model writes name and value with one between.
void expectAttributes(const Reader& reader, const Texts& params) {
    Texts seen;
    for (const std::string& param : params) {
        const std::size_t mark = param.find('=');
        const std::string name = param.substr(0, mark);
        const bool again = std::any_of(seen.begin(), seen.end(), [&](const std::string& known) {
            return strcasecmp(known.c_str(), name.c_str()) == 0;
        });
        seen.push_back(name);
        if (!again && param.find('=', mark + 1) == std::string::npos) {
            const std::string value = param.substr(mark + 1);
            ASSERT_EQ(reader.getAttrib(name.c_str()), value.c_str()) << param;
            if (strcasecmp(name.c_str(), "Name") == 0) {
                ASSERT_EQ(reader.getName(), value.c_str());
            }
        }
    }
}

bool isPlain(const std::string& text) {
    return text.size() < 2000 && text.find_first_of("\n\r\"\\") == std::string::npos &&
           (text.empty() ||
            (!FileModel::isWhite(text.front()) && !FileModel::isWhite(text.back())));
}

/// Cookies and notes of all items, through a writer and a file.
void writeAndReadAgain(const Reader& reader) {
    DBFieldDesc columns[] = {{"Cookie", DBFieldTypes::TEXT}, {"Note", DBFieldTypes::TEXT}, {}};
    Writer writer{columns};
    const std::string name = reader.getName().c_str();
    writer.setName(isPlain(name) ? name.c_str() : "");
    writer.setPermanent(reader.isPermanent());
    std::vector<std::pair<Cookie, std::string>> items;
    for (unsigned i = 0; i < reader.getNumItems(); ++i) {
        const Cookie cookie = reader.getItem(i).getCookie();
        std::string note = reader.getItem(i).getAttrib(0).c_str();
        note = isPlain(note) ? note : "";
        dbrecord* const row = writer.addItem(cookie);
        ASSERT_EQ(row != nullptr, cookie.valid());
        if (row) {
            row->set_field(1, note.c_str());
            items.emplace_back(cookie, note);
        }
    }
    writer.save(files().wide("written.sg"));
    const Reader again{files().wide("written.sg"), false};
    ASSERT_TRUE(again.valid());
    ASSERT_EQ(again.isPermanent(), reader.isPermanent());
    ASSERT_EQ(again.getName(), isPlain(name) ? name.c_str() : "");
    ASSERT_EQ(again.getNumItems(), items.size());
    for (unsigned i = 0; i < items.size(); ++i) {
        ASSERT_EQ(again.getItem(i).getCookie(), items[i].first);
        ASSERT_EQ(again.getItem(i).getAttrib(1), items[i].second.c_str());
    }
}

} // namespace

void fuzz(std::string_view input) {
    const auto path = written("container.sg", input);
    const FileModel::LoadedFile file = FileModel::FileReader{std::string{input}, true}.file;
    const auto read = [&](bool headerOnly) { return Reader{path, headerOnly}; };
    const Reader reader = within(reading, input.size(), [&] { return read(false); });
    const Reader header = within(reading, input.size(), [&] { return read(true); });
    const int cookieAt = columnOf(file.names, "Cookie");
    ASSERT_EQ(reader.valid(), file.valid && cookieAt >= 0);
    ASSERT_EQ(header.valid(), reader.valid());
    ASSERT_EQ(header.getNumItems(), 0U);
    if (!reader.valid()) {
        ASSERT_EQ(reader.getNumItems(), 0U);
        return;
    }
    ASSERT_NO_FATAL_FAILURE(expectAttributes(header, file.params));
    ASSERT_NO_FATAL_FAILURE(expectAttributes(reader, file.params));
    ASSERT_NO_FATAL_FAILURE(expectItems(reader, file, static_cast<std::size_t>(cookieAt)));
    writeAndReadAgain(reader);
}
