#include "machine/inf_package.h"

#include "machine/inf_text.h"
#include "machine/text.h"

#include <algorithm>
#include <array>

namespace platform {
namespace {

constexpr std::u16string_view printer_class_id = u"{4D36E979-E325-11CE-BFC1-08002BE10318}";

bool begins_with(std::u16string_view text, std::u16string_view beginning) {
    return text.size() >= beginning.size() && same_name(text.substr(0, beginning.size()), beginning);
}

std::u16string_view platform_of(std::u16string_view environment) {
    if (same_name(environment, u"Windows NT x86"))
        return u"x86";
    if (same_name(environment, u"Windows ARM64"))
        return u"arm64";
    return u"amd64";
}

// Whether a target such as "NTamd64.6.1" is for the platform. Without a processor it means x86.
bool target_fits(std::u16string_view target, std::u16string_view platform) {
    if (!begins_with(target, u"NT"))
        return false;
    const std::u16string_view processor = target.substr(2, target.find(u'.') - 2);
    return same_name(processor, platform) || (processor.empty() && platform == u"x86");
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

class PackageReader {
public:
    PackageReader(const InfText& inf, std::u16string_view platform, InfPackage& package)
        : inf_(inf), platform_(platform), package_(package) {}

    std::uint32_t read() {
        if (const std::uint32_t error = read_version(); error != 0)
            return error;
        if (const std::uint32_t error = read_models(); error != 0)
            return error;
        for (const PackageModel& model : package_.models) {
            if (const std::uint32_t error = read_install_section(model); error != 0)
                return error;
        }
        return 0;
    }

private:
    std::uint32_t read_version();
    std::uint32_t read_models();
    std::uint32_t read_models_section(std::u16string_view name, TextPlace place);
    std::uint32_t read_install_section(const PackageModel& model);
    void read_copy_list(const InfValue& list);
    void read_data_files(std::u16string_view section);
    const InfLine* source_line(std::u16string_view section, std::u16string_view key) const;
    void add_source(std::u16string_view file, TextPlace place, bool part_of_driver);
    void add_file(std::u16string path, TextPlace place, bool optional);
    std::uint32_t refuse(std::uint32_t code, TextPlace place, std::string reason);

    const InfText& inf_;
    std::u16string_view platform_;
    InfPackage& package_;
    bool system_files_ = false; // files that the package doesn't list may come with the system
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
    if (driver_version->values.size() > 1)
        package_.version = parse_version(driver_version->values[1].text);
    system_files_ = inf_.line(u"Version", u"LayoutFile") != nullptr;
    for (const std::u16string key : {u"CatalogFile", u"CatalogFile.NT"}) {
        const InfLine* catalog = inf_.line(u"Version", key);
        if (catalog != nullptr && !catalog->values.front().text.empty())
            add_file(catalog->values.front().text, catalog->values.front().place, false);
    }
    return 0;
}

std::uint32_t PackageReader::read_models() {
    const InfSection* makers = inf_.section(u"Manufacturer");
    if (makers == nullptr)
        return refuse(inf_error::section_not_found, {}, "no section [Manufacturer]");
    for (const InfLine& maker : makers->lines) {
        const std::u16string& name = maker.values.front().text;
        if (maker.values.size() == 1) {
            if (const std::uint32_t error = read_models_section(name, maker.values.front().place); error != 0)
                return error;
        }
        for (std::size_t i = 1; i < maker.values.size(); ++i) {
            if (!target_fits(maker.values[i].text, platform_))
                continue;
            if (const std::uint32_t error =
                    read_models_section(name + u"." + maker.values[i].text, maker.values[i].place);
                error != 0)
                return error;
        }
    }
    return 0;
}

std::uint32_t PackageReader::read_models_section(std::u16string_view name, TextPlace place) {
    const InfSection* models = inf_.section(name);
    if (models == nullptr)
        return refuse(inf_error::section_not_found, place, "no section [" + to_utf8(name) + "]");
    for (const InfLine& line : models->lines) {
        if (!line.key.empty())
            package_.models.push_back({line.key, line.values[0].text,
                                       line.values.size() > 1 ? line.values[1].text : u"", line.place,
                                       line.values[0].place});
    }
    return 0;
}

// The install section for this platform, the one for all, or the plain one, in this order.
std::uint32_t PackageReader::read_install_section(const PackageModel& model) {
    const std::u16string& base = model.install_section;
    const std::array<std::u16string, 3> names = {base + u".NT" + std::u16string(platform_), base + u".NT",
                                                 base};
    const auto place = std::find_if(names.begin(), names.end(), [this](const auto& candidate) {
        return inf_.section(candidate) != nullptr;
    });
    if (place == names.end())
        return refuse(inf_error::section_not_found, model.section_place,
                      "no section [" + to_utf8(base) + "]");
    if (inf_.line(*place, u"Include") != nullptr)
        system_files_ = true;
    for (const InfLine& line : inf_.section(*place)->lines) {
        if (!same_name(line.key, u"CopyFiles"))
            continue;
        for (const InfValue& list : line.values)
            read_copy_list(list);
    }
    read_data_files(*place);
    if (const std::u16string data_section = inf_.value(*place, u"DataSection"); !data_section.empty())
        read_data_files(data_section);
    return 0;
}

// Either "@file" or a section of files, each "destination[, source]".
void PackageReader::read_copy_list(const InfValue& list) {
    if (list.text.starts_with(u'@')) {
        add_source(std::u16string_view(list.text).substr(1), list.place, true);
        return;
    }
    const InfSection* files = inf_.section(list.text);
    if (files == nullptr)
        return;
    for (const InfLine& line : files->lines) {
        const bool renamed = line.values.size() > 1 && !line.values[1].text.empty();
        const InfValue& source = line.values[renamed ? 1 : 0];
        add_source(source.text, source.place, true);
    }
}

// What the driver's parts are called. They are copied by the lists above, or belong to the system's own
// driver.
void PackageReader::read_data_files(std::u16string_view section) {
    for (const std::u16string_view key : {u"DriverFile", u"ConfigFile", u"DataFile", u"HelpFile"}) {
        const InfLine* line = inf_.line(section, key);
        if (line != nullptr && !line->values.front().text.empty())
            add_source(line->values.front().text, line->values.front().place, false);
    }
}

const InfLine* PackageReader::source_line(std::u16string_view section, std::u16string_view key) const {
    const InfLine* line = inf_.line(std::u16string(section) + u"." + std::u16string(platform_), key);
    return line != nullptr ? line : inf_.line(section, key);
}

// Where [SourceDisksFiles] and [SourceDisksNames] put a file: the disk's path and the file's own folder in
// it.
void PackageReader::add_source(std::u16string_view file, TextPlace place, bool part_of_driver) {
    const InfLine* entry = source_line(u"SourceDisksFiles", file);
    if (entry == nullptr) {
        add_file(std::u16string(file), place, system_files_ || !part_of_driver);
        return;
    }
    const InfLine* disk = source_line(u"SourceDisksNames", entry->values[0].text);
    std::u16string path;
    for (const std::u16string& part :
         {disk != nullptr && disk->values.size() > 3 ? disk->values[3].text : std::u16string(),
          entry->values.size() > 1 ? entry->values[1].text : std::u16string(), std::u16string(file)}) {
        std::u16string_view plain = part;
        while (plain.starts_with(u'\\') || plain.starts_with(u".\\"))
            plain.remove_prefix(1);
        while (plain.ends_with(u'\\'))
            plain.remove_suffix(1);
        if (!plain.empty())
            path += (path.empty() ? u"" : u"\\") + std::u16string(plain);
    }
    add_file(path, place, false);
}

void PackageReader::add_file(std::u16string path, TextPlace place, bool optional) {
    const auto known = std::find_if(package_.files.begin(), package_.files.end(),
                                    [&](const auto& file) { return same_name(file.path, path); });
    if (known == package_.files.end())
        package_.files.push_back({std::move(path), optional, place});
    else
        known->optional = known->optional && optional;
}

} // namespace

std::uint32_t read_inf_package(std::u16string_view text, std::u16string_view environment,
                               InfPackage& package) {
    InfText inf;
    package = {};
    if (!inf.parse(text)) {
        package.fault = inf.fault();
        return package.fault.code;
    }
    return PackageReader(inf, platform_of(environment), package).read();
}

} // namespace platform
