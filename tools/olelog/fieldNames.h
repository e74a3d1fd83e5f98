#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class oledb;

/// The column of a field name, ignoring case. Says which option named an unknown one, and which
/// field may have been meant, and gives nothing.
std::optional<unsigned> columnOf(oledb& table, std::string_view option, const std::string& name);

/// The columns of a list of field names, under the same terms.
std::optional<std::vector<unsigned>> columnsOf(oledb& table, std::string_view option,
                                               const std::string& list);

/// The names of a list with commas between them. A comma that belongs to a field's name does not
/// part it.
std::vector<std::string> namesOfList(const oledb& table, const std::string& list);
