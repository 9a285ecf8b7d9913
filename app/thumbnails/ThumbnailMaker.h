#pragma once

#include "app/thumbnails/ThumbnailLoader.h"
#include "decoder/client/DecoderPool.h"
#include "platform/Availability.h"

#include <string>

namespace tovi {

/// Makes the thumbnails of pictures and of PDFs' first pages. What it refers to outlives it; may be
/// used from any thread.
class ThumbnailMaker {
  public:
    /// `sharedFolder` is where the desktop keeps thumbnails; nothing is written there, because a
    /// thumbnail would outlive a file that is locked away.
    ThumbnailMaker(decoder::DecoderPool& decoders, const platform::Availability& availability,
                   std::string sharedFolder)
        : decoders_(decoders),
          availability_(availability),
          sharedFolder_(std::move(sharedFolder)) {}

    /// Null for a file that is not on the disk or no longer the one of the key. Throws
    /// `std::exception` for one that cannot be read or has no thumbnail, and `Cancelled`.
    Thumbnail make(const FileThumbnailKey& key, const std::stop_token& stop) const;

  private:
    decoder::DecoderPool& decoders_;
    const platform::Availability& availability_;
    std::string sharedFolder_;
};

} // namespace tovi
