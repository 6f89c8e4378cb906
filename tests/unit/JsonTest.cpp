// UTF-16 JSON: the "BValue" rule, member look-up on any value, the compact writer's escapes
// and duplicate members.
#include "service/Json.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

using namespace Xelto::Spanlet::Server::Services::Lumaven;

namespace {

BValue BValueOf(const wchar_t* text)
{
    Document request;
    EXPECT_TRUE(ParseRequest(request, text)) << text;
    return ReadBValue(request);
}

std::wstring Written(const Document& document)
{
    JsonText text;
    WriteCompact(document, text);
    return text.GetString();
}

}  // namespace

TEST(Json, OnlyTheLiteralTrueSwitchesOn)
{
    EXPECT_EQ(BValueOf(L"{\"BValue\":true}"), BValue::On);
    for (const wchar_t* text :
         {L"{\"BValue\":false}", L"{\"BValue\":1}", L"{\"BValue\":\"true\"}", L"{\"BValue\":{}}"}) {
        EXPECT_EQ(BValueOf(text), BValue::Off) << text;
    }
}

TEST(Json, MissingOrNullBValueIsTheFailedCheck)
{
    for (const wchar_t* text :
         {L"{\"BValue\":null}", L"{}", L"{\"bvalue\":true}", L"[]", L"[{\"BValue\":true}]", L"\"BValue\""}) {
        EXPECT_EQ(BValueOf(text), BValue::Missing) << text;
    }
}

TEST(Json, HasMemberAndMemberValueOnAnyValue)
{
    Document request;
    ASSERT_TRUE(ParseRequest(request, L"{\"a\":1,\"b\":null}"));
    EXPECT_TRUE(HasMember(request, L"a"));
    EXPECT_TRUE(HasMember(request, L"b"));
    EXPECT_FALSE(HasMember(request, L"c"));
    EXPECT_FALSE(HasMember(request, nullptr));
    ASSERT_NE(MemberValue(request, L"a"), nullptr);
    EXPECT_EQ(MemberValue(request, L"a")->GetInt(), 1);
    ASSERT_NE(MemberValue(request, L"b"), nullptr);
    EXPECT_TRUE(MemberValue(request, L"b")->IsNull());
    EXPECT_EQ(MemberValue(request, L"c"), nullptr);
    EXPECT_EQ(MemberValue(request, nullptr), nullptr);
    Document array;
    ASSERT_TRUE(ParseRequest(array, L"[1]"));
    EXPECT_FALSE(HasMember(array, L"a"));
    EXPECT_EQ(MemberValue(array, L"a"), nullptr);
}

TEST(Json, ParserFollowsTheDefaultRules)
{
    Document document;
    for (const wchar_t* text : {L"", L" \t\r\n", L"{}{}", L"{} 1", L"{'a':1}", L"{\"a\":1,}", L"// c\n{}"}) {
        EXPECT_FALSE(ParseRequest(document, text)) << text;
    }
    for (const wchar_t* text : {L" \t\r\n{} \r\n", L"[]", L"-1.5e300"}) {
        EXPECT_TRUE(ParseRequest(document, text)) << text;
    }
}

TEST(Json, EveryKindOfEscapeTheParserTakes)
{
    Document document;
    ASSERT_TRUE(ParseRequest(document, L"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\""));
    EXPECT_EQ(std::wstring(document.GetString(), document.GetStringLength()), L"\"\\/\b\f\n\r\t");
    // One \u escape of each class, at the ends of its range: control, ASCII, the BMP below and
    // above the surrogates, and surrogate pairs (kept as the same two code units).
    const std::pair<const wchar_t*, std::wstring> escapes[] = {
        {L"\"\\u0000\\u001f\"", std::wstring{L'\0', L'\x1F'}},
        {L"\"\\u0020\\u007F\"", L" \x7F"},
        {L"\"\\u0080\\uD7FF\"", L"\x80\xD7FF"},
        {L"\"\\uE000\\uffff\"", L"\xE000\xFFFF"},
        {L"\"\\uD800\\uDC00\\udbff\\udfff\"", L"\xD800\xDC00\xDBFF\xDFFF"},
    };
    for (const auto& [text, expected] : escapes) {
        ASSERT_TRUE(ParseRequest(document, text)) << text;
        EXPECT_EQ(std::wstring(document.GetString(), document.GetStringLength()), expected) << text;
    }
}

// RapidJSON asserts on an escaped lone low surrogate (a Debug build of the host would abort)
// and lets a release build store it: the service refuses every escaped surrogate that is not
// a high one followed by a low one, the same way in every build.
TEST(Json, EscapedSurrogatesOutOfPairAreMalformedInEveryBuild)
{
    Document document;
    for (const wchar_t* text :
         {L"\"\\uDC00\"", L"\"\\udfff\"", L"{\"BValue\":\"\\uDC00\"}", L"[\"a\\uDE00b\"]", L"\"\\uDC00\\uD800\"",
          L"\"\\uD800\"", L"\"\\uDBFF\\u0041\"", L"\"\\uD800\\uD800\"", L"\"\\uD800\\n\""}) {
        EXPECT_FALSE(ParseRequest(document, text)) << text;
    }
    // A raw lone surrogate is not an escape: the parser does not validate the encoding.
    EXPECT_TRUE(ParseRequest(document, L"\"\xDC00\""));
}

TEST(Json, CompactWriterEscapesAsJsonRequires)
{
    Document document;
    document.SetObject();
    const std::wstring text = std::wstring(L"q\" r\\ s/ \b\f\n\r\t ") + wchar_t(0x01) + wchar_t(0x1F) + L" \u00e9";
    document.AddMember(L"t", JsonValue(text.c_str(), document.GetAllocator()), document.GetAllocator());
    EXPECT_EQ(Written(document), L"{\"t\":\"q\\\" r\\\\ s/ \\b\\f\\n\\r\\t \\u0001\\u001F \u00e9\"}");
}

TEST(Json, DuplicateMembersAreKeptInOrder)
{
    Document response;
    response.SetObject();
    AddBool(response, L"result", true);
    AddBool(response, L"result", false);
    AddInt(response, L"n", -1);
    EXPECT_EQ(Written(response), L"{\"result\":true,\"result\":false,\"n\":-1}");
}

TEST(Json, EmptyResponseIsAnEmptyObject)
{
    Document response;
    response.SetObject();
    EXPECT_EQ(Written(response), L"{}");
}

TEST(Json, ResetToBValueLeavesOnlyThatMember)
{
    Document request;
    ASSERT_TRUE(ParseRequest(request, L"{\"x\":[1,2],\"BValue\":false}"));
    ResetToBValue(request, true);
    EXPECT_EQ(Written(request), L"{\"BValue\":true}");
    ASSERT_TRUE(ParseRequest(request, L"[]"));
    ResetToBValue(request, false);
    EXPECT_EQ(Written(request), L"{\"BValue\":false}");
}
