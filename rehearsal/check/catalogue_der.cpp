#include "rehearsal/check/catalogue_der.h"

#include "rehearsal/check/catalogue_openssl.h"

#include <openssl/asn1.h>
#include <openssl/objects.h>

namespace rehearsal::check {
namespace {

constexpr int unreadable = 0x80;
constexpr int indefinite_length = 0x01;
constexpr int constructed = 0x20;
constexpr int largest_short_number = 30; // a larger one has octets of its own

} // namespace

std::optional<DerItem> DerItems::next() {
    if (rest_.empty() || broken_)
        return std::nullopt;
    const unsigned char* place = openssl_bytes(rest_);
    const unsigned char* const start = place;
    long length = 0;
    int number = 0;
    int tag_class = 0;
    const int form = ASN1_get_object(&place, &length, &number, &tag_class, static_cast<long>(rest_.size()));
    if ((form & (unreadable | indefinite_length)) != 0 || number > largest_short_number) {
        broken_ = true;
        return std::nullopt;
    }
    const auto header = static_cast<std::size_t>(place - start);
    const std::size_t size = header + static_cast<std::size_t>(length);
    DerItem item{tag_class | (form & constructed) | number,
                 rest_.substr(header, static_cast<std::size_t>(length)), rest_.substr(0, size)};
    rest_.remove_prefix(size);
    return item;
}

std::optional<DerItem> DerItems::next(int tag) {
    const std::string_view before = rest_;
    std::optional<DerItem> item = next();
    if (item && item->tag == tag)
        return item;
    rest_ = before;
    return std::nullopt;
}

std::string der_object(const DerItem& item) {
    if (item.tag != der_tag::object)
        return {};
    const unsigned char* place = openssl_bytes(item.whole);
    const OpensslPointer<ASN1_OBJECT, ASN1_OBJECT_free> object(
        d2i_ASN1_OBJECT(nullptr, &place, static_cast<long>(item.whole.size())));
    return openssl_object_text(object.get());
}

std::optional<std::int64_t> der_time(const DerItem& item) {
    const unsigned char* place = openssl_bytes(item.whole);
    const OpensslPointer<ASN1_TIME, ASN1_TIME_free> time(
        d2i_ASN1_TIME(nullptr, &place, static_cast<long>(item.whole.size())));
    return openssl_seconds(time.get());
}

} // namespace rehearsal::check
