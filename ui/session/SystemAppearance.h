#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

namespace tovi {

/// How the desktop wants its programs to look (org.freedesktop.portal.Settings), as it is at every
/// moment. Without a portal there are no wishes. QML knows this as SystemAppearance.
class SystemAppearance : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool knowsScheme READ knowsScheme NOTIFY changed)
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(bool hasHighContrast READ hasHighContrast NOTIFY changed)
    Q_PROPERTY(bool hasReducedMotion READ hasReducedMotion NOTIFY changed)

  public:
    explicit SystemAppearance(QDBusConnection bus);

    /// Whether the desktop says if it is light or dark.
    bool knowsScheme() const { return value(Wish::Scheme) != 0; }
    bool isDark() const { return value(Wish::Scheme) == 1; }
    bool hasHighContrast() const { return value(Wish::Contrast) == 1; }
    bool hasReducedMotion() const { return value(Wish::Motion) == 1; }

  Q_SIGNALS:
    void changed();

  private Q_SLOTS:
    void change(const QString& space, const QString& key, const QDBusVariant& value);

  private: // NOLINT(readability-redundant-access-specifiers)
    enum class Wish { Scheme, Contrast, Motion };

    void read();
    uint value(Wish wish) const { return wishes_.value(wish); }

    QDBusConnection bus_;
    QMap<Wish, uint> wishes_;
};

} // namespace tovi
