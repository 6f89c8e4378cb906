// The statuses and plain responses of the service as the tests expect them, and the hex form
// its log lines give codes in. Typed from their published values rather than taken from the
// service's headers, so that a wrong value there fails a test.
#pragma once

#include "XeltoClient.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cwchar>
#include <string>

namespace LumavenTest::Answers {

inline constexpr uint32_t kOk = 0;
inline constexpr uint32_t kUnsupportedCommand = 0x20000001;
inline constexpr uint32_t kInvalidArgument = 0x20000002;
inline constexpr uint32_t kInvalidRequest = 0x20000003;
inline constexpr uint32_t kRegistryError = 0x20000004;
inline constexpr uint32_t kDeviceError = 0x20000005;
inline constexpr uint32_t kException = 0x20000006;

inline constexpr wchar_t kEmpty[] = L"{}";
inline constexpr wchar_t kTrue[] = L"{\"result\":true}";
inline constexpr wchar_t kFalse[] = L"{\"result\":false}";

// `value` in hex digits without a prefix or leading zeros: upper case as the vendor codes are
// logged, lower case as the HRESULTs of the WMI warnings are.
inline std::wstring Hex(uint64_t value, bool lowerCase = false)
{
    wchar_t text[20];
    std::swprintf(text, 20, lowerCase ? L"%llx" : L"%llX", static_cast<unsigned long long>(value));
    return text;
}

}  // namespace LumavenTest::Answers

// The Intel control library's results as the DLL's exported ctl functions answer them: the
// library's own, or the client layer's when the library cannot be had or is not loaded.
namespace LumavenTest::IntelResults {

inline constexpr uint32_t kNotInitialized = 0x40000001;
inline constexpr uint32_t kUnsupportedVersion = 0x40000009;
inline constexpr uint32_t kInvalidArgument = 0x4000000B;
inline constexpr uint32_t kInvalidNullPointer = 0x4000000E;
inline constexpr uint32_t kLoad = 0x40000026;

}  // namespace LumavenTest::IntelResults

namespace LumavenTest {

// The command succeeded with the response {"result":true} or {"result":false}. Used as
// EXPECT_TRUE(Answered(reply, false)); a failure shows the status and response it got.
inline testing::AssertionResult Answered(const XeltoClient::Reply& reply, bool answer)
{
    const std::wstring expected = answer ? Answers::kTrue : Answers::kFalse;
    if (reply.status == Answers::kOk && reply.response == expected) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "status 0x" << std::hex << reply.status << ", response "
                                       << testing::PrintToString(reply.response) << "; expected status 0 and "
                                       << testing::PrintToString(expected);
}

}  // namespace LumavenTest
