#include "core/files/BinaryPropertyList.h"

#include "base/Text.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

#include <unicode/unistr.h>

namespace tovi {
namespace {

constexpr std::size_t headerLength = 8;
constexpr std::size_t trailerLength = 32;
constexpr int maximumDepth = 32;
constexpr std::size_t maximumValues = 65'536;
constexpr std::size_t maximumPayload = 4'194'304; // bytes of all strings and data together

struct Malformed {};

using Bytes = std::span<const std::byte>;

Bytes slice(Bytes bytes, std::uint64_t at, std::uint64_t length) {
    if (at > bytes.size() || length > bytes.size() - at) throw Malformed{};
    return bytes.subspan(at, length);
}

/// Big-endian, of at most eight bytes.
std::uint64_t unsignedNumber(Bytes bytes) {
    std::uint64_t value = 0;
    for (const std::byte byte : bytes)
        value = value << 8 | std::to_integer<std::uint64_t>(byte);
    return value;
}

class Reader {
  public:
    explicit Reader(Bytes bytes) {
        if (bytes.size() < headerLength + trailerLength ||
            bytes.size() > maximumPropertyListBytes ||
            std::memcmp(bytes.data(), "bplist00", headerLength) != 0) {
            throw Malformed{};
        }
        const Bytes trailer = bytes.last(trailerLength);
        offsetSize_ = std::to_integer<std::size_t>(trailer[6]);
        referenceSize_ = std::to_integer<std::size_t>(trailer[7]);
        count_ = unsignedNumber(trailer.subspan(8, 8));
        top_ = unsignedNumber(trailer.subspan(16, 8));
        const std::uint64_t table = unsignedNumber(trailer.subspan(24, 8));
        const auto isSize = [](std::size_t size) { return size >= 1 && size <= 8; };
        if (!isSize(offsetSize_) || !isSize(referenceSize_) || count_ > bytes.size()) {
            throw Malformed{};
        }
        bytes = bytes.first(bytes.size() - trailerLength);
        offsets_ = slice(bytes, table, count_ * offsetSize_);
        objects_ = bytes.first(table);
    }

    PropertyList top() { return object(top_, 0); }

  private:
    PropertyList object(std::uint64_t index, int depth) {
        if (index >= count_ || depth >= maximumDepth || ++values_ > maximumValues) {
            throw Malformed{};
        }
        std::uint64_t at = unsignedNumber(offsets_.subspan(index * offsetSize_, offsetSize_));
        if (at < headerLength) throw Malformed{};
        const auto marker = std::to_integer<unsigned>(slice(objects_, at, 1).front());
        ++at;
        switch (marker >> 4) {
        case 0x0:
            return simple(marker);
        case 0x1:
            return {integer(scalar(at, marker))};
        case 0x2:
            return {real(scalar(at, marker))};
        case 0x3:
            return date(marker, at);
        case 0x4: {
            const Bytes data = payload(at, countOf(marker, at), 1);
            return {PropertyList::Data(data.begin(), data.end())};
        }
        case 0x5:
            return {plainText(payload(at, countOf(marker, at), 1))};
        case 0x6:
            return {wideText(payload(at, countOf(marker, at), 2))};
        case 0xA:
        case 0xC:
            return array(at, countOf(marker, at), depth);
        case 0xD:
            return dictionary(at, countOf(marker, at), depth);
        default:
            throw Malformed{};
        }
    }

    static PropertyList simple(unsigned marker) {
        switch (marker) {
        case 0x00:
            return {};
        case 0x08:
            return {false};
        case 0x09:
            return {true};
        default:
            throw Malformed{};
        }
    }

    /// The bytes of a number, whose marker holds the logarithm of their count.
    Bytes scalar(std::uint64_t at, unsigned marker) const {
        const unsigned logarithm = marker & 0xF;
        if (logarithm > 4) throw Malformed{};
        return slice(objects_, at, 1U << logarithm);
    }

    /// Numbers of eight bytes are signed, shorter ones are not.
    static std::int64_t integer(Bytes bytes) {
        if (bytes.size() <= 8) return static_cast<std::int64_t>(unsignedNumber(bytes));
        const auto high = static_cast<std::int64_t>(unsignedNumber(bytes.first(8)));
        const auto low = static_cast<std::int64_t>(unsignedNumber(bytes.last(8)));
        if (high != (low < 0 ? -1 : 0)) throw Malformed{};
        return low;
    }

    static double real(Bytes bytes) {
        double value = NAN;
        if (bytes.size() == 4) {
            value = std::bit_cast<float>(static_cast<std::uint32_t>(unsignedNumber(bytes)));
        } else if (bytes.size() == 8) {
            value = std::bit_cast<double>(unsignedNumber(bytes));
        }
        if (!std::isfinite(value)) throw Malformed{};
        return value;
    }

    PropertyList date(unsigned marker, std::uint64_t at) const {
        if (marker != 0x33) throw Malformed{};
        return {Date::fromReferenceSeconds(real(slice(objects_, at, 8)))};
    }

    /// The count in a marker, or in the number that follows it; `at` is moved behind it.
    std::uint64_t countOf(unsigned marker, std::uint64_t& at) const {
        if ((marker & 0xF) != 0xF) return marker & 0xF;
        const auto number = std::to_integer<unsigned>(slice(objects_, at, 1).front());
        if (number >> 4 != 0x1 || (number & 0xF) > 3) throw Malformed{};
        const Bytes bytes = scalar(at + 1, number);
        at += 1 + bytes.size();
        return unsignedNumber(bytes);
    }

    Bytes payload(std::uint64_t at, std::uint64_t count, std::size_t unit) {
        if (count > maximumPropertyListBytes) throw Malformed{};
        const Bytes bytes = slice(objects_, at, count * unit);
        payload_ += bytes.size();
        if (payload_ > maximumPayload) throw Malformed{};
        return bytes;
    }

    static std::string plainText(Bytes bytes) {
        std::string text(bytes.size(), '\0');
        for (std::size_t i = 0; i < bytes.size(); ++i)
            text[i] = std::to_integer<char>(bytes[i]);
        if (!isValidUtf8(text)) throw Malformed{};
        return text;
    }

    static std::string wideText(Bytes bytes) {
        std::u16string units(bytes.size() / 2, u'\0');
        for (std::size_t i = 0; i < units.size(); ++i)
            units[i] = static_cast<char16_t>(unsignedNumber(bytes.subspan(2 * i, 2)));
        std::string text;
        icu::UnicodeString(units.data(), static_cast<std::int32_t>(units.size()))
            .toUTF8String(text);
        return text;
    }

    Bytes references(std::uint64_t at, std::uint64_t count) const {
        if (count > maximumValues) throw Malformed{};
        return slice(objects_, at, count * referenceSize_);
    }

    std::uint64_t reference(Bytes references, std::uint64_t position) const {
        return unsignedNumber(references.subspan(position * referenceSize_, referenceSize_));
    }

    PropertyList array(std::uint64_t at, std::uint64_t count, int depth) {
        const Bytes items = references(at, count);
        PropertyList::Array array;
        for (std::uint64_t i = 0; i < count; ++i)
            array.push_back(object(reference(items, i), depth + 1));
        return {std::move(array)};
    }

    PropertyList dictionary(std::uint64_t at, std::uint64_t count, int depth) {
        const Bytes keys = references(at, count);
        const Bytes values = references(at + keys.size(), count);
        PropertyList::Dictionary dictionary;
        for (std::uint64_t i = 0; i < count; ++i) {
            PropertyList key = object(reference(keys, i), depth + 1);
            auto* text = std::get_if<std::string>(&key.value);
            if (text == nullptr) throw Malformed{};
            dictionary.push_back({std::move(*text), object(reference(values, i), depth + 1)});
        }
        return {std::move(dictionary)};
    }

    Bytes objects_;
    Bytes offsets_;
    std::size_t offsetSize_ = 0;    // bytes of an entry of the offset table
    std::size_t referenceSize_ = 0; // bytes of an object's index
    std::uint64_t count_ = 0;
    std::uint64_t top_ = 0;
    std::size_t values_ = 0;
    std::size_t payload_ = 0;
};

} // namespace

std::optional<PropertyList> readBinaryPropertyList(std::span<const std::byte> bytes) {
    try {
        return Reader(bytes).top();
    } catch (const Malformed&) {
        return std::nullopt;
    }
}

} // namespace tovi
