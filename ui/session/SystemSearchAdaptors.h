#pragma once

#include "ui/session/SystemSearch.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>

namespace tovi {

/// As KRunner has it: (sssida{sv}).
struct RunnerMatch {
    QString path;
    QString name;
    QString icon;
    int type = 0;
    double relevance = 0; // 0 to 1
    QVariantMap properties;
};
/// (sss).
struct RunnerAction {
    QString name;
    QString text;
    QString icon;
};

// The answers of both come later; what the slots return tells Qt their types only.
// NOLINTBEGIN(readability-identifier-naming)

/// https://developer.gnome.org/documentation/tutorials/search-provider.html
class ShellSearchAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Shell.SearchProvider2")

  public:
    ShellSearchAdaptor(QObject* object, SystemSearch& search)
        : QDBusAbstractAdaptor(object), search_(search) {}

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    QStringList GetInitialResultSet(const QStringList& terms, const QDBusMessage& call);
    QStringList GetSubsearchResultSet(const QStringList& previous, const QStringList& terms,
                                      const QDBusMessage& call);
    QList<QVariantMap> GetResultMetas(const QStringList& paths, const QDBusMessage& call);
    void ActivateResult(const QString& path, const QStringList& terms, uint timestamp);
    void LaunchSearch(const QStringList& terms, uint timestamp);

  private:
    SystemSearch& search_;
};

/// https://develop.kde.org/docs/plasma/krunner/
class RunnerAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.krunner1")

  public:
    RunnerAdaptor(QObject* object, SystemSearch& search);

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    QList<tovi::RunnerAction> Actions();
    QList<tovi::RunnerMatch> Match(const QString& phrase, const QDBusMessage& call);
    void Run(const QString& path, const QString& action);

  private:
    SystemSearch& search_;
};
// NOLINTEND(readability-identifier-naming)

} // namespace tovi
