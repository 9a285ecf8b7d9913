#pragma once

#include "app/quicksearch/QuickSearchState.h"

#include <QQuickWindow>

class QQmlEngine;

namespace tovi {

/// Shows and hides the quick search panel. The panel is made when it is first shown.
class QuickSearchPanelController : public QObject {
    Q_OBJECT

  public:
    QuickSearchPanelController(QQmlEngine& engine, QuickSearchState& state);

    /// Shows the panel over all windows, its field focused and its text selected.
    Q_INVOKABLE void present(const QVariantMap& platformData = {});
    bool isShown() const { return panel_ && panel_->isVisible(); }
    /// Searches again if the panel is shown.
    void refresh();

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    void dismiss();

  Q_SIGNALS:
    void dismissed();

  private:
    QQmlEngine& engine_;
    QuickSearchState& state_;
    std::unique_ptr<QQuickWindow> panel_;
};

} // namespace tovi
