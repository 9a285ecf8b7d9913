// How the window behaves on a large library: desktop DATA-DIRECTORY
#include "bench/app/LongestTurn.h"
#include "ui/desktop/Application.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickWindow>
#include <algorithm>
#include <ctime>
#include <fstream>

#include <fmt/format.h>
#include <unistd.h>

namespace tovi {
namespace {

using bench::processorMilliseconds;

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

template <typename Condition>
void waitFor(Condition condition) {
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void scroll(QQuickWindow& window, int pages) {
    std::vector<double> frames;
    for (int page = 0; page < pages; ++page) {
        bool isDrawn = false;
        const auto drawn = QObject::connect(&window, &QQuickWindow::frameSwapped, &window,
                                            [&] { isDrawn = true; });
        const double begun = processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
        QKeyEvent press(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &press);
        waitFor([&] { return isDrawn; });
        frames.push_back(processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - begun);
        QObject::disconnect(drawn);
    }
    std::sort(frames.begin(), frames.end());
    fmt::print("{:44} {:8.1f} ms\n", "a page further, median of processor time",
               frames[frames.size() / 2]);
    fmt::print("{:44} {:8.1f} ms\n", "a page further, worst", frames.back());
}

void run(const std::string& dataDirectory) {
    bench::LongestTurn turns;
    NoOpener opener;
    Application application({.dataDirectory = dataDirectory,
                             .isDataDirectoryGiven = true,
                             .decoderProgram = {},
                             .section = {}},
                            opener);
    QQuickWindow& window = *application.window();
    bool isDrawn = false;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&] { isDrawn = true; });
    waitFor([&] { return isDrawn; });
    const double first = sinceProcessStart();
    LibraryModel& library = *application.model().library();
    waitFor([&] { return library.files()->count() > 0; });
    isDrawn = false;
    waitFor([&] { return isDrawn; });
    const double filled = sinceProcessStart();
    waitFor([&] {
        return !library.librarySummary().value(QStringLiteral("kinds")).toList().isEmpty();
    });
    fmt::print("{:44} {:8.0f} ms\n", "first frame, since the process was started", first);
    fmt::print("{:44} {:8.0f} ms\n", "first frame with files", filled);
    fmt::print("{:44} {:8.0f} ms\n", "counts of all files", sinceProcessStart());
    fmt::print("{:44} {:8.0f} ms\n", "processor time until then",
               processorMilliseconds(CLOCK_PROCESS_CPUTIME_ID));
    fmt::print("{:44} {:8} MB\n", "memory", ownMegabytes());
    fmt::print("{:44} {:8.1f} ms\n", "longest turn at the start", turns.take());
    scroll(window, 100);
    fmt::print("{:44} {:8.1f} ms\n", "longest turn while scrolling", turns.take());
    fmt::print("{:44} {:8} MB\n", "memory after it", ownMegabytes());
}

} // namespace
} // namespace tovi

int main(int argc, char** argv) {
    qputenv("QT_QUICK_BACKEND", "software");
    if (qEnvironmentVariableIsEmpty("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        fmt::print(stderr, "usage: desktop DATA-DIRECTORY\n");
        return 2;
    }
    tovi::run(argv[1]);
}
