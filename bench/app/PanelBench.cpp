// How fast the quick search panel and the search of the desktop answer on a large library, on the
// display and the session bus that there are: panel DATA-DIRECTORY
#include "bench/Prose.h"
#include "ui/desktop/Application.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQuickWindow>
#include <algorithm>

#include <fmt/format.h>

namespace tovi {
namespace {

constexpr int runs = 15;

class NoOpener final : public FileOpener {
  public:
    bool open(const std::string&) override { return false; }
    bool reveal(const std::string&) override { return false; }
};

template <typename Condition>
void waitFor(Condition condition) {
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

double milliseconds(const QElapsedTimer& timer) {
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void print(const std::string& what, std::vector<double> times) {
    std::sort(times.begin(), times.end());
    fmt::print("{:44} {:7.1f} {:7.1f} {:7.1f} ms\n", what, times.front(), times[times.size() / 2],
               times.back());
}

QQuickWindow* panel() {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->objectName() == QLatin1String("tovi-quick-search"))
            return qobject_cast<QQuickWindow*>(window);
    }
    return nullptr;
}

/// From the press of the shortcut to a panel that is drawn and has the focus.
double present(DesktopIntegration& integration) {
    QElapsedTimer timer;
    timer.start();
    integration.showQuickSearch({});
    bool isDrawn = false;
    const auto drawn =
        QObject::connect(panel(), &QQuickWindow::frameSwapped, panel(), [&] { isDrawn = true; });
    waitFor([&] { return isDrawn && panel()->isActive(); });
    QObject::disconnect(drawn);
    return milliseconds(timer);
}

/// From the moment the text has stood still for long enough to its files in the panel.
double results(QuickSearchState& state, const QString& phrase) {
    QElapsedTimer timer;
    state.setQuery(QString());
    waitFor([&] { return !state.isSearching(); });
    state.setQuery(phrase);
    timer.start();
    waitFor([&] { return !state.isSearching(); });
    return milliseconds(timer) - QuickSearchState::debounce * 1000;
}

double answer(SystemSearch& search, const QString& phrase) {
    bool isAnswered = false;
    QElapsedTimer timer;
    timer.start();
    search.find(phrase, [&](const std::vector<FileRecord>&) { isAnswered = true; });
    waitFor([&] { return isAnswered; });
    return milliseconds(timer);
}

template <typename Measure>
std::vector<double> repeated(Measure measure) {
    std::vector<double> times(runs);
    std::generate(times.begin(), times.end(), measure);
    return times;
}

void run(const std::string& dataDirectory) {
    NoOpener opener;
    SystemSearch search(QDBusConnection::sessionBus());
    Application application({.dataDirectory = dataDirectory,
                             .isDataDirectoryGiven = true,
                             .decoderProgram = {},
                             .section = {}},
                            opener);
    DesktopSettings settings(dataDirectory);
    settings.setAnswersSystemSearch(true);
    AppModel& model = application.model();
    ThreadExecutor executor;
    search.answerFrom(executor, model, settings);
    waitFor([&] { return model.isLoaded(); });
    waitFor([&] { // the counts of all files, which are read in the background
        return !model.library()->librarySummary().value(QStringLiteral("kinds")).toList().isEmpty();
    });

    DesktopIntegration& integration = application.integration();
    fmt::print("{:44} {:>7} {:>7} {:>7}\n", "", "lowest", "median", "highest");
    print("panel drawn and focused, the first time", {present(integration)});
    print("panel drawn and focused, again", repeated([&] {
              panel()->hide();
              return present(integration);
          }));
    const bench::Prose prose(bench::corpusSeed);
    const auto phrase = [](const std::string& text) { return QString::fromStdString(text); };
    for (const auto& [name, text] : std::initializer_list<std::pair<const char*, QString>>{
             {"a letter", QStringLiteral("b")},
             {"two letters", QStringLiteral("xq")},
             {"a rare word", phrase(prose.word(prose.wordCount() - 10'000))},
             {"a common word", phrase(prose.word(3))},
             {"two common words", phrase(prose.word(5) + " " + prose.word(9))},
             {"no result", QStringLiteral("xqzzyjwq")},
             {"pdfs over 5 mb", QStringLiteral("pdfs over 5 mb")},
             {"last month", QStringLiteral("last month")}}) {
        print(fmt::format("panel: {}", name),
              repeated([&] { return results(integration.quickSearch(), text); }));
        print(fmt::format("search of the desktop: {}", name),
              repeated([&] { return answer(search, text); }));
    }
}

} // namespace
} // namespace tovi

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        fmt::print(stderr, "usage: panel DATA-DIRECTORY\n");
        return 2;
    }
    tovi::run(argv[1]);
}
