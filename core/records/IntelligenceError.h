#pragma once

#include <stdexcept>
#include <string>

namespace tovi {

/// The error of the index and the search; `what()` is the whole sentence for the user.
class IntelligenceError : public std::runtime_error {
  public:
    enum class Kind { database, inaccessible, invalidQuery };

    static IntelligenceError database(const std::string& text) {
        return {Kind::database, "Index database: " + text};
    }
    static IntelligenceError inaccessible(const std::string& text) {
        return {Kind::inaccessible, "Folder is unavailable: " + text};
    }
    static IntelligenceError invalidQuery(const std::string& text) {
        return {Kind::invalidQuery, "Search could not be interpreted: " + text};
    }

    Kind kind() const { return kind_; }

  private:
    IntelligenceError(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}

    Kind kind_;
};

} // namespace tovi
