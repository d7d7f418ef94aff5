#include "app/dialog_loop.h"

#include "state/app_state.h"
#include "support/install_log.h"

int pump_message() {
    MSG message;
    const BOOL taken = GetMessageW(&message, nullptr, 0, 0);
    if (taken == -1)
        log_failure(TEXT("GetMessage failed %d\r\n"), GetLastError());
    if (taken == 0 || taken == -1)
        return 0;
    if (IsWindow(app.main_dialog) && IsDialogMessageW(app.main_dialog, &message))
        return 1;
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return 1;
}

void wake_loop(HWND dialog) {
    PostMessageW(dialog, WM_NULL, 0, 0);
}

INT_PTR on_set_cursor(HWND dialog) {
    if (app.worker_busy == 0)
        return 0;
    SetCursor(app.wait_cursor);
    // Without the result the default handling sets the arrow again, and the cursor flickers.
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, TRUE);
    return 1;
}
