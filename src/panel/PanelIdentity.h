// Which of the supported OLED panels is fitted, read from the monitors' EDIDs.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <vector>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// EDID bytes 8..11 read little-endian: manufacturer ID in the low half, product code in the
// high half. 0 means no panel.
using PanelId = uint32_t;
// 0..10 for a supported panel, kUnsupportedPanel for none.
using PanelIndex = int32_t;

inline constexpr PanelIndex kUnsupportedPanel = 11;

// One monitor's base EDID block, each byte widened.
using EdidBlock = std::array<uint32_t, 128>;

// The eleven supported panels, all SDC (EDID manufacturer bytes 4C 83), named by product code.
inline constexpr PanelId kSdc4160 = 0x4160834C;
inline constexpr PanelId kSdc4166 = 0x4166834C;
inline constexpr PanelId kSdc416C = 0x416C834C;
inline constexpr PanelId kSdc4170 = 0x4170834C;
inline constexpr PanelId kSdc4174 = 0x4174834C;
inline constexpr PanelId kSdc417C = 0x417C834C;
inline constexpr PanelId kSdc417D = 0x417D834C;
inline constexpr PanelId kSdc4197 = 0x4197834C;
inline constexpr PanelId kSdc41A6 = 0x41A6834C;
inline constexpr PanelId kSdc41AC = 0x41AC834C;
inline constexpr PanelId kSdc41AA = 0x41AA834C;

struct SupportedPanel {
    PanelIndex index;
    PanelId id;
};
// Index and identity of every supported panel, in the order GetPanelIndex tries them, which is
// also the order kPanelIdByIndex is filled in. The pairings are fixed: the factory and the
// support queries test the index, the AUX table is keyed by the identity. They are not in
// product-code order.
inline constexpr std::array<SupportedPanel, 11> kSupportedPanels = {{
    {0, kSdc4160},
    {4, kSdc4166},
    {5, kSdc416C},
    {6, kSdc4170},
    {3, kSdc4174},
    {2, kSdc417C},
    {1, kSdc417D},
    {7, kSdc4197},
    {8, kSdc41A6},
    {9, kSdc41AC},
    {10, kSdc41AA},
}};

// kSupportedPanels as a map from index to identity, filled before anything else runs.
extern const std::map<PanelIndex, PanelId> kPanelIdByIndex;

// The base block of every present monitor whose EDID could be read, in SetupAPI order.
std::vector<EdidBlock> ReadMonitorEdids();
// The first supported panel among the monitors, walking them afresh on every call.
PanelIndex GetPanelIndex();
PanelId GetPanelId();

// The decision of GetPanelIndex for a given list of EDIDs.
PanelIndex FindSupportedPanel(const std::vector<EdidBlock>& edids);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
