// How fast the quick search panel and the search of the desktop answer on a large library, on the
// display and the session bus that there are: panel DATA-DIRECTORY
#include "bench/Prose.h"
#include "bench/Stopwatch.h"
#include "bench/app/WaitFor.h"
#include "ui/desktop/Application.h"

#include <QGuiApplication>
#include <QProcess>
#include <QQuickWindow>
#include <algorithm>

#include <fmt/format.h>

namespace tovi {
namespace {

using bench::waitFor;

constexpr int runs = 15;

class NoOpener final : public FileOpener {
  public:
    bool open(const std::string&) override { return false; }
    bool reveal(const std::string&) override { return false; }
};

struct Times {
    double wall = 0;
    double processor = 0; // of all threads
};

/// In milliseconds.
Times read(const bench::Stopwatch& stopwatch) {
    return {stopwatch.wall() * 1e3, stopwatch.processor() * 1e3};
}

void print(const std::string& what, std::vector<Times> times) {
    std::sort(times.begin(), times.end(),
              [](const Times& left, const Times& right) { return left.wall < right.wall; });
    std::vector<double> processor;
    for (const Times& each : times)
        processor.push_back(each.processor);
    std::sort(processor.begin(), processor.end());
    fmt::print("{:44} {:8.1f} {:8.1f} {:8.1f} {:8.1f}\n", what, times.front().wall,
               times[times.size() / 2].wall, times.back().wall, processor[processor.size() / 2]);
}

QQuickWindow* panel() {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->objectName() == QLatin1String("tovi-quick-search"))
            return qobject_cast<QQuickWindow*>(window);
    }
    return nullptr;
}

/// From `press` to a panel that the display has drawn and that has the focus.
template <typename Press>
Times present(Press press) {
    bool isDrawn = false;
    const auto listen = [&] {
        return QObject::connect(panel(), &QQuickWindow::frameSwapped, panel(),
                                [&] { isDrawn = true; });
    };
    QMetaObject::Connection drawn;
    if (panel()) drawn = listen();
    const bench::Stopwatch stopwatch;
    press();
    if (!drawn) drawn = listen(); // the panel is made when it is first shown
    waitFor([&] { return isDrawn && panel()->isActive(); });
    QGuiApplication::sync();
    QObject::disconnect(drawn);
    return read(stopwatch);
}

void dismiss() {
    panel()->hide();
    waitFor([] { return !panel()->isActive(); });
}

/// From the moment the text has stood still for long enough to its files in the panel.
Times results(QuickSearchState& state, const QString& phrase) {
    state.setQuery(QString());
    waitFor([&] { return !state.isSearching(); });
    const bench::Stopwatch stopwatch;
    state.setQuery(phrase);
    waitFor([&] { return !state.isSearching(); });
    Times times = read(stopwatch);
    times.wall -= QuickSearchState::debounce * 1e3;
    return times;
}

Times answer(SystemSearch& search, const QString& phrase) {
    bool isAnswered = false;
    const bench::Stopwatch stopwatch;
    search.find(phrase, [&](const std::vector<FileRecord>&) { isAnswered = true; });
    waitFor([&] { return isAnswered; });
    return read(stopwatch);
}

template <typename Measure>
std::vector<Times> repeated(Measure measure) {
    std::vector<Times> times(runs);
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
    fmt::print("{:44} {:>8} {:>8} {:>8} {:>8}\n", "milliseconds", "lowest", "median", "highest",
               "processor");
    const auto show = [&] { return present([&] { integration.showQuickSearch({}); }); };
    print("panel drawn and focused, the first time", {show()});
    print("panel drawn and focused, again", repeated([&] {
              dismiss();
              return show();
          }));
    QProcess keys; // as a keyboard would press them, through the X server
    keys.start(QStringLiteral("xdotool"), {QStringLiteral("-")});
    print("panel drawn and focused, since the key", repeated([&] {
              dismiss();
              return present([&] {
                  keys.write("key --delay 0 super+shift+space\n");
                  keys.waitForBytesWritten();
              });
          }));
    keys.closeWriteChannel();
    keys.waitForFinished();
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
