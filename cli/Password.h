#pragma once

#include <array>
#include <cstddef>
#include <stop_token>
#include <string>
#include <string_view>

namespace tovi::cli {

/// A password that a person typed, in one place that is wiped at the end.
class Password {
  public:
    /// One line of an open descriptor, without the line's end. Throws `std::runtime_error` and
    /// `Cancelled`.
    Password(int descriptor, const std::stop_token& stop);

    /// Asks on the terminal without showing what is typed, whatever the standard streams are.
    /// Throws `std::runtime_error` where there is no terminal, and `Cancelled`.
    Password(const std::string& prompt, const std::stop_token& stop);

    Password(const Password&) = delete;
    Password& operator=(const Password&) = delete;
    ~Password();

    std::string_view text() const { return {bytes_.data(), size_}; }

  private:
    void readLine(int descriptor, const std::stop_token& stop);

    static constexpr std::size_t capacity = 8'192; // more than a vault accepts
    std::array<char, capacity> bytes_{};
    std::size_t size_ = 0;
};

} // namespace tovi::cli
