#include "ui/desktop/Desktop.h"

#include "base/Text.h"
#include "platform/Sandbox.h"
#include "platform/StandardLocations.h"
#include "ui/desktop/Application.h"
#include "ui/session/ActivationToken.h"
#include "ui/session/DesktopActivation.h"

#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>
#include <QIcon>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

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
        parser_.addOptions({dataDirectory_, section_, checkPrivacy_, quickSearch_, service_});
    }

    /// Prints help or version, which need no display, and ends the program if they are asked for.
    void answer(const QStringList& arguments) {
        parser_.parse(arguments);
        if (parser_.isSet(help_)) {
            // The parser takes the name from the QCoreApplication.
            const QString text = parser_.helpText().replace(QStringLiteral("<executable_name>"),
                                                            QStringLiteral("tovi"));
            std::printf("%s", qUtf8Printable(text));
            std::exit(0);
        }
        if (parser_.isSet(version_)) parser_.showVersion();
    }

    bool isPrivacyCheckWanted() const { return parser_.isSet(checkPrivacy_); }

    /// Ends the program with a sentence if the line is wrong.
    void read(const QCoreApplication& application) { parser_.process(application); }

    bool isDataDirectoryGiven() const { return parser_.isSet(dataDirectory_); }
    std::string dataDirectory() const {
        if (!isDataDirectoryGiven()) return platform::dataHome() + "/Ardeno";
        const QByteArray given = QFile::encodeName(parser_.value(dataDirectory_));
        return std::filesystem::absolute(given.toStdString()).lexically_normal().string();
    }
    bool isQuickSearch() const { return parser_.isSet(quickSearch_); }
    bool isService() const { return parser_.isSet(service_); }
    QString section() const { return parser_.value(section_); }

  private:
    QCommandLineParser parser_;
    const QCommandLineOption dataDirectory_{QStringLiteral("data-dir"),
                                            QStringLiteral("Where the index is kept."),
                                            QStringLiteral("directory")};
    const QCommandLineOption section_{QStringLiteral("section"),
                                      QStringLiteral("The screen to show first."),
                                      QStringLiteral("name")};
    const QCommandLineOption checkPrivacy_{
        QStringLiteral("check-privacy"),
        QStringLiteral("Try to make an internet socket, as the window could, and end.")};
    const QCommandLineOption quickSearch_{QStringLiteral("quick-search"),
                                          QStringLiteral("Show the quick search panel.")};
    const QCommandLineOption service_{
        QStringLiteral("service"),
        QStringLiteral("Show nothing until the session bus asks for it.")};
    const QCommandLineOption help_ = parser_.addHelpOption();
    const QCommandLineOption version_ = parser_.addVersionOption();
};

int checkPrivacy() {
    const bool isRefused = !platform::canMakeInternetSocket();
    std::printf("Refused to make internet sockets: %s\n", isRefused ? "yes" : "NO");
    return isRefused ? 0 : 1;
}

std::string decoderPath() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "tovi-decoder";
}

} // namespace

int runDesktop(int argc, char** argv) {
    try {
        const Launcher launcher = Launcher::start();
        platform::refuseInternetSockets();
        QCoreApplication::setApplicationName(QStringLiteral("tovi"));
        QCoreApplication::setApplicationVersion(QStringLiteral(TOVI_VERSION));
        CommandLine commandLine;
        commandLine.answer(argumentsOf(argc, argv));
        if (commandLine.isPrivacyCheckWanted()) return checkPrivacy();
        const QVariantMap platformData = startedPlatformData();
        QGuiApplication application(argc, argv);
        commandLine.read(application);
        QGuiApplication::setDesktopFileName(QStringLiteral("app.ardeno.Tovi"));
        QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/qt/qml/Tovi/icons/tovi.svg")));
        SystemSearch search(QDBusConnection::sessionBus());
        DesktopActivation activation(QDBusConnection::sessionBus());
        // A data directory of its own is a library of its own, and so an instance of its own.
        if (!commandLine.isDataDirectoryGiven() &&
            activation.start(commandLine.isQuickSearch()
                                 ? QString::fromLatin1(DesktopActivation::quickSearchAction)
                                 : QString(),
                             platformData) == DesktopActivation::Start::HandedOver) {
            return 0;
        }
        SystemFileOpener opener(launcher);
        Application desktop(
            {.dataDirectory = commandLine.dataDirectory(),
             .isDataDirectoryGiven = commandLine.isDataDirectoryGiven(),
             .decoderProgram = decoderPath(),
             .section = commandLine.section(),
             .isWindowShown = !commandLine.isQuickSearch() && !commandLine.isService()},
            opener);
        QObject::connect(&opener, &SystemFileOpener::failed, &desktop.integration(),
                         &DesktopIntegration::showError);
        desktop.integration().obey(activation, search);
        if (commandLine.isQuickSearch()) desktop.integration().showQuickSearch({});
        return QCoreApplication::exec();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", printable(error.what()).c_str());
        return 1;
    }
}

} // namespace tovi
