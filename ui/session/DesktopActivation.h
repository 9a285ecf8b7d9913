#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QVariantMap>

namespace tovi {

/// Keeps to one instance per session, by the program's name on the session bus, where it answers
/// as a desktop application (org.freedesktop.Application, as freedesktop.org desktop entries have
/// it).
class DesktopActivation : public QObject {
    Q_OBJECT

  public:
    enum class Start {
        First,      // this process is the program now
        HandedOver, // another one is, and has been told what is wanted
        Alone,      // there is no bus to ask on
    };
    static constexpr const char* quickSearchAction = "quick-search";

    explicit DesktopActivation(QDBusConnection bus);

    /// To be called once. An instance that runs already shows its window, or does `action` if it
    /// is not empty, with what this process was started with.
    Start start(const QString& action, const QVariantMap& platformData);

  Q_SIGNALS:
    void activated(const QVariantMap& platformData);
    void quickSearchRequested(const QVariantMap& platformData);

  private:
    QDBusConnection bus_;
};

/// The methods on the bus.
class DesktopApplicationAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

  public:
    explicit DesktopApplicationAdaptor(DesktopActivation& activation)
        : QDBusAbstractAdaptor(&activation), activation_(activation) {}

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    // NOLINTBEGIN(readability-identifier-naming)
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& addresses, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameters,
                        const QVariantMap& platformData);
    // NOLINTEND(readability-identifier-naming)

  private:
    DesktopActivation& activation_;
};

} // namespace tovi
