#pragma once

#include <cstddef>
#include <string>
#include <string_view>

class oledb;

/// What stands where a command is to write a table. It is looked at before: what people put there
/// by hand (items of a container, tags, identifiers) goes only where that is asked for.
class ReplacedFile {
public:
    /// `-`, devices and pipes hold nothing.
    explicit ReplacedFile(std::string target);

    /// Whether a table would take the place of what should stay, unless --in-place is given; says
    /// so, with the other way that a person has where a table is there.
    [[nodiscard]] bool standsInTheWay(bool inPlace, std::string_view otherWay = {}) const;
    /// Whether the table that is there holds rows that are not among those of the new one, and
    /// would go; says so, with the other way that a person has. Never with --in-place.
    [[nodiscard]] bool losesRowsTo(oledb& replacement, bool inPlace,
                                   std::string_view otherWay = {}) const;
    [[nodiscard]] bool isContainer() const { return kind_ == Kind::Container; }
    [[nodiscard]] bool isTable() const { return kind_ == Kind::Table; }
    /// Says what was replaced, where it held anything.
    void tell() const;

private:
    enum class Kind { Nothing, Foreign, Table, Container };

    void look();
    [[nodiscard]] std::string whyKept() const;

    std::string target_;
    Kind kind_ = Kind::Nothing;
    std::size_t rows_ = 0; ///< of a table or container that can be read
    std::size_t tagged_ = 0;
    std::size_t identified_ = 0;
};
