#include "machine/machine_json.h"

#include "fuzz/targets.h"

// What is read can be written and read again, as the very same text.
void fuzz::machine_json(std::string_view input) {
    try {
        const std::string text = platform::machine_text(platform::parse_machine(input, "machine.json"));
        require(platform::machine_text(platform::parse_machine(text, "machine.json")) == text,
                "a machine changes when it is saved");
    } catch (const platform::MachineFileError&) {
        // refused, with its place
    }
}
