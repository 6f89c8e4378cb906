// The handler pattern's exception guard: each handler's catch line and argument shape.
#include "LogCapture.h"

#include "service/LumavenService.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::LogCapture;

namespace {

std::wstring CaughtLine(const HandlerIdentity& handler)
{
    LumavenService service;
    LogCapture capture;
    const uint32_t status = service.Guarded(handler, []() -> uint32_t { throw std::runtime_error("boom"); });
    EXPECT_EQ(status, StatusException);
    const auto records = capture.Records();
    EXPECT_EQ(records.size(), 1u);
    if (records.empty()) {
        return {};
    }
    EXPECT_EQ(records[0].level, Xelto::Logging::Level::Error);
    return records[0].text;
}

}  // namespace

TEST(HandlerGuard, QualifiedNameShapePrintsTheMethodName)
{
    // The handler, the name its catch line gives, the method the line names.
    const struct {
        const HandlerIdentity& handler;
        const wchar_t* label;
        const wchar_t* method;
    } handlers[] = {{Handler::GetOpst, L"GetOpst", L"_GetOpst"},
                    {Handler::GetIfSystemSupportsOpst, L"GetOpst", L"_GetIfSystemSupportsOpst"},
                    {Handler::GetIfVaribrightSupport, L"GetVaribright", L"_GetIfVaribrightSupport"},
                    {Handler::SetVaribright, L"GetVaribright", L"_SetVaribright"},
                    {Handler::GetIfOLEDSupport, L"GetIfOLEDSupport", L"_GetIfOLEDSupport"},
                    {Handler::SetOLEDPowerSaveON, L"SetOLEDPowerSaveON", L"_SetOLEDPowerSaveON"},
                    {Handler::SetOLEDPowerSaveOFF, L"SetOLEDPowerSaveOFF", L"_SetOLEDPowerSaveOFF"},
                    {Handler::SetIntelElp, L"SetIntelElp", L"SetIntelElp"},
                    {Handler::SetAmdElp, L"SetAmdElp", L"SetAmdElp"}};
    const std::wstring prefix = L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::";
    for (const auto& [handler, label, method] : handlers) {
        EXPECT_EQ(CaughtLine(handler), L"LumavenService - " + std::wstring(label) + L" threw: " + prefix + method);
    }
}

TEST(HandlerGuard, MessageShapePrintsTheExceptionText)
{
    for (const auto& [handler, label] :
         {std::pair{&Handler::EnableOpst, L"EnableOpst"}, std::pair{&Handler::DisableOpst, L"DisableOpst"},
          std::pair{&Handler::GetIfSystemSupportsOled, L"GetIfSystemSupportsOled"},
          std::pair{&Handler::EnableEd, L"EnableEd"}, std::pair{&Handler::DisableEd, L"DisableEd"},
          std::pair{&Handler::GetOledFromRegistry, L"GetOledFromRegistry"}}) {
        EXPECT_EQ(CaughtLine(*handler), L"LumavenService - " + std::wstring(label) + L" threw: boom");
    }
}

TEST(HandlerGuard, PassesTheWorkResultThroughWhenNothingIsThrown)
{
    LumavenService service;
    LogCapture capture;
    EXPECT_EQ(service.Guarded(Handler::GetOpst, [] { return StatusDeviceError; }), StatusDeviceError);
    EXPECT_TRUE(capture.Texts().empty());
}
