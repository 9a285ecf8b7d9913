#pragma once

#include "app/lists/DifferenceListModel.h"

#include <cstdint>
#include <string>

namespace tovi {

struct ReceiptFile {
    std::string path;      // where it was
    std::string newName;   // of a renamed one; empty otherwise
    std::int64_t size = 0; // bytes
    bool isRestored = false;

    friend bool operator==(const ReceiptFile&, const ReceiptFile&) = default;
};

/// The files of one receipt, in the order of execution. Roles: path, newName, size, isRestored.
class ReceiptFiles final : public DifferenceListModel<ReceiptFile> {
  public:
    ReceiptFiles();
};

} // namespace tovi
