#include "app/model/SettingsModel.h"

#include "app/lists/QtConversions.h"

namespace tovi {

QString SettingsModel::exclusions() const {
    return toQt(exclusions_);
}

QString SettingsModel::appearance() const {
    return toQt(appearance_);
}

QString SettingsModel::themeChoice() const {
    return toQt(themeChoice_);
}

QString SettingsModel::shortcutChoice() const {
    return toQt(shortcutChoice_);
}

bool SettingsModel::assign(std::string& member, const QString& value) {
    std::string text = fromQt(value);
    if (member == text) return false;
    member = std::move(text);
    Q_EMIT changed();
    Q_EMIT edited();
    return true;
}

void SettingsModel::setExclusions(const QString& patterns) {
    if (assign(exclusions_, patterns)) Q_EMIT rulesEdited();
}

void SettingsModel::setAppearance(const QString& appearance) {
    assign(appearance_, appearance);
}

void SettingsModel::setThemeChoice(const QString& theme) {
    assign(themeChoice_, theme);
}

void SettingsModel::setDeveloperMode(bool isOn) {
    if (developerMode_ == isOn) return;
    developerMode_ = isOn;
    Q_EMIT changed();
    Q_EMIT edited();
    Q_EMIT rulesEdited();
}

void SettingsModel::setShortcutChoice(const QString& choice) {
    assign(shortcutChoice_, choice);
}

void SettingsModel::setHomeAccessOffered() {
    homeAccessOffered_ = true;
    Q_EMIT edited();
}

void SettingsModel::restore(const Preferences& preferences) {
    exclusions_ = preferences.exclusions;
    appearance_ = preferences.appearance;
    themeChoice_ = preferences.themeChoice.value_or(defaultTheme);
    developerMode_ = preferences.developerMode;
    shortcutChoice_ = preferences.shortcutChoice;
    homeAccessOffered_ = preferences.homeAccessOffered.value_or(false);
    Q_EMIT changed();
}

void SettingsModel::storeIn(Preferences& preferences) const {
    preferences.exclusions = exclusions_;
    preferences.appearance = appearance_;
    preferences.themeChoice = themeChoice_;
    preferences.developerMode = developerMode_;
    preferences.shortcutChoice = shortcutChoice_;
    preferences.homeAccessOffered = homeAccessOffered_;
}

} // namespace tovi
