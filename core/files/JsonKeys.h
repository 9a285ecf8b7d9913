#pragma once

#include <algorithm>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace tovi {

/// Throws `std::runtime_error` unless this is an object with no other keys: one of a later version
/// would be lost when the file is written again.
inline void expectOnly(const nlohmann::ordered_json& json,
                       std::initializer_list<std::string_view> known) {
    if (!json.is_object()) throw std::runtime_error("an object is missing");
    for (const auto& [key, value] : json.items()) {
        if (std::find(known.begin(), known.end(), key) == known.end()) {
            throw std::runtime_error("unknown key \"" + key + "\"");
        }
    }
}

} // namespace tovi
