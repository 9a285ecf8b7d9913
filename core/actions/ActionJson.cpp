#include "core/actions/ActionJson.h"

#include "core/files/Base64.h"
#include "core/files/JsonKeys.h"
#include "core/files/ReviewCode.h"

#include <algorithm>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;

std::string_view rawValue(FileOperation operation) {
    return operation == FileOperation::trash ? "trash" : "rename";
}

FileOperation operationFrom(const std::string& text) {
    if (text == "trash") return FileOperation::trash;
    if (text == "rename") return FileOperation::rename;
    throw std::runtime_error("unknown operation \"" + text + "\"");
}

Json toJson(const FileSnapshot& snapshot) {
    return {{"size", snapshot.size},
            {"modified", snapshot.modified.referenceSeconds()},
            {"inode", snapshot.inode},
            {"device", snapshot.device},
            {"digest", snapshot.digest}};
}

FileSnapshot snapshotFromJson(const Json& json) {
    expectOnly(json, {"size", "modified", "inode", "device", "digest"});
    return {json.at("size"), Date::fromReferenceSeconds(json.at("modified")), json.at("inode"),
            json.at("device"), json.at("digest")};
}

Json toJson(const PlannedFileAction& item) {
    Json json;
    json["sourcePath"] = item.sourcePath;
    if (item.destinationPath) json["destinationPath"] = *item.destinationPath;
    json["operation"] = rawValue(item.operation);
    json["snapshot"] = toJson(item.snapshot);
    return json;
}

Json toJson(const RetainedFile& file) {
    return {{"path", file.path}, {"snapshot", toJson(file.snapshot)}};
}

template <typename Value>
Json arrayOf(const std::vector<Value>& values) {
    Json json = Json::array();
    for (const Value& value : values)
        json.push_back(toJson(value));
    return json;
}

} // namespace

Json toJson(const ActionPlan& plan) {
    return {{"id", plan.id.string()},
            {"title", plan.title},
            {"items", arrayOf(plan.items)},
            {"explanation", plan.explanation},
            {"createdAt", plan.createdAt.referenceSeconds()},
            {"retainedFiles", arrayOf(plan.retainedFiles)}};
}

Json toJson(const ActionEntry& entry) {
    Json json{{"originalPath", entry.originalPath},
              {"currentPath", entry.currentPath},
              {"operation", rawValue(entry.operation)},
              {"snapshot", toJson(entry.snapshot)},
              {"restored", entry.restored}};
    if (entry.bookmark) json["bookmark"] = toBase64(*entry.bookmark);
    return json;
}

Json toJson(const ActionReceipt& receipt) {
    Json json{{"id", receipt.id.string()},
              {"title", receipt.title},
              {"date", receipt.date.referenceSeconds()},
              {"entries", arrayOf(receipt.entries)},
              {"undone", receipt.undone}};
    if (receipt.error) json["error"] = *receipt.error;
    return json;
}

ActionEntry entryFromJson(const Json& json) {
    expectOnly(json,
               {"originalPath", "currentPath", "operation", "snapshot", "restored", "bookmark"});
    ActionEntry entry{json.at("originalPath"),
                      json.at("currentPath"),
                      operationFrom(json.at("operation")),
                      snapshotFromJson(json.at("snapshot")),
                      json.at("restored"),
                      {}};
    if (json.contains("bookmark")) {
        entry.bookmark = fromBase64(json.at("bookmark").get<std::string>());
        if (!entry.bookmark) throw std::runtime_error("a bookmark is not base64");
    }
    return entry;
}

ActionReceipt receiptFromJson(const Json& json) {
    expectOnly(json, {"id", "title", "date", "entries", "undone", "error"});
    const auto id = Uuid::parse(json.at("id").get<std::string>());
    if (!id) throw std::runtime_error("an identifier is not a UUID");
    ActionReceipt receipt{*id, json.at("title"),  Date::fromReferenceSeconds(json.at("date")),
                          {},  json.at("undone"), {}};
    for (const Json& entry : json.at("entries"))
        receipt.entries.push_back(entryFromJson(entry));
    if (json.contains("error")) receipt.error = json.at("error").get<std::string>();
    return receipt;
}

std::string reviewCode(const ActionPlan& plan) {
    return reviewCodeOf(Json::array({arrayOf(plan.items), arrayOf(plan.retainedFiles)}));
}

bool freesNothing(const PlannedFileAction& item, const ActionPlan& plan) {
    const auto moved =
        std::count_if(plan.items.begin(), plan.items.end(), [&](const PlannedFileAction& other) {
            return other.snapshot.inode == item.snapshot.inode &&
                   other.snapshot.device == item.snapshot.device;
        });
    return static_cast<std::uint64_t>(moved) < item.linkCount;
}

} // namespace tovi
