// The bytes of profiles.json. They stand alone, so that a change to them compiles nothing else anew.
__asm__(".globl trk_profiles, trk_profiles_end\n"
        ".section .rodata\n"
        "trk_profiles:\n"
        ".incbin \"" TRK_PROFILES_FILE "\"\n"
        "trk_profiles_end:\n"
        ".previous\n");
