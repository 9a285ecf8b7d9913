#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace tovi::vault {

/// Reads one JSON text (RFC 8259) event by event, without building a tree: what a hostile text can
/// cost is its own length. A subclass takes what it knows and lets the rest be skipped.
class JsonReader {
  public:
    /// False where the text is not JSON, is nested deeper than 64 levels, or a subclass refuses.
    bool read(std::string_view text);

  protected:
    using Value = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string>;
    enum class Container { object, array };
    enum class Step { enter, skip, refuse };

    JsonReader() = default;
    ~JsonReader() = default;

    /// The number of containers around the current place.
    int depth() const { return depth_; }
    /// The last key met in what was not skipped.
    const std::string& key() const { return key_; }

    /// A container begins; `depth` counts it already.
    virtual Step begin(Container container) = 0;
    /// A container that was entered has ended; `depth` does not count it any more.
    virtual bool end() = 0;
    virtual bool value(Value value) = 0;

  private:
    struct Events;

    std::string key_;
    int depth_ = 0;
    int skipped_ = 0; // containers open below the place where skipping began
};

} // namespace tovi::vault
