#include "rehearsal/check/trial_medium.h"

#include "rehearsal/check/check.h"

#include <gtest/gtest.h>

#include <set>

namespace fs = std::filesystem;

namespace {

constexpr char other_inf[] = R"([Version]
Signature   = "$Windows NT$"
Class=Printer
ClassGuid   = {4D36E979-E325-11CE-BFC1-08002BE10318}
Provider    = %Company%
CatalogFile.NT = tag40.cat
DriverVer=11/03/2023,10.20.30.40

[Manufacturer]
%Company%=Tags,NTx86,NTamd64

[Tags.NTx86]
"Orrin Tag 40"=Tag_40,,Orrin_Tag_40

[Tags.NTamd64]
"Orrin Tag 40"=Tag_40,,Orrin_Tag_40

[Tag_40]
CopyFiles=@tagcore.dll,Tag_Data
DataSection=Tag_Parts

[Tag_Parts]
DriverFile=tagcore.dll
ConfigFile=tagcore.dll
DataFile=tag40.dat

[Tag_Data]
tag40.dat,tag40.bin

[DestinationDirs]
DefaultDestDir=66000

[SourceDisksNames.x86]
5 = %Disk%,,,\files\x86

[SourceDisksNames.amd64]
6 = %Disk%,,,\files\x64

[SourceDisksFiles.x86]
tagcore.dll = 5
tag40.bin = 5,data

[SourceDisksFiles.amd64]
tagcore.dll = 6
tag40.bin = 6,data

[Strings]
Company="Orrin"
Disk="Orrin Tag drivers"
)";

class OtherMedium {
public:
    OtherMedium() {
        fs::copy(TRK_SAMPLE_MEDIUM, path, fs::copy_options::recursive);
        fs::remove_all(path / "Drivers" / "64-bit");
        fs::remove(path / "Drivers" / "lbl.inf");
        fs::rename(path / "Drivers" / "lbl.cat", path / "Drivers" / "tag40.cat");
        TestSession::write(path / "Drivers" / "tag40.inf", other_inf);
        for (const char* const folder : {"x86", "x64"}) {
            const fs::path files = path / "Drivers" / "files" / folder;
            TestSession::write(files / "tagcore.dll", "Placeholder for tagcore.dll.\n");
            TestSession::write(files / "data" / "tag40.bin", "Placeholder for tag40.bin.\n");
        }
    }

private:
    TemporaryFolder folder_;

public:
    const fs::path path = folder_.path / "medium";
};

bool is_looked_at(const std::string& id) {
    return (id == "catalogue-missing" || id.starts_with("inf-") || id.starts_with("files-") ||
            id.starts_with("layout-")) &&
           id != "files-no-setup" && id != "files-placeholder";
}

} // namespace

TrialMedium::TrialMedium(const fs::path& original) {
    fs::copy(original, path(), fs::copy_options::recursive);
}

std::string TrialMedium::read(const std::string& file) const {
    return TestSession::read(path() / file);
}

void TrialMedium::write(const std::string& file, const std::string& bytes) {
    TestSession::write(path() / file, bytes);
}

void TrialMedium::replace(const std::string& file, const std::string& from, const std::string& to) {
    std::string text = read(file);
    EXPECT_NE(text.find(from), text.npos) << file << ": " << from;
    for (std::size_t place = text.find(from); place != text.npos; place = text.find(from, place + to.size()))
        text.replace(place, from.size(), to);
    write(file, text);
}

void TrialMedium::replace_last(const std::string& file, const std::string& from, const std::string& to) {
    std::string text = read(file);
    const std::size_t place = text.rfind(from);
    ASSERT_NE(place, text.npos) << file << ": " << from;
    write(file, text.replace(place, from.size(), to));
}

void TrialMedium::remove(const std::string& file) {
    EXPECT_NE(fs::remove_all(path() / file), 0u) << file;
}

void TrialMedium::rename(const std::string& from, const std::string& to) {
    fs::rename(path() / from, path() / to);
}

void TrialMedium::copy(const std::string& from, const std::string& to) {
    fs::copy_file(path() / from, path() / to);
}

fs::path other_medium() {
    static const OtherMedium medium;
    return medium.path;
}

std::vector<std::string> findings_of(const fs::path& medium) {
    std::vector<std::string> shown;
    for (const rehearsal::check::Finding& finding : rehearsal::check::check_medium(medium)) {
        if (!is_looked_at(finding.id))
            continue;
        std::string text = finding.place.file;
        if (finding.place.line != 0)
            text += ":" + std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column);
        text += " " + finding.id;
        shown.push_back(text + (finding.severity == rehearsal::check::Severity::warning ? "?" : ""));
    }
    return shown;
}
