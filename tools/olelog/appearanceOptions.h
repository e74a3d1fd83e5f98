#pragma once

namespace CLI {
class App;
}
struct Appearance;

/// Adds the options that every command takes to this one and those below it: how the tool appears.
/// They may stand before a command and behind it.
void addAppearanceOptions(CLI::App& command, Appearance& appearance);
