#include "core/files/XmlPropertyList.h"

#include "core/files/Base64.h"
#include "core/files/BinaryPropertyList.h"

#include <charconv>
#include <cmath>
#include <ctime>
#include <string>

#include <pugixml.hpp>

namespace tovi {
namespace {

constexpr int deepest = 64;

template <typename Number>
std::optional<PropertyList> numberFrom(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(number)) return std::nullopt;
    }
    return PropertyList{number};
}

std::optional<PropertyList> dateFrom(const char* text) {
    std::tm time{};
    const char* rest = ::strptime(text, "%Y-%m-%dT%H:%M:%SZ", &time);
    if (rest == nullptr || *rest != '\0') return std::nullopt;
    return PropertyList{Date{static_cast<double>(::timegm(&time))}};
}

std::optional<PropertyList> dataFrom(std::string text) {
    std::erase_if(text, [](char character) {
        return character == ' ' || character == '\t' || character == '\n' || character == '\r';
    });
    const auto bytes = fromBase64(text);
    if (!bytes) return std::nullopt;
    const auto view = std::as_bytes(std::span(*bytes));
    return PropertyList{PropertyList::Data(view.begin(), view.end())};
}

std::optional<PropertyList> valueFrom(const pugi::xml_node& node, int depth) {
    if (depth > deepest) return std::nullopt;
    const std::string_view type = node.name();
    const char* text = node.child_value();
    if (type == "string") return PropertyList{std::string(text)};
    if (type == "true") return PropertyList{true};
    if (type == "false") return PropertyList{false};
    if (type == "integer") return numberFrom<std::int64_t>(text);
    if (type == "real") return numberFrom<double>(text);
    if (type == "date") return dateFrom(text);
    if (type == "data") return dataFrom(text);
    if (type == "array") {
        PropertyList::Array items;
        for (const pugi::xml_node& child : node.children()) {
            auto item = valueFrom(child, depth + 1);
            if (!item) return std::nullopt;
            items.push_back(std::move(*item));
        }
        return PropertyList{std::move(items)};
    }
    if (type != "dict") return std::nullopt;
    PropertyList::Dictionary entries;
    for (pugi::xml_node key = node.first_child(); key; key = key.next_sibling()) {
        const std::string name = key.child_value();
        if (std::string_view(key.name()) != "key") return std::nullopt;
        key = key.next_sibling();
        auto value = valueFrom(key, depth + 1);
        if (!value) return std::nullopt;
        entries.push_back({name, std::move(*value)});
    }
    return PropertyList{std::move(entries)};
}

} // namespace

std::optional<PropertyList> readXmlPropertyList(std::span<const std::byte> bytes) {
    if (bytes.size() > maximumPropertyListBytes) return std::nullopt;
    pugi::xml_document document;
    if (!document.load_buffer(bytes.data(), bytes.size())) return std::nullopt;
    return valueFrom(document.child("plist").first_child(), 0);
}

std::optional<PropertyList> readPropertyList(std::span<const std::byte> bytes) {
    if (auto list = readBinaryPropertyList(bytes)) return list;
    return readXmlPropertyList(bytes);
}

} // namespace tovi
