// The two power settings the service acts on, typed here from their text form instead of
// taken from the SDK's symbols: a wrong constant in the service must not be matched by the
// same wrong constant in the tests.
#pragma once

#include <windows.h>

namespace LumavenTest {

// {6FE69556-704A-47A0-8F24-C28D936FDA47}: the console display switched off (0) or on (1).
inline constexpr GUID kConsoleDisplayState{
    0x6FE69556, 0x704A, 0x47A0, {0x8F, 0x24, 0xC2, 0x8D, 0x93, 0x6F, 0xDA, 0x47}};
// {BA3E0F4D-B817-4094-A2D1-D56379E6A0F3}: the lid closed (0) or opened (1).
inline constexpr GUID kLidSwitchStateChange{
    0xBA3E0F4D, 0xB817, 0x4094, {0xA2, 0xD1, 0xD5, 0x63, 0x79, 0xE6, 0xA0, 0xF3}};

}  // namespace LumavenTest
