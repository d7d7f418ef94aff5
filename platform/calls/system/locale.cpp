#include "calls/run/session.h"
#include "calls/system/locale_state.h"
#include "calls/text/filled_text.h"

#include <windows.h>

#include <mutex>

namespace platform {
namespace {

struct ThreadLanguages {
    std::mutex mutex;
    std::map<unsigned, std::uint16_t> chosen; // by thread number
};

} // namespace

std::uint16_t current_ui_language() {
    auto& languages = session().area<ThreadLanguages>();
    const std::lock_guard lock(languages.mutex);
    const auto found = languages.chosen.find(current_thread_number());
    return found == languages.chosen.end() ? session().machine.ui_language : found->second;
}

} // namespace platform

LANGID SetThreadUILanguage(LANGID language) {
    platform::Call call("SetThreadUILanguage", std::to_string(language));
    if (call.fails(ERROR_INVALID_PARAMETER))
        return 0;
    if (language == 0)
        call.refuse("a language picked for the console");
    auto& languages = platform::session().area<platform::ThreadLanguages>();
    const std::lock_guard lock(languages.mutex);
    languages.chosen[platform::current_thread_number()] = language;
    return language;
}

LANGID GetThreadUILanguage() {
    platform::Call call("GetThreadUILanguage");
    return platform::current_ui_language();
}

int GetLocaleInfoW(LCID locale, LCTYPE type, LPWSTR data, int size) {
    platform::Call call("GetLocaleInfoW", std::to_string(type));
    if (call.fails(ERROR_INSUFFICIENT_BUFFER))
        return 0;
    if ((locale != LOCALE_SYSTEM_DEFAULT && locale != LOCALE_USER_DEFAULT) || type != LOCALE_SABBREVLANGNAME)
        call.refuse("locale " + std::to_string(locale));
    if (size < 0 || (data == nullptr && size != 0)) {
        platform::set_last_error(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const std::u16string& text = platform::session().machine.locale_abbreviation;
    const int needed = static_cast<int>(text.size()) + 1;
    if (size == 0)
        return needed;
    platform::fill_text(text, data, static_cast<std::uint32_t>(size));
    if (size >= needed)
        return needed;
    platform::set_last_error(ERROR_INSUFFICIENT_BUFFER);
    return 0;
}

int lstrcmpW(LPCWSTR a, LPCWSTR b) {
    platform::Call call("lstrcmpW");
    if (a == nullptr || b == nullptr)
        return a == b ? 0 : (a == nullptr ? -1 : 1);
    const int order = std::u16string_view(a).compare(b);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}
