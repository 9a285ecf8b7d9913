#include "ui/screenshots/Scenes.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>
#include <QQuickWindow>
#include <cstdio>

namespace tovi {
namespace {

class NoOpener final : public FileOpener {
  public:
    bool open(const std::string&) override { return true; }
    bool reveal(const std::string&) override { return true; }
};

void run(const QCommandLineParser& line) {
    NoOpener opener;
    const std::string dataDirectory =
        QFile::encodeName(line.value(QStringLiteral("data-dir"))).toStdString();
    DesktopSettings(dataDirectory)
        .setMoreContrast(line.isSet(QStringLiteral("contrast")) ? QStringLiteral("on")
                                                                : QStringLiteral("off"));
    Application application({.dataDirectory = dataDirectory,
                             .isDataDirectoryGiven = true,
                             .decoderProgram = (QCoreApplication::applicationDirPath() +
                                                QStringLiteral("/tovi-decoder"))
                                                   .toStdString(),
                             .section = {}},
                            opener);
    Photographer photographer(application, line.value(QStringLiteral("out")),
                              line.value(QStringLiteral("suffix")));
    photographer.waitFor([&] { return application.window() != nullptr; });
    const QStringList size = line.value(QStringLiteral("size")).split(u'x');
    if (size.size() == 2) application.window()->resize(size[0].toInt(), size[1].toInt());
    AppModel& model = application.model();
    photographer.waitFor([&] { return model.isLoaded(); });
    const QString theme = line.value(QStringLiteral("theme"));
    if (!theme.isEmpty()) model.settings()->setThemeChoice(theme);
    model.settings()->setAppearance(line.isSet(QStringLiteral("dark")) ? QStringLiteral("dark")
                                                                       : QStringLiteral("light"));
    const QString folder = line.value(QStringLiteral("folder"));
    if (!folder.isEmpty() && model.folders()->roots().empty()) photographer.connect(folder);
    photographer.waitFor([&] {
        return !model.scan()->isIndexing() &&
               (folder.isEmpty() || model.library()->files()->count() > 0);
    });
    const QString contactSheet = line.value(QStringLiteral("contact-sheet"));
    if (!contactSheet.isEmpty()) photographer.beginContactSheet();
    for (const QString& name : line.positionalArguments()) {
        const auto scene = scenes().find(name);
        scene == scenes().end() || (folder.isEmpty() && name != QStringLiteral("offer"))
            ? photographer.show(name)
            : scene->second(photographer);
        photographer.take(name);
        leaveScene(photographer);
    }
    if (!contactSheet.isEmpty()) photographer.saveContactSheet(contactSheet);
    photographer.waitFor([&] { return model.isSaved(); });
}

} // namespace
} // namespace tovi

/// Draws screens of the program into PNG files, or all into one: the names of sections or scenes,
/// in this order.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    QCommandLineParser line;
    for (const char* option :
         {"contact-sheet", "data-dir", "folder", "out", "size", "suffix", "theme"})
        line.addOption({QString::fromLatin1(option), QString(), QStringLiteral("value")});
    for (const char* option : {"contrast", "dark", "mirrored"})
        line.addOption({QString::fromLatin1(option), QString()});
    line.process(application);
    if (line.isSet(QStringLiteral("mirrored")))
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    try {
        tovi::run(line);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
