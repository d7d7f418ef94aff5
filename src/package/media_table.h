// The table of label sizes that a new queue gets into its printer data, from wrenchbay\media.inf. The file is
// 8-bit text; its rows stand behind the line "[Media]", one a line, up to the first line that isn't a row:
//
//     [Media]
//     "Label 100x50","100.0","50.0",0
//
// that is, name, width, length and units, with any run of blanks, tabs and commas in front of each.
#pragma once

#include <windows.h>

// One row. The texts are 8-bit and go to the queue byte for byte.
struct LabelSize {
    char name[64];
    char width[8];
    char length[8];
    int units;
    short number; // the row's own, from 258 on; not in the file
};

// Copies the table's rows into a queue that has none yet. The handle stays open. Failures only reach the log.
void load_media_table(HANDLE printer);

// Writes the row's five values under "Label Sizes\<number>" and stops at the first that fails: its code, or
// 0. Without printer or row nothing is written and the result is 1.
DWORD add_label_size(HANDLE printer, const LabelSize* row);

// Reads the row on the line that ends or follows at `place` and gives the place behind its number, or null
// when no row stands there.
const char* scan_media_row(const char* place, LabelSize* row);

// The quoted text ahead into `field` of `size` bytes. The place behind the closing quote; null when there is
// no quoted text or it doesn't fit: a field is never cut.
const char* read_quoted_field(const char* text, char* field, DWORD size);

// The decimal number ahead, 0 when something else stands there. The place of the comma or line end behind it;
// null at the end of the text.
const char* read_number_field(const char* text, int* number);
