// The session frame every Intel command handler shares.
#pragma once

#include "service/Json.h"

#include <cstdint>
#include <optional>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// What a command records as the "OLED" setting after its session, per outcome.
struct OledRecord {
    std::optional<uint32_t> whenTrue;
    std::optional<uint32_t> whenFalse;
};

// Opens a session, runs `mode` over the target displays, adds "result" to the response, logs
// a non-zero session status, closes the session and records the outcome. A session that
// cannot be set up is closed all the same and answers StatusDeviceError, adding nothing; an
// exception leaves with the session closed.
uint32_t RunIntelCommand(uint32_t mode, Document& response, OledRecord record = {});

// The display-power event's twin of the Ed-on command: no response, no record, and a session
// that fails to open is left as it is (one that an exception interrupts is closed).
void RunIntelEventSession(uint32_t mode);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
