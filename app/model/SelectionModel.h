#pragma once

#include "core/records/FileRecord.h"

#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVariantMap>
#include <optional>
#include <vector>

namespace tovi {

/// The files the user works on: the one in the preview and the selected ones, by their paths.
class SelectionModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringList selectedIDs READ selectedIDs WRITE setSelectedIDs NOTIFY changed)
    Q_PROPERTY(int count READ count NOTIFY changed)
    Q_PROPERTY(QVariantMap selectedFile READ selectedFileValues NOTIFY changed)

  public:
    using QObject::QObject;

    /// Paths in the order they were selected, each once.
    QStringList selectedIDs() const { return selectedIDs_; }
    void setSelectedIDs(const QStringList& paths);
    int count() const { return static_cast<int>(selectedIDs_.size()); }
    Q_INVOKABLE bool contains(const QString& path) const { return selected_.contains(path); }

    const std::optional<FileRecord>& selectedFile() const { return selectedFile_; }
    QVariantMap selectedFileValues() const;
    void setSelectedFile(std::optional<FileRecord> file);

    /// What an operation applies to: the selected files, else the one in the preview.
    std::vector<std::string> paths() const;

    Q_INVOKABLE void toggle(const QString& path);
    Q_INVOKABLE void clear();

  Q_SIGNALS:
    void changed();

  private:
    QStringList selectedIDs_;
    QSet<QString> selected_; // the same
    std::optional<FileRecord> selectedFile_;
};

} // namespace tovi
