// The native-AUX request record for one entry of a panel sequence: a write of its bytes, or a
// read of as many bytes back from its address.
#pragma once

#include "intel/ControlLibTypes.h"
#include "panel/AuxDataTable.h"

namespace Xelto::Spanlet::Server::Services::Lumaven {

inline ctl_aux_access_args_t AuxRequest(ctl_operation_type_t operation, const AuxWrite& entry)
{
    ctl_aux_access_args_t request{};
    request.Size = sizeof request;
    request.OpType = operation;
    request.Flags = CTL_AUX_FLAG_NATIVE_AUX;
    request.Address = entry.address;
    request.DataSize = static_cast<uint32_t>(entry.data.size());
    return request;
}

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
