// How this module's life ends, as the loader tells it. When the host process ends, the loader
// detaches the libraries the service loaded at run time (ADLX, ADL) before this module, so by
// the time the service's process-wide owners are destroyed those libraries' state is gone:
// the owners must then leave them alone. When the host unloads the service with FreeLibrary
// and runs on, the owners release everything as usual.
#pragma once

namespace Xelto::Spanlet::Server::Services::Lumaven {

// True once the loader has begun detaching this module because the process is ending
// (DLL_PROCESS_DETACH with a non-null reserved argument). The C runtime calls this module's
// DllMain before it runs the module's static destructors, so they see it.
bool ProcessIsEnding();

}  // namespace Xelto::Spanlet::Server::Services::Lumaven
