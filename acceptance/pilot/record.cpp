#include "acceptance/pilot/record.h"

namespace pilot {
namespace {

std::string quoted(const std::string& utf8) {
    constexpr char digits[] = "0123456789abcdef";
    std::string out = "\"";
    for (const char byte : utf8) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x20) {
            out += "\\u00";
            out += digits[code >> 4];
            out += digits[code & 15];
            continue;
        }
        if (byte == '"' || byte == '\\')
            out += '\\';
        out += byte;
    }
    return out + '"';
}

std::string word(bool value) {
    return value ? "true" : "false";
}

template<class Items, class Form>
std::string array(const Items& items, const char* separator, Form form) {
    std::string out;
    for (const auto& item : items)
        out += (out.empty() ? "" : separator) + form(item);
    return "[" + out + "]";
}

std::string control_text(const Control& control) {
    std::string out = "{\"id\": " + std::to_string(control.id) + ", \"kind\": " + quoted(control.kind) +
                      ", \"text\": " + quoted(control.text) + ", \"visible\": " + word(control.visible) +
                      ", \"enabled\": " + word(control.enabled);
    if (control.kind == "check box")
        out += ", \"checked\": " + word(control.checked);
    if (control.kind == "list")
        out += ", \"rows\": " + array(control.rows, ", ", quoted) +
               ", \"selected\": " + std::to_string(control.selected);
    return out + "}";
}

std::string dialog_text(const Dialog& dialog) {
    return "{\"caption\": " + quoted(dialog.caption) + ", \"visible\": " + word(dialog.visible) +
           ", \"enabled\": " + word(dialog.enabled) +
           ",\n   \"controls\": " + array(dialog.controls, ",\n    ", control_text) + "}";
}

std::string box_text(const Box& box) {
    return "{\"text\": " + quoted(box.text) + ", \"caption\": " + quoted(box.caption) +
           ", \"icon\": " + word(box.icon) + "}";
}

} // namespace

std::string record_text(const Scene& scene, const Ending& ending) {
    return "{\"exit_code\": " + std::to_string(ending.exit_code) +
           ",\n \"timed_out\": " + word(ending.timed_out) +
           ",\n \"script_problem\": " + quoted(ending.script_problem) +
           ",\n \"dialogs\": " + array(scene.dialogs(), ",\n  ", dialog_text) +
           ",\n \"boxes\": " + array(scene.boxes(), ",\n  ", box_text) + "}\n";
}

} // namespace pilot
