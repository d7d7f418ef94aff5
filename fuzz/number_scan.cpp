#include "fuzz/machine.h"
#include "fuzz/targets.h"
#include "support/text.h"

void fuzz::number_scan(std::string_view input) {
    machine();
    const std::string text(input);
    std::vector<int> values(4);
    const int fields = scan_numbers(text.c_str(), "%d.%d.%d.%d", values.data(), values.size());
    require(fields >= -1 && fields <= 4, "more fields than there are");
    for (int place = fields < 0 ? 0 : fields; place < 4; ++place)
        require(values[static_cast<std::size_t>(place)] == 0, "a field that wasn't reached has a value");
    if (fields >= 1)
        require(values[0] == scan_number(text.c_str()), "two scans of one number differ");
}
