#pragma once

#include "base/Date.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tovi {

/// A value of a property list. Sets are arrays.
struct PropertyList {
    struct Entry;
    using Data = std::vector<std::byte>;
    using Array = std::vector<PropertyList>;
    using Dictionary = std::vector<Entry>; // in the order of the file

    std::variant<std::monostate, bool, std::int64_t, double, Date, Data, std::string, Array,
                 Dictionary>
        value;

    /// Nothing if the value is of another type.
    template <typename T>
    const T* as() const {
        return std::get_if<T>(&value);
    }

    /// The value of a dictionary's first entry with this key; nothing for any other value.
    const PropertyList* find(std::string_view key) const;

    friend bool operator==(const PropertyList&, const PropertyList&) = default;
};

struct PropertyList::Entry {
    std::string key;
    PropertyList value;

    friend bool operator==(const Entry&, const Entry&) = default;
};

inline const PropertyList* PropertyList::find(std::string_view key) const {
    if (const auto* entries = as<Dictionary>()) {
        for (const Entry& entry : *entries) {
            if (entry.key == key) return &entry.value;
        }
    }
    return nullptr;
}

} // namespace tovi
