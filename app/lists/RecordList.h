#pragma once

#include "app/lists/DifferenceListModel.h"
#include "core/records/FileRecord.h"

namespace tovi {

/// Files of the index by their path. Roles: path, name, folder, kind, kindTitle, symbol, size
/// (bytes), createdAt, modifiedAt, indexedAt, downloadedAt (milliseconds since the epoch),
/// contentStatus, sourceURL, sha256, rootPath, and what a screen needs besides.
class RecordList final : public DifferenceListModel<FileRecord> {
  public:
    explicit RecordList(std::vector<Role> more = {});
};

/// The same values by the names of the roles, for one file; empty without one.
QVariantMap toVariantMap(const FileRecord& file);

} // namespace tovi
