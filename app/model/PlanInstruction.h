#pragma once

#include "core/actions/ActionPlan.h"

#include <optional>
#include <string>
#include <string_view>

namespace tovi {

/// What an instruction such as "trash selected" or "rename selected to notes.txt" asks for.
struct PlanInstruction {
    FileOperation operation = FileOperation::trash;
    std::optional<std::string> newName; // as typed
};

/// Nothing, for which `unsupportedInstruction` is the answer, where the instruction is another or
/// does not fit the number of selected files.
std::optional<PlanInstruction> readInstruction(std::string_view text, std::size_t selectedFiles);

inline constexpr const char* unsupportedInstruction =
    "Supported plans: ‘trash selected’ or ‘rename selected to filename.ext’. Select files in the "
    "library first. Arbitrary AI commands and unattended actions are not enabled.";

} // namespace tovi
