#pragma once

#include "app/browser/FolderBrowserModel.h"
#include "app/installed/InstalledModel.h"
#include "app/library/DownloadsModel.h"
#include "app/library/EvidenceModel.h"
#include "app/library/ExcerptsModel.h"
#include "app/library/GraphModel.h"
#include "app/library/PreviewModel.h"
#include "app/library/SpaceFilesModel.h"
#include "app/library/TimelineModel.h"
#include "app/model/AppModel.h"
#include "app/photos/SimilarPhotosModel.h"
#include "app/runtime/Runtime.h"

namespace tovi {

/// The models of single screens, beside the running state whose index they follow. QML knows them
/// as Downloads, Evidence, Timeline, Graph, Preview, Excerpts, SpaceFiles, LookAlikes, Installed
/// and Browser, and this as Screens.
class ScreenModels : public QObject {
    Q_OBJECT

  public:
    ScreenModels(AppModel& model, Runtime& runtime);

    /// Compares the indexed pictures of one connected folder, or of all of them if it is empty;
    /// again, with what was marked, after files were moved.
    Q_INVOKABLE void findLookAlikes(const QString& folder) { compare(folder, {}); }

  Q_SIGNALS:
    /// The models read another index, or none. Comes after `AppModel::loaded`, which QML hears
    /// before they do.
    void indexChanged();

  private:
    void followIndex();
    void compare(const QString& folder, std::set<std::string> marked);
    void compareAgain() { compare(comparedFolder_, lookAlikes_.selectedIDs()); }

    AppModel& model_;
    Executor& executor_;
    DownloadsModel downloads_;
    EvidenceModel evidence_;
    TimelineModel timeline_;
    GraphModel graph_;
    PreviewModel preview_;
    ExcerptsModel excerpts_;
    SpaceFilesModel spaceFiles_;
    SimilarPhotosModel lookAlikes_;
    InstalledModel installed_;
    FolderBrowserModel browser_;
    SharedIndex index_;
    QString comparedFolder_;
    Generation picturesGeneration_;
};

} // namespace tovi
