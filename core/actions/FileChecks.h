#pragma once

#include "core/actions/ActionReceipt.h"
#include "core/files/AuthorizedFolders.h"
#include "platform/Availability.h"
#include "platform/DirectoryEntry.h"

#include <ctime>
#include <map>
#include <stop_token>
#include <string>

namespace tovi {

/// A file that passed every check, held by its open folder.
struct CheckedFile {
    platform::DirectoryEntry entry;
    FileSnapshot snapshot;
    std::uint64_t linkCount;
    timespec changed; // the last change of its status before it was read
};

/// The checks made of every file before it is planned and again before it is changed. All throw
/// `ActionError` with the sentence for the user.
class FileChecks {
  public:
    FileChecks(const std::vector<std::string>& roots, const platform::Availability& availability,
               const std::stop_token& stop);

    /// Where the path leads, if that is in an authorised folder and not protected. The path itself
    /// may be free.
    std::string containedPath(const std::string& path) const;

    /// Throws unless a path that was resolved before is contained and leads through no link now.
    void requireContained(const std::string& resolvedPath) const;

    /// A regular file that is contained and fully local, and its content now. Also throws
    /// `Cancelled`.
    CheckedFile check(const std::string& path) const;

    /// As `check`, for a path that was resolved before.
    CheckedFile checkAgain(const std::string& resolvedPath) const;

    /// Throws unless the file matches what was reviewed and a rename's new name is still free.
    CheckedFile checkReviewed(const PlannedFileAction& item) const;

    /// Throws unless the retained copies are whole. Those with `digest` are read every time, the
    /// others when their status changed since, which no writer can hide as it can a date.
    void checkRetained(const std::vector<RetainedFile>& files, const std::string& digest);

  private:
    bool isWhole(const RetainedFile& file, bool read);

    AuthorizedFolders folders_;
    const platform::Availability& availability_;
    std::stop_token stop_;
    std::map<std::string, timespec> retainedAt_; // by path, their status when they were read
};

/// The new name without white space around it. Throws `ActionError`.
std::string validatedName(const std::optional<std::string>& newName);

} // namespace tovi
