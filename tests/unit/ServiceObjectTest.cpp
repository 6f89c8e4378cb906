// The service object: factory gate, strings handed to the host, buffers, event entry.
#include "LogCapture.h"
#include "XeltoClient.h"
#include "SimMachine.h"

#include "service/LumavenService.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <memory>
#include <string>

using namespace Xelto::Spanlet::Server::Services;
using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::InstallProfile;
using LumavenTest::LogCapture;
using LumavenTest::MonitorsProfile;
namespace Panels = LumavenSim::Panels;
namespace Profile = LumavenSim::Profile;

namespace {

// The text CreateString puts into a new holder for `text` (null: none), read before the
// holder is given back with ReleaseString.
std::wstring CreatedText(const wchar_t* text)
{
    LumavenService service;
    wchar_t** holder = nullptr;
    EXPECT_EQ(service.CreateString(text, &holder), 0u);
    if (holder == nullptr || *holder == nullptr) {
        ADD_FAILURE() << "CreateString left " << (holder == nullptr ? "no holder" : "a holder without a string");
        return L"(none)";
    }
    const std::wstring created(*holder);
    EXPECT_EQ(service.ReleaseString(&holder), 0u);
    return created;
}

}  // namespace

TEST(ServiceObject, TypeNameReadsAsTheWindowsCompilerPrintsIt)
{
    LumavenService service;
    EXPECT_EQ(service.m_typeName, "class Xelto::Spanlet::Server::Services::Lumaven::LumavenService");
    EXPECT_EQ(service.m_logger, LogManager::GetLogger());
    EXPECT_EQ(service.m_videoController, 0);
    EXPECT_EQ(service.m_panelId, 0u);
    EXPECT_EQ(service.m_auxData, nullptr);
    EXPECT_EQ(service.m_setElp, nullptr);
}

TEST(ServiceObject, FactoryCreatesTheServiceOnASupportedPanel)
{
    InstallProfile(MonitorsProfile({Panels::kSdc4174}));
    LogCapture capture;
    XeltoService* service = XeltoCreateService();
    ASSERT_NE(service, nullptr);
    EXPECT_NE(dynamic_cast<LumavenService*>(service), nullptr);
    EXPECT_TRUE(capture.Texts().empty());
    delete service;
}

TEST(ServiceObject, FactoryRefusesAnUnsupportedPlatformWithOneLine)
{
    InstallProfile(MonitorsProfile({Panels::kDel40F5}));
    // A host that logs through the same library under its own name: the service's lines carry
    // the service's provider all the same.
    LogManager::SetProvider("Xelto-Host");
    LogCapture capture;
    EXPECT_EQ(XeltoCreateService(), nullptr);
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].level, Xelto::Logging::Level::Info);
    EXPECT_EQ(records[0].text, L"LumavenService cannot be initialized as it is running on unsupported platform");
    EXPECT_EQ(records[0].provider, "Xelto-Spanlet-SystemInformation");
}

TEST(ServiceObject, CreateStringWithNullHolderDoesNothing)
{
    LumavenService service;
    EXPECT_EQ(service.CreateString(L"text", nullptr), 0u);
}

TEST(ServiceObject, CreateStringCopiesTheTextIntoANewHolder)
{
    LumavenService service;
    wchar_t** holder = nullptr;
    const std::wstring text(64, L'a');
    ASSERT_EQ(service.CreateString(text.c_str(), &holder), 0u);
    ASSERT_NE(holder, nullptr);
    ASSERT_NE(*holder, nullptr);
    EXPECT_EQ(std::wstring(*holder), text);
    EXPECT_NE(*holder, text.c_str());
    // The copy's block holds the text and its terminator, and nothing is written past it.
    EXPECT_EQ(_msize(*holder), (text.size() + 1) * sizeof(wchar_t));
    EXPECT_EQ(service.ReleaseString(&holder), 0u);
    EXPECT_NE(holder, nullptr);  // ReleaseString does not clear the caller's pointer
}

TEST(ServiceObject, CreateStringWithNullTextMakesAnEmptyString)
{
    LumavenService service;
    wchar_t** holder = nullptr;
    ASSERT_EQ(service.CreateString(nullptr, &holder), 0u);
    ASSERT_NE(holder, nullptr);
    EXPECT_EQ(std::wstring(*holder), L"");
    EXPECT_EQ(_msize(*holder), sizeof(wchar_t));
    EXPECT_EQ(service.ReleaseString(&holder), 0u);
}

TEST(ServiceObject, ReleaseStringAcceptsNullsAndAHolderWithoutString)
{
    LumavenService service;
    EXPECT_EQ(service.ReleaseString(nullptr), 0u);
    wchar_t** none = nullptr;
    EXPECT_EQ(service.ReleaseString(&none), 0u);
    auto** holder = new wchar_t*(nullptr);
    EXPECT_EQ(service.ReleaseString(&holder), 0u);  // frees only the holder
}

TEST(ServiceObject, BaseOperationsKeepTheirContract)
{
    std::unique_ptr<XeltoService> service = std::make_unique<LumavenService>();
    EXPECT_TRUE(service->ReservedQuery());
    service->ReservedHookA();
    service->ReservedHookB();
    service->ReservedHookC();
    service->FreeBuffer(nullptr);
    service->FreeBuffer(std::malloc(16));
}

TEST(ServiceObject, PowerEventTaskLogsItsEntryLine)
{
    LumavenService service;
    LogCapture capture;
    XeltoClient::Deliver(service, XeltoClient::PowerEvent::DisplayOff);
    const auto texts = capture.Texts();
    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(texts[0],
              L"Xelto::Spanlet::Server::Services::Lumaven::LumavenService::oled_power_event_task::PEXelto::Enter");
}

TEST(ServiceObject, CreateStringRefusesTextsOverSixtyFourCharactersWithoutTruncating)
{
    // The bounded copy rejects the text through the C runtime's parameter check.
    EXPECT_EQ(CreatedText(std::wstring(100, L'b').c_str()), L"");
    EXPECT_EQ(CreatedText(std::wstring(65, L'b').c_str()), L"");
}

TEST(ServiceObject, DeletingTheServiceUnloadsWhatAnInterruptedAdlWriteLeftLoaded)
{
    // ADL cannot count the adapters, so the ELP write stops early with the library loaded.
    Profile::Machine machine = Profile::AmdLaptop(Panels::kSdc416C);
    machine.faults = {{.function = "ADL2_Adapter_NumberOfAdapters_Get", .code = -1}};
    InstallProfile(machine);
    ASSERT_EQ(GetModuleHandleW(L"atiadlxx.dll"), nullptr);
    XeltoService* service = XeltoCreateService();
    ASSERT_NE(service, nullptr);
    service->startup_task();
    const auto elp = XeltoClient::RunCommand(*service, 9, L"{\"BValue\":true}");
    EXPECT_EQ(elp.response, L"{\"result\":false}");
    EXPECT_NE(GetModuleHandleW(L"atiadlxx.dll"), nullptr) << "the interrupted write keeps ADL";
    delete service;
    EXPECT_EQ(GetModuleHandleW(L"atiadlxx.dll"), nullptr) << "the service gives ADL back when it goes";
}
