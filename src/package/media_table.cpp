#include "package/media_table.h"

#include "package/package_file.h"
#include "state/names.h"
#include "support/install_log.h"
#include "support/text.h"

#include <winspool.h>

#include <iterator>

namespace {

constexpr size_t path_capacity = 256;
constexpr short first_row_number = 258;
constexpr DWORD table_version = 1;

const char* skip_separators(const char* text) {
    while (*text == '\t' || *text == ' ' || *text == ',')
        ++text;
    return text;
}

int queue_has_table(HANDLE printer) {
    DWORD needed = 0;
    return EnumPrinterKeyW(printer, TEXT("Label Sizes"), nullptr, 0, &needed) == ERROR_MORE_DATA;
}

void add_rows(HANDLE printer, const char* place) {
    short number = first_row_number;
    LabelSize row;
    while ((place = scan_media_row(place, &row)) != nullptr) {
        log_line(TEXT("Add %S %S %S %d\r\n"), row.name, row.width, row.length, row.units);
        row.number = number++;
        if (add_label_size(printer, &row) != 0)
            log_failure(TEXT("Error adding label to registry!"));
    }
}

// What the spooler takes is never written to; its declaration says otherwise.
DWORD set_data(HANDLE printer, const char* key, const char* name, DWORD type, const void* data,
               size_t bytes) {
    BYTE* unwritten = const_cast<BYTE*>(static_cast<const BYTE*>(data));
    return SetPrinterDataExA(printer, key, name, type, unwritten, static_cast<DWORD>(bytes));
}

} // namespace

void load_media_table(HANDLE printer) {
    if (queue_has_table(printer))
        return;
    const HANDLE file = open_below_current_folder(tools_folder, TEXT("media.inf"), path_capacity);
    if (file == INVALID_HANDLE_VALUE) {
        log_failure(TEXT("failed to open media.inf\r\n"));
        return;
    }
    Chunk text;
    if (read_chunk(file, text) == 0) {
        log_failure(TEXT("media.inf empty\r\n"));
    } else {
        const char* place = find_ansi(text, "[Media]");
        if (place != nullptr)
            add_rows(printer, place);
    }
    CloseHandle(file);
}

DWORD add_label_size(HANDLE printer, const LabelSize* row) {
    if (printer == nullptr || row == nullptr)
        return 1;
    char key[32];
    format_ansi(key, std::size(key), "Label Sizes\\%d", row->number);
    const struct {
        const char* name;
        DWORD type;
        const void* data;
        size_t bytes;
    } values[] = {
        {"version", REG_DWORD, &table_version, sizeof(table_version)},
        {"name", REG_SZ, row->name, ansi_length(row->name) + 1},
        {"width", REG_SZ, row->width, ansi_length(row->width) + 1},
        {"length", REG_SZ, row->length, ansi_length(row->length) + 1},
        {"units", REG_DWORD, &row->units, sizeof(row->units)},
    };
    for (const auto& value : values) {
        const DWORD status = set_data(printer, key, value.name, value.type, value.data, value.bytes);
        if (status != 0)
            return status;
    }
    return 0;
}

const char* scan_media_row(const char* place, LabelSize* row) {
    *row = {};
    // Leaves the line before: its header, or what stands behind its number.
    while (*place != 0 && *place != '\r' && *place != '\n' && *place != '\t' && *place != ' ')
        ++place;
    if (*place == '\r')
        ++place;
    if (*place == '\n')
        ++place;
    place = read_quoted_field(place, row->name, sizeof(row->name));
    if (place != nullptr)
        place = read_quoted_field(place, row->width, sizeof(row->width));
    if (place != nullptr)
        place = read_quoted_field(place, row->length, sizeof(row->length));
    if (place != nullptr)
        place = read_number_field(place, &row->units);
    return place;
}

const char* read_quoted_field(const char* text, char* field, DWORD size) {
    text = skip_separators(text);
    if (*text != '"')
        return nullptr;
    ++text;
    for (DWORD used = 0; used < size; ++used, ++text) {
        if (*text == 0)
            return nullptr;
        if (*text == '"') {
            field[used] = 0;
            return text + 1;
        }
        field[used] = *text;
    }
    return nullptr;
}

const char* read_number_field(const char* text, int* number) {
    text = skip_separators(text);
    if (*text == 0)
        return nullptr;
    *number = scan_number(text);
    while (*text != 0 && *text != ',' && *text != '\r' && *text != '\n')
        ++text;
    return text;
}
