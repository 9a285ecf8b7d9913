#pragma once

#include "app/model/AppModel.h"
#include "ui/desktop/DesktopActivation.h"
#include "ui/desktop/DesktopSettings.h"
#include "ui/desktop/GlobalHotKey.h"
#include "ui/desktop/QuickSearchPanelController.h"
#include "ui/desktop/SystemAppearance.h"
#include "ui/desktop/Tray.h"

class QQmlApplicationEngine;

namespace tovi {

/// Ties the window and the quick search panel to what the desktop asks for.
class DesktopIntegration : public QObject {
    Q_OBJECT

  public:
    static constexpr double trayPatience = 10; // seconds for a tray that vanished to come back

    /// All outlive the integration.
    struct Parts {
        Executor& executor;
        AppModel& model;
        FileOpener& opener;
        QQmlApplicationEngine& engine;
        const std::string& dataDirectory;
    };

    explicit DesktopIntegration(const Parts& parts);

    /// Does from now on what the session bus asks for.
    void obey(const DesktopActivation& activation);

    /// In front, as far as the desktop allows that for `platformData`.
    void showWindow(const QVariantMap& platformData);
    void showQuickSearch(const QVariantMap& platformData);

  private:
    QQuickWindow* window() const;
    void registerShortcut();
    bool livesInTray() const { return tray_.isShown() && settings_.staysInTray(); }
    void followTray();

    Executor& executor_;
    AppModel& model_;
    QQmlApplicationEngine& engine_;
    DesktopSettings settings_;
    SystemAppearance appearance_{QDBusConnection::sessionBus()};
    Tray tray_;
    GlobalHotKey hotKey_;
    QuickSearchState quickSearch_;
    QuickSearchPanelController panel_;
};

} // namespace tovi
