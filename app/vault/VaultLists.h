#pragma once

#include "app/lists/DifferenceListModel.h"
#include "core/vault/VaultItem.h"

namespace tovi {

/// A file that was added since the vault was unlocked.
struct VaultImportedOriginal {
    std::string sourceURL; // the path where the original lies
    VaultItem item;

    friend bool operator==(const VaultImportedOriginal&, const VaultImportedOriginal&) = default;
};

/// Roles: id, name, size (bytes) and importedAt.
class VaultItemList final : public DifferenceListModel<VaultItem> {
  public:
    VaultItemList();
};

/// Roles: id, sourceURL and name.
class VaultOriginalList final : public DifferenceListModel<VaultImportedOriginal> {
  public:
    VaultOriginalList();
};

} // namespace tovi
