// What the service keeps for the whole process rather than in a service object, and one call
// that brings it back to how a fresh process starts. The suites that link the service's
// static library share one process across many tests, so each test begins (and the ones that
// load vendor libraries end) with this instead of resetting variables one by one.
#pragma once

#include "amd/ADLXHelper.h"
#include "amd/AdlAuxChannel.h"
#include "intel/ControlLibClient.h"
#include "intel/OpstProbe.h"
#include "oled/OledEvent.h"

#include <windows.h>

namespace LumavenTest {

// The process-wide state:
// - the control library's module and remembered runtime path (a library without a ctlClose
//   of its own cannot be unloaded through the client layer);
// - the OPST settings record the probe and the OPST commands share;
// - the display state of the event path (-1: no display event seen yet);
// - ADLX (the helper, its display services and display) and the ADL binding a stopped AUX
//   write leaves loaded.
// Not reset here: the Intel path's view of the AUX table (`g_auxData`), which belongs to the
// service object that set it and goes with it.
inline void ResetServiceProcessState()
{
    using namespace Xelto::Spanlet::Server::Services::Lumaven;
    if (controlLibModule != nullptr) {
        FreeLibrary(controlLibModule);
        controlLibModule = nullptr;
    }
    runtimePathArgs = nullptr;
    g_opstSettings = {};
    g_prevDisplayState = -1;
    g_ADLXHelp.Terminate();
    ReleaseAdlBinding();
}

}  // namespace LumavenTest
