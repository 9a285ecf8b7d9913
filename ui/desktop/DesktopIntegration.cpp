#include "ui/desktop/DesktopIntegration.h"

#include <QCoreApplication>
#include <QQmlApplicationEngine>

namespace tovi {

DesktopIntegration::DesktopIntegration(Executor& executor, AppModel& model, FileOpener& opener,
                                       QQmlApplicationEngine& engine)
    : model_(model),
      engine_(engine),
      quickSearch_(executor, *model.search(), opener),
      panel_(engine, quickSearch_) {
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "QuickSearch", &quickSearch_);
    qmlRegisterSingletonInstance("Tovi.Models", 1, 0, "HotKey", &hotKey_);
    connect(&hotKey_, &GlobalHotKey::pressed, this, &DesktopIntegration::showQuickSearch);
    connect(&hotKey_, &GlobalHotKey::refused, this,
            [this] { model_.notices()->setError(hotKey_.message().toStdString()); });
    connect(&model, &AppModel::loaded, this, &DesktopIntegration::registerShortcut);
    connect(model.settings(), &SettingsModel::changed, this, &DesktopIntegration::registerShortcut);
    // Started for the panel alone, the program ends with it.
    connect(&panel_, &QuickSearchPanelController::dismissed, this, [this] {
        if (!window()->isVisible()) QCoreApplication::quit();
    });
    // A panel shown before the index was open searches once it is.
    connect(&model, &AppModel::loaded, &panel_, &QuickSearchPanelController::refresh);
}

void DesktopIntegration::obey(const DesktopActivation& activation) {
    connect(&activation, &DesktopActivation::activated, this, &DesktopIntegration::showWindow);
    connect(&activation, &DesktopActivation::quickSearchRequested, this,
            &DesktopIntegration::showQuickSearch);
}

QQuickWindow* DesktopIntegration::window() const {
    return qobject_cast<QQuickWindow*>(engine_.rootObjects().value(0));
}

void DesktopIntegration::showWindow() {
    window()->setWindowStates(window()->windowStates() & ~Qt::WindowMinimized);
    window()->show();
    window()->raise();
    window()->requestActivate();
}

void DesktopIntegration::registerShortcut() {
    if (model_.isLoaded()) hotKey_.registerChoice(model_.settings()->shortcutChoice());
}

void DesktopIntegration::showQuickSearch() {
    panel_.present();
}

} // namespace tovi
