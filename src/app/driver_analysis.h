// What is installed already, and the starting state of the main dialog that follows from it.
#pragma once

// Takes the package's identity further: its names for people and for the platform, the installed driver, and
// the starting state of the main dialog, a whole network search included where there is no other connection.
void analyse_driver();
