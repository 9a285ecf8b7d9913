#include "app/model/SelectionModel.h"

#include "app/lists/QtConversions.h"
#include "app/lists/RecordList.h"

namespace tovi {

void SelectionModel::setSelectedIDs(const QStringList& paths) {
    QStringList unique = paths;
    unique.removeDuplicates();
    if (unique == selectedIDs_) return;
    selectedIDs_ = unique;
    selected_ = QSet<QString>(unique.begin(), unique.end());
    Q_EMIT changed();
}

QVariantMap SelectionModel::selectedFileValues() const {
    return selectedFile_ ? toVariantMap(*selectedFile_) : QVariantMap();
}

void SelectionModel::setSelectedFile(std::optional<FileRecord> file) {
    if (file == selectedFile_) return;
    selectedFile_ = std::move(file);
    Q_EMIT changed();
}

std::vector<std::string> SelectionModel::paths() const {
    std::vector<std::string> paths;
    for (const QString& path : selectedIDs_)
        paths.push_back(fromQt(path));
    if (paths.empty() && selectedFile_) paths.push_back(selectedFile_->path);
    return paths;
}

void SelectionModel::toggle(const QString& path) {
    if (selected_.remove(path)) {
        selectedIDs_.removeOne(path);
    } else {
        selectedIDs_.append(path);
        selected_.insert(path);
    }
    Q_EMIT changed();
}

void SelectionModel::clear() {
    if (selectedIDs_.isEmpty() && !selectedFile_) return;
    selectedIDs_.clear();
    selected_.clear();
    selectedFile_.reset();
    Q_EMIT changed();
}

} // namespace tovi
