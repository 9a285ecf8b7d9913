// How soon the application shows a library, and how long its main thread is ever busy at a time.
// Milliseconds. The given data directory is used and changed; the given folder is connected, and
// what is moved to the Trash there is taken back.

#include "app/model/AppModel.h"
#include "app/runtime/Runtime.h"
#include "bench/Stopwatch.h"
#include "bench/app/LongestTurn.h"
#include "bench/app/WaitFor.h"

#include <QCoreApplication>
#include <QTimer>
#include <filesystem>
#include <iostream>

#include <nlohmann/json.hpp>

namespace {

using namespace tovi;

class NoDesktop final : public FolderPicker, public Clipboard, public FileOpener {
    void pick(const Request&, Answer answer) override { answer(std::nullopt); }
    bool setText(const std::string&) override { return true; }
    bool open(const std::string&) override { return true; }
    bool reveal(const std::string&) override { return true; }
};

class NoChanges final : public FolderChanges {
    void start(const std::vector<std::string>&) override {}
    void stop() override {}
};

template <typename Start, typename IsDone>
void measure(const char* name, bench::LongestTurn& turns, Start start, IsDone isDone) {
    QTimer look; // at whether it is done
    look.start(1);
    turns.take();
    const bench::Stopwatch stopwatch;
    start();
    bench::waitFor(isDone);
    std::cout << nlohmann::ordered_json{{"name", name},
                                        {"wall", stopwatch.wall() * 1000},
                                        {"longestTurn", turns.take()}}
              << std::endl;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: model DATA-DIRECTORY FOLDER TOVI-DECODER\n";
        return 2;
    }
    QCoreApplication application(argc, argv);
    bench::LongestTurn turns;
    Runtime runtime(argv[3]);
    NoDesktop desktop;
    AppModel model(
        {runtime.executor(), runtime.indexer(), runtime.actions(), desktop, desktop, desktop,
         [](auto) { return std::make_unique<NoChanges>(); }},
        {.dataDirectory = argv[1], .isDataDirectoryGiven = true, .automaticallyScan = false});
    measure(
        "prepare to first page", turns, [&] { model.prepare(); },
        [&] { return model.library()->filesRevision() > 0; });
    measure(
        "counts", turns, [] {}, [&] { return model.library()->summary().total() > 0; });
    for (const char* phrase : {"invoice", "pdfs over 5 mb older than 1 year", "b", "xqzzyjwq"}) {
        const int before = model.search()->resultsRevision();
        measure(
            phrase, turns, [&] { model.search()->search(QString::fromUtf8(phrase)); },
            [&] { return model.search()->resultsRevision() > before; });
    }
    bool hasScanned = false;
    QObject::connect(model.scan(), &ScanModel::scanEnded, [&] { hasScanned = true; });
    measure(
        "scan", turns, [&] { model.folders()->grantFolders({QString::fromUtf8(argv[2])}); },
        [&] { return hasScanned; });
    measure(
        "duplicates", turns, [&] { model.duplicates()->findDuplicates(); },
        [&] { return !model.duplicates()->isFindingDuplicates(); });
    std::cerr << model.duplicates()->groupCount() << " groups of duplicates\n";
    measure(
        "plan for all duplicates", turns, [&] { model.proposeDuplicateTrash({}); },
        [&] { return !model.plans()->isPlanning(); });

    QStringList files;
    for (const auto& file : std::filesystem::recursive_directory_iterator(argv[2])) {
        if (files.size() < 200 && file.is_regular_file()) {
            files.append(QString::fromStdString(file.path().string()));
        }
    }
    measure(
        "plan", turns, [&] { model.plans()->proposeTrash(files); },
        [&] { return !model.plans()->isPlanning(); });
    if (!model.plans()->proposedPlan()) {
        std::cerr << model.notices()->errorMessage().toStdString() << "\n";
        return 1;
    }
    const QString plan = QString::fromStdString(model.plans()->proposedPlan()->id.string());
    measure(
        "execution", turns, [&] { model.plans()->confirmPlan(plan); },
        [&] { return !model.plans()->isExecuting(); });
    measure(
        "undo", turns, [&] { model.plans()->undo(plan); },
        [&] { return !model.plans()->isExecuting(); });
    return 0;
}
