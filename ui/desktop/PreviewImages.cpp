#include "ui/desktop/PreviewImages.h"

#include "base/Text.h"
#include "platform/FileAttributes.h"
#include "platform/StandardLocations.h"

#include <QImage>
#include <QUrl>
#include <algorithm>
#include <mutex>

namespace tovi {
namespace {

constexpr int mostWaiting = 16;
constexpr int usualSide = 512;
constexpr int longestSide = 2048; // that the decoder draws

class Response;

/// Leads to a response while it lives: a closing window may delete one before its picture is made.
struct Address {
    std::mutex mutex; // guards the response, and keeps it alive while it is held
    Response* response = nullptr;
};

class Response final : public QQuickImageResponse {
  public:
    Response() { address_->response = this; }
    ~Response() override {
        const std::lock_guard lock(address_->mutex);
        address_->response = nullptr;
    }

    QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }
    void cancel() override { stop_.request_stop(); }

    std::shared_ptr<Address> address() const { return address_; }
    std::stop_token token() const { return stop_.get_token(); }
    /// Of a null image a single empty pixel is made, since an error would be a warning of QML.
    void finish(QImage image) {
        image_ = std::move(image);
        if (image_.isNull()) {
            image_ = QImage(1, 1, QImage::Format_ARGB32_Premultiplied);
            image_.fill(Qt::transparent);
        }
        Q_EMIT finished();
    }

  private:
    const std::shared_ptr<Address> address_ = std::make_shared<Address>();
    QImage image_;
    std::stop_source stop_;
};

/// Gives the image to the response on its own thread, which listens to it only after the request.
void deliver(Address& address, QImage image) {
    const std::lock_guard lock(address.mutex);
    if (!address.response) return;
    QMetaObject::invokeMethod(
        address.response,
        [response = address.response, image = std::move(image)] { response->finish(image); },
        Qt::QueuedConnection);
}

/// A page whose fonts are not at hand is drawn empty.
bool isBlank(const DecodedPicture& picture) {
    return picture.pixels.find_first_not_of('\xff') == std::string::npos;
}

QImage toImage(Thumbnail made) {
    if (!made) return {};
    const auto* kept = new Thumbnail(std::move(made));
    const DecodedPicture& picture = **kept;
    return QImage(
        reinterpret_cast<const uchar*>(picture.pixels.data()), picture.width, picture.height,
        qsizetype{3} * picture.width, QImage::Format_RGB888,
        [](void* shared) { delete static_cast<const Thumbnail*>(shared); },
        const_cast<Thumbnail*>(kept));
}

std::string pathOf(const QString& id) {
    const QByteArray encoded = id.section(u'?', 0, 0).toUtf8();
    return QByteArray::fromPercentEncoding(encoded).toStdString();
}

QImage load(ThumbnailLoader& loader, const std::string& path, int side,
            const std::stop_token& stop) {
    try {
        const platform::FileAttributes attributes = platform::attributesOf(path);
        if (attributes.type != platform::FileType::regular) return {};
        Thumbnail made = loader.image({path, attributes.modifiedAt, attributes.size, side}, stop);
        const bool isPdf = lowercasedExtension(lastPathComponent(path)) == "pdf";
        if (made && isPdf && isBlank(*made)) return {};
        return toImage(std::move(made));
    } catch (const std::exception&) {
        return {}; // vanished meanwhile
    }
}

} // namespace

PreviewImages::PreviewImages(decoder::DecoderPool& decoders,
                             const platform::Availability& availability)
    : maker_(decoders, availability, platform::cacheHome() + "/thumbnails"),
      loader_([this](const FileThumbnailKey& key,
                     const std::stop_token& stop) { return maker_.make(key, stop); },
              Date::now) {
    waiting_.setMaxThreadCount(mostWaiting);
}

PreviewImages::~PreviewImages() {
    stop_.request_stop();
    waiting_.waitForDone();
}

QQuickImageResponse* PreviewImages::requestImageResponse(const QString& id,
                                                         const QSize& requestedSize) {
    auto* response = new Response;
    const int wanted = std::max(requestedSize.width(), requestedSize.height());
    const int side = wanted > 0 ? std::min(wanted, longestSide) : usualSide;
    waiting_.start([this, address = response->address(), token = response->token(),
                    path = pathOf(id), side] {
        std::stop_source either;
        const std::stop_callback cancelled(token, [&either] { either.request_stop(); });
        const std::stop_callback ending(stop_.get_token(), [&either] { either.request_stop(); });
        deliver(*address, load(loader_, path, side, either.get_token()));
    });
    return response;
}

} // namespace tovi
