// photos-bench PROGRAM FOLDER PHOTO: checks the labelled photos of make-photos in FOLDER with the
// decoder PROGRAM. Prints the look-alikes it found, a group a line, and on standard error how many
// of the pairs were found and what each stage took. PHOTO is for the thumbnails.
#include "app/thumbnails/ThumbnailLoader.h"
#include "app/thumbnails/ThumbnailMaker.h"
#include "bench/Stopwatch.h"
#include "core/photos/SimilarPhotoScanner.h"
#include "decoder/client/DecoderPool.h"
#include "platform/FileAttributes.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/resource.h>

namespace {

using namespace tovi;
namespace fs = std::filesystem;

const platform::SystemAvailability availability;

double childrenSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

FileRecord recordOf(const std::string& path) {
    const auto attributes = platform::attributesOf(path);
    FileRecord record;
    record.path = path;
    record.kind = FileKind::image;
    record.size = attributes.size;
    record.modifiedAt = attributes.modifiedAt;
    return record;
}

std::vector<FileRecord> photosIn(const std::string& folder) {
    std::vector<FileRecord> photos;
    for (const auto& entry : fs::directory_iterator(folder))
        photos.push_back(recordOf(entry.path().string()));
    std::ranges::sort(photos, {}, &FileRecord::path);
    return photos;
}

std::string nameOf(const FileRecord& photo) {
    return fs::path(photo.path).stem().string();
}
std::string shownIn(const FileRecord& photo) {
    return nameOf(photo).substr(0, nameOf(photo).rfind('-'));
}
std::string editOf(const FileRecord& photo) {
    return nameOf(photo).substr(nameOf(photo).rfind('-') + 1);
}
bool isPage(const FileRecord& photo) {
    return nameOf(photo).starts_with("page");
}

struct Counts {
    int pairs = 0;
    int same = 0;
    int found = 0;
    int right = 0;

    void add(bool isFound, bool isSame) {
        ++pairs;
        same += isSame;
        found += isFound;
        right += isFound && isSame;
    }
};

class Bench {
  public:
    Bench(std::string program, std::string folder)
        : program_(std::move(program)), folder_(std::move(folder)), photos_(photosIn(folder_)) {}

    void timeStages() const {
        double printing = 0;
        const double before = childrenSeconds();
        const bench::Stopwatch all;
        {
            decoder::DecoderPool decoders({.program = program_, .processes = 1});
            for (const FileRecord& photo : photos_) {
                const FileDescriptor file(::open(photo.path.c_str(), O_RDONLY | O_CLOEXEC));
                const DecodedPicture picture = decoders.decodePicture(file, 768, {});
                const bench::Stopwatch print;
                makePhotoPrint(picture);
                printing += print.processor();
            }
        }
        const double decoding = all.processor() - printing + childrenSeconds() - before;
        const double count = static_cast<double>(photos_.size());
        fmt::print(stderr, "{} photos: decoding {:.2f} ms, print {:.2f} ms of processor each\n",
                   photos_.size(), 1000 * decoding / count, 1000 * printing / count);
    }

    void check() {
        const double before = childrenSeconds();
        const bench::Stopwatch first;
        SimilarPhotoReport report;
        {
            decoder::DecoderPool decoders({.program = program_});
            report = scan(photos_, folder_, decoders);
        }
        fmt::print(stderr,
                   "a check of {}: {:.2f} s, {:.2f} of processor; {} comparisons, {} skipped\n",
                   report.considered, first.wall(), first.processor() + childrenSeconds() - before,
                   report.comparisons, report.skipped);
        for (const SimilarPhotoGroup& group : report.groups) {
            for (const FileRecord& file : group.files)
                fmt::print("{} ", file.path);
            fmt::print("\n");
        }
        decoder::DecoderPool decoders({.program = program_});
        const bench::Stopwatch again;
        scan(photos_, folder_, decoders);
        fmt::print(stderr, "the same again: {:.3f} s\n", again.wall());
    }

    /// Judges every two photos alone, and counts by the edit for an original with one of its edits.
    void judgePairs() {
        decoder::DecoderPool decoders({.program = program_});
        std::map<std::string, Counts> all; // of pairs of photos and of pairs with a page
        std::map<std::string, Counts> byEdit;
        for (std::size_t i = 0; i < photos_.size(); ++i) {
            for (std::size_t j = i + 1; j < photos_.size(); ++j) {
                const FileRecord& one = photos_[i];
                const FileRecord& other = photos_[j];
                const bool isFound = !scan({one, other}, folder_, decoders).groups.empty();
                const bool isSame = shownIn(one) == shownIn(other);
                const std::string kind = isPage(one) || isPage(other) ? "pages" : "photos";
                all[kind].add(isFound, isSame);
                if (isSame && editOf(one) == "original")
                    byEdit[kind + " " + editOf(other)].add(isFound, isSame);
                if (isSame && editOf(other) == "original")
                    byEdit[kind + " " + editOf(one)].add(isFound, isSame);
            }
        }
        for (const auto& [kind, counts] : all)
            fmt::print(stderr, "{}: recall {:.4f} of {} pairs, precision {:.4f}, {} false of {}\n",
                       kind, static_cast<double>(counts.right) / counts.same, counts.same,
                       static_cast<double>(counts.right) / counts.found,
                       counts.found - counts.right, counts.pairs - counts.same);
        for (const auto& [edit, counts] : byEdit)
            fmt::print(stderr, "  {}: {} of {}\n", edit, counts.found, counts.same);
    }

    /// What comparing 5,000 photos takes that were read before: hard links to those of the folder.
    void timeComparing() {
        const std::string links = folder_ + "-links";
        fs::create_directory(links);
        std::vector<FileRecord> many;
        for (std::size_t i = 0; i < 5000; ++i) {
            const FileRecord& photo = photos_[i % photos_.size()];
            const std::string path = fmt::format("{}/{}.jpg", links, i);
            fs::create_hard_link(photo.path, path);
            many.push_back(recordOf(path));
            cache_.insert(many.back(), cache_.find(photo).value());
        }
        decoder::DecoderPool decoders({.program = program_});
        const bench::Stopwatch watch;
        const SimilarPhotoReport report = scan(many, links, decoders);
        fmt::print(stderr, "{} photos compared: {:.3f} s, {:.3f} of processor; {} comparisons{}\n",
                   report.analyzed, watch.wall(), watch.processor(), report.comparisons,
                   report.limited ? ", the most" : "");
        fs::remove_all(links);
    }

  private:
    SimilarPhotoReport scan(const std::vector<FileRecord>& photos, const std::string& folder,
                            PictureDecoder& decoder) {
        const SimilarPhotoOptions most{.maximumImages = 5000, .maximumComparisons = 250'000};
        return similarPhotos(photos, {folder}, most, {}, decoder, availability, cache_);
    }

    const std::string program_;
    const std::string folder_;
    const std::vector<FileRecord> photos_;
    PhotoPrintCache cache_;
};

void timeThumbnails(const std::string& program, const std::string& path) {
    constexpr int count = 20;
    constexpr int cachedCount = 100'000;
    const FileRecord photo = recordOf(path);
    const double before = childrenSeconds();
    double wall = 0;
    double ours = 0;
    {
        decoder::DecoderPool decoders({.program = program});
        const ThumbnailMaker maker(decoders, availability, "/nonexistent");
        ThumbnailLoader loader(
            [&](const auto& key, const auto& stop) { return maker.make(key, stop); }, Date::now);
        const auto image = [&](int pixels) {
            if (loader.image({path, photo.modifiedAt, photo.size, pixels}) == nullptr) std::abort();
        };
        image(255); // starts the decoder
        const bench::Stopwatch making;
        for (int i = 0; i < count; ++i)
            image(256 + i);
        wall = making.wall();
        ours = making.processor();
        const bench::Stopwatch finding;
        for (int i = 0; i < cachedCount; ++i)
            image(256);
        fmt::print(stderr, "a cached thumbnail: {:.2f} µs\n", 1e6 * finding.wall() / cachedCount);
    }
    fmt::print(stderr,
               "a thumbnail of {}: {:.1f} ms, {:.1f} of processor with the decoder's start\n", path,
               1000 * wall / count, 1000 * (ours + childrenSeconds() - before) / (count + 1));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    try {
        Bench bench(argv[1], fs::canonical(argv[2]).string());
        bench.timeStages();
        bench.check();
        bench.judgePairs();
        bench.timeComparing();
        timeThumbnails(argv[1], fs::canonical(argv[3]).string());
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
    return 0;
}
