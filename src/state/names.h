// Names that are the same wherever the program, the remover and the medium meet.
#pragma once

#include <windows.h>

constexpr WCHAR maker_name[] = TEXT("Vorlane");     // folder under Program Files, group in the Start menu
constexpr WCHAR own_port_prefix[] = TEXT("TRK_");   // of this program's network ports; the address follows
constexpr WCHAR tools_folder[] = TEXT("wrenchbay"); // of the medium
constexpr WCHAR tools_program[] = TEXT("wrenchbay.exe");
constexpr WCHAR remover_program[] = TEXT("trk_remove.exe");
constexpr WCHAR remover_program_64[] = TEXT("trk_remove64.exe");
constexpr WCHAR driver_folder[] = TEXT("Drivers"); // of the medium
