#include "core/vault/VaultError.h"
#include "core/vault/VaultManifest.h"

#include <cstdlib>

/// What lies in a manifest file and, behind the password, the list inside: anything is read or
/// refused, and a list that is read can be written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tovi;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        vault::decodeEnvelope(text);
    } catch (const VaultError&) {
    }
    try {
        const std::vector<VaultItem> items = vault::decodeItems(text);
        if (vault::decodeItems(vault::encodeItems(items)).size() != items.size()) std::abort();
    } catch (const VaultError&) {
    }
    return 0;
}
