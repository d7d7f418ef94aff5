#include "rehearsal/check/catalogue_digest.h"
#include "rehearsal/check/catalogue_file.h"
#include "rehearsal/check/catalogue_maker.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using rehearsal::check::Catalogue;
using rehearsal::check::DigestAlgorithm;
using tests::make_catalogue;
using tests::usual_signing;

const std::vector<catalogue::ListedFile> two_files = {{"one.inf", "[Version]\r\n"}, {"two.dll", "text"}};

Catalogue read(const std::string& bytes) {
    std::string problem;
    auto catalogue = rehearsal::check::read_catalogue(bytes, problem);
    EXPECT_TRUE(catalogue) << problem;
    return catalogue.value_or(Catalogue{});
}

std::string problem_of(std::string_view bytes) {
    std::string problem;
    EXPECT_FALSE(rehearsal::check::read_catalogue(bytes, problem));
    return problem;
}

bool lists(const Catalogue& catalogue, const std::string& digest) {
    return std::any_of(catalogue.members.begin(), catalogue.members.end(),
                       [&](const auto& member) { return member.digest == digest; });
}

TEST(CatalogueFile, ListsItsMembersInBothForms) {
    for (const bool second_form : {false, true}) {
        catalogue::ListOptions options;
        options.second_form = second_form;
        options.systems = "7X86,7X64";
        const Catalogue catalogue = read(make_catalogue(two_files, usual_signing(), options));
        EXPECT_EQ(catalogue.second_form, second_form);
        EXPECT_EQ(catalogue.made, tests::signed_at);
        ASSERT_EQ(catalogue.members.size(), second_form ? 4U : 2U);
        EXPECT_EQ(catalogue.members.back().file, "two.dll");
        EXPECT_EQ(catalogue.members.back().systems, options.versions);
        EXPECT_TRUE(lists(catalogue, rehearsal::check::flat_digest("text", DigestAlgorithm::sha1)));
        EXPECT_EQ(lists(catalogue, rehearsal::check::flat_digest("text", DigestAlgorithm::sha256)),
                  second_form);
        ASSERT_NE(catalogue.attribute("OS"), nullptr);
        EXPECT_EQ(*catalogue.attribute("OS"), "7X86,7X64");
        EXPECT_EQ(catalogue.attribute("HWID1"), nullptr);
    }
}

TEST(CatalogueFile, SaysWhoSignedItAndWhen) {
    catalogue::SignOptions signing = usual_signing();
    for (const auto form : {catalogue::StampForm::rfc3161, catalogue::StampForm::counter_signature}) {
        signing.stamp->form = form;
        const auto signature = read(make_catalogue(two_files, signing)).signature;
        EXPECT_EQ(signature.problem, "");
        ASSERT_TRUE(signature.signer && signature.time_stamp);
        EXPECT_EQ(signature.signer->subject, "CN=Test Signer");
        EXPECT_EQ(signature.signer->issuer, "CN=Test Root");
        EXPECT_FALSE(signature.signer->self_signed);
        EXPECT_TRUE(signature.signer->right_purpose);
        EXPECT_EQ(signature.claimed_time, tests::signed_at);
        EXPECT_EQ(signature.time_stamp->by_rfc3161, form == catalogue::StampForm::rfc3161);
        EXPECT_EQ(signature.time_stamp->time, tests::signed_at + 60);
        EXPECT_EQ(signature.time_stamp->problem, "");
        EXPECT_EQ(signature.time_stamp->authority.subject, "CN=Test Stamps");
        EXPECT_TRUE(signature.time_stamp->authority.right_purpose);
    }
}

TEST(CatalogueFile, SeesThatTheListWasChangedAfterSigning) {
    std::string bytes = make_catalogue(two_files);
    const std::string digest = rehearsal::check::flat_digest("text", DigestAlgorithm::sha256);
    for (std::size_t at = bytes.find(digest); at != bytes.npos; at = bytes.find(digest, at + 1))
        bytes[at] = static_cast<char>(bytes[at] ^ 1);
    const Catalogue catalogue = read(bytes);
    EXPECT_NE(catalogue.signature.problem, "");
    EXPECT_EQ(catalogue.signature.time_stamp->problem, ""); // it is for the signature, which is as it was
}

TEST(CatalogueFile, SeesATimeStampOfAnotherSignature) {
    catalogue::SignOptions signing = usual_signing();
    for (const auto form : {catalogue::StampForm::rfc3161, catalogue::StampForm::counter_signature}) {
        signing.stamp->form = form;
        signing.stamp_of_other_text = true;
        const auto signature = read(make_catalogue(two_files, signing)).signature;
        EXPECT_EQ(signature.problem, "");
        ASSERT_TRUE(signature.time_stamp);
        EXPECT_NE(signature.time_stamp->problem, "");
    }
}

TEST(CatalogueFile, DoesWithoutCertificateAndTimeStamp) {
    catalogue::SignOptions signing = usual_signing();
    signing.with_certificate = false;
    signing.stamp.reset();
    const auto signature = read(make_catalogue(two_files, signing)).signature;
    EXPECT_FALSE(signature.signer || signature.time_stamp);
    EXPECT_EQ(signature.problem, "the signer's certificate isn't in the file");
}

TEST(CatalogueFile, SaysWhatIsNoCatalogue) {
    EXPECT_EQ(problem_of(""), "it isn't signed data");
    EXPECT_EQ(problem_of("Placeholder for lbl.cat"), "it isn't signed data");
    catalogue::ListOptions other;
    other.usage = "1.3.6.1.4.1.311.10.3.9"; // a list of roots
    EXPECT_EQ(problem_of(make_catalogue(two_files, usual_signing(), other)),
              "its trust list isn't a catalogue's");
}

// Whatever single byte is changed or lost, the reader ends, and within its bytes: the sanitizers watch.
TEST(CatalogueFile, SurvivesDamage) {
    const std::string whole = make_catalogue({{"a", "a"}});
    std::string problem;
    std::size_t refused = 0;
    for (std::size_t at = 0; at < whole.size(); at += 7) {
        std::string changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ (at % 2 == 0 ? 0x80 : 0x01));
        refused += rehearsal::check::read_catalogue(changed, problem) ? 0U : 1U;
        EXPECT_FALSE(rehearsal::check::read_catalogue(whole.substr(0, at), problem)) << at;
    }
    EXPECT_GT(refused, 0U);
}

TEST(CatalogueDigest, LeavesOutOfAnImageWhatSigningChanges) {
    using rehearsal::check::image_digest;
    const std::string plain = tests::small_image("12345678", "");
    const std::string digest = image_digest(plain, DigestAlgorithm::sha256, false);
    ASSERT_EQ(digest.size(), 32U);
    std::string summed = tests::small_image("12345678", "certificates....");
    summed[0x40 + 24 + 64] = 7;
    EXPECT_EQ(image_digest(summed, DigestAlgorithm::sha256, false), digest);
    EXPECT_EQ(
        image_digest(tests::small_image("12345", ""), DigestAlgorithm::sha256, true),
        image_digest(tests::small_image(std::string("12345\0\0\0", 8), ""), DigestAlgorithm::sha256, false));
    EXPECT_NE(image_digest(tests::small_image("12345679", ""), DigestAlgorithm::sha256, false), digest);
    for (std::size_t size = 0; size < plain.size(); ++size) // cut anywhere in its headers it is no image
        EXPECT_EQ(rehearsal::check::is_image(plain.substr(0, size)), size >= 0x40 + 24 + 112 + 5 * 8) << size;
}

} // namespace
