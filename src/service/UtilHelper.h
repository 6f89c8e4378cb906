// Argument checks shared by ExecuteCommand and the command handlers.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace Xelto::Spanlet::Server::Services {

class UtilHelper {
public:
    // Logs one warning for every null pointer, in order, and checks every pair even after a
    // failure. Returns 1 when any pointer was null, else 0.
    static uint32_t NullChecker(const std::vector<std::pair<const void*, const char*>>& params, uint64_t contextWord);
};

}  // namespace Xelto::Spanlet::Server::Services
