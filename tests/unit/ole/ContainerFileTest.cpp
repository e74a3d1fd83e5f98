// Container files: what is written and read back, what a file that is no container answers, and
// saving that never leaves less than one whole file.

#include "ole/oledb/TarnContainerFile.h"
#include "support/Captured.h"
#include "support/Tables.h"
#include "tarn/TextFile.h"
#include "unit/ChildProcess.h"
#include "unit/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

using Reader = TarnContainerFile::Reader;
using Writer = TarnContainerFile::Writer;
using Names = std::set<std::string>;

std::string textOf(const Cookie& cookie, bool longForm = false) {
    return cookie.valid() ? cookie.asString(longForm).c_str() : "-";
}

/// The cookies of all items, "-" for the invalid one.
Texts itemsOf(const Reader& reader) {
    Texts texts;
    for (unsigned i = 0; i < reader.getNumItems(); ++i) {
        texts.push_back(textOf(reader.getItem(i).getCookie()));
    }
    return texts;
}

class ContainerFile : public testing::Test {
protected:
    ContainerFile() { TextFile::setFlushToDisk(false); }
    ~ContainerFile() override { TextFile::setFlushToDisk(true); }

    /// Saves a container of items 1 to n, each with its number as a note.
    void save(unsigned n) const {
        std::vector<DBFieldDesc> columns = descriptors({"Note", "cookie"});
        Writer writer{columns.data()};
        writer.setName("caf\xc3\xa9");
        writer.setPermanent(true);
        writer.setAttrib("Count", "x");
        writer.setAttrib("COUNT", "-2.5 kg");
        for (unsigned i = 1; i <= n; ++i) {
            EXPECT_EQ(writer.addItem(cookieNo(i, 'I')), nullptr);
            writer.addItem(cookieNo(i))->set_field(0, static_cast<int>(i));
        }
        writer.save(folder_.wide("c"));
    }
    /// A reader of these bytes.
    std::unique_ptr<Reader> reader(const std::string& bytes, bool headerOnly = false) const {
        folder_.write("c", bytes);
        return std::make_unique<Reader>(folder_.wide("c"), headerOnly);
    }
    static std::string fileOf(const Columns& columns, const Rows& rows) {
        const TemporaryFolder folder;
        const auto table = makeTable(columns, rows);
        table->set_filename(folder.wide("t"));
        table->save_text();
        return folder.read("t");
    }

    TemporaryFolder folder_;
};

const std::string heading =
    "\"OLEDB:Rev 1\"\r\n\"Name:caf\xc3\xa9\"\r\n\"Permanent:true\"\r\n"
    "\"Count:-2.5 kg\"\r\n\"OLEDB\"\r\n\"4\",\"41\"\r\n\"text\",\"text\"\r\n"
    "\"Note\",\"cookie\"\r\n";

TEST_F(ContainerFile, IsATableFileWithLongCookies) {
    save(2);
    EXPECT_EQ(folder_.read("c"), heading + "\"1\",\"" + textOf(cookieNo(1), true) +
                                     "\"\r\n\"2\",\"" + textOf(cookieNo(2), true) + "\"\r\n");
    const Reader whole{folder_.wide("c"), false};
    const Reader header{folder_.wide("c"), true};
    for (const Reader* const each : {&whole, &header}) {
        EXPECT_TRUE(each->valid() && each->isPermanent());
        EXPECT_TRUE(each->getNameW() == LightweightString<wchar_t>{L"caf\u00e9"});
        EXPECT_EQ(each->getAttrib("count", 7), -2);
        EXPECT_EQ(each->getAttrib("count", 7.0), -2.5);
        EXPECT_EQ(each->getAttrib("none", 7), 7);
        EXPECT_EQ(each->getAttrib("none", 7.5), 7.5);
        EXPECT_EQ(each->getAttrib("name", 7), 0); // a text that is no number
        EXPECT_EQ(each->getItemAttribIndex("COOKIE"), 1);
        EXPECT_EQ(each->getItemAttribIndex("other"), -1);
    }
    EXPECT_EQ(itemsOf(whole), (Texts{cookieText(1), cookieText(2)}));
    EXPECT_TRUE(whole.contains(cookieNo(2)) && !whole.contains(cookieNo(2, 'B')));
    EXPECT_EQ(itemsOf(header), Texts{});
    EXPECT_FALSE(header.contains(cookieNo(1)));
}

TEST_F(ContainerFile, AttributesOfItems) {
    const auto c = reader(fileOf({"Cookie", "n"}, {{cookieText(1), "-3.5m"}, {cookieText(2), ""}}));
    const Reader::Item full = c->getItem(0);
    EXPECT_EQ(full.getAttrib(1), "-3.5m");
    EXPECT_EQ(full.getAttrib(1, 7), -3);
    EXPECT_EQ(full.getAttrib(1, 7.0), -3.5);
    EXPECT_EQ(c->getItem(1).getAttrib(1, 7), 0); // there, and empty
    EXPECT_EQ(c->getItem(1).getAttrib(1, 7.0), 0.0);
    // No such column, one that a careless conversion would take for the first, no row at all.
    for (const auto& [item, col] : {std::pair{full, 2U},
                                    {full, ~0U},
                                    {full, 65536U},
                                    {Reader::Item{}, 0U},
                                    {c->getItem(2), 0U},
                                    {c->getItem(~0U), 0U}}) {
        EXPECT_EQ(item.getAttrib(col), "");
        EXPECT_EQ(item.getAttrib(col, 7), 7);
        EXPECT_EQ(item.getAttrib(col, 7.5), 7.5);
    }
    EXPECT_FALSE(c->getItem(2).getCookie().valid());
}

TEST_F(ContainerFile, CookiesThatAreReadDifferentlyOrNotAtAll) {
    const std::string bare = cookieText(1).substr(1, 32);
    const auto c = reader(fileOf({"Cookie"}, {{cookieText(3)},
                                              {"rubbish"},
                                              {textOf(cookieNo(2), true)},
                                              {" "},
                                              {cookieText(3)},
                                              {bare}}));
    EXPECT_EQ(itemsOf(*c), (Texts{cookieText(3), "-", cookieText(2), "-", cookieText(3), "-"}));
    EXPECT_TRUE(c->contains(cookieNo(1, 'U'))); // the bare one, which getItem does not read
    EXPECT_TRUE(c->contains(Cookie{}));
    Texts contents;
    for (const Cookie& cookie : c->getContents()) {
        contents.push_back(textOf(cookie));
    }
    EXPECT_EQ(contents, (Texts{cookieText(3), "-", cookieText(2)}));
    EXPECT_FALSE(reader(fileOf({"Cookie"}, {{bare}}))->contains(Cookie{}));
}

TEST_F(ContainerFile, Permanence) {
    const std::pair<const char*, bool> values[] = {
        {"TRUE", true}, {"1", true}, {"false", false}, {"", false}, {"perhaps", false}};
    for (const auto& [text, permanent] : values) {
        const std::string file = std::string{"\"OLEDB:Rev 1\"\r\n\"permanent:"} + text + "\"\r\n";
        EXPECT_EQ(reader(file + fileOf({"Cookie"}, {}))->isPermanent(), permanent) << text;
    }
    EXPECT_FALSE(reader(fileOf({"Cookie"}, {}))->isPermanent());
}

// A row that the cut leaves without its last quote still fills its fields: the last cookie may be
// cut too, the others are whole.
TEST_F(ContainerFile, CutAnywhere) {
    save(3);
    const Captured said;
    const std::string whole = folder_.read("c");
    const Texts items{cookieText(1), cookieText(2), cookieText(3)};
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto c = reader(whole.substr(0, length));
        const Texts found = itemsOf(*c);
        ASSERT_LE(found.size(), items.size()) << length;
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_TRUE(found[i] == items[i] || (i + 1 == found.size() && found[i] == "-"))
                << length;
        }
        const bool headed = c->valid();
        EXPECT_EQ(headed, length >= heading.size() - 3) << length;
        EXPECT_EQ(c->getName(), headed ? "caf\xc3\xa9" : "") << length;
        EXPECT_EQ(c->isPermanent(), headed) << length;
        EXPECT_EQ(reader(whole.substr(0, length), true)->valid(), headed) << length;
    }
}

// What docs/format-container.md warns of: some of it is silent, some costs the whole file.
TEST_F(ContainerFile, WhatAnItemOrANameLosesByItsText) {
    const Captured said;
    const std::string uuid = cookieText(1).substr(0, 33);
    const std::pair<std::size_t, Texts> cuts[] = {
        {4050, {uuid + "0f"}}, {4051, {"-"}}, {4053, {uuid + "ff"}}, {4092, {"-"}}, {4093, {}}};
    std::vector<DBFieldDesc> columns = descriptors({"tag", "Note", "Cookie"});
    for (const auto& [length, items] : cuts) {
        Writer writer{columns.data() + 1};
        writer.addItem(Cookie{(uuid + "0f").c_str(), true})
            ->set_field(0, std::string(length, 'n').c_str());
        writer.save(folder_.wide("c"));
        EXPECT_EQ(itemsOf(Reader{folder_.wide("c"), false}), items) << length;
    }
    for (const auto& [name, read] : {std::pair{"a\nb", "a"}, {"a\n\nb", ""}, {"a\nOLEDB", ""}}) {
        Writer writer{columns.data()};
        writer.setName(name);
        writer.addItem(cookieNo(1))->set_field(0, "mine");
        writer.save(folder_.wide("c"));
        const Reader c{folder_.wide("c"), false};
        EXPECT_EQ(c.getName(), read) << name;
        EXPECT_EQ(c.valid(), *read != '\0') << name;
        EXPECT_EQ(c.getItem(0).getAttrib(0), *read != '\0' ? "0" : "") << name;
    }
}

TEST_F(ContainerFile, WithoutACookieColumn) {
    const Captured said;
    std::vector<DBFieldDesc> columns = descriptors({"Note"});
    Writer writer{columns.data()};
    EXPECT_EQ(said.output,
              "assertion failed cookieFieldIdx_ >= 0 at ole/oledb/TarnContainerFile line 203\n");
    writer.setName("n");
    writer.addItem(cookieNo(1))->set_field(0, "kept");
    writer.save(folder_.wide("c"));
    EXPECT_TRUE(folder_.read("c").ends_with("\"Note\"\r\n\"kept\"\r\n"));
    const Reader c{folder_.wide("c"), false};
    EXPECT_FALSE(c.valid() || c.contains(Cookie{}));
    EXPECT_EQ(c.getNumItems(), 0U);
    EXPECT_EQ(c.getAttrib("Name") + c.getItem(0).getAttrib(0), "");
    EXPECT_EQ(c.getItemAttribIndex("Note"), -1);
    EXPECT_TRUE(c.getContents().empty());
}

TEST_F(ContainerFile, AttributesThatAreRefused) {
    std::vector<DBFieldDesc> columns = descriptors({"Cookie"});
    Writer writer{columns.data()};
    writer.setAttrib("OLEDB", "9");
    writer.setAttrib("", "x");
    writer.setName(LightweightString<char>{});
    writer.save(folder_.wide("c"));
    EXPECT_EQ(paramsOf(oledb(folder_.wide("c"), 0, true)), (Texts{"OLEDB=Rev 1", "Name="}));
}

TEST(ContainerFileName, SpellsACookie) {
    const std::string bare = cookieText(1).substr(1, 32);
    const auto cookie = [&](const std::string& path) {
        return textOf(TarnContainerFile::getCookieFromFilename(pathFromBytes(path)));
    };
    EXPECT_EQ(cookie("/a/" + bare + ".sg"), cookieText(1, 'M'));
    EXPECT_EQ(cookie(bare + ".RAK"), cookieText(1, 'B'));
    EXPECT_EQ(cookie("x.sg/" + cookieText(1, 'Z').substr(0, 33) + "00.msG"), cookieText(1, 'M'));
    EXPECT_EQ(cookie(cookieText(1, 'Z') + ".msgx"), cookieText(1, 'Z'));
    EXPECT_EQ(cookie(bare), cookieText(1, 'U'));
    EXPECT_EQ(cookie("bag.sg") + cookie("rak") + cookie(""), "---");
    EXPECT_EQ(textOf(Reader(pathFromBytes("no/" + bare + ".rak"), true).getCookie()),
              cookieText(1, 'U'));
}

// -- saving --

TEST_F(ContainerFile, ReplacesOnlyByAWholeFile) {
    save(1);
    const std::string before = folder_.read("c");
    EXPECT_TRUE(inChildWithFullDisk(5'000, [&] {
        save(9'000);
        return true;
    }));
    EXPECT_EQ(folder_.read("c"), before);
    EXPECT_EQ(folder_.names(), (Names{"c"}));
    save(0); // without items, saving looks like a failure to its caller
    EXPECT_EQ(itemsOf(Reader{folder_.wide("c"), false}), Texts{});
    EXPECT_EQ(folder_.names(), (Names{"c"}));
}

TEST_F(ContainerFile, LeftOverFilesAreRemovedOnlyBesideAContainer) {
    folder_.write("c.tmp", "the only copy");
    save(1);
    EXPECT_EQ(folder_.read("c.tmp"), "the only copy");
    const std::string before = folder_.read("c");
    EXPECT_TRUE(inChildWithFullDisk(5'000, [&] {
        save(9'000);
        return true;
    }));
    EXPECT_EQ(folder_.read("c"), before); // not the left-over
    EXPECT_EQ(folder_.names(), (Names{"c"}));
    folder_.write("c.tmp", "old");
    save(2);
    EXPECT_EQ(itemsOf(Reader{folder_.wide("c"), false}).size(), 2U);
    EXPECT_EQ(folder_.names(), (Names{"c"}));
}

// What stands at the place beside and cannot be removed is not taken for the new file.
TEST_F(ContainerFile, AFolderInTheWayLeavesTheOldFile) {
    save(1);
    std::filesystem::create_directory(folder_.path("c.tmp"));
    save(2);
    EXPECT_EQ(itemsOf(Reader{folder_.wide("c"), false}).size(), 1U);
}

TEST_F(ContainerFile, KeepsPermissionsAndReplacesOnlyFiles) {
    namespace fs = std::filesystem;
    save(1);
    fs::permissions(folder_.path("c"), fs::perms::owner_read | fs::perms::owner_write);
    save(2);
    EXPECT_EQ(fs::status(folder_.path("c")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write)
        << "what was private stays so";
    fs::remove(folder_.path("c"));
    fs::create_directory(folder_.path("c"));
    save(1);
    EXPECT_EQ(folder_.names(), (Names{"c"})) << "nothing beside a folder";
}

} // namespace
