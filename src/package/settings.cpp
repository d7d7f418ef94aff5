#include "package/settings.h"

#include "package/package_file.h"
#include "support/install_log.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t line_capacity = 254;
constexpr size_t value_capacity = 20;
constexpr size_t path_capacity = 258;
constexpr int locale_capacity = 10;
constexpr int unknown_language = 7; // while the choice is being made

struct Language {
    WORD primary;
    WORD sub;
    const WCHAR* terms_suffix;
};

constexpr Language languages[] = {
    {9, 0, TEXT("")},      // English, whichever the system has
    {9, 2, TEXT("_ENU")},  // English of the United Kingdom
    {12, 0, TEXT("_FRA")}, // French
    {7, 0, TEXT("_DEU")},  // German
    {4, 0, TEXT("_CH")},   // Chinese
    {10, 0, TEXT("_ES")},  // Spanish
    {17, 1, TEXT("_JPN")}, // Japanese
};

struct SettingText {
    const char* text;
    int language;
};

// Two letters stand for all the forms of a language.
constexpr SettingText setting_texts[] = {{"ENG", 1}, {"ENU", 0}, {"DEU", 3}, {"FRA", 2},
                                         {"ES", 5},  {"CH", 4},  {"JPN", 6}};

struct LocaleText {
    const WCHAR* text;
    int language;
};

constexpr LocaleText locale_texts[] = {{TEXT("ENG"), 1}, {TEXT("DEU"), 3}, {TEXT("FRA"), 2},
                                       {TEXT("ES"), 5},  {TEXT("CH"), 4},  {TEXT("JPN"), 6}};

using SetLanguage = LANGID(WINAPI*)(LANGID);

size_t line_length(const char* text, size_t size) {
    for (size_t i = 0; i < size; ++i) {
        if (text[i] == '\n')
            return i + 1;
        if (text[i] == '\r')
            return i + 1 < size && text[i + 1] == '\n' ? i + 2 : i + 1;
    }
    return size;
}

DWORD find_setting(HANDLE file, const char* section, const char* key, char* value, DWORD value_size) {
    char line[line_capacity];
    const size_t key_length = ansi_length(key);
    int entered = 0;
    DWORD result = 0;
    while (read_text_line(file, line, sizeof(line)) != 0) {
        if (line[0] == '[') {
            if (entered)
                break;
            entered = ansi_starts_with(line, section);
            continue;
        }
        if (!entered || !ansi_starts_with(line, key))
            continue;
        const DWORD length = static_cast<DWORD>(ansi_length(line + key_length));
        result = length < value_size - 1 ? length : value_size - 1;
        for (DWORD i = 0; i < result; ++i)
            value[i] = line[key_length + i];
        if (length != 0)
            value[result] = 0;
        if (length != 0 && length < value_size - 1)
            break;
    }
    return result;
}

int language_of_setting(int file_flag) {
    char value[value_capacity] = {};
    if (read_setting("[UI]", "Language=", value, sizeof(value), file_flag) == 0)
        return unknown_language;
    for (const SettingText& known : setting_texts) {
        if (ansi_starts_with(value, known.text))
            return known.language;
    }
    return unknown_language;
}

int language_of_system() {
    WCHAR locale[locale_capacity] = {};
    if (GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, locale, locale_capacity) == 0)
        return 0;
    for (const LocaleText& known : locale_texts) {
        if (compare_wide(locale, known.text, static_cast<int>(text_length(known.text))) == 0)
            return known.language;
    }
    return 0;
}

int is_language(int language) {
    return language >= 0 && static_cast<size_t>(language) < std::size(languages);
}

} // namespace

DWORD read_text_line(HANDLE file, char* line, DWORD size) {
    for (DWORD i = 0; i < size; ++i)
        line[i] = 0;
    const DWORD start = SetFilePointer(file, 0, nullptr, FILE_CURRENT);
    DWORD got = 0;
    if (size < 2 || start == INVALID_SET_FILE_POINTER || !ReadFile(file, line, size - 1, &got, nullptr) ||
        got == 0)
        return 0;
    const DWORD length = static_cast<DWORD>(line_length(line, got));
    line[length] = 0;
    if (SetFilePointer(file, static_cast<LONG>(start + length), nullptr, FILE_BEGIN) ==
        INVALID_SET_FILE_POINTER)
        return 0;
    return length;
}

DWORD read_setting(const char* section, const char* key, char* value, DWORD value_size, int file_flag) {
    if (value_size == 0)
        return 0;
    value[0] = 0;
    const WCHAR* rest = file_flag ? TEXT("\\settings.inf") : TEXT("\\wrenchbay\\settings.inf");
    const HANDLE file = open_below_current_folder(rest, path_capacity);
    if (file == INVALID_HANDLE_VALUE)
        return 0;
    const DWORD length = find_setting(file, section, key, value, value_size);
    CloseHandle(file);
    return length;
}

int compare_wide(const WCHAR* first, const WCHAR* second, int count) {
    for (int i = 0; i < count; ++i) {
        if (first[i] != second[i])
            return 1;
    }
    return 0;
}

int VLI_Get_Locale(DWORD* from_setting, int file_flag) {
    *from_setting = 0;
    log_line(TEXT("VLI_Get_Locale\r\n"));
    const int language = language_of_setting(file_flag);
    if (language == unknown_language)
        return language_of_system();
    *from_setting = 1;
    return language;
}

void apply_language(int language) {
    if (!is_language(language))
        return;
    const HMODULE kernel = GetModuleHandleW(TEXT("Kernel32.dll"));
    if (kernel == nullptr) {
        log_line(TEXT("error loading Kernel32.dll"));
        return;
    }
    const SetLanguage set_language =
        reinterpret_cast<SetLanguage>(GetProcAddress(kernel, "SetThreadUILanguage"));
    if (set_language == nullptr) {
        log_line(TEXT("error getting SetThreadUILanguage"));
        return;
    }
    const Language& chosen = languages[language];
    set_language(static_cast<LANGID>(chosen.sub << 10 | chosen.primary));
    log_line(TEXT("set lang %d %d\r\n"), chosen.primary, chosen.sub);
}

const WCHAR* terms_suffix(int language) {
    return is_language(language) ? languages[language].terms_suffix : TEXT("");
}
