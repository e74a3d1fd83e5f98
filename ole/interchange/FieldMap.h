#pragma once

#include "ole/ole.h"
#include "ole/oledb/ODBView.h"
#include "tarn/LightweightString.h"

#include <array>
#include <cstdint>
#include <string_view>

class oledb;

/// Which fields of a view are shown or exported, and in which order: up to 256 field names, each
/// with a visible flag, and the source view whose fields they name.
///
/// Its text form is numbers from 1, a minus sign for hidden: `1 -2 5` (docs/format-fieldmap.md).
/// The owner of a map keeps that text in the table's parameter `parameterName`; the map reads the
/// parameter and never writes it. Entries are kept by name, so the text is only as good as the
/// names are unique.
///
/// The tests of indices **differ deliberately** from operation to operation: `set` and `getName`
/// take entries only, the setters and getters of flags and names all 256 slots. Slots behind the
/// last entry keep what they held when entries are taken away. Lookups by name ignore case and are
/// linear in the entries.
class OLE_API FieldMap {
public:
    /// The most entries that a map has.
    static constexpr int maxEntries = 256;
    /// The parameter of tables and views that holds a map's text.
    static constexpr const char* parameterName = "V5_FIELD_MAP";

    /// An empty map without a source view.
    FieldMap() = default;
    /// A copy of view and entries; what is behind the last entry is not taken over.
    FieldMap(const FieldMap& other);
    /// The map of a view, see `setSourceDb`.
    explicit FieldMap(const ODBView& view);
    /// The map of a new view on a table. That view shows no rows until it is filled.
    explicit FieldMap(oledb& table);
    /// Takes over view and entries; slots behind them stay as they are.
    FieldMap& operator=(const FieldMap& other);
    ~FieldMap() = default;

    /// No entries, all 256 flags clear. Names stay in their slots, and so does the view.
    void init();
    /// No entries. Names and flags stay in their slots, and so does the view.
    void clear() noexcept { count_ = 0; }
    /// Makes a view the source and appends what its parameter `parameterName` names: numbers from 1
    /// to 255 with one blank between them, negative ones hidden. Deliberately a number is read from
    /// three characters, sign included, so that -100 hides field 10; other characters end the text;
    /// numbers without a field are passed over. If the map is empty then, all fields are appended,
    /// visible. Entries that the map has before are kept, deliberately.
    void setSourceDb(const ODBView& view);

    /// The number of entries, visible or not.
    [[nodiscard]] int count() const noexcept { return count_; }
    /// The source view; an empty handle for none. Good while the map lives.
    [[nodiscard]] const ODBView& sourceDb() const noexcept { return source_; }
    /// The first entry with a name, ignoring case; -1 for none.
    [[nodiscard]] int getFieldIdx(const LightweightString<char>& name) const;
    /// Whether an entry has this name, ignoring case.
    [[nodiscard]] bool containsField(const LightweightString<char>& name) const;
    /// The flag of a name's entry; false for an unknown name.
    [[nodiscard]] bool isVisible(const LightweightString<char>& name) const;
    /// The flag of a slot, also of one behind the last entry; false beyond the 256.
    [[nodiscard]] bool isVisible(int slot) const;
    ///@{
    /// The name of an entry; a null string out of range.
    [[nodiscard]] LightweightString<char> getName(int i) const;
    [[nodiscard]] LightweightString<char> operator[](int i) const { return getName(i); }
    ///@}

    /// Appends an entry. Nothing happens for a name that the map has, and when it is full.
    void append(const LightweightString<char>& name, bool visible);
    /// Replaces an entry. Names may occur twice afterwards.
    void set(int i, const LightweightString<char>& name, bool visible);
    ///@{
    /// Set the flag or the name of a slot, also of one behind the last entry; nothing happens
    /// beyond the 256.
    void setVisible(int slot, bool visible);
    void invertVisible(int slot);
    void setName(int slot, const LightweightString<char>& name);
    ///@}
    /// Exchanges two slots, also behind the last entry; nothing happens beyond the 256.
    void swap(int a, int b);
    /// Takes out the first entry of a name; false when there is none.
    bool remove(const LightweightString<char>& name);

    /// The number of visible entries.
    [[nodiscard]] int numVisible() const;
    /// The field number, in the source view, of visible entry n from 0; -1 where there is no such
    /// entry, and where the view has no field of its name.
    [[nodiscard]] int getVisibleFieldIndex(int n) const;
    /// The text form. An entry whose name the view does not have is written as 0, which no reader
    /// takes for a field. Numbers of 256, and hidden ones from 100 on, are written and not read
    /// back.
    [[nodiscard]] LightweightString<char> asString() const;

private:
    [[nodiscard]] int fieldNumber(int i) const;
    void appendFromText(std::string_view text);
    void appendField(unsigned field, bool visible);

    std::array<LightweightString<char>, maxEntries> names_;
    std::array<std::uint8_t, maxEntries> visible_{};
    std::int32_t count_ = 0;
    ODBView source_;
};
