#include "cli/outline/Outline.h"

#include <algorithm>
#include <functional>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tovi::cli {
namespace {

using Options = std::vector<Outline::Option>;

/// Calls for the program and for every command with its path, such as "tovictl vault add", and with
/// the options that may follow: its own and those of the commands around it.
void forEachCommand(const Outline& program,
                    const std::function<void(const std::string& path, const Outline& command,
                                             const Options& options)>& call) {
    const std::function<void(const std::string&, const Outline&, const Options&)> descend =
        [&](const std::string& path, const Outline& command, const Options& around) {
            Options options = command.options;
            for (const Outline::Option& option : around) {
                const std::string& name = option.names.back();
                if (name != "--help" && name != "--version") options.push_back(option);
            }
            call(path, command, options);
            for (const Outline& each : command.commands)
                descend(path + " " + each.name, each, options);
        };
    descend(program.name, program, {});
}

/// `text` between single quotes of a shell.
std::string inQuotes(const std::string& text) {
    std::string result = "'";
    for (const char character : text) {
        if (character == '\'')
            result += "'\\''";
        else
            result += character;
    }
    return result + "'";
}

/// A text of a zsh description: colons part names from descriptions there.
std::string withoutColons(std::string text) {
    for (std::size_t at = 0; (at = text.find(':', at)) != std::string::npos; at += 2)
        text.insert(at, "\\");
    return text;
}

/// The path of every command, quoted.
std::vector<std::string> quotedPaths(const Outline& program) {
    std::vector<std::string> paths;
    forEachCommand(program, [&](const std::string& path, const Outline& command, const Options&) {
        if (&command != &program) paths.push_back(inQuotes(path));
    });
    return paths;
}

/// What bash and zsh share: `path` becomes that of the command that the words so far name, and then
/// does what `act` says for it.
std::string actionsByPath(
    const Outline& program, const std::string& words,
    const std::function<std::string(const Outline& command, const Options& options)>& act) {
    std::string cases;
    forEachCommand(
        program, [&](const std::string& path, const Outline& command, const Options& options) {
            cases += fmt::format("    {}) {} ;;\n", inQuotes(path), act(command, options));
        });
    return fmt::format("    local path={} word\n"
                       "    for word in {}; do\n"
                       "        case \"$path $word\" in\n"
                       "            {}) path=\"$path $word\" ;;\n"
                       "        esac\n"
                       "    done\n"
                       "    case $path in\n"
                       "{}"
                       "    esac\n",
                       program.name, words, fmt::join(quotedPaths(program), " | "), cases);
}

} // namespace

std::string bashCompletion(const Outline& program) {
    return fmt::format("_{0}() {{\n"
                       "    local words\n"
                       "{1}"
                       "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- "
                       "\"${{COMP_WORDS[COMP_CWORD]}}\")\n"
                       "}}\n"
                       "complete -o default -F _{0} {0}\n",
                       program.name,
                       actionsByPath(program, "\"${COMP_WORDS[@]:1:COMP_CWORD-1}\"",
                                     [](const Outline& command, const Options& options) {
                                         std::string words;
                                         for (const Outline& each : command.commands)
                                             words += each.name + " ";
                                         for (const Outline::Option& option : options)
                                             words +=
                                                 fmt::format("{} ", fmt::join(option.names, " "));
                                         return "words=" + inQuotes(words);
                                     }));
}

std::string zshCompletion(const Outline& program) {
    const auto described = [](const std::string& name, const std::string& description) {
        return "\n        " + inQuotes(name + ":" + withoutColons(description));
    };
    return fmt::format("#compdef {0}\n"
                       "_{0}() {{\n"
                       "    local -a commands options\n"
                       "{1}"
                       "    if [[ $PREFIX == -* ]]; then\n"
                       "        _describe option options\n"
                       "    elif (( $#commands )); then\n"
                       "        _describe command commands\n"
                       "    else\n"
                       "        _files\n"
                       "    fi\n"
                       "}}\n"
                       "_{0} \"$@\"\n",
                       program.name,
                       actionsByPath(program, "\"${(@)words[2,CURRENT-1]}\"",
                                     [&](const Outline& command, const Options& options) {
                                         std::string arrays = "commands=(";
                                         for (const Outline& each : command.commands)
                                             arrays += described(each.name, each.description);
                                         arrays += ") options=(";
                                         for (const Outline::Option& option : options) {
                                             for (const std::string& name : option.names)
                                                 arrays += described(name, option.description);
                                         }
                                         return arrays + ")";
                                     }));
}

std::string fishCompletion(const Outline& program) {
    std::string lines;
    forEachCommand(program, [&](const std::string& path, const Outline& command,
                                const Options& options) {
        const std::string start =
            fmt::format("complete -c {} -n {}", program.name,
                        inQuotes("test (__" + program.name + "_path) = " + inQuotes(path)));
        for (const Outline& each : command.commands)
            lines +=
                fmt::format("{} -f -a {} -d {}\n", start, each.name, inQuotes(each.description));
        for (const Outline::Option& option : options) {
            std::string names;
            for (const std::string& name : option.names)
                names += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
            lines += fmt::format("{}{}{} -d {}\n", start, names, option.takesValue ? " -r" : "",
                                 inQuotes(option.description));
        }
    });
    return fmt::format("function __{0}_path\n"
                       "    set -l path {0}\n"
                       "    for word in (commandline -opc)[2..-1]\n"
                       "        if contains -- \"$path $word\" {1}\n"
                       "            set path \"$path $word\"\n"
                       "        end\n"
                       "    end\n"
                       "    echo $path\n"
                       "end\n"
                       "{2}",
                       program.name, fmt::join(quotedPaths(program), " "), lines);
}

} // namespace tovi::cli
