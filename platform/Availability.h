#pragma once

#include "platform/ExtendedAttributes.h"

#include <string>

namespace tovi::platform {

/// Tells whether a file's bytes are on the disk. Reading a cloud placeholder would download it, so
/// nothing opens a file that is not available.
class Availability {
  public:
    virtual ~Availability() = default;
    virtual bool isAvailableLocally(const std::string& path,
                                    const ExtendedAttributes& attributes) const = 0;

    bool isAvailableLocally(const std::string& path) const {
        return isAvailableLocally(path, ExtendedAttributes(path));
    }
};

/// The marks that the sync clients of this system leave on their placeholders.
class SystemAvailability final : public Availability {
  public:
    using Availability::isAvailableLocally;
    bool isAvailableLocally(const std::string& path,
                            const ExtendedAttributes& attributes) const override;
};

} // namespace tovi::platform
