// The layout on disk: the model's program folder under Program Files and its Start-menu group.
#pragma once

#include <windows.h>

// Lays down <Program Files>\<folder_name>\<model_name> from the current folder, with the tools if asked, and
// then the Start-menu group with its shortcuts. 1 when it ran to its end, 0 when it stopped: a known folder
// is missing, a file that must be there couldn't be copied, or one of the two names isn't one plain folder
// name. Nothing is rolled back. Files and shortcuts of an earlier deployment are overwritten.
int deploy_program_files(const WCHAR* folder_name, const WCHAR* driver_name, const char* inf_file,
                         const char* model_name, int with_tools);

// Copies one file, overwriting, also over a read-only one; both folders end in a backslash. 1, or 0 with a
// line in the log, which has code 206 when a path has more than 511 characters.
int copy_package_file(const WCHAR* source_folder, const WCHAR* source_name, const WCHAR* target_folder,
                      const WCHAR* target_name);

// Copies all files of a pattern into a folder (ending in a backslash) without asking and without subfolders.
// The shell's result: 0 on success.
int copyDirFiles(const WCHAR* source, const WCHAR* target);

// 1 when the running system is above that version, -1 when it is below, 0 when it is the same.
int compare_os_version(DWORD major, DWORD minor, DWORD build);
int is_os_newer_than(); // 1 above 6.2.0, which any 6.2 with a build is, else 0
