// The handler pattern's exception guard: each handler's catch line and argument shape.
#include "LogCapture.h"

#include "service/LumavenService.h"

#include <gtest/gtest.h>

#include <stdexcept>

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
    const std::wstring prefix = L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::";
    EXPECT_EQ(CaughtLine(Handler::GetOpst), L"LumavenService - GetOpst threw: " + prefix + L"_GetOpst");
    EXPECT_EQ(CaughtLine(Handler::GetIfSystemSupportsOpst),
              L"LumavenService - GetOpst threw: " + prefix + L"_GetIfSystemSupportsOpst");
    EXPECT_EQ(CaughtLine(Handler::GetIfVaribrightSupport),
              L"LumavenService - GetVaribright threw: " + prefix + L"_GetIfVaribrightSupport");
    EXPECT_EQ(CaughtLine(Handler::SetVaribright),
              L"LumavenService - GetVaribright threw: " + prefix + L"_SetVaribright");
    EXPECT_EQ(CaughtLine(Handler::GetIfOLEDSupport),
              L"LumavenService - GetIfOLEDSupport threw: " + prefix + L"_GetIfOLEDSupport");
    EXPECT_EQ(CaughtLine(Handler::SetOLEDPowerSaveON),
              L"LumavenService - SetOLEDPowerSaveON threw: " + prefix + L"_SetOLEDPowerSaveON");
    EXPECT_EQ(CaughtLine(Handler::SetOLEDPowerSaveOFF),
              L"LumavenService - SetOLEDPowerSaveOFF threw: " + prefix + L"_SetOLEDPowerSaveOFF");
    EXPECT_EQ(CaughtLine(Handler::SetIntelElp), L"LumavenService - SetIntelElp threw: " + prefix + L"SetIntelElp");
    EXPECT_EQ(CaughtLine(Handler::SetAmdElp), L"LumavenService - SetAmdElp threw: " + prefix + L"SetAmdElp");
}

TEST(HandlerGuard, MessageShapePrintsTheExceptionText)
{
    EXPECT_EQ(CaughtLine(Handler::EnableOpst), L"LumavenService - EnableOpst threw: boom");
    EXPECT_EQ(CaughtLine(Handler::DisableOpst), L"LumavenService - DisableOpst threw: boom");
    EXPECT_EQ(CaughtLine(Handler::GetIfSystemSupportsOled), L"LumavenService - GetIfSystemSupportsOled threw: boom");
    EXPECT_EQ(CaughtLine(Handler::EnableEd), L"LumavenService - EnableEd threw: boom");
    EXPECT_EQ(CaughtLine(Handler::DisableEd), L"LumavenService - DisableEd threw: boom");
    EXPECT_EQ(CaughtLine(Handler::GetOledFromRegistry), L"LumavenService - GetOledFromRegistry threw: boom");
}

TEST(HandlerGuard, PassesTheWorkResultThroughWhenNothingIsThrown)
{
    LumavenService service;
    LogCapture capture;
    EXPECT_EQ(service.Guarded(Handler::GetOpst, [] { return StatusDeviceError; }), StatusDeviceError);
    EXPECT_TRUE(capture.Texts().empty());
}
