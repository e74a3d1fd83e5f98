// The numbers of message-type names, given out from 1 on.
//
// Static initialisers intern names and static destructors may still ask for them, so the dictionary
// is made at first use and never destroyed. Nothing is taken out of it: a name's text and number
// stay good.

#include "tarn/NotifyMsgTypeDictionary.h"

#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace {

struct Dictionary {
    std::mutex mutex;
    std::deque<std::string> names; // of number i + 1
    std::map<std::string_view, int> numbers;
};

Dictionary& dictionary() {
    static Dictionary& theOne = *new Dictionary;
    return theOne;
}

int add(Dictionary& known, std::string_view name) {
    const std::string& kept = known.names.emplace_back(name);
    const int number = static_cast<int>(known.names.size());
    known.numbers.emplace(kept, number);
    return number;
}

} // namespace

int NotifyMsgTypeDictionary::intern(const char* name) {
    const std::string_view text{name ? name : ""};
    Dictionary& known = dictionary();
    const std::lock_guard lock{known.mutex};
    const auto found = known.numbers.find(text);
    return found != known.numbers.end() ? found->second : add(known, text);
}

const char* NotifyMsgTypeDictionary::name(int type) {
    Dictionary& known = dictionary();
    const std::lock_guard lock{known.mutex};
    const auto at = static_cast<std::size_t>(type) - 1;
    return type > 0 && at < known.names.size() ? known.names[at].c_str() : "";
}
