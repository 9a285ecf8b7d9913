#include "ui/session/DesktopSettings.h"

#include <QFile>

namespace tovi {

DesktopSettings::DesktopSettings(const std::string& dataDirectory)
    : file_(QFile::decodeName(QByteArray::fromStdString(dataDirectory + "/desktop-settings.ini")),
            QSettings::IniFormat) {}

bool DesktopSettings::value(const char* key, bool missing) const {
    return file_.value(QLatin1String(key), missing).toBool();
}

void DesktopSettings::set(const char* key, bool isOn) {
    if (file_.value(QLatin1String(key)) == QVariant(isOn)) return;
    file_.setValue(QLatin1String(key), isOn);
    file_.sync();
    Q_EMIT changed();
    if (file_.status() != QSettings::NoError) {
        Q_EMIT failed(
            tr("Settings could not be saved: “%1” cannot be written.").arg(file_.fileName()));
    }
}

} // namespace tovi
