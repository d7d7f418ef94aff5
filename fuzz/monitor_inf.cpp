#include "package/monitor_inf.h"

#include "fuzz/machine.h"
#include "fuzz/targets.h"

void fuzz::monitor_inf(std::string_view input) {
    put("port.inf", input);
    const std::string text(input);
    MonitorInfo info = {};
    scan_monitor_info(text.c_str(), &info);
    int port = 0;
    read_port_number(u"D:\\medium\\port.inf", &port);
}
