#pragma once

#include "cli/Context.h"

#include <functional>
#include <string>

namespace tovi::cli {

/// A plan as the user is asked to confirm it.
struct Review {
    std::string code;            // of this very plan
    Json plan;                   // for programs
    std::function<void()> print; // for people, whole
    std::function<void()> execute;
};

/// Adds `--confirm CODE`.
void addConfirmation(CLI::App& command, std::string& code);

/// Shows the whole plan and executes it once it is confirmed: on a terminal by typing yes, else by
/// the plan's own review code in `confirmation`, which is empty if none was given. Without either
/// nothing changes and the exit code says that a review is needed.
void reviewAndExecute(const Review& review, const std::string& confirmation, Context& context);

} // namespace tovi::cli
