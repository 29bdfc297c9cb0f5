#include "platform/nuvo/nuvo_json.h"

#include <gtest/gtest.h>

namespace {

std::string repeated(const std::string& piece, int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

std::string describe(const NuvoJsonValue* value) {
    if (!value) return "none";
    if (value->isObject()) return "object";
    if (value->isArray()) return "array " + std::to_string(value->size());
    if (value->isString()) return '"' + value->stringValue() + '"';
    if (value->isInteger()) return std::to_string(value->integerValue());
    if (value->isBool()) return value->boolValue() ? "true" : "false";
    return "other";
}

TEST(NuvoJson, TellsWhatATextHolds) {
    struct Case {
        std::string text;
        std::string expected;  // of the element 0, or why there is none
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {"[3]", "3"},
        {"[3.0]", "3"},
        {"[1e2]", "100"},
        {"[-2147483648]", "-2147483648"},
        {"[2147483648]", "other"},
        {"[9999999999]", "other"},
        {"[3.5]", "other"},
        {"[null]", "other"},
        {"[true]", "true"},
        {R"(["a\u0000b"])", "\"a\0b\""s},
        {"[\"a\0b\"]"s, "\"a\0b\""s},
        {"[[1,2]]", "array 2"},
        {"[{}]", "object"},
        {"[]", "none"},
        {R"({"0":1})", "none"},
        {"", "invalid"},
        {"7", "invalid"},
        {"[1", "invalid"},
        {"[1,]", "invalid"},
        {"[1]x", "invalid"},
        {"[1]\0"s, "invalid"},
        {"[1e400]", "invalid"},
        {"[\"\xff\"]", "invalid"},
        {repeated("[", 1000000), "invalid"},
        {repeated("[", 1024) + repeated("]", 1024), "array 1"},
        {"[" + repeated("0,", 1000000) + "1]", "0"},
        {"[" + repeated("[],", 100000) + "1]", "array 0"},
        {"[{" + repeated("\"a\":1,", 200000) + "\"a\":1}]", "object"},
    };
    for (const Case& each : cases) {
        const NuvoJson json(each.text);
        const std::string seen = json.getIsValidJson() ? describe(json.at(0)) : "invalid";
        EXPECT_EQ(seen, each.expected) << each.text.substr(0, 40);
    }
}

TEST(NuvoJson, KeepsPointersValidWhileTheDocumentGrows) {
    NuvoJson json(R"({"list":[1,2],"kept":{"a":true}})");
    NuvoJsonValue* const list = json.create("list");
    NuvoJsonValue* const first = list->append();
    first->writeInteger(3);
    for (int i = 0; i < 1000; ++i) {
        list->append()->writeObject();
        json.create("member " + std::to_string(i))->writeBool(false);
    }
    first->create("now an object")->writeString("x");
    EXPECT_EQ(json.create("list"), list);
    EXPECT_EQ(list->at(2), first);
    EXPECT_EQ(list->size(), 1003U);
    EXPECT_EQ(describe(NuvoJson(json.serialise()).find("list")->at(2)->find("now an object")),
              "\"x\"");
}

TEST(NuvoJson, WritesWhatItReads) {
    const char* const texts[] = {
        R"({"a":[1,{"b":[]},"x",true,null,2.5],"z":{}})",
        R"([[[1],2],{"":""},-5])",
    };
    for (const std::string text : texts) {
        const NuvoJson json(text);
        EXPECT_EQ(json.serialise(), text);
        NuvoJson other;
        other.append();
        other.appendCopy(&json);
        other.appendCopy(&other);
        EXPECT_EQ(other.serialise(), "[null," + text + ",[null," + text + "]]");
        const std::unique_ptr<NuvoJson> copied(other.copy());
        other.writeObject();
        EXPECT_EQ(copied->at(1)->whole(), json.whole());
    }
    NuvoJson leaf;
    leaf.writeInteger(7);
    EXPECT_EQ(leaf.serialise() + NuvoJson().serialise(), "7null");
}

TEST(NuvoJson, StoresEveryStringAsTheSameTextTwice) {
    using namespace std::string_literals;
    for (const std::string& text :
         {""s, "a\0b"s, "\"\\\n\x1f"s, "\xc3\xa4"s, "\xf0\x9f\x98\x80"s, "\xff\xfe"s, "a\xc3"s,
          "\xed\xa0\x80"s, "\xef\xbb\xbf\xef\xbb\xbfx"s}) {
        NuvoJson json;
        json.create(text)->writeString(text);
        const NuvoJson read(json.serialise());
        ASSERT_TRUE(read.getIsValidJson()) << text;
        ASSERT_TRUE(read.find(text)) << text;
        EXPECT_EQ(read.find(text)->stringValue(), NuvoJson::asStored(text)) << text;
    }
    EXPECT_EQ(NuvoJson::asStored("a\0b\xc3\xa4"s), "a\0b\xc3\xa4"s);
}

TEST(NuvoJson, IsDestroyedAndWrittenHoweverDeep) {
    NuvoJson json;
    NuvoJsonValue* value = &json;
    for (int i = 0; i < 200000; ++i)
        value = i % 2 ? value->append() : value->create("a");
    const NuvoJson read(json.serialise());
    EXPECT_TRUE(read.getIsValidJson());
}

}  // namespace
