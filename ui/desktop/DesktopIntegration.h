#pragma once

#include "app/model/AppModel.h"
#include "ui/desktop/DesktopActivation.h"
#include "ui/desktop/GlobalHotKey.h"
#include "ui/desktop/QuickSearchPanelController.h"

class QQmlApplicationEngine;

namespace tovi {

/// Ties the window and the quick search panel to what the desktop asks for.
class DesktopIntegration : public QObject {
    Q_OBJECT

  public:
    DesktopIntegration(Executor& executor, AppModel& model, FileOpener& opener,
                       QQmlApplicationEngine& engine);

    /// Does from now on what the session bus asks for.
    void obey(const DesktopActivation& activation);

    void showWindow();
    void showQuickSearch();

  private:
    QQuickWindow* window() const;
    void registerShortcut();

    AppModel& model_;
    QQmlApplicationEngine& engine_;
    GlobalHotKey hotKey_;
    QuickSearchState quickSearch_;
    QuickSearchPanelController panel_;
};

} // namespace tovi
