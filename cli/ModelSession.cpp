#include "cli/ModelSession.h"

#include "base/Cancelled.h"

#include <QEventLoop>
#include <stdexcept>

namespace tovi::cli {

ModelSession::ModelSession(const Context& context, const std::optional<Following>& following)
    : application_(argumentCount_, arguments_), stop_(context.stop), runtime_(decoderPath()) {
    const auto makeMonitor =
        [this, following, dataDirectory = context.dataDirectory](
            FolderListener::Handlers handlers) -> std::unique_ptr<FolderChanges> {
        if (!following) return nullptr;
        return monitorSystemFolders(runtime_.executor(), dataDirectory, std::move(handlers));
    };
    AppSettings settings{.dataDirectory = context.dataDirectory,
                         .isDataDirectoryGiven = true,
                         .automaticallyScan = following.has_value()};
    if (following) settings.automaticRescanInterval = following->interval;
    model_ = std::make_unique<AppModel>(AppSystem{runtime_.executor(), runtime_.indexer(),
                                                  runtime_.actions(), desktop_, desktop_, desktop_,
                                                  makeMonitor},
                                        settings);
    following ? following->connect(*model_) : model_->scan()->pauseQuietly();
    bool isOpen = false;
    const QObject opening; // what is connected ends with it
    // The folders have been looked up after the settings, where those could be read.
    QObject::connect(model_.get(), &AppModel::loaded, &opening,
                     [&] { isOpen = !model_->isLoaded(); });
    QObject::connect(model_.get(), &AppModel::libraryAccessChanged, &opening,
                     [&] { isOpen = true; });
    model_->prepare();
    waitUntil([&] { return isOpen; });
    const std::string error = model_->notices()->errorMessage().toStdString();
    if (!model_->isLoaded() || !model_->hasIndex()) throw std::runtime_error(error);
}

void ModelSession::waitUntil(const std::function<bool()>& isDone) const {
    const std::stop_callback wakeUp(stop_, [] {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [] {}, Qt::QueuedConnection);
    });
    while (!isDone()) {
        throwIfCancelled(stop_);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void ModelSession::finish() const {
    waitUntil([&] { return model_->isSaved(); });
    const std::string error = model_->notices()->errorMessage().toStdString();
    if (!error.empty()) throw std::runtime_error(error);
}

} // namespace tovi::cli
