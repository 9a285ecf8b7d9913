#include "core/library/DownloadGroups.h"

#include "base/Cancelled.h"
#include "core/records/DownloadOrigin.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace tovi {
namespace {

const DownloadOrigin unknownOrigin{"unknown", "Other downloads", "arrow.down.circle"};

bool hasDownloadsComponent(std::string_view path) {
    constexpr std::string_view name = "Downloads";
    for (auto at = path.find(name); at != std::string_view::npos; at = path.find(name, at + 1)) {
        const std::size_t end = at + name.size();
        const bool begins = at == 0 || path[at - 1] == '/';
        if (begins && (end == path.size() || path[end] == '/')) return true;
    }
    return false;
}

DownloadOrigin originOf(const FileRecord& download) {
    std::optional<DownloadOrigin> origin;
    if (download.sourceURL) origin = DownloadOrigin::from(*download.sourceURL);
    return origin.value_or(unknownOrigin);
}

bool precedes(const DownloadGroup& left, const DownloadGroup& right) {
    const bool leftIsLast = left.id == unknownOrigin.id;
    const bool rightIsLast = right.id == unknownOrigin.id;
    if (leftIsLast != rightIsLast) return rightIsLast;
    if (left.files.size() != right.files.size()) return left.files.size() > right.files.size();
    return left.name < right.name;
}

} // namespace

bool isDownload(const FileRecord& file) {
    if (file.kind == FileKind::folder) return false;
    return file.sourceURL || file.downloadedAt || hasDownloadsComponent(file.path);
}

bool isLaterDownload(const FileRecord& left, const FileRecord& right) {
    const Date leftDate = effectiveDate(left);
    const Date rightDate = effectiveDate(right);
    return leftDate != rightDate ? leftDate > rightDate : left.path < right.path;
}

std::vector<DownloadGroup> DownloadGroups::make(std::vector<FileRecord> files,
                                                const std::stop_token& stop) {
    struct Members {
        DownloadOrigin origin;
        std::vector<FileRecord*> files;
    };
    std::map<std::string, Members> members;
    for (FileRecord& file : files) {
        throwIfCancelled(stop);
        if (!isDownload(file)) continue;
        DownloadOrigin origin = originOf(file);
        Members& group = members[origin.id];
        group.origin = std::move(origin);
        group.files.push_back(&file);
    }

    std::vector<DownloadGroup> groups;
    for (auto& [id, group] : members) {
        throwIfCancelled(stop);
        std::sort(group.files.begin(), group.files.end(), [](const auto* left, const auto* right) {
            return isLaterDownload(*left, *right);
        });
        DownloadGroup result{id, std::move(group.origin.name), std::move(group.origin.symbol), {}};
        result.files.reserve(group.files.size());
        for (FileRecord* file : group.files)
            result.files.push_back(std::move(*file));
        groups.push_back(std::move(result));
    }
    std::sort(groups.begin(), groups.end(), precedes);
    return groups;
}

} // namespace tovi
