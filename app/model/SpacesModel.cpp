#include "app/model/SpacesModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"

#include <algorithm>
#include <unordered_set>

namespace tovi {
namespace {

void addNew(std::vector<std::string>& paths, const QStringList& more) {
    std::unordered_set<std::string> known(paths.begin(), paths.end());
    for (const QString& each : more) {
        std::string path = fromQt(each);
        if (known.insert(path).second) paths.push_back(std::move(path));
    }
}

} // namespace

SpacesModel::SpacesModel(ModelContext& context)
    : context_(context),
      list_([](const ProjectSpace& space) { return space.id.string(); },
            {{"id", [](const ProjectSpace& space) { return toQt(space.id.string()); }},
             {"name", [](const ProjectSpace& space) { return toQt(space.name); }},
             {"count",
              [](const ProjectSpace& space) { return static_cast<int>(space.paths.size()); }}}) {}

QString SpacesModel::recentlyDeletedName() const {
    return recentlyDeletedSpace_ ? toQt(recentlyDeletedSpace_->name) : QString();
}

void SpacesModel::replace(std::vector<ProjectSpace> spaces) {
    list_.replace(std::move(spaces));
    ++spacesRevision_;
    Q_EMIT changed();
    Q_EMIT edited();
}

template <typename Change>
bool SpacesModel::change(const QString& id, Change change) {
    std::vector<ProjectSpace> spaces = list_.rows();
    const int row = list_.rowOf(id);
    if (row < 0 || !context_.isLoaded) return false;
    change(spaces, spaces.begin() + row);
    if (spaces != list_.rows()) replace(std::move(spaces));
    return true;
}

std::vector<std::string> SpacesModel::filesOf(const QString& id) const {
    const int row = list_.rowOf(id);
    return row < 0 ? std::vector<std::string>() : spaces()[static_cast<std::size_t>(row)].paths;
}

QString SpacesModel::createSpace(const QString& name, const QStringList& paths) {
    ProjectSpace space{Uuid::random(), std::string(trimmed(fromQt(name))), {}};
    if (space.name.empty() || !context_.isLoaded) return {};
    addNew(space.paths, paths);
    std::vector<ProjectSpace> spaces = list_.rows();
    spaces.push_back(space);
    replace(std::move(spaces));
    return toQt(space.id.string());
}

bool SpacesModel::renameSpace(const QString& id, const QString& name) {
    const std::string text(trimmed(fromQt(name)));
    return !text.empty() &&
           change(id, [&](std::vector<ProjectSpace>&, auto space) { space->name = text; });
}

bool SpacesModel::addToSpace(const QString& id, const QStringList& paths) {
    return change(id, [&](std::vector<ProjectSpace>&, auto space) { addNew(space->paths, paths); });
}

bool SpacesModel::removeFromSpace(const QString& id, const QStringList& paths) {
    return change(id, [&](std::vector<ProjectSpace>&, auto space) {
        std::unordered_set<std::string> gone;
        for (const QString& path : paths)
            gone.insert(fromQt(path));
        std::erase_if(space->paths, [&](const std::string& path) { return gone.contains(path); });
    });
}

bool SpacesModel::removeSpace(const QString& id) {
    return change(id, [&](std::vector<ProjectSpace>& spaces, auto space) {
        recentlyDeletedSpace_ = std::move(*space);
        spaces.erase(space);
        showNotice();
    });
}

void SpacesModel::showNotice() {
    showsDeletedSpaceNotice_ = true;
    Q_EMIT noticeChanged();
    runAfter(context_.executor, this, noticePeriod,
             [this, generation = ++projectDeletionNoticeGeneration_] {
                 if (generation == projectDeletionNoticeGeneration_) forgetDeletedSpace();
             });
}

void SpacesModel::forgetDeletedSpace() {
    ++projectDeletionNoticeGeneration_;
    showsDeletedSpaceNotice_ = false;
    recentlyDeletedSpace_.reset();
    Q_EMIT noticeChanged();
    Q_EMIT edited();
}

bool SpacesModel::restoreDeletedSpace() {
    if (!recentlyDeletedSpace_) return false;
    std::vector<ProjectSpace> spaces = list_.rows();
    spaces.push_back(*recentlyDeletedSpace_);
    forgetDeletedSpace();
    replace(std::move(spaces));
    return true;
}

void SpacesModel::dismissDeletedSpaceNotice() {
    if (!showsDeletedSpaceNotice_) return;
    ++projectDeletionNoticeGeneration_;
    showsDeletedSpaceNotice_ = false;
    Q_EMIT noticeChanged();
}

void SpacesModel::restore(const Preferences& preferences) {
    list_.replace(preferences.spaces);
    ++spacesRevision_;
    recentlyDeletedSpace_ = preferences.recentlyDeletedSpace;
    Q_EMIT changed();
    Q_EMIT noticeChanged();
}

void SpacesModel::storeIn(Preferences& preferences) const {
    preferences.spaces = list_.rows();
    preferences.recentlyDeletedSpace = recentlyDeletedSpace_;
}

void SpacesModel::moveFiles(const std::string& from, const std::string& to) {
    std::vector<ProjectSpace> spaces = list_.rows();
    for (ProjectSpace& space : spaces) {
        for (std::string& path : space.paths) {
            if (isSameOrBelow(path, from)) path.replace(0, from.size(), to);
        }
    }
    if (spaces != list_.rows()) replace(std::move(spaces));
}

} // namespace tovi
