// The local queues of one driver: listed with what is known about their printers, or deleted.
#pragma once

#include <windows.h>

// The port of one queue.
struct QueuePortRecord {
    DWORD own_port; // 1 when the port's name has the prefix of this program's network ports, else 0
    char
        port_text[20]; // then the name behind the prefix with '.' for '_', so an address; else the whole name
};

// What happens to each queue of the driver.
enum ListMode {
    list_queues = 0,             // a line in the list box, with a mark for a USB printer that is plugged in
    delete_queues = 1,           // deletion
    delete_queues_and_ports = 2, // the same, then a restart of the spooler and the deletion of a network port
};

// Walks the queues of the driver in the spooler's order. Listing gives 0 for no queue, 1 for some, 2 when one
// has a waiting job; deleting gives 1 when a queue couldn't be opened or deleted, else 0. `connected` gets 1
// when a listed USB printer is plugged in, else 0. `show_type` adds the kind of the connection to a line. A
// port that couldn't be deleted stands in the log only.
int list_installed_printers(const WCHAR* driver_name, HWND dialog, int control, int mode, DWORD* connected,
                            int show_type);

// Fills at most `max` records with the ports of the driver's queues and gives their number. A port's text is
// cut at 19 bytes.
DWORD checkPrinters(QueuePortRecord* records, DWORD max, const WCHAR* driver_name);
