#include "app/model/PlanInstruction.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace tovi {
namespace {

constexpr std::array trashPhrases{"trash selected",
                                  "trash selected file",
                                  "trash selected files",
                                  "trash the selected files",
                                  "move selected to trash",
                                  "move selected to the trash",
                                  "move selected files to trash",
                                  "move selected files to the trash"};
constexpr std::string_view renamePrefix = "rename selected to ";

} // namespace

std::optional<PlanInstruction> readInstruction(std::string_view text, std::size_t selectedFiles) {
    const std::string_view instruction = trimmed(text);
    // The prefix is ASCII, whose case maps byte for byte, so the name can be cut from the original.
    const std::string lower = asciiLowercased(instruction);
    if (std::find(trashPhrases.begin(), trashPhrases.end(), lower) != trashPhrases.end()) {
        if (selectedFiles == 0) return std::nullopt;
        return PlanInstruction{};
    }
    if (!lower.starts_with(renamePrefix) || selectedFiles != 1) return std::nullopt;
    return PlanInstruction{FileOperation::rename,
                           std::string(instruction.substr(renamePrefix.size()))};
}

} // namespace tovi
