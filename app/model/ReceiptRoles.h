#pragma once

#include "app/lists/QtConversions.h"

#include <QStringList>
#include <algorithm>

namespace tovi {

/// What receipts of every kind tell of their entries: where the first three were.
template <typename Receipt>
QStringList firstPathsOf(const Receipt& receipt) {
    QStringList paths;
    for (std::size_t at = 0; at < std::min<std::size_t>(receipt.entries.size(), 3); ++at)
        paths.append(toQt(receipt.entries[at].originalPath));
    return paths;
}

template <typename Receipt>
int restoredCount(const Receipt& receipt) {
    return static_cast<int>(std::count_if(receipt.entries.begin(), receipt.entries.end(),
                                          [](const auto& entry) { return entry.restored; }));
}

template <typename Receipt>
bool canUndo(const Receipt& receipt) {
    return restoredCount(receipt) < static_cast<int>(receipt.entries.size());
}

} // namespace tovi
