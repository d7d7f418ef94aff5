#include "package/media_table.h"

#include "fuzz/machine.h"
#include "fuzz/targets.h"

#include <winspool.h>

void fuzz::media_table(std::string_view input) {
    put("wrenchbay/media.inf", input);
    PRINTER_DEFAULTSW wanted = {nullptr, nullptr, PRINTER_ALL_ACCESS};
    WCHAR name[] = u"Label";
    HANDLE printer = nullptr;
    require(OpenPrinterW(name, &printer, &wanted) != 0, "the queue can't be opened");
    load_media_table(printer);
    ClosePrinter(printer);
    machine().machine.spooler.queues.back().data.clear();

    const std::string text(input);
    LabelSize row = {};
    std::size_t rows = 0;
    for (const char* place = text.c_str(); (place = scan_media_row(place, &row)) != nullptr;)
        require(++rows <= text.size(), "a table without an end");
}
