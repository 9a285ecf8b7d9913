#pragma once

#include "app/thumbnails/ThumbnailLoader.h"
#include "app/thumbnails/ThumbnailMaker.h"

#include <QQuickAsyncImageProvider>
#include <QThreadPool>

namespace tovi {

/// Gives QML the pictures of files: "image://preview/PATH?VERSION", the path percent-encoded and
/// the version anything that changes with the file. What has no picture is one transparent pixel.
class PreviewImages final : public QQuickAsyncImageProvider {
  public:
    /// What is given outlives the provider.
    PreviewImages(decoder::DecoderPool& decoders, const platform::Availability& availability);
    ~PreviewImages() override;

    QQuickImageResponse* requestImageResponse(const QString& id,
                                              const QSize& requestedSize) override;

  private:
    ThumbnailMaker maker_;
    ThumbnailLoader loader_;
    std::stop_source stop_;
    QThreadPool waiting_; // for the loader, which works on threads of its own
};

} // namespace tovi
