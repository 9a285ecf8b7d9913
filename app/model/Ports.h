#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tovi {

/// What the models ask of the desktop around them. All are called on the main thread and outlive
/// the models.

/// Lets the user choose one folder in a dialog.
class FolderPicker {
  public:
    struct Request {
        std::string title;
        std::string message;
        std::string button;
        std::optional<std::string> directory; // where the dialog opens
    };
    /// The folder, or nothing if the user chose none.
    using Answer = std::function<void(std::optional<std::string> folder)>;

    virtual ~FolderPicker() = default;

    /// Returns at once; `answer` is called once, later.
    virtual void pick(const Request& request, Answer answer) = 0;
};

class Clipboard {
  public:
    virtual ~Clipboard() = default;

    /// Whether the text is now on the clipboard.
    virtual bool setText(const std::string& text) = 0;
};

/// Shows files in the programs made for them.
class FileOpener {
  public:
    virtual ~FileOpener() = default;

    /// Whether a program was asked.
    virtual bool open(const std::string& path) = 0;
    virtual bool reveal(const std::string& path) = 0;
};

} // namespace tovi
