#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tovi::test {

/// Puts binary property lists together object by object, sound ones and others. Every call adds
/// one object and returns its index; the last object is the top one.
class PropertyListWriter {
  public:
    explicit PropertyListWriter(std::size_t offsetSize = 4, std::size_t referenceSize = 2)
        : offsetSize_(offsetSize), referenceSize_(referenceSize) {}

    std::size_t raw(std::string_view bytes);
    std::size_t text(std::string_view ascii);
    std::size_t wideText(std::u16string_view units);
    std::size_t data(std::string_view bytes);
    std::size_t date(double referenceSeconds);
    std::size_t array(const std::vector<std::size_t>& items);
    std::size_t dictionary(const std::vector<std::size_t>& keys,
                           const std::vector<std::size_t>& values);

    /// The index the next object will have.
    std::size_t next() const { return offsets_.size(); }

    std::string finish() const;

  private:
    std::size_t counted(unsigned kind, std::size_t count, const std::string& payload);
    std::string references(const std::vector<std::size_t>& indices) const;

    std::size_t offsetSize_;
    std::size_t referenceSize_;
    std::string bytes_ = "bplist00";
    std::vector<std::size_t> offsets_;
};

} // namespace tovi::test
