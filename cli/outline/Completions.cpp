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
                if (option.names.back() != "--help") options.push_back(option);
            }
            call(path, command, options);
            for (const Outline& each : command.commands)
                descend(path + " " + each.name, each, options);
        };
    descend(program.name, program, {});
}

/// `text` between single quotes of a shell.
std::string quoted(const std::string& text) {
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
        if (&command != &program) paths.push_back(quoted(path));
    });
    return paths;
}

/// What bash and zsh share: how the words so far name a command.
std::string pathCases(const Outline& program) {
    return fmt::format("        case \"$path $word\" in\n"
                       "            {}) path=\"$path $word\" ;;\n"
                       "        esac\n",
                       fmt::join(quotedPaths(program), " | "));
}

} // namespace

std::string bashCompletion(const Outline& program) {
    std::string cases;
    forEachCommand(program,
                   [&](const std::string& path, const Outline& command, const Options& options) {
                       std::vector<std::string> words;
                       for (const Outline& each : command.commands)
                           words.push_back(each.name);
                       for (const Outline::Option& option : options)
                           words.insert(words.end(), option.names.begin(), option.names.end());
                       cases += fmt::format("        {}) words={} ;;\n", quoted(path),
                                            quoted(fmt::format("{}", fmt::join(words, " "))));
                   });
    return fmt::format("_{0}() {{\n"
                       "    local path={0} word words\n"
                       "    for word in \"${{COMP_WORDS[@]:1:COMP_CWORD-1}}\"; do\n"
                       "{1}"
                       "    done\n"
                       "    case $path in\n"
                       "{2}"
                       "    esac\n"
                       "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- "
                       "\"${{COMP_WORDS[COMP_CWORD]}}\")\n"
                       "}}\n"
                       "complete -o default -F _{0} {0}\n",
                       program.name, pathCases(program), cases);
}

std::string zshCompletion(const Outline& program) {
    std::string cases;
    forEachCommand(program, [&](const std::string& path, const Outline& command,
                                const Options& options) {
        cases += fmt::format("        {})\n", quoted(path));
        cases += "            commands=(";
        for (const Outline& each : command.commands)
            cases += "\n                " +
                     quoted(withoutColons(each.name) + ":" + withoutColons(each.description));
        cases += ")\n            options=(";
        for (const Outline::Option& option : options) {
            for (const std::string& name : option.names)
                cases +=
                    "\n                " + quoted(name + ":" + withoutColons(option.description));
        }
        cases += ") ;;\n";
    });
    return fmt::format("#compdef {0}\n"
                       "local path={0} word\n"
                       "local -a commands options\n"
                       "for word in \"${{(@)words[2,CURRENT-1]}}\"; do\n"
                       "{1}"
                       "done\n"
                       "case $path in\n"
                       "{2}"
                       "esac\n"
                       "if [[ $PREFIX == -* ]]; then\n"
                       "    _describe option options\n"
                       "elif (( $#commands )); then\n"
                       "    _describe command commands\n"
                       "else\n"
                       "    _files\n"
                       "fi\n",
                       program.name, pathCases(program), cases);
}

std::string fishCompletion(const Outline& program) {
    std::string lines;
    forEachCommand(program, [&](const std::string& path, const Outline& command,
                                const Options& options) {
        const std::string start =
            fmt::format("complete -c {} -n {}", program.name,
                        quoted("test (__" + program.name + "_path) = " + quoted(path)));
        for (const Outline& each : command.commands)
            lines += fmt::format("{} -f -a {} -d {}\n", start, each.name, quoted(each.description));
        for (const Outline::Option& option : options) {
            std::string names;
            for (const std::string& name : option.names)
                names += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
            lines += fmt::format("{}{}{} -d {}\n", start, names, option.takesValue ? " -r" : "",
                                 quoted(option.description));
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
