#pragma once

#include "core/actions/ActionReceipt.h"

#include <nlohmann/json_fwd.hpp>

namespace tovi {

/// Plans and receipts as JSON. Dates are seconds since 2001-01-01, identifiers capitals, binary
/// data base64; what is missing has no key.
nlohmann::ordered_json toJson(const ActionPlan& plan);
nlohmann::ordered_json toJson(const ActionReceipt& receipt);
nlohmann::ordered_json toJson(const ActionEntry& entry);

/// Throw `std::runtime_error` for anything that this version would not write back unchanged.
ActionReceipt receiptFromJson(const nlohmann::ordered_json& json);
ActionEntry entryFromJson(const nlohmann::ordered_json& json);

} // namespace tovi
