#pragma once

#include "base/Uuid.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The fixed numbers, names and associated data of the vault's files; docs/vault-format.md tells
/// how they fit together.
namespace tovi::vault {

inline constexpr std::uint32_t formatVersion = 1;
inline constexpr std::uint32_t keyDerivationRounds = 600'000;
inline constexpr std::size_t saltSize = 32;
inline constexpr std::size_t keySize = 32;
inline constexpr std::size_t nonceSize = 12;
inline constexpr std::size_t tagSize = 16;

inline constexpr std::size_t maximumPasswordBytes = 4'096;
inline constexpr std::size_t minimumPasswordCharacters = 12;
inline constexpr std::size_t maximumItems = 100'000;
inline constexpr std::size_t maximumNameBytes = 255;
inline constexpr std::size_t maximumQuarantineBytes = 16'384;
inline constexpr std::size_t maximumEnvelopeBytes = 33'554'432;
inline constexpr std::int64_t maximumFileSize = 17'592'186'044'416;

inline constexpr const char* manifestName = "manifest.ardeno-vault";
inline constexpr const char* lockName = ".vault-lock";
inline constexpr std::string_view itemSuffix = ".avault";
inline constexpr std::string_view metadataPrefix = ".metadata-";
inline constexpr std::string_view importPrefix = ".import-";
inline constexpr std::string_view restorePrefix = ".ardeno-restore-";

using Salt = std::array<std::uint8_t, saltSize>;

/// Whether `name` can be the name of an item: one path component of valid UTF-8.
bool isValidName(std::string_view name);

std::string itemFileName(const Uuid& id);

std::string manifestAssociatedData(const Salt& salt);

/// How one file of `size` bytes is cut: chunks of 1 MiB, the last one shorter, at least one. On
/// disk a chunk is a frame: 4 bytes big-endian length of the rest, nonce, ciphertext, tag.
class ChunkLayout {
  public:
    static constexpr std::size_t chunkSize = 1'048'576;
    static constexpr std::size_t lengthSize = 4;
    static constexpr std::size_t sealOverhead = nonceSize + tagSize;
    static constexpr std::size_t frameSize = lengthSize + chunkSize + sealOverhead;

    ChunkLayout(const Uuid& id, std::int64_t size);

    std::uint64_t count() const { return count_; }
    std::size_t plaintextSize(std::uint64_t index) const;
    std::string associatedData(std::uint64_t index) const;

  private:
    std::uint64_t size_;
    std::uint64_t count_;
    std::string prefix_;
};

} // namespace tovi::vault
