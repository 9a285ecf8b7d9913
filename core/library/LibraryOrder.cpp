#include "core/library/LibraryOrder.h"

#include "core/library/DownloadGroups.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>

#include <unicode/coll.h>
#include <unicode/sortkey.h>

namespace tovi {
namespace {

/// Bytes that compare as the names do.
std::vector<std::string> sortKeys(const std::vector<FileRecord>& files) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Collator> collator(
        icu::Collator::createInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status)) throw std::runtime_error("ICU cannot compare names");
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    collator->setStrength(icu::Collator::SECONDARY);
    std::vector<std::string> keys;
    for (const FileRecord& file : files) {
        icu::CollationKey key;
        collator->getCollationKey(icu::UnicodeString::fromUTF8(file.name), key, status);
        std::int32_t length = 0;
        const std::uint8_t* bytes = key.getByteArray(length);
        keys.emplace_back(bytes, bytes + length);
    }
    return keys;
}

bool isNewer(const FileRecord& left, const FileRecord& right) {
    if (left.modifiedAt != right.modifiedAt) return left.modifiedAt > right.modifiedAt;
    return left.path < right.path;
}

/// Sorts by what `keyOf` gives, smallest first.
template <typename KeyOf>
void sortByKey(std::vector<FileRecord>& files, KeyOf keyOf) {
    std::sort(files.begin(), files.end(), [&](const FileRecord& left, const FileRecord& right) {
        const auto leftKey = keyOf(left);
        const auto rightKey = keyOf(right);
        return leftKey != rightKey ? leftKey < rightKey : isNewer(left, right);
    });
}

void sortByName(std::vector<FileRecord>& files) {
    const std::vector<std::string> keys = sortKeys(files);
    std::vector<std::size_t> order(files.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return keys[left] != keys[right] ? keys[left] < keys[right]
                                         : isNewer(files[left], files[right]);
    });
    std::vector<FileRecord> sorted;
    sorted.reserve(files.size());
    for (const std::size_t at : order)
        sorted.push_back(std::move(files[at]));
    files = std::move(sorted);
}

} // namespace

void sortFiles(std::vector<FileRecord>& files, LibraryOrder order) {
    switch (order) {
    case LibraryOrder::newest:
        return std::sort(files.begin(), files.end(), isNewer);
    case LibraryOrder::oldest:
        return sortByKey(files, [](const FileRecord& file) { return file.modifiedAt; });
    case LibraryOrder::name:
        return sortByName(files);
    case LibraryOrder::largest:
        return sortByKey(files, [](const FileRecord& file) { return -file.size; });
    case LibraryOrder::smallest:
        return sortByKey(files, [](const FileRecord& file) { return file.size; });
    case LibraryOrder::kind:
        return sortByKey(files, [](const FileRecord& file) { return file.kind; });
    }
}

void LibrarySummary::add(FileKind kind, std::int64_t files, std::int64_t bytes) {
    if (kind == FileKind::folder) bytes = 0;
    for (Count* count : {&total, &byKind[kind]}) {
        count->files += files;
        count->bytes += bytes;
    }
}

LibrarySummary summarize(const std::vector<FileRecord>& files) {
    LibrarySummary summary;
    for (const FileRecord& file : files)
        summary.add(file.kind, 1, file.size);
    return summary;
}

std::vector<FileRecord> latestDownloads(const std::vector<FileRecord>& files, std::size_t count) {
    std::vector<const FileRecord*> downloads;
    for (const FileRecord& file : files) {
        if (isDownload(file)) downloads.push_back(&file);
    }
    const std::size_t wanted = std::min(count, downloads.size());
    std::partial_sort(downloads.begin(), downloads.begin() + static_cast<std::ptrdiff_t>(wanted),
                      downloads.end(), [](const FileRecord* left, const FileRecord* right) {
                          return isLaterDownload(*left, *right);
                      });
    std::vector<FileRecord> latest;
    for (std::size_t at = 0; at < wanted; ++at)
        latest.push_back(*downloads[at]);
    return latest;
}

} // namespace tovi
