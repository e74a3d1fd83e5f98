#pragma once

#include "itemFields.h"
#include "selection.h"

#include <string>
#include <vector>

// What a person asked of a container. Each task returns the tool's exit code.

/// Items by their cookies, and those of the chosen rows of a table.
struct ItemSource {
    std::vector<std::string> cookies;
    std::string from; ///< a table; "" for none
    SelectionOptions selection;
};

struct ContainerCreation {
    std::string container;
    std::string name;
    bool permanent = false;
    std::vector<std::string> attributes; ///< KEY=VALUE each
    ItemSource items;
    bool inPlace = false;
    bool dryRun = false;
};

/// Items that are to go in, or out.
struct ContainerChange {
    std::string container;
    ItemSource items;
    bool all = false; ///< all rows of a table are meant, where none are chosen
    bool dryRun = false;
};

struct ContainerQuestion {
    std::string container;
    ItemRows with; ///< for a list
    bool json = false;
};

int createContainer(const ContainerCreation& wanted);
int addToContainer(const ContainerChange& asked);
int removeFromContainer(const ContainerChange& asked);
int listContainer(const ContainerQuestion& question);
int tellOfContainer(const ContainerQuestion& question);
