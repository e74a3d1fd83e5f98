#pragma once

#include "ole/ole.h"
#include "ole/oledb/DBFieldTypes.h"
#include "ole/oledb/ODBView.h"
#include "tarn/LightweightString.h"

#include <array>
#include <cstdint>
#include <utility>

class oledb;

/// A view presented as a narrower table: a list of its fields, in an order of its own, the slots.
/// Shares the view with its other handles. Derived classes may present other values and headers;
/// there is no virtual destructor: delete them as what they are.
class OLE_API ODBFieldView { // NOLINT(cppcoreguidelines-virtual-class-destructor)
public:
    /// The most slots that a field view has.
    static constexpr int maxFields = 256;

    /// Presents fields by number, from a list that a negative number ends. A list of more than 256
    /// presents none; of such a list no more than 257 numbers are read. Null presents none.
    ODBFieldView(ODBView view, const int* fields);
    /// Presents fields by name, from a list that a null pointer ends, with the same limit. An
    /// unknown name makes a slot without a field. **The view is deliberately filled again first**
    /// (`displayAllRecords`), for all who share it: order, selection and tags are gone.
    ODBFieldView(ODBView view, const char* const* names);

    /// The text of a slot in a row of the view, good as long as that of `ODBViewRep::get_field`;
    /// null for no such row or slot, and for a slot without a field.
    [[nodiscard]] virtual const char* get_modified_field(int record, int slot);
    /// Name and type of a slot, the caller's to delete; an empty name and type `NONE` for no such
    /// slot and for one without a field.
    [[nodiscard]] virtual DBFieldDesc* get_modified_field_header(int slot);

    /// Saves the rows of the view, or with `onlyTagged` those that the view has tagged, as a table
    /// file of the slots, replacing `fileName()`. Returns what `oledb::save_text` does, the number
    /// of rows; 0, writing nothing, where there is no row or no valid view. Deliberately the table
    /// ends before the first slot without a field. A column "Tag" holds the new table's tags, all
    /// "0", and values lose their leading white space. Linear in the rows.
    int exportNewOleDb(bool onlyTagged);

    ///@{
    /// The path of the exported table; empty at first, which no export can write to.
    void setFileName(LightweightString<wchar_t> path) { fileName_ = std::move(path); }
    [[nodiscard]] const LightweightString<wchar_t>& fileName() const noexcept { return fileName_; }
    ///@}
    /// The number of slots.
    [[nodiscard]] int count() const noexcept { return count_; }

private:
    [[nodiscard]] int fieldOf(int slot) const noexcept;
    bool addSlot(int field);
    int addRows(oledb& table, bool onlyTagged);

    ODBView view_;
    std::array<std::int32_t, maxFields> fields_{};
    std::int32_t count_ = 0;
    LightweightString<wchar_t> fileName_;
};

/// A new table, the caller's, with the columns and parameters of the view's table and copies of the
/// records that the view shows, in its order; an empty record where a position shows none. Without
/// file name; tags are clear, and values lose their leading white space. Null where the view has no
/// table. Linear in the rows.
[[nodiscard]] OLE_API oledb* Convert_ODBView_to_oledb(ODBView view);
