// The host's messages to the user, one line at a time.
//
// A report says that a file of the user's could not be written or read, with the path and the cause; it
// goes to a sink (the screen), else to standard error. A notice says that what the user asked for is
// done; without a sink it is dropped. Any thread; a sink may be called with any of the host's locks
// held, so it takes only small locks of its own and returns at once.
#pragma once

#include <string>

using HOST_REPORT_SINK = void (*)(const std::string& message);

void HostReport(const std::string& message);
void HostSetReportSink(HOST_REPORT_SINK sink); // null restores standard error

void HostNotice(const std::string& message);
void HostSetNoticeSink(HOST_REPORT_SINK sink); // null drops them
