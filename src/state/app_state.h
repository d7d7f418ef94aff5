// The program's shared state and the records that more than one subsystem knows. Data only.
#pragma once

#include "resources/resource_ids.h"

#include <windows.h>

#include <atomic>

// Four 16-bit fields, major on top, then minor, build and revision: the form of
// DRIVER_INFO_6.dwlDriverVersion.
using DriverVersion = DWORDLONG;

// What the driver package holds, as its INF tells it. Sizes in bytes for 8-bit text, in characters for
// 16-bit.
struct DriverIdentity {
    char driverName[256];
    char manuName[256];
    char mdlName[256];
    WCHAR infPath[256]; // folder and name of the accepted INF
    char infFile[512];  // its name alone
    DriverVersion version;
    DWORD hasUSB; // 0 or 1
};

// One row of the printer list.
struct PrinterCandidate {
    DWORD is_network;        // 1 for a printer on the network, 0 for a USB row
    WCHAR printer_name[100]; // as the printer reports it; "Test" for a typed address
    WCHAR address[256];      // dotted decimal IPv4; for a USB row the port's name
};

// A status word of the install: string id and its text, loaded at start-up.
struct StageText {
    DWORD string_id;
    WCHAR text[260];
};

constexpr int candidate_capacity = 100;

// The user message of the main dialog; the low 16 bits of wParam tell what happened.
constexpr UINT setup_message = 1024;
constexpr WPARAM worker_finished = 99;
constexpr WPARAM terms_page_closed = 100;

// Every field has one writing thread. Those that both threads touch while the worker lives are atomic words;
// everything else is handed over by message 99.
struct AppState {
    HINSTANCE app_instance = nullptr;
    DWORD silent = 0; // the command line was not empty
    std::atomic<HANDLE> log_handle = INVALID_HANDLE_VALUE;
    HANDLE log_mutex = nullptr;               // made by the first write to an open log
    HANDLE closed_log = INVALID_HANDLE_VALUE; // what close_log closed; both under that mutex
    HWND main_dialog = nullptr;
    int language = 0; // a row of the language table
    WCHAR window_title[512] = {};
    WCHAR message_caption[256] = {}; // empty until string 401 is loaded
    StageText install_texts[3] = {{IDS_INSTALL_PRINTER, {}}, {IDS_ADDING_PORT, {}}, {IDS_ADDING_PRINTER, {}}};
    DriverIdentity driver = {};
    char model_display_name[256] = {}; // mdlName with a blank for each underscore
    WCHAR driver_name_wide[256] = {};
    DWORD driver_installed = 0;
    PrinterCandidate candidates[candidate_capacity] = {};
    std::atomic<int> candidate_count = 0; // a record is whole when it counts
    std::atomic<DWORD> exit_requested = 0;
    std::atomic<DWORD> install_started = 0;
    std::atomic<DWORD> install_failed = 0;
    std::atomic<DWORD> worker_busy = 0;
    DWORD set_default_printer = 0;
    DWORD usb_chosen = 0;
    HCURSOR wait_cursor = nullptr;
    DWORD ip_dialog_closed = 0;
    DWORD terms_closed = 0;
    DWORD terms_accepted = 0;
    WCHAR queue_name[256] = {};
};

extern AppState app;
