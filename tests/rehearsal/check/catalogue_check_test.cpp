#include "rehearsal/check/catalogue_maker.h"
#include "rehearsal/check/catalogue_rules.h"
#include "rehearsal/check/subject_test.h"

#include <gtest/gtest.h>

namespace {

using tests::MediumFiles;
using tests::usual_signing;

// For 32-bit and 64-bit systems; one file each, and a data file for both.
const std::string package_inf =
    "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Printer\r\nCatalogFile=lbl.cat\r\n"
    "DriverVer=07/26/2024,1.2.3.4\r\n[Manufacturer]\r\nM=Models,NTx86,NTamd64\r\n"
    "[Models.NTx86]\r\n\"Label\"=Install\r\n[Models.NTamd64]\r\n\"Label\"=Install\r\n"
    "[Install]\r\nCopyFiles=Files\r\n[Files]\r\nlbl.dll\r\n[SourceDisksNames.x86]\r\n"
    "1=d,,,32\r\n[SourceDisksNames.amd64]\r\n1=d,,,64\r\n[SourceDisksFiles]\r\nlbl.dll=1\r\n";

std::string replaced(std::string text, std::string_view part, std::string_view by) {
    return text.replace(text.find(part), part.size(), by);
}

// The package with its catalogue, which is always made of the files as they are here.
MediumFiles package(const catalogue::SignOptions& signing = usual_signing(),
                    const catalogue::ListOptions& list = {}, const std::string& inf = package_inf) {
    const std::vector<catalogue::ListedFile> files = {
        {"lbl.inf", inf}, {"lbl.dll", "32 bits"}, {"lbl.dll", "64 bits"}};
    return {{"Drivers/lbl.inf", inf},
            {"Drivers/32/lbl.dll", "32 bits"},
            {"Drivers/64/lbl.dll", "64 bits"},
            {"Drivers/lbl.cat", tests::make_catalogue(files, signing, list)}};
}

MediumFiles with_file(MediumFiles files, std::size_t index, const std::string& bytes) {
    files[index].second = bytes;
    return files;
}

catalogue::ListOptions for_systems(const char* systems, bool second_form = true) {
    catalogue::ListOptions list;
    list.systems = systems;
    list.second_form = second_form;
    return list;
}

catalogue::SignOptions signed_by(const catalogue::Identity& signer, bool stamped) {
    catalogue::SignOptions signing = usual_signing();
    signing.signer = signer;
    if (!stamped)
        signing.stamp.reset();
    return signing;
}

catalogue::SignOptions stamped_at(std::int64_t time) {
    catalogue::SignOptions signing = usual_signing();
    signing.stamp->time = time;
    return signing;
}

catalogue::SignOptions wrongly_stamped() {
    catalogue::SignOptions signing = usual_signing();
    signing.stamp_of_other_text = true;
    return signing;
}

struct CatalogueCase {
    const char* name;
    MediumFiles files;
    std::vector<std::string> places;
};

// Made when it is asked for: the certificates are made with it.
std::vector<CatalogueCase> catalogue_cases() {
    const tests::SigningIdentities& by = tests::signing_identities();
    const std::string cat = " Drivers/lbl.cat";
    const std::string trust = "catalogue-trust" + cat;
    const std::string edited = replaced(package_inf, "Label", "Lable");
    const std::string no_catalogue = replaced(package_inf, "CatalogFile=lbl.cat\r\n", "");
    const std::string two =
        replaced(package_inf, "CatalogFile=", "CatalogFile.NTx86=other.cat\r\nCatalogFile=");
    const std::string later = replaced(package_inf, "07/26", "07/29");
    return {
        {"Good", package(), {trust}},
        {"FirstForm", package(usual_signing(), for_systems("7X86,_v100_X64", false)), {trust}},
        {"InfEdited", with_file(package(), 0, edited), {"catalogue-inf-changed Drivers/lbl.inf", trust}},
        {"FileChanged", with_file(package(), 2, "64 bitz"), {"catalogue-file Drivers/64/lbl.dll", trust}},
        {"NoneNamed", package(usual_signing(), {}, no_catalogue), {"catalogue-none Drivers/lbl.inf"}},
        {"OneOfTwoMissing",
         package(usual_signing(), {}, two),
         {trust, "catalogue-missing Drivers/lbl.inf:4:19"}},
        {"Placeholder", with_file(package(), 3, "Placeholder"), {"catalogue-unreadable" + cat}},
        {"SelfSigned", package(signed_by(by.self, true)), {"catalogue-self-signed" + cat}},
        {"WrongPurpose", package(signed_by(by.stamper, true)), {"catalogue-signer" + cat, trust}},
        {"NoStamp", package(signed_by(by.signer, false)), {"catalogue-time-stamp" + cat, trust}},
        {"Expired",
         package(signed_by(by.expired, false)),
         {"catalogue-expired" + cat, "catalogue-time-stamp" + cat, trust}},
        {"ExpiredSinceItsStamp", package(signed_by(by.expired, true)), {trust}},
        {"StampedTooEarly",
         package(stamped_at(tests::signed_at - 3 * 365 * tests::day)),
         {"catalogue-expired" + cat, "catalogue-date Drivers/lbl.inf:5:11", trust}},
        {"StampOfAnother", package(wrongly_stamped()), {"catalogue-stamp-broken" + cat, trust}},
        {"DateAfterSigning",
         package(usual_signing(), {}, later),
         {"catalogue-date Drivers/lbl.inf:5:11", trust}},
        {"OneSystemLess",
         package(usual_signing(), for_systems("7X64,_v100_X64_22H2")),
         {trust, "catalogue-systems" + cat}},
    };
}

TEST(CatalogueCheck, Finds) {
    for (const CatalogueCase& each : catalogue_cases()) {
        SCOPED_TRACE(each.name);
        EXPECT_EQ(tests::places_found(each.files, rehearsal::check::check_catalogue), each.places);
    }
}

TEST(CatalogueCheck, SaysWhyAFileIsNotListed) {
    const auto reasons = [](const MediumFiles& files) {
        return tests::reasons_found(files, rehearsal::check::check_catalogue).front();
    };
    EXPECT_EQ(
        reasons(with_file(package(), 0, package_inf + " ")),
        "catalogue-inf-changed: Drivers/lbl.cat lists it with another digest: it was changed after signing");
    MediumFiles none = package();
    none.back().first = "Drivers/lable.cat";
    EXPECT_EQ(reasons(none), "catalogue-missing: Drivers/lbl.cat isn't on the medium, and the packages for "
                             "x86 and amd64 need it; the nearest in its folder is lable.cat");
    const MediumFiles more =
        package(usual_signing(), {}, package_inf + "more.dll=1\r\n[Files]\r\nmore.dll\r\n");
    MediumFiles files = more;
    files.emplace_back("Drivers/32/more.dll", "text");
    EXPECT_EQ(reasons(files), "catalogue-file: Drivers/lbl.cat doesn't list it");
    catalogue::ListOptions by_bytes;
    by_bytes.made = tests::signed_at;
    by_bytes.images_by_bytes = true;
    const std::string program = tests::small_image("code", "");
    MediumFiles flat = package();
    flat[1].second = program;
    flat[3].second = tests::make_catalogue(
        {{"lbl.inf", package_inf}, {"lbl.dll", program}, {"lbl.dll", "64 bits"}}, usual_signing(), by_bytes);
    EXPECT_EQ(reasons(flat),
              "catalogue-file: Drivers/lbl.cat lists it by its bytes, but a program is looked up by "
              "its image");
}

TEST(CatalogueRules, ReadsADriversDate) {
    const struct {
        const char* text;
        std::optional<std::int64_t> expected;
    } cases[] = {{"07/26/2024", 1721952000},         {"1-2-2024", 1704153600}, {"02/30/2024", std::nullopt},
                 {"26/07/2024", std::nullopt},       {"07/26", std::nullopt},  {"", std::nullopt},
                 {"07/26/99999999999", std::nullopt}};
    for (const auto& each : cases)
        EXPECT_EQ(rehearsal::check::driver_date(each.text), each.expected) << each.text;
    EXPECT_EQ(rehearsal::check::shown_day(1721952000), "2024-07-26");
}

TEST(CatalogueRules, KnowsTheProcessorsOfSystems) {
    const struct {
        const char* systems;
        bool x86, amd64, arm64;
    } cases[] = {{"VistaX86,7X64", true, true, false},
                 {"_v63,_v100", true, false, false},
                 {"_v100_X64_22H2,_v100_ARM64_22H2", false, true, true},
                 {"8ARM", false, false, false},
                 {"_v100_X64,Something", true, true, true}};
    for (const auto& each : cases) {
        EXPECT_EQ(rehearsal::check::names_systems_of(each.systems, "x86"), each.x86) << each.systems;
        EXPECT_EQ(rehearsal::check::names_systems_of(each.systems, "amd64"), each.amd64) << each.systems;
        EXPECT_EQ(rehearsal::check::names_systems_of(each.systems, "arm64"), each.arm64) << each.systems;
    }
}

} // namespace
