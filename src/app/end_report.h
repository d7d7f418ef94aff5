// What the user is told when the run is over.
#pragma once

// Makes the new queue the default printer where that was asked for, and shows the box for the outcome. A run
// without an install ends without a word.
void report_end();
