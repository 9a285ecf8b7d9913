#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace tovi {

/// Sixteen hexadecimal digits over what is proposed to the user: one code, one proposal.
std::string reviewCodeOf(const nlohmann::ordered_json& proposal);

} // namespace tovi
