#include "cli/Confirmation.h"

#include "base/Text.h"
#include "cli/Format.h"

#include <iostream>

#include <fmt/format.h>
#include <unistd.h>

namespace tovi::cli {
namespace {

bool isConfirmedOnTerminal() {
    fmt::print("Type yes to do this: ");
    std::fflush(stdout);
    std::string answer;
    std::getline(std::cin, answer);
    return trimmed(answer) == "yes";
}

} // namespace

void addConfirmation(CLI::App& command, std::string& code) {
    command.add_option("--confirm", code, "The review code that this command printed before")
        ->type_name("CODE");
}

void reviewAndExecute(const Review& review, const std::string& confirmation, Context& context) {
    if (confirmation == review.code) {
        review.execute();
        return;
    }
    if (confirmation.empty() && !context.json && isTerminal(STDIN_FILENO) &&
        isTerminal(STDOUT_FILENO)) {
        review.print();
        if (isConfirmedOnTerminal()) {
            review.execute();
        } else {
            fmt::print("Nothing was changed.\n");
        }
        return;
    }
    if (!confirmation.empty()) {
        fmt::print(stderr, "This review code belongs to another plan. Review the plan again.\n");
    }
    if (context.json) {
        context.print({{"plan", review.plan}, {"reviewCode", review.code}});
    } else {
        review.print();
        fmt::print("Nothing was changed. To do this, repeat the command with: --confirm {}\n",
                   review.code);
    }
    context.exitCode = ExitCode::needsAttention;
}

} // namespace tovi::cli
