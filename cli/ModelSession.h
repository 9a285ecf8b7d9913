#pragma once

#include "app/model/AppModel.h"
#include "app/monitor/FolderMonitor.h"
#include "app/runtime/Runtime.h"
#include "cli/Context.h"

#include <QCoreApplication>
#include <functional>

namespace tovi::cli {

/// The application's own model behind a command, started and ready. It scans nothing by itself
/// unless it is to follow changes. Holds the writer lock of the data directory.
class ModelSession {
  public:
    struct Following {
        double interval = 15.0;                 // seconds between the starts of two scans
        std::function<void(AppModel&)> connect; // before the model starts
    };

    /// Throws the model's sentence where the data directory cannot be used.
    explicit ModelSession(const Context& context, const std::optional<Following>& following = {});

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
