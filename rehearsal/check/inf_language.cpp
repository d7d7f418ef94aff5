// The INF as the system reads it: what is refused, names that lead nowhere, and what was misspelt.
#include "machine/text.h"
#include "rehearsal/check/inf_rules.h"

#include <algorithm>
#include <array>
#include <set>

namespace rehearsal::check {
namespace {

using platform::InfLine;
using platform::InfSection;
using platform::same_name;
using platform::to_utf8;

constexpr std::string_view fixed_sections[] = {
    "Version",         "Manufacturer", "Strings",        "SourceDisksNames", "SourceDisksFiles",
    "DestinationDirs", "ControlFlags", "ClassInstall32", "DefaultInstall",
};
constexpr std::string_view version_keys[] = {
    "Signature",
    "Class",
    "ClassGuid",
    "Provider",
    "DriverVer",
    "CatalogFile",
    "CatalogFile.NT",
    "CatalogFile.NTx86",
    "CatalogFile.NTamd64",
    "CatalogFile.NTarm64",
    "LayoutFile",
    "DriverPackageType",
    "DriverPackageDisplayName",
    "PnpLockdown",
    "ExtensionId",
};
constexpr std::string_view install_keys[] = {
    "CopyFiles",
    "DriverFile",
    "ConfigFile",
    "DataFile",
    "HelpFile",
    "DataSection",
    "DefaultDataType",
    "LanguageMonitor",
    "PrintProcessor",
    "VendorSetup",
    "Include",
    "Needs",
    "AddReg",
    "DelReg",
    "DelFiles",
    "RenFiles",
    "Retryable",
    "PackageAware",
    "CoreDriverDependencies",
    "DriverCategory",
    "BidiSchemaFile",
    "PortMonitor",
    "PreviousNames",
    "PrinterDriverAttributes",
};
// Their values are names of sections.
constexpr std::u16string_view section_lists[] = {u"CopyFiles", u"DelFiles", u"RenFiles",
                                                 u"AddReg",    u"DelReg",   u"DataSection"};

template<std::size_t N>
bool is_one_of(std::string_view name, const std::string_view (&names)[N]) {
    return std::any_of(std::begin(names), std::end(names),
                       [&](std::string_view known) { return same_text(name, known); });
}

class LanguageCheck {
public:
    LanguageCheck(const DriverInf& inf, Findings& findings) : inf_(inf), findings_(findings) {}

    void check() {
        add_faults();
        if (!inf_.parsed)
            return;
        add_unknown_strings();
        for (const platform::TextPlace& place : inf_.inf.open_quotes())
            add("inf-quote", place, "a quote that isn't closed in its line");
        gather_names();
        for (const InfSection& section : inf_.inf.sections())
            look_at_section(section);
        look_at_arm64();
    }

private:
    void add(const char* id, const platform::TextPlace& place, std::string reason) {
        findings_.add(id, place_in(inf_, place), std::move(reason));
    }
    void add_faults();
    void add_unknown_strings();
    void gather_names();
    void look_at_section(const InfSection& section);
    std::vector<const platform::InfValue*> missing_lists(const InfSection& section) const;
    template<std::size_t N>
    void look_at_keys(const InfSection& section, const std::string_view (&known)[N]);
    void look_at_arm64();
    bool is_named(std::string_view section) const;

    const DriverInf& inf_;
    Findings& findings_;
    std::set<std::string> values_;           // in upper case: everything that may name a section
    std::vector<std::string> wanted_;        // names of sections that there aren't
    std::set<std::string> install_sections_; // in upper case
};

// The same fault comes up for each architecture. Of a file that the setup doesn't take, what is wrong with
// the headers that both readers look for is told by the setup's own account.
void LanguageCheck::add_faults() {
    for (const Environment environment : {x86, amd64}) {
        const platform::InfFault& fault = inf_.packages[environment].fault;
        const bool told = fault.place.line == 0 || fault.code == platform::inf_error::class_mismatch ||
                          fault.code == platform::inf_error::line_not_found;
        if (fault.reason.empty() || (!inf_.setup.accepted && told))
            continue;
        add(inf_.parsed ? "inf-package" : "inf-syntax", fault.place,
            "the system refuses it: " + fault.reason);
    }
}

void LanguageCheck::add_unknown_strings() {
    for (const platform::InfUnknownString& unknown : inf_.inf.unknown_strings())
        add("inf-token", unknown.place, "[Strings] has no " + to_utf8(unknown.name));
}

void LanguageCheck::gather_names() {
    for (const std::string_view name : fixed_sections)
        values_.insert(folded(name));
    for (const InfSection& section : inf_.inf.sections())
        for (const InfLine& line : section.lines)
            for (const platform::InfValue& value : line.values)
                values_.insert(folded(to_utf8(value.text)));
    for (const platform::InfPackage& package : inf_.packages)
        for (const platform::PackageModel& model : package.models) {
            install_sections_.insert(folded(to_utf8(model.install_section)));
            if (inf_.inf.section(model.install_section) == nullptr)
                wanted_.push_back(to_utf8(model.install_section));
        }
    for (const std::string_view name : fixed_sections)
        if (inf_.inf.section(platform::to_utf16(name)) == nullptr)
            wanted_.emplace_back(name);
    for (const InfSection& section : inf_.inf.sections())
        for (const platform::InfValue* const list : missing_lists(section))
            wanted_.push_back(to_utf8(list->text));
}

// Also by its name without a platform or purpose behind points: "Label_100.NTamd64", "Strings.0407".
bool LanguageCheck::is_named(std::string_view section) const {
    for (std::size_t end = section.size(); end != section.npos && end != 0;
         end = section.substr(0, end).rfind('.'))
        if (values_.contains(folded(section.substr(0, end))))
            return true;
    return false;
}

void LanguageCheck::look_at_section(const InfSection& section) {
    const std::string name = to_utf8(section.name);
    const std::string plain = name.substr(0, name.find('.'));
    if (!is_named(name)) {
        const std::vector<std::string_view> candidates(wanted_.begin(), wanted_.end());
        const std::string_view near = nearest(plain, candidates);
        if (!near.empty())
            add("inf-section", section.place,
                "nothing names the section [" + name + "]; was [" + std::string(near) + "] meant?");
    }
    if (same_text(name, "Version"))
        look_at_keys(section, version_keys);
    if (install_sections_.contains(folded(plain)) || install_sections_.contains(folded(name))) {
        look_at_keys(section, install_keys);
        for (const platform::InfValue* const list : missing_lists(section))
            add("inf-list", list->place,
                "the section [" + to_utf8(list->text) + "] is named here, and it isn't there");
    }
}

template<std::size_t N>
void LanguageCheck::look_at_keys(const InfSection& section, const std::string_view (&known)[N]) {
    const std::vector<std::string_view> candidates(std::begin(known), std::end(known));
    for (const InfLine& line : section.lines) {
        const std::string key = to_utf8(line.key);
        if (key.empty() || is_one_of(key, known))
            continue;
        const std::string_view near = nearest(key, candidates);
        if (!near.empty())
            add("inf-key", line.place,
                "the key \"" + key + "\" isn't known; was \"" + std::string(near) + "\" meant?");
    }
}

// The lists that the section's entries name and the file doesn't have.
std::vector<const platform::InfValue*> LanguageCheck::missing_lists(const InfSection& section) const {
    std::vector<const platform::InfValue*> missing;
    for (const InfLine& line : section.lines) {
        if (std::none_of(std::begin(section_lists), std::end(section_lists),
                         [&](std::u16string_view key) { return same_name(key, line.key); }))
            continue;
        for (const platform::InfValue& value : line.values)
            if (!value.text.empty() && !value.text.starts_with(u'@') &&
                inf_.inf.section(value.text) == nullptr)
                missing.push_back(&value);
    }
    return missing;
}

// Not a matter of the setup's own systems, but of an INF that says it is for these too.
void LanguageCheck::look_at_arm64() {
    platform::TextPlace place;
    for (const InfSection& section : inf_.inf.sections()) {
        const std::string name = folded(to_utf8(section.name));
        if (place.line == 0 && name.ends_with(".NTARM64"))
            place = section.place;
        for (const InfLine& line : section.lines)
            for (const platform::InfValue& value : line.values)
                if (same_text(name, "Manufacturer") && folded(to_utf8(value.text)).starts_with("NTARM64"))
                    place = value.place;
    }
    const platform::InfPackage& package = inf_.packages[arm64];
    if (place.line == 0 || (package.fault.reason.empty() && !package.models.empty()))
        return;
    add("inf-arm64", place,
        "the file speaks of arm64, and the system finds no models for it" +
            (package.fault.reason.empty() ? std::string() : ": " + package.fault.reason));
}

} // namespace

void check_inf_language(const DriverInf& inf, Findings& findings) {
    LanguageCheck(inf, findings).check();
}

} // namespace rehearsal::check
