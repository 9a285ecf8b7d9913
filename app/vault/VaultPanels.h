#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tovi {

/// The file dialogs of the vault, one at a time. Called on the main thread; outlives the model.
class VaultPanels {
  public:
    struct OpenRequest {
        std::string title;
        std::string message;
    };
    struct SaveRequest {
        std::string title;
        std::string message;
        std::string name; // proposed
        std::string nameIdentifier;
        std::int64_t size = 0; // bytes of the file
    };
    struct Destination {
        std::string folder; // absolute
        std::string name;   // as the user typed it
    };
    /// Called once, on the main thread; empty where the user cancelled.
    using OpenAnswer = std::function<void(std::vector<std::string> paths)>;
    using SaveAnswer = std::function<void(std::optional<Destination> destination)>;

    virtual ~VaultPanels() = default;

    /// Several files. Returns at once.
    virtual void chooseFiles(const OpenRequest& request, OpenAnswer answer) = 0;
    virtual void chooseDestination(const SaveRequest& request, SaveAnswer answer) = 0;
    /// Closes the dialog that is shown as if the user had cancelled it.
    virtual void close() = 0;
};

} // namespace tovi
