// The type words of table files.

#include "ole/oledb/DBFieldTypes.h"

#include "tarn/StringFunctions.h"

#include <array>
#include <string_view>

namespace {

struct TypeWord {
    std::string_view word;
    DBFieldTypes::eType type;
};

constexpr std::array<TypeWord, 11> typeWords{{
    {"timecode", DBFieldTypes::TIMECODE},
    {"timecode_s", DBFieldTypes::TIMECODE_S},
    {"text", DBFieldTypes::TEXT},
    {"text_s", DBFieldTypes::TEXT_S},
    {"time_of_day", DBFieldTypes::TIME_OF_DAY},
    {"date", DBFieldTypes::DATE},
    {"dos_date", DBFieldTypes::DOS_DATE},
    {"char", DBFieldTypes::CHAR},
    {"numeric", DBFieldTypes::NUMERIC},
    {"long", DBFieldTypes::LONG},
    {"double", DBFieldTypes::DOUBLE},
}};

} // namespace

DBFieldTypes::eType oledb_string_to_fieldtype(const char* word) {
    const std::string_view text = word ? std::string_view{word} : std::string_view{};
    for (const TypeWord& known : typeWords) {
        if (compareIgnoringCase(text, known.word) == 0) {
            return known.type;
        }
    }
    return text.size() == 1 ? static_cast<DBFieldTypes::eType>(static_cast<signed char>(text[0]))
                            : DBFieldTypes::NONE;
}

LightweightString<char> oledb_fieldtype_to_string(DBFieldTypes::eType type) {
    for (const TypeWord& known : typeWords) {
        if (known.type == type && type != DBFieldTypes::CHAR) {
            return LightweightString<char>{known.word};
        }
    }
    const char code = static_cast<char>(type);
    return LightweightString<char>{std::string_view{&code, 1}};
}
