#include "base/Uuid.h"

#include <uuid/uuid.h>

namespace tovi {

Uuid Uuid::random() {
    Uuid result;
    uuid_generate_random(result.bytes.data());
    return result;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    Uuid result;
    if (text.size() != 36) return std::nullopt;
    if (uuid_parse(std::string(text).c_str(), result.bytes.data()) != 0) return std::nullopt;
    return result;
}

std::string Uuid::string() const {
    std::array<char, UUID_STR_LEN> text{};
    uuid_unparse_upper(bytes.data(), text.data());
    return text.data();
}

} // namespace tovi
