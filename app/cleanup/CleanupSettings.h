#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include <nlohmann/json.hpp>

namespace tovi {

struct CleanupSettings {
    static constexpr std::int64_t mostHours = 24 * 365;

    bool automaticRefresh = true;
    std::int64_t refreshHours = 24; // between two automatic scans: 1 to `mostHours`
    std::string folder;             // the only one to scan; empty for all connected folders
    nlohmann::ordered_json others = nlohmann::ordered_json::object(); // keys of later versions
};

/// The file "cleanup-settings.json". May be called from any thread; one process at a time writes.
class CleanupSettingsFile {
  public:
    explicit CleanupSettingsFile(std::string path) : path_(std::move(path)) {}

    /// A missing file gives the defaults. Throws `std::exception` for one that cannot be read or
    /// understood, which must then not be written.
    CleanupSettings load() const;

    /// Replaces the file whole, unless a later `revision` is written already. Throws
    /// `std::system_error`.
    void save(std::uint64_t revision, const CleanupSettings& settings);

  private:
    std::string path_;
    std::mutex mutex_; // guards the writing
    std::uint64_t written_ = 0;
};

} // namespace tovi
