// Stopping and starting a service, with its dependents, within fixed waits. All of it runs on the caller's
// thread and blocks it. Some texts go to the log, the others to standard output.
#pragma once

#include <windows.h>

// Stops the service and what depends on it; waits 30 seconds at most for both. A service that is stopped
// already is left alone.
void DoStopSvc(const WCHAR* name);

// Starts a stopped service, after waiting for one that is just stopping, and waits while it makes progress. A
// running service is left alone.
void DoStartSvc(const WCHAR* name);

// Stops what depends on the service and runs, within 30 seconds for all: 1 when nothing of it runs any more,
// else 0. The service's handle must allow asking for its dependents.
int StopDependentServices(SC_HANDLE service, SC_HANDLE manager);
