#pragma once

#include "app/lists/RecordList.h"
#include "app/model/AppModel.h"

#include <QDBusConnection>
#include <QQmlEngine>
#include <memory>

namespace tovi {

/// The program's icon in the tray of the desktop (StatusNotifierItem, as freedesktop.org has it).
/// The icon and its menu exist only while something shows them; QML knows this as Tray.
class Tray : public QObject {
    Q_OBJECT
    Q_PROPERTY(tovi::RowListModel* latest READ latest CONSTANT)
    Q_PROPERTY(bool isShown READ isShown NOTIFY shownChanged)

  public:
    static constexpr std::size_t latestCount = 5;

    /// What is given outlives the tray.
    Tray(QDBusConnection bus, QQmlEngine& engine, Executor& executor, AppModel& model);
    ~Tray() override;

    /// Puts the icon up from now on, whenever there is something that shows it.
    void appear();

    /// The newest downloads as of the last `refresh`.
    RowListModel* latest() { return &latest_; }
    bool isShown() const { return icon_ != nullptr; }

    /// The menu is about to be opened.
    Q_INVOKABLE void refresh();

  Q_SIGNALS:
    void shownChanged();
    void windowRequested();
    void quickSearchRequested();

  private Q_SLOTS:
    void findHost();

  private: // NOLINT(readability-redundant-access-specifiers)
    void setShown(bool isShown);

    QDBusConnection bus_;
    QQmlEngine& engine_;
    Executor& executor_;
    AppModel& model_;
    RecordList latest_;
    std::unique_ptr<QObject> icon_;
    bool isWanted_ = false;
    Generation generation_;
};

} // namespace tovi
