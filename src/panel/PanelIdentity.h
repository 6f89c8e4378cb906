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

extern const std::map<PanelIndex, PanelId> kPanelIdByIndex;

// The base block of every present monitor whose EDID could be read, in SetupAPI order.
std::vector<EdidBlock> ReadMonitorEdids();
// The first supported panel among the monitors, walking them afresh on every call.
PanelIndex GetPanelIndex();
PanelId GetPanelId();

// The decision of GetPanelIndex for a given list of EDIDs.
PanelIndex FindSupportedPanel(const std::vector<EdidBlock>& edids);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
