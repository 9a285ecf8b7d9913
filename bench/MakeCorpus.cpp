// Makes what the other benchmarks run on, the same every time.

#include "base/SystemError.h"
#include "base/Text.h"
#include "bench/Prose.h"
#include "core/indexing/ContentExtractor.h"
#include "core/store/IndexStore.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>

#include <CLI/CLI.hpp>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace {

using namespace tovi;
using bench::Prose;
namespace fs = std::filesystem;

constexpr double newestFile = 1'710'000'000; // seconds since the epoch
constexpr double span = 5 * 365 * 86'400.0;

std::string fileName(Prose& prose, std::size_t number, std::string_view extension) {
    return fmt::format("{}-{}-{}.{}", prose.anyWord(), prose.anyWord(), number, extension);
}

/// Text files in nested folders, about 10 kB each.
void makeTexts(const std::string& folder, std::size_t count) {
    constexpr const char* extensions[] = {"txt", "txt", "txt", "md", "md", "csv", "log"};
    Prose prose(bench::corpusSeed);
    std::vector<std::string> folders{folder};
    while (folders.size() < count / 25 + 1) {
        folders.push_back(folders[prose.below(folders.size())] + "/" + prose.anyWord());
    }
    for (const std::string& path : folders)
        fs::create_directories(path);
    for (std::size_t n = 0; n < count; ++n) {
        const std::string& parent = folders[prose.below(folders.size())];
        const auto size = static_cast<std::size_t>(prose.aroundMedian(5'500, 1.1));
        std::ofstream file(parent + "/" + fileName(prose, n, extensions[prose.below(7)]));
        file << prose.text(std::min<std::size_t>(size, 400'000));
        if (!file.flush()) throw std::runtime_error("Cannot write below " + folder);
    }
}

struct FileSort {
    const char* extension;
    double share;
    double medianSize; // bytes
    bool hasText;
    const char* status;
};

constexpr FileSort sorts[] = {
    {"jpg", 0.35, 2e6, false, contentStatus::pictureWithoutText},
    {"txt", 0.14, 4e3, true, contentStatus::textIndexed},
    {"md", 0.08, 4e3, true, contentStatus::textIndexed},
    {"pdf", 0.12, 4e5, true, contentStatus::pdfIndexed},
    {"py", 0.12, 6e3, false, contentStatus::sourceDisabled},
    {"docx", 0.06, 6e4, false, contentStatus::formatPending},
    {"mp3", 0.05, 5e6, false, contentStatus::metadataOnly},
    {"mp4", 0.03, 5e7, false, contentStatus::metadataOnly},
    {"zip", 0.03, 1e6, false, contentStatus::metadataOnly},
    {"bin", 0.02, 1e5, false, contentStatus::metadataOnly},
};

constexpr const char* hosts[] = {
    "https://www.example.org/files/", "https://mail.google.com/mail/u/0/",
    "https://github.com/someone/something/releases/", "https://files.slack.com/files-pri/",
    "https://downloads.example.net/"};

const FileSort& anySort(Prose& prose) {
    double left = prose.unit();
    for (const FileSort& sort : sorts) {
        left -= sort.share;
        if (left < 0) return sort;
    }
    return sorts[0];
}

/// Writes an empty file that has the record's size, date and source.
void makeFile(const FileRecord& record) {
    const FileDescriptor file(
        ::open(record.path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!file.isOpen() || ::ftruncate(file.get(), record.size) != 0) throw systemError(record.path);
    if (record.sourceURL && ::fsetxattr(file.get(), "user.xdg.origin.url", record.sourceURL->data(),
                                        record.sourceURL->size(), 0) != 0) {
        throw systemError(record.path);
    }
    const timespec modified{static_cast<time_t>(record.modifiedAt.seconds), 0};
    const timespec times[2] = {modified, modified};
    if (::futimens(file.get(), times) != 0) throw systemError(record.path);
}

/// A folder of empty files, a hundred in each directory, and an index that knows them all, as if
/// they had been read.
void makeIndex(const std::string& folder, const std::string& dataDirectory, std::size_t count) {
    Prose prose(bench::corpusSeed);
    fs::create_directories(folder);
    const std::string root = fs::canonical(folder).string();
    IndexStore store(dataDirectory + "/index.sqlite");
    std::string parent;
    for (std::size_t n = 0; n < count; ++n) {
        if (n % 100 == 0) {
            parent = fmt::format("{}/{:02}-{}/{:04}-{}", root, n / 10'000, prose.word(n / 10'000),
                                 n / 100, prose.anyWord());
            fs::create_directories(parent);
        }
        const FileSort& sort = anySort(prose);
        FileRecord record;
        record.name = sort.extension == std::string_view("jpg") && prose.below(20) == 0
                          ? fmt::format("Screenshot {}.jpg", n)
                          : fileName(prose, n, sort.extension);
        record.path = parent + "/" + record.name;
        record.kind = classify(record.name, false);
        record.size = static_cast<std::int64_t>(prose.aroundMedian(sort.medianSize, 1));
        record.modifiedAt = {std::floor(newestFile - prose.unit() * span)};
        record.createdAt = record.modifiedAt;
        record.indexedAt = {newestFile};
        if (sort.hasText) record.content = prose.text(400 + prose.below(1'600));
        record.contentStatus = sort.status;
        if (prose.below(10) == 0) {
            record.sourceURL = hosts[prose.below(std::size(hosts))] + record.name;
        }
        record.rootPath = root;
        makeFile(record);
        store.upsert(record);
        if ((n + 1) % 100'000 == 0) std::cerr << n + 1 << " files\n";
    }
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Makes the folders and the index that the benchmarks use.", "make-corpus");
    app.require_subcommand(1);
    std::string folder;
    std::string dataDirectory;
    std::size_t count = 6'000;
    CLI::App* texts = app.add_subcommand("texts", "A folder of text files, about 10 kB each");
    texts->add_option("folder", folder)->required();
    texts->add_option("--count", count)->capture_default_str();
    CLI::App* index = app.add_subcommand("index", "A folder of empty files and an index of them");
    index->add_option("folder", folder)->required();
    index->add_option("data-dir", dataDirectory)->required();
    index->add_option("--count", count)->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    try {
        if (texts->parsed()) makeTexts(folder, count);
        if (index->parsed()) makeIndex(folder, dataDirectory, count);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << printable(error.what()) << "\n";
        return 1;
    }
}
