#include "app/lists/RowListModel.h"

namespace tovi {

QVariant RowListModel::value(int row, const QString& role) const {
    return data(index(row, 0), roleNames().key(role.toUtf8(), -1));
}

} // namespace tovi
