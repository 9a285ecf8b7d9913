#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>

namespace tovi::vault {

/// The stages that every chunk of a file passes, each in the order of the chunks.
struct ChunkStages {
    /// Fills the buffer with what chunk `index` needs and returns its plaintext, a part of it.
    std::function<std::span<std::byte>(std::uint64_t index, std::span<std::byte> buffer)> produce;
    std::function<void(std::span<const std::byte> plaintext)> hash;
    std::function<void(std::uint64_t index, std::span<const std::byte> plaintext)> consume;
};

/// Runs chunks 0 to `count` - 1 through the stages, the three of them at the same time on different
/// chunks and `consume` on the calling thread. A few buffers of `bufferSize` bytes are all the
/// memory it takes. Rethrows what the first failing stage threw; `Cancelled` between chunks.
void runChunks(std::uint64_t count, std::size_t bufferSize, const ChunkStages& stages,
               const std::stop_token& stop);

} // namespace tovi::vault
