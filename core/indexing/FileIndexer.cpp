#include "core/indexing/FileIndexer.h"

#include "base/Cancelled.h"
#include "base/SystemError.h"
#include "base/Text.h"
#include "core/indexing/DownloadMetadata.h"
#include "core/indexing/ExclusionRules.h"
#include "core/indexing/KnownFiles.h"
#include "core/indexing/ReadingQueue.h"
#include "core/indexing/UnscannedFolders.h"
#include "core/records/IndexingPolicy.h"
#include "core/records/IntelligenceError.h"
#include "platform/DirectoryWalker.h"
#include "platform/Packages.h"
#include "platform/ReadFile.h"

#include <algorithm>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace tovi {
namespace {

constexpr std::int64_t largestIgnoreFile = 128'000; // bytes; files of this size are not read
constexpr double patienceAfterFailure = 0.25;       // of a reader's usual deadline

std::string failureStatus(const std::exception& error) {
    const std::string reason = reasonOf(error);
    if (reason.empty()) return contentStatus::failed;
    return std::string(contentStatus::failed) + ": " + reason;
}

/// Reads one file as far as the settings allow. Called on the reading threads.
FileRead readFile(const ContentExtractor& extractor, bool includeCodeContent, FileToRead file,
                  const std::stop_token& stop) {
    FileRead result{std::move(file), {}, false};
    const FileToRead& source = result.file;
    if (!source.isAvailable) {
        result.extracted.status = contentStatus::unavailable;
        return result;
    }
    if (source.kind == FileKind::code && !includeCodeContent) {
        result.extracted.status = contentStatus::sourceDisabled;
        return result;
    }
    try {
        const ReadOptions options{source.failedBefore ? patienceAfterFailure : 1.0};
        result.extracted =
            extractor.extract(source.file, source.kind, source.attributes.size, options, stop);
    } catch (const std::exception& error) {
        result.extracted = {{}, failureStatus(error)};
    }
    try {
        const platform::FileAttributes now = source.file.attributes();
        result.changedMeanwhile = now.size != source.attributes.size ||
                                  !isSameFileDate(now.modifiedAt, source.attributes.modifiedAt);
    } catch (const std::system_error&) {
        result.changedMeanwhile = true;
    }
    return result;
}

/// One scan of one root.
class Scan final : public platform::WalkVisitor {
  public:
    struct Context {
        const platform::Availability& availability;
        const std::optional<std::string>& downloadsDirectory;
        const Clock& clock;
        IndexStore& store;
        const std::vector<std::string>& exclusions;
        bool includeCodeContent;
        const FileIndexer::Progress& progress;
        const std::stop_token& stop;
    };

    Scan(const Context& context, const std::string& root, ReadingQueue& queue)
        : context_(context), root_(root), queue_(queue), known_(root) {}

    ScanReport run() {
        openRoot();
        context_.store.adoptRows(root_);
        context_.store.forEachScanRecord(
            root_, [this](const IndexScanRecord& record) { known_.add(record); });
        notScanned_ =
            unscannedFolders(std::filesystem::path(context_.store.path()).parent_path().string());
        for (const std::string& other : context_.store.roots()) {
            if (other != root_ && isSameOrBelow(other, root_)) notScanned_.push_back(other);
        }
        try {
            platform::walkDirectory(root_, *this, context_.stop);
        } catch (const std::system_error& error) {
            throw IntelligenceError::inaccessible(error.what());
        }
        storeAll();
        // What failed before may fail again and slowly; nothing else should wait for it.
        phase_ = "Retrying";
        for (FileToRead& file : failedBefore_)
            read(std::move(file));
        storeAll();
        throwIfRootIsAnother();
        removeMissing();
        phase_ = "Finished";
        advance(root_);
        return std::move(report_);
    }

    void enter(const platform::WalkDirectory& directory) override {
        Level level;
        level.pathLength = directory.path().size() + 1;
        if (directory.contains(".gitignore")) level.ignored = readIgnoreFile(directory);
        levels_.push_back(std::move(level));
    }

    void leave() override { levels_.pop_back(); }

    Step visit(platform::WalkItem& item) override {
        const std::string_view name = item.name();
        if (name.starts_with('.')) return Step::skip;
        if (!isValidUtf8(name)) {
            report_.errors.push_back(printable(item.path()) + ": the name is not valid UTF-8");
            return Step::skip;
        }
        if (isLeftOut(item)) {
            ++report_.skipped;
            return Step::skip;
        }
        switch (item.type()) {
        case platform::FileType::directory:
            return isScannedHere(item) ? Step::descend : Step::skip;
        case platform::FileType::regular:
            handle(item.path(), name, item.attributes());
            return Step::skip;
        default:
            return Step::skip;
        }
    }

    void failed(const std::string& path, const std::system_error& error) override {
        if (error.code() == std::errc::no_such_file_or_directory) return; // gone since it was seen
        report_.errors.push_back(printable(path) + ": " + error.code().message());
        unreachable_.push_back(path);
    }

  private:
    struct Level {
        std::size_t pathLength = 0; // with the slash that ends it
        IgnoreRules ignored;
    };

    void openRoot() {
        FileDescriptor directory(
            ::open(root_.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!directory.isOpen()) throw IntelligenceError::inaccessible(systemError(root_).what());
        directory_ = std::make_shared<const FileDescriptor>(std::move(directory));
    }

    /// What was not met in the empty directory below a disk that went meanwhile is not gone.
    void throwIfRootIsAnother() const {
        try {
            const platform::FileAttributes before = platform::attributesOf(*directory_, root_);
            const platform::FileAttributes now = platform::attributesOf(root_);
            if (now.inode == before.inode && now.device == before.device) return;
        } catch (const std::system_error& error) {
            throw IntelligenceError::inaccessible(error.what());
        }
        throw IntelligenceError::inaccessible(root_ + ": Is another folder than at the start");
    }

    IgnoreRules readIgnoreFile(const platform::WalkDirectory& directory) const {
        const std::string path = directory.path() + "/.gitignore";
        try {
            const platform::RootedFile rules(directory_, path, root_.size() + 1);
            if (rules.attributes().size >= largestIgnoreFile) return {};
            if (!context_.availability.isAvailableLocally(path)) return {};
            return IgnoreRules::parse(platform::readFile(
                rules.open(), static_cast<std::size_t>(largestIgnoreFile), path));
        } catch (const std::system_error&) {
            return {}; // it cannot be read, so it has no rules
        }
    }

    bool isLeftOut(const platform::WalkItem& item) const {
        const std::string_view name = item.name();
        if (IndexingPolicy::isExcludedName(name) || IndexingPolicy::isSensitiveName(name)) {
            return true;
        }
        const std::string& path = item.path();
        if (!context_.exclusions.empty()) {
            const std::string relative = path.substr(root_.size() + 1);
            for (const std::string& pattern : context_.exclusions) {
                if (matchesExclusion(pattern, path, relative)) return true;
            }
        }
        return std::any_of(levels_.begin(), levels_.end(), [&](const Level& level) {
            return !level.ignored.isEmpty() && level.ignored.matches(path.substr(level.pathLength));
        });
    }

    bool isScannedHere(const platform::WalkItem& directory) const {
        return !platform::isPackage(directory.name()) &&
               std::find(notScanned_.begin(), notScanned_.end(), directory.path()) ==
                   notScanned_.end();
    }

    void handle(const std::string& path, std::string_view name,
                const platform::FileAttributes& attributes) {
        const FileKind kind = classify(name, false);
        const platform::ExtendedAttributes extended(path);
        const bool isAvailable = context_.availability.isAvailableLocally(path, extended);
        DownloadMetadata metadata = DownloadMetadata::read(path, extended, attributes, isAvailable,
                                                           context_.downloadsDirectory);
        KnownFiles::File* const known = known_.find(path);
        if (known != nullptr) {
            known->met = true;
            if (isUnchanged(*known, kind, attributes)) {
                if (known_.sourceOf(*known) != metadata.sourceURL ||
                    known->downloadedAt != metadata.downloadedAt) {
                    context_.store.updateDownloadMetadata(path, metadata.sourceURL,
                                                          metadata.downloadedAt);
                }
                ++report_.skipped;
                advance(path);
                return;
            }
        }
        FileToRead file{platform::RootedFile(directory_, path, root_.size() + 1),
                        attributes,
                        kind,
                        isAvailable,
                        known != nullptr && known->reading == KnownFiles::Reading::failed,
                        std::move(metadata.sourceURL),
                        metadata.downloadedAt};
        if (file.failedBefore) {
            failedBefore_.push_back(std::move(file));
        } else {
            read(std::move(file));
        }
    }

    bool isUnchanged(const KnownFiles::File& known, FileKind kind,
                     const platform::FileAttributes& attributes) const {
        using Reading = KnownFiles::Reading;
        if (known.size != attributes.size ||
            !isSameFileDate(known.modifiedAt, attributes.modifiedAt)) {
            return false;
        }
        if (known.reading == Reading::unavailable || known.reading == Reading::failed) return false;
        const bool sourceDisabled = known.reading == Reading::sourceDisabled;
        return kind != FileKind::code || sourceDisabled != context_.includeCodeContent;
    }

    void read(FileToRead file) {
        while (queue_.isFull())
            store(queue_.take());
        queue_.add(std::move(file));
        while (auto ready = queue_.takeIfReady())
            store(std::move(*ready));
    }

    void storeAll() {
        while (!queue_.isEmpty()) {
            throwIfCancelled(context_.stop);
            store(queue_.take());
        }
    }

    void store(FileRead read) {
        const FileToRead& file = read.file;
        const std::string& path = file.file.path();
        if (read.changedMeanwhile) {
            report_.errors.push_back(path + ": changed during indexing; will retry");
            advance(path);
            return;
        }
        FileRecord record;
        record.path = path;
        record.name = file.file.name();
        record.kind = file.kind;
        record.size = file.attributes.size;
        record.createdAt = file.attributes.createdAt;
        record.modifiedAt = file.attributes.modifiedAt;
        record.indexedAt = context_.clock();
        record.content = std::move(read.extracted.content);
        record.contentStatus = std::move(read.extracted.status);
        record.sourceURL = file.sourceURL;
        record.downloadedAt = file.downloadedAt;
        record.rootPath = root_;
        context_.store.upsert(record);
        ++report_.indexed;
        advance(path);
    }

    void removeMissing() {
        std::vector<std::string> missing;
        known_.forEachNotMet([&](std::string_view relative) {
            std::string path = root_ + '/' + std::string(relative);
            const bool isKept =
                std::any_of(unreachable_.begin(), unreachable_.end(),
                            [&](const std::string& lost) { return isSameOrBelow(path, lost); });
            if (!isKept) missing.push_back(std::move(path));
        });
        context_.store.remove(missing);
    }

    void advance(std::string_view item) {
        if (phase_ != "Finished") ++count_;
        if (context_.progress) context_.progress({count_, item, root_, phase_});
    }

    const Context& context_;
    const std::string& root_;
    ReadingQueue& queue_;
    KnownFiles known_;
    std::shared_ptr<const FileDescriptor> directory_;
    std::vector<std::string> notScanned_;
    std::vector<std::string> unreachable_;
    std::vector<Level> levels_;
    std::vector<FileToRead> failedBefore_;
    ScanReport report_;
    std::int64_t count_ = 0;
    std::string_view phase_ = "Scanning";
};

} // namespace

std::string FileIndexer::acceptedRoot(const std::string& folder) const {
    namespace fs = std::filesystem;
    if (!isValidUtf8(folder)) {
        throw IntelligenceError::inaccessible(printable(folder) + ": the name is not valid UTF-8");
    }
    try {
        std::string path = fs::absolute(folder).lexically_normal().string();
        while (path.size() > 1 && path.back() == '/')
            path.pop_back();
        switch (platform::attributesOf(path).type) {
        case platform::FileType::directory:
            break;
        case platform::FileType::symbolicLink:
            throw IntelligenceError::inaccessible(path + ": Is a symbolic link");
        default:
            throw systemError(path, ENOTDIR);
        }
        if (::access(path.c_str(), R_OK | X_OK) != 0) throw systemError(path);
        if (!availability_.isAvailableLocally(path)) {
            throw IntelligenceError::inaccessible(path + ": Is not available locally");
        }
        path = fs::canonical(path).string();
        if (!IndexingPolicy::acceptsRoot(path)) {
            throw IntelligenceError::inaccessible(
                "System, hidden, and cache folders cannot be indexed");
        }
        return path;
    } catch (const std::system_error& error) {
        throw IntelligenceError::inaccessible(folder + ": " + error.code().message());
    }
}

ScanReport FileIndexer::scan(const std::string& root, IndexStore& store,
                             const std::vector<std::string>& exclusions, bool includeCodeContent,
                             const Progress& progress, const std::stop_token& stop) const {
    const std::string accepted = acceptedRoot(root);
    ReadingQueue queue(
        [&](FileToRead file, const std::stop_token& reading) {
            return readFile(extractor_, includeCodeContent, std::move(file), reading);
        },
        settings_.readers, stop);
    const Scan::Context context{availability_, settings_.downloadsDirectory, settings_.clock, store,
                                exclusions,    includeCodeContent,           progress,        stop};
    return Scan(context, accepted, queue).run();
}

} // namespace tovi
