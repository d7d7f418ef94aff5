#include "calls/shell/link_reader.h"

#include "fuzz/machine.h"
#include "fuzz/targets.h"

// What is read can be written and read again.
void fuzz::link_reader(std::string_view input) {
    machine();
    for (const std::uint32_t code_page : {1252u, 932u}) {
        std::string reason;
        const auto link = platform::read_link(input, code_page, reason);
        require(link.has_value() || !reason.empty(), "refused without a reason");
        if (!link)
            continue;
        const auto again = platform::read_link(platform::write_link(*link, {}, code_page), code_page, reason);
        require(again && again->description == link->description &&
                    again->working_folder == link->working_folder,
                "a link changes when it is saved");
    }
}
