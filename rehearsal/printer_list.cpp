#include "rehearsal/printer_list.h"

#include "machine/json_fields.h"
#include "machine/whole_file.h"

#include <stdexcept>

namespace rehearsal {
namespace {

constexpr std::size_t most_printers = 200; // of the 254 addresses of their network
constexpr unsigned longest_delay = 60'000; // milliseconds
constexpr unsigned most_times = 10'000;
constexpr std::size_t largest_datagram = 65'507; // what UDP carries over IPv4

using platform::JsonPlace;
using platform::JsonReader;

unsigned number_up_to(const JsonPlace& place, const char* key, unsigned largest, unsigned otherwise) {
    const auto found = place.value.find(key);
    if (found == place.value.end())
        return otherwise;
    return platform::number_from_json(place.at(key, *found), largest);
}

PrinterReply read_reply(const JsonPlace& place) {
    PrinterReply reply;
    JsonReader reader(place);
    const bool attributes = reader("attributes", reply.attributes);
    reply.as_it_is = reader("hex", reply.datagram);
    if (attributes == reply.as_it_is)
        place.fail("needs either \"attributes\" or \"hex\"");
    if (reply.attributes.size() > UINT16_MAX || reply.datagram.size() > largest_datagram)
        place.fail("is longer than a datagram can be");
    reply.times = number_up_to(place, "times", most_times, 1);
    reader.finish({"times"});
    return reply;
}

PrinterOptions read_printer(const JsonPlace& place) {
    PrinterOptions printer;
    JsonReader reader(place);
    reader("model", printer.model);
    reader("name", printer.name);
    reader("location", printer.location);
    reader("empty", printer.empty);
    printer.delay = number_up_to(place, "delay", longest_delay, 0);
    reader.finish({"delay", "replies"});
    if (const auto list = place.value.find("replies"); list != place.value.end()) {
        const JsonPlace inner = place.at("replies", *list);
        if (!list->is_array())
            inner.fail("must be a list");
        printer.replies.emplace();
        for (const platform::Json& reply : *list)
            printer.replies->push_back(read_reply(inner.at(std::to_string(printer.replies->size()), reply)));
    }
    return printer;
}

std::vector<PrinterOptions> read_printers(const JsonPlace& place) {
    if (!place.value.is_object() || !place.value.contains("printers"))
        place.fail("lacks \"printers\"");
    JsonReader(place).finish({"printers"});
    const platform::Json& list = place.value["printers"];
    const JsonPlace inner = place.at("printers", list);
    if (!list.is_array() || list.empty() || list.size() > most_printers)
        inner.fail("must be a list of 1 to " + std::to_string(most_printers) + " printers");
    std::vector<PrinterOptions> printers;
    for (const platform::Json& printer : list)
        printers.push_back(read_printer(inner.at(std::to_string(printers.size()), printer)));
    return printers;
}

} // namespace

std::vector<PrinterOptions> read_printer_list(const std::filesystem::path& file) {
    const auto text = platform::read_whole_file(file);
    if (!text)
        throw std::runtime_error(file.string() + ": can't be read");
    try {
        const platform::JsonDocument document = platform::parse_json(*text);
        return read_printers({document, document.root, ""});
    } catch (const platform::JsonError& error) {
        throw std::runtime_error(file.string() + ":" + std::to_string(error.spot.line) + ":" +
                                 std::to_string(error.spot.column) + ": " + error.what());
    }
}

} // namespace rehearsal
