#include "rehearsal/check/catalogue_file.h"

#include "machine/little_endian.h"
#include "machine/text.h"
#include "rehearsal/check/catalogue_der.h"
#include "rehearsal/check/catalogue_openssl.h"

#include <openssl/err.h>
#include <openssl/pkcs7.h>

#include <algorithm>

namespace rehearsal::check {
namespace {

constexpr std::string_view trust_list = "1.3.6.1.4.1.311.10.1";
constexpr std::string_view catalogue_list = "1.3.6.1.4.1.311.12.1.1";
constexpr std::string_view first_form_members = "1.3.6.1.4.1.311.12.1.2";
constexpr std::string_view second_form_members = "1.3.6.1.4.1.311.12.1.3";
constexpr std::string_view name_and_value = "1.3.6.1.4.1.311.12.2.1";
constexpr std::string_view indirect_data = "1.3.6.1.4.1.311.2.1.4";
constexpr std::size_t sha1_size = 20;
constexpr std::size_t sha256_size = 32;

// 16-bit text up to its terminator, if it has one, as UTF-8.
std::string utf8(std::string_view bytes, std::endian order) {
    const std::u16string text = platform::utf16_text(bytes, order);
    return platform::to_utf8(text.substr(0, text.find(u'\0')));
}

int digit_value(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

// The octets that hexadecimal digits stand for; empty when they are none.
std::string octets_of(std::string_view digits) {
    std::string octets;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        const int high = digit_value(digits[i]);
        const int low = digit_value(digits[i + 1]);
        if (high < 0 || low < 0)
            return {};
        octets += static_cast<char>(high << 4 | low);
    }
    return octets;
}

// SEQUENCE { BMPString name, INTEGER flags, OCTET STRING value }, the value little-endian 16-bit text.
std::optional<CatalogueAttribute> read_name_and_value(DerItems items) {
    const auto record = items.next(der_tag::sequence);
    if (!record)
        return std::nullopt;
    DerItems parts(record->body);
    const auto name = parts.next(der_tag::wide_text);
    const auto flags = parts.next(der_tag::integer);
    const auto value = parts.next(der_tag::octets);
    if (!name || !flags || !value)
        return std::nullopt;
    return CatalogueAttribute{utf8(name->body, std::endian::big), utf8(value->body, std::endian::little)};
}

// SEQUENCE { SEQUENCE { kind, ... }, SEQUENCE { algorithm, OCTET STRING digest } }: the digest, or an empty
// text.
std::string read_indirect_digest(DerItems items) {
    const auto record = items.next(der_tag::sequence);
    DerItems parts(record ? record->body : std::string_view{});
    const auto kind = parts.next(der_tag::sequence);
    const auto digest_info = parts.next(der_tag::sequence);
    DerItems info(kind && digest_info ? digest_info->body : std::string_view{});
    const auto algorithm = info.next(der_tag::sequence);
    const auto digest = info.next(der_tag::octets);
    return algorithm && digest ? std::string(digest->body) : std::string{};
}

void read_member_attribute(DerItems parts, CatalogueMember& member) {
    const auto object = parts.next(der_tag::object);
    const auto values = parts.next(der_tag::set);
    if (!object || !values)
        return;
    const std::string type = der_object(*object);
    if (type == indirect_data) {
        if (std::string digest = read_indirect_digest(DerItems(values->body)); !digest.empty())
            member.digest = std::move(digest);
    } else if (type == name_and_value) {
        const auto attribute = read_name_and_value(DerItems(values->body));
        if (attribute && attribute->name == "File")
            member.file = attribute->text;
        else if (attribute && attribute->name == "OSAttr")
            member.systems = attribute->text;
    }
}

std::optional<CatalogueMember> read_member(const DerItem& item) {
    DerItems parts(item.body);
    const auto identifier = parts.next(der_tag::octets);
    if (item.tag != der_tag::sequence || !identifier)
        return std::nullopt;
    CatalogueMember member;
    const bool plain = identifier->body.size() == sha1_size || identifier->body.size() == sha256_size;
    member.digest =
        plain ? std::string(identifier->body) : octets_of(utf8(identifier->body, std::endian::little));
    if (const auto attributes = parts.next(der_tag::set)) {
        DerItems all(attributes->body);
        while (const auto attribute = all.next(der_tag::sequence))
            read_member_attribute(DerItems(attribute->body), member);
    }
    return member;
}

bool read_members(std::string_view bytes, Catalogue& catalogue) {
    DerItems items(bytes);
    while (const auto item = items.next()) {
        std::optional<CatalogueMember> member = read_member(*item);
        if (!member)
            return false;
        catalogue.members.push_back(*std::move(member));
    }
    return !items.broken();
}

// [0] { SEQUENCE OF SEQUENCE { type, critical BOOLEAN optional, OCTET STRING { the value } } }
void read_extensions(const DerItem& item, Catalogue& catalogue) {
    const auto list = DerItems(item.body).next(der_tag::sequence);
    DerItems extensions(list ? list->body : std::string_view{});
    while (const auto extension = extensions.next(der_tag::sequence)) {
        DerItems parts(extension->body);
        const auto type = parts.next(der_tag::object);
        auto value = parts.next();
        if (value && value->tag != der_tag::octets)
            value = parts.next();
        if (!type || !value || der_object(*type) != name_and_value)
            continue;
        if (auto attribute = read_name_and_value(DerItems(value->body)))
            catalogue.attributes.push_back(*std::move(attribute));
    }
}

std::optional<std::int64_t> read_time(DerItems& items) {
    auto item = items.next(der_tag::utc_time);
    if (!item)
        item = items.next(der_tag::general_time);
    return item ? der_time(*item) : std::nullopt;
}

bool read_usage(DerItems& items) {
    items.next(der_tag::integer);
    const auto usage = items.next(der_tag::sequence);
    const auto object = DerItems(usage ? usage->body : std::string_view{}).next(der_tag::object);
    return object && der_object(*object) == catalogue_list;
}

const char* read_list(std::string_view body, Catalogue& catalogue) {
    DerItems items(body);
    if (!read_usage(items))
        return "its trust list isn't a catalogue's";
    items.next(der_tag::octets);
    items.next(der_tag::integer);
    const auto made = read_time(items);
    if (!made)
        return "its list doesn't say when it was made";
    catalogue.made = *made;
    read_time(items);
    const auto algorithm = items.next(der_tag::sequence);
    const auto object = DerItems(algorithm ? algorithm->body : std::string_view{}).next(der_tag::object);
    const std::string form = object ? der_object(*object) : std::string{};
    if (form != first_form_members && form != second_form_members)
        return "the kind of its members isn't known";
    catalogue.second_form = form == second_form_members;
    const auto members = items.next(der_tag::sequence);
    if (members && !read_members(members->body, catalogue))
        return "a member of its list can't be read";
    if (const auto extensions = items.next(der_tag::context_0))
        read_extensions(*extensions, catalogue);
    return items.broken() ? "its list ends in the middle" : nullptr;
}

// The signed content with its header; none when it isn't a trust list.
std::optional<DerItem> signed_list(const PKCS7& signed_data) {
    if (PKCS7_type_is_signed(&signed_data) == 0 || signed_data.d.sign == nullptr)
        return std::nullopt;
    const PKCS7* const content = signed_data.d.sign->contents;
    if (content == nullptr || openssl_object_text(content->type) != trust_list ||
        content->d.other == nullptr || content->d.other->type != V_ASN1_SEQUENCE)
        return std::nullopt;
    return DerItems(openssl_text(content->d.other->value.sequence)).next(der_tag::sequence);
}

} // namespace

const std::string* Catalogue::attribute(std::string_view name) const {
    const auto place =
        std::find_if(attributes.begin(), attributes.end(),
                     [&](const CatalogueAttribute& candidate) { return candidate.name == name; });
    return place == attributes.end() ? nullptr : &place->text;
}

// The library's newer reader of such messages (CMS, RFC 5652) expects octets as content and refuses a list.
std::optional<Catalogue> read_catalogue(std::string_view bytes, std::string& problem) {
    const unsigned char* place = openssl_bytes(bytes);
    const OpensslPointer<PKCS7, PKCS7_free> signed_data(
        d2i_PKCS7(nullptr, &place, static_cast<long>(bytes.size())));
    ERR_clear_error();
    if (signed_data == nullptr) {
        problem = "it isn't signed data";
        return std::nullopt;
    }
    const std::optional<DerItem> list = signed_list(*signed_data);
    if (!list) {
        problem = "what it signs isn't a trust list";
        return std::nullopt;
    }
    Catalogue catalogue;
    if (const char* const found = read_list(list->body, catalogue); found != nullptr) {
        problem = found;
        return std::nullopt;
    }
    catalogue.signature = read_catalogue_signature(signed_data.get(), list->body);
    ERR_clear_error();
    return catalogue;
}

} // namespace rehearsal::check
