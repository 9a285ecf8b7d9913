#include "app/vault/VaultLists.h"

#include "app/lists/QtConversions.h"

namespace tovi {

VaultItemList::VaultItemList()
    : DifferenceListModel(
          [](const VaultItem& item) { return item.id.string(); },
          {{"id", [](const VaultItem& item) { return toQt(item.id.string()); }},
           {"name", [](const VaultItem& item) { return toQt(item.name); }},
           {"size", [](const VaultItem& item) { return QVariant::fromValue<qint64>(item.size); }},
           {"importedAt", [](const VaultItem& item) { return toMilliseconds(item.importedAt); }}}) {
}

VaultOriginalList::VaultOriginalList()
    : DifferenceListModel(
          [](const VaultImportedOriginal& original) { return original.item.id.string(); },
          {{"id",
            [](const VaultImportedOriginal& original) { return toQt(original.item.id.string()); }},
           {"sourceURL",
            [](const VaultImportedOriginal& original) { return toQt(original.sourceURL); }},
           {"name",
            [](const VaultImportedOriginal& original) { return toQt(original.item.name); }}}) {}

} // namespace tovi
