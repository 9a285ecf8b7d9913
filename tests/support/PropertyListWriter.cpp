#include "tests/support/PropertyListWriter.h"

#include <bit>

namespace tovi::test {
namespace {

std::string bigEndian(std::uint64_t value, std::size_t length) {
    std::string bytes(length, '\0');
    for (std::size_t i = length; i-- > 0; value >>= 8)
        bytes[i] = static_cast<char>(value & 0xFF);
    return bytes;
}

} // namespace

std::size_t PropertyListWriter::raw(std::string_view bytes) {
    offsets_.push_back(bytes_.size());
    bytes_ += bytes;
    return offsets_.size() - 1;
}

std::size_t PropertyListWriter::counted(unsigned kind, std::size_t count,
                                        const std::string& payload) {
    const bool isShort = count < 15;
    std::string object = bigEndian(kind << 4 | (isShort ? count : 15), 1);
    if (!isShort) object += "\x12" + bigEndian(count, 4);
    return raw(object + payload);
}

std::size_t PropertyListWriter::text(std::string_view ascii) {
    return counted(0x5, ascii.size(), std::string(ascii));
}

std::size_t PropertyListWriter::wideText(std::u16string_view units) {
    std::string payload;
    for (const char16_t unit : units)
        payload += bigEndian(unit, 2);
    return counted(0x6, units.size(), payload);
}

std::size_t PropertyListWriter::data(std::string_view bytes) {
    return counted(0x4, bytes.size(), std::string(bytes));
}

std::size_t PropertyListWriter::date(double referenceSeconds) {
    return raw("\x33" + bigEndian(std::bit_cast<std::uint64_t>(referenceSeconds), 8));
}

std::size_t PropertyListWriter::array(const std::vector<std::size_t>& items) {
    return counted(0xA, items.size(), references(items));
}

std::size_t PropertyListWriter::dictionary(const std::vector<std::size_t>& keys,
                                           const std::vector<std::size_t>& values) {
    return counted(0xD, keys.size(), references(keys) + references(values));
}

std::string PropertyListWriter::references(const std::vector<std::size_t>& indices) const {
    std::string bytes;
    for (const std::size_t index : indices)
        bytes += bigEndian(index, referenceSize_);
    return bytes;
}

std::string PropertyListWriter::finish() const {
    std::string result = bytes_;
    for (const std::size_t offset : offsets_)
        result += bigEndian(offset, offsetSize_);
    result += std::string(6, '\0') + bigEndian(offsetSize_, 1) + bigEndian(referenceSize_, 1);
    result += bigEndian(offsets_.size(), 8) + bigEndian(offsets_.size() - 1, 8) +
              bigEndian(bytes_.size(), 8);
    return result;
}

} // namespace tovi::test
