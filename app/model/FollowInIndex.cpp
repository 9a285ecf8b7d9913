#include "app/model/FollowInIndex.h"

#include "base/Text.h"

namespace tovi {
namespace {

std::vector<std::string> rowsBelow(const std::string& folder, IndexStore& store) {
    std::vector<std::string> rows;
    for (const std::string& root : store.roots()) {
        if (!isSameOrBelow(folder, root)) continue;
        store.forEachScanRecord(root, [&](const IndexScanRecord& row) {
            if (isSameOrBelow(row.path, folder)) rows.push_back(row.path);
        });
    }
    return rows;
}

void rename(const ActionEntry& entry, IndexStore& store) {
    auto record = store.record(entry.originalPath);
    if (!record) return;
    record->path = entry.currentPath;
    record->name = lastPathComponent(entry.currentPath);
    record->kind = classify(record->name, false);
    store.upsert(*record);
}

} // namespace

void followInIndex(const ActionReceipt& receipt, IndexStore& store) {
    try {
        std::vector<std::string> gone;
        for (const ActionEntry& entry : receipt.entries) {
            gone.push_back(entry.originalPath);
            if (entry.operation == FileOperation::rename) rename(entry, store);
        }
        store.remove(gone);
    } catch (const std::exception&) {
        return;
    }
}

void followInIndex(const std::vector<std::string>& trashed, IndexStore& store) {
    try {
        for (const std::string& path : trashed)
            store.remove(store.record(path) ? std::vector{path} : rowsBelow(path, store));
    } catch (const std::exception&) {
        return;
    }
}

} // namespace tovi
