#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>
#include <functional>

namespace tovi {

/// The portals of the desktop (https://flatpak.github.io/xdg-desktop-portal/docs/).
namespace portal {

inline const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
inline const QString path = QStringLiteral("/org/freedesktop/portal/desktop");

/// A word that no other request or session of this process has.
QString newToken();

} // namespace portal

/// One request to a portal, which answers with a signal when it pleases, perhaps after the user.
/// Deletes itself after the answer.
class PortalRequest : public QObject {
    Q_OBJECT

  public:
    enum class Result { Granted, Refused, Unavailable };
    using Answer = std::function<void(Result result, const QVariantMap& values)>;

    /// Calls `method` with `arguments` and, last, the options. `answer` is called once, later,
    /// unless `context` is gone by then.
    static void send(const QDBusConnection& bus, const QString& interface, const QString& method,
                     const QVariantList& arguments, QVariantMap options, QObject* context,
                     Answer answer);

  private Q_SLOTS:
    void respond(const QDBusMessage& message);

  private: // NOLINT(readability-redundant-access-specifiers)
    PortalRequest(QDBusConnection bus, QObject* context, Answer answer);
    void listen(const QString& request);
    void finish(Result result, const QVariantMap& values);

    QDBusConnection bus_;
    Answer answer_;
    QString request_; // listened to
};

} // namespace tovi
