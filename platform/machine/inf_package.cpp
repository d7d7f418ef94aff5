#include "machine/inf_package.h"

#include "machine/text.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

namespace platform {
namespace {

constexpr std::u16string_view printer_class_id = u"{4D36E979-E325-11CE-BFC1-08002BE10318}";
constexpr std::size_t disk_cabinet = 1, disk_path = 3; // fields of [SourceDisksNames], from 0

// The driver files that the system's own lists have; a package may name them without bringing them.
constexpr std::u16string_view system_files[] = {
    u"mxdwdrv.dll",  u"p6disp.gpd",   u"pclxl.dll",    u"pclxl.gpd",    u"pjl.gpd",     u"plotter.dll",
    u"plotter.hlp",  u"plotui.dll",   u"ps5ui.dll",    u"pscript.hlp",  u"pscript.ntf", u"pscript5.dll",
    u"stddtype.gdl", u"stdnames.gpd", u"stdschem.gdl", u"stdschmx.gdl", u"ttfsub.gpd",  u"unidrv.dll",
    u"unidrv.hlp",   u"unidrvui.dll", u"unires.dll",   u"xpssvcs.dll",
};

bool is_system_file(std::u16string_view name) {
    return std::any_of(std::begin(system_files), std::end(system_files),
                       [name](std::u16string_view known) { return same_name(known, name); });
}

std::u16string_view platform_of(std::u16string_view environment) {
    if (same_name(environment, u"Windows NT x86"))
        return u"x86";
    if (same_name(environment, u"Windows ARM64"))
        return u"arm64";
    return u"amd64";
}

// "w.x.y.z" behind the date; what is missing is 0.
std::uint64_t parse_version(std::u16string_view text) {
    std::uint64_t version = 0;
    for (int field = 0; field < 4; ++field) {
        const std::size_t end = std::min(text.find(u'.'), text.size());
        std::uint32_t number = 0;
        for (const char16_t digit : text.substr(0, end)) {
            if (digit >= u'0' && digit <= u'9')
                number = number * 10 + (digit - u'0');
        }
        version = (version << 16) | (number & 0xFFFF);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return version;
}

std::u16string field(const InfLine* line, std::size_t index) {
    return line != nullptr && index < line->values.size() ? line->values[index].text : std::u16string();
}

// Folders and a name as one path, without the blanks and separators at their ends.
std::u16string joined_path(std::initializer_list<std::u16string_view> parts) {
    std::u16string path;
    for (std::u16string_view part : parts) {
        while (part.starts_with(u'\\') || part.starts_with(u".\\"))
            part.remove_prefix(1);
        while (part.ends_with(u'\\'))
            part.remove_suffix(1);
        if (!part.empty() && part != u".")
            path.append(path.empty() ? u"" : u"\\").append(part);
    }
    return path;
}

// `name.dll` compressed is `name.dl_`: the third letter of the extension, or one more, is an underscore.
std::u16string compressed_name(std::u16string path) {
    const std::size_t name = path.rfind(u'\\') + 1;
    const std::size_t dot = path.find_last_of(u'.');
    if (dot == path.npos || dot < name)
        return path + u"._";
    if (path.size() - dot > 3)
        path.resize(path.size() - 1);
    return path + u"_";
}

class PackageReader {
public:
    PackageReader(const InfText& inf, std::u16string_view platform, const InfSystem& system,
                  InfPackage& package)
        : inf_(inf), platform_(platform), system_(system), package_(package) {}

    std::uint32_t read() {
        if (const std::uint32_t error = read_version(); error != 0)
            return error;
        if (const std::uint32_t error = read_models(); error != 0)
            return error;
        for (PackageModel& model : package_.models) {
            if (const std::uint32_t error = read_install_section(model); error != 0)
                return error;
        }
        return 0;
    }

private:
    std::uint32_t read_version();
    void read_catalog();
    std::uint32_t read_models();
    std::uint32_t read_models_section(std::u16string_view name, TextPlace place);
    std::uint32_t read_install_section(PackageModel& model);
    std::uint32_t read_copy_lists(const InfSection& section);
    std::uint32_t read_copy_list(const InfValue& list);
    std::uint32_t read_data_files(std::u16string_view section);
    std::uint32_t add_copied(std::u16string_view file, TextPlace place);
    std::uint32_t add_listed(std::u16string_view file, TextPlace place, const InfLine& entry);
    const InfLine* source_line(std::u16string_view section, std::u16string_view key) const;
    void add_file(PackageFile file);
    std::uint32_t refuse(std::uint32_t code, TextPlace place, std::string reason);

    const InfText& inf_;
    std::u16string_view platform_;
    const InfSystem& system_;
    InfPackage& package_;
    bool system_lists_ = false; // the INF refers to lists of files that come with the system
    std::unordered_set<std::u16string> read_lists_; // install sections and copy lists, in upper case
    std::unordered_map<std::u16string, std::size_t> file_index_; // paths in upper case
};

std::uint32_t PackageReader::refuse(std::uint32_t code, TextPlace place, std::string reason) {
    package_.fault = {code, place, std::move(reason)};
    return code;
}

std::uint32_t PackageReader::read_version() {
    const InfSection* section = inf_.section(u"Version");
    const TextPlace place = section != nullptr ? section->place : TextPlace{};
    const std::u16string signature = inf_.value(u"Version", u"Signature");
    if (!same_name(signature, u"$Windows NT$") && !same_name(signature, u"$Chicago$"))
        return refuse(inf_error::wrong_style, place, "no [Version] with a Signature that is known");
    if (!same_name(inf_.value(u"Version", u"Class"), u"Printer") &&
        !same_name(inf_.value(u"Version", u"ClassGuid"), printer_class_id))
        return refuse(inf_error::class_mismatch, place, "the Class in [Version] isn't Printer");
    const InfLine* driver_version = inf_.line(u"Version", u"DriverVer");
    if (driver_version == nullptr)
        return refuse(inf_error::line_not_found, place, "no DriverVer in [Version]");
    package_.version = parse_version(field(driver_version, 1));
    system_lists_ = inf_.line(u"Version", u"LayoutFile") != nullptr;
    read_catalog();
    return 0;
}

// The platform's own catalogue goes before the one for all.
void PackageReader::read_catalog() {
    const std::u16string own = u"CatalogFile.NT" + std::u16string(platform_);
    for (const std::u16string_view key : {std::u16string_view(own), std::u16string_view(u"CatalogFile.NT"),
                                          std::u16string_view(u"CatalogFile")}) {
        const InfLine* catalog = inf_.line(u"Version", key);
        if (catalog == nullptr || catalog->values.front().text.empty())
            continue;
        add_file({catalog->values.front().text, false, catalog->values.front().place, {}, true});
        return;
    }
}

std::uint32_t PackageReader::read_models() {
    const InfSection* makers = inf_.section(u"Manufacturer");
    if (makers == nullptr)
        return refuse(inf_error::section_not_found, {}, "no section [Manufacturer]");
    for (const InfLine& maker : makers->lines) {
        const InfValue& name = maker.values.front();
        const InfValue* target = closest_target(maker, platform_, system_);
        std::uint32_t error = 0;
        if (target != nullptr)
            error = read_models_section(name.text + u"." + target->text, target->place);
        else if (platform_ == u"x86" && (maker.values.size() == 1 || inf_.section(name.text) != nullptr))
            error = read_models_section(name.text, name.place);
        if (error != 0)
            return error;
    }
    return 0;
}

std::uint32_t PackageReader::read_models_section(std::u16string_view name, TextPlace place) {
    const InfSection* models = inf_.section(name);
    if (models == nullptr)
        return refuse(inf_error::section_not_found, place, "no section [" + to_utf8(name) + "]");
    for (const InfLine& line : models->lines) {
        if (!line.key.empty())
            package_.models.push_back(
                {line.key, field(&line, 0), field(&line, 1), line.place, line.values[0].place});
    }
    return 0;
}

// The install section for this platform, the one for all, or the plain one, in this order.
std::uint32_t PackageReader::read_install_section(PackageModel& model) {
    const std::u16string& base = model.install_section;
    const std::array<std::u16string, 3> names = {base + u".NT" + std::u16string(platform_), base + u".NT",
                                                 base};
    const auto name = std::find_if(names.begin(), names.end(), [this](const auto& candidate) {
        return inf_.section(candidate) != nullptr;
    });
    if (name == names.end())
        return refuse(inf_error::section_not_found, model.section_place,
                      "no section [" + to_utf8(base) + "]");
    model.actual_section = *name;
    const InfLine* driver_version = inf_.line(*name, u"DriverVer");
    model.version = driver_version != nullptr ? parse_version(field(driver_version, 1)) : package_.version;
    if (!read_lists_.insert(upper_case(*name)).second)
        return 0;
    if (inf_.line(*name, u"Include") != nullptr)
        system_lists_ = true;
    if (const std::uint32_t error = read_copy_lists(*inf_.section(*name)); error != 0)
        return error;
    if (const std::uint32_t error = read_data_files(*name); error != 0)
        return error;
    const std::u16string data_section = inf_.value(*name, u"DataSection");
    return data_section.empty() ? 0 : read_data_files(data_section);
}

std::uint32_t PackageReader::read_copy_lists(const InfSection& section) {
    for (const InfLine& line : section.lines) {
        if (!same_name(line.key, u"CopyFiles"))
            continue;
        for (const InfValue& list : line.values) {
            const std::uint32_t error = list.text.empty() ? 0 : read_copy_list(list);
            if (error != 0)
                return error;
        }
    }
    return 0;
}

// Either "@file" or a section of files, each "destination[, source]".
std::uint32_t PackageReader::read_copy_list(const InfValue& list) {
    if (list.text.starts_with(u'@'))
        return add_copied(std::u16string_view(list.text).substr(1), list.place);
    const InfSection* files = inf_.section(list.text);
    if (files == nullptr)
        return refuse(inf_error::section_not_found, list.place,
                      "no section [" + to_utf8(list.text) + "], which CopyFiles names");
    if (!read_lists_.insert(u"CopyFiles " + upper_case(list.text)).second)
        return 0;
    for (const InfLine& line : files->lines) {
        const bool renamed = !field(&line, 1).empty();
        const InfValue& source = line.values[renamed ? 1 : 0];
        const std::uint32_t error = source.text.empty() ? 0 : add_copied(source.text, source.place);
        if (error != 0)
            return error;
    }
    return 0;
}

// What the driver's parts are called. They are copied by the lists above, or belong to the system's own
// driver.
std::uint32_t PackageReader::read_data_files(std::u16string_view section) {
    for (const std::u16string_view key : {u"DriverFile", u"ConfigFile", u"DataFile", u"HelpFile"}) {
        const InfLine* line = inf_.line(section, key);
        if (line == nullptr || line->values.front().text.empty())
            continue;
        const InfValue& file = line->values.front();
        const InfLine* entry = source_line(u"SourceDisksFiles", file.text);
        if (entry == nullptr)
            add_file({file.text, true, file.place, {}});
        else if (const std::uint32_t error = add_listed(file.text, file.place, *entry); error != 0)
            return error;
    }
    return 0;
}

const InfLine* PackageReader::source_line(std::u16string_view section, std::u16string_view key) const {
    const InfLine* line = inf_.line(std::u16string(section) + u"." + std::u16string(platform_), key);
    return line != nullptr ? line : inf_.line(section, key);
}

std::uint32_t PackageReader::add_copied(std::u16string_view file, TextPlace place) {
    if (const InfLine* entry = source_line(u"SourceDisksFiles", file); entry != nullptr)
        return add_listed(file, place, *entry);
    if (!system_lists_ || !is_system_file(file))
        return refuse(inf_error::line_not_found, place, "no " + to_utf8(file) + " in [SourceDisksFiles]");
    add_file({std::u16string(file), true, place, {}});
    return 0;
}

// Where [SourceDisksFiles] and [SourceDisksNames] put a file: the disk's path and the file's own folder in
// it. A disk's second field may be a cabinet, there or beside the INF.
std::uint32_t PackageReader::add_listed(std::u16string_view file, TextPlace place, const InfLine& entry) {
    const InfLine* disk = source_line(u"SourceDisksNames", entry.values.front().text);
    if (disk == nullptr)
        return refuse(inf_error::line_not_found, entry.values.front().place,
                      "no disk " + to_utf8(entry.values.front().text) + " in [SourceDisksNames]");
    const std::u16string folder = field(disk, disk_path);
    const std::u16string path = joined_path({folder, field(&entry, 1), file});
    std::vector<std::u16string> stand_ins = {compressed_name(path)};
    const std::u16string cabinet = field(disk, disk_cabinet);
    if (upper_case(cabinet).ends_with(u".CAB")) {
        stand_ins.push_back(joined_path({folder, cabinet}));
        stand_ins.push_back(joined_path({cabinet}));
    }
    add_file({path, false, place, std::move(stand_ins)});
    return 0;
}

void PackageReader::add_file(PackageFile file) {
    const auto [known, added] = file_index_.try_emplace(upper_case(file.path), package_.files.size());
    if (added)
        package_.files.push_back(std::move(file));
    else
        package_.files[known->second].optional = package_.files[known->second].optional && file.optional;
}

} // namespace

std::uint32_t read_inf_package(std::u16string_view text, std::u16string_view environment, InfPackage& package,
                               const InfSystem& system) {
    package = {};
    InfText inf;
    if (!inf.parse(text)) {
        package.fault = inf.fault();
        return package.fault.code;
    }
    return PackageReader(inf, platform_of(environment), system, package).read();
}

} // namespace platform
