#pragma once

#include "core/vault/FileCalls.h"
#include "core/vault/VaultError.h"
#include "core/vault/VaultItem.h"
#include "platform/Availability.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace tovi {

/// A directory of encrypted copies under one password; docs/vault-format.md describes its files.
///
/// An original is never changed, an item never deleted, and no file outside ever replaced. What a
/// failed operation wrote it removes, and the vault is then as it was. Every operation holds the
/// directory's lock, so that of all stores and processes one works at a time and the others get
/// `busy` at once; what another one has added since is seen by the next operation.
///
/// May be called from any thread, one operation running at a time. Operations throw `VaultError`,
/// and `Cancelled` between chunks. While unlocked the process writes no core dump.
class VaultStore {
  public:
    /// Plaintext bytes that just passed; called on the thread of the operation.
    using Progress = std::function<void(std::int64_t bytes)>;

    /// What became of one file that was to be added.
    struct Import {
        std::size_t index; // in the paths given
        std::optional<VaultItem> item;
        std::optional<VaultError> error;  // where there is no item
        bool isQuarantineLeftOut = false; // its value is longer than an item can hold
    };

    struct Verification {
        struct Damage {
            VaultItem item;
            std::string reason; // a whole sentence
        };
        std::size_t intact = 0;
        std::vector<Damage> damaged;
        /// Encrypted files that the item list does not name, such as an older list that was put
        /// back leaves behind.
        std::vector<std::string> unlisted;
    };

    /// A locked store. `availability` outlives it.
    VaultStore(std::string directory, const platform::Availability& availability,
               std::unique_ptr<vault::FileCalls> calls = std::make_unique<vault::FileCalls>());
    ~VaultStore();
    VaultStore(const VaultStore&) = delete;
    VaultStore& operator=(const VaultStore&) = delete;

    VaultStatus status();

    /// `password` is UTF-8; its owner wipes it. The store is then unlocked. The items are in the
    /// order in which they were added.
    std::vector<VaultItem> create(std::string_view password, const std::stop_token& stop = {});
    std::vector<VaultItem> unlock(std::string_view password);
    /// Waits for a running operation only.
    void lock();

    std::vector<VaultItem> items();

    VaultItem importFile(const std::string& path, const std::stop_token& stop = {});

    /// Adds many files. Each is reported once it lies safely in the vault or has failed; the item
    /// list is written for several at a time, so that the cost grows with the
    /// number of files only. When cancelled, what was finished stays.
    void importFiles(std::span<const std::string> paths,
                     const std::function<void(const Import&)>& report, const Progress& progress,
                     const std::stop_token& stop);

    /// Writes a decrypted copy to a path where nothing is yet.
    void exportFile(const Uuid& id, const std::string& destination,
                    const std::stop_token& stop = {}, const Progress& progress = {});

    /// Decrypts every item to nowhere.
    Verification verify(const Progress& progress, const std::stop_token& stop);

  private:
    class State;
    std::unique_ptr<State> state_;
};

} // namespace tovi
