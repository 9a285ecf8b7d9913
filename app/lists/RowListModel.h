#pragma once

#include <QAbstractListModel>

namespace tovi {

/// What all lists of the application offer to QML besides the model interface.
class RowListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

  public:
    using QAbstractListModel::QAbstractListModel;

    int count() const { return rowCount({}); }

    /// The value of a role, by its name, in a row; invalid where there is none.
    Q_INVOKABLE QVariant value(int row, const QString& role) const;

    /// The texts of a role in the rows from `first` to `last`; of all there are without the two.
    Q_INVOKABLE QStringList texts(const QString& role, int first = 0, int last = -1) const;

    /// The row of an identity, or -1. Takes time in proportion to the list.
    Q_INVOKABLE virtual int rowOf(const QString& identity) const = 0;

  Q_SIGNALS:
    void countChanged();
};

} // namespace tovi
