// The simulated ADLX, called directly as a careful caller would call ADLX, and as a careless
// one would: a header version it cannot serve, null arguments, an interface used after its
// last Release, a display it never handed out, a change on a display without VariBright. Each
// is refused with ADLX's own code and the transaction log says why ("refused"); what the
// service really does is accepted.
#include "AdlSimSupport.h"
#include "ServiceProcessState.h"
#include "SimMachine.h"

#include "amd/ADLXHelper.h"
#include "util/ProcAddress.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <string>

using namespace LumavenTest::Amd;

namespace {

// A header version these tests own, older than the fake's: what a caller built against
// ADLX 1.2 passes.
constexpr adlx_uint64 kHeaderVersion = 0x0001000200000048ULL;

LumavenSim::Profile::Machine Laptop(bool varibrightSupported)
{
    return {.monitors = {{.panel = LumavenSim::Panels::kSdc416C}},
            .libraries = {{"amdadlx64.dll", "amdadlx64.dll"}},
            .adlx = LumavenSim::Profile::Adlx{
                .displays = {{.varibrightSupported = varibrightSupported, .varibrightEnabled = false}}}};
}

class FakeAdlx : public testing::Test {
protected:
    void SetUp() override
    {
        LumavenTest::ResetServiceProcessState();
        LumavenTest::InstallProfile(Laptop(true));
        Load();
    }
    void TearDown() override
    {
        if (m_module) {
            m_terminate();
        }
        LumavenTest::ResetServiceProcessState();
    }

    void Load()
    {
        m_module.reset(LoadLibraryExW(L"amdadlx64.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
        ASSERT_TRUE(m_module);
        using LumavenUtil::ResolveProc;
        m_fullVersion = ResolveProc<ADLXQueryFullVersion_Fn>(m_module.get(), ADLX_QUERY_FULL_VERSION_FUNCTION_NAME);
        m_version = ResolveProc<ADLXQueryVersion_Fn>(m_module.get(), ADLX_QUERY_VERSION_FUNCTION_NAME);
        m_initWithCallerAdl =
            ResolveProc<ADLXInitializeWithCallerAdl_Fn>(m_module.get(), ADLX_INIT_WITH_CALLER_ADL_FUNCTION_NAME);
        m_initialize = ResolveProc<ADLXInitialize_Fn>(m_module.get(), ADLX_INIT_FUNCTION_NAME);
        m_terminate = ResolveProc<ADLXTerminate_Fn>(m_module.get(), ADLX_TERMINATE_FUNCTION_NAME);
        ASSERT_TRUE(m_fullVersion && m_version && m_initWithCallerAdl && m_initialize && m_terminate);
    }

    // ADLX initialised, its display services, and its display list.
    void Open()
    {
        ASSERT_TRUE(ADLX_SUCCEEDED(m_initialize(kHeaderVersion, &m_system)));
        ASSERT_EQ(m_system->GetDisplaysServices(&m_services), ADLX_OK);
        ASSERT_EQ(m_services->GetDisplays(&m_list), ADLX_OK);
        LumavenSim::ClearTransactions();
    }

    // The answer was `code`, and the last record of `call` refused it for `reason` (the start
    // of the text) with that code.
    static void ExpectRefused(const std::string& call, ADLX_RESULT answer, ADLX_RESULT code, const std::string& reason)
    {
        EXPECT_EQ(answer, code) << call << " " << reason;
        ExpectRefusedRecord(call, reason);
        EXPECT_EQ(Number(RecordsOf(call).back(), "result"), code) << call;
    }
    static void ExpectRefusedRecord(const std::string& call, const std::string& reason)
    {
        const auto records = RecordsOf(call);
        ASSERT_FALSE(records.empty()) << call;
        const std::string refused = Text(records.back(), "refused");
        EXPECT_EQ(refused.rfind(reason, 0), 0u)
            << call << ": refused \"" << refused << "\", expected \"" << reason << "...\"";
    }

    LumavenUtil::UniqueModule m_module;
    ADLXQueryFullVersion_Fn m_fullVersion = nullptr;
    ADLXQueryVersion_Fn m_version = nullptr;
    ADLXInitializeWithCallerAdl_Fn m_initWithCallerAdl = nullptr;
    ADLXInitialize_Fn m_initialize = nullptr;
    ADLXTerminate_Fn m_terminate = nullptr;
    adlx::IADLXSystem* m_system = nullptr;
    adlx::IADLXDisplayServices* m_services = nullptr;
    adlx::IADLXDisplayList* m_list = nullptr;
};

void FreeAdlMemory(void**) {}

}  // namespace

TEST_F(FakeAdlx, InitializeRefusesHeaderVersionsItCannotServe)
{
    adlx::IADLXSystem* system = nullptr;
    ExpectRefused("ADLXInitialize", m_initialize(0x0002000000000000ULL, &system), ADLX_BAD_VER,
                  "version 0x0002000000000000: major 2 is not this ADLX's 1");
    ExpectRefused("ADLXInitialize", m_initialize(0x0000000900000000ULL, &system), ADLX_BAD_VER,
                  "version 0x0000000900000000: major 0");
    ExpectRefused("ADLXInitialize", m_initialize(0x0001000500000000ULL, &system), ADLX_BAD_VER,
                  "version 0x0001000500000000 is newer than this ADLX's 0x000100040000006E");
    ExpectRefused("ADLXInitialize", m_initialize(0x000100040000006FULL, &system), ADLX_BAD_VER,
                  "version 0x000100040000006F is newer");
    EXPECT_EQ(system, nullptr);
    EXPECT_FALSE(Flag(State()["adlx"], "initialized"));
    // Its own version and an older header are both fine.
    EXPECT_EQ(m_initialize(0x000100040000006EULL, &system), ADLX_OK);
    EXPECT_NE(system, nullptr);
    EXPECT_EQ(m_initialize(kHeaderVersion, &system), ADLX_ALREADY_INITIALIZED);
}

TEST_F(FakeAdlx, NullArgumentsAreRefused)
{
    ExpectRefused("ADLXInitialize", m_initialize(kHeaderVersion, nullptr), ADLX_INVALID_ARGS,
                  "no system pointer to fill");
    ExpectRefused("ADLXQueryFullVersion", m_fullVersion(nullptr), ADLX_INVALID_ARGS, "no version to fill");
    ExpectRefused("ADLXQueryVersion", m_version(nullptr), ADLX_INVALID_ARGS, "no version to fill");
    adlx::IADLXSystem* system = nullptr;
    adlx::IADLMapping* mapping = nullptr;
    int adlContext = 0;
    ExpectRefused("ADLXInitializeWithCallerAdl",
                  m_initWithCallerAdl(kHeaderVersion, &system, &mapping, nullptr, &FreeAdlMemory), ADLX_INVALID_ARGS,
                  "no ADL context");
    ExpectRefused("ADLXInitializeWithCallerAdl",
                  m_initWithCallerAdl(kHeaderVersion, &system, &mapping, &adlContext, nullptr), ADLX_INVALID_ARGS,
                  "no ADL memory free function");
    ExpectRefused("ADLXInitializeWithCallerAdl",
                  m_initWithCallerAdl(kHeaderVersion, &system, nullptr, &adlContext, &FreeAdlMemory), ADLX_INVALID_ARGS,
                  "no ADL mapping pointer to fill");
    EXPECT_EQ(system, nullptr);
    EXPECT_EQ(m_initWithCallerAdl(kHeaderVersion, &system, &mapping, &adlContext, &FreeAdlMemory), ADLX_OK);

    ASSERT_NO_FATAL_FAILURE(Open());
    adlx::IADLXDisplay* display = nullptr;
    ExpectRefused("At", m_list->At_DisplayList(0, nullptr), ADLX_INVALID_ARGS, "no pointer to fill");
    ASSERT_EQ(m_list->At_DisplayList(0, &display), ADLX_OK);
    adlx::IADLXDisplayVariBright* varibright = nullptr;
    ExpectRefused("GetVariBright", m_services->GetVariBright(nullptr, &varibright), ADLX_INVALID_ARGS, "no display");
    ExpectRefused("GetVariBright", m_services->GetVariBright(display, nullptr), ADLX_INVALID_ARGS,
                  "no interface pointer to fill");
    ExpectRefused("GetDisplays", m_services->GetDisplays(nullptr), ADLX_INVALID_ARGS, "no list pointer to fill");
    ExpectRefused("GetDisplaysServices", m_system->GetDisplaysServices(nullptr), ADLX_INVALID_ARGS,
                  "no pointer to fill");
}

TEST_F(FakeAdlx, AnIndexPastTheListIsRefused)
{
    ASSERT_NO_FATAL_FAILURE(Open());
    adlx::IADLXDisplay* display = reinterpret_cast<adlx::IADLXDisplay*>(1);
    ExpectRefused("At", m_list->At_DisplayList(1, &display), ADLX_INVALID_ARGS, "index 1 past the 1 displays");
    EXPECT_EQ(display, nullptr);
    adlx::IADLXInterface* item = nullptr;
    ExpectRefused("At", m_list->At(7, &item), ADLX_INVALID_ARGS, "index 7 past the 1 displays");
}

TEST_F(FakeAdlx, InterfacesUsedAfterTheirLastReleaseAreRefused)
{
    ASSERT_NO_FATAL_FAILURE(Open());
    adlx::IADLXDisplay* display = nullptr;
    ASSERT_EQ(m_list->At_DisplayList(0, &display), ADLX_OK);
    EXPECT_EQ(m_list->Release(), 0);
    adlx::IADLXDisplay* again = reinterpret_cast<adlx::IADLXDisplay*>(1);
    ExpectRefused("At", m_list->At_DisplayList(0, &again), ADLX_INVALID_OBJECT, "a released IADLXDisplayList");
    EXPECT_EQ(again, nullptr) << "the out pointer is cleared, not filled";
    EXPECT_EQ(m_list->Release(), 0);
    ExpectRefusedRecord("Release", "a released IADLXDisplayList");
    EXPECT_EQ(m_list->Acquire(), 0);
    ExpectRefusedRecord("Acquire", "a released IADLXDisplayList");

    // The display taken from the list lives on through its own reference.
    adlx::IADLXDisplayVariBright* varibright = nullptr;
    ASSERT_EQ(m_services->GetVariBright(display, &varibright), ADLX_OK);
    EXPECT_EQ(varibright->Release(), 0);
    EXPECT_EQ(m_services->Release(), 0);
    adlx::IADLXDisplayList* list = nullptr;
    ExpectRefused("GetDisplays", m_services->GetDisplays(&list), ADLX_INVALID_OBJECT,
                  "a released IADLXDisplayServices");
    EXPECT_EQ(list, nullptr);
    ExpectRefused("GetVariBright", m_services->GetVariBright(display, &varibright), ADLX_INVALID_OBJECT,
                  "a released IADLXDisplayServices");
}

TEST_F(FakeAdlx, AReleasedVariBrightInterfaceChangesNothing)
{
    ASSERT_NO_FATAL_FAILURE(Open());
    adlx::IADLXDisplay* display = nullptr;
    ASSERT_EQ(m_list->At_DisplayList(0, &display), ADLX_OK);
    adlx::IADLXDisplayVariBright* varibright = nullptr;
    ASSERT_EQ(m_services->GetVariBright(display, &varibright), ADLX_OK);
    EXPECT_EQ(varibright->Release(), 0);
    ExpectRefused("SetEnabled", varibright->SetEnabled(true), ADLX_INVALID_OBJECT, "a released IADLXDisplayVariBright");
    adlx_bool supported = false;
    ExpectRefused("IsSupported", varibright->IsSupported(&supported), ADLX_INVALID_OBJECT,
                  "a released IADLXDisplayVariBright");
    ExpectRefused("SetMaximizeBattery", varibright->SetMaximizeBattery(), ADLX_INVALID_OBJECT,
                  "a released IADLXDisplayVariBright");
    EXPECT_EQ(varibright->IsEnabled(&supported), ADLX_INVALID_OBJECT);
    ExpectRefusedRecord("IsEnabled", "a released IADLXDisplayVariBright");
    EXPECT_FALSE(supported);
    EXPECT_FALSE(Flag(State()["adlx"]["displays"][0], "varibrightEnabled"));
}

TEST_F(FakeAdlx, GetVariBrightRefusesADisplayItDidNotHandOutOrThatWasReleased)
{
    ASSERT_NO_FATAL_FAILURE(Open());
    // Never called: the display services do not look into what they did not make.
    int notADisplay = 0;
    adlx::IADLXDisplayVariBright* varibright = reinterpret_cast<adlx::IADLXDisplayVariBright*>(1);
    ExpectRefused("GetVariBright",
                  m_services->GetVariBright(reinterpret_cast<adlx::IADLXDisplay*>(&notADisplay), &varibright),
                  ADLX_INVALID_OBJECT, "a display this ADLX did not hand out");
    EXPECT_EQ(varibright, nullptr);

    adlx::IADLXDisplay* display = nullptr;
    ASSERT_EQ(m_list->At_DisplayList(0, &display), ADLX_OK);
    EXPECT_EQ(m_list->Release(), 0);
    EXPECT_EQ(display->Release(), 0);
    ExpectRefused("GetVariBright", m_services->GetVariBright(display, &varibright), ADLX_INVALID_OBJECT,
                  "a released IADLXDisplay");
    EXPECT_EQ(Number(RecordsOf("GetVariBright").back(), "display"), 0);
    adlx_size id = 7;
    EXPECT_EQ(display->UniqueId(&id), ADLX_INVALID_OBJECT);
    ExpectRefusedRecord("UniqueId", "a released IADLXDisplay");
    EXPECT_EQ(id, 7u);
}

TEST_F(FakeAdlx, SetEnabledOnADisplayWithoutVariBrightIsRefused)
{
    m_terminate();
    m_module.reset();
    LumavenTest::InstallProfile(Laptop(false));
    Load();
    ASSERT_NO_FATAL_FAILURE(Open());
    adlx::IADLXDisplay* display = nullptr;
    ASSERT_EQ(m_list->At_DisplayList(0, &display), ADLX_OK);
    adlx::IADLXDisplayVariBright* varibright = nullptr;
    ASSERT_EQ(m_services->GetVariBright(display, &varibright), ADLX_OK);
    ExpectRefused("SetEnabled", varibright->SetEnabled(true), ADLX_NOT_SUPPORTED,
                  "VariBright is not supported on display 0");
    ExpectRefused("SetBalanced", varibright->SetBalanced(), ADLX_NOT_SUPPORTED,
                  "VariBright is not supported on display 0");
    EXPECT_FALSE(Flag(State()["adlx"]["displays"][0], "varibrightEnabled"));
}

// The service's whole use of ADLX, from initialisation to termination: nothing refused.
TEST_F(FakeAdlx, EverythingTheServiceDoesIsAccepted)
{
    InitializeAdlxDisplay();
    InitializeAdlxDisplay();
    EXPECT_TRUE(IsVaribrightSupported());
    EXPECT_TRUE(SetVaribrightEnabled(true));
    EXPECT_TRUE(SetVaribrightEnabled(false));
    g_ADLXHelp.Terminate();
    size_t checked = 0;
    for (const auto& record : LumavenSim::TransactionLog::Read().Records()) {
        EXPECT_EQ(Text(record, "refused"), "(none)") << record.Call();
        ++checked;
    }
    for (const char* call : {"ADLXInitialize", "GetDisplaysServices", "GetDisplays", "At", "GetVariBright",
                             "IsSupported", "SetEnabled", "Release", "ADLXTerminate"}) {
        EXPECT_FALSE(RecordsOf(call).empty()) << call << " was never called";
    }
    EXPECT_GT(checked, 0u);
}
