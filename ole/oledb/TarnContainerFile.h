#pragma once

#include "ole/ole.h"
#include "ole/oledb/oledb.h"
#include "tarn/Cookie.h"
#include "tarn/CookieSet.h"
#include "tarn/LightweightString.h"

class dbrecord;

/// Container files: a named collection of items, each known by its cookie, with attributes of the
/// collection and of each item (docs/format-container.md).
///
/// The file is a table file. The collection's attributes are the table's parameters, the items its
/// rows, and the column "Cookie" (in any case) holds the item's cookie; the other columns are
/// attributes of items. Nothing here sends a notice.
class OLE_API TarnContainerFile {
public:
    class Reader;
    class Writer;

    /// The parameter that holds the collection's name: "Name". Good for ever.
    [[nodiscard]] static const char* getNameParamKey() noexcept;
    /// The parameter that tells whether the collection is permanent: "Permanent". Good for ever.
    [[nodiscard]] static const char* getPermanentParamKey() noexcept;
    /// The cookie that a container file's name spells, without folders and ending; the invalid
    /// cookie where it spells none. A path that ends in "sg" names a group and one that ends in
    /// "rak" a rack, in any case and, deliberately, with or without a dot before: the cookie then
    /// gets that kind and all flags.
    [[nodiscard]] static Cookie getCookieFromFilename(const LightweightString<wchar_t>& path);
};

/// A container file in memory, for questions about it. One that is no container answers with
/// nothing: empty texts, no items, the defaults given.
class OLE_API TarnContainerFile::Reader {
public:
    /// An item of the collection: its cookie and the attributes in its row. A default item, with
    /// the invalid cookie and without attributes, stands for none.
    class OLE_API Item {
    public:
        /// The default item.
        Item() noexcept = default;
        /// The row is not owned: the item must not be asked for attributes after its reader is
        /// gone.
        Item(const dbrecord* row, const Cookie& cookie) noexcept : row_{row}, cookie_{cookie} {}

        /// What identifies the item; the invalid cookie for none.
        [[nodiscard]] const Cookie& getCookie() const noexcept { return cookie_; }
        /// The text of a column (`getItemAttribIndex`); "" where the row has no such value, so also
        /// for a column of -1.
        [[nodiscard]] LightweightString<char> getAttrib(unsigned col) const;
        ///@{
        /// The number that the text begins with; `def` where the row has no such value.
        /// Deliberately, a value that is there but empty gives 0, other than in the reader.
        [[nodiscard]] int getAttrib(unsigned col, int def) const;
        [[nodiscard]] double getAttrib(unsigned col, double def) const;
        ///@}

    private:
        [[nodiscard]] bool has(unsigned col) const noexcept;

        const dbrecord* row_ = nullptr;
        Cookie cookie_;
    };

    /// Loads a file, or with `headerOnly` just its attributes and columns, no items. Linear in what
    /// is read of it.
    Reader(LightweightString<wchar_t> file, bool headerOnly);

    /// Whether the file loaded as a table and has a column "Cookie". A file that breaks off within
    /// its rows is valid, with the items before; the cut one may be there too, its last column cut.
    [[nodiscard]] bool valid() const;
    /// The container's own cookie, as its file name without folders and ending spells it. Other
    /// than `getCookieFromFilename`, its kind does not depend on the ending.
    [[nodiscard]] const Cookie& getCookie() const noexcept { return cookie_; }

    /// The value of an attribute of the collection, keys without regard to case; "" for none.
    [[nodiscard]] LightweightString<char> getAttrib(LightweightString<char> key) const;
    ///@{
    /// The number that the value begins with, 0 for another text; `def` where it is empty or there
    /// is none.
    [[nodiscard]] int getAttrib(LightweightString<char> key, int def) const;
    [[nodiscard]] double getAttrib(LightweightString<char> key, double def) const;
    ///@}
    ///@{
    /// The collection's name, as UTF-8 and wide.
    [[nodiscard]] LightweightString<char> getName() const;
    [[nodiscard]] LightweightString<wchar_t> getNameW() const;
    ///@}
    /// True only where "Permanent" reads as true (`BoolFromString`).
    [[nodiscard]] bool isPermanent() const;

    /// The number of items; 0 where only the header was read.
    [[nodiscard]] unsigned getNumItems() const;
    /// Item i, in the order of the file; a default item beyond the last. A cookie's text must begin
    /// with the kind's letter: without one, and where it cannot be read, the item's cookie is the
    /// invalid one.
    [[nodiscard]] Item getItem(unsigned i) const;
    /// The column of an item attribute, without regard to case; -1 for none.
    [[nodiscard]] int getItemAttribIndex(const char* name) const;
    /// Whether an item has this cookie. Deliberately more lenient than `getItem`: a text without
    /// kind letter is read as of kind 'U'. An item whose text cannot be read counts as having the
    /// invalid cookie. Linear in the items.
    [[nodiscard]] bool contains(const Cookie& cookie) const;
    /// The cookies of all items, each once, in the order of the file. Linear in the items.
    [[nodiscard]] CookieSet getContents() const;

private:
    oledb table_;
    Cookie cookie_;
};

/// Builds a container file and saves it.
class OLE_API TarnContainerFile::Writer {
public:
    /// A container without items. The columns are a list that ends at type `NONE`, at most 256, one
    /// of them named "Cookie"; without one a failed check is reported on standard output, the items
    /// have no cookies, and no reader takes the file.
    explicit Writer(DBFieldDesc* columns);

    /// Appends an item and returns its row, for its attributes to be filled in; the row belongs to
    /// the writer and is good as long as that. Null, adding nothing, for the invalid cookie (kind
    /// 'I'). Cookies that are there already are added again. Amortised constant.
    dbrecord* addItem(const Cookie& cookie);
    ///@{
    /// Set the name (UTF-8), an attribute, permanence. A later value replaces an earlier one.
    /// Nothing happens for an empty key, for the key "OLEDB" before any other attribute was set
    /// (later it replaces the revision), and beyond 40 attributes with that one. Null texts count
    /// as "".
    void setName(LightweightString<char> name);
    void setAttrib(LightweightString<char> key, LightweightString<char> value);
    void setPermanent(bool permanent);
    ///@}
    /// Saves the container. A file that exists is replaced only by a complete new one, which is
    /// written to path.tmp first: where that fails, the old file stays as it was and nothing is
    /// left beside it. Another file at path.tmp is removed before, though only when there is a file
    /// at `path`: without one it may hold what an interrupted save left, and it stays. The new file
    /// has the old one's permissions, and takes the place of a symbolic link. Devices and pipes are
    /// written directly. An attribute of items named "Tag" (in any case) is first overwritten with
    /// "0" in every item, as saving any table does. What the format changes or loses stands in
    /// docs/format-container.md; a line feed in the name or an attribute can make the whole file
    /// unreadable. There is no result; to make sure, read the file. Linear in the items.
    void save(const LightweightString<wchar_t>& path);

private:
    oledb table_;
    int cookieFieldIdx_;
};
