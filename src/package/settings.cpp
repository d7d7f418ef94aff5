#include "package/settings.h"

#include "package/languages.h"
#include "package/package_file.h"
#include "state/names.h"
#include "support/install_log.h"
#include "support/text.h"

#include <iterator>

namespace {

constexpr size_t line_capacity = 254;
constexpr size_t value_capacity = 20;
constexpr size_t path_capacity = 258;
constexpr int locale_capacity = 10;
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

// The language whose code the text begins with; language_count when there is none. The text's buffer holds
// any code's length.
int language_of_code(const WCHAR* text) {
    int language = 0;
    while (language < language_count) {
        const WCHAR* const code = languages[language].code;
        if (compare_wide(text, code, static_cast<int>(text_length(code))) == 0)
            break;
        ++language;
    }
    return language;
}

int language_of_setting(int file_flag) {
    char value[value_capacity] = {};
    WCHAR text[value_capacity] = {};
    if (read_setting("[UI]", "Language=", value, sizeof(value), file_flag) == 0)
        return language_count;
    widen(text, std::size(text), value);
    return language_of_code(text);
}

int language_of_system() {
    WCHAR locale[locale_capacity] = {};
    if (GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME, locale, locale_capacity) == 0)
        return english;
    const int language = language_of_code(locale);
    return language != language_count ? language : english;
}

int is_language(int language) {
    return language >= 0 && language < language_count;
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
    const HANDLE file =
        open_below_current_folder(file_flag ? nullptr : tools_folder, TEXT("settings.inf"), path_capacity);
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
    if (language == language_count)
        return language_of_system();
    *from_setting = 1;
    return language;
}

void apply_language(int language) {
    if (!is_language(language))
        return;
    const HMODULE kernel = GetModuleHandleW(TEXT("Kernel32.dll"));
    if (kernel == nullptr) {
        log_failure(TEXT("error loading Kernel32.dll"));
        return;
    }
    const SetLanguage set_language =
        reinterpret_cast<SetLanguage>(GetProcAddress(kernel, "SetThreadUILanguage"));
    if (set_language == nullptr) {
        log_failure(TEXT("error getting SetThreadUILanguage"));
        return;
    }
    const LanguageRow& chosen = languages[language];
    set_language(MAKELANGID(chosen.primary, chosen.sub));
    log_line(TEXT("set lang %d %d\r\n"), chosen.primary, chosen.sub);
}

const WCHAR* terms_suffix(int language) {
    return is_language(language) ? languages[language].terms_suffix : TEXT("");
}
