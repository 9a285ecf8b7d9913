#include "app/model/SpacesModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"

#include <algorithm>

namespace tovi {
namespace {

QStringList toQt(const std::vector<std::string>& texts) {
    QStringList list;
    for (const std::string& text : texts)
        list.append(tovi::toQt(text));
    return list;
}

void addNew(std::vector<std::string>& paths, const QStringList& more) {
    for (const QString& path : more) {
        if (std::find(paths.begin(), paths.end(), fromQt(path)) == paths.end()) {
            paths.push_back(fromQt(path));
        }
    }
}

} // namespace

SpacesModel::SpacesModel(ModelContext& context)
    : context_(context),
      list_([](const ProjectSpace& space) { return space.id.string(); },
            {{"id", [](const ProjectSpace& space) { return tovi::toQt(space.id.string()); }},
             {"name", [](const ProjectSpace& space) { return tovi::toQt(space.name); }},
             {"paths", [](const ProjectSpace& space) { return toQt(space.paths); }},
             {"count",
              [](const ProjectSpace& space) { return static_cast<int>(space.paths.size()); }}}) {}

QString SpacesModel::recentlyDeletedName() const {
    return recentlyDeletedSpace_ ? tovi::toQt(recentlyDeletedSpace_->name) : QString();
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

QString SpacesModel::createSpace(const QString& name, const QStringList& paths) {
    ProjectSpace space{Uuid::random(), std::string(trimmed(fromQt(name))), {}};
    if (space.name.empty() || !context_.isLoaded) return {};
    addNew(space.paths, paths);
    std::vector<ProjectSpace> spaces = list_.rows();
    spaces.push_back(space);
    replace(std::move(spaces));
    return tovi::toQt(space.id.string());
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
        std::erase_if(space->paths,
                      [&](const std::string& path) { return paths.contains(tovi::toQt(path)); });
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
