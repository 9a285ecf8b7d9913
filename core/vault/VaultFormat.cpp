#include "core/vault/VaultFormat.h"

#include "base/Text.h"

#include <algorithm>

#include <fmt/format.h>

namespace tovi::vault {

bool isValidName(std::string_view name) {
    constexpr std::string_view forbidden("/\0", 2);
    return !name.empty() && name != "." && name != ".." && name.size() <= maximumNameBytes &&
           name.find_first_of(forbidden) == std::string_view::npos && isValidUtf8(name);
}

std::string itemFileName(const Uuid& id) {
    return id.string().append(itemSuffix);
}

std::string manifestAssociatedData(const Salt& salt) {
    std::string data = fmt::format("ArdenoVault/manifest/v{}/PBKDF2-SHA256/{}/", formatVersion,
                                   keyDerivationRounds);
    data.append(salt.begin(), salt.end());
    return data;
}

ChunkLayout::ChunkLayout(const Uuid& id, std::int64_t size)
    : size_(static_cast<std::uint64_t>(size)),
      count_(std::max<std::uint64_t>((size_ + chunkSize - 1) / chunkSize, 1)),
      prefix_(fmt::format("ArdenoVault/chunk/v{}/{}/{}/{}/", formatVersion, id.string(), size_,
                          count_)) {}

std::size_t ChunkLayout::plaintextSize(std::uint64_t index) const {
    const std::uint64_t start = std::min(size_, index * chunkSize);
    return static_cast<std::size_t>(std::min<std::uint64_t>(size_ - start, chunkSize));
}

std::string ChunkLayout::associatedData(std::uint64_t index) const {
    return prefix_ + std::to_string(index);
}

} // namespace tovi::vault
