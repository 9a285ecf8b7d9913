#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QVariantMap>

namespace tovi {

/// How the desktop wants its programs to look (org.freedesktop.portal.Settings), as it is at every
/// moment; where it is older than a common key, in the keys of GNOME and KDE. Without a portal
/// there are no wishes. QML knows this as SystemAppearance.
class SystemAppearance : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool knowsScheme READ knowsScheme NOTIFY changed)
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(bool hasHighContrast READ hasHighContrast NOTIFY changed)
    Q_PROPERTY(bool hasReducedMotion READ hasReducedMotion NOTIFY changed)

  public:
    explicit SystemAppearance(QDBusConnection bus);

    /// Whether the desktop says if it is light or dark.
    bool knowsScheme() const;
    bool isDark() const;
    bool hasHighContrast() const;
    bool hasReducedMotion() const;

  Q_SIGNALS:
    void changed();

  private Q_SLOTS:
    void change(const QString& space, const QString& key, const QDBusVariant& value);

  private: // NOLINT(readability-redundant-access-specifiers)
    void read();
    QVariant value(const QString& space, const char* key) const;

    QDBusConnection bus_;
    QMap<QString, QVariantMap> values_; // by their space
};

} // namespace tovi
