#include "machine/inf_package.h"

#include "fuzz/targets.h"
#include "machine/text.h"

void fuzz::inf_package(std::string_view input) {
    platform::InfPackage package;
    const std::uint32_t code = platform::read_inf_package(platform::to_utf16(input), u"Windows x64", package);
    require(code == package.fault.code, "a fault of another code than the result's");
    require(code == 0 || !package.fault.reason.empty(), "a fault without a reason");
}
