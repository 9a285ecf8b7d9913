#pragma once

#include "core/vault/FileCalls.h"
#include "core/vault/VaultFiles.h"
#include "core/vault/VaultItem.h"
#include "core/vault/VaultKeys.h"
#include "core/vault/VaultSource.h"

#include <functional>
#include <stop_token>

namespace tovi::vault {

/// Plaintext bytes that just passed; may be empty.
using ByteProgress = std::function<void(std::int64_t)>;

/// Encrypts a file under a new id and flushes it. Throws `VaultError` (`sourceChanged`, `io`) and
/// `Cancelled`.
VaultItem encryptItem(FileCalls& calls, const VaultKey& key, const VaultSource& source,
                      const FileDescriptor& output, const ByteProgress& progress,
                      const std::stop_token& stop);

/// Decrypts an item's file from the open vault directory, to nowhere where `output` is null, and
/// checks all of it. Throws `VaultError` (`damagedFile`, `io`) and `Cancelled`.
void decryptItem(FileCalls& calls, const VaultKey& key, const FileDescriptor& directory,
                 const VaultItem& item, const FileDescriptor* output, const ByteProgress& progress,
                 const std::stop_token& stop);

} // namespace tovi::vault
