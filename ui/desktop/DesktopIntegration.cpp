#include "ui/desktop/DesktopIntegration.h"

#include "ui/session/ActivationToken.h"

#include <QGuiApplication>
#include <QQuickWindow>

namespace tovi {

DesktopIntegration::DesktopIntegration(const Parts& parts)
    : executor_(parts.executor),
      model_(parts.model),
      settings_(parts.dataDirectory),
      tray_(QDBusConnection::sessionBus(), parts.engine, parts.executor, parts.model),
      longWork_(parts.executor, parts.model, parts.cleanup),
      hotKey_(makeHotKeySource()),
      quickSearch_(parts.executor, *parts.model.search(), parts.opener),
      panel_(parts.engine, quickSearch_),
      presence_(parts.executor, [this] {
          return Presence::Shown{isWindowShown(), panel_.isShown(), livesInTray()};
      }) {
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
    // Started for the panel alone, or for a question, the program ends after it.
    connect(&panel_, &QuickSearchPanelController::dismissed, &presence_, &Presence::leavePanel);
    connect(&presence_, &Presence::ended, qGuiApp, &QCoreApplication::quit);
    connect(&presence_, &Presence::windowWanted, this, [this] {
        if (window_) window_->showMinimized();
    });
    connect(&settings_, &DesktopSettings::failed, this, &DesktopIntegration::showError);
    connect(&settings_, &DesktopSettings::changed, this, &DesktopIntegration::followTray);
    connect(&tray_, &Tray::shownChanged, this, &DesktopIntegration::followTray);
    connect(qGuiApp, &QGuiApplication::lastWindowClosed, this,
            [this] { runAfter(executor_, this, closingTime, [this] { explainTray(); }); });
    connect(&tray_, &Tray::windowRequested, this, [this] { showWindow({}); });
    connect(&tray_, &Tray::quickSearchRequested, this, [this] { showQuickSearch({}); });
    connect(&longWork_, &LongWorkNotices::ended, this, &DesktopIntegration::tell);
    connect(&screenSaver_, &ScreenSaver::locked, &parts.vault,
            [&vault = parts.vault] { vault.sessionInterrupted(nullptr); });
    // A panel shown before the index was open searches once it is.
    connect(&model_, &AppModel::loaded, &panel_, &QuickSearchPanelController::refresh);
}

void DesktopIntegration::obey(const DesktopActivation& activation, SystemSearch& search) {
    connect(&activation, &DesktopActivation::activated, this, &DesktopIntegration::showWindow);
    connect(&activation, &DesktopActivation::quickSearchRequested, this,
            &DesktopIntegration::showQuickSearch);
    search.answerFrom(executor_, model_, settings_);
    connect(&search, &SystemSearch::asked, &presence_, &Presence::answer);
    connect(&search, &SystemSearch::openRequested, this, [this](const QString& path) {
        if (!model_.open(path)) showWindow({});
    });
    connect(&search, &SystemSearch::revealRequested, this, [this](const QString& path) {
        if (!model_.reveal(path)) showWindow({});
    });
    connect(&search, &SystemSearch::searchRequested, this, [this](const QString& phrase) {
        model_.setSection(QStringLiteral("search"));
        model_.search()->search(phrase);
        showWindow({});
    });
}

void DesktopIntegration::setWindow(QQuickWindow& window) {
    window_ = &window;
    if (wanted_) return showWindow(*std::exchange(wanted_, {}));
    if (window.isVisible()) tray_.appear();
}

bool DesktopIntegration::isWindowShown() const {
    return window_ && window_->isVisible();
}

void DesktopIntegration::showError(const QString& sentence) {
    model_.notices()->setError(sentence.toStdString());
    if (isWindowShown()) return window_->alert(0);
    showWindow({});
}

void DesktopIntegration::showWindow(const QVariantMap& platformData) {
    if (!window_) {
        wanted_ = platformData;
        return;
    }
    activate(*window_, platformData);
    tray_.appear();
}

/// Without a tray a closed window is the end.
void DesktopIntegration::followTray() {
    QGuiApplication::setQuitOnLastWindowClosed(!livesInTray());
    if (!tray_.isShown()) presence_.loseTray();
}

void DesktopIntegration::explainTray() {
    if (!livesInTray() || isWindowShown() || settings_.knowsTray()) return;
    settings_.setKnowsTray();
    notifications_.show(tr("Tovi goes on in the tray"),
                        tr("Its icon there opens the window again or quits. Settings can end Tovi "
                           "with its window."),
                        {{tr("Open window"),
                          [this](const QString& token) {
                              showWindow({{QStringLiteral("activation-token"), token}});
                          }},
                         {tr("Quit"), [](const QString&) { QCoreApplication::quit(); }}});
}

void DesktopIntegration::tell(const LongWorkNotice& notice) {
    if (!settings_.notifies() || QGuiApplication::focusWindow()) return;
    QList<Notifications::Action> actions{
        {tr("Show"), [this, section = notice.section](const QString& token) {
             model_.setSection(section);
             showWindow({{QStringLiteral("activation-token"), token}});
         }}};
    if (notice.undo) actions.append({tr("Undo"), [undo = notice.undo](const QString&) { undo(); }});
    notifications_.show(notice.title, notice.text, actions);
}

void DesktopIntegration::registerShortcut() {
    if (model_.isLoaded()) hotKey_.registerChoice(model_.settings()->shortcutChoice());
}

void DesktopIntegration::showQuickSearch(const QVariantMap& platformData) {
    panel_.present(platformData);
}

} // namespace tovi
