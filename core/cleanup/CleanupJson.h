#pragma once

#include "core/cleanup/CleanupScanner.h"

#include <nlohmann/json_fwd.hpp>

namespace tovi {

/// Dates are seconds since 2001-01-01; what is missing has no key.
nlohmann::ordered_json toJson(const CleanupFileIdentity& identity);
nlohmann::ordered_json toJson(const CleanupCandidate& candidate);
nlohmann::ordered_json toJson(const CleanupReport& report);

} // namespace tovi
