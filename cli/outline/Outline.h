#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace tovi::cli {

/// A command and what may stand behind it, as its definition says. What the help hides is left out.
struct Outline {
    struct Option {
        std::vector<std::string> names; // with their hyphens
        std::string description;
        bool takesValue = false;
    };
    struct Argument {
        std::string name;
        std::string description;
        bool isRequired = false;
        bool isRepeated = false;
    };

    std::string name;
    std::string description;
    std::vector<Option> options;
    std::vector<Argument> arguments;
    std::vector<Outline> commands;
};

Outline outlineOf(const CLI::App& app);

/// Scripts that complete commands, options and files in a shell.
std::string bashCompletion(const Outline& program);
std::string zshCompletion(const Outline& program);
std::string fishCompletion(const Outline& program);

/// The manual in the man(7) format. `footer` is what the help ends with.
std::string manualPage(const Outline& program, const std::string& version,
                       const std::string& footer);

} // namespace tovi::cli
