// WriteAuxDataAmd against the simulated AMD Display Library: which displays are picked, what
// goes through the native AUX channel (read back from the fake driver's transaction log and
// register file), what is logged, and that ADL is released on every path.
#include "AdlSimSupport.h"
#include "LogCapture.h"
#include "SimMachine.h"

#include "amd/AdlAuxChannel.h"
#include "panel/AuxDataTable.h"
#include "service/LumavenService.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using namespace LumavenTest::Amd;
using LumavenTest::InstallProfile;
using LumavenTest::LogCapture;

namespace {

namespace Profile = LumavenSim::Profile;
namespace Panels = LumavenSim::Panels;

constexpr PanelId kPanel416C = Panels::kSdc416C.id;
constexpr PanelId kPanel4160 = Panels::kSdc4160.id;
using Libraries = std::map<std::string, std::string>;

// A display entry of the "amd" profile section.
Profile::AmdDisplay Display(int infoValue, int logicalAdapterIndex, LumavenSim::PanelIdentity panel = Panels::kSdc416C)
{
    return {.infoValue = infoValue, .logicalAdapterIndex = logicalAdapterIndex, .panel = panel};
}

Profile::AmdAdapter Adapter(int adapterIndex, std::vector<Profile::AmdDisplay> displays)
{
    return {.adapterIndex = adapterIndex, .displays = std::move(displays)};
}

// A laptop with these adapters, the given ADL library files, faults and counts.
Profile::Machine Laptop(std::vector<Profile::AmdAdapter> adapters,
                        Libraries libraries = {{"atiadlxx.dll", "atiadlxx.dll"}},
                        std::vector<Profile::Fault> faults = {}, std::vector<Profile::Count> counts = {})
{
    return {.monitors = {{.panel = Panels::kSdc416C}},
            .libraries = std::move(libraries),
            .amd = Profile::Amd{.adapters = std::move(adapters)},
            .faults = std::move(faults),
            .counts = std::move(counts)};
}

// The one adapter most tests need: index 0, with the panel as a connected and mapped display.
std::vector<Profile::AmdAdapter> PanelAdapter()
{
    return {Adapter(0, {Display(3, 0)})};
}

std::vector<AuxWrite> OnSequence(PanelId panel)
{
    return BuildAuxDataMap().at(AuxDataKey{panel, true});
}

class AdlAuxChannel : public testing::Test {
protected:
    void SetUp() override { ReleaseAdlBinding(); }
    void TearDown() override { ReleaseAdlBinding(); }

    // Writes panel 416C's on sequence, capturing the log from here; WriteAuxDataAmd's answer.
    bool WriteOn()
    {
        m_capture.Clear();
        return WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C));
    }

    std::vector<std::wstring> Logged() const { return m_capture.Texts(); }
    void ExpectAllAtInformationLevel() const
    {
        for (const auto& record : m_capture.Records()) {
            EXPECT_EQ(record.level, Xelto::Logging::Level::Info) << std::string(record.text.begin(), record.text.end());
        }
    }

    LogCapture m_capture;
};

// The AUX record as the fake received it: every field of the 36 bytes.
void ExpectAuxRecord(const LumavenSim::TransactionRecord& record, const AuxWrite& write)
{
    EXPECT_EQ(Text(record, "lib"), "atiadlxx.dll");
    EXPECT_EQ(Number(record, "adapter"), 0);
    EXPECT_EQ(Number(record, "display"), 0);
    EXPECT_EQ(Number(record, "size"), 36);
    EXPECT_EQ(Number(record, "auxStatus"), 0);
    EXPECT_EQ(Number(record, "command"), 1);
    EXPECT_EQ(Number(record, "address"), write.address);
    EXPECT_EQ(Number(record, "dataSize"), static_cast<int64_t>(write.data.size()));
    std::string data = LumavenSim::BytesToHex(write.data.data(), write.data.size());
    EXPECT_EQ(Text(record, "bytes"), data);
    data.resize(32, '0');
    EXPECT_EQ(Text(record, "data"), data) << "16 data bytes, zero after the write's";
    EXPECT_EQ(Number(record, "result"), 0);
    EXPECT_EQ(Number(record, "auxStatusOut"), 1);
}

int64_t Register(const rapidjson::Document& state, size_t adapter, size_t display, const char* address)
{
    const auto& registers = state["amd"]["adapters"][static_cast<rapidjson::SizeType>(adapter)]["displays"]
                                 [static_cast<rapidjson::SizeType>(display)];
    if (!registers.HasMember("dpcd") || !registers["dpcd"].HasMember(address)) {
        return -1;
    }
    return registers["dpcd"][address].GetInt64();
}

}  // namespace

TEST_F(AdlAuxChannel, NeitherLibraryPresentLogsLibraryNotFound)
{
    InstallProfile(Laptop(PanelAdapter(), {}));
    EXPECT_FALSE(WriteOn());
    EXPECT_EQ(Logged(), std::vector<std::wstring>{L"ADL library not found!"});
    ExpectAllAtInformationLevel();
    EXPECT_TRUE(Calls().empty());
}

TEST_F(AdlAuxChannel, WritesThePanelSequenceThroughAdapter0Display0)
{
    InstallProfile(Laptop(PanelAdapter()));
    m_capture.Clear();
    const std::vector<AuxWrite> writes = OnSequence(kPanel416C);
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, writes));

    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=1", L"display count=1", L"Write AUX data"}));
    ExpectAllAtInformationLevel();
    const std::vector<std::string> expectedCalls = {"ADL2_Main_Control_Create",
                                                    "ADL2_Adapter_NumberOfAdapters_Get",
                                                    "ADL2_Adapter_AdapterInfo_Get",
                                                    "ADL2_Display_DisplayInfo_Get",
                                                    "ADL2_Display_EdidData_Get",
                                                    "ADL2_Display_NativeAUXChannel_Access",
                                                    "ADL2_Display_NativeAUXChannel_Access",
                                                    "ADL2_Display_NativeAUXChannel_Access",
                                                    "ADL2_Display_NativeAUXChannel_Access",
                                                    "ADL2_Display_NativeAUXChannel_Access",
                                                    "ADL2_Main_Control_Destroy"};
    EXPECT_EQ(Calls(), expectedCalls);

    EXPECT_EQ(Number(RecordsOf("ADL2_Main_Control_Create")[0], "enumConnectedAdapters"), 1);
    EXPECT_EQ(Number(RecordsOf("ADL2_Adapter_AdapterInfo_Get")[0], "inputSize"), 1572);
    const auto displayInfo = RecordsOf("ADL2_Display_DisplayInfo_Get");
    EXPECT_EQ(Number(displayInfo[0], "adapter"), 0);
    EXPECT_EQ(Number(displayInfo[0], "forceDetect"), 0);
    const auto edid = RecordsOf("ADL2_Display_EdidData_Get");
    EXPECT_EQ(Number(edid[0], "size"), 288);
    EXPECT_EQ(Text(edid[0], "panel"), Panels::kSdc416C.EdidHex());

    const auto aux = RecordsOf("ADL2_Display_NativeAUXChannel_Access");
    ASSERT_EQ(aux.size(), writes.size());
    for (size_t i = 0; i < writes.size(); ++i) {
        SCOPED_TRACE("write " + std::to_string(i));
        ExpectAuxRecord(aux[i], writes[i]);
    }
    const rapidjson::Document state = State();
    EXPECT_EQ(Register(state, 0, 0, "0x045C"), 0x06);
    EXPECT_EQ(Register(state, 0, 0, "0x0454"), 0x18);
    EXPECT_EQ(Register(state, 0, 0, "0x0453"), 0x41);
    EXPECT_EQ(Register(state, 0, 0, "0x045A"), 0xC0);
    EXPECT_EQ(Register(state, 0, 0, "0x045B"), 0x40);
    EXPECT_EQ(StateNumber("amd", "loads"), 1);
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
}

TEST_F(AdlAuxChannel, ThreeByteWritesAreOneTransactionEach)
{
    InstallProfile(Laptop({Adapter(0, {Display(3, 0, Panels::kSdc4160)})}));
    const std::vector<AuxWrite> writes = BuildAuxDataMap().at(AuxDataKey{kPanel4160, false});
    EXPECT_TRUE(WriteAuxDataAmd(kPanel4160, writes));
    const auto aux = RecordsOf("ADL2_Display_NativeAUXChannel_Access");
    ASSERT_EQ(aux.size(), 4u);
    for (size_t i = 0; i < writes.size(); ++i) {
        SCOPED_TRACE("write " + std::to_string(i));
        ExpectAuxRecord(aux[i], writes[i]);
    }
    EXPECT_EQ(Text(aux[1], "data"), "1756F000000000000000000000000000");
    const rapidjson::Document state = State();
    EXPECT_EQ(Register(state, 0, 0, "0x4056"), 0x17);
    EXPECT_EQ(Register(state, 0, 0, "0x4057"), 0x56);
    EXPECT_EQ(Register(state, 0, 0, "0x4058"), 0xF0);
    EXPECT_EQ(Register(state, 0, 0, "0x4054"), 0x02);
}

TEST_F(AdlAuxChannel, FallsBackToAtiadlxy)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxy.dll", "atiadlxx.dll"}}));
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    const auto records = LumavenSim::TransactionLog::Read().Records();
    ASSERT_FALSE(records.empty());
    for (const auto& record : records) {
        EXPECT_EQ(Text(record, "lib"), "atiadlxy.dll") << record.Call();
    }
    EXPECT_EQ(RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(), 5u);
}

TEST_F(AdlAuxChannel, PrefersAtiadlxxWhenBothArePresent)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx.dll"}, {"atiadlxy.dll", "atiadlxx_noaux.dll"}}));
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    for (const auto& record : LumavenSim::TransactionLog::Read().Records()) {
        EXPECT_EQ(Text(record, "lib"), "atiadlxx.dll") << record.Call();
    }
}

TEST_F(AdlAuxChannel, MissingAuxEntryPointHasItsOwnMessageAndWritesNothing)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx_noaux.dll"}}));
    EXPECT_FALSE(WriteOn());
    EXPECT_EQ(Logged(), std::vector<std::wstring>{L"ADL2_Display_NativeAUXChannel_Access API is missing!"});
    ExpectAllAtInformationLevel();
    EXPECT_TRUE(Calls().empty()) << "ADL is not even initialised";
    // The early failure leaves the library loaded until the binding is released.
    EXPECT_EQ(StateNumber("amd", "loads"), 1);
    EXPECT_EQ(StateNumber("amd", "unloads"), 0);
    ReleaseAdlBinding();
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
    EXPECT_TRUE(Calls().empty()) << "no context to destroy";
}

TEST_F(AdlAuxChannel, EachMissingRequiredEntryPointLogsApiMissing)
{
    // One library per required entry point, each without just that one.
    for (const char* library : {"atiadlxx_nocreate.dll", "atiadlxx_nocount.dll", "atiadlxx_noadapterinfo.dll",
                                "atiadlxx_nodisplayinfo.dll", "atiadlxx_nodestroy.dll"}) {
        SCOPED_TRACE(library);
        InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", library}}));
        m_capture.Clear();
        EXPECT_FALSE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
        EXPECT_EQ(Logged(), std::vector<std::wstring>{L"ADL2's API is missing!"});
        EXPECT_TRUE(Calls().empty()) << "ADL is not even initialised";
        ReleaseAdlBinding();
        EXPECT_EQ(StateNumber("amd", "unloads"), 1);
    }
}

TEST_F(AdlAuxChannel, FailedCreateLogsInitializationError)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx.dll"}},
                          {{.function = "ADL2_Main_Control_Create", .code = -1}}));
    EXPECT_FALSE(WriteOn());
    EXPECT_EQ(Logged(), std::vector<std::wstring>{L"ADL Initialization Error!"});
    EXPECT_EQ(Calls(), std::vector<std::string>{"ADL2_Main_Control_Create"});
}

TEST_F(AdlAuxChannel, FailedAdapterCountLeavesTheContextForTheRelease)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx.dll"}},
                          {{.function = "ADL2_Adapter_NumberOfAdapters_Get", .code = -2}}));
    EXPECT_FALSE(WriteOn());
    EXPECT_EQ(Logged(), std::vector<std::wstring>{L"Cannot get the number of adapters!"});
    EXPECT_EQ(StateNumber("amd", "unloads"), 0);
    ReleaseAdlBinding();
    EXPECT_EQ(Calls(), (std::vector<std::string>{"ADL2_Main_Control_Create", "ADL2_Adapter_NumberOfAdapters_Get",
                                                 "ADL2_Main_Control_Destroy"}));
    EXPECT_EQ(Number(RecordsOf("ADL2_Main_Control_Destroy")[0], "result"), 0);
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
}

TEST_F(AdlAuxChannel, ZeroAdaptersDestroysAndUnloads)
{
    InstallProfile(Laptop({}));
    EXPECT_FALSE(WriteOn());
    EXPECT_EQ(Logged(), std::vector<std::wstring>{L"nAdapter count=0"});
    EXPECT_EQ(Calls(), (std::vector<std::string>{"ADL2_Main_Control_Create", "ADL2_Adapter_NumberOfAdapters_Get",
                                                 "ADL2_Main_Control_Destroy"}));
    EXPECT_EQ(StateNumber("amd", "loads"), 1);
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
}

TEST_F(AdlAuxChannel, AdapterBufferOverflowIsRefused)
{
    // 1366084 records of 1572 bytes are the first count that reaches 0x80000000 bytes.
    InstallProfile(Laptop(PanelAdapter()));
    LumavenSim::WithState([](rapidjson::Document& state) {
        state["amd"].AddMember("adapterCount", 1366084, state.GetAllocator());
        return true;
    });
    EXPECT_FALSE(WriteOn());
    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=1366084", L"lpAdapterInfo buffer size overflow"}));
    EXPECT_TRUE(RecordsOf("ADL2_Adapter_AdapterInfo_Get").empty());
}

TEST_F(AdlAuxChannel, ConnectedButUnmappedDisplayIsNeverConsidered)
{
    InstallProfile(Laptop({Adapter(0, {Display(1, 0), Display(0, 0), Display(2, 0)})}));
    EXPECT_TRUE(WriteOn());
    const auto edid = RecordsOf("ADL2_Display_EdidData_Get");
    ASSERT_EQ(edid.size(), 1u) << "only the mapped display (value 0x2) is read";
    EXPECT_EQ(Number(edid[0], "adapter"), 0);
    EXPECT_EQ(Number(edid[0], "display"), 2);
    EXPECT_EQ(RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(), 5u);
    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=1", L"display count=3", L"Write AUX data"}));
}

TEST_F(AdlAuxChannel, OnlyConnectedDisplayOfThePanelWritesNothing)
{
    InstallProfile(Laptop({Adapter(0, {Display(1, 0)})}));
    EXPECT_FALSE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    EXPECT_TRUE(RecordsOf("ADL2_Display_EdidData_Get").empty());
    EXPECT_TRUE(RecordsOf("ADL2_Display_NativeAUXChannel_Access").empty());
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
}

TEST_F(AdlAuxChannel, DisplayOfAnotherLogicalAdapterIsNotConsidered)
{
    InstallProfile(Laptop({Adapter(0, {Display(3, 1)})}));
    EXPECT_FALSE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    EXPECT_TRUE(RecordsOf("ADL2_Display_EdidData_Get").empty());
}

TEST_F(AdlAuxChannel, TwoMappedDisplaysOfThePanelGetTheListTwiceAtAdapter0Display0)
{
    InstallProfile(Laptop({Adapter(0, {Display(3, 0)}), Adapter(1, {Display(2, 1)})}));
    m_capture.Clear();
    const std::vector<AuxWrite> writes = OnSequence(kPanel416C);
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, writes));
    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=2", L"display count=1", L"Write AUX data",
                                                   L"display count=1", L"Write AUX data"}));
    const auto edid = RecordsOf("ADL2_Display_EdidData_Get");
    ASSERT_EQ(edid.size(), 2u);
    EXPECT_EQ(Number(edid[1], "adapter"), 1);
    EXPECT_EQ(Number(edid[1], "display"), 0);
    const auto aux = RecordsOf("ADL2_Display_NativeAUXChannel_Access");
    ASSERT_EQ(aux.size(), 2 * writes.size());
    for (size_t i = 0; i < aux.size(); ++i) {
        SCOPED_TRACE("transaction " + std::to_string(i));
        ExpectAuxRecord(aux[i], writes[i % writes.size()]);
    }
    EXPECT_EQ(Number(RecordsOf("ADL2_Adapter_AdapterInfo_Get")[0], "inputSize"), 2 * 1572);
    const rapidjson::Document state = State();
    EXPECT_EQ(Register(state, 0, 0, "0x045A"), 0xC0);
    EXPECT_EQ(Register(state, 1, 0, "0x045A"), -1) << "the second display itself is never written";
}

TEST_F(AdlAuxChannel, TheMostAdaptersTakenAreWalkedLikeAnyOther)
{
    // 1024 adapters, the most ADL may report: the first with the panel, the others without
    // displays. Each is asked for its displays; the panel is written.
    constexpr int kMostAdapters = 1024;
    std::vector<Profile::AmdAdapter> adapters = PanelAdapter();
    for (int index = 1; index < kMostAdapters; ++index) {
        adapters.push_back(Adapter(index, {}));
    }
    InstallProfile(Laptop(std::move(adapters)));
    m_capture.Clear();
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    const auto adapterInfo = RecordsOf("ADL2_Adapter_AdapterInfo_Get");
    ASSERT_EQ(adapterInfo.size(), 1u) << "the adapter list was not asked for";
    EXPECT_EQ(Number(adapterInfo[0], "inputSize"), kMostAdapters * 1572);
    EXPECT_EQ(RecordsOf("ADL2_Display_DisplayInfo_Get").size(), static_cast<size_t>(kMostAdapters));
    const std::vector<std::wstring> logged = Logged();
    ASSERT_GE(logged.size(), 3u);
    EXPECT_EQ(logged[0], L"nAdapter count=1024");
    EXPECT_EQ(logged[1], L"display count=1");
    EXPECT_EQ(logged[2], L"Write AUX data");
}

TEST_F(AdlAuxChannel, EdidIsAskedForByLoopPositionsNotByAdlIndices)
{
    // The adapter's ADL index (5) and the display's own index (7) are not what the EDID
    // call gets: it gets positions 0 and 0. The AUX writes still go to adapter 0, display
    // 0, which this machine does not have.
    InstallProfile(Laptop(
        {{.adapterIndex = 5,
          .displays = {{.infoValue = 3, .logicalAdapterIndex = 5, .displayIndex = 7, .panel = Panels::kSdc416C}}}}));
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    EXPECT_EQ(Number(RecordsOf("ADL2_Display_DisplayInfo_Get")[0], "adapter"), 5);
    const auto edid = RecordsOf("ADL2_Display_EdidData_Get");
    ASSERT_EQ(edid.size(), 1u);
    EXPECT_EQ(Number(edid[0], "adapter"), 0);
    EXPECT_EQ(Number(edid[0], "display"), 0);
    const auto aux = RecordsOf("ADL2_Display_NativeAUXChannel_Access");
    ASSERT_EQ(aux.size(), 5u);
    for (const auto& record : aux) {
        EXPECT_EQ(Number(record, "adapter"), 0);
        EXPECT_EQ(Number(record, "display"), 0);
        EXPECT_EQ(Number(record, "result"), -3) << "ADL's rejection is not noticed";
    }
}

TEST_F(AdlAuxChannel, MissingEdidEntryPointIsLoggedPerConsideredDisplay)
{
    InstallProfile(
        Laptop({Adapter(0, {Display(3, 0), Display(1, 0), Display(2, 0)})}, {{"atiadlxx.dll", "atiadlxx_noedid.dll"}}));
    EXPECT_FALSE(WriteOn());
    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=1", L"display count=3", L"EDID API is NULL",
                                                   L"EDID API is NULL"}));
    ExpectAllAtInformationLevel();
    EXPECT_TRUE(RecordsOf("ADL2_Display_NativeAUXChannel_Access").empty());
    EXPECT_EQ(RecordsOf("ADL2_Main_Control_Destroy").size(), 1u);
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
}

// An EDID that cannot be read counts as identity 0, which is also what a service holds when
// no supported panel was found at start-up: such a display matches, and the (empty) list of
// writes for that identity is sent to it.
TEST_F(AdlAuxChannel, AnUnreadableEdidMatchesThePanelIdentityZero)
{
    InstallProfile(Laptop({Adapter(0, {Display(3, 0)})}, {{"atiadlxx.dll", "atiadlxx_noedid.dll"}}));
    m_capture.Clear();
    EXPECT_TRUE(WriteAuxDataAmd(0, {}));
    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=1", L"display count=1", L"EDID API is NULL",
                                                   L"Write AUX data"}));

    InstallProfile(Laptop({Adapter(0, {Display(3, 0)})}, {{"atiadlxx.dll", "atiadlxx.dll"}},
                          {{.function = "ADL2_Display_EdidData_Get", .code = -1}}));
    m_capture.Clear();
    EXPECT_TRUE(WriteAuxDataAmd(0, {}));
    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=1", L"display count=1", L"Write AUX data"}));
    EXPECT_EQ(RecordsOf("ADL2_Display_EdidData_Get").size(), 1u);
    EXPECT_TRUE(RecordsOf("ADL2_Display_NativeAUXChannel_Access").empty());
}

TEST_F(AdlAuxChannel, AnotherPanelIsNotWritten)
{
    InstallProfile(Laptop({Adapter(0, {Display(3, 0, Panels::kSdc4174)})}));
    EXPECT_FALSE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    EXPECT_EQ(RecordsOf("ADL2_Display_EdidData_Get").size(), 1u);
    EXPECT_TRUE(RecordsOf("ADL2_Display_NativeAUXChannel_Access").empty());
}

TEST_F(AdlAuxChannel, UnreadableEdidCountsAsIdentity0)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx.dll"}},
                          {{.function = "ADL2_Display_EdidData_Get", .code = -1}}));
    EXPECT_FALSE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    EXPECT_TRUE(RecordsOf("ADL2_Display_NativeAUXChannel_Access").empty());
    // The identity read from an unreadable EDID is 0, so it matches a wanted identity of 0
    // (no supported panel): the list, which callers leave empty then, is sent.
    m_capture.Clear();
    EXPECT_TRUE(WriteAuxDataAmd(0, {}));
    EXPECT_EQ(m_capture.Count(L"Write AUX data"), 1u);
    EXPECT_TRUE(RecordsOf("ADL2_Display_NativeAUXChannel_Access").empty());
}

TEST_F(AdlAuxChannel, AdapterWhoseDisplaysCannotBeListedIsSkipped)
{
    InstallProfile(Laptop({Adapter(0, {Display(3, 0)}), Adapter(1, {Display(3, 1)})},
                          {{"atiadlxx.dll", "atiadlxx.dll"}},
                          {{.function = "ADL2_Display_DisplayInfo_Get", .code = -1, .nth = 1}}));
    EXPECT_TRUE(WriteOn());
    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=2", L"display count=1", L"Write AUX data"}));
    const auto edid = RecordsOf("ADL2_Display_EdidData_Get");
    ASSERT_EQ(edid.size(), 1u);
    EXPECT_EQ(Number(edid[0], "adapter"), 1);
}

TEST_F(AdlAuxChannel, RejectedAuxWritesAreNotNoticed)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx.dll"}},
                          {{.function = "ADL2_Display_NativeAUXChannel_Access", .code = -1, .nth = 2}}));
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    const auto aux = RecordsOf("ADL2_Display_NativeAUXChannel_Access");
    ASSERT_EQ(aux.size(), 5u) << "every write is sent although the second failed";
    EXPECT_EQ(Number(aux[1], "result"), -1);
    const rapidjson::Document state = State();
    EXPECT_EQ(Register(state, 0, 0, "0x0454"), -1);
    EXPECT_EQ(Register(state, 0, 0, "0x045B"), 0x40);
}

TEST_F(AdlAuxChannel, EveryCallStartsFromAFreshLoad)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx_noaux.dll"}}));
    EXPECT_FALSE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    EXPECT_EQ(StateNumber("amd", "loads"), 1);
    EXPECT_EQ(StateNumber("amd", "unloads"), 0);
    // What that failure left loaded is released before the library is loaded again, so
    // failures do not pile up references.
    EXPECT_FALSE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    EXPECT_EQ(StateNumber("amd", "loads"), 2);
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
    ReleaseAdlBinding();
    EXPECT_EQ(StateNumber("amd", "unloads"), 2);
    ReleaseAdlBinding();
    EXPECT_EQ(StateNumber("amd", "unloads"), 2) << "nothing left to release";
}

TEST_F(AdlAuxChannel, SuccessiveWritesLoadAndUnloadEachTime)
{
    InstallProfile(Laptop(PanelAdapter()));
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
    EXPECT_TRUE(WriteAuxDataAmd(kPanel416C, BuildAuxDataMap().at(AuxDataKey{kPanel416C, false})));
    EXPECT_EQ(RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(), 10u);
    EXPECT_EQ(RecordsOf("ADL2_Main_Control_Destroy").size(), 2u);
    EXPECT_EQ(StateNumber("amd", "loads"), 2);
    EXPECT_EQ(StateNumber("amd", "unloads"), 2);
    EXPECT_EQ(Register(State(), 0, 0, "0x045A"), 0x00) << "the off sequence came last";
}

TEST_F(AdlAuxChannel, ServiceDestructorReleasesWhatAFailedWriteLeftLoaded)
{
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx.dll"}},
                          {{.function = "ADL2_Adapter_NumberOfAdapters_Get", .code = -1}}));
    {
        LumavenService service;
        EXPECT_FALSE(WriteAuxDataAmd(kPanel416C, OnSequence(kPanel416C)));
        EXPECT_EQ(StateNumber("amd", "unloads"), 0);
    }
    EXPECT_EQ(RecordsOf("ADL2_Main_Control_Destroy").size(), 1u);
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
}

TEST_F(AdlAuxChannel, NegativeAdapterCountIsNoAdapterAtAll)
{
    // A count below zero is ADL failing without saying so: no buffer is asked for, nothing is
    // refused as too large, and the binding is released as after zero adapters.
    InstallProfile(Laptop(PanelAdapter(), {{"atiadlxx.dll", "atiadlxx.dll"}}, {},
                          {{.function = "ADL2_Adapter_NumberOfAdapters_Get", .call = "count", .answer = -1}}));
    EXPECT_FALSE(WriteOn());
    EXPECT_EQ(Logged(), std::vector<std::wstring>{L"nAdapter count=-1"});
    EXPECT_EQ(Calls(), (std::vector<std::string>{"ADL2_Main_Control_Create", "ADL2_Adapter_NumberOfAdapters_Get",
                                                 "ADL2_Main_Control_Destroy"}));
    EXPECT_EQ(StateNumber("amd", "unloads"), 1);
}

TEST_F(AdlAuxChannel, AnEmptyDisplayListWithoutABufferPassesToTheNextAdapter)
{
    // ADL answers OK with no display and no list for the first adapter: nothing to free, nothing
    // to read, and the second adapter's panel is still written.
    InstallProfile(Laptop({Adapter(0, {Display(3, 0)}), Adapter(1, {Display(3, 1)})},
                          {{"atiadlxx.dll", "atiadlxx.dll"}}, {},
                          {{.function = "ADL2_Display_DisplayInfo_Get", .call = "count", .answer = 0, .nth = 1}}));
    EXPECT_TRUE(WriteOn());
    EXPECT_EQ(Logged(), (std::vector<std::wstring>{L"nAdapter count=2", L"display count=0", L"display count=1",
                                                   L"Write AUX data"}));
    const auto edid = RecordsOf("ADL2_Display_EdidData_Get");
    ASSERT_EQ(edid.size(), 1u);
    EXPECT_EQ(Number(edid[0], "adapter"), 1);
    EXPECT_EQ(RecordsOf("ADL2_Display_NativeAUXChannel_Access").size(), 5u);
}
