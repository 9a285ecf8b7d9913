#include "core/photos/SimilarPhotoScanner.h"

#include "base/Cancelled.h"
#include "base/Text.h"
#include "core/records/IndexingPolicy.h"
#include "platform/DirectoryEntry.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <filesystem>
#include <mutex>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

namespace tovi {
namespace {

namespace fs = std::filesystem;

constexpr int thumbnailSide = 768; // pixels
constexpr double minimumAspectAgreement = 0.72;
constexpr int maximumHashDistance = 18; // bits
constexpr float maximumDistance = 0.32F;

/// The formats of still pictures that the decoder reads; not GIF, whose first picture says little
/// about the rest.
constexpr std::array<std::string_view, 13> supported{"jpg",  "jpeg", "jpe",  "jfif", "png",
                                                     "webp", "heic", "heif", "avif", "tif",
                                                     "tiff", "bmp",  "dib"};

struct PhotoPair {
    std::size_t low;
    std::size_t high;
};

SimilarPhotoOptions clamped(SimilarPhotoOptions options) {
    const SimilarPhotoOptions standard;
    options.maximumImages = std::clamp(options.maximumImages, 1, 5000);
    options.maximumComparisons = std::clamp(options.maximumComparisons, 1, 250'000);
    options.maximumFileBytes =
        std::clamp<std::int64_t>(options.maximumFileBytes, 1, standard.maximumFileBytes);
    return options;
}

std::vector<std::string> resolved(const std::vector<std::string>& roots) {
    std::vector<std::string> result;
    for (const std::string& root : roots) {
        std::error_code error;
        fs::path path = fs::weakly_canonical(fs::path(root).lexically_normal(), error);
        if (!path.has_filename()) path = path.parent_path();
        if (!error && path.is_absolute()) result.push_back(path.string());
    }
    return result;
}

bool hasPlainComponents(std::string_view path) {
    if (!path.starts_with('/')) return false;
    for (std::size_t at = 1; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view component = path.substr(at, end - at);
        if (component.empty() || component.starts_with('.') ||
            IndexingPolicy::isExcludedName(component) || IndexingPolicy::isSensitiveName(component))
            return false;
        at = end + 1;
    }
    return true;
}

bool isWithoutLinks(const std::string& path) {
    std::error_code error;
    const fs::path real = fs::weakly_canonical(path, error);
    return !error && real.native() == path;
}

bool isEligible(const FileRecord& file, const std::vector<std::string>& roots,
                std::int64_t maximumBytes, const platform::Availability& availability) {
    return file.kind == FileKind::image && file.size >= 1 && file.size <= maximumBytes &&
           std::ranges::find(supported, lowercasedExtension(lastPathComponent(file.path))) !=
               supported.end() &&
           std::ranges::any_of(roots,
                               [&](const auto& root) { return isSameOrBelow(file.path, root); }) &&
           hasPlainComponents(file.path) && isWithoutLinks(file.path) &&
           availability.isAvailableLocally(file.path);
}

void requireUnchanged(const platform::FileAttributes& now, const FileRecord& file) {
    if (now.type != platform::FileType::regular || now.size != file.size ||
        !isSameFileDate(now.modifiedAt, file.modifiedAt))
        throw std::runtime_error("The file changed.");
}

bool mayBeAlike(const PhotoPrint& left, const PhotoPrint& right) {
    const auto [narrow, wide] = std::minmax({left.aspectRatio, right.aspectRatio});
    return narrow / wide >= minimumAspectAgreement &&
           std::popcount(left.differenceHash ^ right.differenceHash) <= maximumHashDistance;
}

/// The members of each connected component with two or more, in order, by their first member.
std::vector<std::vector<std::size_t>> components(std::size_t count,
                                                 const std::vector<PhotoPair>& pairs) {
    std::vector<std::size_t> above(count);
    std::iota(above.begin(), above.end(), std::size_t{0});
    const auto top = [&](std::size_t at) {
        while (above[at] != at)
            at = above[at] = above[above[at]];
        return at;
    };
    for (const PhotoPair& pair : pairs) {
        const auto [low, high] = std::minmax({top(pair.low), top(pair.high)});
        above[high] = low; // so that the top of a component is its first member
    }
    std::vector<std::vector<std::size_t>> members(count);
    for (std::size_t at = 0; at < count; ++at)
        members[top(at)].push_back(at);
    std::erase_if(members, [](const auto& group) { return group.size() < 2; });
    return members;
}

} // namespace

struct SimilarPhotoScanner::Print {
    const FileRecord* file;
    PhotoPrint print;
};

std::string SimilarPhotoGroup::id() const {
    return files.empty() ? "" : files.front().path;
}

std::int64_t SimilarPhotoGroup::potentialBytes() const {
    std::int64_t sum = 0;
    std::int64_t largest = 0;
    for (const FileRecord& file : files) {
        sum += file.size;
        largest = std::max(largest, file.size);
    }
    return sum - largest;
}

bool SimilarPhotoGroup::looksLikeText() const {
    return 2 * std::ranges::count_if(traits, &PhotoTraits::looksLikeText) >= std::ssize(traits);
}

std::optional<std::size_t> SimilarPhotoGroup::keeper() const {
    if (looksLikeText()) return std::nullopt;
    const auto worth = [&](std::size_t at) {
        const PhotoTraits& of = traits[at];
        return std::tuple(std::int64_t{of.width} * of.height, of.sharpness,
                          -files[at].modifiedAt.seconds);
    };
    std::size_t best = 0;
    for (std::size_t at = 1; at < files.size(); ++at) {
        if (worth(at) > worth(best)) best = at;
    }
    return best;
}

std::vector<const FileRecord*> SimilarPhotoScanner::candidates(
    std::span<const FileRecord> files, const std::vector<std::string>& roots,
    const SimilarPhotoOptions& options, const std::stop_token& stop) const {
    std::vector<const FileRecord*> newest;
    for (const FileRecord& file : files)
        newest.push_back(&file);
    std::ranges::stable_sort(newest, std::greater{},
                             [](const FileRecord* file) { return file->modifiedAt; });
    const std::vector<std::string> folders = resolved(roots);
    std::vector<const FileRecord*> chosen;
    for (const FileRecord* file : newest) {
        throwIfCancelled(stop);
        if (chosen.size() == static_cast<std::size_t>(options.maximumImages)) break;
        if (isEligible(*file, folders, options.maximumFileBytes, availability_))
            chosen.push_back(file);
    }
    return chosen;
}

PhotoPrint SimilarPhotoScanner::makePrint(const FileRecord& file,
                                          const std::stop_token& stop) const {
    const auto entry = platform::DirectoryEntry::open(file.path);
    const FileDescriptor opened = entry.openRegularFile();
    const platform::FileAttributes before = platform::attributesOf(opened, file.path);
    requireUnchanged(before, file);
    if (const auto known = cache_.find(file)) return *known;
    const DecodedPicture picture = decoder_.decodePicture(opened, thumbnailSide, stop);
    requireUnchanged(platform::attributesOf(opened, file.path), file);
    const auto named = entry.attributes();
    if (!named || named->inode != before.inode || named->device != before.device)
        throw std::runtime_error("The file was replaced.");
    const PhotoPrint print = makePhotoPrint(picture);
    cache_.insert(file, print);
    return print;
}

std::vector<SimilarPhotoScanner::Print>
SimilarPhotoScanner::makePrints(const std::vector<const FileRecord*>& photos,
                                const SimilarPhotoProgressHandler& progress,
                                const std::stop_token& stop) const {
    std::vector<std::optional<PhotoPrint>> made(photos.size());
    std::atomic<std::size_t> next = 0;
    std::mutex mutex; // over the count and the handler
    int completed = 0;
    const auto work = [&] {
        for (std::size_t at = next++; at < photos.size(); at = next++) {
            if (stop.stop_requested()) return;
            try {
                made[at] = makePrint(*photos[at], stop);
            } catch (const Cancelled&) {
                return;
            } catch (const std::exception&) {
                // Counted as skipped; the check goes on.
            }
            const std::lock_guard lock(mutex);
            if (progress)
                progress({++completed, static_cast<int>(photos.size()), "Reading photos"});
        }
    };
    {
        std::vector<std::jthread> helpers;
        const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
        for (std::size_t helper = 1; helper < std::min(cores, photos.size()); ++helper)
            helpers.emplace_back(work);
        work();
    }
    throwIfCancelled(stop);
    std::vector<Print> prints;
    for (std::size_t at = 0; at < photos.size(); ++at) {
        if (made[at]) prints.push_back({photos[at], *made[at]});
    }
    return prints;
}

SimilarPhotoReport SimilarPhotoScanner::scan(std::span<const FileRecord> files,
                                             const std::vector<std::string>& roots,
                                             const SimilarPhotoOptions& options,
                                             const SimilarPhotoProgressHandler& progress,
                                             const std::stop_token& stop) const {
    const SimilarPhotoOptions limits = clamped(options);
    const std::vector<const FileRecord*> photos = candidates(files, roots, limits, stop);
    const std::vector<Print> prints = makePrints(photos, progress, stop);

    SimilarPhotoReport report;
    report.considered = static_cast<int>(photos.size());
    report.analyzed = static_cast<int>(prints.size());
    report.skipped = report.considered - report.analyzed;
    std::vector<PhotoPair> pairs;
    for (std::size_t low = 0; low < prints.size() && !report.limited; ++low) {
        throwIfCancelled(stop);
        if (progress)
            progress({static_cast<int>(low), static_cast<int>(prints.size()), "Comparing photos"});
        for (std::size_t high = low + 1; high < prints.size(); ++high) {
            if (!mayBeAlike(prints[low].print, prints[high].print)) continue;
            if (report.comparisons == limits.maximumComparisons) {
                report.limited = true;
                break;
            }
            ++report.comparisons;
            const float apart = distance(prints[low].print.feature, prints[high].print.feature);
            if (std::isfinite(apart) && apart <= maximumDistance) pairs.push_back({low, high});
        }
    }
    for (const auto& members : components(prints.size(), pairs)) {
        SimilarPhotoGroup& group = report.groups.emplace_back();
        for (const std::size_t member : members) {
            const PhotoPrint& print = prints[member].print;
            group.files.push_back(*prints[member].file);
            group.traits.push_back(
                {print.width, print.height, print.sharpness, print.looksLikeText});
        }
    }
    return report;
}

SimilarPhotoReport
similarPhotos(std::span<const FileRecord> files, const std::vector<std::string>& roots,
              const SimilarPhotoOptions& options, const SimilarPhotoProgressHandler& progress,
              PictureDecoder& decoder, const platform::Availability& availability,
              PhotoPrintCache& cache, const std::stop_token& stop) {
    return SimilarPhotoScanner(decoder, availability, cache)
        .scan(files, roots, options, progress, stop);
}

} // namespace tovi
