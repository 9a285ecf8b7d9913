#pragma once

#include "base/Date.h"

#include <QString>
#include <cmath>
#include <string>
#include <string_view>

namespace tovi {

inline QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Since the epoch, rounded: what a Date of JavaScript is made of. As a QDateTime it would be
/// brought to local time with every copy, for which the C library looks on the disk for a changed
/// time zone.
inline double toMilliseconds(Date date) {
    return std::round(date.seconds * 1000);
}

inline std::string fromQt(const QString& text) {
    return text.toStdString();
}

} // namespace tovi
