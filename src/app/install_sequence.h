// What the setup is for, on its own thread: program files, driver, port, queue, label sizes.
#pragma once

#include <windows.h>

// The worker thread's routine; the argument plays no part. Reports to the main dialog by message 99 as its
// last act.
void install_worker(void* unused);

// The whole sequence: 1 when it went through, 0 when it gave up. A port or queue that the spooler refused
// stands in the log only, and doesn't make the result 0. Nothing is rolled back. The new queue's name is left
// in app.queue_name, which stays empty on the USB road.
int run_installer();
