#pragma once

#include "base/Date.h"

#include <QDateTime>
#include <QString>
#include <cmath>
#include <string>
#include <string_view>

namespace tovi {

inline QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Local time, to the millisecond.
inline QDateTime toQt(Date date) {
    return QDateTime::fromMSecsSinceEpoch(std::llround(date.seconds * 1000));
}

inline std::string fromQt(const QString& text) {
    return text.toStdString();
}

} // namespace tovi
