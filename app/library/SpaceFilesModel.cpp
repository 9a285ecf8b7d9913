#include "app/library/SpaceFilesModel.h"

#include "app/lists/QtConversions.h"
#include "core/library/LibraryOrder.h"

#include <algorithm>

namespace tovi {

SpaceFilesModel::SpaceFilesModel(Executor& executor, Members members)
    : executor_(executor), membersOf_(std::move(members)) {}

void SpaceFilesModel::setIndex(std::shared_ptr<IndexStore> index) {
    generation_.cancel();
    index_ = std::move(index);
    show({}, false);
}

void SpaceFilesModel::setSpace(const QString& id) {
    if (id == space_) return;
    space_ = id;
    Q_EMIT spaceChanged();
    show({}, false);
    refresh();
}

int SpaceFilesModel::countOutside(const QStringList& paths) const {
    return static_cast<int>(std::count_if(paths.begin(), paths.end(), [this](const QString& path) {
        return !members_.contains(fromQt(path));
    }));
}

void SpaceFilesModel::refresh() {
    if (!index_) return;
    runLatest(
        executor_, this, generation_,
        [index = index_, paths = membersOf_(space_)](const std::stop_token& stop) mutable {
            std::sort(paths.begin(), paths.end());
            Loaded loaded;
            loaded.files = index->records(paths, stop); // in their order
            auto known = loaded.files.begin();
            for (const std::string& path : paths) {
                if (known != loaded.files.end() && known->path == path)
                    ++known;
                else
                    loaded.absent.append(toQt(path));
            }
            sortFiles(loaded.files, LibraryOrder::name);
            loaded.members.insert(paths.begin(), paths.end());
            return loaded;
        },
        [this](Outcome<Loaded> outcome) {
            if (outcome) show(*std::move(outcome.value), true);
        });
}

void SpaceFilesModel::show(Loaded loaded, bool hasLoaded) {
    members_ = std::move(loaded.members);
    files_.replace(std::move(loaded.files));
    absent_ = std::move(loaded.absent);
    hasLoaded_ = hasLoaded;
    Q_EMIT changed();
}

} // namespace tovi
