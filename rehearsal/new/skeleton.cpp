// The files of a skeleton. Comments stand only where the setup's readers pass them over: in the INF nowhere
// between what they look for, in media.inf in front of the table alone, in settings.inf and portlynx.inf on
// lines of their own.
#include "machine/little_endian.h"
#include "machine/text.h"
#include "rehearsal/new/languages.h"
#include "rehearsal/new/new_medium.h"
#include "support/text.h"

#include <algorithm>
#include <cctype>

namespace rehearsal::skeleton {
namespace {

constexpr std::size_t longest_name = 64; // of model and driver, in characters

// The driver's files: the setup copies the 32-bit ones by these names, so the package may as well use them.
constexpr const char* driver_files[] = {"zelcore.dll", "zelmodel.dll", "zelmodel.dat", "iconv.dll"};

std::string replace_all(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t place = 0; (place = text.find(from, place)) != std::string::npos; place += to.size())
        text.replace(place, from.size(), to);
    return text;
}

std::string with_line_ends(const std::string& text) {
    return replace_all(text, "\n", "\r\n");
}

// "Label 300" -> "Label_300": the install section, and what printers answer with.
std::string section_name(const std::string& model) {
    return replace_all(model, " ", "_");
}

// "Label 300" -> "label300": file names and the hardware's identifier.
std::string short_name(const std::string& model) {
    std::string name;
    for (const char c : model)
        if (std::isalnum(static_cast<unsigned char>(c)) != 0)
            name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return name;
}

std::string wide_file(const std::u16string& text) {
    std::u16string lines;
    for (const char16_t c : text)
        lines += c == u'\n' ? std::u16string(u"\r\n") : std::u16string(1, c);
    return platform::utf16_file(lines);
}

constexpr char inf_form[] = R"(; Driver package of the @model@ series, 32-bit and 64-bit systems.
; The setup reads this file by itself, and more strictly than the system: it goes down the file once and takes each
; thing where it finds it, blanks and letters exactly as they stand here, all within the first 4,095 bytes. So keep the
; order, write the driver's name out, in quotes, and put comments up here alone.
; The first name of a model line is the driver's, the second the install section further down and what printers answer
; with, the others are what a printer reports by itself; without USB take usbprint\@short@ out of both lines.

[Version]
Signature="$Windows NT$"
Class=Printer
ClassGUID={4D36E979-E325-11CE-BFC1-08002BE10318}
Provider=%Maker%
CatalogFile=@short@.cat
DriverVer=@date@,1.0.0.0

[Manufacturer]
%Maker%=Printer_Models,NTx86,NTamd64

[Printer_Models.NTx86]
"@driver@" = @section@, usbprint\@short@, @short@

[Printer_Models.NTamd64]
"@driver@" = @section@, usbprint\@short@, @short@

[@section@]
CopyFiles=Driver_Files
DriverFile=zelcore.dll
ConfigFile=zelmodel.dll
DataFile=zelmodel.dat
DefaultDataType=RAW

[Driver_Files]
zelcore.dll
zelmodel.dll
zelmodel.dat
iconv.dll

[DestinationDirs]
DefaultDestDir=66000

[SourceDisksNames.x86]
1=%Disk%,,,32-bit

[SourceDisksNames.amd64]
1=%Disk%,,,64-bit

[SourceDisksFiles]
zelcore.dll=1
zelmodel.dll=1
zelmodel.dat=1
iconv.dll=1

[Strings]
Maker="Vorlane"
Disk="@model@ series drivers"
)";

constexpr char media_form[] =
    R"(; Label sizes that a new queue offers: name, width, length, and the unit: 0 millimetres, 1 inches.
; The rows begin right below the header; the first line that isn't a row, even an empty one, ends the table.
; Names have at most 63 bytes, numbers 7 with a point; the whole file is read as far as byte 4,095.

[Media]
"Label 100x50","100.0","50.0",0
"Label 4x6","4.00","6.00",1
)";

constexpr char settings_form[] =
    R"(; The language of the setup follows the system as long as no language is chosen here. To choose one, take the
; semicolon away from one line: no blanks anywhere, capitals, one of ENU, ENG (United Kingdom), FRA, DEU, CH, ES, JPN.

[UI]
;Language=ENU
)";

constexpr char port_tool_form[] = R"([Portlynx]
Name=@model@ printers on the network
Port=9100
)";

constexpr char profile_form[] = R"(Print profile: fine print
speed=50
darkness=12
)";

std::string fill(const char* form, const NewOptions& options, const std::string& date) {
    std::string text = form;
    text = replace_all(text, "@model@", options.model);
    text = replace_all(text, "@driver@", options.driver);
    text = replace_all(text, "@section@", section_name(options.model));
    text = replace_all(text, "@short@", short_name(options.model));
    return with_line_ends(replace_all(text, "@date@", date));
}

std::vector<const SkeletonLanguage*> chosen_languages(const NewOptions& options) {
    std::vector<const SkeletonLanguage*> chosen;
    for (const SkeletonLanguage& language : skeleton_languages()) {
        const bool asked = std::find(options.languages.begin(), options.languages.end(), language.code) !=
                           options.languages.end();
        // license.txt is what the others fall back on.
        if (options.languages.empty() || asked || &language == skeleton_languages().data())
            chosen.push_back(&language);
    }
    return chosen;
}

std::string profile_names(const NewOptions& options) {
    std::u16string text;
    for (const SkeletonLanguage* language : chosen_languages(options))
        text += u"[" + std::u16string(language->own_name) + u"]\n" +
                platform::to_utf16(short_name(options.model)) + u"_fine=" + language->profile_name + u"\n";
    return wide_file(text);
}

std::string refuse_name(const std::string& name, const std::string& what) {
    if (name.empty() || name.size() > longest_name)
        return what + " has 1 to " + std::to_string(longest_name) + " characters";
    for (const char c : name)
        if (c < ' ' || c > '~' || std::string_view("%\",=;[]").find(c) != std::string_view::npos)
            return what + " is put into the INF, so it has letters of English, digits, blanks and none of % "
                          "\" , = ; [ ]";
    if (!is_plain_name(platform::to_utf16(name).c_str()))
        return what + " names folders and files, so it has none of \\ / : * ? < > | and no blank or point at "
                      "its end";
    if (name.front() == ' ' || name.find("  ") != std::string::npos)
        return what + " has no blank at its beginning and no two in a row";
    return "";
}

} // namespace

std::string refuse_names(const NewOptions& options) {
    for (const std::string& reason :
         {refuse_name(options.model, "the model"), refuse_name(options.driver, "the driver's name")})
        if (!reason.empty())
            return reason;
    if (options.model.find('_') != std::string::npos)
        return "the model has no underscores: the setup shows them as blanks";
    if (short_name(options.model).empty())
        return "the model has at least one letter or digit";
    for (const std::string& code : options.languages)
        if (find_language(code) == nullptr)
            return code + " is no language of the setup: ENU, ENG, FRA, DEU, CH, ES, JPN";
    return "";
}

std::vector<SkeletonFile> skeleton_files(const NewOptions& options, const std::string& date) {
    std::vector<SkeletonFile> files = {
        {"Drivers/" + short_name(options.model) + ".inf", fill(inf_form, options, date)},
        {"wrenchbay/media.inf", fill(media_form, options, date)},
        {"wrenchbay/settings.inf", fill(settings_form, options, date)},
        {"wrenchbay/portlynx.inf", fill(port_tool_form, options, date)},
        {"wrenchbay/profilenames.inf", profile_names(options)},
        {"profiles/" + short_name(options.model) + "_fine.tkp", fill(profile_form, options, date)},
    };
    for (const SkeletonLanguage* language : chosen_languages(options))
        files.push_back({std::string("licenses/") + language->terms_file,
                         wide_file(std::u16string(language->terms) + u"\n")});
    return files;
}

std::vector<Missing> missing_files(const NewOptions& options) {
    const std::string catalogue = "Drivers/" + short_name(options.model) + ".cat";
    std::vector<Missing> missing = {
        {"trk_setup.exe",
         "the setup program for 32 bits, with the one below from this project's dist folder"},
        {"trk_setup64.exe", "its sibling, to which it hands over on 64-bit systems"},
        {catalogue,
         "the signature catalogue of the driver package, made when all else below Drivers is final"},
    };
    for (const char* folder : {"Drivers/32-bit/", "Drivers/64-bit/"})
        for (const char* file : driver_files)
            missing.push_back({std::string(folder) + file,
                               folder[8] == '3'
                                   ? "a file of the driver, for 32 bits; copied beside the tools too"
                                   : "a file of the driver, for 64 bits"});
    for (const char* file : {"trk_remove.exe", "trk_remove64.exe"})
        missing.push_back({std::string("wrenchbay/") + file, "the remover"});
    missing.push_back({"wrenchbay/wrenchbay.exe", "the tools for the printers"});
    missing.push_back({"wrenchbay/portlynx.exe", "the port tool"});
    return missing;
}

std::vector<Missing> texts_to_replace(const NewOptions& options) {
    std::vector<Missing> texts = {
        {"wrenchbay/media.inf", "two example rows: the label sizes of the series"},
        {"profiles/" + short_name(options.model) + "_fine.tkp",
         "an example: the print profiles of the series"},
        {"wrenchbay/profilenames.inf", "an example: the profiles' names in each language"},
    };
    for (const SkeletonLanguage* language : chosen_languages(options))
        texts.push_back({std::string("licenses/") + language->terms_file,
                         std::string("a placeholder: the agreement, ") + language->name});
    return texts;
}

} // namespace rehearsal::skeleton
