#include "ui/desktop/Application.h"

#include "app/monitor/FolderMonitor.h"
#include "platform/BootClock.h"
#include "platform/StandardLocations.h"
#include "ui/desktop/PreviewImages.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickWindow>

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

} // namespace

Application::Application(const Options& options, FileOpener& opener)
    : runtime_(options.decoderProgram),
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
    if (!options.section.isEmpty()) model_.setSection(options.section);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "App", &model_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "FolderDialogs", &folderPicker_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "Cleanup", &cleanup_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "Vault", &vault_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "VaultDialogs", &vaultDialogs_);
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &vault_,
                     [this](Qt::ApplicationState state) {
                         vault_.setApplicationActive(state == Qt::ApplicationActive);
                     });
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    engine_.addImageProvider(QStringLiteral("preview"),
                             new PreviewImages(runtime_.decoders(), runtime_.availability()));
    engine_.addImportPath(QStringLiteral(":/qt/qml"));
    engine_.setInitialProperties(
        {{QStringLiteral("dataDirectory"),
          QFile::decodeName(QByteArray::fromStdString(options.dataDirectory))},
         {QStringLiteral("homeDirectory"), QDir::homePath()},
         {QStringLiteral("visible"), options.isWindowShown}});
    model_.prepare(); // reads the index while the screens are loaded
    engine_.load(QUrl(QStringLiteral("qrc:/qt/qml/Tovi/Main.qml")));
}

QQuickWindow* Application::window() const {
    const QList<QObject*> roots = engine_.rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.first());
}

} // namespace tovi
