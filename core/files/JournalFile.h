#pragma once

#include "core/files/ProcessLock.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace tovi {

/// Why a journal could not be used; `what()` is the reason only.
class JournalError : public std::runtime_error {
  public:
    enum class Kind { unreadable, unsaved, full };

    JournalError(Kind kind, const std::string& path, const std::string& reason)
        : runtime_error(reason), kind_(kind), path_(path) {}
    Kind kind() const { return kind_; }
    const std::string& path() const { return path_; }

  private:
    Kind kind_;
    std::string path_;
};

/// One JSON file of what the program did, and beside it the note of the step under way. Several
/// processes may read them; the one that writes holds the lock. Everything throws `JournalError`.
class JournalFile {
  public:
    /// Makes the folder of `path` (mode 0700) if it is missing. Files are at most `limit` bytes.
    explicit JournalFile(const std::string& path,
                         std::size_t limit = std::numeric_limits<std::size_t>::max());

    /// Nothing where another process is writing.
    std::optional<ProcessLock> tryLock() const;

    /// Nothing if there is none.
    std::optional<nlohmann::ordered_json> read() const;
    std::optional<nlohmann::ordered_json> readIntent() const;

    /// With room left for `reserve` further bytes.
    void write(const nlohmann::ordered_json& json, std::size_t reserve = 0) const;
    void writeIntent(const nlohmann::ordered_json& json) const;
    void clearIntent() const;

    const std::string& path() const { return path_; }
    std::string intentPath() const { return path_ + ".intent"; }

  private:
    std::string path_;
    std::size_t limit_;
};

} // namespace tovi
