#include "core/vault/ItemFiles.h"

#include "core/files/Sha256.h"
#include "core/vault/AesGcm.h"
#include "core/vault/ChunkPipeline.h"
#include "core/vault/VaultError.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include <fcntl.h>

namespace tovi::vault {
namespace {

using Kind = VaultError::Kind;
using Length = std::array<std::byte, ChunkLayout::lengthSize>;

Length bigEndian(std::size_t value) {
    Length bytes{};
    for (std::size_t at = bytes.size(); at-- > 0; value >>= 8)
        bytes[at] = std::byte(value & 0xFF);
    return bytes;
}

} // namespace

VaultItem encryptItem(FileCalls& calls, const VaultKey& key, const VaultSource& source,
                      const FileDescriptor& output, const ByteProgress& progress,
                      const std::stop_token& stop) {
    VaultItem item;
    item.id = Uuid::random();
    item.name = source.name;
    item.size = source.before.st_size;
    item.quarantine = source.quarantine;

    const ChunkLayout layout(item.id, item.size);
    AesGcm cipher(AesGcm::Direction::seal, ItemKey(key, item.id).bytes());
    Sha256 sum;
    std::vector<std::byte> frame(layout.plaintextSize(0) + ChunkLayout::lengthSize +
                                 ChunkLayout::sealOverhead);

    ChunkStages stages;
    stages.produce = [&](std::uint64_t index, std::span<std::byte> buffer) {
        const auto plaintext = buffer.first(layout.plaintextSize(index));
        if (readFully(calls, source.file, plaintext) != plaintext.size()) {
            throw VaultError(Kind::sourceChanged);
        }
        return plaintext;
    };
    stages.hash = [&](std::span<const std::byte> plaintext) { sum.update(plaintext); };
    stages.consume = [&](std::uint64_t index, std::span<const std::byte> plaintext) {
        Nonce nonce{};
        if (!calls.randomBytes(nonce)) throw VaultError::io("Secure random generation failed.");
        const std::size_t length = plaintext.size() + ChunkLayout::sealOverhead;
        const Length prefix = bigEndian(length);
        const auto combined = std::span(frame).subspan(ChunkLayout::lengthSize, length);
        std::copy(prefix.begin(), prefix.end(), frame.begin());
        cipher.seal(plaintext, layout.associatedData(index), nonce, combined);
        writeFully(calls, output, std::span(frame).first(ChunkLayout::lengthSize + length));
        if (progress) progress(static_cast<std::int64_t>(plaintext.size()));
    };
    runChunks(layout.count(), layout.plaintextSize(0), stages, stop);

    source.requireUnchanged(calls);
    sync(calls, output);
    item.sha256 = hexadecimal(sum.finish());
    item.importedAt = Date::now();
    return item;
}

void decryptItem(FileCalls& calls, const VaultKey& key, const FileDescriptor& directory,
                 const VaultItem& item, const FileDescriptor* output, const ByteProgress& progress,
                 const std::stop_token& stop) {
    const FileDescriptor input(calls.open(directory.get(), itemFileName(item.id).c_str(),
                                          O_RDONLY | O_NOFOLLOW | O_NONBLOCK));
    if (!input.isOpen()) {
        if (errno == ENOENT || errno == ELOOP) throw VaultError(Kind::damagedFile);
        throw VaultError::system(errno);
    }
    struct stat found {};
    if (calls.stat(input.get(), found) != 0) throw VaultError::system(errno);
    if (!S_ISREG(found.st_mode)) throw VaultError(Kind::damagedFile);

    const ChunkLayout layout(item.id, item.size);
    AesGcm cipher(AesGcm::Direction::open, ItemKey(key, item.id).bytes());
    Sha256 sum;

    ChunkStages stages;
    stages.produce = [&](std::uint64_t index, std::span<std::byte> buffer) {
        const std::size_t length = layout.plaintextSize(index) + ChunkLayout::sealOverhead;
        const auto frame = buffer.first(ChunkLayout::lengthSize + length);
        const Length expected = bigEndian(length);
        const auto combined = frame.subspan(ChunkLayout::lengthSize);
        const auto plaintext = combined.subspan(nonceSize, layout.plaintextSize(index));
        if (readFully(calls, input, frame) != frame.size() ||
            !std::equal(expected.begin(), expected.end(), frame.begin()) ||
            !cipher.open(combined, layout.associatedData(index), plaintext)) {
            throw VaultError(Kind::damagedFile);
        }
        return plaintext;
    };
    stages.hash = [&](std::span<const std::byte> plaintext) { sum.update(plaintext); };
    stages.consume = [&](std::uint64_t, std::span<const std::byte> plaintext) {
        if (output != nullptr) writeFully(calls, *output, plaintext);
        if (progress) progress(static_cast<std::int64_t>(plaintext.size()));
    };
    runChunks(layout.count(),
              layout.plaintextSize(0) + ChunkLayout::lengthSize + ChunkLayout::sealOverhead, stages,
              stop);

    std::array<std::byte, 1> trailing{};
    if (readFully(calls, input, trailing) != 0 || hexadecimal(sum.finish()) != item.sha256) {
        throw VaultError(Kind::damagedFile);
    }
}

} // namespace tovi::vault
