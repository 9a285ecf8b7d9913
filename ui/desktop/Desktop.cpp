#include "ui/desktop/Desktop.h"

#include "app/cleanup/CleanupModel.h"
#include "app/model/AppModel.h"
#include "app/monitor/FolderMonitor.h"
#include "app/runtime/Runtime.h"
#include "base/Text.h"
#include "platform/Sandbox.h"
#include "platform/StandardLocations.h"
#include "ui/desktop/DesktopPorts.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <cstdio>
#include <filesystem>

#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(ToviPlugin)

namespace tovi {
namespace {

QStringList argumentsOf(int argc, char** argv) {
    QStringList arguments;
    for (int at = 0; at < argc; ++at)
        arguments.append(QFile::decodeName(argv[at]));
    return arguments;
}

class CommandLine {
  public:
    CommandLine() {
        parser_.setApplicationDescription(
            QStringLiteral("Tovi, a private file companion for the desktop."));
        parser_.addOptions({dataDirectory_, section_});
    }

    /// Prints help or version, which need no display, and ends the program if they are asked for.
    void answer(const QStringList& arguments) {
        parser_.parse(arguments);
        if (parser_.isSet(help_)) parser_.showHelp();
        if (parser_.isSet(version_)) parser_.showVersion();
    }

    /// Ends the program with a sentence if the line is wrong.
    void read(const QCoreApplication& application) { parser_.process(application); }

    bool isDataDirectoryGiven() const { return parser_.isSet(dataDirectory_); }
    std::string dataDirectory() const {
        if (!isDataDirectoryGiven()) return platform::dataHome() + "/Ardeno";
        const QByteArray given = QFile::encodeName(parser_.value(dataDirectory_));
        return std::filesystem::absolute(given.toStdString()).lexically_normal().string();
    }
    QString section() const { return parser_.value(section_); }

  private:
    QCommandLineParser parser_;
    const QCommandLineOption dataDirectory_{QStringLiteral("data-dir"),
                                            QStringLiteral("Where the index is kept."),
                                            QStringLiteral("directory")};
    const QCommandLineOption section_{QStringLiteral("section"),
                                      QStringLiteral("The screen to show first."),
                                      QStringLiteral("name")};
    const QCommandLineOption help_ = parser_.addHelpOption();
    const QCommandLineOption version_ = parser_.addVersionOption();
};

std::string decoderPath() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "tovi-decoder";
}

/// Builds the real objects, shows the window and runs until it is closed.
int run(const CommandLine& commandLine, const Launcher& launcher) {
    Runtime runtime(decoderPath());
    WindowFolderPicker folderPicker;
    SystemClipboard clipboard;
    SystemFileOpener opener(launcher);
    AppModel model(
        {.executor = runtime.executor(),
         .indexer = runtime.indexer(),
         .actions = runtime.actions(),
         .folderPicker = folderPicker,
         .clipboard = clipboard,
         .opener = opener,
         .makeMonitor =
             [&runtime](std::function<void()> changed) {
                 return monitorSystemFolders(runtime.executor(), {std::move(changed), {}});
             }},
        {.dataDirectory = commandLine.dataDirectory(),
         .isDataDirectoryGiven = commandLine.isDataDirectoryGiven()});
    CleanupFolders cleanupFolders{platform::homeDirectory(), platform::cacheHome()};
    if (const auto downloads = platform::downloadsDirectory())
        cleanupFolders.downloads.push_back(*downloads);
    CleanupModel cleanup(model, {.executor = runtime.executor(),
                                 .actions = runtime.actions(),
                                 .programs = runtime.programs(),
                                 .dataHome = platform::dataHome(),
                                 .dataDirectory = commandLine.dataDirectory(),
                                 .folders = cleanupFolders});
    if (!commandLine.section().isEmpty()) model.setSection(commandLine.section());

    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "App", &model);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "Cleanup", &cleanup);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "FolderDialogs", &folderPicker);
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral(":/qt/qml"));
    engine.setInitialProperties(
        {{QStringLiteral("dataDirectory"),
          QFile::decodeName(QByteArray::fromStdString(commandLine.dataDirectory()))}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Tovi/Main.qml")));
    return engine.rootObjects().isEmpty() ? 1 : QCoreApplication::exec();
}

} // namespace

int runDesktop(int argc, char** argv) {
    try {
        const Launcher launcher = Launcher::start();
        platform::refuseInternetSockets();
        QCoreApplication::setApplicationName(QStringLiteral("tovi"));
        QCoreApplication::setApplicationVersion(QStringLiteral(TOVI_VERSION));
        QQuickStyle::setStyle(QStringLiteral("Basic"));
        CommandLine commandLine;
        commandLine.answer(argumentsOf(argc, argv));
        QGuiApplication application(argc, argv);
        commandLine.read(application);
        QGuiApplication::setDesktopFileName(QStringLiteral("app.ardeno.Tovi"));
        QGuiApplication::setApplicationDisplayName(QStringLiteral("Tovi"));
        QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/qt/qml/Tovi/icons/tovi.svg")));
        return run(commandLine, launcher);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", printable(error.what()).c_str());
        return 1;
    }
}

} // namespace tovi
