#include "app/lists/RowListModel.h"

#include <algorithm>

namespace tovi {

QVariant RowListModel::value(int row, const QString& role) const {
    return data(index(row, 0), roleNames().key(role.toUtf8(), -1));
}

QStringList RowListModel::texts(const QString& role, int first, int last) const {
    const int key = roleNames().key(role.toUtf8(), -1);
    const int end = last < 0 ? count() : std::min(last + 1, count());
    QStringList texts;
    for (int row = std::max(first, 0); row < end; ++row)
        texts.append(data(index(row, 0), key).toString());
    return texts;
}

} // namespace tovi
