// A queue's printer data: values under keys such as "Label Sizes\258". Keys and value names go without regard
// to case. Results are the platform's error codes, 0 for success.
#pragma once

#include "machine/spooler_model.h"

#include <optional>
#include <vector>

namespace platform {

// The names of the keys directly below a key, each once, in the order of the stored keys; an empty key is the
// root. Nothing when there is no such key.
std::optional<std::vector<std::u16string>> printer_sub_keys(const PrintQueue& queue, std::u16string_view key);

// Creates the key and the value as needed. A key needs plain elements between single backslashes.
std::uint32_t set_printer_value(PrintQueue& queue, std::u16string_view key, std::u16string_view name,
                                PrinterDataValue value);
const PrinterDataValue* find_printer_value(const PrintQueue& queue, std::u16string_view key,
                                           std::u16string_view name);

// REG_SZ, REG_EXPAND_SZ and REG_MULTI_SZ: what the 8-bit calls convert.
bool is_text_type(std::uint32_t type);

} // namespace platform
