#include "service/UtilHelper.h"

#include "util/TypeName.h"

#include "xelto/Logging.h"

namespace Xelto::Spanlet::Server::Services {

uint32_t UtilHelper::NullChecker(const std::vector<std::pair<const void*, const char*>>& params, uint64_t contextWord)
{
    uint32_t failed = 0;
    for (const auto& [pointer, name] : params) {
        if (pointer == nullptr) {
            LogManager::GetLogger()->LogWarning(LoggingData{L"%S.%S - %S cannot be null", contextWord, 0},
                                                LumavenUtil::TypeNameOf<UtilHelper>().c_str(), "NullChecker", name);
            failed = 1;
        }
    }
    return failed;
}

}  // namespace Xelto::Spanlet::Server::Services
