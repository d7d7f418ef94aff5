// Of the layer's own: how many bits the program has that the session runs, 32 or 64. On Windows the compiler
// knows.
#pragma once

int platform_program_bits();
