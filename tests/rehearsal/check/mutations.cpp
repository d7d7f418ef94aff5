#include "rehearsal/check/trial_medium.h"

namespace {

constexpr char inf[] = "Drivers/lbl.inf";
constexpr char tag_inf[] = "Drivers/tag40.inf";

using Change = std::function<void(TrialMedium&)>;

Change swap(const std::string& file, const std::string& from, const std::string& to) {
    return [=](TrialMedium& medium) { medium.replace(file, from, to); };
}
Change swap_last(const std::string& file, const std::string& from, const std::string& to) {
    return [=](TrialMedium& medium) { medium.replace_last(file, from, to); };
}
Change both(const Change& first, const Change& second) {
    return [=](TrialMedium& medium) {
        first(medium);
        second(medium);
    };
}
Change gone(const std::string& file) {
    return [=](TrialMedium& medium) { medium.remove(file); };
}
Change moved(const std::string& from, const std::string& to) {
    return [=](TrialMedium& medium) { medium.rename(from, to); };
}
Change copied(const std::string& from, const std::string& to) {
    return [=](TrialMedium& medium) { medium.copy(from, to); };
}
Change written(const std::string& file, const std::string& bytes) {
    return [=](TrialMedium& medium) { medium.write(file, bytes); };
}
Change in_front(const std::string& file, const std::string& bytes) {
    return [=](TrialMedium& medium) { medium.write(file, bytes + medium.read(file)); };
}
Change made_folder(const std::string& file) {
    return [=](TrialMedium& medium) {
        medium.remove(file);
        medium.write(file + "/file", "x");
    };
}
Change as_utf16(const std::string& file) {
    return [=](TrialMedium& medium) {
        std::string wide = "\xFF\xFE";
        for (const char c : medium.read(file))
            wide.append({c, '\0'});
        medium.write(file, wide);
    };
}

// The headers of a program: enough to tell for which machine it is.
std::string program_for(unsigned machine) {
    std::string bytes(0x80, '\0');
    bytes.replace(0, 2, "MZ");
    bytes[0x3C] = 0x40;
    bytes.replace(0x40, 2, "PE");
    bytes[0x44] = static_cast<char>(machine & 0xFF);
    bytes[0x45] = static_cast<char>(machine >> 8);
    return bytes;
}
constexpr unsigned for_x86 = 0x14C, for_amd64 = 0x8664;

const std::vector<Mutation> class_mutations = {
    {"class with blanks", swap(inf, "Class=Printer", "Class = Printer"), {"Drivers/lbl.inf:5:1 inf-class"}},
    {"class in other case", swap(inf, "Class=Printer", "class=printer"), {"Drivers/lbl.inf:5:1 inf-class"}},
    {"class misspelt",
     swap(inf, "Class=Printer", "Clas=Printer"),
     {"Drivers/lbl.inf:5:1 inf-class", "Drivers/lbl.inf:5:1 inf-key?"}},
    {"no class", swap(inf, "Class=Printer\r\n", ""), {"Drivers/lbl.inf:3:1 inf-class"}},
    {"another class", swap(inf, "Class=Printer", "Class=Display"), {"Drivers/lbl.inf:5:1 inf-class"}},
    {"class in a comment alone", swap(inf, "Class=Printer", "; Class=Printer\r\nClass = Printer"), {}},
    {"class across a piece's end",
     in_front(inf, ";" + std::string(3978, 'x') + "\r\n"),
     {"Drivers/lbl.inf:6:1 inf-piece"}},
    {"everything in the second piece", in_front(inf, ";" + std::string(4070, 'x') + "\r\n"), {}},
    {"UTF-16", as_utf16(inf), {"Drivers/lbl.inf:1:1 inf-encoding"}},
    {"UTF-8 with its mark", in_front(inf, "\xEF\xBB\xBF"), {"Drivers/lbl.inf:1:1 inf-utf8?"}},
    {"a byte 0",
     swap(inf, "; Driver package", std::string(";\0Driver", 8)),
     {"Drivers/lbl.inf:1:1 inf-encoding"}},
};

const std::vector<Mutation> version_mutations = {
    {"version with blanks", swap(inf, "DriverVer=", "DriverVer = "), {"Drivers/lbl.inf:9:1 inf-driverver"}},
    {"no version", swap(inf, "DriverVer=07/26/2024,1.2.3.4\r\n", ""), {"Drivers/lbl.inf:3:1 inf-driverver"}},
    {"version misspelt",
     swap(inf, "DriverVer=", "DriverVersion="),
     {"Drivers/lbl.inf:9:1 inf-driverver", "Drivers/lbl.inf:9:1 inf-key?"}},
    {"date alone", swap(inf, ",1.2.3.4", ""), {"Drivers/lbl.inf:9:11 inf-driverver"}},
    {"version of three parts", swap(inf, "1.2.3.4", "1.2.3"), {"Drivers/lbl.inf:9:11 inf-driverver"}},
    {"date with dashes",
     swap(inf, "07/26/2024", "07-26-2024"),
     {"Drivers/lbl.inf:9:11 inf-driverver", "Drivers/lbl.inf:9:11 inf-date?"}},
    {"month 26", swap(inf, "07/26/2024", "26/07/2024"), {"Drivers/lbl.inf:9:11 inf-date?"}},
    {"no such day", swap(inf, "07/26/2024", "02/30/2024"), {"Drivers/lbl.inf:9:11 inf-date?"}},
    {"date to come", swap(inf, "07/26/2024", "07/26/2924"), {"Drivers/lbl.inf:9:11 inf-date-ahead?"}},
    {"part of 17 bits", swap(inf, "1.2.3.4", "1.2.3.70000"), {"Drivers/lbl.inf:9:22 inf-version-part?"}},
    {"version above the class",
     both(swap(inf, "DriverVer=07/26/2024,1.2.3.4\r\n", ""),
          swap(inf, "Class=Printer", "DriverVer=07/26/2024,1.2.3.4\r\nClass=Printer")),
     {"Drivers/lbl.inf:5:1 inf-driverver"}},
    {"another version of the install section",
     swap(inf, "[Label_100_Series]\r\n", "[Label_100_Series]\r\nDriverVer=07/26/2024,1.2.3.5\r\n"),
     {"Drivers/lbl.inf:21:1 inf-version"}},
    {"an older version in a comment",
     swap(inf, "DriverVer=", "; DriverVer=01/01/2020,1.0.0.0\r\nDriverVer="),
     {"Drivers/lbl.inf:10:1 inf-version"}},
};

const std::vector<Mutation> models_mutations = {
    {"manufacturers",
     swap(inf, "[Manufacturer]", "[Manufacturers]"),
     {"Drivers/lbl.inf:11:1 inf-manufacturer", "Drivers/lbl.inf:11:2 inf-section?"}},
    {"manufacturer in other case",
     swap(inf, "[Manufacturer]", "[manufacturer]"),
     {"Drivers/lbl.inf:11:1 inf-manufacturer"}},
    {"manufacturer unclosed",
     swap(inf, "[Manufacturer]", "[Manufacturer"),
     {"Drivers/lbl.inf:11:1 inf-manufacturer", "Drivers/lbl.inf:11:2 inf-syntax"}},
    {"manufacturer far down",
     swap(inf, "[Manufacturer]", ";" + std::string(5000, 'x') + "\r\n[Manufacturer]"),
     {"Drivers/lbl.inf:12:1 inf-piece"}},
    {"blanks in the maker's entry",
     swap(inf, "%Maker%=Label", "%Maker% = Label"),
     {"Drivers/lbl.inf:12:10 inf-models"}},
    {"models misspelt",
     swap(inf, "[Label_Models.", "[Label_Model."),
     {"Drivers/lbl.inf:12:9 inf-models", "Drivers/lbl.inf:12:22 inf-package",
      "Drivers/lbl.inf:12:28 inf-package"}},
    {"models in quotes",
     swap(inf, "=Label_Models,", "=\"Label_Models\","),
     {"Drivers/lbl.inf:12:9 inf-models"}},
    {"a token for the name",
     both(swap(inf, "\"Label 100 Driver\" =", "%Name% ="),
          swap(inf, "Maker=\"", "Name=\"Label 100 Driver\"\r\nMaker=\"")),
     {"Drivers/lbl.inf:15:1 inf-usb", "Drivers/lbl.inf:15:10 inf-model", "Drivers/lbl.inf:18:10 inf-model"}},
    {"a name without quotes",
     swap(inf, "\"Label 100 Driver\" =", "Label 100 Driver ="),
     {"Drivers/lbl.inf:15:1 inf-driver-name", "Drivers/lbl.inf:18:1 inf-driver-name"}},
    {"another name on 64 bits",
     swap_last(inf, "\"Label 100 Driver\"", "\"Label 100 Driver x64\""),
     {"Drivers/lbl.inf:18:1 inf-driver-name"}},
    {"a quote unclosed",
     swap_last(inf, "\"Label 100 Driver\"", "\"Label 100 Driver"),
     {"Drivers/lbl.inf:12:1 inf-architecture", "Drivers/lbl.inf:18:1 inf-quote?"}},
    {"a section in quotes",
     swap(inf, "= Label_100_Series,", "= \"Label_100_Series\","),
     {"Drivers/lbl.inf:15:22 inf-model", "Drivers/lbl.inf:18:22 inf-model"}},
    {"a section missing",
     swap(inf, "[Label_100_Series]", "[Label_100_Serie]"),
     {"Drivers/lbl.inf:15:22 inf-package", "Drivers/lbl.inf:18:22 inf-package",
      "Drivers/lbl.inf:20:2 inf-section?"}},
    {"a second model",
     swap_last(inf, "\"Label 100 Driver\"",
               "\"Label 200 Driver\" = Label_100_Series\r\n\"Label 100 Driver\""),
     {"Drivers/lbl.inf:18:1 inf-further-model?"}},
    {"not for 64 bits", swap(inf, ",NTamd64", ""), {"Drivers/lbl.inf:12:1 inf-architecture"}},
    {"not for 32 bits", swap(inf, ",NTx86", ""), {"Drivers/lbl.inf:12:1 inf-architecture"}},
    {"arm64 by halves", swap(inf, ",NTamd64", ",NTamd64,NTarm64"), {"Drivers/lbl.inf:12:36 inf-arm64?"}},
    {"USB in upper case", swap(inf, "usbprint", "USBPRINT"), {"Drivers/lbl.inf:15:1 inf-usb"}},
};

const std::vector<Mutation> name_mutations = {
    {"a slash in the name",
     swap(inf, "Label 100 Driver", "Label 100/200 Driver"),
     {"Drivers/lbl.inf:15:1 inf-driver-file-name"}},
    {"a long name",
     swap(inf, "Label 100 Driver",
          "Label 100 Driver for all the printers of the series, with its many sizes"),
     {"Drivers/lbl.inf:15:1 inf-driver-name-long?"}},
    {"a slash in the model",
     swap(inf, "Label_100_Series", "Label_100/200"),
     {"Drivers/lbl.inf:15:22 inf-model-folder"}},
    {"letters beyond ASCII",
     swap(inf, "Label 100 Driver", "\xC9tiquettes 100"),
     {"Drivers/lbl.inf:15:1 inf-code-page?"}},
    {"a token undefined",
     swap(inf, "Provider=%Maker%", "Provider=%Makr%"),
     {"Drivers/lbl.inf:7:10 inf-token?"}},
    {"strings misspelt",
     swap(inf, "[Strings]", "[String]"),
     {"Drivers/lbl.inf:7:10 inf-token?", "Drivers/lbl.inf:12:1 inf-token?", "Drivers/lbl.inf:37:3 inf-token?",
      "Drivers/lbl.inf:40:3 inf-token?", "Drivers/lbl.inf:48:2 inf-section?"}},
    {"a signature of no system", swap(inf, "$Windows NT$", "$Windows$"), {"Drivers/lbl.inf:3:2 inf-package"}},
};

const std::vector<Mutation> file_mutations = {
    {"no INF", gone(inf), {"Drivers inf-missing"}},
    {"drivers misspelt",
     moved("Drivers", "Driver"),
     {"Driver inf-missing", "Drivers/32-bit/iconv.dll files-missing",
      "Drivers/32-bit/zelcore.dll files-missing", "Drivers/32-bit/zelmodel.dat files-missing",
      "Drivers/32-bit/zelmodel.dll files-missing"}},
    {"a backup behind", copied(inf, "Drivers/lbl.inf_old"), {"Drivers/lbl.inf_old inf-backup?"}},
    {"a backup in front", copied(inf, "Drivers/abc.inf_old"), {"Drivers/abc.inf_old inf-backup-taken"}},
    {"a second INF",
     both(copied(inf, "Drivers/old.inf"), swap("Drivers/old.inf", "1.2.3.4", "1.2.3.3")),
     {"Drivers/old.inf inf-several?"}},
    {"a folder called like an INF", written("Drivers/abc.inf/x", "x"), {"Drivers/abc.inf inf-folder"}},
    {"no library for 32 bits",
     gone("Drivers/32-bit/iconv.dll"),
     {"Drivers/32-bit/iconv.dll files-missing", "Drivers/lbl.inf:31:1 files-missing"}},
    {"no library in the disk of both systems",
     both(swap(inf, ",,,64-bit", ",,,32-bit"), gone("Drivers/32-bit/iconv.dll")),
     {"Drivers/32-bit/iconv.dll files-missing", "Drivers/lbl.inf:31:1 files-missing"}},
    {"no library for 64 bits", gone("Drivers/64-bit/iconv.dll"), {"Drivers/lbl.inf:31:1 files-missing"}},
    {"no catalogue", gone("Drivers/lbl.cat"), {"Drivers/lbl.inf:8:13 catalogue-missing"}},
    {"a folder for the catalogue", made_folder("Drivers/lbl.cat"), {"Drivers/lbl.cat files-folder"}},
    {"a file in another case",
     moved("Drivers/64-bit/iconv.dll", "Drivers/64-bit/Iconv.dll"),
     {"Drivers/lbl.inf:31:1 files-case?"}},
    {"a tool misspelt",
     moved("wrenchbay/portlynx.exe", "wrenchbay/portlinx.exe"),
     {"wrenchbay/portlynx.exe files-missing"}},
    {"a folder for a tool", made_folder("wrenchbay/portlynx.inf"), {"wrenchbay/portlynx.inf files-folder"}},
    {"a folder for a library",
     made_folder("Drivers/64-bit/zelcore.dll"),
     {"Drivers/64-bit/zelcore.dll files-folder"}},
    {"an empty file",
     written("Drivers/64-bit/zelmodel.dat", ""),
     {"Drivers/64-bit/zelmodel.dat files-empty?"}},
    {"a library for the other machine",
     written("Drivers/32-bit/iconv.dll", program_for(for_amd64)),
     {"Drivers/32-bit/iconv.dll files-machine", "Drivers/32-bit/iconv.dll files-machine"}},
    {"a library that is none",
     written("Drivers/64-bit/iconv.dll", "x"),
     {"Drivers/64-bit/iconv.dll files-program"}},
    {"a right library", written("Drivers/64-bit/iconv.dll", program_for(for_amd64)), {}},
    {"a setup program alone",
     written("trk_setup.exe", program_for(for_x86)),
     {"trk_setup.exe files-sibling"}},
    {"both setup programs, swapped",
     both(written("trk_setup.exe", program_for(for_amd64)), written("trk_setup64.exe", program_for(for_x86))),
     {"trk_setup.exe files-machine", "trk_setup64.exe files-machine"}},
    {"no profiles", gone("profiles"), {" files-no-profiles?"}},
    {"the profiles' folder misspelt", moved("profiles", "profile"), {"profile files-no-profiles?"}},
    {"a profile of another kind",
     moved("profiles/label100.icm", "profiles/label100.icc"),
     {"profiles/label100.icc files-profile-kind?"}},
    {"a colour profile that is none",
     written("profiles/label100.icm", "x"),
     {"profiles/label100.icm files-colour-profile?"}},
    {"two names in two cases",
     written("wrenchbay/Portlynx.exe", "Placeholder for it"),
     {"wrenchbay/portlynx.exe layout-case-twice"}},
    {"no remover", gone("wrenchbay/trk_remove64.exe"), {"wrenchbay/trk_remove64.exe files-missing"}},
    {"no settings", gone("wrenchbay/settings.inf"), {"wrenchbay/settings.inf files-missing"}},
};

constexpr char media[] = "wrenchbay/media.inf";

// The subjects that have tests of their own; here is only whether a rehearsal agrees.
const std::vector<Mutation> content_mutations = {
    {"media misspelt", swap(media, "[Media]", "[Meda]"), {}},
    {"media in other case", swap(media, "[Media]", "[media]"), {}},
    {"a blank line below the header", swap(media, "[Media]\r\n", "[Media]\r\n\r\n"), {}},
    {"a comment between the rows", swap(media, "\"Label 4x6\"", "; inches\r\n\"Label 4x6\""), {}},
    {"a name of 70 characters", swap(media, "Label 4x6", std::string(70, 'L')), {}},
    {"no sizes", written(media, "[Media]\r\n"), {}},
    {"sizes in UTF-16", as_utf16(media), {}},
    {"no agreement", gone("licenses"), {}},
    {"no names of profiles", gone("wrenchbay/profilenames.inf"), {}},
    {"another language", swap("wrenchbay/settings.inf", ";Language=DEU", "Language=DEU"), {}},
};

} // namespace

const std::vector<Mutation>& sample_mutations() {
    static const std::vector<Mutation> all = [] {
        std::vector<Mutation> list;
        for (const auto* const part : {&class_mutations, &version_mutations, &models_mutations,
                                       &name_mutations, &file_mutations, &content_mutations})
            list.insert(list.end(), part->begin(), part->end());
        return list;
    }();
    return all;
}

const std::vector<Mutation>& other_mutations() {
    static const std::vector<Mutation> all = {
        {"class with a blank",
         swap(tag_inf, "Class=Printer", "Class =Printer"),
         {"Drivers/tag40.inf:3:1 inf-class"}},
        {"no class id", swap(tag_inf, "ClassGuid   = {4D36E979-E325-11CE-BFC1-08002BE10318}\n", ""), {}},
        {"version with a blank",
         swap(tag_inf, "DriverVer=", "DriverVer ="),
         {"Drivers/tag40.inf:7:1 inf-driverver"}},
        {"version of five parts", swap(tag_inf, "10.20.30.40", "10.20.30.40.50"), {}},
        {"manufacturer with blanks",
         swap(tag_inf, "[Manufacturer]", "[ Manufacturer ]"),
         {"Drivers/tag40.inf:9:1 inf-manufacturer", "Drivers/tag40.inf:9:2 inf-section?"}},
        {"no manufacturer", swap(tag_inf, "[Manufacturer]\n", ""), {"Drivers/tag40.inf inf-manufacturer"}},
        {"targets in other case", swap(tag_inf, "NTx86,NTamd64", "ntX86,ntAMD64"), {}},
        {"a blank behind the section",
         swap(tag_inf, "=Tags,", "=Tags ,"),
         {"Drivers/tag40.inf:10:11 inf-models"}},
        {"a tab in front of the model",
         swap(tag_inf, "=Tag_40,", "=\tTag_40,"),
         {"Drivers/tag40.inf:13:17 inf-model", "Drivers/tag40.inf:16:17 inf-model"}},
        {"blanks in front of the model", swap(tag_inf, "=Tag_40,", "=   Tag_40,"), {}},
        {"a model's section renamed",
         swap(tag_inf, "[Tag_40]", "[Tag_50]"),
         {"Drivers/tag40.inf:13:16 inf-package", "Drivers/tag40.inf:16:16 inf-package",
          "Drivers/tag40.inf:18:2 inf-section?"}},
        {"a decorated section", swap(tag_inf, "[Tag_40]", "[Tag_40.NT]"), {}},
        {"64 bits of another version of the system",
         both(swap(tag_inf, ",NTamd64", ",NTamd64.6.1"),
              swap(tag_inf, "[Tags.NTamd64]", "[Tags.NTamd64.6.1]")),
         {}},
        {"models without a platform",
         both(swap(tag_inf, "=Tags,NTx86,NTamd64", "=Tags,NTx86"), swap(tag_inf, "[Tags.NTamd64]", "[Tags]")),
         {"Drivers/tag40.inf:10:1 inf-architecture"}},
        {"newer systems excluded by an empty section",
         both(swap(tag_inf, ",NTamd64", ",NTamd64,NTamd64.10.0"),
              swap(tag_inf, "[Tag_40]\n", "[Tags.NTamd64.10.0]\n[Tag_40]\n")),
         {"Drivers/tag40.inf:10:1 inf-architecture"}},
        {"a list misspelt",
         swap(tag_inf, "[Tag_Data]", "[Tag_Date]"),
         {"Drivers/tag40.inf:19:24 inf-package", "Drivers/tag40.inf:19:24 inf-list?",
          "Drivers/tag40.inf:27:2 inf-section?"}},
        {"a data section misspelt",
         swap(tag_inf, "[Tag_Parts]", "[Tag_Part]"),
         {"Drivers/tag40.inf:20:13 inf-list?", "Drivers/tag40.inf:22:2 inf-section?"}},
        {"names of disks missing",
         swap(tag_inf, "[SourceDisksNames.amd64]", "[SourceDisksNames.amd]"),
         {"Drivers/tag40.inf:44:15 inf-package"}},
        {"files of disks misspelt",
         swap(tag_inf, "[SourceDisksFiles.amd64]", "[SourceDisksFile.amd64]"),
         {"Drivers/tag40.inf:19:11 inf-package", "Drivers/tag40.inf:43:2 inf-section?"}},
        {"a file not listed",
         swap_last(tag_inf, "tag40.bin = 6,data\n", ""),
         {"Drivers/tag40.inf:28:11 inf-package"}},
        {"no source of a renamed file",
         gone("Drivers/files/x64/data/tag40.bin"),
         {"Drivers/tag40.inf:28:11 files-missing"}},
        {"no library", gone("Drivers/files/x64/tagcore.dll"), {"Drivers/tag40.inf:19:11 files-missing"}},
        {"a library compressed",
         moved("Drivers/files/x64/tagcore.dll", "Drivers/files/x64/tagcore.dl_"),
         {"Drivers/tag40.inf:19:11 files-packed"}},
        {"a library in its disk's cabinet",
         both(moved("Drivers/files/x86/tagcore.dll", "Drivers/files/x86/tags.cab"),
              swap(tag_inf, "5 = %Disk%,,", "5 = %Disk%,tags.cab,")),
         {"Drivers/tag40.inf:19:11 files-packed"}},
        {"the folder renamed",
         moved("Drivers/files/x64", "Drivers/files/amd64"),
         {"Drivers/tag40.inf:19:11 files-missing", "Drivers/tag40.inf:28:11 files-missing"}},
        {"no catalogue", gone("Drivers/tag40.cat"), {"Drivers/tag40.inf:6:18 catalogue-missing"}},
        {"a catalogue for one system", swap(tag_inf, "CatalogFile.NT =", "CatalogFile.NTamd64 ="), {}},
        {"no strings",
         swap(tag_inf, "[Strings]", "[Strngs]"),
         {"Drivers/tag40.inf:5:15 inf-token?", "Drivers/tag40.inf:10:1 inf-token?",
          "Drivers/tag40.inf:34:5 inf-token?", "Drivers/tag40.inf:37:5 inf-token?",
          "Drivers/tag40.inf:47:2 inf-section?"}},
        {"an entry above all sections",
         in_front(tag_inf, "Signature=\"$Windows NT$\"\n"),
         {"Drivers/tag40.inf:1:1 inf-syntax"}},
        {"a comment above all sections", in_front(tag_inf, "; Orrin\n"), {}},
        {"CR LF line ends", swap(tag_inf, "\n", "\r\n"), {}},
        {"a name ending in a point", swap(tag_inf, "\"Orrin Tag 40\"", "\"Orrin Tag 40.\""), {}},
        {"a star in the name",
         swap(tag_inf, "\"Orrin Tag 40\"", "\"Orrin Tag *\""),
         {"Drivers/tag40.inf:13:1 inf-driver-file-name"}},
        {"a library of the fixed names missing",
         gone("Drivers/32-bit/zelcore.dll"),
         {"Drivers/32-bit/zelcore.dll files-missing"}},
        {"data of the fixed names missing",
         gone("Drivers/32-bit/zelmodel.dat"),
         {"Drivers/32-bit/zelmodel.dat files-missing"}},
    };
    return all;
}
