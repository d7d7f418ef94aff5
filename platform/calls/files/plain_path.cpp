#include "calls/files/paths.h"

#include "calls/run/session.h"
#include "machine/text.h"

#include <windows.h>

#include <algorithm>

namespace platform {
namespace {

constexpr std::u16string_view unparsed_prefix = u"\\\\?\\";
constexpr std::size_t longest_name = 255; // of one file or folder

bool is_separator(char16_t c) {
    return c == u'\\' || c == u'/';
}

bool is_letter(char16_t c) {
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

char16_t capital(char16_t c) {
    return c >= u'a' ? static_cast<char16_t>(c - 32) : c;
}

bool has_drive(std::u16string_view path) {
    return path.size() >= 2 && is_letter(path[0]) && path[1] == u':';
}

bool starts_with_drive_root(std::u16string_view path) {
    return has_drive(path) && path.size() > 2 && path[2] == u'\\';
}

// Behind the prefix a slash is no separator, but a letter that no name may hold.
std::vector<std::u16string> split(std::u16string_view path, bool slashes) {
    const char16_t* const separators = slashes ? u"\\/" : u"\\";
    std::vector<std::u16string> names;
    std::size_t start = 0;
    for (std::size_t end = 0; end != path.npos; start = end + 1) {
        end = path.find_first_of(separators, start);
        names.emplace_back(path.substr(start, end - start));
    }
    return names;
}

// A point at the end of a name is dropped, and at the end of the whole path all points and blanks are.
std::u16string without_tail(std::u16string name, bool last) {
    if (last)
        name.erase(name.find_last_not_of(u". ") + 1);
    else if (name.size() > 1 && name.back() == u'.' && name[name.size() - 2] != u'.')
        name.pop_back();
    return name;
}

// What path `path` hangs from, as text that ends in front of it, and the path's own part.
std::u16string absolute(std::u16string_view path) {
    const std::u16string& current = session().machine.current_folder;
    if (has_drive(path)) {
        const bool from_current =
            !is_separator(path.size() > 2 ? path[2] : u'\0') && capital(path[0]) == capital(current[0]);
        return from_current ? current + u"\\" + std::u16string(path.substr(2)) : std::u16string(path);
    }
    if (is_separator(path[0]))
        return current.substr(0, 2) + std::u16string(path);
    return current + u"\\" + std::u16string(path);
}

void fold(PlainPath& plain, std::u16string_view path, bool pattern) {
    std::vector<std::u16string> names = split(path, true);
    for (std::size_t index = 0; index < names.size(); ++index) {
        const std::u16string& name = names[index];
        const bool last = index + 1 == names.size();
        if (name == u"..") {
            if (!plain.names.empty())
                plain.names.pop_back();
        } else if (!name.empty() && name != u".") {
            std::u16string kept = pattern && last ? name : without_tail(name, last);
            if (!kept.empty())
                plain.names.push_back(std::move(kept));
        }
    }
}

[[noreturn]] void refuse(std::u16string_view name, const std::string& why) {
    session().gate.refuse(to_utf8(name) + ": " + why);
}

bool is_device(std::u16string_view name) {
    static constexpr std::u16string_view devices[] = {u"CON", u"PRN", u"AUX", u"NUL", u"CONIN$", u"CONOUT$"};
    constexpr std::size_t shortest = 3, longest = 7;
    const std::u16string_view given = name.substr(0, name.find(u'.'));
    if (given.size() < shortest || given.size() > longest)
        return false;
    const std::u16string stem = upper_case(given);
    const bool numbered = stem.size() == 4 && (stem.starts_with(u"COM") || stem.starts_with(u"LPT")) &&
                          stem[3] >= u'1' && stem[3] <= u'9';
    return numbered || std::find(std::begin(devices), std::end(devices), stem) != std::end(devices);
}

// 0, or why the name can't be one of a file.
std::uint32_t name_error(std::u16string_view name, bool wildcards) {
    if (name.empty() || name.size() > longest_name || name == u"." || name == u"..")
        return ERROR_INVALID_NAME;
    for (const char16_t c : name) {
        if (c < u' ' || std::u16string_view(u"<>\"|/").find(c) != std::u16string_view::npos)
            return ERROR_INVALID_NAME;
        if ((c == u'*' || c == u'?') && !wildcards)
            return ERROR_INVALID_NAME;
        if (c == u':')
            refuse(name, "a stream of a file");
    }
    if (is_device(name))
        refuse(name, "a device's name");
    return 0;
}

// Splits the path; the names haven't been looked at.
PlainPath parse(std::u16string_view path, bool pattern) {
    PlainPath plain;
    const bool unparsed = path.starts_with(unparsed_prefix);
    if (unparsed)
        path.remove_prefix(unparsed_prefix.size());
    if (path.empty() || (unparsed && !starts_with_drive_root(path))) {
        plain.error = ERROR_PATH_NOT_FOUND;
        return plain;
    }
    if (!unparsed && path.size() >= 2 && is_separator(path[0]) && is_separator(path[1])) {
        if (path.size() >= 3 && (path[2] == u'.' || path[2] == u'?'))
            refuse(path, "a device's name");
        plain.error = ERROR_BAD_NETPATH; // the machine is in no network of shared folders
        return plain;
    }
    plain.folder_wanted = is_separator(path.back());
    const std::u16string whole = unparsed ? std::u16string(path) : absolute(path);
    plain.drive = capital(whole[0]);
    const std::u16string_view rest = std::u16string_view(whole).substr(2);
    if (!unparsed) {
        fold(plain, rest, pattern);
    } else if (rest != u"\\") {
        plain.names = split(rest.substr(1), false);
        if (plain.folder_wanted)
            plain.names.pop_back();
    }
    return plain;
}

} // namespace

std::u16string PlainPath::text() const {
    std::u16string out{drive, u':'};
    for (const std::u16string& name : names)
        out += u'\\' + name;
    return names.empty() ? out + u'\\' : out;
}

PlainPath plain_path(const char16_t* path, bool pattern, std::size_t limit) {
    const std::u16string_view given = path == nullptr ? std::u16string_view() : path;
    PlainPath plain = parse(given, pattern);
    if (plain.error != 0)
        return plain;
    if (!given.starts_with(unparsed_prefix) && plain.text().size() + (plain.folder_wanted ? 1 : 0) >= limit) {
        plain.error = limit < MAX_PATH ? ERROR_FILENAME_EXCED_RANGE : ERROR_PATH_NOT_FOUND;
        return plain;
    }
    for (std::size_t index = 0; index < plain.names.size() && plain.error == 0; ++index)
        plain.error = name_error(plain.names[index], pattern && index + 1 == plain.names.size());
    return plain;
}

} // namespace platform
