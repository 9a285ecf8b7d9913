#include "core/files/Sha256.h"

#include <string_view>

#include <gtest/gtest.h>

namespace tovi {
namespace {

std::span<const std::byte> bytes(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

TEST(Sha256, MatchesThePublishedExamplesAndStartsAnew) {
    Sha256 sum;
    EXPECT_EQ(hexadecimal(sum.finish()),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    sum.update(bytes("a"));
    sum.update(bytes("bc"));
    EXPECT_EQ(hexadecimal(sum.finish()),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

} // namespace
} // namespace tovi
