#include "machine/value_checks.h"

#include "machine/text.h"

#include <algorithm>
#include <string_view>

namespace platform {
namespace {

constexpr std::size_t path_limit = 260; // MAX_PATH, with the terminator

// All that GetLocaleInfoW gives for LOCALE_SABBREVLANGNAME.
constexpr std::string_view locale_abbreviations =
    "AFK AMH ARA ARB ARE ARG ARH ARI ARJ ARK ARL ARM ARO ARQ ARS ART ARU ARY ASM AZC AZE BAS BEL BGR "
    "BNB BNG BOB BRE BSB BSC CAT CHS CHT COS CRE CSY CYM DAN DEA DEC DEL DES DEU DIV DSB ELL ENA ENB "
    "ENC ENE ENG ENH ENI ENJ ENL ENM ENN ENP ENS ENT ENU ENW ENZ ESA ESB ESC ESD ESE ESF ESG ESH ESI "
    "ESJ ESK ESL ESM ESN ESO ESP ESR ESS EST ESU ESV ESY ESZ ETI EUQ FAR FIN FOS FPO FRA FRB FRC FRD "
    "FRE FRF FRH FRI FRL FRM FRN FRO FRR FRS FUL FYN GLA GLC GRN GSW GUJ HAU HAW HEB HIN HRB HRV HSB "
    "HUN HYE IBO III IND IRE ISL ITA ITS IUK IUS IVL JPN KAL KAT KDI KHM KIN KKZ KNK KOR KUR KYR LAO "
    "LBX LTH LVI MAR MKI MLT MNG MNM MNN MON MPD MRI MSB MSL MWK MYA MYM NEI NEP NLB NLD NON NOR NSO "
    "OCI ORI ORM PAN PAP PAS PLK PRS PTB PTG QUC QUZ RMC ROD ROM RUM RUS SAH SAN SIN SIP SKY SLV SMA "
    "SMB SME SMF SMG SMJ SMK SMN SMS SOM SOT SQI SRB SRM SRN SRO SRP SRQ SRS SVE SVF SWK SYR TAI TAJ "
    "TAM TEL THA TIE TIR TRK TSB TSN TSO TTT TUK TZA UIG UKR URD URI UZB UZC VAL VIT WOL XHO YOR ZHH "
    "ZHI ZHM ZUL ";

// The words of a list that has a blank behind each.
std::vector<std::string> words_of(std::string_view list) {
    std::vector<std::string> words;
    for (std::size_t begin = 0, end = 0; (end = list.find(' ', begin)) != list.npos; begin = end + 1)
        words.emplace_back(list.substr(begin, end - begin));
    return words;
}

// Why no file or folder can be called so; empty when one can.
std::string name_fault(std::u16string_view name) {
    if (name.empty())
        return "has an empty name in it";
    for (const char16_t letter : name)
        if (letter < u' ' || std::u16string_view(u"<>:\"/\\|?*").find(letter) != std::u16string_view::npos)
            return "has a character that no file's name can have";
    return name.back() == u'.' || name.back() == u' ' ? "has a name that ends in a point or blank" : "";
}

std::string path_fault(std::u16string_view path) {
    const char16_t drive = path.empty() ? u' ' : path.front();
    const bool letter = (drive >= u'A' && drive <= u'Z') || (drive >= u'a' && drive <= u'z');
    if (!letter || path.substr(1, 2) != u":\\")
        return "must be an absolute path like \"C:\\Windows\"";
    if (path.size() >= path_limit)
        return "is longer than a path can be";
    for (std::size_t begin = 3; begin < path.size();) {
        const std::size_t end = std::min(path.find(u'\\', begin), path.size());
        const std::string fault = name_fault(path.substr(begin, end - begin));
        if (!fault.empty())
            return fault;
        begin = end + 1;
        if (begin == path.size())
            return "ends in a backslash";
    }
    return {};
}

} // namespace

void check_absolute_path(const JsonPlace& place, const std::u16string& path) {
    if (const std::string fault = path_fault(path); !fault.empty())
        place.fail(fault);
}

void check_path_on_c(const JsonPlace& place, const std::u16string& path) {
    check_absolute_path(place, path);
    if (!same_name(path.substr(0, 1), u"C"))
        place.fail("isn't on drive C, and the machine has no other");
}

void check_file_name(const JsonPlace& place, const std::u16string& name) {
    if (const std::string fault = name_fault(name); !fault.empty())
        place.fail(fault);
}

void check_locale(const JsonPlace& place, const std::u16string& abbreviation) {
    const std::vector<std::string> known = words_of(locale_abbreviations);
    const std::string name = to_utf8(abbreviation);
    if (std::find(known.begin(), known.end(), name) != known.end())
        return;
    // Of so short words most are near to some other.
    const std::string capitals = to_utf8(upper_case(abbreviation));
    const bool meant = std::find(known.begin(), known.end(), capitals) != known.end();
    place.fail("\"" + name + "\" is no language's abbreviation" +
               (meant ? " (did you mean " + capitals + "?)" : "; there are ENU, DEU, JPN and many others"));
}

void check_language(const JsonPlace& place, std::uint16_t language) {
    constexpr std::uint16_t primary_language = 0x3FF;
    if ((language & primary_language) == 0)
        place.fail("must be a language's identifier like 1033");
}

void check_environment(const JsonPlace& place, const std::u16string& environment) {
    const std::vector<std::string> known = {"Windows x64",  "Windows NT x86", "Windows ARM64",
                                            "Windows IA64", "Windows ARM",    "Windows 4.0"};
    const std::string name = to_utf8(environment);
    if (std::find(known.begin(), known.end(), name) == known.end())
        place.fail("\"" + name + "\" is no environment" + did_you_mean_or_list(name, known));
}

void check_port_number(const JsonPlace& place, std::uint32_t number) {
    if (number > UINT16_MAX)
        place.fail("must be a whole number from 0 to 65535");
}

void check_protocol(const JsonPlace& place, std::uint32_t protocol) {
    if (protocol > 2)
        place.fail("must be 1 for RAW, 2 for LPR, or 0 for a port of another kind");
}

void check_block_size(const JsonPlace& place, std::uint32_t size) {
    if (size != 0 && size != 4112 && size != 6168)
        place.fail("must be 6168, 4112, or 0 for none");
}

void check_string_ids(const JsonPlace& place, const std::vector<std::uint32_t>& ids) {
    for (std::size_t index = 0; index < ids.size(); ++index)
        if (ids[index] > UINT16_MAX)
            place.at(std::to_string(index), place.value[index])
                .fail("must be a whole number from 0 to 65535");
}

void check_variables(const JsonPlace& place, const std::map<std::u16string, std::u16string>&) {
    for (const auto& [name, value] : place.value.items())
        if (name.empty() || name.find('=', 1) != name.npos) // "=C:" is the current folder of a drive
            place.at(name, value).fail_at_key("no variable can be called so");
}

void check_registry_keys(const JsonPlace& place, const Registry&) {
    for (const auto& [path, values] : place.value.items())
        if (path.empty() || path.front() == '\\' || path.back() == '\\' || path.find("\\\\") != path.npos)
            place.at(path, values).fail_at_key("must be a path like \"SOFTWARE\\Vorlane\"");
}

void check_phases(const JsonPlace& place, const std::vector<ServicePhase>& phases) {
    for (std::size_t index = 0; index + 1 < phases.size(); ++index)
        if (phases[index].milliseconds == 0)
            place.at(std::to_string(index), place.value[index])
                .fail("holds for ever (0 milliseconds), so that the next phase never comes");
}

void check_name(const JsonPlace& place, const std::u16string& name, const std::u16string& environment,
                std::set<std::u16string>& known) {
    if (name.empty())
        place.fail("has an empty name");
    if (!known.insert(upper_case(name) + u'\n' + upper_case(environment)).second)
        place.fail("has the name \"" + to_utf8(name) + "\", as one before it");
}

} // namespace platform
