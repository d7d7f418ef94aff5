#include "app/end_report.h"

#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "support/dialog_text.h"

#include <failed_step.h>

#include <winspool.h>

void report_end() {
    if (app.install_started == 0)
        return;
    // A loop that broke down leaves a worker that hasn't reported: its install ends with the process,
    // unfinished.
    const int reported = app.exit_requested != 0;
    if (app.install_failed != 0 || !reported) {
        message_box_string(app.app_instance, IDS_INSTALL_FAILED, MB_TOPMOST | MB_ICONEXCLAMATION);
        return;
    }
    if (app.set_default_printer != 0 && !SetDefaultPrinterW(app.queue_name))
        step_failed(TEXT("SetDefaultPrinter"));
    message_box_string(app.app_instance, app.usb_chosen != 0 ? IDS_INSTALLED_PLUG_USB : IDS_INSTALLED,
                       MB_TOPMOST);
}
