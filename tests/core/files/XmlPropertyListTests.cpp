#include "core/files/BinaryPropertyList.h"
#include "core/files/XmlPropertyList.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

using namespace std::string_literals;

std::optional<PropertyList> read(const std::string& value) {
    const std::string text = "<?xml version=\"1.0\"?><plist>" + value + "</plist>";
    // In memory of its own size, so that reading past the end is noticed.
    const std::vector<char> exact(text.begin(), text.end());
    return readXmlPropertyList(std::as_bytes(std::span(exact)));
}

std::string nested(int depth) {
    std::string text;
    for (int level = 0; level < depth; ++level)
        text += "<array>";
    text += "<true/>";
    for (int level = 0; level < depth; ++level)
        text += "</array>";
    return text;
}

TEST(XmlPropertyList, ReadsEveryType) {
    const auto value = read("<dict><key>a &amp; b</key><array><string>t\u00e9xt</string><string/>"
                            "<true/><false/><integer>-2</integer><real>0.5</real>"
                            "<date>2001-01-01T00:00:10Z</date><data> AQ\n I= </data></array>"
                            "<key>empty</key><dict/></dict>");
    ASSERT_TRUE(value);
    ASSERT_TRUE(value->find("a & b"));
    const auto* items = value->find("a & b")->as<PropertyList::Array>();
    ASSERT_TRUE(items);
    const PropertyList::Array expected{{"t\u00e9xt"s},
                                       {""s},
                                       {true},
                                       {false},
                                       {std::int64_t{-2}},
                                       {0.5},
                                       {Date::fromReferenceSeconds(10)},
                                       {PropertyList::Data{std::byte{1}, std::byte{2}}}};
    EXPECT_EQ(*items, expected);
    EXPECT_TRUE(value->find("empty")->as<PropertyList::Dictionary>());
}

TEST(XmlPropertyList, GivesNothingForWhatIsMalformedOrTooMuch) {
    EXPECT_TRUE(read(nested(64)));
    for (const std::string& wrong :
         {""s, "<string>open"s, "<integer>1x</integer>"s, "<integer/>"s,
          "<integer>9223372036854775808</integer>"s, "<real>nan</real>"s, "<real>1e999</real>"s,
          "<date>today</date>"s, "<date>2001-01-01T00:00:10Z or so</date>"s, "<data>?</data>"s,
          "<dict><key>a</key></dict>"s, "<dict><string>a</string><true/></dict>"s,
          "<array><unknown/></array>"s, nested(65), nested(100'000)}) {
        EXPECT_FALSE(read(wrong)) << wrong.substr(0, 60);
    }
    EXPECT_FALSE(read("<string>" + std::string(maximumPropertyListBytes, ' ') + "</string>"));
}

} // namespace
} // namespace tovi
