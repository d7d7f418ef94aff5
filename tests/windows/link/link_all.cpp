// Names every routine of the library once, so that linking this program for both Windows targets proves that
// each one is there and that nothing that it calls is missing. It is linked and read, never run.
#include "app/candidate_list.h"
#include "app/dialog_loop.h"
#include "app/driver_analysis.h"
#include "app/end_report.h"
#include "app/install_sequence.h"
#include "app/ip_dialog.h"
#include "app/main_dialog.h"
#include "app/relaunch.h"
#include "app/startup.h"
#include "app/terms_page.h"
#include "deploy/model_folders.h"
#include "deploy/monitor_layout.h"
#include "deploy/program_files.h"
#include "deploy/shortcuts.h"
#include "discovery/network_search.h"
#include "discovery/slp.h"
#include "discovery/usb_search.h"
#include "discovery/usb_walk.h"
#include "package/driver_inf.h"
#include "package/media_table.h"
#include "package/monitor_inf.h"
#include "package/package_file.h"
#include "package/profile_names.h"
#include "package/settings.h"
#include "removal/installation.h"
#include "removal/installed_printers.h"
#include "removal/service_control.h"
#include "removal/usb_ports.h"
#include "spooler/driver_package.h"
#include "spooler/inventory.h"
#include "spooler/monitor_ports.h"
#include "spooler/port_monitor.h"
#include "spooler/tcp_port.h"
#include "support/current_folder.h"
#include "support/dialog_text.h"
#include "support/install_log.h"
#include "support/known_folder.h"
#include "support/library_search.h"
#include "support/memory.h"
#include "support/registry_text.h"
#include "support/system_text.h"
#include "support/text.h"

#include <cstdint>
#include <initializer_list>

namespace {

volatile std::uintptr_t kept;

template<class... Routine>
void keep(Routine*... routines) {
    for (std::uintptr_t address : {reinterpret_cast<std::uintptr_t>(routines)...})
        kept = address;
}

} // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    keep(search_printers, make_list_scroll, add_candidate, candidate_known, add_usb_candidate, pump_message,
         wake_loop, on_set_cursor, find_installed_driver, analyse_driver, report_end, install_worker,
         run_installer, printer_exists, ask_printer_address, ip_dialog_proc, ask_address_text,
         main_dialog_proc, enter_network_mode, clear_candidates, relaunch_64, run_setup, show_terms_page,
         terms_dialog_proc);
    keep(deploy_monitor_layout, deploy_program_files, copy_package_file, copyDirFiles, compare_os_version,
         is_os_newer_than, make_model_folder, make_install_folder, create_model_shortcuts, create_shortcut,
         create_link_file, create_menu_group);
    keep(collect_adapters, find_slp, probe_discovery_port, build_slp_request, read_be_number, read_slp_reply,
         log_slp_header, reverse_bytes, usb_search, usb_device_check, open_usb_printers, walk_usb_printers);
    keep(scan_inf_driver, read_inf_driver, find_driver_inf, get_current_folder_name, load_media_table,
         add_label_size, scan_media_row, read_quoted_field, read_number_field, read_monitor_inf,
         scan_monitor_info, read_port_number, open_package_file, open_below_current_folder, read_chunk,
         find_in_chunks, read_text_line_wide, VLI_GetProfileFieldW, read_text_line, read_setting,
         compare_wide, VLI_Get_Locale, apply_language, terms_suffix);
    keep(remove_installation, delete_folder_tree, find_package_inf, get_store_inf_name, remove_driver_package,
         compare_text_nocase, list_installed_printers, checkPrinters, DoStopSvc, DoStartSvc,
         StopDependentServices, read_usb_port_ids, check_usb_connection, find_port_by_description);
    keep(install_driver_package, enumerate_printers, enumerate_drivers, enumerate_monitors, enumerate_ports,
         enumerate_processors, print_processor_exists, monitor_exists, port_exists, queue_on_port_exists,
         install_monitor, install_dryx_monitor, add_port, add_dryx_port, build_program_files_path,
         add_tcp_port, delete_tcp_port, open_port_monitor, send_add_port);
    keep(get_current_folder, message_box_text, message_box_string, message_box_last_error, status_set,
         status_set_ansi, status_set_string, status_append, status_append_ansi, status_append_string,
         status_append_stage, list_clear, list_add, list_add_ansi, list_add_string, show_control,
         control_get_text, control_get_ansi, set_control_string, apply_dialog_texts, center_dialog,
         find_temp_dir, open_log, close_log, log_write, log_text, log_texts, log_line, log_line_within,
         find_known_folder, limit_library_search, read_registry_text, read_registry_number, system_text,
         format_text, format_text_list, compose_text, format_ansi, scan_numbers, scan_number, text_length,
         ansi_length, copy_text, append_text, copy_ansi, whole_ansi_length, widen, narrow, narrow_name,
         find_text, find_ansi, find_in_names, replace_in_name, same_text, change_case, blank_controls,
         starts_with, ansi_starts_with, is_plain_name, allocate_bytes, allocate_characters, release_bytes);
    return 0;
}
