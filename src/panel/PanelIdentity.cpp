#include "panel/PanelIdentity.h"

#include "util/UniqueHandles.h"

#include <windows.h>
#include <setupapi.h>

#include <memory>
#include <new>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// The pairings of index and identity are fixed: the factory and the support queries test
// the index, the AUX table is keyed by the identity. They are not in product-code order.
const std::map<PanelIndex, PanelId> kPanelIdByIndex = {
    {0, 0x4160834C}, {4, 0x4166834C}, {5, 0x416C834C}, {6, 0x4170834C},
    {3, 0x4174834C}, {2, 0x417C834C}, {1, 0x417D834C}, {7, 0x4197834C},
    {8, 0x41A6834C}, {9, 0x41AC834C}, {10, 0x41AA834C},
};

namespace {

// All supported panels are SDC panels: EDID manufacturer bytes 4C 83, product code high
// byte 41. The order of this list is the order of the product-code test.
constexpr uint32_t kManufacturerLow = 0x4C;
constexpr uint32_t kManufacturerHigh = 0x83;
constexpr uint32_t kProductHigh = 0x41;
struct ProductCode {
    uint32_t low;
    PanelIndex index;
};
constexpr ProductCode kProductCodes[] = {
    {0x60, 0}, {0x66, 4}, {0x6C, 5}, {0x70, 6}, {0x74, 3}, {0x7C, 2},
    {0x7D, 1}, {0x97, 7}, {0xA6, 8}, {0xAC, 9}, {0xAA, 10},
};

constexpr DWORD kInitialEdidBufferBytes = 256;

std::vector<GUID> MonitorClassGuids()
{
    DWORD required = 0;
    if (!SetupDiClassGuidsFromNameW(L"Monitor", nullptr, 0, &required) &&
        GetLastError() != ERROR_INSUFFICIENT_BUFFER) {
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
    for (size_t i = 0; i < block.size(); ++i) {
        block[i] = buffer[i];
    }
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
        if (edid[8] != kManufacturerLow || edid[9] != kManufacturerHigh || edid[11] != kProductHigh) {
            continue;
        }
        for (const ProductCode& code : kProductCodes) {
            if (edid[10] == code.low) {
                return code.index;
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
