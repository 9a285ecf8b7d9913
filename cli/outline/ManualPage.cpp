#include "cli/outline/Outline.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tovi::cli {
namespace {

/// A text of the man(7) format, where hyphens, backslashes, and dots and apostrophes at the start
/// of a line mean something else.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character == '\\')
            result += "\\e";
        else if (character == '-')
            result += "\\-";
        else if ((character == '.' || character == '\'') &&
                 (result.empty() || result.back() == '\n'))
            result += std::string("\\&") + character;
        else
            result += character;
    }
    return result;
}

std::string options(const std::vector<Outline::Option>& options) {
    std::string lines;
    for (const Outline::Option& option : options) {
        lines += fmt::format(
            ".TP\n\\fB{}\\fR{}\n{}\n", escaped(fmt::format("{}", fmt::join(option.names, ", "))),
            option.takesValue ? " \\fIvalue\\fR" : "", escaped(option.description));
    }
    return lines;
}

std::string commands(const std::string& path, const Outline& outline) {
    std::string lines;
    for (const Outline& command : outline.commands) {
        std::string synopsis = path + command.name;
        std::string help;
        for (const Outline::Argument& argument : command.arguments) {
            const std::string name = argument.name + (argument.isRepeated ? "\u2026" : "");
            synopsis += argument.isRequired ? " " + name : " [" + name + "]";
            if (!argument.description.empty()) {
                help += fmt::format(".TP\n\\fI{}\\fR\n{}\n", escaped(argument.name),
                                    escaped(argument.description));
            }
        }
        std::vector<Outline::Option> own;
        for (const Outline::Option& option : command.options) {
            if (option.names.back() != "--help") own.push_back(option);
        }
        if (command.commands.empty() || !own.empty())
            lines += fmt::format(".SS {}\n{}.\n{}{}", escaped(synopsis),
                                 escaped(command.description), help, options(own));
        lines += commands(path + command.name + " ", command);
    }
    return lines;
}

} // namespace

std::string manualPage(const Outline& program, const std::string& version,
                       const std::string& footer) {
    return fmt::format(R"(.TH {0} 1 "" "Tovi {1}" "Tovi"
.SH NAME
{0} \- private file companion, in the terminal
.SH SYNOPSIS
.B {0}
[\fIoptions\fR] \fIcommand\fR [\fIarguments\fR]
.SH DESCRIPTION
{2}
Nothing leaves the machine: no process of the program can open an internet socket. Nothing is
deleted and nothing is overwritten: every change is shown for review before it is made, written down
before it happens, and can be undone.
.PP
Colours and progress appear only on a terminal; errors go to standard error.
.SH OPTIONS
{3}.SH COMMANDS
{4}.SH EXIT STATUS
.nf
{5}
.fi
.SH FILES
.TP
.I $XDG_DATA_HOME/Ardeno
The index, the settings, the receipts and the vault, readable by their owner alone.
.SH SEE ALSO
.BR tovi (1),
.BR tovi\-decoder (1)
)",
                       program.name, version, escaped(program.description),
                       options(program.options), commands("", program),
                       escaped(footer.substr(footer.find('\n') + 1)));
}

} // namespace tovi::cli
