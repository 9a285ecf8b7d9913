#include "app/model/DuplicatesModel.h"

#include "app/lists/QtConversions.h"
#include "app/lists/RecordList.h"
#include "base/Cancelled.h"

#include <algorithm>
#include <utility>

namespace tovi {
namespace {

using Group = DuplicateGroups::value_type;

constexpr std::size_t pageSize = 200;
constexpr int mostFilesShown = 8; // of a group

/// The one that stays and some others.
QVariantList valuesOf(const Group& group, std::size_t stays) {
    QVariantList files{toVariantMap(group->files[stays])};
    for (const FileRecord& file : group->files) {
        if (files.size() == mostFilesShown) break;
        if (&file != &group->files[stays]) files.append(toVariantMap(file));
    }
    return files;
}

std::string digestOf(const Group& group) {
    return group->files.front().sha256.value_or(group->files.front().path);
}

void addGroup(CopiesToTrash& copies, const DuplicateGroup& group, KeepRule rule) {
    std::vector<bool> stays(group.files.size());
    stays[keptBy(rule, group.files)] = true;
    copies.addGroup(group.files, stays);
}

} // namespace

DuplicateList::DuplicateList(std::vector<Role> roles)
    : DifferenceListModel(digestOf, std::move(roles)) {}

SharedGroups DuplicateList::show(SharedGroups groups) {
    SharedGroups before = std::exchange(all_, std::move(groups));
    const std::size_t shown = std::min(std::max(rows().size(), pageSize), all_->size());
    replace({all_->begin(), all_->begin() + static_cast<std::ptrdiff_t>(shown)});
    return before;
}

void DuplicateList::changeValues() {
    if (count() > 0) Q_EMIT dataChanged(index(0, 0), index(count() - 1, 0));
}

bool DuplicateList::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && rows().size() < all_->size();
}

void DuplicateList::fetchMore(const QModelIndex& parent) {
    if (!canFetchMore(parent)) return;
    const auto begin = all_->begin() + static_cast<std::ptrdiff_t>(rows().size());
    const auto left = static_cast<std::size_t>(all_->end() - begin);
    append({begin, begin + static_cast<std::ptrdiff_t>(std::min(left, pageSize))});
}

DuplicatesModel::DuplicatesModel(ModelContext& context, const platform::Availability& availability)
    : context_(context),
      availability_(availability),
      list_({
          {"digest", [](const Group& group) { return toQt(digestOf(group)); }},
          {"files",
           [this](const Group& group) { return valuesOf(group, keptBy(keep_, group->files)); }},
          {"count", [](const Group& group) { return static_cast<int>(group->files.size()); }},
          {"size",
           [](const Group& group) {
               return QVariant::fromValue<qint64>(group->files.front().size);
           }},
          {"reclaimableBytes",
           [](const Group& group) { return QVariant::fromValue<qint64>(group->reclaimableBytes); }},
      }) {}

QString DuplicatesModel::keep() const {
    return toQt(rawValue(keep_));
}

void DuplicatesModel::setKeep(const QString& rule) {
    const auto wanted = keepRule(fromQt(rule));
    if (!wanted || *wanted == keep_) return;
    keep_ = *wanted;
    list_.changeValues();
    Q_EMIT changed();
}

DuplicatesModel::InPlace DuplicatesModel::inPlace(const DuplicateGroups& found,
                                                  const std::stop_token& stop) {
    DuplicateGroups groups;
    std::int64_t reclaimableBytes = 0;
    for (const Group& group : found) {
        throwIfCancelled(stop);
        DuplicateGroup left = filesInPlace(*group);
        if (left.files.size() < 2) continue;
        reclaimableBytes += left.reclaimableBytes;
        const bool isWhole = left.files.size() == group->files.size();
        groups.push_back(isWhole ? group : std::make_shared<const DuplicateGroup>(std::move(left)));
    }
    return {std::make_shared<const DuplicateGroups>(std::move(groups)), reclaimableBytes};
}

DuplicatesModel::Result DuplicatesModel::resultOf(ExactDuplicates found) {
    std::stable_sort(found.groups.begin(), found.groups.end(),
                     [](const DuplicateGroup& left, const DuplicateGroup& right) {
                         return left.reclaimableBytes > right.reclaimableBytes;
                     });
    DuplicateGroups groups;
    std::int64_t reclaimableBytes = 0;
    for (DuplicateGroup& group : found.groups) {
        reclaimableBytes += group.reclaimableBytes;
        groups.push_back(std::make_shared<const DuplicateGroup>(std::move(group)));
    }
    const auto shared = std::make_shared<const DuplicateGroups>(std::move(groups));
    return {shared, {shared, reclaimableBytes}, found.unreadable};
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
            return resultOf(exactDuplicates(
                files, availability,
                [&](std::size_t done, std::size_t total) {
                    progress.set({done, total});
                },
                stop));
        },
        [this](Outcome<Result> outcome) {
            isFindingDuplicates_ = false;
            if (outcome) {
                unreadable_ = outcome.value->unreadable;
                show(std::move(outcome.value->found), std::move(outcome.value->inPlace));
            } else if (!outcome.isCancelled) {
                context_.notices.setError(outcome.error);
            }
            Q_EMIT changed();
            if (std::exchange(isCheckDue_, false)) checkPlaces();
        });
}

void DuplicatesModel::checkPlaces() {
    isCheckDue_ = isFindingDuplicates_;
    if (isFindingDuplicates_ || !found_) return;
    runLatest(
        context_.executor, this, duplicateGeneration_,
        [found = found_](const std::stop_token& stop) { return inPlace(*found, stop); },
        [this](Outcome<InPlace> outcome) {
            if (!outcome) return;
            show(found_, *std::move(outcome.value));
            Q_EMIT changed();
        });
}

void DuplicatesModel::show(SharedGroups found, InPlace inPlace) {
    reclaimableBytes_ = inPlace.reclaimableBytes;
    // Taking the memory of tens of thousands of groups apart is work for another thread.
    context_.executor.run([before = std::exchange(found_, std::move(found)),
                           shown = list_.show(std::move(inPlace.groups))]() mutable {
        before.reset();
        shown.reset();
    });
}

void DuplicatesModel::cancel() {
    duplicateGeneration_.cancel();
    if (!std::exchange(isFindingDuplicates_, false)) return;
    Q_EMIT changed();
    if (std::exchange(isCheckDue_, false)) checkPlaces();
}

void DuplicatesModel::clear() {
    duplicateGeneration_.cancel();
    isFindingDuplicates_ = false;
    isCheckDue_ = false;
    unreadable_ = 0;
    show(nullptr, {});
    Q_EMIT changed();
}

std::function<CopiesToTrash()> DuplicatesModel::copies(const QString& digest) const {
    return [groups = groups(), rule = keep_, digest = fromQt(digest)] {
        CopiesToTrash copies;
        for (const Group& group : *groups) {
            const bool isChosen =
                digest.empty() ? group->reclaimableBytes > 0 : digestOf(group) == digest;
            if (isChosen) addGroup(copies, *group, rule);
        }
        return copies;
    };
}

} // namespace tovi
