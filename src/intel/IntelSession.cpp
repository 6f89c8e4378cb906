#include "intel/IntelSession.h"

#include "intel/IntelAuxWriter.h"
#include "intel/OpstProbe.h"

#include "xelto/Logging.h"

#include <algorithm>

namespace Xelto::Spanlet::Server::Services::Lumaven {

namespace {

constexpr uint32_t kApiVersion1_0 = 0x00010000;  // major in the upper half, minor in the lower

// The most adapters and display outputs a driver may report. No machine has more than a few
// graphics adapters, nor an adapter more than a few display outputs; a larger count is the
// driver failing, not a machine, and taking it would size the handle array from it (up to
// 32 GiB) and then call the driver once per entry, under the command lock.
constexpr uint32_t kMaxAdapters = 256;
constexpr uint32_t kMaxDisplayOutputs = 256;

bool WorksOnAttachedDisplaysOnly(uint32_t mode)
{
    return mode == kModeEdOn || mode == kModeEdOff || mode == kModeOpstSupport;
}

bool IsAttached(ctl_display_output_handle_t display)
{
    ctl_display_properties_t properties{};
    properties.Size = sizeof properties;
    ctlGetDisplayProperties(display, &properties);  // a failed query leaves the flags clear
    return (properties.DisplayConfigFlags & CTL_DISPLAY_CONFIG_FLAG_DISPLAY_ATTACHED) != 0;
}

bool RunMode(uint32_t mode, ctl_display_output_handle_t display, ctl_result_t& status)
{
    switch (mode) {
    case kModeGetOpst: return IsOpstEnabled(display, status);
    case kModeEnableOpst: return SwitchOpst(display, status, true);
    case kModeDisableOpst: return SwitchOpst(display, status, false);
    case kModeEdOn: return SetPanelAuxState(display, status, true);
    case kModeEdOff: return SetPanelAuxState(display, status, false);
    case kModeOpstSupport: return IsOpstSupported(display, status);
    default: return false;  // a mode outside the table touches no display and leaves the status 0
    }
}

void LogEnumerationFailure(ctl_result_t status)
{
    LogManager::GetLogger()->LogError("ctlEnumerateDisplayOutputs returned failure code: 0x%X\n", status);
}

}  // namespace

ctl_init_args_t SessionInitArgs()
{
    ctl_init_args_t args{};
    args.Size = sizeof args;
    args.Version = 0;
    args.AppVersion = kApiVersion1_0;
    return args;
}

uint8_t ApplyToTargetDisplays(ctl_display_output_handle_t* displays, uint32_t displayCount, ctl_result_t& status,
                              uint32_t mode)
{
    status = CTL_RESULT_SUCCESS;
    if (displayCount == 0) {
        return 0;
    }
    uint8_t result = 0;
    bool anySucceeded = false;
    for (uint32_t i = 0; i < displayCount; ++i) {
        if (WorksOnAttachedDisplaysOnly(mode) && !IsAttached(displays[i])) {
            continue;
        }
        const bool value = RunMode(mode, displays[i], status);
        if (status == 0) {
            result = value ? 1 : 0;
            anySucceeded = true;
        }
    }
    if (anySucceeded) {
        status = CTL_RESULT_SUCCESS;
    }
    return result;
}

uint8_t EnumerateTargetDisplays(uint32_t deviceCount, ctl_device_adapter_handle_t* devices, ctl_result_t& status,
                                uint32_t mode)
{
    status = CTL_RESULT_SUCCESS;
    if (deviceCount == 0) {
        return 0;
    }
    ctl_device_adapter_handle_t chosen = nullptr;
    uint32_t displayCount = 0;
    for (uint32_t i = 0; i < deviceCount && chosen == nullptr; ++i) {
        displayCount = 0;
        status = ctlEnumerateDisplayOutputs(devices[i], &displayCount, nullptr);
        if (status == 0 && displayCount > kMaxDisplayOutputs) {
            // Taken as the call failing: logged with the code of a refused argument, and the
            // walk goes on as after any failure.
            status = CTL_RESULT_ERROR_INVALID_ARGUMENT;
        }
        if (status != 0) {
            LogEnumerationFailure(status);
        } else if (displayCount > 0) {
            chosen = devices[i];
        }
    }
    if (chosen == nullptr) {
        return 0;
    }
    std::vector<ctl_display_output_handle_t> displays(displayCount, nullptr);
    const uint32_t allocated = displayCount;
    status = ctlEnumerateDisplayOutputs(chosen, &displayCount, displays.data());
    if (status != 0) {
        // The loop still runs over the list as it stands; each display's calls then fail in
        // the library and the command answers false.
        LogEnumerationFailure(status);
    }
    return ApplyToTargetDisplays(displays.data(), std::min(displayCount, allocated), status, mode);
}

bool IntelSession::Open()
{
    ctl_init_args_t args = SessionInitArgs();
    m_initCalled = true;
    if (ctlInit(&args, &m_api) != 0) {
        return false;
    }
    uint32_t count = 0;
    if (ctlEnumerateDevices(m_api, &count, nullptr) != 0 || count > kMaxAdapters) {
        return false;
    }
    m_devices.assign(count, nullptr);
    if (ctlEnumerateDevices(m_api, &count, m_devices.data()) != 0) {
        return false;
    }
    // A library that now lists fewer adapters filled only those.
    m_devices.resize(std::min<size_t>(count, m_devices.size()));
    return true;
}

void IntelSession::Close() noexcept
{
    if (m_initCalled) {
        m_initCalled = false;
        ctlClose(m_api);
    }
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
