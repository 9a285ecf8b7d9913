#pragma once

#include "platform/Availability.h"

#include <set>
#include <string>

namespace tovi {

/// Files are on this machine unless a test says that they are away.
class ManualAvailability final : public platform::Availability {
  public:
    using Availability::isAvailableLocally;
    bool isAvailableLocally(const std::string& path,
                            const platform::ExtendedAttributes&) const override {
        return !away.contains(path);
    }
    std::set<std::string> away;
};

} // namespace tovi
