#pragma once

#include <QObject>
#include <QSettings>

namespace tovi {

/// How the program lives on its desktop: the file "desktop-settings.ini" of the data directory.
/// Every change is written at once. Lives on the main thread.
class DesktopSettings : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool staysInTray READ staysInTray WRITE setStaysInTray NOTIFY changed)
    Q_PROPERTY(bool notifies READ notifies WRITE setNotifies NOTIFY changed)
    Q_PROPERTY(bool answersSystemSearch READ answersSystemSearch WRITE setAnswersSystemSearch NOTIFY
                   changed)
    Q_PROPERTY(QString moreContrast READ moreContrast WRITE setMoreContrast NOTIFY changed)
    Q_PROPERTY(QString lessMotion READ lessMotion WRITE setLessMotion NOTIFY changed)

  public:
    explicit DesktopSettings(const std::string& dataDirectory);

    /// Whether closing the window leaves the program in the tray, where there is one.
    bool staysInTray() const { return value("staysInTray", true); }
    /// Whether long work that ends behind other windows is told of.
    bool notifies() const { return value("notifies", true); }
    /// Whether the search of the desktop finds files of the index.
    bool answersSystemSearch() const { return value("answersSystemSearch", false); }
    /// "on", "off", or "system" for as the desktop wants it.
    QString moreContrast() const { return value("moreContrast", QStringLiteral("system")); }
    QString lessMotion() const { return value("lessMotion", QStringLiteral("system")); }

    /// Whether the user knows that a closed window leaves the program in the tray.
    bool knowsTray() const { return value("knowsTray", false); }

    void setKnowsTray() { set("knowsTray", true); }
    void setStaysInTray(bool isOn) { set("staysInTray", isOn); }
    void setNotifies(bool isOn) { set("notifies", isOn); }
    void setAnswersSystemSearch(bool isOn) { set("answersSystemSearch", isOn); }
    void setMoreContrast(const QString& choice) { set("moreContrast", choice); }
    void setLessMotion(const QString& choice) { set("lessMotion", choice); }

  Q_SIGNALS:
    void changed();
    /// The change holds until the program ends. A whole sentence.
    void failed(const QString& sentence);

  private:
    template <typename Value>
    Value value(const char* key, const Value& missing) const {
        return file_.value(QLatin1String(key), missing).template value<Value>();
    }
    void set(const char* key, const QVariant& value);

    QSettings file_;
};

} // namespace tovi
