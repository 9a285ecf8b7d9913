#include "ui/desktop/DesktopIntegration.h"

#include "ui/desktop/ActivationToken.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>

namespace tovi {

DesktopIntegration::DesktopIntegration(const Parts& parts)
    : executor_(parts.executor),
      model_(parts.model),
      engine_(parts.engine),
      settings_(parts.dataDirectory),
      tray_(QDBusConnection::sessionBus(), parts.engine, parts.executor, parts.model),
      hotKey_(makeHotKeySource()),
      quickSearch_(parts.executor, *parts.model.search(), parts.opener),
      panel_(parts.engine, quickSearch_) {
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "Desktop", &settings_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "SystemAppearance", &appearance_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "Tray", &tray_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "QuickSearch", &quickSearch_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "QuickPanel", &panel_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "HotKey", &hotKey_);
    connect(&hotKey_, &GlobalHotKey::pressed, this, [this](const QString& token) {
        showQuickSearch({{QStringLiteral("activation-token"), token}});
    });
    connect(&hotKey_, &GlobalHotKey::refused, this,
            [this] { model_.notices()->setError(hotKey_.message().toStdString()); });
    connect(&model_, &AppModel::loaded, this, &DesktopIntegration::registerShortcut);
    connect(model_.settings(), &SettingsModel::changed, this,
            &DesktopIntegration::registerShortcut);
    // Started for the panel alone, the program ends with it.
    connect(&panel_, &QuickSearchPanelController::dismissed, this, [this] {
        if (!window()->isVisible() && !livesInTray()) QCoreApplication::quit();
    });
    connect(&settings_, &DesktopSettings::failed, this, [this](const QString& sentence) {
        model_.notices()->setError(sentence.toStdString());
    });
    connect(&settings_, &DesktopSettings::changed, this, &DesktopIntegration::followTray);
    connect(&tray_, &Tray::shownChanged, this, &DesktopIntegration::followTray);
    connect(&tray_, &Tray::windowRequested, this, [this] { showWindow({}); });
    connect(&tray_, &Tray::quickSearchRequested, this, [this] { showQuickSearch({}); });
    // A panel shown before the index was open searches once it is.
    connect(&model_, &AppModel::loaded, &panel_, &QuickSearchPanelController::refresh);
}

void DesktopIntegration::obey(const DesktopActivation& activation) {
    connect(&activation, &DesktopActivation::activated, this, &DesktopIntegration::showWindow);
    connect(&activation, &DesktopActivation::quickSearchRequested, this,
            &DesktopIntegration::showQuickSearch);
}

QQuickWindow* DesktopIntegration::window() const {
    return qobject_cast<QQuickWindow*>(engine_.rootObjects().value(0));
}

void DesktopIntegration::showWindow(const QVariantMap& platformData) {
    window()->setWindowStates(window()->windowStates() & ~Qt::WindowMinimized);
    window()->show();
    activate(*window(), platformData);
}

/// Nothing that runs may be out of reach: without a tray a closed window is the end, and a window
/// whose tray vanished comes back, out of the way.
void DesktopIntegration::followTray() {
    QGuiApplication::setQuitOnLastWindowClosed(!livesInTray());
    if (tray_.isShown()) return;
    runAfter(executor_, this, trayPatience, [this] {
        if (!tray_.isShown() && !window()->isVisible()) window()->showMinimized();
    });
}

void DesktopIntegration::registerShortcut() {
    if (model_.isLoaded()) hotKey_.registerChoice(model_.settings()->shortcutChoice());
}

void DesktopIntegration::showQuickSearch(const QVariantMap& platformData) {
    panel_.present(platformData);
}

} // namespace tovi
