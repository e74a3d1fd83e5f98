// olelog container create: a new container, with its attributes and first items.

#include "checkedSave.h"
#include "Command.h"
#include "ContainerTable.h"
#include "containerTasks.h"
#include "messages.h"
#include "misc/BoolString.h"
#include "ole/oledb/TarnContainerFile.h"
#include "SaveTarget.h"
#include "shownText.h"
#include "tarn/StringFunctions.h"
#include "WantedItems.h"

#include <filesystem>
#include <fmt/format.h>
#include <memory>

namespace {

/// Why this cannot be an attribute of a new container; "" where it can.
std::string whyNoAttribute(const std::string& key, bool hasValue, const oledb& table) {
    const auto is = [&key](const char* name) { return compareIgnoringCase(key, name) == 0; };
    if (key.empty() || !hasValue) {
        return "should be KEY=VALUE";
    }
    if (is(TarnContainerFile::getNameParamKey()) || is(TarnContainerFile::getPermanentParamKey())) {
        return "the name and whether it is permanent have options of their own";
    }
    if (is("OLEDB")) {
        return "this key is the file format's own";
    }
    if (key.find(':') != std::string::npos) {
        return "a key cannot hold a colon";
    }
    return table.get_param_val(key.c_str()) ? "this key is given twice" : "";
}

bool setAttributes(oledb& table, const std::vector<std::string>& attributes) {
    for (const std::string& text : attributes) {
        const std::size_t sign = text.find('=');
        const std::string key = text.substr(0, sign);
        const bool hasValue = sign != std::string::npos;
        std::string why = whyNoAttribute(key, hasValue, table);
        if (why.empty() && table.add_param(key.c_str(), text.substr(sign + 1).c_str()) != 0) {
            why =
                fmt::format("a container has no room for more than {}", table.get_num_params() - 3);
        }
        if (!why.empty()) {
            say("--attrib {}: {}", inQuotes(text), why);
            return false;
        }
    }
    return true;
}

std::unique_ptr<oledb> makeTable(const ContainerCreation& wanted) {
    const DBFieldDesc columns[] = {{"Cookie", DBFieldTypes::TEXT}, {}};
    auto table = std::make_unique<oledb>(columns);
    table->add_param(TarnContainerFile::getNameParamKey(), wanted.name.c_str());
    table->add_param(TarnContainerFile::getPermanentParamKey(),
                     BoolAsString(wanted.permanent).c_str());
    return setAttributes(*table, wanted.attributes) ? std::move(table) : nullptr;
}

/// Whether something stands where the container is to be made, or may be its only copy.
bool isInTheWay(const std::string& container) {
    std::error_code failed;
    if (std::filesystem::is_regular_file(container, failed) &&
        std::filesystem::file_size(container, failed) != 0) {
        say("{} exists; \"olelog container add\" adds items to it, --in-place allows to replace it",
            container);
        return true;
    }
    if (hasLeftOver(container) && !std::filesystem::exists(container, failed)) {
        tellLeftOver(container);
        say("{}: not made; --in-place allows that", container);
        return true;
    }
    return false;
}

} // namespace

int createContainer(const ContainerCreation& wanted) {
    const SaveTarget place{wanted.container};
    const std::unique_ptr<oledb> table = makeTable(wanted);
    WantedItems items;
    if (!table || !items.takeArguments(wanted.items.cookies) ||
        (!wanted.inPlace && isInTheWay(wanted.container))) {
        return exitUsage;
    }
    if (const auto failed = items.takeTable(wanted.items)) {
        say("{}: not made", shownName(wanted.container));
        return *failed;
    }
    for (const Cookie& cookie : items.cookies()) {
        appendItem(*table, 0, cookie);
    }
    items.tellRepeated();
    const std::string what = fmt::format("container {} with {}", inQuotes(wanted.name),
                                         counted(items.cookies().size(), "item"));
    if (wanted.dryRun && !canBeSaved(wanted.container)) {
        return exitFailure;
    }
    if (wanted.dryRun) {
        say("{}: would be made: {}{}", shownName(wanted.container), what,
            items.behindColon({items.cookies().begin(), items.cookies().end()}));
        return items.exitCode();
    }
    const int saved = saveChecked(*table, place, {});
    const int code = saved == exitFine ? items.exitCode() : saved;
    if (code != exitFailure) {
        note("{}: {}", shownName(wanted.container), what);
    }
    return code;
}
