#include "base/Cancelled.h"
#include "core/library/DownloadGroups.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FileRecord file(const std::string& path, std::optional<std::string> source = std::nullopt,
                double modified = 0, std::optional<double> downloaded = std::nullopt) {
    FileRecord record;
    record.path = path;
    record.sourceURL = std::move(source);
    record.modifiedAt = {modified};
    if (downloaded) record.downloadedAt = Date{*downloaded};
    return record;
}

/// Each group as its id, name, symbol and paths.
std::vector<std::string> described(const std::vector<FileRecord>& files) {
    std::vector<std::string> lines;
    for (const DownloadGroup& group : DownloadGroups::make(files)) {
        lines.push_back(group.id + "|" + group.name + "|" + group.symbol + ":");
        for (const FileRecord& member : group.files)
            lines.back() += " " + member.path;
    }
    return lines;
}

TEST(DownloadGroups, TakesWhatWasDownloaded) {
    FileRecord folder = file("/Downloads/folder", "https://slack.com/x");
    folder.kind = FileKind::folder;
    EXPECT_THAT(described({folder}), IsEmpty());
    EXPECT_THAT(described({folder, file("/plain"), file("/h/downloads/a"), file("/h/MyDownloads/a"),
                           file("/h/Downloads.old/a")}),
                IsEmpty());
    EXPECT_THAT(described({file("/a", "ftp://example.org/x"), file("/h/Downloads/sub/b"),
                           file("/c", std::nullopt, 0, 1), file("/d/Downloads"),
                           file("/h/XDownloads/Downloads/e"), file("/f", "")}),
                ElementsAre("unknown|Other downloads|arrow.down.circle: /c /a /d/Downloads /f "
                            "/h/Downloads/sub/b /h/XDownloads/Downloads/e"));
}

TEST(DownloadGroups, OrdersGroupsBySizeThenNameAndOthersLast) {
    const std::string chatgpt = "https://chatgpt.com/1";
    const std::string claude = "https://claude.ai/1";
    EXPECT_THAT(
        described({file("/Downloads/1"), file("/Downloads/2"), file("/Downloads/3"),
                   file("/4", "https://www.example.org/"), file("/5", claude), file("/6", chatgpt),
                   file("/7", "https://files.slack.com/a"), file("/8", "https://slack.com/b")}),
        ElementsAre("slack|Slack|bubble.left.and.bubble.right: /7 /8",
                    "chatgpt|ChatGPT|sparkles: /6", "claude|Claude|sun.max: /5",
                    "example.org|example.org|globe: /4",
                    "unknown|Other downloads|arrow.down.circle: /Downloads/1 /Downloads/2 "
                    "/Downloads/3"));
}

TEST(DownloadGroups, OrdersFilesByTheirEffectiveDate) {
    const std::string source = "https://example.org/";
    EXPECT_THAT(described({file("/b", source, 5), file("/a", source, 5),
                           file("/modified", source, 900, 3), file("/newest", source, 1, 9)}),
                ElementsAre("example.org|example.org|globe: /newest /a /b /modified"));
}

TEST(DownloadGroups, StopsWhenCancelled) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(DownloadGroups::make({file("/a")}, stop.get_token()), Cancelled);
    EXPECT_THAT(DownloadGroups::make({}, stop.get_token()), IsEmpty());
}

} // namespace
} // namespace tovi
