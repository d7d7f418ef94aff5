#include "fuzz/targets.h"
#include "machine/slp_agent.h"

void fuzz::attribute_agent(std::string_view input) {
    const std::vector<std::uint8_t> datagram(input.begin(), input.end());
    const auto request = platform::parse_attribute_request(datagram);
    if (!request)
        return;
    platform::concerns_raw_printer(*request, "10.77.0.11");
    require(platform::attribute_reply(*request, "(a=b)").size() > 20, "a reply without its header");
}
