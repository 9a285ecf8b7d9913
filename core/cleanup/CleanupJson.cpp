#include "core/cleanup/CleanupJson.h"

#include "core/files/Base64.h"
#include "core/files/JsonKeys.h"
#include "core/files/ReviewCode.h"

#include <stdexcept>

#include <nlohmann/json.hpp>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;

CleanupFileIdentity identityFrom(const Json& json) {
    expectOnly(json, {"device", "inode", "size", "modifiedSeconds", "modifiedNanoseconds",
                      "changedSeconds", "changedNanoseconds"});
    return {json.at("device"),
            json.at("inode"),
            json.at("size"),
            json.at("modifiedSeconds"),
            json.at("modifiedNanoseconds"),
            json.at("changedSeconds"),
            json.at("changedNanoseconds")};
}

Json toJson(const CleanupContentSnapshot& snapshot) {
    return {{"identity", tovi::toJson(snapshot.identity)}, {"sha256", snapshot.sha256}};
}

CleanupContentSnapshot snapshotFrom(const Json& json) {
    expectOnly(json, {"identity", "sha256"});
    return {identityFrom(json.at("identity")), json.at("sha256")};
}

CleanupCategory categoryFrom(const Json& json) {
    const auto category = cleanupCategoryFromRawValue(json.get<std::string>());
    if (!category) throw std::runtime_error("unknown category " + json.dump());
    return *category;
}

Json toJson(const CleanupPlannedItem& item) {
    return {{"sourcePath", item.sourcePath},
            {"name", item.name},
            {"size", item.size},
            {"category", rawValue(item.category)},
            {"snapshot", toJson(item.snapshot)}};
}

Json toJson(const std::vector<CleanupPlannedItem>& items) {
    Json json = Json::array();
    for (const CleanupPlannedItem& item : items)
        json.push_back(toJson(item));
    return json;
}

} // namespace

Json toJson(const CleanupFileIdentity& identity) {
    return {{"device", identity.device},
            {"inode", identity.inode},
            {"size", identity.size},
            {"modifiedSeconds", identity.modifiedSeconds},
            {"modifiedNanoseconds", identity.modifiedNanoseconds},
            {"changedSeconds", identity.changedSeconds},
            {"changedNanoseconds", identity.changedNanoseconds}};
}

Json toJson(const CleanupCandidate& candidate) {
    Json json{{"path", candidate.path},
              {"name", candidate.name},
              {"size", candidate.size},
              {"modifiedAt", candidate.modifiedAt.referenceSeconds()},
              {"category", rawValue(candidate.category)},
              {"identity", toJson(candidate.identity)}};
    if (candidate.lastUsedAt) json["lastUsedAt"] = candidate.lastUsedAt->referenceSeconds();
    if (candidate.reviewOnlyReason) json["reviewOnlyReason"] = *candidate.reviewOnlyReason;
    return json;
}

Json toJson(const CleanupReport& report) {
    Json candidates = Json::array();
    for (const CleanupCandidate& candidate : report.candidates)
        candidates.push_back(toJson(candidate));
    return {{"rootPath", report.rootPath},
            {"candidates", std::move(candidates)},
            {"scannedFiles", report.scannedFiles},
            {"scannedBytes", report.scannedBytes},
            {"skippedCount", report.skippedCount},
            {"issues", report.issues},
            {"notice", report.notice},
            {"isPartial", report.isPartial},
            {"reachedLimit", report.reachedLimit},
            {"startedAt", report.startedAt.referenceSeconds()},
            {"finishedAt", report.finishedAt.referenceSeconds()}};
}

Json toJson(const CleanupPlan& plan) {
    return {{"id", plan.id.string()},      {"title", plan.title},
            {"items", toJson(plan.items)}, {"createdAt", plan.createdAt.referenceSeconds()},
            {"rootPath", plan.rootPath},   {"explanation", plan.explanation},
            {"rootPaths", plan.rootPaths}};
}

std::string reviewCode(const CleanupPlan& plan) {
    return reviewCodeOf(Json::array({toJson(plan.items), plan.rootPaths}));
}

Json toJson(const CleanupActionEntry& entry) {
    Json json{{"originalPath", entry.originalPath},
              {"currentPath", entry.currentPath},
              {"size", entry.size},
              {"category", rawValue(entry.category)},
              {"snapshot", toJson(entry.snapshot)}};
    if (entry.bookmark) json["bookmark"] = toBase64(*entry.bookmark);
    json["restored"] = entry.restored;
    return json;
}

CleanupActionEntry cleanupEntryFromJson(const Json& json) {
    expectOnly(json, {"originalPath", "currentPath", "size", "category", "snapshot", "bookmark",
                      "restored"});
    CleanupActionEntry entry{json.at("originalPath"),
                             json.at("currentPath"),
                             json.at("size"),
                             categoryFrom(json.at("category")),
                             snapshotFrom(json.at("snapshot")),
                             {},
                             json.at("restored")};
    if (json.contains("bookmark")) {
        entry.bookmark = fromBase64(json.at("bookmark").get<std::string>());
        if (!entry.bookmark) throw std::runtime_error("a bookmark is not base64");
    }
    return entry;
}

Json toJson(const CleanupReceipt& receipt) {
    Json entries = Json::array();
    for (const CleanupActionEntry& entry : receipt.entries)
        entries.push_back(toJson(entry));
    Json json{{"id", receipt.id.string()},
              {"title", receipt.title},
              {"date", receipt.date.referenceSeconds()},
              {"rootPath", receipt.rootPath},
              {"entries", std::move(entries)}};
    if (receipt.error) json["error"] = *receipt.error;
    json["undone"] = receipt.undone;
    json["rootPaths"] = receipt.rootPaths;
    return json;
}

CleanupReceipt cleanupReceiptFromJson(const Json& json) {
    expectOnly(json,
               {"id", "title", "date", "rootPath", "entries", "error", "undone", "rootPaths"});
    const auto id = Uuid::parse(json.at("id").get<std::string>());
    if (!id) throw std::runtime_error("an identifier is not a UUID");
    CleanupReceipt receipt{*id,
                           json.at("title"),
                           Date::fromReferenceSeconds(json.at("date")),
                           json.at("rootPath"),
                           {},
                           {},
                           json.at("undone"),
                           json.at("rootPaths")};
    for (const Json& entry : json.at("entries"))
        receipt.entries.push_back(cleanupEntryFromJson(entry));
    if (json.contains("error")) receipt.error = json.at("error").get<std::string>();
    return receipt;
}

} // namespace tovi
