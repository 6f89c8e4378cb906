#include "panel/PanelIdentity.h"

#include "util/UniqueHandles.h"

#include <windows.h>
#include <setupapi.h>

#include <algorithm>
#include <memory>
#include <new>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// Filled at load, before any caller; out of memory this early, the module cannot load anyway.
// NOLINTNEXTLINE(cert-err58-cpp): see above
const std::map<PanelIndex, PanelId> kPanelIdByIndex = [] {
    std::map<PanelIndex, PanelId> byIndex;
    for (const SupportedPanel& panel : kSupportedPanels) {
        byIndex.emplace(panel.index, panel.id);
    }
    return byIndex;
}();  // GCOVR_EXCL_LINE: the map's destruction, which runs as the module unloads, after the counters are written

namespace {

// Whether EDID bytes 8..11 are the bytes of `id`, lowest first.
bool CarriesPanelId(const EdidBlock& edid, PanelId id)
{
    constexpr size_t kFirstIdByte = 8;
    for (size_t i = 0; i < sizeof id; ++i) {
        if (edid[kFirstIdByte + i] != ((id >> (8 * i)) & 0xFFu)) {
            return false;
        }
    }
    return true;
}

constexpr DWORD kInitialEdidBufferBytes = 256;
static_assert(kInitialEdidBufferBytes >= std::tuple_size_v<EdidBlock>, "the buffer holds at least the bytes read");

// The most class GUIDs the name "Monitor" may stand for. A class name names one class, or
// a few where vendors registered their own under the same name; a larger count is SetupAPI
// failing, and taking it would size the list from it (up to 64 GiB).
constexpr DWORD kMaxMonitorClassGuids = 256;

std::vector<GUID> MonitorClassGuids()
{
    DWORD required = 0;
    if (!SetupDiClassGuidsFromNameW(L"Monitor", nullptr, 0, &required) && GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
        return {};
    }
    // Taken as the call failing: no monitor can be listed.
    if (required > kMaxMonitorClassGuids) {
        return {};
    }
    std::vector<GUID> guids(required);
    if (required == 0 || !SetupDiClassGuidsFromNameW(L"Monitor", guids.data(), required, &required)) {
        return {};
    }
    return guids;
}

// Reads the monitor's "EDID" value, growing the buffer while the value does not fit.
// The buffer starts zeroed, so the bytes past the end of a short value read as 0.
bool ReadEdidValue(HKEY key, EdidBlock& block)
{
    DWORD size = kInitialEdidBufferBytes;
    std::vector<BYTE> buffer(size, 0);
    LSTATUS status = RegQueryValueExW(key, L"EDID", nullptr, nullptr, buffer.data(), &size);
    while (status == ERROR_MORE_DATA) {
        const DWORD grown = size * 2;
        if (grown <= buffer.size()) {
            return false;  // a value that claims more room but does not grow would loop forever
        }
        try {
            buffer.assign(grown, 0);
        } catch (const std::bad_alloc&) {
            return false;
        }
        size = grown;
        status = RegQueryValueExW(key, L"EDID", nullptr, nullptr, buffer.data(), &size);
    }
    if (status != ERROR_SUCCESS) {
        return false;
    }
    std::copy_n(buffer.begin(), block.size(), block.begin());
    return true;
}

}  // namespace

std::vector<EdidBlock> ReadMonitorEdids()
{
    std::vector<EdidBlock> edids;
    const std::vector<GUID> guids = MonitorClassGuids();
    if (guids.empty()) {
        return edids;
    }
    const LumavenUtil::UniqueDevInfo devices(SetupDiGetClassDevsW(&guids[0], nullptr, nullptr, DIGCF_PRESENT));
    if (!devices) {
        return edids;
    }
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD index = 0; SetupDiEnumDeviceInfo(devices.get(), index, &device); ++index) {
        const LumavenUtil::UniqueHkey key(
            SetupDiOpenDevRegKey(devices.get(), &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ));
        if (!key) {
            continue;
        }
        EdidBlock block{};
        if (ReadEdidValue(key.get(), block)) {
            edids.push_back(block);
        }
    }
    return edids;
}

PanelIndex FindSupportedPanel(const std::vector<EdidBlock>& edids)
{
    for (const EdidBlock& edid : edids) {
        for (const SupportedPanel& panel : kSupportedPanels) {
            if (CarriesPanelId(edid, panel.id)) {
                return panel.index;
            }
        }
    }
    return kUnsupportedPanel;
}

PanelIndex GetPanelIndex()
{
    return FindSupportedPanel(ReadMonitorEdids());
}

PanelId GetPanelId()
{
    const auto found = kPanelIdByIndex.find(GetPanelIndex());
    return found != kPanelIdByIndex.end() ? found->second : 0;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
