#include "rehearsal/check/catalogue_openssl.h"

#include <openssl/bio.h>
#include <openssl/err.h>

#include <ctime>

namespace rehearsal::check {

std::string_view openssl_text(const ASN1_STRING* string) {
    if (string == nullptr || ASN1_STRING_length(string) <= 0)
        return {};
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(string)),
            static_cast<std::size_t>(ASN1_STRING_length(string))};
}

std::string openssl_object_text(const ASN1_OBJECT* object) {
    char text[128] = {};
    if (object == nullptr || OBJ_obj2txt(text, sizeof text, object, 1) <= 0)
        return {};
    return text;
}

std::optional<std::int64_t> openssl_seconds(const ASN1_TIME* time) {
    std::tm parts = {};
    if (time == nullptr || ASN1_TIME_to_tm(time, &parts) != 1) {
        ERR_clear_error();
        return std::nullopt;
    }
    return timegm(&parts);
}

std::string openssl_name(const X509_NAME* name) {
    const OpensslPointer<BIO, BIO_free_all> text(BIO_new(BIO_s_mem()));
    if (name == nullptr || text == nullptr ||
        X509_NAME_print_ex(text.get(), name, 0, XN_FLAG_ONELINE & ~(XN_FLAG_SPC_EQ | ASN1_STRFLGS_ESC_MSB)) <
            0)
        return {};
    const char* bytes = nullptr;
    const long length = BIO_get_mem_data(text.get(), &bytes);
    return {bytes, static_cast<std::size_t>(length)};
}

std::string openssl_reason() {
    const char* const reason = ERR_reason_error_string(ERR_peek_last_error());
    std::string text = reason != nullptr ? reason : "no reason given";
    ERR_clear_error();
    return text;
}

} // namespace rehearsal::check
