#include "rehearsal/check/subjects.h"

namespace rehearsal::check {
namespace {

constexpr Rule inf_rules[] = {
    {"inf-missing", Severity::error, "There is no INF where the setup looks for it",
     "The setup searches Drivers\\*.inf below its own folder. Without a file there it ends with \"Unable to "
     "find "
     "driver details!\".",
     "Put the driver package's INF into the folder Drivers.", "Driver/lbl.inf in place of Drivers/lbl.inf"},
    {"inf-folder", Severity::error, "A folder is called like an INF",
     "The setup's search finds it, fails to open it, which its log tells, and goes on with the next one.",
     "Give the folder another name.", "a folder Drivers/old.inf"},
    {"inf-backup", Severity::warning, "A backup is found as an INF",
     "Most volumes of Windows keep a second, short name for a file, with three letters behind the point: a "
     "file "
     "abc.inf_old is also ABC~1.INF, and a search for *.inf delivers it. If it comes first, and its text is "
     "accepted, the setup installs from it.",
     "Keep backups outside of the folder Drivers.", "Drivers/lbl.inf_old"},
    {"inf-backup-taken", Severity::error, "A backup is taken for the INF",
     "A file whose name only begins with .inf behind its point is found by its short name, in front of the "
     "INF "
     "that was meant, and the setup installs the driver that it describes.",
     "Keep backups outside of the folder Drivers.", "Drivers/abc.inf_old in front of Drivers/lbl.inf"},
    {"inf-several", Severity::warning, "Several INFs describe drivers that the setup would take",
     "The first one that the file system delivers is taken: by name on most disks, by the time of copying on "
     "others, such as memory sticks.",
     "Leave one INF of a printer driver in the folder Drivers.", "Drivers/lbl.inf and Drivers/lbl200.inf"},
    {"inf-encoding", Severity::error, "The INF isn't 8-bit text",
     "The setup seeks 8-bit texts in the file. In UTF-16 every second byte is 0, which ends a text, so that "
     "it "
     "finds nothing.",
     "Save the INF as 8-bit text (ANSI).", "a file that an editor saved as \"Unicode\""},
    {"inf-utf8", Severity::warning, "The INF is UTF-8",
     "The system reads INF files in its ANSI code page or as UTF-16, with the mark of UTF-8 too. Letters "
     "beyond ASCII come out as "
     "others.",
     "Save the INF as 8-bit text (ANSI), with ASCII alone.", "a file that begins with the bytes EF BB BF"},
    {"inf-piece", Severity::error, "What the setup looks for lies too far down",
     "The setup reads the INF in pieces of 4,095 bytes. All that it looks for has to lie in one piece, "
     "behind "
     "Class=Printer, and nothing is found across the end of a piece.",
     "Move [Version], [Manufacturer] and the models section to the start of the file, and long comments "
     "behind "
     "them.",
     "5,000 bytes of comment between [Version] and [Manufacturer]"},
    {"inf-class", Severity::error, "The setup doesn't find the class",
     "The first text that the setup seeks is Class=Printer, in exactly this form. Without it the file is no "
     "printer's INF for the setup, which then ends with \"Unable to find driver details!\".",
     "Write Class=Printer, without blanks beside the equals sign.", "Class = Printer"},
    {"inf-driverver", Severity::error, "The setup doesn't find or read DriverVer",
     "Behind Class=Printer the setup seeks DriverVer= and reads seven numbers from it: month, day and year, "
     "and "
     "the version's four parts.",
     "Write DriverVer=month/day/year,a.b.c.d below Class=Printer, without blanks in front of the equals "
     "sign.",
     "DriverVer = 07/26/2024,1.2.3.4"},
    {"inf-manufacturer", Severity::error, "The setup doesn't find the manufacturer",
     "Behind DriverVer= the setup seeks [Manufacturer] and, behind that, the first equals sign, which leads "
     "to "
     "the models.",
     "Write [Manufacturer] below [Version], with an entry that names the models section.", "[Manufacturers]"},
    {"inf-models", Severity::error, "The setup doesn't find the models section",
     "What stands directly behind the equals sign in [Manufacturer], up to the comma, blanks included, is "
     "the "
     "beginning of a section's name, and the setup seeks that section's header further down.",
     "Write the section's name directly behind the equals sign, exactly as in its header, which stands "
     "below.",
     "%Maker% = Label_Models"},
    {"inf-driver-name", Severity::error, "The setup takes another text for the driver's name",
     "The first text in quotes behind the models section's header is the driver's name for the setup, which "
     "later asks the system to install it. If the system knows no driver of that name in the package, the "
     "installation fails.",
     "Write the driver's name in quotes in the models section, not as a %token%, and the same one for each "
     "architecture.",
     "%Label100% = Label_100_Series, usbprint\\label100"},
    {"inf-driver-name-long", Severity::warning, "The driver's name is long",
     "Names of printer drivers beyond 64 characters aren't shown or handled everywhere.",
     "Choose a driver's name of at most 64 characters.",
     "\"Label 100 Driver for printers of the ... series\""},
    {"inf-driver-file-name", Severity::error, "The driver's name can't be part of a file name",
     "The shortcuts in the Start menu are called by the driver's name and their purpose. With a character "
     "that "
     "no file name may have they aren't made.",
     "Leave \\ / : * ? \" < > | and control characters out of the driver's name, and names of devices such "
     "as "
     "LPT1 or CON from its front.",
     "\"Label 100/200 Driver\""},
    {"inf-model", Severity::error, "Model and install section differ",
     "What stands behind the driver's name and its equals sign is the model for the setup, blanks left out: "
     "printers are searched by it on the network, and folder and queue are called by it. For the system it "
     "is "
     "the install section. Where the two differ, a blank or a quote stands in it.",
     "Use the same name without blanks and quotes for the section and the model.",
     "\"Label 100 Driver\" = \"Label_100 Series\", usbprint\\label100"},
    {"inf-model-folder", Severity::error, "The model can't be a folder's name",
     "The install folder and the group in the Start menu are called like the model, with a blank for each "
     "underscore. The installation fails when no folder can have that name.",
     "Leave \\ / : * ? \" < > | out of the model, blanks and points from its end, and names of devices such "
     "as "
     "LPT1 or CON from its front.",
     "Label_100/200"},
    {"inf-further-model", Severity::warning, "A further model is never installed",
     "The setup takes the first model of the first section alone. It searches the network for that one and "
     "installs that one's driver.",
     "Make a distribution folder for each model, or leave the further ones to the system's own dialogs.",
     "a second line in [Label_Models.NTamd64]"},
    {"inf-usb", Severity::error, "The setup doesn't offer USB",
     "USB is offered when the text usbprint\\ stands behind the driver's name, in lower case.",
     "Write usbprint\\ in lower case in the model's line.",
     "\"Label 100 Driver\" = Label_100_Series, USBPRINT\\label100"},
    {"inf-usb-other", Severity::warning, "USB is offered for a driver without it",
     "The setup finds usbprint\\ anywhere behind the driver's name, also in a comment or another model's "
     "line, "
     "and offers USB. A printer that is plugged in then finds no driver.",
     "Give the model its hardware id, or take the text out of the others' lines.", "; usbprint\\label100"},
    {"inf-version", Severity::error, "The two readers find different versions",
     "The setup compares the version that it reads with the installed driver's. If the system reads another "
     "one, "
     "the setup takes the driver for a foreign one at its next start and refuses to go on.",
     "Leave one DriverVer in the file, behind Class=Printer.",
     "; DriverVer=01/01/2020,1.0.0.0 above the entry"},
    {"inf-version-part", Severity::warning, "A part of the version is cut",
     "Each part of a version has 16 bits, so that 65535 is the largest; of a larger one the upper bits are "
     "lost.",
     "Keep each part of the version at 65535 or below.", "DriverVer=07/26/2024,1.2.3.70000"},
    {"inf-date", Severity::warning, "DriverVer has no valid date",
     "The date decides, beside the version, which driver the system prefers, and its signing tools refuse "
     "one "
     "that isn't month/day/year.",
     "Write the date as month/day/year.", "DriverVer=26/07/2024,1.2.3.4"},
    {"inf-date-ahead", Severity::warning, "The date of DriverVer is yet to come",
     "A driver from the future is preferred to all later ones until that day, and the system's signing tools "
     "refuse it.",
     "Write the date of the build.", "DriverVer=07/26/2124,1.2.3.4"},
    {"inf-syntax", Severity::error, "The system can't read the INF",
     "The file breaks the rules of the INF language, such as a bracket or a quote that isn't closed, so that "
     "the "
     "system refuses the whole of it.",
     "Close the bracket or quote, and keep entries in sections.", "[Manufacturer"},
    {"inf-package", Severity::error, "The system refuses the driver package",
     "The INF can be read, but something that a printer's driver package needs isn't in it, so that the "
     "system "
     "doesn't take the package and the installation fails.",
     "Supply what the finding names.",
     "\"Label 100 Driver\" = Label_300_Series without a section of that name"},
    {"inf-architecture", Severity::error, "The INF has no models for an architecture",
     "The setup runs on 32-bit and 64-bit systems, and the system takes models only from the sections of its "
     "own architecture, which the manufacturer's entry has to list.",
     "List NTx86 and NTamd64 in the manufacturer's entry, with a models section for each.",
     "%Maker%=Label_Models,NTx86"},
    {"inf-arm64", Severity::warning, "The INF is for arm64 by halves",
     "A section or an entry says that the package is for arm64, but no models can be read for it.",
     "Complete the models for NTarm64, or take out what speaks of it.",
     "%Maker%=Label_Models,NTx86,NTamd64,NTarm64"},
    {"inf-quote", Severity::warning, "A quote isn't closed",
     "The quote ends with its line, and whatever stands behind it, commas and comments too, belongs to the "
     "value.",
     "Close the quote.", "\"Label 100 Driver = Label_100_Series"},
    {"inf-token", Severity::warning, "A token isn't defined",
     "Text between per cent signs stands for an entry of [Strings]. Without one it stays as it is, and is "
     "shown "
     "to people or taken for a name.",
     "Define the token in [Strings], or write the text itself.", "Provider=%Makr%"},
    {"inf-section", Severity::warning, "A section's name looks misspelt",
     "Nothing in the file names this section, a section of nearly that name is missing, and nobody reads it.",
     "Correct the name, or take the section out.", "[SourceDiskFiles]"},
    {"inf-key", Severity::warning, "A key looks misspelt",
     "The system passes over keys that it doesn't know, without a word.", "Correct the key.",
     "CopyFile=Driver_Files"},
    {"inf-list", Severity::warning, "A list that is named isn't there",
     "An entry of an install section names a section of files or registry values that the file doesn't have, "
     "so "
     "that nothing of it is done.",
     "Write the section, or take its name out of the entry.",
     "CopyFiles=Driver_Files without [Driver_Files]"},
    {"inf-code-page", Severity::warning, "A text depends on the system's code page",
     "Setup and system read 8-bit texts in the code page of the system that they run on. Letters beyond "
     "ASCII "
     "are others on a Chinese or Japanese one; with such letters in its name the driver has another name "
     "there.",
     "Use ASCII alone, above all for the driver's name and the model.", "\"\xC3\x89tiquettes 100\""},
};

} // namespace

std::span<const Rule> rules_of_inf() {
    return inf_rules;
}

} // namespace rehearsal::check
