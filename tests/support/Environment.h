#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace tovi::test {

/// Sets an environment variable for the life of the object, or unsets it.
class EnvironmentVariable {
  public:
    EnvironmentVariable(std::string name, const std::optional<std::string>& value)
        : name_(std::move(name)) {
        if (const char* before = std::getenv(name_.c_str())) before_ = before;
        set(value);
    }
    ~EnvironmentVariable() { set(before_); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

  private:
    void set(const std::optional<std::string>& value) {
        if (value) {
            ::setenv(name_.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name_.c_str());
        }
    }

    std::string name_;
    std::optional<std::string> before_;
};

} // namespace tovi::test
