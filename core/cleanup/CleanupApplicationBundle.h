#pragma once

#include "core/cleanup/CleanupContentSnapshot.h"
#include "platform/Availability.h"

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <string>

namespace tovi {

/// Why an application is left to the user; `what()` is the whole sentence.
class CleanupBundleError : public std::runtime_error {
    using runtime_error::runtime_error;
};

/// An application kept as one folder, held open. What lies in it is reached from there without
/// following a link.
class CleanupApplicationBundle {
  public:
    /// The most entries a bundle may have to be offered as one item.
    static constexpr std::size_t itemLimit = 25'000;

    /// `path` ends in the folder's name in the open directory `parent`; `parent` and
    /// `availability` outlive the object. Throws `CleanupBundleError`.
    CleanupApplicationBundle(const FileDescriptor& parent, std::string path,
                             const platform::Availability& availability);

    /// From `Contents/Info.plist`; nothing if the folder is not an application whose executable
    /// is there. Throws `CleanupBundleError` if that cannot be told.
    std::optional<std::string> identifier() const;

    struct Inspection {
        std::int64_t size = 0;              // bytes of all files that were measured
        std::size_t entryCount = 0;         // of the folder's own entries, at all depths
        std::optional<std::string> problem; // why it cannot be moved as one item: a sentence
        bool isWholeMeasured = true;
        CleanupContentSnapshot snapshot; // only where there is no problem
    };

    /// Looks at every entry. Throws `Cancelled`.
    Inspection inspect(std::size_t limit, const std::stop_token& stop) const;

    /// Of a bundle without problems; throws `CleanupBundleError` for another, and `Cancelled`.
    CleanupContentSnapshot snapshot(const std::stop_token& stop) const;

  private:
    CleanupFileIdentity identityNow() const;

    const FileDescriptor& parent_;
    std::string path_;
    const platform::Availability& availability_;
    FileDescriptor directory_;
    CleanupFileIdentity identity_;
};

} // namespace tovi
