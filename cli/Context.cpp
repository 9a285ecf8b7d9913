#include "cli/Context.h"

#include "app/preferences/PreferencesFile.h"
#include "platform/PrivateDirectory.h"

#include <filesystem>
#include <stdexcept>

#include <fmt/core.h>

namespace tovi::cli {

std::unique_ptr<IndexStore> Context::openIndexForReading() const {
    if (!hasIndex()) {
        throw std::runtime_error(
            "There is no index yet. Connect a folder with: tovictl index FOLDER");
    }
    return std::make_unique<IndexStore>(indexPath(), IndexStore::Access::readOnly);
}

std::unique_ptr<IndexStore> Context::openIndexForWriting() const {
    return std::make_unique<IndexStore>(indexPath());
}

bool Context::hasIndex() const {
    return std::filesystem::exists(indexPath());
}

ProcessLock Context::lockForWriting() const {
    platform::makePrivateDirectory(dataDirectory);
    if (auto lock = ProcessLock::tryTake(dataDirectory + "/library.lock")) return *std::move(lock);
    throw std::runtime_error("Tovi is running and keeps this library up to date. Use its window, "
                             "or close it and try again.");
}

void Context::updateIndex(const std::function<void(IndexStore&)>& follow) const {
    try {
        const auto lock = ProcessLock::tryTake(dataDirectory + "/library.lock");
        if (lock && hasIndex()) follow(*openIndexForWriting());
    } catch (const std::exception&) {
        return;
    }
}

std::vector<std::string> Context::connectedFolders() const {
    std::vector<std::string> roots;
    for (const FolderGrant& root : readPreferences().roots)
        roots.push_back(root.path);
    if (!hasIndex()) return roots;
    for (std::string& root : openIndexForReading()->roots())
        roots.push_back(std::move(root));
    return roots;
}

std::string Context::preferencesPath() const {
    std::error_code missing;
    return std::filesystem::weakly_canonical(dataDirectory, missing).string() + "/preferences.json";
}

Preferences Context::readPreferences() const {
    return PreferencesFile(preferencesPath()).read();
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
