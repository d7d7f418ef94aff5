#include "rehearsal/check/subjects.h"

namespace rehearsal::check {
namespace {

constexpr Rule files_rules[] = {
    {"files-missing", Severity::error, "A file isn't there",
     "The setup copies files of fixed names, and the system the files that the INF names, from where its "
     "[SourceDisksNames] and [SourceDisksFiles] put them. When one is missing the installation fails.",
     "Put the file where the finding says, or correct the name that asks for it.",
     "zelcore.dll=1 without Drivers/32-bit/zelcore.dll"},
    {"files-packed", Severity::note, "A file lies packed on the medium",
     "The system takes a compressed file or the disk's cabinet in a file's place. What they hold can't be "
     "judged "
     "here.",
     "Look into it by the tool that packed it, or put the file itself there.", "zelcore.dl_ for zelcore.dll"},
    {"files-folder", Severity::error, "A file's name is a folder's",
     "What has to be copied as a file is a folder, so that the copy fails and the installation with it.",
     "Put the file in its place.", "a folder wrenchbay/media.inf"},
    {"files-empty", Severity::warning, "A file is empty",
     "An empty file is copied without a word, and whatever reads it finds nothing.",
     "Put the whole file there.", "Drivers/64-bit/zelmodel.dat of 0 bytes"},
    {"files-case", Severity::warning, "A file is spelt in another case than its name in the INF",
     "Windows takes the name in any case. Tools on other systems, and servers that media are copied to, may "
     "not "
     "find the file.",
     "Spell the file as the INF does.", "ZelCore.dll=1 for Drivers/32-bit/zelcore.dll"},
    {"files-program", Severity::error, "A program or library is none",
     "The file has the name of a program or library without the headers of one. It is copied all the same, "
     "and "
     "can't be loaded when it is needed.",
     "Put the built program there.", "a text file called zelcore.dll"},
    {"files-machine", Severity::error, "A program is for another kind of machine",
     "Each architecture loads only programs and libraries of its own. The wrong one is copied all the same, "
     "and "
     "fails when it is loaded.",
     "Put the file that was built for this architecture there.", "the 64-bit zelcore.dll in Drivers/32-bit"},
    {"files-placeholder", Severity::warning, "Placeholders are on the medium",
     "Some files say of themselves that they only stand for the real ones. An installation can be rehearsed "
     "with "
     "them, but nothing works afterwards.",
     "Put the real files there before the medium is given away.", "Placeholder for zelcore.dll"},
    {"files-no-setup", Severity::warning, "The setup programs aren't on the medium",
     "People start trk_setup.exe from the medium, which hands over to trk_setup64.exe beside it on 64-bit "
     "systems.",
     "Put both programs into the medium's own folder.", "a medium without trk_setup.exe"},
    {"files-sibling", Severity::error, "One of the two setup programs is missing",
     "The 32-bit program does nothing on a 64-bit system but start its sibling, and the 64-bit one can't run "
     "on a "
     "32-bit system.",
     "Put both programs into the medium's own folder.", "trk_setup.exe without trk_setup64.exe"},
    {"files-profile-kind", Severity::warning, "A file among the profiles is never copied",
     "From the folder profiles the files with the endings .tkp, .tkd and .icm are copied, those in folders "
     "below "
     "it aren't.",
     "Give the file one of the endings, or take it away.", "profiles/label100.icc"},
    {"files-no-profiles", Severity::warning, "There is no folder of profiles",
     "The installation goes on without any profile, and nothing tells of it.",
     "Put the profiles into a folder profiles, or make an empty one if there are none.",
     "profile/label100.tkp"},
    {"files-colour-profile", Severity::warning, "A colour profile is none",
     "A file ending in .icm without a colour profile's signature can't be used as one.",
     "Put the colour profile there.", "profiles/label100.icm with a picture in it"},
};

} // namespace

std::span<const Rule> rules_of_files() {
    return files_rules;
}

} // namespace rehearsal::check
