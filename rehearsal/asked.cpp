#include "rehearsal/asked.h"

#include "calls/files/paths.h"
#include "calls/run/session.h"
#include "machine/text.h"
#include "machine/whole_file.h"
#include "package/media_table.h"
#include "package/package_file.h"
#include "rehearsal/log_follower.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"

#include <algorithm>

namespace rehearsal {
namespace {

const platform::ControlView* find_control(const std::vector<platform::DialogView>& dialogs, int id) {
    for (const platform::DialogView& dialog : dialogs)
        for (const platform::ControlView& control : dialog.controls)
            if (dialog.id == IDD_MAIN && control.id == id)
                return &control;
    return nullptr;
}

// A row is the address, a tab and the name.
std::string selected_address(const std::vector<platform::DialogView>& dialogs) {
    const platform::ControlView* const list = find_control(dialogs, IDC_PRINTER_LIST);
    if (list == nullptr || list->selected < 0 ||
        static_cast<std::size_t>(list->selected) >= list->rows.size())
        return {};
    const std::string& row = list->rows[static_cast<std::size_t>(list->selected)];
    return row.substr(0, row.find('\t'));
}

// Past the gate, where a fault could strike.
std::string read_medium_file(const std::u16string& path) {
    return platform::read_whole_file(platform::real_path(path.c_str()).real).value_or("");
}

} // namespace

std::size_t count_media_rows(std::string_view table) {
    // The program reads one chunk of the file, and in it up to the first NUL.
    const std::string text(table.substr(0, std::min<std::size_t>(chunk_bytes, table.find('\0'))));
    const std::size_t header = text.find("[Media]");
    if (header == std::string::npos)
        return 0;
    std::size_t rows = 0;
    LabelSize row;
    for (const char* place = text.c_str() + header; (place = scan_media_row(place, &row)) != nullptr;)
        ++rows;
    return rows;
}

Asked what_was_asked(const std::vector<platform::DialogView>& dialogs, std::uint32_t code_page) {
    Asked asked;
    const platform::ControlView* const box = find_control(dialogs, IDC_DEFAULT_PRINTER);
    asked.install = app.install_started != 0;
    asked.network = app.usb_chosen == 0;
    asked.language = app.language;
    asked.make_default = asked.network && box != nullptr && box->checked;
    asked.address = selected_address(dialogs);
    asked.model = ansi_to_utf8(app.model_display_name, code_page);
    asked.driver = platform::to_utf8(app.driver_name_wide);
    asked.version = app.driver.version;
    asked.inf_file = ansi_to_utf8(app.driver.infFile, code_page);
    if (asked.install && asked.network)
        asked.label_sizes = count_media_rows(
            read_medium_file(platform::session().machine.current_folder + u"\\wrenchbay\\media.inf"));
    return asked;
}

} // namespace rehearsal
