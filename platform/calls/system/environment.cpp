#include "calls/run/session.h"
#include "calls/system/modules.h"
#include "calls/text/filled_text.h"
#include "machine/text.h"

#include <windows.h>

#include <optional>

namespace {

using platform::session;

struct CommandLine {
    std::u16string text; // the program gets a pointer into it, good for the whole run
};

std::optional<std::u16string> variable(std::u16string_view name) {
    for (const auto& [own, value] : session().machine.environment)
        if (platform::same_name(own, name))
            return value;
    return std::nullopt;
}

// References between two percent signs are replaced by the variable's value; one without a value stays, and
// its second percent sign may begin the next.
std::u16string expanded(std::u16string_view source) {
    std::u16string out;
    while (!source.empty()) {
        const std::size_t end = source[0] == u'%' ? source.find(u'%', 1) : std::u16string_view::npos;
        if (end == std::u16string_view::npos) {
            out += source[0];
            source.remove_prefix(1);
            continue;
        }
        const auto value = variable(source.substr(1, end - 1));
        out += value ? std::u16string_view(*value) : source.substr(0, end);
        source.remove_prefix(value ? end + 1 : end);
    }
    return out;
}

} // namespace

DWORD GetEnvironmentVariableW(LPCWSTR name, LPWSTR value, DWORD size) {
    platform::Call call("GetEnvironmentVariableW", platform::shown(name));
    if (call.fails(ERROR_ENVVAR_NOT_FOUND))
        return 0;
    const auto found = variable(name);
    if (found)
        return platform::give_text(call, *found, value, size);
    platform::set_last_error(ERROR_ENVVAR_NOT_FOUND);
    return 0;
}

DWORD ExpandEnvironmentStringsW(LPCWSTR source, LPWSTR target, DWORD size) {
    platform::Call call("ExpandEnvironmentStringsW", platform::shown(source));
    if (call.fails(ERROR_NOT_ENOUGH_MEMORY))
        return 0;
    const std::u16string text = expanded(source);
    const platform::ToldSize answer = call.size(text.size() + 1, target == nullptr ? 0 : size);
    if (size < answer.needed)
        platform::poison_text(target, size);
    else
        platform::fill_text(text, target, size);
    return answer.told;
}

LPWSTR GetCommandLineW() {
    platform::Call call("GetCommandLineW");
    CommandLine& line = session().area<CommandLine>();
    if (line.text.empty()) {
        line.text = u"\"" + platform::program_path() + u"\"";
        if (!session().options.command_line.empty())
            line.text += u" " + session().options.command_line;
    }
    return line.text.data();
}
