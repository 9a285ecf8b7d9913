#pragma once

#include "core/photos/PhotoPrintCache.h"
#include "core/photos/PictureDecoder.h"
#include "core/records/FileRecord.h"
#include "platform/Availability.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

/// Values out of range are brought into it.
struct SimilarPhotoOptions {
    int maximumImages = 1200;                   // 1 to 5000
    int maximumComparisons = 50'000;            // 1 to 250,000
    std::int64_t maximumFileBytes = 31'457'280; // 1 to 31,457,280
};

struct SimilarPhotoProgress {
    int completed = 0;
    int total = 0;
    std::string phase; // "Reading photos", then "Comparing photos"
};

/// What helps to choose among look-alikes.
struct PhotoTraits {
    int width = 0; // pixels, upright
    int height = 0;
    double sharpness = 0; // comparable within the group
    bool looksLikeText = false;
};

/// Photos of which each looks like another one of the group, newest first; at least two.
struct SimilarPhotoGroup {
    std::vector<FileRecord> files;
    std::vector<PhotoTraits> traits; // of each file

    /// The path of the first file; empty for a group without members.
    std::string id() const;
    /// What keeping the largest file only could free; no promise.
    std::int64_t potentialBytes() const;
    /// Whether half of them or more look like pages of text, which are taken for alike when their
    /// lines are, whatever they say.
    bool looksLikeText() const;
    /// The file that deserves to stay: the one with the most pixels, then the sharpest, then the
    /// oldest. Nothing for pages of text, each of which may be the only one of its kind.
    std::optional<std::size_t> keeper() const;
};

struct SimilarPhotoReport {
    std::vector<SimilarPhotoGroup> groups; // by their newest photo
    int considered = 0;                    // photos taken into the check
    int analyzed = 0;                      // of those, the ones that were read
    int skipped = 0;                       // and the ones that could not be, or changed meanwhile
    int comparisons = 0;                   // of feature prints
    bool limited = false;                  // ended by `maximumComparisons`
};

/// Hears from any thread, one call at a time.
using SimilarPhotoProgressHandler = std::function<void(const SimilarPhotoProgress&)>;

/// Finds look-alike photos among records, reading on all cores. Changes nothing. What it refers to
/// outlives it; may be used from any thread.
class SimilarPhotoScanner {
  public:
    SimilarPhotoScanner(PictureDecoder& decoder, const platform::Availability& availability,
                        PhotoPrintCache& cache)
        : decoder_(decoder), availability_(availability), cache_(cache) {}

    /// Takes the newest images of at most `maximumFileBytes` below `roots` that are on the disk, in
    /// a format of still pictures, and reached neither through links nor through hidden, excluded
    /// or sensitive names. The same files give the same report whatever the number of cores.
    /// Throws `Cancelled`.
    SimilarPhotoReport scan(std::span<const FileRecord> files,
                            const std::vector<std::string>& roots,
                            const SimilarPhotoOptions& options,
                            const SimilarPhotoProgressHandler& progress,
                            const std::stop_token& stop) const;

  private:
    struct Print;

    std::vector<const FileRecord*> candidates(std::span<const FileRecord> files,
                                              const std::vector<std::string>& roots,
                                              const SimilarPhotoOptions& options,
                                              const std::stop_token& stop) const;
    std::vector<Print> makePrints(const std::vector<const FileRecord*>& photos,
                                  const SimilarPhotoProgressHandler& progress,
                                  const std::stop_token& stop) const;
    PhotoPrint makePrint(const FileRecord& file, const std::stop_token& stop) const;

    PictureDecoder& decoder_;
    const platform::Availability& availability_;
    PhotoPrintCache& cache_;
};

/// One scan.
SimilarPhotoReport
similarPhotos(std::span<const FileRecord> files, const std::vector<std::string>& roots,
              const SimilarPhotoOptions& options, const SimilarPhotoProgressHandler& progress,
              PictureDecoder& decoder, const platform::Availability& availability,
              PhotoPrintCache& cache, const std::stop_token& stop = {});

} // namespace tovi
