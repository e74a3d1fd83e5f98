// The table's parameters and its error information. Parameters are set through `add_param`, which
// keeps the revision first; loading alone stores them as they come, repeated names included.

#include "ole/oledb/oledb.h"
#include "tarn/numbers.h"

#include <string_view>
#include <utility>

namespace {

constexpr const char* revisionParam = "OLEDB";

} // namespace

int oledb::find_param(const char* name) const {
    const std::string_view wanted = name ? std::string_view{name} : std::string_view{};
    for (std::size_t i = 0; i < params_.size(); ++i) {
        if (compareIgnoringCase(params_[i].name.view(), wanted) == 0) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

int oledb::add_param(const char* name, const char* value) {
    if (!name || !value || *name == '\0') {
        return -1;
    }
    const int found = find_param(name);
    if (found >= 0) {
        LightweightString<char>& held = params_[static_cast<std::size_t>(found)].value;
        if (!(held == value)) {
            held = LightweightString<char>{value};
            changed_ = 1;
        }
        return 0;
    }
    Param added{LightweightString<char>{name}, LightweightString<char>{value}};
    if (params_.empty()) {
        params_.push_back(
            {revisionParam, LightweightString<char>{"Rev "} + Tarn::decimal(currentRevision)});
    }
    if (added.name == revisionParam || params_.size() >= maxParams) {
        return -1;
    }
    params_.push_back(std::move(added));
    changed_ = 1;
    return 0;
}

int oledb::set_param_val(const char* name, const char* value) {
    return add_param(name, value);
}

const char* oledb::get_param_val(const char* name) const {
    const int found = find_param(name);
    return found < 0 ? nullptr : params_[static_cast<std::size_t>(found)].value.c_str();
}

const char* oledb::get_param_name(unsigned i) const noexcept {
    return i < params_.size() ? params_[i].name.c_str() : nullptr;
}

const char* oledb::get_param_value(unsigned i) const noexcept {
    return i < params_.size() ? params_[i].value.c_str() : nullptr;
}

void oledb::fill_error_info(int code, int where, int aux1, int aux2) {
    errorPresent_ = true;
    error_ = {code, where, aux1, aux2};
}

bool oledb::read_error_info(dberror& error) const {
    if (!errorPresent_) {
        return false;
    }
    error = error_;
    return true;
}
