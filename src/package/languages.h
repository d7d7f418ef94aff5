// The program's languages. A new one is an enumerator and a row here, its strings under src/resources and its
// terms on the medium.
#pragma once

#include <windows.h>

enum Language {
    english, // whichever the system has
    english_uk,
    french,
    german,
    chinese,
    spanish,
    japanese,
    language_count,
};

struct LanguageRow {
    // How settings.inf and the system's locale begin that choose it, in 7-bit characters. Two letters stand
    // for all the forms of a language.
    const WCHAR* code;
    WORD primary; // language and sub-language of the platform's language identifiers
    WORD sub;
    const WCHAR* terms_suffix; // what the terms file has behind its name
};

// The row of each language, by its enumerator.
extern const LanguageRow languages[language_count];
