// Where the host says that something of the user's could not be written or read.
//
// One line a report, with the path and the cause. It goes to standard error unless a sink takes it,
// as the screen does. Any thread; a sink may be called with any of the host's locks held, so it
// takes none but small locks of its own and returns at once.
#pragma once

#include <string>

using HOST_REPORT_SINK = void (*)(const std::string& message);

void HostReport(const std::string& message);
void HostSetReportSink(HOST_REPORT_SINK sink); // null restores standard error
