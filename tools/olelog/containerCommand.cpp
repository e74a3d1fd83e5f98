// olelog container: its four subcommands on the command line. What they do stands in
// containerChanges.cpp and containerQuestions.cpp.

#include "Command.h"
#include "containerTasks.h"

#include <CLI/CLI.hpp>
#include <memory>

namespace {

/// Makes a subcommand of which `task` does the work. Every one names a container.
template <class Options>
CLI::App* addSubcommand(CLI::App& container, Task& task, const char* name, const char* description,
                        const std::shared_ptr<Options>& options, int (*work)(const Options&)) {
    CLI::App* const command = container.add_subcommand(name, description);
    command->add_option("CONTAINER", options->container, "A container file, or -")
        ->required()
        ->type_name("");
    command->callback(
        [options, work, &task] { task = [options, work] { return work(*options); }; });
    return command;
}

/// A selection without the table that it chooses from makes no sense.
void selectionNeeds(const CLI::App& command, const CLI::Option& from) {
    for (const CLI::Option* const option : command.get_options()) {
        if (option->get_group() == selectionGroup && option->count() > 0 && from.count() == 0) {
            throw CLI::RequiresError{option->get_name(), from.get_name()};
        }
    }
}

void addItemSource(CLI::App& command, ItemSource& items, const std::string& ofTable) {
    command
        .add_option(
            "COOKIE", items.cookies,
            "Items: kind letter, UUID and two hex digits of flags, with or without hyphens; "
            "without the letter of kind U, without flags all set")
        ->type_name("");
    CLI::Option* const from =
        command.add_option("--from", items.from, ofTable + ", all of them or a selection")
            ->type_name("TABLE");
    addRowOptions(command, items.selection);
    command.parse_complete_callback([&command, from] { selectionNeeds(command, *from); });
}

void addDryRun(CLI::App& command, bool& dryRun) {
    command.add_flag("--dry-run", dryRun, "Tell what would change, and change nothing");
}

void addCreate(CLI::App& container, Task& task) {
    const auto options = std::make_shared<ContainerCreation>();
    CLI::App* const command =
        addSubcommand(container, task, "create", "Make a container", options, createContainer);
    addItemSource(*command, options->items, "Put in the cookies of a table's rows");
    command->add_option("--name", options->name, "The collection's name")
        ->required()
        ->type_name("NAME");
    command->add_flag("--permanent", options->permanent, "Mark the collection as permanent");
    command->add_option("--attrib", options->attributes, "An attribute of the collection")
        ->allow_extra_args(false)
        ->type_name("KEY=VALUE");
    command->add_flag("--in-place", options->inPlace, "Allow it to replace a file");
    addDryRun(*command, options->dryRun);
    command->footer("Example:\n  olelog container create selects.sg --name Selects --permanent "
                    "--attrib Editor=Ines U-5f0c41d2-8a3e-4b57-9d26-1c7e90ab34f8-ff\n"
                    "  olelog import day-12.ale -o day-12.odb --identify\n"
                    "  olelog container create prints.sg --name Prints --from day-12.odb "
                    "--where Notes=print");
}

void addAdd(CLI::App& container, Task& task) {
    const auto options = std::make_shared<ContainerChange>();
    CLI::App* const command = addSubcommand(
        container, task, "add", "Add items to a container, given one by one or chosen from a table",
        options, addToContainer);
    addItemSource(*command, options->items, "Put in the cookies of a table's rows");
    addDryRun(*command, options->dryRun);
    command->footer("Example:\n  olelog import day-12.ale -o day-12.odb --identify\n"
                    "  olelog container add selects.sg --from day-12.odb --where Scene=31A");
}

void addRemove(CLI::App& container, Task& task) {
    const auto options = std::make_shared<ContainerChange>();
    CLI::App* const command = addSubcommand(
        container, task, "remove", "Remove items from a container", options, removeFromContainer);
    addItemSource(*command, options->items, "Remove the items of a table's rows");
    command->add_flag("--all", options->all, "Remove the items of all rows of the table");
    addDryRun(*command, options->dryRun);
    command->footer(
        "Example:\n"
        "  olelog container add selects.sg U-5f0c41d2-8a3e-4b57-9d26-1c7e90ab34f8-ff\n"
        "  olelog container remove selects.sg U-5f0c41d2-8a3e-4b57-9d26-1c7e90ab34f8-ff");
}

void addQuestions(CLI::App& container, Task& task) {
    const auto list = std::make_shared<ContainerQuestion>();
    CLI::App* const listing = addSubcommand(
        container, task, "list", "Print the items with their attributes", list, listContainer);
    CLI::Option* const with = listing
                                  ->add_option("--with", list->with.table,
                                               "Show beside each item what this table tells of it")
                                  ->type_name("TABLE");
    listing
        ->add_option("--fields", list->with.fields,
                     "These fields of the table; otherwise Name, Scene and Shot")
        ->needs(with)
        ->type_name("A,B");
    listing->add_flag("--json", list->json, "Print an array of objects");
    listing->footer("Example:\n  olelog container list selects.sg --with day-12.odb");
    const auto info = std::make_shared<ContainerQuestion>();
    CLI::App* const telling = addSubcommand(
        container, task, "info", "Tell a container's name and attributes", info, tellOfContainer);
    telling->add_flag("--json", info->json, "Print one JSON object");
    telling->footer("Example:\n  olelog container info selects.sg --json");
}

} // namespace

void addContainerCommand(CLI::App& app, Task& task) {
    CLI::App* const container = app.add_subcommand(
        "container", "Make container files, collections of items, and tell what is in them");
    container->require_subcommand(1);
    addCreate(*container, task);
    addAdd(*container, task);
    addRemove(*container, task);
    addQuestions(*container, task);
    container->footer("Example:\n  olelog container list selects.sg");
}
