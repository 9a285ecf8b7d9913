#include "ui/session/SystemSearch.h"

#include "app/lists/QtConversions.h"
#include "core/search/QueryParser.h"
#include "ui/session/SystemSearchAdaptors.h"

#include <utility>

namespace tovi {

SystemSearch::SystemSearch(QDBusConnection bus) {
    if (!bus.isConnected()) return;
    // Each object has one adaptor, and so a parent of its own.
    auto* provider = new QObject(this);
    new ShellSearchAdaptor(provider, *this);
    bus.registerObject(QStringLiteral("/app/ardeno/Tovi/SearchProvider"), provider);
    auto* runner = new QObject(this);
    new RunnerAdaptor(runner, *this);
    bus.registerObject(QStringLiteral("/app/ardeno/Tovi/Runner"), runner);
}

void SystemSearch::answerFrom(Executor& executor, AppModel& model,
                              const DesktopSettings& settings) {
    executor_ = &executor;
    model_ = &model;
    settings_ = &settings;
    connect(&model, &AppModel::loaded, this, [this] {
        for (const auto& each : std::exchange(waiting_, {}))
            each();
    });
}

void SystemSearch::find(const QString& phrase, Answer answer) {
    search_.request_stop();
    search_ = std::stop_source();
    if (phrase.trimmed().isEmpty()) return answer({});
    run(
        search_.get_token(),
        [text = fromQt(phrase), now = executor_->now()](IndexStore& index,
                                                        const std::stop_token& stop) {
            return index.search(QueryParser().parse(text, now), mostFiles, 0,
                                IndexStore::Content::leftOut, stop);
        },
        std::move(answer));
}

void SystemSearch::describe(const QStringList& paths, Answer answer) {
    std::vector<std::string> wanted;
    for (const QString& path : paths.first(std::min<qsizetype>(paths.size(), 100)))
        wanted.push_back(fromQt(path));
    run(
        {},
        [wanted](IndexStore& index, const std::stop_token& stop) {
            return index.records(wanted, stop);
        },
        std::move(answer));
}

void SystemSearch::run(std::stop_token stop, Work work, Answer answer) {
    if (!settings_->answersSystemSearch()) return answer({});
    if (!model_->isLoaded()) {
        waiting_.push_back([this, stop, work = std::move(work), answer = std::move(answer)] {
            run(stop, work, answer);
        });
        return;
    }
    if (!model_->index()) return answer({});
    runInBackground(
        *executor_, this, std::move(stop),
        [index = model_->index(), work = std::move(work)](const std::stop_token& token) {
            return work(index->reader, token);
        },
        [answer = std::move(answer)](const Outcome<std::vector<FileRecord>>& found) {
            answer(found.value.value_or(std::vector<FileRecord>()));
        });
}

} // namespace tovi
