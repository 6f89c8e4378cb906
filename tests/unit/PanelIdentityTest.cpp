// Panel identification from the monitors' EDIDs, read through Wine's real SetupAPI and
// registry from monitors the simulated laptop installs.
#include "SimMachine.h"

#include "Installer.h"
#include "panel/PanelIdentity.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <setupapi.h>

#include <string>

using namespace Xelto::Spanlet::Server::Services::Lumaven;
using LumavenTest::InstallProfile;
using LumavenTest::MonitorsProfile;
namespace Panels = LumavenSim::Panels;
namespace Profile = LumavenSim::Profile;

namespace {

EdidBlock Block(uint8_t b8, uint8_t b9, uint8_t b10, uint8_t b11)
{
    EdidBlock block{};
    block[8] = b8;
    block[9] = b9;
    block[10] = b10;
    block[11] = b11;
    return block;
}

// The one EDID read from a machine whose only monitor has this panel and an EDID value of
// `length` bytes.
EdidBlock OnlyEdid(LumavenSim::PanelIdentity panel, unsigned length)
{
    InstallProfile(Profile::Machine{.monitors = {{.panel = panel, .edidLength = length}}});
    const auto edids = ReadMonitorEdids();
    EXPECT_EQ(edids.size(), 1u);
    return edids.empty() ? EdidBlock{} : edids[0];
}

std::string Hex(const std::vector<uint8_t>& bytes)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (const uint8_t byte : bytes) {
        hex += digits[byte >> 4];
        hex += digits[byte & 15];
    }
    return hex;
}

// For as long as it lives, SetupAPI finds no setup class named "Monitor", as on a machine
// whose class registration is damaged: the class key's name is changed and put back after.
class MonitorClassHidden {
public:
    MonitorClassHidden()
    {
        if (RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                          L"SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E96E-E325-11CE-BFC1-08002BE10318}", 0,
                          KEY_QUERY_VALUE | KEY_SET_VALUE, &m_key) != ERROR_SUCCESS) {
            m_key = nullptr;
            return;
        }
        wchar_t name[64] = {};
        DWORD size = sizeof name - sizeof name[0];
        DWORD type = 0;
        if (RegQueryValueExW(m_key, L"Class", nullptr, &type, reinterpret_cast<BYTE*>(name), &size) == ERROR_SUCCESS &&
            type == REG_SZ) {
            m_name = name;
            m_hidden = SetClass(L"HiddenMonitor");
        }
    }
    ~MonitorClassHidden()
    {
        if (m_hidden) {
            SetClass(m_name);
        }
        if (m_key != nullptr) {
            RegCloseKey(m_key);
        }
    }
    MonitorClassHidden(const MonitorClassHidden&) = delete;
    MonitorClassHidden& operator=(const MonitorClassHidden&) = delete;

    // The name the class had, or empty when it could not be hidden.
    const std::wstring& HiddenName() const { return m_name; }

private:
    bool SetClass(const std::wstring& name) const
    {
        return RegSetValueExW(m_key, L"Class", 0, REG_SZ, reinterpret_cast<const BYTE*>(name.c_str()),
                              static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
    }

    HKEY m_key = nullptr;
    std::wstring m_name;
    bool m_hidden = false;
};

}  // namespace

TEST(PanelIdentity, TableHoldsTheElevenPanelsWithTheirIndices)
{
    const std::map<PanelIndex, PanelId> expected = {{0, 0x4160834C}, {1, 0x417D834C}, {2, 0x417C834C}, {3, 0x4174834C},
                                                    {4, 0x4166834C}, {5, 0x416C834C}, {6, 0x4170834C}, {7, 0x4197834C},
                                                    {8, 0x41A6834C}, {9, 0x41AC834C}, {10, 0x41AA834C}};
    EXPECT_EQ(kPanelIdByIndex, expected);
    EXPECT_EQ(kPanelIdByIndex.count(kUnsupportedPanel), 0u);
}

TEST(PanelIdentity, EveryTablePanelIsRecognisedFromItsEdidBytes)
{
    for (const auto& [index, id] : kPanelIdByIndex) {
        const EdidBlock block = Block(id & 0xFF, (id >> 8) & 0xFF, (id >> 16) & 0xFF, id >> 24);
        EXPECT_EQ(FindSupportedPanel({block}), index) << std::hex << id;
    }
}

TEST(PanelIdentity, OtherManufacturerOrProductIsNotSupported)
{
    EXPECT_EQ(FindSupportedPanel({}), kUnsupportedPanel);
    EXPECT_EQ(FindSupportedPanel({Block(0x4C, 0x83, 0x99, 0x41)}), kUnsupportedPanel);
    EXPECT_EQ(FindSupportedPanel({Block(0x4D, 0x83, 0x74, 0x41)}), kUnsupportedPanel);
    EXPECT_EQ(FindSupportedPanel({Block(0x4C, 0x84, 0x74, 0x41)}), kUnsupportedPanel);
    EXPECT_EQ(FindSupportedPanel({Block(0x4C, 0x83, 0x74, 0x42)}), kUnsupportedPanel);
}

TEST(PanelIdentity, NoMonitorGivesIndex11AndIdentity0)
{
    InstallProfile(MonitorsProfile({}));
    // Wine's own Default_Monitor is present but has no EDID.
    EXPECT_TRUE(ReadMonitorEdids().empty());
    EXPECT_EQ(GetPanelIndex(), kUnsupportedPanel);
    EXPECT_EQ(GetPanelId(), 0u);
}

TEST(PanelIdentity, MonitorClassThatSetupApiCannotListGivesIndex11AndIdentity0)
{
    InstallProfile(MonitorsProfile({Panels::kSdc4174}));
    ASSERT_EQ(GetPanelIndex(), 3) << "the panel as the class lists it";
    {
        MonitorClassHidden hidden;
        ASSERT_EQ(hidden.HiddenName(), L"Monitor");
        DWORD required = 99;
        ASSERT_TRUE(SetupDiClassGuidsFromNameW(L"Monitor", nullptr, 0, &required));
        ASSERT_EQ(required, 0u) << "SetupAPI still lists the class";
        EXPECT_TRUE(ReadMonitorEdids().empty());
        EXPECT_EQ(GetPanelIndex(), kUnsupportedPanel);
        EXPECT_EQ(GetPanelId(), 0u);
    }
    EXPECT_EQ(GetPanelIndex(), 3) << "the class is listed again";
}

TEST(PanelIdentity, Panel4174IsIndex3)
{
    InstallProfile(MonitorsProfile({Panels::kSdc4174}));
    EXPECT_EQ(GetPanelIndex(), 3);
    EXPECT_EQ(GetPanelId(), 0x4174834Cu);
}

TEST(PanelIdentity, EdidIsReadWholeAsWidenedBytes)
{
    const std::vector<uint8_t> edid = LumavenSim::MakeEdid({0x4C, 0x83, 0x60, 0x41});
    InstallProfile(Profile::Machine{.monitors = {{.edid = Hex(edid)}}});
    const auto edids = ReadMonitorEdids();
    ASSERT_EQ(edids.size(), 1u);
    for (size_t i = 0; i < 128; ++i) {
        EXPECT_EQ(edids[0][i], edid[i]) << "byte " << i;
    }
}

TEST(PanelIdentity, FirstMonitorWithUnknownProductIsPassedOver)
{
    InstallProfile(MonitorsProfile({Panels::kSdc4199, Panels::kSdc41AA}));
    EXPECT_EQ(ReadMonitorEdids().size(), 2u);
    EXPECT_EQ(GetPanelIndex(), 10);
    EXPECT_EQ(GetPanelId(), 0x41AA834Cu);
}

TEST(PanelIdentity, FirstSupportedMonitorInEnumerationOrderWins)
{
    InstallProfile(MonitorsProfile({Panels::kSdc417D, Panels::kSdc4160}));
    EXPECT_EQ(GetPanelIndex(), 1);
}

// The walk starts at the first device of the class: a monitor that SetupAPI lists before
// Wine's own Default_Monitor (its model sorts first) is read too.
TEST(PanelIdentity, TheFirstMonitorOfTheClassIsRead)
{
    InstallProfile(Profile::Machine{.monitors = {{.panel = Panels::kSdc4174, .model = "AAA0001"}}});
    EXPECT_EQ(ReadMonitorEdids().size(), 1u);
    EXPECT_EQ(GetPanelIndex(), 3);
}

TEST(PanelIdentity, EdidOver256BytesGrowsTheBufferAndKeeps128)
{
    const EdidBlock edid = OnlyEdid(Panels::kSdc416C, 384);
    EXPECT_EQ(edid[10], 0x6Cu);
    EXPECT_EQ(edid[126], 2u);  // two extension blocks follow in the value
    EXPECT_EQ(GetPanelIndex(), 5);
}

TEST(PanelIdentity, EdidShorterThan128BytesStillGives128Values)
{
    const EdidBlock edid = OnlyEdid(Panels::kSdc4170, 20);
    EXPECT_EQ(edid[8], 0x4Cu);
    for (size_t i = 20; i < 128; ++i) {
        EXPECT_EQ(edid[i], 0u) << "byte " << i << " past the value's end";
    }
    EXPECT_EQ(GetPanelIndex(), 6);
}
