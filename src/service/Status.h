// Status codes that ExecuteCommand and every command handler return.
#pragma once

#include <cstdint>

namespace Xelto::Spanlet::Server::Services::Lumaven {

inline constexpr uint32_t StatusSuccess = 0;
inline constexpr uint32_t StatusUnsupportedCommand = 0x20000001;
inline constexpr uint32_t StatusInvalidArgument = 0x20000002;
inline constexpr uint32_t StatusInvalidRequest = 0x20000003;
inline constexpr uint32_t StatusRegistryError = 0x20000004;
inline constexpr uint32_t StatusDeviceError = 0x20000005;
inline constexpr uint32_t StatusException = 0x20000006;

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
