#pragma once

#include "app/model/AppModel.h"
#include "app/runtime/Runtime.h"
#include "cli/Context.h"

#include <QCoreApplication>
#include <functional>

namespace tovi::cli {

/// The application's own model behind a command, started and ready, which scans nothing by itself.
/// Holds the writer lock of the data directory.
class ModelSession {
  public:
    /// Throws the model's sentence where the data directory cannot be used.
    explicit ModelSession(const Context& context);

    AppModel& model() { return *model_; }

    /// Runs the event loop until `isDone`. Throws `Cancelled`.
    void waitUntil(const std::function<bool()>& isDone) const;

    /// Waits until the settings are on the disk. Throws the model's error, if there is one.
    void finish() const;

  private:
    class NoDesktop final : public FolderPicker, public Clipboard, public FileOpener {
        void pick(const Request&, Answer answer) override { answer(std::nullopt); }
        bool setText(const std::string&) override { return false; }
        bool open(const std::string&) override { return false; }
        bool reveal(const std::string&) override { return false; }
    };
    class NoChanges final : public FolderChanges {
        void start(const std::vector<std::string>&) override {}
        void stop() override {}
    };

    char programName_[8] = "tovictl";
    char* arguments_[1] = {programName_};
    int argumentCount_ = 1;
    QCoreApplication application_;
    std::stop_token stop_;
    Runtime runtime_;
    NoDesktop desktop_;
    std::unique_ptr<AppModel> model_;
};

} // namespace tovi::cli
