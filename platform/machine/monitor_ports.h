// The transceive interface of port monitors: commands with blocks in and out. A command's outcome is a status
// of the monitor; that the monitor was reached at all is another matter, and the caller's.
#pragma once

#include "machine/port_blocks.h"
#include "machine/spooler_model.h"

namespace platform {

struct MonitorAnswer {
    std::uint32_t status = 0;         // the platform's error code, 0 for success
    std::uint32_t needed = 0;         // bytes that the command's output has or would have
    std::vector<std::uint8_t> output; // empty unless the command gives something and there is room for it
};

// "AddPort" and "DeletePort" on the Standard TCP/IP monitor; "AddPort", "GetConfig" and "SetConfig" on custom
// ones. All need server_administer in `access`. Other commands are answered with invalid_parameter.
MonitorAnswer answer_monitor(SpoolerState& state, const PortMonitor& monitor, std::uint32_t access,
                             std::u16string_view command, Bytes input, std::uint32_t output_size);

// Whether this model knows the monitor's interface.
bool has_transceive_interface(const PortMonitor& monitor);

} // namespace platform
