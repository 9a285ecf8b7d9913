#include "cli/Context.h"

#include "platform/StandardLocations.h"

#include <filesystem>
#include <stdexcept>

#include <fmt/core.h>

namespace tovi::cli {

std::unique_ptr<IndexStore> Context::openIndexForReading() const {
    if (!std::filesystem::exists(indexPath())) {
        throw std::runtime_error(
            "There is no index yet. Connect a folder with: tovictl index FOLDER");
    }
    return std::make_unique<IndexStore>(indexPath(), IndexStore::Access::readOnly);
}

std::unique_ptr<IndexStore> Context::openIndexForWriting() const {
    return std::make_unique<IndexStore>(indexPath());
}

void Context::print(const Json& value) const {
    fmt::print("{}\n", value.dump(2, ' ', false, Json::error_handler_t::replace));
}

std::string absolutePath(const std::string& path) {
    std::string result = std::filesystem::absolute(path).lexically_normal().string();
    while (result.size() > 1 && result.back() == '/')
        result.pop_back();
    return result;
}

std::string decoderPath() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "tovi-decoder";
}

} // namespace tovi::cli
