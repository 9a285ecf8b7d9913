#include "ui/session/DesktopSettings.h"

#include <QFile>

namespace tovi {

DesktopSettings::DesktopSettings(const std::string& dataDirectory)
    : file_(QFile::decodeName(QByteArray::fromStdString(dataDirectory + "/desktop-settings.ini")),
            QSettings::IniFormat) {}

void DesktopSettings::set(const char* key, const QVariant& value) {
    if (file_.value(QLatin1String(key)) == value) return;
    file_.setValue(QLatin1String(key), value);
    file_.sync();
    Q_EMIT changed();
    if (file_.status() != QSettings::NoError) {
        Q_EMIT failed(
            tr("Settings could not be saved: “%1” cannot be written.").arg(file_.fileName()));
    }
}

} // namespace tovi
