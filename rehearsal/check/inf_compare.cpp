// The two readers beside each other: what the setup will ask the system to install has to be what the system
// finds in the same file.
#include "machine/text.h"
#include "rehearsal/check/inf_lines.h"
#include "rehearsal/check/inf_rules.h"

#include <algorithm>
#include <array>

namespace rehearsal::check {
namespace {

using platform::InfPackage;
using platform::PackageModel;
using platform::same_name;
using platform::to_utf8;

constexpr std::string_view usb_text = "usbprint\\";

// The setup's facts in the text that the system has.
struct SetupNames {
    std::u16string driver;
    std::u16string model;
};

std::string quoted_text(std::u16string_view text) {
    return "\"" + to_utf8(text) + "\"";
}

// What stands in the file at the place, up to the line's end.
std::string_view rest_of_line(std::string_view bytes, platform::TextPlace place) {
    for (std::size_t line = 1; line < place.line; ++line)
        bytes.remove_prefix(std::min(bytes.find('\n'), bytes.size() - 1) + 1);
    return bytes.substr(std::min(place.column - 1, bytes.size()), bytes.find('\n') - (place.column - 1));
}

const PackageModel* model_of_driver(const InfPackage& package, const std::u16string& driver) {
    const auto model = std::find_if(package.models.begin(), package.models.end(), [&](const auto& candidate) {
        return same_name(candidate.driver_name, driver);
    });
    return model == package.models.end() ? nullptr : &*model;
}

class Comparison {
public:
    Comparison(const Medium& medium, const DriverInf& inf, Findings& findings)
        : inf_(inf), findings_(findings),
          bytes_(medium.bytes(*inf.entry)), names_{in_code_page(medium, inf.setup.driver_name, 1252),
                                                   in_code_page(medium, inf.setup.model, 1252)} {}

    bool compare() {
        compare_version();
        for (const Environment environment : {x86, amd64})
            if (inf_.packages[environment].fault.reason.empty())
                compare_models(environment);
        compare_usb();
        return names_agree_;
    }

private:
    void add(const char* id, const platform::TextPlace& place, std::string reason) {
        findings_.add(id, place_in(inf_, place), std::move(reason));
    }
    void compare_version();
    platform::TextPlace place_of_version(const PackageModel* model) const;
    void compare_models(Environment environment);
    std::string token_remark(const PackageModel& model) const;
    void name_missing(const PackageModel& first, Environment environment);
    void look_at_further(const InfPackage& package, const PackageModel& installed);
    void compare_usb();

    const DriverInf& inf_;
    Findings& findings_;
    const std::string& bytes_;
    const SetupNames names_;
    bool names_agree_ = true;
};

void Comparison::compare_version() {
    for (const Environment environment : {x86, amd64}) {
        const InfPackage& package = inf_.packages[environment];
        const PackageModel* const model = model_of_driver(package, names_.driver);
        const std::uint64_t version = model == nullptr ? package.version : model->version;
        if (!package.fault.reason.empty() || version == inf_.setup.version)
            continue;
        add("inf-version", place_of_version(model),
            "the system's version is " + shown_version(version) + ", and the setup reads " +
                shown_version(inf_.setup.version) + " elsewhere");
    }
}

// DriverVer of the model's install section where that has one, else of [Version].
platform::TextPlace Comparison::place_of_version(const PackageModel* model) const {
    const platform::InfLine* line =
        model == nullptr ? nullptr : inf_.inf.line(model->actual_section, u"DriverVer");
    if (line == nullptr)
        line = inf_.inf.line(u"Version", u"DriverVer");
    return line == nullptr ? platform::TextPlace{} : line->place;
}

// Why the name in the model's entry isn't one for the setup.
std::string Comparison::token_remark(const PackageModel& model) const {
    const std::string_view entry = rest_of_line(bytes_, model.place);
    if (entry.starts_with('%'))
        return ": a %token% stands where the setup needs the driver's name itself in quotes";
    return entry.starts_with('"') ? ""
                                  : ": the driver's name stands without the quotes that the setup looks for";
}

// The system has models, but none of the name that the setup will ask for.
void Comparison::name_missing(const PackageModel& first, Environment environment) {
    names_agree_ = false;
    add("inf-driver-name", first.place,
        "the setup takes " + quoted_text(names_.driver) + " for the driver's name, and for " +
            name_of(environment) + " the system has " + quoted_text(first.driver_name) + token_remark(first));
}

void Comparison::compare_models(Environment environment) {
    const InfPackage& package = inf_.packages[environment];
    if (package.models.empty()) {
        const platform::InfSection* const makers = inf_.inf.section(u"Manufacturer");
        const platform::TextPlace place = makers == nullptr       ? platform::TextPlace{}
                                          : makers->lines.empty() ? makers->place
                                                                  : makers->lines.front().place;
        return add("inf-architecture", place,
                   std::string("no models for ") + name_of(environment) +
                       ": the manufacturer's entry leads to none" +
                       (environment == x86 ? "" : "; a models section without a platform stands for x86"));
    }
    const PackageModel* const model = model_of_driver(package, names_.driver);
    if (model == nullptr)
        return name_missing(package.models.front(), environment);
    if (model->install_section != names_.model) {
        names_agree_ = false;
        add("inf-model", model->section_place,
            "the setup takes " + quoted_text(names_.model) + " for the model, and for " +
                name_of(environment) + " the system installs " + quoted_text(model->install_section) +
                token_remark(*model));
    }
    look_at_further(package, *model);
}

void Comparison::look_at_further(const InfPackage& package, const PackageModel& installed) {
    for (const PackageModel& model : package.models) {
        if (same_name(model.driver_name, installed.driver_name) &&
            same_name(model.install_section, installed.install_section))
            continue;
        add("inf-further-model", model.place,
            quoted_text(model.driver_name) + " (" + to_utf8(model.install_section) +
                ") is never searched nor installed: the setup takes " + quoted_text(installed.driver_name) +
                " (" + to_utf8(installed.install_section) + ") alone");
    }
}

// USB is offered when "usbprint\" in lower case stands behind the driver's name, of whatever entry.
void Comparison::compare_usb() {
    const auto is_usb = [](const PackageModel& model) {
        return same_name(model.hardware_id.substr(0, usb_text.size()), u"usbprint\\");
    };
    for (const Environment environment : {x86, amd64}) {
        const InfPackage& package = inf_.packages[environment];
        const PackageModel* const model = model_of_driver(package, names_.driver);
        if (model == nullptr || !package.fault.reason.empty() || is_usb(*model) == inf_.setup.has_usb)
            continue;
        if (is_usb(*model))
            add("inf-usb", model->place,
                quoted_text(model->hardware_id) +
                    " isn't found by the setup, which then offers no USB: it looks "
                    "for \"usbprint\\\" in lower case behind the driver's name");
        else
            add("inf-usb-other", model->place,
                "the setup finds \"usbprint\\\" further down and offers USB, but " +
                    quoted_text(model->driver_name) + " has no such hardware id");
        return;
    }
}

} // namespace

bool compare_readers(const Medium& medium, const DriverInf& inf, Findings& findings) {
    return Comparison(medium, inf, findings).compare();
}

} // namespace rehearsal::check
