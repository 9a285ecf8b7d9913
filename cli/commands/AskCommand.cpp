#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Format.h"
#include "cli/Json.h"
#include "core/library/EvidenceSearch.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace tovi::cli {
namespace {

struct AskArguments {
    std::vector<std::string> words;
    std::int64_t limit = 10;
};

void ask(const AskArguments& arguments, const Context& context) {
    const std::string question = fmt::format("{}", fmt::join(arguments.words, " "));
    const auto store = context.openIndexForReading();
    const auto citations = findEvidence(*store, question, arguments.limit, context.stop);
    if (context.json) {
        Json passages = Json::array();
        for (const EvidenceCitation& citation : citations) {
            passages.push_back({{"file", toJson(citation.file)}, {"excerpt", citation.excerpt}});
        }
        context.print({{"question", question}, {"citations", std::move(passages)}});
        return;
    }
    if (citations.empty()) fmt::print("No indexed text holds a word of the question.\n");
    for (const EvidenceCitation& citation : citations) {
        const auto words = splitWhitespace(citation.excerpt);
        fmt::print("{}  {}\n{}\n\n", bold(printable(citation.file.name)),
                   dim(printable(citation.file.path)),
                   printable(fmt::format("{}", fmt::join(words, " "))));
    }
}

} // namespace

void addAskCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("ask", "Answer a question with passages from your files, word for word");
    const auto arguments = std::make_shared<AskArguments>();
    command->add_option("question", arguments->words, "A question in plain words")->required();
    command->add_option("--limit", arguments->limit, "Passages at the most")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();
    command->callback([arguments, &context] { ask(*arguments, context); });
}

} // namespace tovi::cli
