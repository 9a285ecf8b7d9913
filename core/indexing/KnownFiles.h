#pragma once

#include "core/records/FileRecord.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tovi {

/// What the index knew of one root when a scan began, packed so that a million files take about
/// 120 MB, and which of them the scan has met.
class KnownFiles {
  public:
    /// How the last scan left a file's content, as far as it matters to the next.
    enum class Reading : std::uint8_t { done, unavailable, failed, sourceDisabled };

    struct File {
        std::int64_t size;
        Date modifiedAt;
        Reading reading;
        bool met;
        std::optional<Date> downloadedAt;
        std::string_view path; // relative to the root
    };

    /// `root` is the connected folder; every record's path lies below it.
    explicit KnownFiles(std::string_view root) : rootLength_(root.size() + 1) {}

    void add(const IndexScanRecord& record);

    /// By absolute path; null for an unknown file.
    File* find(const std::string& path);

    std::optional<std::string> sourceOf(const File& file) const;

    void forEachNotMet(const std::function<void(std::string_view relativePath)>& each) const;

  private:
    std::string_view keep(std::string_view text);
    std::size_t slotOf(std::string_view relativePath) const;
    void grow();

    std::size_t rootLength_;
    std::deque<File> files_;           // in blocks: growing never doubles the memory
    std::vector<std::uint32_t> slots_; // open addressing: index into files_ plus one, 0 is free
    std::vector<std::unique_ptr<char[]>> blocks_;
    std::size_t blockUsed_ = 0;
    std::size_t blockSize_ = 0;
    std::unordered_map<const File*, std::string> sources_; // few files are downloads
};

} // namespace tovi
