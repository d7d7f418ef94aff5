// Shortcuts of the Start menu, and the folders of a model's group there.
#pragma once

#include <windows.h>

// Makes a shortcut to `file_name` of the install folder in the group folder. On a newer system it is named
// after driver and label, else after the label alone. create_link_file's result; 0 without a try when the
// name isn't one plain file name, or, with a line in the log, when the target is longer than 511 characters
// or the link's path than 259.
int create_shortcut(int newer_system, const WCHAR* install_folder, const WCHAR* driver_name,
                    const WCHAR* group_folder, const WCHAR* label, const WCHAR* file_name);

// Writes a link file, replacing one that is there. 1 when it was saved, else 0. Initialises COM on the
// calling thread, which stays initialised.
int create_link_file(const WCHAR* target, const WCHAR* link_path, const WCHAR* description,
                     const WCHAR* working_folder);

// Makes <common Programs>\<folder_name>\<model_text>. 1 when the Programs folder was found, whatever the two
// folders did; a folder that couldn't be made, or was there, has a line in the log.
int create_menu_group(const WCHAR* folder_name, const WCHAR* model_text);
