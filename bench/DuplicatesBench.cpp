// duplicates-bench DIRECTORY: finds the exact duplicates below a directory, as a program that
// walks it and keeps no index would, and prints what it found and what it took.

#include "core/actions/ExactDuplicates.h"
#include "platform/DirectoryEntry.h"

#include <chrono>
#include <filesystem>

#include <fmt/core.h>
#include <sys/resource.h>

namespace {

using namespace tovi;
using Stopwatch = std::chrono::steady_clock;

double secondsSince(Stopwatch::time_point start) {
    return std::chrono::duration<double>(Stopwatch::now() - start).count();
}

std::vector<FileRecord> recordsBelow(const std::string& directory) {
    std::vector<FileRecord> files;
    for (const auto& item : std::filesystem::recursive_directory_iterator(directory)) {
        if (!item.is_regular_file() || item.is_symlink()) continue;
        const platform::FileAttributes attributes = platform::attributesOf(item.path().string());
        FileRecord& file = files.emplace_back();
        file.path = item.path().string();
        file.size = attributes.size;
        file.modifiedAt = attributes.modifiedAt;
    }
    return files;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fmt::print(stderr, "usage: duplicates-bench DIRECTORY\n");
        return 2;
    }
    const auto start = Stopwatch::now();
    const std::vector<FileRecord> files = recordsBelow(argv[1]);
    const double walked = secondsSince(start);
    const ExactDuplicates found = exactDuplicates(files, platform::SystemAvailability());
    std::int64_t reclaimable = 0;
    for (const DuplicateGroup& group : found.groups)
        reclaimable += group.reclaimableBytes;
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    fmt::print("{} files, {} groups, {} bytes reclaimable, walk {:.3f} s, search {:.3f} s, "
               "peak memory {} MB\n",
               files.size(), found.groups.size(), reclaimable, walked, secondsSince(start) - walked,
               usage.ru_maxrss / 1024);
    return 0;
}
