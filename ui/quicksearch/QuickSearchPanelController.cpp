#include "ui/quicksearch/QuickSearchPanelController.h"

#include "ui/session/ActivationToken.h"

#include <QQmlComponent>

namespace tovi {

QuickSearchPanelController::QuickSearchPanelController(QQmlEngine& engine, QuickSearchState& state)
    : engine_(engine), state_(state) {
    connect(&state, &QuickSearchState::finished, this, &QuickSearchPanelController::dismiss);
}

void QuickSearchPanelController::present(const QVariantMap& platformData) {
    if (!panel_) {
        QQmlComponent component(
            &engine_, QUrl(QStringLiteral("qrc:/qt/qml/Tovi/quicksearch/QuickSearchPanel.qml")));
        panel_.reset(qobject_cast<QQuickWindow*>(component.create()));
        if (!panel_) return qCritical("%s", qUtf8Printable(component.errorString()));
        connect(panel_.get(), SIGNAL(dismissed()), this, SLOT(dismiss()));
    }
    QMetaObject::invokeMethod(panel_.get(), "present");
    activate(*panel_, platformData);
    state_.present();
}

void QuickSearchPanelController::refresh() {
    if (isShown()) state_.present();
}

void QuickSearchPanelController::dismiss() {
    if (!isShown()) return;
    panel_->hide();
    state_.invalidate();
    Q_EMIT dismissed();
}

} // namespace tovi
