#include "core/files/ReviewCode.h"

#include "core/files/Sha256.h"

#include <nlohmann/json.hpp>

namespace tovi {

std::string reviewCodeOf(const nlohmann::ordered_json& proposal) {
    constexpr std::size_t codeLength = 16;
    const std::string text = proposal.dump();
    Sha256 sum;
    sum.update(std::as_bytes(std::span(text)));
    return hexadecimal(sum.finish()).substr(0, codeLength);
}

} // namespace tovi
