// The signature catalogue of each driver package: that it lists the package as it is on the medium, and that
// its signature is one that systems can accept. Whether they trust who signed it is theirs to say.
#include "machine/inf_package.h"
#include "machine/little_endian.h"
#include "machine/text.h"
#include "rehearsal/check/catalogue_digest.h"
#include "rehearsal/check/catalogue_file.h"
#include "rehearsal/check/catalogue_rules.h"
#include "rehearsal/check/settings_text.h"
#include "rehearsal/check/subjects.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <set>

namespace rehearsal::check {
namespace {

struct CatalogueSystem {
    const char* processor;
    std::u16string_view environment; // as the spooler calls it
};

constexpr std::array<CatalogueSystem, 3> catalogue_systems = {
    {{"x86", u"Windows NT x86"}, {"amd64", u"Windows x64"}, {"arm64", u"Windows ARM64"}}};

// An INF as the system reads it. Letters beyond 7 bits don't matter for its catalogues.
struct SignedInf {
    const MediumEntry* entry = nullptr;
    platform::InfText inf;
    std::array<platform::InfPackage, catalogue_systems.size()> packages; // without models when refused
};

std::u16string inf_letters(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return platform::to_utf16(bytes.substr(3));
    if (bytes.starts_with("\xFF\xFE"))
        return platform::utf16_text(bytes.substr(2));
    std::u16string text;
    for (const char letter : bytes)
        text += static_cast<unsigned char>(letter);
    return text;
}

// None when the file can't be read as an INF.
std::optional<SignedInf> read_signed_inf(const Medium& medium, const MediumEntry& entry) {
    SignedInf read;
    read.entry = &entry;
    const std::u16string text = inf_letters(medium.bytes(entry));
    if (!read.inf.parse(text))
        return std::nullopt;
    for (std::size_t i = 0; i < catalogue_systems.size(); ++i)
        if (platform::read_inf_package(text, catalogue_systems[i].environment, read.packages[i]) != 0)
            read.packages[i].models.clear();
    return read;
}

// One catalogue of an INF, and what it has to vouch for.
struct CatalogueDuty {
    platform::TextPlace place; // of its name in the INF
    std::vector<const char*> processors;
    std::vector<const MediumEntry*> files; // each once; the INF isn't among them
};

using CatalogueDuties = std::map<std::string, CatalogueDuty>; // by the catalogue's path on the medium

std::string folder_with_slash(const MediumEntry& entry) {
    return entry.path.substr(0, entry.path.size() - entry.name().size());
}

// The entry for the processor, the one for all systems, or the plain one, in this order; null without any.
const platform::InfValue* catalogue_name(const SignedInf& inf, const char* processor) {
    const std::u16string own = u"CatalogFile.NT" + platform::to_utf16(processor);
    for (const std::u16string& key :
         {own, std::u16string(u"CatalogFile.NT"), std::u16string(u"CatalogFile")}) {
        const platform::InfLine* const line = inf.inf.line(u"Version", key);
        if (line != nullptr && !line->values.front().text.empty())
            return &line->values.front();
    }
    return nullptr;
}

bool is_catalogue(std::u16string_view path) {
    return path.size() >= 4 && platform::same_name(path.substr(path.size() - 4), u".cat");
}

void add_files(const Medium& medium, const SignedInf& inf, const platform::InfPackage& package,
               CatalogueDuty& duty) {
    for (const platform::PackageFile& file : package.files) {
        const MediumEntry* const entry =
            medium.find_file(folder_with_slash(*inf.entry) + platform::to_utf8(file.path));
        if (entry != nullptr && !is_catalogue(file.path) &&
            std::find(duty.files.begin(), duty.files.end(), entry) == duty.files.end())
            duty.files.push_back(entry);
    }
}

// For the systems that the INF has models for.
CatalogueDuties catalogue_duties(const Medium& medium, const SignedInf& inf, Findings& findings) {
    CatalogueDuties duties;
    std::vector<const char*> without;
    for (std::size_t i = 0; i < catalogue_systems.size(); ++i) {
        const char* const processor = catalogue_systems[i].processor;
        if (inf.packages[i].models.empty())
            continue;
        const platform::InfValue* const name = catalogue_name(inf, processor);
        if (name == nullptr) {
            without.push_back(processor);
            continue;
        }
        CatalogueDuty& duty = duties[folder_with_slash(*inf.entry) + platform::to_utf8(name->text)];
        duty.place = name->place;
        duty.processors.push_back(processor);
        add_files(medium, inf, inf.packages[i], duty);
    }
    if (!without.empty())
        findings.add("catalogue-none", {inf.entry->path},
                     "the INF names no catalogue, and " + needed_by_packages(without) + " one");
    return duties;
}

class CatalogueCheck {
public:
    CatalogueCheck(const Medium& medium, const SignedInf& inf, const CatalogueDuty& duty,
                   const MediumEntry& file, const Catalogue& catalogue, Findings& findings)
        : medium_(medium), inf_(inf), duty_(duty), file_(file), catalogue_(catalogue), findings_(findings) {
        for (const CatalogueMember& member : catalogue.members) {
            digests_.insert(member.digest);
            names_.insert(folded(member.file));
        }
    }

    void check() {
        check_member(*inf_.entry, "catalogue-inf-changed");
        for (const MediumEntry* const file : duty_.files)
            check_member(*file, "catalogue-file");
        check_signature();
        check_systems();
    }

private:
    void add(std::string_view id, std::string reason) { findings_.add(id, {file_.path}, std::move(reason)); }
    void check_member(const MediumEntry& file, std::string_view id);
    void check_signature();
    void check_time_stamp();
    void check_signer(const CertificateFacts& signer);
    void check_driver_date();
    void check_systems();
    bool stamp_holds() const {
        return catalogue_.signature.time_stamp && catalogue_.signature.time_stamp->problem.empty();
    }

    const Medium& medium_;
    const SignedInf& inf_;
    const CatalogueDuty& duty_;
    const MediumEntry& file_;
    const Catalogue& catalogue_;
    Findings& findings_;
    std::set<std::string, std::less<>> digests_;
    std::set<std::string, std::less<>> names_; // folded
};

void CatalogueCheck::check_member(const MediumEntry& file, std::string_view id) {
    const std::string& bytes = medium_.bytes(file);
    const std::vector<std::string> digests = member_digests(bytes);
    if (std::any_of(digests.begin(), digests.end(),
                    [&](const auto& each) { return digests_.contains(each); }))
        return;
    const bool flat = digests_.contains(flat_digest(bytes, DigestAlgorithm::sha1)) ||
                      digests_.contains(flat_digest(bytes, DigestAlgorithm::sha256));
    const std::string why = flat ? " lists it by its bytes, but a program is looked up by its image"
                            : names_.contains(folded(file.name()))
                                ? " lists it with another digest: it was changed after signing"
                                : " doesn't list it";
    findings_.add(id, {file.path}, file_.path + why);
}

void CatalogueCheck::check_signature() {
    const CatalogueSignature& signature = catalogue_.signature;
    if (!signature.problem.empty())
        add("catalogue-signature", "the signature doesn't hold: " + signature.problem);
    if (!signature.signer)
        return;
    check_signer(*signature.signer);
    check_time_stamp();
    check_driver_date();
    if (signature.problem.empty() && !signature.signer->self_signed)
        add("catalogue-trust", "whether a system trusts " + in_quotes(signature.signer->subject) +
                                   ", issued by " + in_quotes(signature.signer->issuer) + ", isn't judged");
}

void CatalogueCheck::check_signer(const CertificateFacts& signer) {
    if (!signer.right_purpose)
        add("catalogue-signer", in_quotes(signer.subject) + " isn't a certificate for signing code");
    if (signer.self_signed)
        add("catalogue-self-signed", in_quotes(signer.subject) + " has issued its certificate itself");
    const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    const std::int64_t time = stamp_holds() ? catalogue_.signature.time_stamp->time : now;
    const std::string when = stamp_holds() ? "at the time of its stamp, " + shown_day(time) : "today";
    if (time > signer.not_after)
        add("catalogue-expired", "the certificate of " + in_quotes(signer.subject) + " ended on " +
                                     shown_day(signer.not_after) + " and isn't valid " + when);
    else if (time < signer.not_before)
        add("catalogue-expired", "the certificate of " + in_quotes(signer.subject) + " begins on " +
                                     shown_day(signer.not_before) + " and isn't valid " + when);
}

void CatalogueCheck::check_time_stamp() {
    const auto& stamp = catalogue_.signature.time_stamp;
    if (!stamp)
        return add("catalogue-time-stamp", "no time stamp: the signature ends with its certificate, on " +
                                               shown_day(catalogue_.signature.signer->not_after));
    if (!stamp->problem.empty())
        add("catalogue-stamp-broken", "the time stamp doesn't hold: " + stamp->problem);
    else if (!stamp->authority.right_purpose)
        add("catalogue-stamp-broken",
            in_quotes(stamp->authority.subject) + " isn't a certificate for time stamps");
}

void CatalogueCheck::check_driver_date() {
    const platform::InfLine* const line = inf_.inf.line(u"Version", u"DriverVer");
    const auto date =
        line == nullptr ? std::nullopt : driver_date(platform::to_utf8(line->values.front().text));
    const std::int64_t made = stamp_holds() ? catalogue_.signature.time_stamp->time
                                            : catalogue_.signature.claimed_time.value_or(catalogue_.made);
    if (date && *date > made + most_ahead_of_utc)
        findings_.add("catalogue-date",
                      {inf_.entry->path, line->values.front().place.line, line->values.front().place.column},
                      "the driver's date is later than the catalogue's signature, " + shown_day(made));
}

void CatalogueCheck::check_systems() {
    const std::string* const systems = catalogue_.attribute("OS");
    if (systems == nullptr)
        return;
    for (const char* const processor : duty_.processors)
        if (!names_systems_of(*systems, processor))
            add("catalogue-systems", std::string("none of the systems that it names is ") + processor + ": " +
                                         in_quotes(*systems));
}

void check_catalogues_of(const Medium& medium, const SignedInf& inf, Findings& findings) {
    for (const auto& [path, duty] : catalogue_duties(medium, inf, findings)) {
        const MediumEntry* const file = medium.find(path);
        if (file == nullptr)
            findings.add("catalogue-missing", {inf.entry->path, duty.place.line, duty.place.column},
                         missing_file(medium, path, needed_by_packages(duty.processors)));
        if (file == nullptr || !file->is_file()) // a folder in its place is told where files are
            continue;
        std::string problem;
        if (const auto catalogue = read_catalogue(medium.bytes(*file), problem))
            CatalogueCheck(medium, inf, duty, *file, *catalogue, findings).check();
        else
            findings.add("catalogue-unreadable", {file->path}, "the file is no catalogue: " + problem);
    }
}

} // namespace

void check_catalogue(const Medium& medium, Findings& findings) {
    for (const MediumEntry* const entry : medium.in_folder("Drivers")) {
        if (!entry->is_file() || !folded(entry->name()).ends_with(".INF"))
            continue;
        if (const auto inf = read_signed_inf(medium, *entry))
            check_catalogues_of(medium, *inf, findings);
    }
}

} // namespace rehearsal::check
