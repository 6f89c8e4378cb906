// ExecuteCommand: argument checks, parsing, the command table, unsupported numbers, the
// response text and its cap.
#include "LogCapture.h"
#include "XeltoClient.h"
#include "ServiceAnswers.h"
#include "SimMachine.h"

#include "service/LumavenService.h"
#include "service/ResponseText.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>

using namespace Xelto::Spanlet::Server::Services;
using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::LogCapture;
namespace Answers = LumavenTest::Answers;
using XeltoClient::RunCommand;

namespace {

wchar_t* const kUntouched = reinterpret_cast<wchar_t*>(0x1234);

std::wstring NullWarning(const wchar_t* name)
{
    return std::wstring(L"class Xelto::Spanlet::Server::Services::UtilHelper.NullChecker - ") + name +
           L" cannot be null";
}

}  // namespace

TEST(ExecuteCommand, NullContextIsInvalidAndSilent)
{
    LumavenService service;
    LogCapture capture;
    wchar_t* out = kUntouched;
    EXPECT_EQ(service.ExecuteCommand(nullptr, 4, L"{}", &out, nullptr, 0), Answers::kInvalidArgument);
    EXPECT_EQ(out, kUntouched);
    EXPECT_TRUE(capture.Texts().empty());
}

TEST(ExecuteCommand, NullMessageWarnsOnceAndLeavesOutStringAlone)
{
    LumavenService service;
    LogCapture capture;
    CallContext context{0xC0FFEE};
    wchar_t* out = kUntouched;
    EXPECT_EQ(service.ExecuteCommand(&context, 4, nullptr, &out, nullptr, 0), Answers::kInvalidArgument);
    EXPECT_EQ(out, kUntouched);
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].text, NullWarning(L"message"));
    EXPECT_EQ(records[0].level, Xelto::Logging::Level::Warning);
    EXPECT_EQ(records[0].context, 0xC0FFEEu);
}

TEST(ExecuteCommand, NullOutStringWarnsOnce)
{
    LumavenService service;
    LogCapture capture;
    CallContext context{7};
    EXPECT_EQ(service.ExecuteCommand(&context, 4, L"{}", nullptr, nullptr, 0), Answers::kInvalidArgument);
    EXPECT_EQ(capture.Texts(), std::vector<std::wstring>{NullWarning(L"outString")});
}

TEST(ExecuteCommand, BothNullGiveTwoWarningsInOrder)
{
    LumavenService service;
    LogCapture capture;
    CallContext context{7};
    EXPECT_EQ(service.ExecuteCommand(&context, 4, nullptr, nullptr, nullptr, 0), Answers::kInvalidArgument);
    EXPECT_EQ(capture.Texts(), (std::vector<std::wstring>{NullWarning(L"message"), NullWarning(L"outString")}));
}

TEST(ExecuteCommand, CommandsOutsideOneToFourteenAreUnsupportedWithAnEmptyResponse)
{
    LumavenService service;
    for (const uint32_t command : {0u, 15u, 0xFFFFFFFFu}) {
        LogCapture capture;
        const auto result = RunCommand(service, command, L"{\"BValue\":true}", 99);
        EXPECT_EQ(result.status, Answers::kUnsupportedCommand) << command;
        EXPECT_TRUE(result.hasResponse);
        EXPECT_EQ(result.response, L"{}");
        const auto records = capture.Records();
        ASSERT_EQ(records.size(), 1u);
        EXPECT_EQ(records[0].level, Xelto::Logging::Level::Error);
        EXPECT_EQ(records[0].context, 99u);
        EXPECT_EQ(records[0].text, L"class Xelto::Spanlet::Server::Services::Lumaven::LumavenService.ExecuteCommand - "
                                   L"Unsupported Function call " +
                                       std::to_wstring(static_cast<int32_t>(command)));
    }
}

TEST(ExecuteCommand, MalformedRequestsGiveInvalidRequestAndNoText)
{
    LumavenService service;
    // The last ones are under 20 characters and broke an assertion inside the JSON library.
    for (const wchar_t* request : {L"", L"   \t\r\n ", L"{}{}", L"{", L"{\"BValue\":tru}", L"nul", L"{} x",
                                   L"\"\\uDC00\"", L"{\"BValue\":\"\\uDFFF\"}"}) {
        LogCapture capture;
        CallContext context{1};
        wchar_t* out = kUntouched;
        EXPECT_EQ(service.ExecuteCommand(&context, 4, request, &out, nullptr, 0), Answers::kInvalidRequest) << request;
        EXPECT_EQ(out, nullptr) << request;
        EXPECT_TRUE(capture.Texts().empty()) << request;
    }
}

TEST(ExecuteCommand, AnyOneJsonValueIsAValidRequest)
{
    LumavenTest::InstallProfile(LumavenTest::MonitorsProfile({LumavenTest::Panels::kSdc4174}));
    LumavenService service;
    for (const wchar_t* request : {L"[]", L"  {}  ", L"\n[1,2,{\"a\":null}]\t", L"\"text\"", L"42", L"null"}) {
        const auto result = RunCommand(service, 4, request);
        EXPECT_EQ(result.status, StatusSuccess) << request;
        EXPECT_EQ(result.response, L"{\"result\":true}") << request;
    }
}

TEST(ExecuteCommand, DeeplyNestedRequestsParseWithoutExhaustingTheStack)
{
    LumavenService service;
    const std::wstring deep = std::wstring(200000, L'[') + std::wstring(200000, L']');
    EXPECT_EQ(RunCommand(service, 15, deep.c_str()).status, Answers::kUnsupportedCommand);
    const std::wstring unbalanced = std::wstring(200000, L'[');
    EXPECT_EQ(RunCommand(service, 15, unbalanced.c_str()).status, Answers::kInvalidRequest);
}

TEST(ExecuteCommand, CommandNineWithoutElpSetterIsInvalidWithAnEmptyResponse)
{
    LumavenService service;
    const auto result = RunCommand(service, 9, L"{\"BValue\":true}");
    EXPECT_EQ(result.status, Answers::kInvalidArgument);
    EXPECT_EQ(result.response, L"{}");
}

// Whether the command, run on another thread while this one holds `held`, is still waiting for
// it after `patience`. Released in every case, so a command that waits ends too. A plain
// thread and a flag: std::async's future reaches libstdc++'s call_once, whose thread-local
// state the Clang build cannot link against the GCC-built runtime.
bool StillWaiting(LumavenService& service, std::mutex& held, uint32_t command, std::chrono::milliseconds patience)
{
    std::unique_lock lock(held);
    std::atomic<bool> finished{false};
    std::thread caller([&service, command, &finished] {
        RunCommand(service, command, L"{\"BValue\":true}");
        finished = true;
    });
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!finished && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    const bool waiting = !finished;
    lock.unlock();
    caller.join();
    return waiting;
}

TEST(ExecuteCommand, EachCommandTakesTheLockOfItsTableRow)
{
    // A service never started: vendor 0, and no driver library on the machine, so that every
    // command answers at once unless a lock holds it.
    LumavenTest::InstallProfile(LumavenTest::MonitorsProfile({LumavenTest::Panels::kSdc4174}));
    LumavenService service;
    const std::set<uint32_t> mainLock = {1, 2, 3, 5, 6, 8, 10};
    for (uint32_t command = 1; command <= 12; ++command) {
        SCOPED_TRACE("command " + std::to_string(command));
        if (mainLock.count(command) != 0) {
            EXPECT_TRUE(StillWaiting(service, service.m_mutex, command, std::chrono::milliseconds(300)))
                << "ran without the service's mutex";
        } else {
            // 4 and 7 take no lock; 9, 11 and 12 lock in their handlers, by vendor, and vendor 0
            // has none to take.
            EXPECT_FALSE(StillWaiting(service, service.m_mutex, command, std::chrono::seconds(10)))
                << "waited for the service's mutex";
        }
        EXPECT_FALSE(StillWaiting(service, service.m_adlxMutex, command, std::chrono::seconds(10)))
            << "waited for the ADLX mutex";
    }
}

TEST(ExecuteCommand, CallbackIsNeverCalledAndIsReleased)
{
    LumavenService service;
    auto token = std::make_shared<int>(0);
    bool called = false;
    {
        CommandCallback callback = [token, &called](uint32_t, const wchar_t*) { called = true; };
        CallContext context{1};
        wchar_t* out = nullptr;
        service.ExecuteCommand(&context, 15, L"{}", &out, std::move(callback), 0);
        service.FreeBuffer(out);
        EXPECT_EQ(token.use_count(), 1);
    }
    EXPECT_FALSE(called);
}

// Copies a response whose compact text is exactly `length` characters ({"s":"..."} puts 8
// around the string) into `out`.
static uint32_t CopyResponseOfLength(size_t length, wchar_t*& out)
{
    Document response;
    response.SetObject();
    const std::wstring text(length - 8, L'x');
    response.AddMember(L"s", JsonValue(text.c_str(), response.GetAllocator()), response.GetAllocator());
    return CopyResponseText(response, &out);
}

TEST(ResponseText, ResponsesUpTo65535CharactersAreCopied)
{
    wchar_t* out = nullptr;
    EXPECT_EQ(CopyResponseOfLength(65535, out), StatusSuccess);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(wcslen(out), 65535u);
    std::free(out);
}

// The host frees the text and may measure it: the block holds the text and its terminator,
// so the copy writes nothing past what it allocated.
TEST(ResponseText, TheCopyIsAllocatedForTheTextAndItsTerminator)
{
    for (const size_t length : {size_t{9}, size_t{64}, size_t{1000}, size_t{65535}}) {
        wchar_t* out = nullptr;
        ASSERT_EQ(CopyResponseOfLength(length, out), StatusSuccess);
        ASSERT_NE(out, nullptr);
        EXPECT_EQ(_msize(out), (length + 1) * sizeof(wchar_t)) << length;
        EXPECT_EQ(out[length], L'\0') << length;
        std::free(out);
    }
}

TEST(ResponseText, LongerResponsesAreRefusedWithANullText)
{
    wchar_t* out = kUntouched;
    EXPECT_EQ(CopyResponseOfLength(65536, out), Answers::kInvalidArgument);
    EXPECT_EQ(out, nullptr);
}
