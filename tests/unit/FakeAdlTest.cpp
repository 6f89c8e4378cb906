// The simulated AMD Display Library, called directly as a careful caller would call ADL, and
// as a careless one would: each record of another size, reserved field set, flag out of range,
// buffer smaller than the adapters reported, null pointer or context it did not create is
// refused with ADL's own code, nothing is written, and the transaction log says why
// ("refused"). What the service really sends is accepted.
#include "AdlSimSupport.h"
#include "SimMachine.h"

#include "amd/AdlAuxChannel.h"
#include "amd/AdlTypes.h"
#include "panel/AuxDataTable.h"
#include "util/ProcAddress.h"
#include "util/UniqueHandles.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace LumavenTest::Amd;
using namespace Adl;

namespace {

void* __stdcall Allocate(int size)
{
    return size > 0 ? std::malloc(static_cast<size_t>(size)) : nullptr;
}

// Two adapters (ADL indices 0 and 9); adapter 0 has the panel as its mapped display 0.
const LumavenSim::Profile::Machine kLaptop{
    .monitors = {{.panel = LumavenSim::Panels::kSdc416C}},
    .libraries = {{"atiadlxx.dll", "atiadlxx.dll"}},
    .amd = LumavenSim::Profile::Amd{
        .adapters = {{.adapterIndex = 0, .displays = {{.infoValue = 3, .panel = LumavenSim::Panels::kSdc416C}}},
                     {.adapterIndex = 9, .displays = {}}}}};

class FakeAdl : public testing::Test {
protected:
    void SetUp() override
    {
        LumavenTest::InstallProfile(kLaptop);
        m_module.reset(LoadLibraryW(L"atiadlxx.dll"));
        ASSERT_TRUE(m_module);
        create = Resolve<ADL2_MAIN_CONTROL_CREATE>("ADL2_Main_Control_Create");
        destroy = Resolve<ADL2_MAIN_CONTROL_DESTROY>("ADL2_Main_Control_Destroy");
        count = Resolve<ADL2_ADAPTER_NUMBEROFADAPTERS_GET>("ADL2_Adapter_NumberOfAdapters_Get");
        adapters = Resolve<ADL2_ADAPTER_ADAPTERINFO_GET>("ADL2_Adapter_AdapterInfo_Get");
        displays = Resolve<ADL2_DISPLAY_DISPLAYINFO_GET>("ADL2_Display_DisplayInfo_Get");
        edid = Resolve<ADL2_DISPLAY_EDIDDATA_GET>("ADL2_Display_EdidData_Get");
        aux = Resolve<ADL2_DISPLAY_NATIVEAUXCHANNEL_ACCESS>("ADL2_Display_NativeAUXChannel_Access");
        ASSERT_TRUE(create && destroy && count && adapters && displays && edid && aux);
        ASSERT_EQ(create(&Allocate, 1, &m_context), ADL_OK);
        LumavenSim::ClearTransactions();
    }
    void TearDown() override
    {
        if (m_context != nullptr && m_module) {
            destroy(m_context);
        }
    }

    template <class Function>
    Function Resolve(const char* name) const
    {
        return LumavenUtil::ResolveProc<Function>(m_module.get(), name);
    }

    // The answer was `code`, and the last record of `call` refused it for `reason` (the start
    // of the text) with that code.
    static void ExpectRefused(const std::string& call, int answer, int code, const std::string& reason)
    {
        EXPECT_EQ(answer, code) << call << " " << reason;
        const auto records = RecordsOf(call);
        ASSERT_FALSE(records.empty()) << call;
        const std::string refused = Text(records.back(), "refused");
        EXPECT_EQ(refused.rfind(reason, 0), 0u)
            << call << ": refused \"" << refused << "\", expected \"" << reason << "...\"";
        EXPECT_EQ(Number(records.back(), "result"), code) << call;
    }

    // The register of the panel display (adapter 0, display 0); -1 when never written.
    static int64_t PanelRegister(const char* address)
    {
        const rapidjson::Document state = State();
        const rapidjson::Value& display = state["amd"]["adapters"][0]["displays"][0];
        if (!display.HasMember("dpcd") || !display["dpcd"].HasMember(address)) {
            return -1;
        }
        return display["dpcd"][address].GetInt64();
    }

    // An AUX write of two bytes to 0x4056, as the service fills it.
    static ADLDisplayNativeAUXChannelData AuxWrite()
    {
        ADLDisplayNativeAUXChannelData data{};
        data.iSize = sizeof data;
        data.iCommand = 1;
        data.iAddress = 0x4056;
        data.iDataSize = 2;
        data.cData[0] = 0x12;
        data.cData[1] = 0x34;
        return data;
    }
    int Aux(ADLDisplayNativeAUXChannelData data) { return aux(m_context, 0, 0, &data); }

    static ADLDisplayEDIDData Edid()
    {
        ADLDisplayEDIDData edid{};
        edid.iSize = sizeof edid;
        return edid;
    }

    // An EDID request for `display` of adapter 0 as the service fills it, changed by `change`,
    // is refused for `reason` and the record is not filled.
    template <class Change>
    void ExpectEdidRefused(Change change, int code, const std::string& reason, int display = 0)
    {
        ADLDisplayEDIDData data = Edid();
        change(data);
        ExpectRefused("ADL2_Display_EdidData_Get", edid(m_context, 0, display, &data), code, reason);
        EXPECT_EQ(data.iEDIDSize, 0) << reason << ": a refused record is not filled";
    }

    LumavenUtil::UniqueModule m_module;
    ADL_CONTEXT_HANDLE m_context = nullptr;
    ADL2_MAIN_CONTROL_CREATE create = nullptr;
    ADL2_MAIN_CONTROL_DESTROY destroy = nullptr;
    ADL2_ADAPTER_NUMBEROFADAPTERS_GET count = nullptr;
    ADL2_ADAPTER_ADAPTERINFO_GET adapters = nullptr;
    ADL2_DISPLAY_DISPLAYINFO_GET displays = nullptr;
    ADL2_DISPLAY_EDIDDATA_GET edid = nullptr;
    ADL2_DISPLAY_NATIVEAUXCHANNEL_ACCESS aux = nullptr;
};

}  // namespace

TEST_F(FakeAdl, ContextCreationNeedsACallbackAndAFlag)
{
    ADL_CONTEXT_HANDLE context = nullptr;
    ExpectRefused("ADL2_Main_Control_Create", create(nullptr, 1, &context), ADL_ERR_NULL_POINTER,
                  "no allocation callback");
    ExpectRefused("ADL2_Main_Control_Create", create(&Allocate, 1, nullptr), ADL_ERR_NULL_POINTER,
                  "no context to fill");
    ExpectRefused("ADL2_Main_Control_Create", create(&Allocate, 2, &context), ADL_ERR_INVALID_PARAM,
                  "iEnumConnectedAdapters 2 is neither 0 nor 1");
    EXPECT_EQ(context, nullptr);
    ASSERT_EQ(create(&Allocate, 0, &context), ADL_OK);
    EXPECT_EQ(destroy(context), ADL_OK);
}

TEST_F(FakeAdl, ContextsItDidNotCreateAreRefusedWithoutBeingLookedInto)
{
    int local = 0;
    int number = -1;
    ExpectRefused("ADL2_Adapter_NumberOfAdapters_Get", count(&local, &number), ADL_ERR_NOT_INIT,
                  "a context this library did not create");
    ExpectRefused("ADL2_Adapter_NumberOfAdapters_Get", count(nullptr, &number), ADL_ERR_NOT_INIT, "no context");
    EXPECT_EQ(number, -1);
    ExpectRefused("ADL2_Main_Control_Destroy", destroy(&local), ADL_ERR_NOT_INIT,
                  "a context this library did not create");
    ADL_CONTEXT_HANDLE context = nullptr;
    ASSERT_EQ(create(&Allocate, 1, &context), ADL_OK);
    ASSERT_EQ(destroy(context), ADL_OK);
    ExpectRefused("ADL2_Main_Control_Destroy", destroy(context), ADL_ERR_NOT_INIT,
                  "a context this library did not create");
    ExpectRefused("ADL2_Adapter_NumberOfAdapters_Get", count(m_context, nullptr), ADL_ERR_NULL_POINTER,
                  "no count to fill");
}

TEST_F(FakeAdl, AdapterBufferMustHoldEveryAdapterReported)
{
    std::vector<AdapterInfo> buffer(2);
    std::memset(buffer.data(), 0xCD, buffer.size() * sizeof(AdapterInfo));
    constexpr int kTwo = 2 * static_cast<int>(sizeof(AdapterInfo));
    ExpectRefused("ADL2_Adapter_AdapterInfo_Get", adapters(m_context, buffer.data(), kTwo - 1), ADL_ERR_INVALID_PARAM,
                  "iInputSize 3143 is below the 3144 bytes");
    ExpectRefused("ADL2_Adapter_AdapterInfo_Get", adapters(m_context, buffer.data(), 1572), ADL_ERR_INVALID_PARAM,
                  "iInputSize 1572 is below the 3144 bytes");
    ExpectRefused("ADL2_Adapter_AdapterInfo_Get", adapters(m_context, buffer.data(), 0), ADL_ERR_INVALID_PARAM,
                  "iInputSize 0 is below");
    ExpectRefused("ADL2_Adapter_AdapterInfo_Get", adapters(m_context, buffer.data(), -kTwo), ADL_ERR_INVALID_PARAM,
                  "iInputSize -3144 is below");
    EXPECT_EQ(buffer[0].iAdapterIndex, static_cast<int>(0xCDCDCDCD)) << "nothing is written into a short buffer";
    ExpectRefused("ADL2_Adapter_AdapterInfo_Get", adapters(m_context, nullptr, kTwo), ADL_ERR_NULL_POINTER,
                  "no adapter buffer");

    ASSERT_EQ(adapters(m_context, buffer.data(), kTwo), ADL_OK);
    EXPECT_EQ(buffer[0].iSize, 1572);
    EXPECT_EQ(buffer[0].iAdapterIndex, 0);
    EXPECT_EQ(buffer[1].iAdapterIndex, 9);
}

TEST_F(FakeAdl, AdapterBufferIsCheckedAgainstTheCountReportedNotTheAdaptersKnown)
{
    LumavenSim::WithState([](rapidjson::Document& state) {
        state["amd"].AddMember("adapterCount", 3, state.GetAllocator());
        return true;
    });
    std::vector<AdapterInfo> buffer(3);
    ExpectRefused("ADL2_Adapter_AdapterInfo_Get",
                  adapters(m_context, buffer.data(), 2 * static_cast<int>(sizeof(AdapterInfo))), ADL_ERR_INVALID_PARAM,
                  "iInputSize 3144 is below the 4716 bytes");
    EXPECT_EQ(adapters(m_context, buffer.data(), 3 * static_cast<int>(sizeof(AdapterInfo))), ADL_OK);
}

// The profile's "counts" make the adapter count, or an adapter's display list, another number
// than the machine has; the list ADL allocates always holds every display it reports.
TEST_F(FakeAdl, CountsOfTheProfileAnswerTheAdapterCountAndTheDisplayList)
{
    LumavenSim::Profile::Arm({},
                             {{.function = "ADL2_Adapter_NumberOfAdapters_Get", .call = "count", .answer = 2147483647},
                              {.function = "ADL2_Display_DisplayInfo_Get", .call = "count", .answer = 3}});
    int number = 0;
    ASSERT_EQ(count(m_context, &number), ADL_OK);
    EXPECT_EQ(number, 2147483647);
    ADLDisplayInfo* list = nullptr;
    ASSERT_EQ(displays(m_context, 0, &number, &list, 0), ADL_OK);
    ASSERT_EQ(number, 3);
    ASSERT_NE(list, nullptr);
    // The machine's own display first, then ones that are neither connected nor mapped.
    EXPECT_EQ(list[0].iDisplayInfoValue, 3);
    EXPECT_EQ(list[1].iDisplayInfoValue, 0);
    EXPECT_EQ(list[2].iDisplayInfoValue, 0);
    EXPECT_EQ(list[2].displayID.iDisplayLogicalAdapterIndex, 0);
    std::free(list);
}

TEST_F(FakeAdl, DisplayListNeedsPointersAKnownAdapterAndAForceDetectFlag)
{
    int number = -1;
    ADLDisplayInfo* list = nullptr;
    ExpectRefused("ADL2_Display_DisplayInfo_Get", displays(m_context, 0, nullptr, &list, 0), ADL_ERR_NULL_POINTER,
                  "no count to fill");
    ExpectRefused("ADL2_Display_DisplayInfo_Get", displays(m_context, 0, &number, nullptr, 0), ADL_ERR_NULL_POINTER,
                  "no list pointer to fill");
    ExpectRefused("ADL2_Display_DisplayInfo_Get", displays(m_context, 0, &number, &list, 2), ADL_ERR_INVALID_PARAM,
                  "iForceDetect 2 is neither 0 nor 1");
    ExpectRefused("ADL2_Display_DisplayInfo_Get", displays(m_context, 3, &number, &list, 0), ADL_ERR_INVALID_PARAM,
                  "no adapter has iAdapterIndex 3");
    EXPECT_EQ(number, -1);
    EXPECT_EQ(list, nullptr);
    ASSERT_EQ(displays(m_context, 0, &number, &list, 1), ADL_OK);
    EXPECT_EQ(number, 1);
    std::free(list);
}

TEST_F(FakeAdl, EdidRecordOfAnotherSizeOrWithReservedFieldsSetIsRefused)
{
    ExpectEdidRefused([](auto& data) { data.iSize = sizeof data - 1; }, ADL_ERR_INVALID_PARAM,
                      "iSize 287, expected 288");
    ExpectEdidRefused([](auto& data) { data.iFlag = 1; }, ADL_ERR_INVALID_PARAM, "iFlag 1 is not zero");
    ExpectEdidRefused([](auto& data) { data.iReserved[3] = 4; }, ADL_ERR_INVALID_PARAM, "iReserved[3] is not zero");
    for (const int block : {1, -1}) {
        ExpectEdidRefused([block](auto& data) { data.iBlockIndex = block; }, ADL_ERR_INVALID_PARAM,
                          "iBlockIndex " + std::to_string(block) + " is not a block of the EDID");
    }
    ExpectRefused("ADL2_Display_EdidData_Get", edid(m_context, 0, 0, nullptr), ADL_ERR_NULL_POINTER, "no EDID record");
    ExpectEdidRefused([](auto&) {}, ADL_ERR_INVALID_PARAM, "no display 1 on adapter 0", 1);

    ADLDisplayEDIDData data = Edid();
    ASSERT_EQ(edid(m_context, 0, 0, &data), ADL_OK);
    EXPECT_EQ(data.iEDIDSize, 128);
    EXPECT_EQ(static_cast<uint8_t>(data.cEDIDData[8]), 0x4C);
}

TEST_F(FakeAdl, AuxRecordOfAnotherSizeOrCommandIsRefused)
{
    ADLDisplayNativeAUXChannelData data = AuxWrite();
    data.iSize = sizeof data - 1;
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM, "iSize 35, expected 36");
    data.iSize = sizeof data + 1;
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM, "iSize 37, expected 36");
    for (const int command : {0, 3}) {
        data = AuxWrite();
        data.iCommand = command;
        ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM,
                      "iCommand " + std::to_string(command) + " is neither write (1) nor read (2)");
    }
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", aux(m_context, 0, 0, nullptr), ADL_ERR_NULL_POINTER,
                  "no AUX record");
    EXPECT_EQ(PanelRegister("0x4056"), -1);
}

TEST_F(FakeAdl, AuxCountsMustFitTheDataBufferAndTheDpcdSpace)
{
    ADLDisplayNativeAUXChannelData data = AuxWrite();
    data.iDataSize = 0;
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM,
                  "iDataSize 0 is not 1 to 16");
    data.iDataSize = 17;
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM,
                  "iDataSize 17 is not 1 to 16");
    data = AuxWrite();
    data.iAddress = 0xFFFFF;
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM,
                  "iAddress 1048575 with 2 bytes leaves the DPCD space");
    data.iAddress = -1;
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM, "iAddress -1 with 2 bytes");
    // Bytes of cData past iDataSize belong to no write.
    data = AuxWrite();
    data.cData[2] = 1;
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM,
                  "cData[2] beyond iDataSize is not zero");
    data.cData[2] = 0;
    data.cData[15] = 1;
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", Aux(data), ADL_ERR_INVALID_PARAM,
                  "cData[15] beyond iDataSize is not zero");
    EXPECT_EQ(PanelRegister("0x4056"), -1);
    EXPECT_EQ(Number(RecordsOf("ADL2_Display_NativeAUXChannel_Access").back(), "auxStatusOut"), -999999)
        << "a refused record gets no AUX status";

    data = AuxWrite();
    ASSERT_EQ(Aux(data), ADL_OK);
    EXPECT_EQ(PanelRegister("0x4056"), 0x12);
    EXPECT_EQ(PanelRegister("0x4057"), 0x34);
    data = AuxWrite();
    data.iCommand = 2;
    data.cData[0] = data.cData[1] = 0;
    ASSERT_EQ(aux(m_context, 0, 0, &data), ADL_OK);
    EXPECT_EQ(static_cast<uint8_t>(data.cData[1]), 0x34);
    EXPECT_EQ(data.iAuxStatus, ADL_AUX_STATUS_SUCCESSFUL);
}

TEST_F(FakeAdl, AuxToADisplayThatDoesNotExistIsRefused)
{
    ADLDisplayNativeAUXChannelData data = AuxWrite();
    ExpectRefused("ADL2_Display_NativeAUXChannel_Access", aux(m_context, 9, 0, &data), ADL_ERR_INVALID_PARAM,
                  "no display 0 on adapter 9");
}

// A whole write of the service, through its own load of ADL and its own context: nothing
// refused.
TEST_F(FakeAdl, EveryRecordTheServiceSendsIsAccepted)
{
    using namespace Xelto::Spanlet::Server::Services::Lumaven;
    ASSERT_TRUE(WriteAuxDataAmd(0x416C834C, BuildAuxDataMap().at(AuxDataKey{0x416C834C, true})));
    ReleaseAdlBinding();
    size_t checked = 0;
    for (const auto& record : LumavenSim::TransactionLog::Read().Records()) {
        EXPECT_EQ(Text(record, "refused"), "(none)") << record.Call();
        ++checked;
    }
    for (const char* call :
         {"ADL2_Main_Control_Create", "ADL2_Adapter_NumberOfAdapters_Get", "ADL2_Adapter_AdapterInfo_Get",
          "ADL2_Display_DisplayInfo_Get", "ADL2_Display_EdidData_Get", "ADL2_Display_NativeAUXChannel_Access",
          "ADL2_Main_Control_Destroy"}) {
        EXPECT_FALSE(RecordsOf(call).empty()) << call << " was never called";
    }
    EXPECT_GT(checked, 0u);
}
