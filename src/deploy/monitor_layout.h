// The layout on disk of a medium with a port monitor of its own: the sister of deploy_program_files.
#pragma once

#include <windows.h>

// Lays down <Program Files>\<folder_name>\<model_text> and the Start-menu group from a medium with a folder
// `monitor`, whose `monitor_inf` arrives as monitor.inf; the tools always come along. 0 when a known folder
// is missing, else 1, however many folders and copies failed: each has a line in the log. Names that aren't
// plain folder names make nothing.
int deploy_monitor_layout(const WCHAR* folder_name, const WCHAR* model_text, const WCHAR* monitor_inf);
