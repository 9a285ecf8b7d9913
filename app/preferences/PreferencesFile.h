#pragma once

#include "app/preferences/Preferences.h"
#include "base/Date.h"

#include <mutex>
#include <optional>
#include <string>

namespace tovi {

/// The file "preferences.json". May be called from any thread; one process at a time writes.
class PreferencesFile {
  public:
    explicit PreferencesFile(std::string path) : path_(std::move(path)) {}

    struct Loaded {
        Preferences preferences;
        std::optional<std::string> movedTo; // where a file that cannot be decoded now is
    };

    /// A missing file gives the defaults. One that cannot be decoded is renamed, with the date in
    /// its new name, before the defaults are given. Throws `std::exception` where the file cannot
    /// be read or renamed; it must then not be written.
    Loaded load(Date now) const;

    /// As `load`, for a reader beside a writer: throws for a file that cannot be decoded.
    Preferences read() const;

    /// Replaces the file whole, unless a later `revision` is written already. Throws
    /// `std::system_error`.
    void save(std::uint64_t revision, const Preferences& preferences);

  private:
    std::string path_;
    std::mutex mutex_; // guards the writing
    std::uint64_t written_ = 0;
};

} // namespace tovi
