#include "app/model/DuplicatesModel.h"

#include "app/lists/QtConversions.h"
#include "app/lists/RecordList.h"

#include <QSet>
#include <QStringList>

namespace tovi {
namespace {

QVariantList valuesOf(const DuplicateGroup& group) {
    QVariantList files;
    for (const FileRecord& file : group.files)
        files.append(toVariantMap(file));
    return files;
}

std::string digestOf(const DuplicateGroup& group) {
    return group.files.front().sha256.value_or(group.files.front().path);
}

} // namespace

DuplicatesModel::DuplicatesModel(ModelContext& context, const platform::Availability& availability)
    : context_(context),
      availability_(availability),
      list_(digestOf,
            {{"digest", [](const DuplicateGroup& group) { return toQt(digestOf(group)); }},
             {"files", valuesOf},
             {"count",
              [](const DuplicateGroup& group) { return static_cast<int>(group.files.size()); }},
             {"size",
              [](const DuplicateGroup& group) {
                  return QVariant::fromValue<qint64>(group.files.front().size);
              }},
             {"reclaimableBytes", [](const DuplicateGroup& group) {
                  return QVariant::fromValue<qint64>(group.reclaimableBytes);
              }}}) {}

qint64 DuplicatesModel::reclaimableBytes() const {
    qint64 bytes = 0;
    for (const DuplicateGroup& group : groups())
        bytes += group.reclaimableBytes;
    return bytes;
}

void DuplicatesModel::findDuplicates() {
    if (!context_.index) return;
    isFindingDuplicates_ = true;
    progress_ = {};
    Q_EMIT changed();
    Q_EMIT progressChanged();
    duplicateGeneration_.cancel();
    const LatestValue<Progress> progress(
        context_.executor, this,
        [this, stamp = duplicateGeneration_.stamp() + 1](const Progress& step) {
            if (stamp != duplicateGeneration_.stamp() || !isFindingDuplicates_) return;
            progress_ = step;
            Q_EMIT progressChanged();
        });
    runLatest(
        context_.executor, this, duplicateGeneration_,
        [index = context_.index, progress,
         &availability = availability_](const std::stop_token& stop) {
            const std::vector<FileRecord> files = index->counter.filesSharingSize(stop);
            return exactDuplicates(
                files, availability,
                [&](std::size_t done, std::size_t total) {
                    progress.set({done, total});
                },
                stop);
        },
        [this](Outcome<ExactDuplicates> outcome) {
            isFindingDuplicates_ = false;
            if (outcome) {
                hasSearched_ = true;
                unreadable_ = outcome.value->unreadable;
                list_.replace(std::move(outcome.value->groups));
            } else if (!outcome.isCancelled) {
                context_.notices.setError(outcome.error);
            }
            Q_EMIT changed();
        });
}

void DuplicatesModel::cancel() {
    duplicateGeneration_.cancel();
    if (!std::exchange(isFindingDuplicates_, false)) return;
    Q_EMIT changed();
}

void DuplicatesModel::clear() {
    duplicateGeneration_.cancel();
    isFindingDuplicates_ = false;
    hasSearched_ = false;
    unreadable_ = 0;
    list_.replace({});
    Q_EMIT changed();
}

std::vector<FileRecord> DuplicatesModel::records(const QStringList& paths) const {
    const QSet<QString> wanted(paths.begin(), paths.end());
    std::vector<FileRecord> files;
    for (const DuplicateGroup& group : groups()) {
        for (const FileRecord& file : group.files) {
            if (wanted.contains(toQt(file.path))) files.push_back(file);
        }
    }
    return files;
}

} // namespace tovi
