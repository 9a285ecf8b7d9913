#pragma once

#include "app/preferences/Preferences.h"

#include <QObject>

namespace tovi {

/// The settings that the user types or chooses. Every change is saved at once.
class SettingsModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString exclusions READ exclusions WRITE setExclusions NOTIFY changed)
    Q_PROPERTY(QString appearance READ appearance WRITE setAppearance NOTIFY changed)
    Q_PROPERTY(QString themeChoice READ themeChoice WRITE setThemeChoice NOTIFY changed)
    Q_PROPERTY(bool developerMode READ developerMode WRITE setDeveloperMode NOTIFY changed)
    Q_PROPERTY(QString shortcutChoice READ shortcutChoice WRITE setShortcutChoice NOTIFY changed)

  public:
    using QObject::QObject;

    /// One skip pattern a line.
    QString exclusions() const;
    QString appearance() const;
    QString themeChoice() const;
    /// Whether text inside source code and configuration files is searched.
    bool developerMode() const { return developerMode_; }
    QString shortcutChoice() const;
    bool homeAccessOffered() const { return homeAccessOffered_; }

    void setExclusions(const QString& patterns);
    void setAppearance(const QString& appearance);
    void setThemeChoice(const QString& theme);
    void setDeveloperMode(bool isOn);
    void setShortcutChoice(const QString& choice);
    void setHomeAccessOffered();

    std::vector<std::string> skipList() const { return exclusionPatterns(exclusions_); }

    void restore(const Preferences& preferences);
    void storeIn(Preferences& preferences) const;

  Q_SIGNALS:
    void changed();
    void edited();      // by the user: to be saved
    void rulesEdited(); // what a scan reads has changed

  private:
    bool assign(std::string& member, const QString& value);

    std::string exclusions_ = defaultExclusions;
    std::string appearance_ = "light";
    std::string themeChoice_ = defaultTheme;
    bool developerMode_ = false;
    std::string shortcutChoice_ = "commandShiftSpace";
    bool homeAccessOffered_ = false;
};

} // namespace tovi
