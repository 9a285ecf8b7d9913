#pragma once

#include "base/Date.h"
#include "core/files/Sha256.h"
#include "platform/Availability.h"
#include "platform/DirectoryEntry.h"

#include <cstdint>
#include <stdexcept>
#include <stop_token>
#include <string>

namespace tovi {

/// The identity and the content of a file at one moment.
struct FileSnapshot {
    std::uint64_t size = 0; // bytes
    Date modified;
    std::uint64_t inode = 0;
    std::uint64_t device = 0; // `platform::volumeNumber`
    std::string digest;       // SHA-256 of the content, 64 lower-case hexadecimal digits

    /// Whether both are of one unchanged file.
    bool matches(const FileSnapshot& other) const;
};

class SnapshotError : public std::runtime_error {
  public:
    enum class Kind { notLocal, notRegular, changed };

    explicit SnapshotError(Kind kind) : std::runtime_error(sentence(kind)), kind_(kind) {}
    Kind kind() const { return kind_; }

  private:
    static const char* sentence(Kind kind);

    Kind kind_;
};

/// Reads the whole file. Throws `SnapshotError`, also for a file that cannot be read, and
/// `Cancelled`.
FileSnapshot takeSnapshot(const platform::DirectoryEntry& file,
                          const platform::Availability& availability,
                          const std::stop_token& stop = {});

/// Whether `entry` still leads to the file of the snapshot, judged without reading it: file
/// system, inode, size and date. What cannot be looked at is not that file.
bool leadsTo(const platform::DirectoryEntry& entry, const FileSnapshot& snapshot);

} // namespace tovi
