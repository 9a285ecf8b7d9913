// How the window behaves on a large library: desktop DATA-DIRECTORY [DECODER]
// With the decoder, also what is done with files that are there: some are moved to the Trash and
// back.
#include "bench/Stopwatch.h"
#include "bench/app/LongestTurn.h"
#include "bench/app/WaitFor.h"
#include "ui/desktop/Application.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlContext>
#include <QQmlExpression>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <algorithm>
#include <ctime>
#include <fstream>

#include <fmt/format.h>
#include <unistd.h>

namespace tovi {
namespace {

using bench::processorMilliseconds;
using bench::waitFor;

class NoOpener final : public FileOpener {
  public:
    bool open(const std::string&) override { return false; }
    bool reveal(const std::string&) override { return false; }
};

/// Milliseconds since the process was started, to the 10 that the kernel counts in.
double sinceProcessStart() {
    std::ifstream stat("/proc/self/stat");
    std::string skipped;
    long long started = 0;
    std::getline(stat, skipped, ')');
    for (int field = 0; field < 19; ++field)
        stat >> skipped;
    stat >> started;
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6 -
           static_cast<double>(started) * 1e3 / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

/// Without the pages of the index that it maps, which can be dropped at any time.
long ownMegabytes() {
    std::ifstream maps("/proc/self/smaps");
    bool isIndex = false;
    long kibibytes = 0;
    for (std::string line; std::getline(maps, line);) {
        long amount = 0;
        if (std::sscanf(line.c_str(), "Rss: %ld kB", &amount) == 1) {
            if (!isIndex) kibibytes += amount;
        } else if (line.find('-') < line.find(' ')) { // the addresses of the next mapping
            isIndex = line.ends_with("/index.sqlite");
        }
    }
    return kibibytes * 1024 / 1'000'000;
}

/// Until nothing but a blinking cursor has been at work for half a second.
void settle() {
    constexpr double idle = 4; // milliseconds of a tenth of a second
    int quiet = 0;
    double before = processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        const double used = processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
        quiet = used - std::exchange(before, used) < idle ? quiet + 1 : 0;
    });
    look.start(100);
    waitFor([&] { return quiet == 5; });
}

void print(const char* what, double milliseconds) {
    fmt::print("{:44} {:8.1f} ms\n", what, milliseconds);
}

/// Whether a row of a file can be seen.
bool showsFile(const QQuickItem* item) {
    if (!item->isVisible()) return false;
    if (qstrncmp(item->metaObject()->className(), "FileRow_", 8) == 0) return true;
    const QList<QQuickItem*> children = item->childItems();
    return std::any_of(children.begin(), children.end(), showsFile);
}

/// As a real one it comes when the main thread looks for events, not right after its last work.
void press(QQuickWindow& window, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QCoreApplication::postEvent(&window, new QKeyEvent(QEvent::KeyPress, key, modifiers));
}

void scroll(AppModel& model, QQuickWindow& window, int pages) {
    const RowListModel& files = *model.library()->files();
    const auto isAtEnd = [&] {
        return model.selection()->selectedIDs().contains(
            files.value(files.rowCount() - 1, QStringLiteral("path")).toString());
    };
    std::vector<double> frames;
    for (int page = 0; page < pages; ++page) {
        waitFor([&] { return !isAtEnd(); }); // until more are loaded
        bool isDrawn = false;
        const auto drawn = QObject::connect(&window, &QQuickWindow::frameSwapped, &window,
                                            [&] { isDrawn = true; });
        const double begun = processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
        press(window, Qt::Key_PageDown);
        waitFor([&] { return isDrawn; });
        frames.push_back(processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - begun);
        QObject::disconnect(drawn);
    }
    std::sort(frames.begin(), frames.end());
    print("a page further, median of processor time", frames[frames.size() / 2]);
    print("a page further, worst", frames.back());
}

/// Measures the longest turn of what the user asks for.
class Measuring {
  public:
    explicit Measuring(bench::LongestTurn& turns) : turns_(turns) {}

    template <typename Act>
    void operator()(const std::string& what, const Act& act) const {
        turns_.take();
        act();
        settle();
        print(what.c_str(), turns_.take());
    }

  private:
    bench::LongestTurn& turns_;
};

/// As written in the window's own file.
QVariant evaluate(QQuickWindow& window, const QString& expression) {
    return QQmlExpression(qmlContext(&window), &window, expression).evaluate();
}

/// What else the user asks for, each for the first time.
void useAll(AppModel& model, QQuickWindow& window, const Measuring& measure) {
    const auto keys = [&](const char* what, int key, Qt::KeyboardModifiers modifiers = {}) {
        measure(what, [&] { press(window, key, modifiers); });
        press(window, Qt::Key_Escape);
        settle();
    };
    keys("  preview", Qt::Key_Space);
    keys("  menu of a file", Qt::Key_Menu);
    keys("  rename", Qt::Key_F2);
    keys("  commands", Qt::Key_K, Qt::ControlModifier);
    keys("  shortcuts", Qt::Key_F1);
    measure("  folder chooser", [&] { model.folders()->presentFolderPicker(); });
    measure("  /usr/bin in it",
            [&] { evaluate(window, QStringLiteral("Browser.open('/usr/bin', true)")); });
    press(window, Qt::Key_Escape);
    settle();
    measure("  all that is listed chosen", [&] { press(window, Qt::Key_A, Qt::ControlModifier); });
    keys("  plan for all that is listed", Qt::Key_Delete); // where the files of the index are there
    for (const char* theme : {"midnight", "minimal"}) {
        measure(fmt::format("  theme {}", theme), [&] {
            evaluate(window, QStringLiteral("Theme.choice = '%1'").arg(QLatin1String(theme)));
        });
    }
    const auto* stage = window.findChild<QObject*>(QStringLiteral("stage"));
    double slowest = 0;
    for (const char* section :
         {"overview", "search", "spaces", "timeline", "graph", "downloads", "duplicates", "storage",
          "activity", "settings", "models", "privacy", "vault", "files"}) {
        measure(fmt::format("  {}", section), [&] {
            const bench::Stopwatch stopwatch;
            model.setSection(QString::fromLatin1(section));
            waitFor([&] { return stage->property("isSettled").toBool(); });
            slowest = std::max(slowest, stopwatch.wall() * 1e3);
        });
    }
    print("slowest of the sections, until it is there", slowest);
    model.setSection(QStringLiteral("search"));
    settle();
    for (const char* phrase : {"invoice", "pdfs over 5 mb"}) {
        measure(fmt::format("  results of \"{}\"", phrase),
                [&] { model.search()->search(QString::fromLatin1(phrase)); });
    }
}

/// What is done with many files at once.
void review(AppModel& model, QQuickWindow& window, const Measuring& measure) {
    const auto show = [&](const char* section) { model.setSection(QString::fromLatin1(section)); };
    const auto confirm = [&](const char* what) {
        waitFor([&] { return model.plans()->proposedPlan().has_value(); });
        settle();
        measure(fmt::format("  {} moved", what), [&] {
            model.plans()->confirmPlan(
                QString::fromStdString(model.plans()->proposedPlan()->id.string()));
        });
        measure("  taken back", [&] { model.plans()->undoLast(); });
    };
    show("files");
    settle();
    press(window, Qt::Key_A, Qt::ControlModifier);
    settle();
    measure("  space of all that is listed", [&] {
        show("spaces");
        evaluate(window, QStringLiteral("SpaceFiles.space = App.spaces.createSpace('Many', "
                                        "App.selection.selectedIDs)"));
    });
    show("duplicates");
    measure("  duplicates found", [&] {
        model.duplicates()->findDuplicates();
        waitFor([&] { return !model.duplicates()->isFindingDuplicates(); });
    });
    measure("  plan for their copies", [&] { model.proposeDuplicateTrash({}); });
    confirm("copies");
    measure("  look-alikes found", [&] {
        auto* tab = window.findChild<QObject*>(QStringLiteral("duplicates-look-alikes"));
        QMetaObject::invokeMethod(tab, "clicked");
        evaluate(window, QStringLiteral("Screens.findLookAlikes('')"));
        waitFor([&] { return evaluate(window, QStringLiteral("LookAlikes.hasReport")).toBool(); });
    });
    measure("  all but one marked", [&] {
        evaluate(window,
                 QStringLiteral("LookAlikes.selectAllButKeeper(LookAlikes.groups.value(0, 'id'))"));
    });
    measure("  plan for the marked ones", [&] {
        evaluate(window, QStringLiteral("App.plans.proposePhotoTrash(LookAlikes.selectedIDs)"));
    });
    confirm("photos");
    show("storage");
    settle();
    measure("  activity", [&] { show("activity"); });
}

void run(const std::string& dataDirectory, const std::string& decoder) {
    bench::LongestTurn turns;
    NoOpener opener;
    Application application({.dataDirectory = dataDirectory,
                             .isDataDirectoryGiven = true,
                             .decoderProgram = decoder,
                             .section = {}},
                            opener);
    waitFor([&] { return application.window() != nullptr; });
    QQuickWindow& window = *application.window();
    double first = 0;
    double filled = 0;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&] {
        if (first == 0) first = sinceProcessStart();
        if (filled == 0 && showsFile(window.contentItem())) filled = sinceProcessStart();
    });
    waitFor([&] { return filled > 0; });
    AppModel& model = application.model();
    waitFor([&] {
        return !model.library()->librarySummary().value(QStringLiteral("kinds")).toList().isEmpty();
    });
    const double counted = sinceProcessStart();
    settle();
    print("longest turn at the start", turns.take());
    print("first frame, since the process was started", first);
    print("first frame with files", filled);
    print("counts of all files", counted);
    fmt::print("{:44} {:8} MB\n", "memory", ownMegabytes());
    turns.take();
    press(window, Qt::Key_Down);
    settle();
    print("longest turn when a file is chosen", turns.take());
    scroll(model, window, 100);
    print("longest turn while scrolling", turns.take());
    fmt::print("{:44} {:8} MB\n", "memory after it", ownMegabytes());
    const Measuring measure(turns);
    useAll(model, window, measure);
    if (!decoder.empty()) review(model, window, measure);
}

} // namespace
} // namespace tovi

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"); // nothing of this desktop
    if (qEnvironmentVariableIsEmpty("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 2 && argc != 3) {
        fmt::print(stderr, "usage: desktop DATA-DIRECTORY [DECODER]\n");
        return 2;
    }
    tovi::run(argv[1], argc == 3 ? argv[2] : "");
}
