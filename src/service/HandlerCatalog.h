// What each command handler logs when it catches an exception. Two argument shapes are in
// use: most handlers pass their qualified name and then the exception's message to a format
// with a single %S, so the line shows the name; six pass only the message. Several handlers
// deliberately share another handler's text.
#pragma once

namespace Xelto::Spanlet::Server::Services::Lumaven {

struct HandlerIdentity {
    const char* catchText;
    // The first argument of the catch text; null when the text prints the message instead.
    const char* qualifiedName;
};

#define LUMAVEN_QUALIFIED(method) "Xelto::Spanlet::Server::Services::Lumaven::LumavenService::" method

namespace Handler {
inline constexpr HandlerIdentity GetOpst{"LumavenService - GetOpst threw: %S", LUMAVEN_QUALIFIED("_GetOpst")};
inline constexpr HandlerIdentity GetIfSystemSupportsOpst{"LumavenService - GetOpst threw: %S",
                                                         LUMAVEN_QUALIFIED("_GetIfSystemSupportsOpst")};
inline constexpr HandlerIdentity GetIfVaribrightSupport{"LumavenService - GetVaribright threw: %S",
                                                        LUMAVEN_QUALIFIED("_GetIfVaribrightSupport")};
inline constexpr HandlerIdentity SetVaribright{"LumavenService - GetVaribright threw: %S",
                                               LUMAVEN_QUALIFIED("_SetVaribright")};
inline constexpr HandlerIdentity GetIfOLEDSupport{"LumavenService - GetIfOLEDSupport threw: %S",
                                                  LUMAVEN_QUALIFIED("_GetIfOLEDSupport")};
inline constexpr HandlerIdentity SetOLEDPowerSaveON{"LumavenService - SetOLEDPowerSaveON threw: %S",
                                                    LUMAVEN_QUALIFIED("_SetOLEDPowerSaveON")};
inline constexpr HandlerIdentity SetOLEDPowerSaveOFF{"LumavenService - SetOLEDPowerSaveOFF threw: %S",
                                                     LUMAVEN_QUALIFIED("_SetOLEDPowerSaveOFF")};
inline constexpr HandlerIdentity SetIntelElp{"LumavenService - SetIntelElp threw: %S",
                                             LUMAVEN_QUALIFIED("SetIntelElp")};
inline constexpr HandlerIdentity SetAmdElp{"LumavenService - SetAmdElp threw: %S", LUMAVEN_QUALIFIED("SetAmdElp")};

inline constexpr HandlerIdentity EnableOpst{"LumavenService - EnableOpst threw: %S", nullptr};
inline constexpr HandlerIdentity DisableOpst{"LumavenService - DisableOpst threw: %S", nullptr};
inline constexpr HandlerIdentity GetIfSystemSupportsOled{"LumavenService - GetIfSystemSupportsOled threw: %S", nullptr};
inline constexpr HandlerIdentity EnableEd{"LumavenService - EnableEd threw: %S", nullptr};
inline constexpr HandlerIdentity DisableEd{"LumavenService - DisableEd threw: %S", nullptr};
inline constexpr HandlerIdentity GetOledFromRegistry{"LumavenService - GetOledFromRegistry threw: %S", nullptr};

// The event path logs in the message shape too.
inline constexpr HandlerIdentity OledEventCalled{"LumavenService - OledEventCalled threw: %S", nullptr};
inline constexpr HandlerIdentity GetOledFromRegistryForEvent{"LumavenService - GetOledFromRegistryForEvent threw: %S",
                                                             nullptr};
}  // namespace Handler

#undef LUMAVEN_QUALIFIED

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
