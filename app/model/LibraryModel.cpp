#include "app/model/LibraryModel.h"

#include "app/lists/QtConversions.h"
#include "core/indexing/ContentExtractor.h"

namespace tovi {
namespace {

constexpr double recentPeriod = 7 * 86'400.0;   // seconds
constexpr std::int64_t largeFile = 100'000'000; // bytes
constexpr std::int64_t mostRecent = 6;

SearchQuery libraryQuery(std::optional<FileKind> kind, const QString& preset, Date now) {
    SearchQuery query;
    query.kind = kind;
    if (preset == QStringLiteral("recent")) query.modifiedAfter = now - recentPeriod;
    if (preset == QStringLiteral("large")) query.minimumSize = largeFile;
    query.screenshotsOnly = preset == QStringLiteral("screenshots");
    return query;
}

} // namespace

LibraryModel::LibraryModel(ModelContext& context) : context_(context), pages_(context) {
    connect(&pages_, &RecordPages::changed, this, &LibraryModel::filesChanged);
    connect(&pages_, &RecordPages::failed, this, [this](const QString& error) {
        context_.notices.setError(errorPrefix_ + fromQt(error));
    });
}

QVariantMap LibraryModel::librarySummary() const {
    QVariantList kinds;
    for (const auto& [kind, count] : summary_.filesByKind) {
        kinds.append(QVariantMap{{QStringLiteral("kind"), toQt(rawValue(kind))},
                                 {QStringLiteral("title"), toQt(title(kind))},
                                 {QStringLiteral("symbol"), toQt(symbol(kind))},
                                 {QStringLiteral("count"), QVariant::fromValue<qint64>(count)}});
    }
    QVariantList roots;
    for (const auto& [root, count] : summary_.filesByRoot) {
        roots.append(QVariantMap{{QStringLiteral("path"), toQt(root)},
                                 {QStringLiteral("count"), QVariant::fromValue<qint64>(count)}});
    }
    std::int64_t unread = 0;
    for (const auto& [status, count] : summary_.filesByStatus) {
        if (status.starts_with(contentStatus::failed)) unread += count;
    }
    return {{QStringLiteral("total"), QVariant::fromValue<qint64>(summary_.total())},
            {QStringLiteral("unread"), QVariant::fromValue<qint64>(unread)},
            {QStringLiteral("databaseSize"), QVariant::fromValue<qint64>(summary_.databaseSize)},
            {QStringLiteral("kinds"), kinds},
            {QStringLiteral("roots"), roots}};
}

QString LibraryModel::libraryKindName() const {
    return libraryKind_ ? toQt(rawValue(*libraryKind_)) : QString();
}

void LibraryModel::setLibraryKindName(const QString& kind) {
    const auto chosen = fileKindFromRawValue(fromQt(kind));
    if (chosen == libraryKind_) return;
    libraryKind_ = chosen;
    Q_EMIT filterChanged();
    show();
}

void LibraryModel::setLibraryPreset(const QString& preset) {
    if (preset == libraryPreset_) return;
    libraryPreset_ = preset;
    Q_EMIT filterChanged();
    show();
}

void LibraryModel::setDownloadSourceSelection(const QString& source) {
    if (source == downloadSourceSelection_) return;
    downloadSourceSelection_ = source;
    Q_EMIT filterChanged();
}

void LibraryModel::show() {
    errorPrefix_.clear();
    pages_.show([kind = libraryKind_, preset = libraryPreset_, now = context_.executor.now()] {
        return libraryQuery(kind, preset, now);
    });
}

void LibraryModel::reloadPage(const std::string& errorPrefix) {
    if (!pages_.query()) show();
    errorPrefix_ = errorPrefix;
    if (pages_.query()) pages_.reload();
}

void LibraryModel::refresh(const std::string& errorPrefix) {
    reloadPage(errorPrefix);
    if (!context_.index) return;
    runLatest(
        context_.executor, this, recentGeneration_,
        [index = context_.index](const std::stop_token& stop) {
            return index->reader.search({}, mostRecent, 0, IndexStore::Content::leftOut, stop);
        },
        [this](Outcome<std::vector<FileRecord>> outcome) { // a failure is told by the page
            if (outcome) recent_.replace(*std::move(outcome.value));
        });
    runLatest(
        context_.executor, this, summaryGeneration_,
        [index = context_.index](const std::stop_token&) { return index->counter.summary(); },
        [this, errorPrefix](Outcome<IndexSummary> outcome) {
            if (outcome.isCancelled) return;
            if (!outcome) return context_.notices.setError(errorPrefix + outcome.error);
            summary_ = *std::move(outcome.value);
            Q_EMIT summaryChanged();
        });
}

void LibraryModel::clear() {
    pages_.clear();
    summaryGeneration_.cancel();
    summary_ = {};
    recentGeneration_.cancel();
    recent_.replace({});
    Q_EMIT summaryChanged();
}

void LibraryModel::loadMoreFiles() {
    pages_.loadMore();
}

} // namespace tovi
