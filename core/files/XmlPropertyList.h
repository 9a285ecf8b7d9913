#pragma once

#include "core/files/PropertyList.h"

#include <cstddef>
#include <optional>
#include <span>

namespace tovi {

/// Reads a property list in XML (https://www.apple.com/DTDs/PropertyList-1.0.dtd). Made for
/// hostile bytes: nothing outside the list is loaded or expanded, and depth and length are
/// bounded. What is malformed or over a limit gives nothing.
std::optional<PropertyList> readXmlPropertyList(std::span<const std::byte> bytes);

/// Reads a property list in either form.
std::optional<PropertyList> readPropertyList(std::span<const std::byte> bytes);

} // namespace tovi
