#include "core/cleanup/CleanupJson.h"

#include <nlohmann/json.hpp>

namespace tovi {
namespace {

using Json = nlohmann::ordered_json;

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

} // namespace tovi
