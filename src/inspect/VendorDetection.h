// The graphics vendor from the names of the machine's video controllers.
#pragma once

#include "service/Json.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// kVendorIntel when any name contains "Intel"; else kVendorAmd when any contains "AMD" or
// "Radeon"; else 0. The words are matched case-sensitively anywhere in a name, so an Intel
// controller wins over an AMD one whatever their order.
int32_t VendorFromControllerNames(const std::vector<std::wstring>& names);

// The names of a WMI "result" array, as wide strings in enumeration order: every controller
// the query reported, not only the first. An element that is not a string cannot name a
// vendor and stands as an empty name.
std::vector<std::wstring> ControllerNames(const JsonValue& result);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
