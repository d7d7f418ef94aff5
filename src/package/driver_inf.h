// Finds the package's driver INF and takes the driver's identity out of it. The accepted format is much
// narrower than INF in general: exact, case-sensitive texts, each sought behind the one before, all within
// one piece of 4,095 bytes of the file. In their order:
//
//     Class=Printer
//     DriverVer=07/26/2024,1.2.3.4
//     [Manufacturer]
//     %Maker%=Label_Models,NTamd64
//     [Label_Models.NTamd64]
//     "Label 100 Driver" = Label_100_Series, usbprint\label100
#pragma once

#include "state/app_state.h"

#include <windows.h>

// Where the facts of one INF go. Sizes are in bytes with the terminator.
struct InfFields {
    char* driver_name;
    int driver_size;
    char* manu_name; // holds one character less than its size would allow
    int manu_size;
    char* mdl_name; // blanks dropped
    int mdl_size;
    DriverVersion* version;
    DWORD* has_usb;
};

// Scans a text that begins at its "Class=Printer": 1 when it holds all that is needed, else 0; some fields
// may then be written all the same. `has_usb` is written only when a model line was looked at. Writes what it
// finds to the log.
int scan_inf_driver(const char* text, const InfFields* fields);

// The same for a file; sizes in bytes. 0 also when the file can't be opened or has no "Class=Printer".
int read_inf_driver(const WCHAR* path, char* driverName, int driver_size, char* manuName, int manu_size,
                    char* mdlName, int mdl_size, DriverVersion* version, DWORD* hasUSB);

// Searches Drivers\*.inf below the current folder, or inf\*.inf, or, with neither flag, *.inf of the folder
// itself, and takes the first file that read_inf_driver accepts: 1, else 0. `infPath` has room for 256
// characters and gets folder and name, `infFile` has room for 512 bytes and gets the name. Only the accepted
// file's values may be used; the caller clears `hasUSB` first.
int find_driver_inf(char* driverName, int driver_size, char* manuName, int manu_size, char* mdlName,
                    int mdl_size, WCHAR* infPath, char* infFile, int use_drivers_folder,
                    DriverVersion* version, DWORD* hasUSB, int use_inf_folder);

// The last element of the current folder's path into `name`, which has room for 512 bytes. Always 1; the name
// is empty when the folder can't be had.
int get_current_folder_name(char* name);
