#include "core/vault/VaultManifest.h"

#include "core/files/Base64.h"
#include "core/vault/JsonReader.h"
#include "core/vault/VaultError.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace tovi::vault {
namespace {

std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

std::span<std::byte> bytesOf(std::string& text) {
    return std::as_writable_bytes(std::span(text.data(), text.size()));
}

[[noreturn]] void throwInvalidFormat() {
    throw VaultError(VaultError::Kind::invalidFormat);
}

bool isDigest(std::string_view text) {
    return text.size() == 64 && std::all_of(text.begin(), text.end(), [](char c) {
               return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
           });
}

/// The place of `key` in `keys`, or their number.
template <std::size_t count>
std::size_t indexOf(const std::array<std::string_view, count>& keys, std::string_view key) {
    return static_cast<std::size_t>(std::find(keys.begin(), keys.end(), key) - keys.begin());
}

/// Which of an object's known keys were met; a key met twice has no single meaning.
class SeenKeys {
  public:
    bool add(std::size_t index) {
        const unsigned bit = 1U << index;
        return (std::exchange(bits_, bits_ | bit) & bit) == 0;
    }
    bool containsFirst(std::size_t count) const {
        const unsigned wanted = (1U << count) - 1;
        return (bits_ & wanted) == wanted;
    }

  private:
    unsigned bits_ = 0;
};

class EnvelopeReader final : public JsonReader {
  public:
    Envelope envelope;

    bool isComplete() const { return seen_.containsFirst(keys.size()); }

  private:
    static constexpr std::array<std::string_view, 4> keys{"version", "iterations", "salt",
                                                          "sealedManifest"};

    Step begin(Container container) override {
        if (depth() == 1) return container == Container::object ? Step::enter : Step::refuse;
        return indexOf(keys, key()) == keys.size() ? Step::skip : Step::refuse;
    }

    bool end() override { return true; }

    bool value(Value value) override {
        if (depth() == 0) return false;
        const std::size_t index = indexOf(keys, key());
        if (index == keys.size()) return true;
        if (!seen_.add(index)) return false;
        if (index < 2) {
            const auto* number = std::get_if<std::int64_t>(&value);
            return number != nullptr &&
                   *number == (index == 0 ? formatVersion : keyDerivationRounds);
        }
        const auto* text = std::get_if<std::string>(&value);
        auto bytes = text == nullptr ? std::nullopt : fromBase64(*text);
        if (!bytes) return false;
        if (index == 3) {
            envelope.sealedManifest = std::move(*bytes);
            return true;
        }
        if (bytes->size() != saltSize) return false;
        std::copy(bytes->begin(), bytes->end(), envelope.salt.begin());
        return true;
    }

    SeenKeys seen_;
};

class ItemListReader final : public JsonReader {
  public:
    std::vector<VaultItem> items;

    bool isComplete() const { return hasList_; }

  private:
    static constexpr std::array<std::string_view, 6> keys{"id",         "name",   "size",
                                                          "importedAt", "sha256", "quarantine"};
    static constexpr std::size_t requiredKeys = 5;

    Step begin(Container container) override {
        switch (depth()) {
        case 1:
            return container == Container::object ? Step::enter : Step::refuse;
        case 2:
            if (key() != "items") return Step::skip;
            if (container != Container::array || std::exchange(hasList_, true)) return Step::refuse;
            return Step::enter;
        case 3:
            if (container != Container::object || items.size() == maximumItems) return Step::refuse;
            items.emplace_back();
            seen_ = {};
            return Step::enter;
        default:
            return indexOf(keys, key()) == keys.size() ? Step::skip : Step::refuse;
        }
    }

    bool end() override {
        if (depth() != 2) return true;
        return seen_.containsFirst(requiredKeys) && ids_.insert(items.back().id).second;
    }

    bool value(Value value) override {
        if (depth() == 1) return key() != "items";
        if (depth() != 3) return false;
        const std::size_t index = indexOf(keys, key());
        if (index == keys.size()) return true;
        return seen_.add(index) && take(index, std::move(value));
    }

    bool take(std::size_t index, Value value) {
        VaultItem& item = items.back();
        auto* const text = std::get_if<std::string>(&value);
        const auto* const integer = std::get_if<std::int64_t>(&value);
        switch (index) {
        case 0: {
            const auto id = text == nullptr ? std::nullopt : Uuid::parse(*text);
            if (id) item.id = *id;
            return id.has_value();
        }
        case 1:
            if (text == nullptr || !isValidName(*text)) return false;
            item.name = std::move(*text);
            return true;
        case 2:
            if (integer == nullptr || *integer < 0 || *integer > maximumFileSize) return false;
            item.size = *integer;
            return true;
        case 3: {
            const auto* const real = std::get_if<double>(&value);
            if (integer == nullptr && real == nullptr) return false;
            item.importedAt =
                Date::fromReferenceSeconds(real == nullptr ? static_cast<double>(*integer) : *real);
            return true;
        }
        case 4:
            if (text == nullptr || !isDigest(*text)) return false;
            item.sha256 = std::move(*text);
            return true;
        default:
            if (std::holds_alternative<std::nullptr_t>(value)) return true;
            item.quarantine = text == nullptr ? std::nullopt : fromBase64(*text);
            return item.quarantine && item.quarantine->size() <= maximumQuarantineBytes;
        }
    }

    std::set<Uuid> ids_;
    SeenKeys seen_;
    bool hasList_ = false;
};

} // namespace

Envelope decodeEnvelope(std::string_view json) {
    EnvelopeReader reader;
    if (!reader.read(json) || !reader.isComplete()) throwInvalidFormat();
    return std::move(reader.envelope);
}

std::vector<VaultItem> decodeItems(std::string_view json) {
    ItemListReader reader;
    if (!reader.read(json) || !reader.isComplete()) throwInvalidFormat();
    return std::move(reader.items);
}

std::string encodeItems(const std::vector<VaultItem>& items) {
    std::string json = R"({"items":[)";
    for (const VaultItem& item : items) {
        if (&item != &items.front()) json += ',';
        fmt::format_to(std::back_inserter(json),
                       R"({{"id":"{}","name":{},"size":{},"importedAt":{},"sha256":"{}")",
                       item.id.string(), nlohmann::ordered_json(item.name).dump(), item.size,
                       item.importedAt.referenceSeconds(), item.sha256);
        if (item.quarantine) json += R"(,"quarantine":")" + toBase64(*item.quarantine) + '"';
        json += '}';
    }
    return json += "]}";
}

std::vector<VaultItem> openManifest(const Envelope& envelope, const VaultKey& key) {
    const std::string& sealed = envelope.sealedManifest;
    std::string json(sealed.size() - std::min(sealed.size(), ChunkLayout::sealOverhead), '\0');
    AesGcm cipher(AesGcm::Direction::open, key.bytes());
    if (sealed.size() < ChunkLayout::sealOverhead ||
        !cipher.open(bytesOf(sealed), manifestAssociatedData(envelope.salt), bytesOf(json))) {
        throw VaultError(VaultError::Kind::invalidPasswordOrDamagedVault);
    }
    return decodeItems(json);
}

std::string sealManifest(const std::vector<VaultItem>& items, const Salt& salt, const VaultKey& key,
                         const Nonce& nonce) {
    const std::string json = encodeItems(items);
    std::string envelope;
    if (json.size() < maximumEnvelopeBytes) {
        std::string sealed(json.size() + ChunkLayout::sealOverhead, '\0');
        AesGcm cipher(AesGcm::Direction::seal, key.bytes());
        cipher.seal(bytesOf(json), manifestAssociatedData(salt), nonce, bytesOf(sealed));
        envelope = fmt::format(
            R"({{"version":{},"iterations":{},"salt":"{}","sealedManifest":"{}"}})", formatVersion,
            keyDerivationRounds,
            toBase64({reinterpret_cast<const char*>(salt.data()), salt.size()}), toBase64(sealed));
    }
    if (envelope.empty() || envelope.size() > maximumEnvelopeBytes) {
        throw VaultError::io("The Vault has reached its metadata limit.");
    }
    return envelope;
}

} // namespace tovi::vault
