#include "ui/desktop/ScreenModels.h"

#include "app/lists/QtConversions.h"

#include <QQmlEngine>
#include <QStringList>
#include <utility>

#include <fmt/format.h>

namespace tovi {
namespace {

constexpr std::int64_t mostPicturesLookedAt = 20'000; // of which the newest are compared

SimilarPhotosModel::Scanner scannerOf(Runtime& runtime) {
    // Kept by the scans, which may outlive the model for a moment.
    const auto cache = std::make_shared<PhotoPrintCache>();
    return [&runtime, cache](const auto& files, const auto& roots, const auto& options,
                             const auto& progress, const std::stop_token& stop) {
        return similarPhotos(files, roots, options, progress, runtime.decoders(),
                             runtime.availability(), *cache, stop);
    };
}

InstalledModel::Confinement describe(const decoder::Confinement& found) {
    InstalledModel::Confinement told;
    if (found.systemCallFilter)
        told.sentences.emplace_back("It cannot open files, sockets or other programs.");
    if (found.landlockVersion > 0) {
        told.sentences.push_back(fmt::format(
            "The kernel hides the file system from it (Landlock {}).", found.landlockVersion));
    }
    if (found.noNewPrivileges) told.sentences.emplace_back("It can never gain more rights.");
    told.sentences.push_back(
        fmt::format("It may use {} MB of memory and {} seconds of processor time.",
                    found.memoryBytes / 1'000'000, found.cpuSeconds));
    told.isComplete = found.systemCallFilter && found.noNewPrivileges && found.landlockVersion > 0;
    return told;
}

/// Where the text recognition looks for its languages.
std::string languageFolder() {
    const QByteArray given = qgetenv("TESSDATA_PREFIX");
    return given.isEmpty() ? "/usr/share/tesseract-ocr/5/tessdata" : given.toStdString();
}

GraphModel::Groups groupsOf(AppModel& model) {
    GraphModel::Groups groups;
    for (const ProjectSpace& space : model.spaces()->spaces())
        groups.projects.push_back({space.name, space.paths});
    groups.duplicates = [found = model.duplicates()->groups()] {
        std::vector<std::vector<std::string>> paths;
        for (const auto& group : *found) {
            auto& files = paths.emplace_back();
            for (const FileRecord& file : group->files)
                files.push_back(file.path);
        }
        return paths;
    };
    return groups;
}

} // namespace

ScreenModels::ScreenModels(AppModel& model, Runtime& runtime)
    : model_(model),
      executor_(runtime.executor()),
      downloads_(executor_),
      evidence_(executor_),
      timeline_(executor_, UserCalendar::current),
      graph_(executor_, [this] { return groupsOf(model_); }),
      preview_(executor_),
      excerpts_(executor_),
      spaceFiles_(executor_, [this](const QString& id) { return model_.spaces()->filesOf(id); }),
      lookAlikes_(executor_, scannerOf(runtime)),
      installed_(executor_, languageFolder(),
                 [&runtime](const std::stop_token& stop) {
                     return describe(runtime.decoders().confinement(stop));
                 }),
      browser_(executor_) {
    connect(&model_, &AppModel::loaded, this, &ScreenModels::followIndex);
    connect(model_.spaces(), &SpacesModel::changed, &spaceFiles_, &SpaceFilesModel::refresh);
    connect(&model_, &AppModel::libraryFilesChanged, &spaceFiles_, &SpaceFilesModel::refresh);
    connect(model_.plans(), &PlansModel::filesMoved, this, [this] {
        if (lookAlikes_.hasReport()) compareAgain();
    });
    connect(model_.plans(), &PlansModel::undone, this, [this] {
        if (!lookAlikes_.hasReport()) return;
        // The index knows what came back when it was scanned.
        connect(
            model_.scan(), &ScanModel::scanEnded, this, [this] { compareAgain(); },
            Qt::SingleShotConnection);
    });
    const auto offer = [](const char* name, QObject* object) {
        QQmlEngine::setObjectOwnership(object, QQmlEngine::CppOwnership);
        qmlRegisterSingletonInstance("Tovi.Models", 1, 0, name, object);
    };
    offer("Screens", this);
    offer("Downloads", &downloads_);
    offer("Evidence", &evidence_);
    offer("Timeline", &timeline_);
    offer("Graph", &graph_);
    offer("Preview", &preview_);
    offer("Excerpts", &excerpts_);
    offer("SpaceFiles", &spaceFiles_);
    offer("LookAlikes", &lookAlikes_);
    offer("Installed", &installed_);
    offer("Browser", &browser_);
}

void ScreenModels::followIndex() {
    if (model_.index() == index_) return;
    index_ = model_.index();
    const std::shared_ptr<IndexStore> reader(index_, index_ ? &index_->reader : nullptr);
    downloads_.setIndex(reader);
    evidence_.setIndex(reader);
    timeline_.setIndex(reader);
    graph_.setIndex(reader);
    preview_.setIndex(reader);
    excerpts_.setIndex(reader);
    spaceFiles_.setIndex(reader);
    Q_EMIT indexChanged();
}

void ScreenModels::compare(const QString& folder, std::set<std::string> marked) {
    if (!index_) return;
    comparedFolder_ = folder;
    std::vector<std::string> roots = model_.folders()->availablePaths();
    if (!folder.isEmpty()) roots = {fromQt(folder)};
    runLatest(
        executor_, this, picturesGeneration_,
        [index = index_](const std::stop_token& stop) {
            SearchQuery query;
            query.kind = FileKind::image;
            return index->reader.search(query, mostPicturesLookedAt, 0,
                                        IndexStore::Content::leftOut, stop);
        },
        [this, roots, marked = std::move(marked)](Outcome<std::vector<FileRecord>> pictures) {
            if (pictures)
                lookAlikes_.start(*std::move(pictures.value), roots, marked);
            else
                model_.notices()->setError(pictures.error);
        });
}

} // namespace tovi
