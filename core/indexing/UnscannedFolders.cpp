#include "core/indexing/UnscannedFolders.h"

#include "platform/StandardLocations.h"

#include <filesystem>

namespace tovi {

std::vector<std::string> unscannedFolders(const std::string& dataDirectory) {
    std::vector<std::string> folders;
    for (const std::string& folder : {dataDirectory, platform::dataHome() + "/Trash"}) {
        std::error_code unreadable;
        const auto path = std::filesystem::weakly_canonical(folder, unreadable);
        folders.push_back(unreadable ? folder : path.string());
    }
    return folders;
}

} // namespace tovi
