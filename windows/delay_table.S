/* The ends of the table of libraries that are loaded at their first use. dlltool puts a library's row into
   .text$2, and the linker sorts by what follows the $; the table ends with an empty row. */
#ifdef _WIN64
#define SYMBOL(name) name
#else
#define SYMBOL(name) _##name
#endif

    .section .text$1, "xr"
    .p2align 3
    .globl SYMBOL(delay_import_start)
SYMBOL(delay_import_start):

    .section .text$3, "xr"
    .skip 32
    .globl SYMBOL(delay_import_end)
SYMBOL(delay_import_end):
