#include "app/lists/RecordList.h"

#include "app/lists/QtConversions.h"

#include <filesystem>

namespace tovi {
namespace {

QString textOf(const std::optional<std::string>& text) {
    return text ? toQt(*text) : QString();
}

const std::vector<DifferenceListModel<FileRecord>::Role>& recordRoles() {
    static const std::vector<DifferenceListModel<FileRecord>::Role> roles{
        {"path", [](const FileRecord& file) { return toQt(file.path); }},
        {"name", [](const FileRecord& file) { return toQt(file.name); }},
        {"folder",
         [](const FileRecord& file) {
             return toQt(std::filesystem::path(file.path).parent_path().string());
         }},
        {"kind", [](const FileRecord& file) { return toQt(rawValue(file.kind)); }},
        {"kindTitle", [](const FileRecord& file) { return toQt(title(file.kind)); }},
        {"symbol", [](const FileRecord& file) { return toQt(symbol(file.kind)); }},
        {"size", [](const FileRecord& file) { return QVariant::fromValue<qint64>(file.size); }},
        {"createdAt", [](const FileRecord& file) { return toMilliseconds(file.createdAt); }},
        {"modifiedAt", [](const FileRecord& file) { return toMilliseconds(file.modifiedAt); }},
        {"indexedAt", [](const FileRecord& file) { return toMilliseconds(file.indexedAt); }},
        {"downloadedAt",
         [](const FileRecord& file) {
             return file.downloadedAt ? toMilliseconds(*file.downloadedAt) : QVariant();
         }},
        {"contentStatus", [](const FileRecord& file) { return toQt(file.contentStatus); }},
        {"sourceURL", [](const FileRecord& file) { return textOf(file.sourceURL); }},
        {"sha256", [](const FileRecord& file) { return textOf(file.sha256); }},
        {"rootPath", [](const FileRecord& file) { return toQt(file.rootPath); }},
    };
    return roles;
}

std::vector<DifferenceListModel<FileRecord>::Role>
joined(std::vector<DifferenceListModel<FileRecord>::Role> roles,
       std::vector<DifferenceListModel<FileRecord>::Role> more) {
    std::move(more.begin(), more.end(), std::back_inserter(roles));
    return roles;
}

} // namespace

RecordList::RecordList(std::vector<Role> more)
    : DifferenceListModel([](const FileRecord& file) { return file.path; },
                          joined(recordRoles(), std::move(more))) {}

QVariantMap toVariantMap(const FileRecord& file) {
    QVariantMap values;
    for (const auto& role : recordRoles())
        values.insert(QString::fromLatin1(role.name), role.value(file));
    return values;
}

} // namespace tovi
