#include "ui/desktop/Application.h"

#include "app/lists/QtConversions.h"
#include "app/monitor/FolderMonitor.h"
#include "platform/BootClock.h"
#include "platform/StandardLocations.h"
#include "ui/desktop/PreviewImages.h"

#include <QDir>
#include <QFile>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImageReader>
#include <QQmlComponent>
#include <QQuickStyle>
#include <stdexcept>

#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(ToviPlugin)

namespace tovi {
namespace {

CleanupFolders cleanupFolders() {
    CleanupFolders folders{platform::homeDirectory(), platform::cacheHome()};
    if (const auto downloads = platform::downloadsDirectory())
        folders.downloads.push_back(*downloads);
    return folders;
}

/// What the first text and the first symbol would find out on the main thread: the fonts of the
/// system, and who reads pictures.
void lookAround() {
    QFontMetricsF(QGuiApplication::font()).height();
    QImageReader::supportedImageFormats();
}

} // namespace

Application::Application(const Options& options, FileOpener& opener)
    : isWindowShown_(options.isWindowShown),
      runtime_(options.decoderProgram),
      model_({.executor = runtime_.executor(),
              .indexer = runtime_.indexer(),
              .actions = runtime_.actions(),
              .folderPicker = folderPicker_,
              .clipboard = clipboard_,
              .opener = opener,
              .makeMonitor =
                  [this, dataDirectory = options.dataDirectory](FolderListener::Handlers handlers) {
                      return monitorSystemFolders(runtime_.executor(), dataDirectory,
                                                  std::move(handlers));
                  }},
             {.dataDirectory = options.dataDirectory,
              .isDataDirectoryGiven = options.isDataDirectoryGiven}),
      cleanup_(model_, {.executor = runtime_.executor(),
                        .actions = runtime_.actions(),
                        .programs = runtime_.programs(),
                        .dataHome = platform::dataHome(),
                        .dataDirectory = options.dataDirectory,
                        .folders = cleanupFolders()}),
      vault_(
          std::make_unique<VaultStore>(options.dataDirectory + "/Vault", runtime_.availability()),
          {.executor = runtime_.executor(),
           .panels = vaultDialogs_,
           .secondsSinceBoot = platform::secondsSinceBoot}),
      session_(platform::makeSessionSignals()),
      sessionLock_(*session_, runtime_.executor(), vault_),
      integration_({.executor = runtime_.executor(),
                    .model = model_,
                    .cleanup = cleanup_,
                    .vault = vault_,
                    .opener = opener,
                    .engine = engine_,
                    .dataDirectory = options.dataDirectory}) {
    runtime_.executor().run(lookAround);
    if (!options.section.isEmpty()) model_.setSection(options.section);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "App", &model_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "FolderDialogs", &folderPicker_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "Cleanup", &cleanup_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "Vault", &vault_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "VaultDialogs", &vaultDialogs_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "SystemFolderDialog", &folderDialog_);
    qmlRegisterType<StepwiseWork>("Tovi.Models", 1, 0, "StepwiseWork");
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &vault_,
                     [this](Qt::ApplicationState state) {
                         vault_.setApplicationActive(state == Qt::ApplicationActive);
                     });
    QObject::connect(&folderDialog_, &SystemFolderDialog::failed, &integration_,
                     &DesktopIntegration::showError);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    engine_.addImageProvider(QStringLiteral("preview"),
                             new PreviewImages(runtime_.decoders(), runtime_.availability()));
    engine_.addImportPath(QStringLiteral(":/qt/qml"));
    engine_.setIncubationController(&steps_);
    QObject::connect(&engine_, &QQmlEngine::quit, qGuiApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    model_.prepare(); // reads the index while the screens are made
    QQmlComponent component(&engine_, QUrl(QStringLiteral("qrc:/qt/qml/Tovi/Main.qml")));
    if (!component.isReady()) throw std::runtime_error(fromQt(component.errorString()));
    windowIncubator_.setInitialProperties(
        {{QStringLiteral("dataDirectory"),
          QFile::decodeName(QByteArray::fromStdString(options.dataDirectory))},
         {QStringLiteral("homeDirectory"), QDir::homePath()}});
    component.create(windowIncubator_);
}

void Application::followWindow(QQmlIncubator::Status status) {
    if (status == QQmlIncubator::Error) {
        for (const QQmlError& error : windowIncubator_.errors())
            qCritical("%s", qUtf8Printable(error.toString()));
        return QCoreApplication::exit(1);
    }
    if (status != QQmlIncubator::Ready) return;
    window_.reset(qobject_cast<QQuickWindow*>(windowIncubator_.object()));
    frames_.emplace(*window_);
    // In a turn of its own, for it lays out and draws the whole window.
    QMetaObject::invokeMethod(
        window_.get(),
        [this] {
            window_->setVisible(isWindowShown_);
            integration_.setWindow(*window_);
            folderPicker_.begin();
        },
        Qt::QueuedConnection);
}

} // namespace tovi
