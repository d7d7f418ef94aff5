// Takes off a machine what a deployment laid down for one model: the Start-menu group, the driver's package
// in the driver store and the install folder.
#pragma once

#include <windows.h>

#include <cstddef>

// Room of an INF's file name in bytes, and of a path in characters.
constexpr size_t inf_name_capacity = 512;
constexpr size_t removal_path_capacity = 512;

// Removes the group, the maker's group if nothing else is in it, every package of the folder's INF and the
// folder, which is named from its drive on by plain names; one backslash at its end does no harm. The names
// are those that the deployment got. 0 when there is nothing that could be removed by these names, or the
// Start menu isn't found, and then nothing was touched; else 1, whatever became of the single steps.
int remove_installation(const WCHAR* install_folder, const WCHAR* folder_name, const char* model_name);

// Deletes a folder with all that is in it, without asking and past the recycle bin. The shell's result, 0 on
// success; an empty path is refused.
int delete_folder_tree(const WCHAR* path);

// The name of the INF that a deployment left in `inf` of the install folder: 1, or 0 when there is none or
// its name has no 8-bit form.
int find_package_inf(const WCHAR* install_folder, char* inf_name /*inf_name_capacity*/);

// The path of that INF in the first package folder of the driver store whose name begins with the INF's: 1 or
// 0. The store is looked for at its usual place on drive C, wherever Windows is.
int get_store_inf_name(const char* inf_name, WCHAR* inf_path /*removal_path_capacity*/);

// Asks the spooler to remove the package: 1, or 0 with its reason in the log.
int remove_driver_package(const WCHAR* inf_path);

// Compares at most `count` bytes, A to Z as their small letters: 0 when they are alike, or alike up to
// an end that both share; else the difference of the first two that differ.
int compare_text_nocase(const char* first, const char* second, DWORD count);
