// The last step of ExecuteCommand: the response document as a malloc'ed, NUL-terminated
// UTF-16 text that the host frees through FreeBuffer.
#pragma once

#include "service/Json.h"

#include <cstdint>

namespace Xelto::Spanlet::Server::Services::Lumaven {

// Stores the text in *outString and returns StatusSuccess; a text longer than 65,535
// characters gives StatusInvalidArgument and a null *outString.
uint32_t CopyResponseText(const Document& response, wchar_t** outString);

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
