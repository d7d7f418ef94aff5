// The two places of one model on disk: its folder under Program Files and its group in the Start menu.
#pragma once

#include <windows.h>

#include <cstddef>

// Room of a path and of a log line of the deployment, in characters. A folder that was cut at this capacity
// has no room for any name behind it, so that every file step below it is refused as well.
constexpr size_t deploy_path_capacity = 512;
constexpr size_t deploy_line_capacity = 512;

// What the log gets of a level that is made: its path in front, or not, and a line when it couldn't be made.
// That it may be there already is no failure where nothing tells.
struct FolderLines {
    int show;
    int tell;
};

// Makes <base>\<folder_name>\<model> one level at a time, going on in any case, and gives the path in `out`
// of deploy_path_capacity characters, without a backslash at its end.
void make_model_folder(WCHAR* out, const WCHAR* base, const WCHAR* folder_name, const WCHAR* model,
                       FolderLines lines);

// The install folder of one model.
struct InstallFolder {
    int plain;                        // both names are plain folder names; otherwise nothing was made
    int fits;                         // the path is whole
    WCHAR path[deploy_path_capacity]; // with a backslash at its end
};

// Makes <Program Files>\<folder_name>\<model>, with a line for the folder that Program Files is and for each
// level. 0 when the system has no Program Files folder; it isn't looked at what became of the levels.
int make_install_folder(InstallFolder* folder, const WCHAR* folder_name, const WCHAR* model, int tell);

// The shortcuts of a model's group: to the remover, and with the tools to the tool program.
void create_model_shortcuts(const WCHAR* install_folder, const WCHAR* driver_name, const WCHAR* group_folder,
                            int with_tools);
