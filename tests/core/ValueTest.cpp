#include <gtest/gtest.h>

#include "ovix/Value.h"

using ovix::Array;
using ovix::Dictionary;
using ovix::Value;

TEST(Value, AccessorsNeverConvertBetweenKinds) {
    Value text("5");
    EXPECT_EQ(*text.asString(), "5");
    EXPECT_FALSE(text.asInt());
    EXPECT_FALSE(text.asUInt());
    EXPECT_FALSE(text.asDouble());

    Value unsignedFive(5u);
    EXPECT_EQ(unsignedFive.asUInt(), 5u);
    EXPECT_FALSE(unsignedFive.asInt());
    EXPECT_FALSE(unsignedFive.asDouble());

    Value flag(true);
    EXPECT_EQ(flag.asBool(), true);
    EXPECT_FALSE(flag.asInt());
    EXPECT_EQ(Value().kind(), Value::Kind::Null);
    EXPECT_EQ(Value().asObject(), nullptr);
    EXPECT_FALSE(Value(1.5).asInt());
}

TEST(Value, JsonNumbersKeepTheirKinds) {
    auto v = Value::fromJson(R"({"big":18446744073709551615,"neg":-3,"pos":3,"real":2.5,"exp":1e2})");
    ASSERT_TRUE(v);
    EXPECT_EQ(v->find("big")->asUInt(), 18446744073709551615ull);
    EXPECT_EQ(v->find("neg")->asInt(), -3);
    EXPECT_EQ(v->find("pos")->asUInt(), 3u);
    EXPECT_EQ(v->find("real")->asDouble(), 2.5);
    EXPECT_EQ(v->find("exp")->asDouble(), 100.0);
}

TEST(Value, JsonRoundTripPreservesStructureAndEscapes) {
    Dictionary inner{{"quote", Value("a\"b\\c\n\r'")},
                     {"list", Value(Array{Value(1u), Value(-1), Value(nullptr), Value(false)})}};
    Value original(Dictionary{{"inner", Value(inner)}, {"name", Value("Ovix ✅")}});
    auto text = original.toJson();
    EXPECT_EQ(Value(Dictionary{{"a", Value(1)}, {"b", Value(Array{Value(2), Value("x y")})}}).toJson(),
              R"({"a":1,"b":[2,"x y"]})");
    auto back = Value::fromJson(text);
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, original);
}

TEST(Value, RejectsTextThatIsNotJson) {
    EXPECT_FALSE(Value::fromJson(""));
    EXPECT_FALSE(Value::fromJson("{\"a\":1"));
    EXPECT_FALSE(Value::fromJson("{} trailing"));
    EXPECT_FALSE(Value::fromJson("\"\xff\xfe\""));
    ASSERT_TRUE(Value::fromJson("[1]"));
    EXPECT_NE(Value::fromJson("[1]")->asArray(), nullptr);
}

TEST(Value, CopiesAreDeep) {
    Value a(Dictionary{{"k", Value(1)}});
    Value b = a;
    (*b.asObject())["k"] = Value(2);
    EXPECT_EQ(a.find("k")->asInt(), 1) << "the copy shares nothing with the original";
}

TEST(Value, DatesAreTheirOwnKindAndSerialiseAsSeconds) {
    ovix::Date when{std::chrono::milliseconds(1700000000500)};
    Value d(when);
    EXPECT_EQ(d.asDate(), when);
    EXPECT_FALSE(d.asDouble());
    EXPECT_EQ(d.toJson(), "1700000000.5");
    EXPECT_EQ(Value(Dictionary{{"s", Value("x")}}).stringAt("s"), "x");
    EXPECT_FALSE(Value(Dictionary{{"s", Value(1)}}).stringAt("s"));
}

TEST(Value, NestingBeyondTheLimitIsRefusedAndNeverExhaustsTheStack) {
    auto nested = [](std::size_t depth, char open, char close) {
        return std::string(depth, open) + std::string(depth, close);
    };
    const std::size_t limit = Value::maxNestingDepth;
    EXPECT_TRUE(Value::fromJson(nested(limit, '[', ']')));
    EXPECT_FALSE(Value::fromJson(nested(limit + 1, '[', ']')));
    EXPECT_FALSE(Value::fromJson(nested(100000, '[', ']')));
    std::string objects;
    for (std::size_t i = 0; i < 100000; ++i) {
        objects += "{\"a\":";
    }
    EXPECT_FALSE(Value::fromJson(objects + "1" + std::string(100000, '}')));

    // A value built in code may nest without limit; destroying it must not recurse.
    Value deep;
    for (int i = 0; i < 300000; ++i) {
        Value inner = std::move(deep);
        deep = i % 2 ? Value(Array(1)) : Value(Dictionary{{"k", Value()}});
        (i % 2 ? deep.asArray()->front() : deep.asObject()->begin()->second) = std::move(inner);
    }
}

TEST(Value, RepeatedKeysKeepTheLastValue) {
    EXPECT_EQ(Value::fromJson(R"({"a":1,"a":[2]})"), Value(Dictionary{{"a", Value(Array{Value(2u)})}}));
}
