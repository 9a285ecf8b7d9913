#pragma once

#include "app/cleanup/CleanupModel.h"
#include "app/runtime/Runtime.h"
#include "app/vault/SessionLock.h"
#include "ui/desktop/DesktopIntegration.h"
#include "ui/desktop/DesktopPorts.h"
#include "ui/desktop/ScreenModels.h"
#include "ui/desktop/SeparateFrames.h"
#include "ui/desktop/ShortSteps.h"
#include "ui/desktop/VaultDialogs.h"
#include "ui/session/SystemFolderDialog.h"

#include <QQmlEngine>
#include <QQmlIncubator>
#include <QQuickWindow>
#include <optional>

namespace tovi {

/// The models of the desktop program and its window. Needs a
/// QGuiApplication; at most one in the life of a process, because QML's types are the process's.
class Application {
  public:
    struct Options {
        std::string dataDirectory; // absolute
        bool isDataDirectoryGiven = false;
        std::string decoderProgram; // the path of tovi-decoder
        QString section;            // shown first; empty for the usual one
        bool isWindowShown = true;  // at once
    };

    Application(const Options& options, FileOpener& opener);

    AppModel& model() { return model_; }
    CleanupModel& cleanup() { return cleanup_; }
    VaultModel& vault() { return vault_; }
    DesktopIntegration& integration() { return integration_; }
    /// Made by the event loop, in short steps; none before.
    QQuickWindow* window() const { return window_.get(); }

  private:
    class WindowIncubator final : public QQmlIncubator {
      public:
        explicit WindowIncubator(Application& application) : application_(application) {}

      private:
        void statusChanged(Status status) override { application_.followWindow(status); }

        Application& application_;
    };
    void followWindow(QQmlIncubator::Status status);

    const bool isWindowShown_;
    Runtime runtime_;
    WindowFolderPicker folderPicker_;
    SystemClipboard clipboard_;
    VaultDialogs vaultDialogs_;
    SystemFolderDialog folderDialog_{QDBusConnection::sessionBus()};
    AppModel model_;
    ScreenModels screens_{model_, runtime_};
    CleanupModel cleanup_;
    VaultModel vault_;
    std::unique_ptr<platform::SessionSignals> session_;
    SessionLock sessionLock_;
    ShortSteps steps_;
    QQmlEngine engine_;
    DesktopIntegration integration_;
    WindowIncubator windowIncubator_{*this};
    std::unique_ptr<QQuickWindow> window_;
    std::optional<SeparateFrames> frames_;
};

} // namespace tovi
