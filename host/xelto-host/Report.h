// xelto-host report: a field report for a bug report. Creates the service, runs only the
// read-only commands (4, 7, 8, 10, 13: nothing is switched and the stored "OLED" value is not
// written), and prints one JSON document: the host's and the service's versions, whether the
// service was created, the graphics vendor and panel identity the service logged, each
// query's status and response, where the vendor libraries load from, and the log lines.
#pragma once

#include <string>

namespace XeltoHost {

// Prints the report to stdout; returns the host's exit code (0: the report was written, also
// when the service is unavailable on this machine).
int RunReport(const std::wstring& dllPath, bool startup);

}  // namespace XeltoHost
