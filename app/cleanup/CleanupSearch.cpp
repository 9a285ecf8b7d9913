#include "app/cleanup/CleanupSearch.h"

#include "base/Text.h"
#include "core/cleanup/CandidateHeap.h"
#include "core/files/AuthorizedFolders.h"

#include <algorithm>
#include <optional>

namespace tovi {
namespace {

/// The chosen folder, else the connected ones that do not lie in another.
std::vector<std::string> rootsOf(const CleanupSearch& search) {
    if (!search.folder.empty()) {
        const auto resolved = canonicalPath(search.folder);
        if (!resolved || !AuthorizedFolders(search.connected).contains(*resolved)) {
            throw CleanupScanError("This folder is not in your connected folders: " +
                                   search.folder);
        }
        return {*resolved};
    }
    std::vector<std::string> roots = search.connected;
    std::sort(roots.begin(), roots.end());
    std::vector<std::string> outermost;
    for (std::string& root : roots) {
        const bool isInside =
            std::any_of(outermost.begin(), outermost.end(),
                        [&](const std::string& outer) { return isSameOrBelow(root, outer); });
        if (!isInside) outermost.push_back(std::move(root));
    }
    return outermost;
}

void append(CleanupReport& all, const CleanupReport& one) {
    all.scannedFiles += one.scannedFiles;
    all.scannedBytes += one.scannedBytes;
    all.skippedCount += one.skippedCount;
    all.issues.insert(all.issues.end(), one.issues.begin(), one.issues.end());
    // Some say more than others of what was measured.
    if (one.notice.size() > all.notice.size()) all.notice = one.notice;
    all.isPartial = all.isPartial || one.isPartial;
    all.reachedLimit = all.reachedLimit || one.reachedLimit;
    all.finishedAt = one.finishedAt;
}

} // namespace

CleanupFindings searchForCleanup(const CleanupSearch& search, const CleanupScanner& scanner,
                                 const std::function<void(const CleanupSearchProgress&)>& progress,
                                 const std::stop_token& stop) {
    const std::vector<std::string> roots = rootsOf(search);
    std::optional<CleanupReport> report;
    std::vector<std::string> unread;
    std::int64_t entriesBefore = 0;
    CleanupScan scan;
    scan.folders = search.folders;
    scan.excludedPaths = search.excludedPaths;
    scan.now = search.now;
    CandidateHeap best(scan.candidateLimit);
    for (const std::string& root : roots) {
        scan.root = root;
        std::int64_t entries = 0;
        try {
            CleanupReport one = scanner.scan(
                scan,
                [&](const CleanupProgress& step) {
                    entries = step.entries;
                    progress({entriesBefore + entries, step.path});
                },
                stop);
            for (CleanupCandidate& candidate : std::exchange(one.candidates, {}))
                best.insert(std::move(candidate));
            report ? append(*report, one) : void(report = std::move(one));
        } catch (const CleanupScanError& error) {
            unread.emplace_back(error.what());
        }
        entriesBefore += entries;
    }
    if (!report) throw CleanupScanError(unread.empty() ? "No folder is connected." : unread[0]);
    report->isPartial = report->isPartial || !unread.empty();
    report->issues.insert(report->issues.end(), unread.begin(), unread.end());
    CleanupFindings findings{*std::move(report), {}};
    for (CleanupCandidate& candidate : best.take())
        findings.candidates[static_cast<std::size_t>(candidate.category)].push_back(
            std::move(candidate));
    if (best.moreMatched() > 0) {
        findings.report.issues.push_back(
            "Showing the largest " + std::to_string(scan.candidateLimit) + " review candidates; " +
            std::to_string(best.moreMatched()) +
            " more matched. Choose a narrower folder to see them.");
    }
    return findings;
}

} // namespace tovi
