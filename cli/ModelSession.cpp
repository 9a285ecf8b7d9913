#include "cli/ModelSession.h"

#include "base/Cancelled.h"

#include <QEventLoop>
#include <QTimer>
#include <stdexcept>

namespace tovi::cli {
namespace {

constexpr std::chrono::milliseconds interruptionInterval{50};

} // namespace

ModelSession::ModelSession(const Context& context)
    : application_(argumentCount_, arguments_), stop_(context.stop), runtime_(decoderPath()) {
    model_ = std::make_unique<AppModel>(
        AppSystem{runtime_.executor(), runtime_.indexer(), runtime_.actions(), desktop_, desktop_,
                  desktop_, [](auto) { return std::make_unique<NoChanges>(); }},
        AppSettings{.dataDirectory = context.dataDirectory,
                    .isDataDirectoryGiven = true,
                    .automaticallyScan = false});
    model_->scan()->pauseQuietly();
    bool isOpen = false;
    // The folders have been looked up after the settings, where those could be read.
    QObject::connect(model_.get(), &AppModel::loaded, [&] { isOpen = !model_->isLoaded(); });
    QObject::connect(model_.get(), &AppModel::libraryAccessChanged, [&] { isOpen = true; });
    model_->prepare();
    waitUntil([&] { return isOpen; });
    const std::string error = model_->notices()->errorMessage().toStdString();
    if (!model_->isLoaded() || !model_->hasIndex()) throw std::runtime_error(error);
}

void ModelSession::waitUntil(const std::function<bool()>& isDone) const {
    QTimer interruption; // a signal does not wake the event loop
    interruption.start(interruptionInterval);
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
