#pragma once

#include "app/model/AppModel.h"
#include "app/vault/VaultModel.h"
#include "ui/desktop/Presence.h"
#include "ui/quicksearch/QuickSearchPanelController.h"
#include "ui/session/DesktopActivation.h"
#include "ui/session/DesktopSettings.h"
#include "ui/session/LongWorkNotices.h"
#include "ui/session/Notifications.h"
#include "ui/session/ScreenSaver.h"
#include "ui/session/SystemAppearance.h"
#include "ui/session/SystemSearch.h"
#include "ui/session/Tray.h"
#include "ui/shortcut/GlobalHotKey.h"

#include <QPointer>
#include <optional>

class QQmlEngine;
class QQuickWindow;

namespace tovi {

/// Ties the window and the quick search panel to what the desktop asks for.
class DesktopIntegration : public QObject {
    Q_OBJECT

  public:
    static constexpr double closingTime = 1; // seconds in which a program that quits is gone

    /// All outlive the integration.
    struct Parts {
        Executor& executor;
        AppModel& model;
        CleanupModel& cleanup;
        VaultModel& vault;
        FileOpener& opener;
        QQmlEngine& engine;
        const std::string& dataDirectory;
    };

    explicit DesktopIntegration(const Parts& parts);

    /// The one that is shown when it is asked for; before there is none, the wish is kept.
    void setWindow(QQuickWindow& window);

    /// Does from now on what the session bus asks for.
    void obey(const DesktopActivation& activation, SystemSearch& search);

    /// In front, as far as the desktop allows that for `platformData`.
    void showWindow(const QVariantMap& platformData);
    void showQuickSearch(const QVariantMap& platformData);
    /// Above the screen, in a window that is shown for it or asks for attention. A whole sentence.
    void showError(const QString& sentence);
    QuickSearchState& quickSearch() { return quickSearch_; }

  private:
    bool isWindowShown() const;
    void registerShortcut();
    bool livesInTray() const { return tray_.isShown() && settings_.staysInTray(); }
    void followTray();
    void explainTray();
    void tell(const LongWorkNotice& notice);

    Executor& executor_;
    AppModel& model_;
    QPointer<QQuickWindow> window_;
    std::optional<QVariantMap> wanted_; // asked for before there was a window
    DesktopSettings settings_;
    SystemAppearance appearance_{QDBusConnection::sessionBus()};
    Tray tray_;
    Notifications notifications_{QDBusConnection::sessionBus()};
    LongWorkNotices longWork_;
    ScreenSaver screenSaver_{QDBusConnection::sessionBus()};
    GlobalHotKey hotKey_;
    QuickSearchState quickSearch_;
    QuickSearchPanelController panel_;
    Presence presence_;
};

} // namespace tovi
