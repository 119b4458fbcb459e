#include "host/report.h"

#include <atomic>
#include <cstdio>

namespace {

std::atomic<HOST_REPORT_SINK> gReportSink{nullptr};
std::atomic<HOST_REPORT_SINK> gNoticeSink{nullptr};

} // namespace

void HostReport(const std::string& message) {
    if (const HOST_REPORT_SINK sink = gReportSink.load(); sink != nullptr) {
        sink(message);
        return;
    }
    // One call, so that lines of several threads don't mix.
    std::fprintf(stderr, "%s\n", message.c_str());
}

void HostSetReportSink(HOST_REPORT_SINK sink) {
    gReportSink.store(sink);
}

void HostNotice(const std::string& message) {
    if (const HOST_REPORT_SINK sink = gNoticeSink.load(); sink != nullptr) {
        sink(message);
    }
}

void HostSetNoticeSink(HOST_REPORT_SINK sink) {
    gNoticeSink.store(sink);
}
