#include "core/cleanup/CleanupScanner.h"

#include "base/Text.h"
#include "core/cleanup/CandidateHeap.h"
#include "core/cleanup/MountRules.h"
#include "platform/DirectoryWalker.h"

#include <fmt/format.h>

namespace tovi {
namespace {

using platform::FileType;

constexpr const char* notice =
    "Symbolic links, hidden or credential paths, Trash, Vault and Tovi storage are excluded. Apps "
    "without old recorded-use evidence are omitted. Startup-disk scans also omit duplicate "
    "Data-volume paths and other mounted volumes.";
constexpr const char* partialSizes = " The shown size includes only components that were measured.";
constexpr std::size_t mostIssues = 500;
constexpr std::size_t progressInterval = 512; // entries

class Walk final : public platform::WalkVisitor {
  public:
    struct LimitReached {};

    Walk(const CleanupScan& request, const CleanupContext& context, MountRules mounts,
         CleanupReport& report, const CleanupScanner::Progress& progress,
         const std::stop_token& stop)
        : request_(request),
          context_(context),
          policy_(context, request.now),
          mounts_(std::move(mounts)),
          heap_(request.candidateLimit),
          report_(report),
          progress_(progress),
          stop_(stop) {}

    void enter(const platform::WalkDirectory&) override {}
    void leave() override {}

    Step visit(platform::WalkItem& item) override {
        if (entries_ >= request_.entryLimit) throw LimitReached{};
        ++entries_;
        if (progress_ && entries_ % progressInterval == 0) {
            progress_({static_cast<std::int64_t>(entries_), report_.scannedFiles,
                       report_.scannedBytes, item.path()});
        }
        switch (item.type()) {
        case FileType::regular:
            visitFile(item);
            return Step::skip;
        case FileType::directory:
            return visitFolder(item);
        default:
            ++report_.skippedCount;
            return Step::skip;
        }
    }

    void failed(const std::string& path, const std::system_error& error) override {
        if (error.code() == std::errc::no_such_file_or_directory) return; // gone in the meantime
        addIssue(path, ": could not enumerate this location.");
        report_.isPartial = true;
    }

    void finish() {
        if (entries_ >= request_.entryLimit) {
            report_.reachedLimit = report_.isPartial = true;
            report_.issues.push_back(
                fmt::format("Scan stopped at the {}-entry limit. Choose a narrower folder to "
                            "inspect the rest.",
                            request_.entryLimit));
        }
        report_.candidates = heap_.take();
        if (heap_.moreMatched() > 0) {
            report_.issues.push_back(
                fmt::format("Showing the largest {} review candidates; {} more matched. Choose a "
                            "narrower folder to see them.",
                            report_.candidates.size(), heap_.moreMatched()));
        }
        if (furtherIssues_ > 0) {
            report_.issues.push_back(
                fmt::format("{} more locations have issues of these kinds.", furtherIssues_));
        }
        report_.notice = notice;
        if (hasPartialSizes_) report_.notice += partialSizes;
    }

  private:
    void visitFile(platform::WalkItem& item) {
        if (item.name().front() == '.') {
            ++report_.skippedCount;
            return;
        }
        const platform::FileAttributes& attributes = item.attributes();
        ++report_.scannedFiles;
        report_.scannedBytes += attributes.size;
        propose(item);
    }

    Step visitFolder(platform::WalkItem& item) {
        const std::string& path = item.path();
        if (const auto reason = mounts_.reasonToSkip(path)) {
            ++report_.skippedCount;
            addIssue(path, ": " + *reason);
            return Step::skip;
        }
        if (isApplicationName(item.name())) {
            propose(item);
            return Step::skip;
        }
        if (policy_.excludesFolder(path)) {
            ++report_.skippedCount;
            return Step::skip;
        }
        if (!context_.availability.isAvailableLocally(
                path, platform::ExtendedAttributes(item.path(), item.directory()))) {
            addIssue(path, ": cloud-only folder was not downloaded.");
            return Step::skip;
        }
        return Step::descend;
    }

    void propose(platform::WalkItem& item) {
        auto candidate =
            policy_.candidate({item.path(), item.directory(), item.attributes()}, stop_);
        if (!candidate) return;
        if (!isValidUtf8(candidate->path)) {
            addIssue(printable(candidate->path),
                     ": the name is not valid UTF-8 and cannot be listed.");
            return;
        }
        hasPartialSizes_ = hasPartialSizes_ || !candidate->isWholeMeasured;
        heap_.insert(std::move(*candidate));
    }

    void addIssue(const std::string& path, const std::string& text) {
        if (report_.issues.size() < mostIssues) {
            report_.issues.push_back(path + text);
        } else {
            ++furtherIssues_;
        }
    }

    const CleanupScan& request_;
    const CleanupContext& context_;
    CleanupPolicy policy_;
    MountRules mounts_;
    CandidateHeap heap_;
    CleanupReport& report_;
    const CleanupScanner::Progress& progress_;
    const std::stop_token& stop_;
    std::size_t entries_ = 0;
    std::size_t furtherIssues_ = 0;
    bool hasPartialSizes_ = false;
};

} // namespace

CleanupReport CleanupScanner::scan(const CleanupScan& request, const Progress& progress,
                                   const std::stop_token& stop) const {
    CleanupReport report;
    report.startedAt = clock_();
    const CleanupContext context(request.root, request.folders, request.excludedPaths, metadata_,
                                 availability_);
    report.rootPath = context.root;
    const CleanupScanError unscannable("This folder could not be scanned: " + request.root);
    const CleanupPolicy policy(context, request.now);
    if (policy.excludesPlace(context.root + "/")) throw unscannable;
    Walk walk(request, context, MountRules(context.root, mounts_), report, progress, stop);
    try {
        platform::walkDirectory(context.root, walk, stop);
    } catch (const Walk::LimitReached&) {
        // What was found until here is the report.
    } catch (const std::system_error&) {
        throw unscannable;
    }
    walk.finish();
    report.finishedAt = clock_();
    return report;
}

} // namespace tovi
