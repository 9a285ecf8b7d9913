#pragma once

#include "core/cleanup/CleanupPlan.h"
#include "core/cleanup/CleanupScanner.h"

#include <nlohmann/json_fwd.hpp>

namespace tovi {

/// Dates are seconds since 2001-01-01, identifiers capitals, binary data base64; what is missing
/// has no key.
nlohmann::ordered_json toJson(const CleanupFileIdentity& identity);
nlohmann::ordered_json toJson(const CleanupCandidate& candidate);
nlohmann::ordered_json toJson(const CleanupReport& report);
nlohmann::ordered_json toJson(const CleanupPlan& plan);
nlohmann::ordered_json toJson(const CleanupActionEntry& entry);
nlohmann::ordered_json toJson(const CleanupReceipt& receipt);

/// Throw `std::runtime_error` for anything that this version would not write back unchanged.
CleanupReceipt cleanupReceiptFromJson(const nlohmann::ordered_json& json);
CleanupActionEntry cleanupEntryFromJson(const nlohmann::ordered_json& json);

} // namespace tovi
