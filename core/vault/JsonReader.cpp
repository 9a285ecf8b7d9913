#include "core/vault/JsonReader.h"

#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

namespace tovi::vault {

struct JsonReader::Events {
    using Json = nlohmann::ordered_json;
    static constexpr int maximumDepth = 64;

    JsonReader& reader;

    bool null() { return scalar(nullptr); }
    bool boolean(bool value) { return scalar(value); }
    bool number_integer(Json::number_integer_t value) { return scalar(value); }
    bool number_unsigned(Json::number_unsigned_t value) {
        if (value > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
            return scalar(static_cast<double>(value));
        }
        return scalar(static_cast<std::int64_t>(value));
    }
    bool number_float(Json::number_float_t value, const std::string& /*text*/) {
        return scalar(value);
    }
    bool string(std::string& value) { return scalar(std::move(value)); }
    bool binary(Json::binary_t& /*value*/) { return false; }
    bool start_object(std::size_t /*size*/) { return begin(Container::object); }
    bool start_array(std::size_t /*size*/) { return begin(Container::array); }
    bool end_object() { return end(); }
    bool end_array() { return end(); }
    bool key(std::string& text) {
        if (reader.skipped_ == 0) reader.key_ = std::move(text);
        return true;
    }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const Json::exception& /*error*/) {
        return false;
    }

  private:
    bool scalar(Value value) { return reader.skipped_ > 0 || reader.value(std::move(value)); }

    bool begin(Container container) {
        if (++reader.depth_ > maximumDepth) return false;
        if (reader.skipped_ == 0) {
            const Step step = reader.begin(container);
            if (step != Step::skip) return step == Step::enter;
        }
        ++reader.skipped_;
        return true;
    }

    bool end() {
        --reader.depth_;
        if (reader.skipped_ == 0) return reader.end();
        --reader.skipped_;
        return true;
    }
};

bool JsonReader::read(std::string_view text) {
    Events events{*this};
    return nlohmann::ordered_json::sax_parse(text.begin(), text.end(), &events);
}

} // namespace tovi::vault
