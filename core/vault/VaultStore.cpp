#include "core/vault/VaultStore.h"

#include "base/Cancelled.h"
#include "base/Text.h"
#include "core/vault/ItemFiles.h"
#include "core/vault/VaultDirectory.h"
#include "core/vault/VaultManifest.h"
#include "platform/ProcessProtection.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <mutex>
#include <set>
#include <system_error>
#include <utility>

#include <fcntl.h>

namespace tovi {

using namespace vault;
using Kind = VaultError::Kind;

namespace {

/// Tells one state of the manifest file from the next.
using ManifestIdentity = std::array<std::int64_t, 5>;

ManifestIdentity identityOf(const struct stat& file) {
    return {static_cast<std::int64_t>(file.st_dev), static_cast<std::int64_t>(file.st_ino),
            file.st_size, file.st_ctim.tv_sec, file.st_ctim.tv_nsec};
}

bool hasManifest(FileCalls& calls, const VaultDirectory& directory) {
    struct stat found {};
    if (calls.statAt(directory.descriptor().get(), manifestName, found) == 0) return true;
    if (errno == ENOENT) return false;
    throw VaultError(Kind::invalidFormat);
}

struct ManifestFile {
    Envelope envelope;
    ManifestIdentity identity;
};

ManifestFile readManifestFile(FileCalls& calls, const VaultDirectory& directory) {
    const FileDescriptor file(
        calls.open(directory.descriptor().get(), manifestName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK));
    if (!file.isOpen()) throw VaultError(errno == ELOOP ? Kind::unsafePath : Kind::invalidFormat);
    struct stat found {};
    if (calls.stat(file.get(), found) != 0) throw VaultError::system(errno);
    if (!S_ISREG(found.st_mode) || found.st_nlink != 1) throw VaultError(Kind::unsafePath);
    if (found.st_size < 1 || found.st_size > static_cast<off_t>(maximumEnvelopeBytes)) {
        throw VaultError(Kind::invalidFormat);
    }
    std::string text(static_cast<std::size_t>(found.st_size), '\0');
    if (readFully(calls, file, std::as_writable_bytes(std::span(text))) != text.size()) {
        throw VaultError(Kind::invalidFormat);
    }
    return {decodeEnvelope(text), identityOf(found)};
}

/// Removes what operations that never ended, because the process or the machine stopped, left.
void clearLeftovers(FileCalls& calls, const FileDescriptor& directory) {
    for (const std::string& name : namesIn(calls, directory)) {
        for (const std::string_view prefix : {importPrefix, metadataPrefix}) {
            if (!name.starts_with(prefix) || !Uuid::parse(name.substr(prefix.size()))) continue;
            struct stat found {};
            if (calls.statAt(directory.get(), name.c_str(), found) == 0 && S_ISREG(found.st_mode)) {
                calls.unlink(directory.get(), name.c_str());
            }
        }
    }
}

/// An encrypted file that is complete but not yet in the item list.
struct Pending {
    TemporaryFile file;
    VaultStore::Import result;
};

} // namespace

class VaultStore::State {
  public:
    std::mutex mutex; // guards all that follows

    State(std::string path, const platform::Availability& files, std::unique_ptr<FileCalls> seam)
        : calls(std::move(seam)), directoryPath(std::move(path)), availability(files) {}

    const std::unique_ptr<FileCalls> calls;
    const std::string directoryPath;
    const platform::Availability& availability;

    struct Unlocked {
        Unlocked(std::string_view password, const Salt& fromSalt)
            : key(VaultKey::derive(password, fromSalt)), salt(fromSalt) {}

        std::unique_ptr<platform::ProcessProtection> protection =
            std::make_unique<platform::ProcessProtection>();
        VaultKey key;
        Salt salt;
    };
    std::optional<Unlocked> unlocked;
    std::vector<VaultItem> items;
    std::optional<ManifestIdentity> manifest; // of which `items` is the list

    const VaultKey& key() const {
        if (!unlocked) throw VaultError(Kind::locked);
        return unlocked->key;
    }

    VaultDirectory open(VaultDirectory::IfMissing ifMissing = VaultDirectory::IfMissing::fail) {
        return VaultDirectory(*calls, directoryPath, ifMissing);
    }

    /// Opens the directory of an unlocked vault and takes over what another process has added.
    VaultDirectory openUnlocked() {
        key();
        VaultDirectory directory = open();
        struct stat found {};
        if (!manifest || calls->statAt(directory.descriptor().get(), manifestName, found) != 0 ||
            identityOf(found) != *manifest) {
            ManifestFile file = readManifestFile(*calls, directory);
            items = openManifest(file.envelope, key());
            unlocked->salt = file.envelope.salt;
            manifest = file.identity;
        }
        return directory;
    }

    /// Writes the list and makes it the vault's. `isReplaced` tells a failure that comes too late
    /// to keep the old list in force.
    void writeManifest(const VaultDirectory& directory, const std::vector<VaultItem>& list,
                       const VaultKey& vaultKey, const Salt& salt, const std::stop_token& stop,
                       bool& isReplaced) {
        isReplaced = false;
        Nonce nonce{};
        if (!calls->randomBytes(nonce)) throw VaultError::io("Secure random generation failed.");
        const std::string text = sealManifest(list, salt, vaultKey, nonce);
        TemporaryFile file(*calls, directory.descriptor(), metadataPrefix);
        writeFully(*calls, file.file(), std::as_bytes(std::span(text)));
        sync(*calls, file.file());
        throwIfCancelled(stop);
        if (const int code = file.replace(manifestName); code != 0) {
            throw VaultError::system(code);
        }
        isReplaced = true;
        manifest.reset();
        sync(*calls, directory.descriptor());
        struct stat found {};
        if (calls->statAt(directory.descriptor().get(), manifestName, found) == 0) {
            manifest = identityOf(found);
        }
    }

    /// Gives the files their names and writes the list that has them. Where that fails, neither
    /// has happened.
    void commit(const VaultDirectory& directory, std::vector<Pending>& pending,
                const std::stop_token& stop) {
        std::vector<VaultItem> list = items;
        for (Pending& each : pending) {
            const VaultItem& item = *each.result.item;
            if (const int code = each.file.publish(itemFileName(item.id)); code != 0) {
                throw VaultError::system(code);
            }
            list.push_back(item);
        }
        bool isReplaced = false;
        try {
            writeManifest(directory, list, key(), unlocked->salt, stop, isReplaced);
        } catch (...) {
            if (isReplaced && !restoreManifest(directory)) {
                // The list in force names the files: they stay.
                for (Pending& each : pending)
                    each.file.keep();
            }
            throw;
        }
        for (Pending& each : pending)
            each.file.keep();
        items = std::move(list);
    }

    bool restoreManifest(const VaultDirectory& directory) {
        bool isReplaced = false;
        try {
            writeManifest(directory, items, key(), unlocked->salt, {}, isReplaced);
        } catch (const VaultError&) {
        }
        return isReplaced;
    }

    Pending encrypt(const VaultDirectory& directory, const VaultSource& source, std::size_t index,
                    std::size_t pendingCount, const Progress& progress,
                    const std::stop_token& stop) {
        if (items.size() + pendingCount >= maximumItems) {
            throw VaultError::io("The Vault has reached its item limit.");
        }
        TemporaryFile file(*calls, directory.descriptor(), importPrefix);
        VaultItem item = encryptItem(*calls, key(), source, file.file(), progress, stop);
        file.close();
        return {std::move(file),
                {index, std::move(item), std::nullopt, source.isQuarantineLeftOut}};
    }

    VaultSource openSource(const std::string& path) {
        return VaultSource::open(*calls, availability, directoryPath, path);
    }
};

VaultStore::VaultStore(std::string directory, const platform::Availability& availability,
                       std::unique_ptr<FileCalls> calls)
    : state_(std::make_unique<State>(std::move(directory), availability, std::move(calls))) {}

VaultStore::~VaultStore() = default;

VaultStatus VaultStore::status() {
    const std::lock_guard guard(state_->mutex);
    struct stat found {};
    if (state_->calls->statAt(AT_FDCWD, state_->directoryPath.c_str(), found) != 0 &&
        errno == ENOENT) {
        return VaultStatus::notCreated;
    }
    if (!hasManifest(*state_->calls, state_->open())) return VaultStatus::notCreated;
    return state_->unlocked ? VaultStatus::unlocked : VaultStatus::locked;
}

std::vector<VaultItem> VaultStore::create(std::string_view password, const std::stop_token& stop) {
    const std::lock_guard guard(state_->mutex);
    VaultKey::requireAcceptable(password);
    if (countCharacters(password) < minimumPasswordCharacters) {
        throw VaultError(Kind::passwordTooShort);
    }
    FileCalls& calls = *state_->calls;
    const VaultDirectory directory = state_->open(VaultDirectory::IfMissing::create);
    if (hasManifest(calls, directory)) throw VaultError(Kind::alreadyCreated);

    Salt salt{};
    if (!calls.randomBytes(salt)) throw VaultError::io("Secure random generation failed.");
    State::Unlocked unlocked(password, salt);
    bool isReplaced = false;
    try {
        state_->writeManifest(directory, {}, unlocked.key, salt, stop, isReplaced);
    } catch (...) {
        if (isReplaced) calls.unlink(directory.descriptor().get(), manifestName);
        throw;
    }
    state_->unlocked = std::move(unlocked);
    state_->items.clear();
    return {};
}

std::vector<VaultItem> VaultStore::unlock(std::string_view password) {
    const std::lock_guard guard(state_->mutex);
    const VaultDirectory directory = state_->open();
    ManifestFile file = readManifestFile(*state_->calls, directory);
    State::Unlocked unlocked(password, file.envelope.salt);
    std::vector<VaultItem> items = openManifest(file.envelope, unlocked.key);
    clearLeftovers(*state_->calls, directory.descriptor());
    state_->unlocked = std::move(unlocked);
    state_->items = std::move(items);
    state_->manifest = file.identity;
    return state_->items;
}

void VaultStore::lock() {
    const std::lock_guard guard(state_->mutex);
    state_->unlocked.reset();
    state_->items = {};
    state_->manifest.reset();
}

std::vector<VaultItem> VaultStore::items() {
    const std::lock_guard guard(state_->mutex);
    state_->openUnlocked();
    return state_->items;
}

VaultItem VaultStore::importFile(const std::string& path, const std::stop_token& stop) {
    const std::lock_guard guard(state_->mutex);
    state_->key();
    const VaultSource source = state_->openSource(path);
    const VaultDirectory directory = state_->openUnlocked();
    std::vector<Pending> pending;
    pending.push_back(state_->encrypt(directory, source, 0, 0, {}, stop));
    state_->commit(directory, pending, stop);
    return *pending.front().result.item;
}

void VaultStore::importFiles(std::span<const std::string> paths,
                             const std::function<void(const Import&)>& report,
                             const Progress& progress, const std::stop_token& stop) {
    const std::lock_guard guard(state_->mutex);
    const VaultDirectory directory = state_->openUnlocked();
    std::vector<Pending> pending;
    std::int64_t pendingBytes = 0;
    const auto commit = [&] {
        std::optional<VaultError> failure;
        try {
            if (!pending.empty()) state_->commit(directory, pending, {});
        } catch (const VaultError& error) {
            failure = error;
        }
        for (Pending& each : std::exchange(pending, {})) {
            if (failure)
                report({each.result.index, std::nullopt, failure});
            else
                report(each.result);
        }
        pendingBytes = 0;
    };
    try {
        for (std::size_t index = 0; index < paths.size(); ++index) {
            throwIfCancelled(stop);
            try {
                const VaultSource source = state_->openSource(paths[index]);
                pending.push_back(
                    state_->encrypt(directory, source, index, pending.size(), progress, stop));
                pendingBytes += source.before.st_size;
            } catch (const VaultError& error) {
                report({index, std::nullopt, error});
            }
            // A list of n items is written every n/16 items, so that all the lists together cost
            // no more than 16 times the last one; and after much work, to have it safe.
            constexpr std::int64_t muchWork = 268'435'456; // bytes
            if (pending.size() > state_->items.size() / 16 || pendingBytes >= muchWork) commit();
        }
    } catch (const Cancelled&) {
        commit();
        throw;
    }
    commit();
}

void VaultStore::exportFile(const Uuid& id, const std::string& destination,
                            const std::stop_token& stop, const Progress& progress) {
    const std::lock_guard guard(state_->mutex);
    state_->key();
    FileCalls& calls = *state_->calls;
    const std::string name(lastPathComponent(destination));
    const std::string parent = std::filesystem::path(destination).parent_path().string();
    const std::string folderPath = parent.empty() ? "." : parent;
    if (!isValidName(name) || destination.find('\0') != std::string::npos ||
        isInside(folderPath, state_->directoryPath)) {
        throw VaultError(Kind::unsafePath);
    }
    const VaultDirectory directory = state_->openUnlocked();
    const auto item = std::find_if(state_->items.begin(), state_->items.end(),
                                   [&](const VaultItem& each) { return each.id == id; });
    if (item == state_->items.end()) throw VaultError(Kind::itemNotFound);

    const FileDescriptor folder = openDirectory(calls, folderPath);
    struct stat found {};
    if (calls.statAt(folder.get(), name.c_str(), found) == 0) {
        throw VaultError(Kind::destinationExists);
    }
    if (errno != ENOENT) throw VaultError::system(errno);

    TemporaryFile file(calls, folder, restorePrefix);
    decryptItem(calls, state_->key(), directory.descriptor(), *item, &file.file(), progress, stop);
    if (item->quarantine &&
        calls.setAttribute(file.file().get(), quarantineAttribute, *item->quarantine) != 0) {
        throw VaultError::system(errno);
    }
    sync(calls, file.file());
    if (const int code = file.publish(name); code != 0) {
        throw code == EEXIST ? VaultError(Kind::destinationExists) : VaultError::system(code);
    }
    sync(calls, folder);
    file.keep();
}

VaultStore::Verification VaultStore::verify(const Progress& progress, const std::stop_token& stop) {
    const std::lock_guard guard(state_->mutex);
    const VaultDirectory directory = state_->openUnlocked();
    Verification result;
    std::set<std::string> listed;
    for (const VaultItem& item : state_->items) {
        listed.insert(itemFileName(item.id));
        try {
            decryptItem(*state_->calls, state_->key(), directory.descriptor(), item, nullptr,
                        progress, stop);
            ++result.intact;
        } catch (const VaultError& error) {
            result.damaged.push_back({item, error.what()});
        }
    }
    for (std::string& name : namesIn(*state_->calls, directory.descriptor())) {
        if (name.ends_with(itemSuffix) && !listed.contains(name)) {
            result.unlisted.push_back(std::move(name));
        }
    }
    std::sort(result.unlisted.begin(), result.unlisted.end());
    return result;
}

} // namespace tovi
