#include "core/files/BinaryPropertyList.h"
#include "tests/support/PropertyListWriter.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

using namespace std::string_literals;
using test::PropertyListWriter;

/// In memory of its own size, so that reading past the end is noticed.
std::optional<PropertyList> read(const std::string& bytes) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    return readBinaryPropertyList(std::as_bytes(std::span(exact)));
}

std::optional<PropertyList> readObject(const std::string& object) {
    PropertyListWriter writer;
    writer.raw(object);
    return read(writer.finish());
}

/// With entries of every type.
std::string sample(std::size_t offsetSize = 4, std::size_t referenceSize = 2) {
    PropertyListWriter writer(offsetSize, referenceSize);
    const std::size_t name = writer.text("name");
    const std::size_t list = writer.wideText(u"list \u00fc \U0001F600");
    const std::size_t items = writer.array(
        {writer.text("a text of more than fifteen bytes"), writer.data("\x01\x02"s),
         writer.date(10.5), writer.raw("\x09"), writer.raw("\x08"), writer.raw("\x11\x01\x00"s),
         writer.raw("\x13\xff\xff\xff\xff\xff\xff\xff\xfe"s),
         writer.raw("\x23\x3f\xe0\x00\x00\x00\x00\x00\x00"s), writer.raw("\x22\x3f\x00\x00\x00"s),
         writer.raw("\x00"s)});
    writer.dictionary({name, list}, {name, items});
    return writer.finish();
}

TEST(BinaryPropertyList, ReadsEveryType) {
    for (const std::size_t size : {2U, 3U, 8U}) {
        const auto value = read(sample(size, size));
        ASSERT_TRUE(value) << size;
        ASSERT_TRUE(value->find("name"));
        EXPECT_EQ(*value->find("name")->as<std::string>(), "name");
        EXPECT_FALSE(value->find("other"));
        const auto* items = value->find("list \u00fc \U0001F600")->as<PropertyList::Array>();
        ASSERT_TRUE(items);
        const PropertyList::Array expected{{"a text of more than fifteen bytes"s},
                                           {PropertyList::Data{std::byte{1}, std::byte{2}}},
                                           {Date::fromReferenceSeconds(10.5)},
                                           {true},
                                           {false},
                                           {std::int64_t{256}},
                                           {std::int64_t{-2}},
                                           {0.5},
                                           {0.5},
                                           {}};
        EXPECT_EQ(*items, expected);
    }
}

TEST(BinaryPropertyList, ReadsNumbersOfSixteenBytesThatFit) {
    const auto read16 = [](const std::string& high, const std::string& low) {
        return readObject("\x14" + high + low);
    };
    const std::string zeros(8, '\0');
    const std::string ones(8, '\xff');
    EXPECT_EQ(*read16(zeros, "\x00\x00\x00\x00\x00\x00\x00\x07"s)->as<std::int64_t>(), 7);
    EXPECT_EQ(*read16(ones, ones)->as<std::int64_t>(), -1);
    EXPECT_FALSE(read16(zeros, ones));
    EXPECT_FALSE(read16(ones, zeros));
}

TEST(BinaryPropertyList, ReplacesLoneSurrogates) {
    PropertyListWriter writer;
    writer.wideText(u"a\xD800z");
    EXPECT_EQ(*read(writer.finish())->as<std::string>(), "a\uFFFDz");
}

TEST(BinaryPropertyList, RefusesUnsoundObjects) {
    const std::string table[] = {
        "\x01",                                  // unknown simple value
        "\x15\x00"s,                             // number of 32 bytes
        "\x12\x00"s,                             // number cut off
        "\x21\x00\x00"s,                         // real of two bytes
        "\x22\x7f\xc0\x00\x00"s,                 // not a number
        "\x33\x7f\xf0\x00\x00\x00\x00\x00\x00"s, // infinite date
        "\x32\x00\x00\x00\x00"s,                 // date of four bytes
        "\x52\xff\xfe",                          // not UTF-8
        "\x52x",                                 // text cut off
        "\x5f\x33",                              // length that is no number
        "\x5f\x13\xff\xff\xff\xff\xff\xff\xff\xff",
        "\x6f\x13\x7f\xff\xff\xff\xff\xff\xff\xff",
        "\x4f\x12\x00\x10\x00\x01"s,
        "\xaf\x13\x20\x00\x00\x00\x00\x00\x00\x00"s,
        "\xdf\x12\xff\xff\xff\xff",
        "\xa1\x00\x01"s,         // index of no object
        "\xa1\x00\x00"s,         // contains itself
        "\xd1\x00\x00\x00\x00"s, // key that is no text
        "\x80\x01",              // unknown type
    };
    for (const std::string& object : table) {
        EXPECT_FALSE(readObject(object)) << testing::PrintToString(object);
    }
}

TEST(BinaryPropertyList, SurvivesEveryCutAndEveryChangedByte) {
    const std::string whole = sample();
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(read(whole.substr(0, length))) << length;
    std::size_t refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char byte : {'\x00', '\x01', '\x7f', '\xff'}) {
            std::string changed = whole;
            changed[at] = byte;
            refused += read(changed) ? 0 : 1;
        }
    }
    EXPECT_GT(refused, whole.size());
    EXPECT_FALSE(read(whole + std::string(maximumPropertyListBytes, '\0')));
}

TEST(BinaryPropertyList, EndsWhereListsShareTheirParts) {
    PropertyListWriter laughs;
    std::size_t last = laughs.text("ha");
    for (int level = 0; level < 25; ++level)
        last = laughs.array({last, last, last, last});
    EXPECT_FALSE(read(laughs.finish()));

    PropertyListWriter repeated;
    const std::size_t text = repeated.text(std::string(500'000, 'x'));
    repeated.array(std::vector<std::size_t>(1000, text));
    EXPECT_FALSE(read(repeated.finish()));

    PropertyListWriter deep;
    last = deep.array({});
    for (int level = 0; level < 40; ++level)
        last = deep.array({last});
    EXPECT_FALSE(read(deep.finish()));

    PropertyListWriter wide;
    last = wide.raw("\x09");
    wide.array(std::vector<std::size_t>(60'000, last));
    EXPECT_EQ(read(wide.finish())->as<PropertyList::Array>()->size(), 60'000U);
}

} // namespace
} // namespace tovi
