#include "Tables.h"

#include "tarn/StringFunctions.h"

#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

namespace bench {

namespace {

/// Keeps what was made last.
template <class Thing>
class Shared {
public:
    template <class Make>
    Thing& get(unsigned rows, Identifier identifier, Make make) {
        const auto key = std::pair{rows, identifier};
        if (key_ != key) {
            thing_.reset();
            thing_ = make();
            key_ = key;
        }
        return *thing_;
    }

private:
    std::optional<std::pair<unsigned, Identifier>> key_;
    std::unique_ptr<Thing> thing_;
};

} // namespace

LightweightString<wchar_t> pathOf(const std::string& path) {
    return pathFromBytes(path);
}

std::unique_ptr<oledb> freshTable(unsigned rows, Identifier identifier) {
    const std::string path = workloadFile(Form::Table, rows, identifier);
    auto table = std::make_unique<oledb>(pathOf(path), std::numeric_limits<int>::max(), true);
    if (table->get_num_records() != rows) {
        throw std::runtime_error{"cannot load " + path};
    }
    return table;
}

oledb& sharedTable(unsigned rows, Identifier identifier) {
    static Shared<oledb> shared;
    return shared.get(rows, identifier, [=] { return freshTable(rows, identifier); });
}

Sqlite& sharedDatabase(unsigned rows, Identifier identifier) {
    static Shared<Sqlite> shared;
    return shared.get(rows, identifier, [=] {
        const std::string path = workloadFile(Form::Csv, rows, identifier);
        return std::make_unique<Sqlite>(Sqlite::withCsv(path));
    });
}

} // namespace bench
