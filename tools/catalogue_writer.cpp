#include "catalogue_writer.h"

#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/pkcs7.h>
#include <openssl/rsa.h>
#include <openssl/ts.h>
#include <openssl/x509v3.h>

#include <ctime>
#include <stdexcept>

namespace catalogue {
namespace {

constexpr char trust_list[] = "1.3.6.1.4.1.311.10.1";
constexpr char rfc3161_attribute[] = "1.3.6.1.4.1.311.3.3.1";
constexpr char counter_signature_attribute[] = "1.2.840.113549.1.9.6";
constexpr char stamp_policy[] = "1.2.3.4.1"; // of no authority
constexpr int key_bits = 2048;
constexpr long version_3 = 2;

template<class Record, class Release>
std::unique_ptr<Record, Release> owned(Record* record, Release release) {
    if (record == nullptr)
        throw std::runtime_error("the cryptography library gave nothing");
    return {record, release};
}

void need(bool done, const char* what) {
    if (!done)
        throw std::runtime_error(std::string(what) + ": " + ERR_error_string(ERR_get_error(), nullptr));
}

void add_extension(X509& certificate, int kind, const char* value) {
    const auto extension = owned(X509V3_EXT_conf_nid(nullptr, nullptr, kind, value), X509_EXTENSION_free);
    need(X509_add_ext(&certificate, extension.get(), -1) == 1, "X509_add_ext");
}

void add_purpose(X509& certificate, Purpose purpose) {
    if (purpose == Purpose::authority) {
        add_extension(certificate, NID_basic_constraints, "critical,CA:TRUE");
        add_extension(certificate, NID_key_usage, "critical,keyCertSign");
        return;
    }
    add_extension(certificate, NID_basic_constraints, "critical,CA:FALSE");
    add_extension(certificate, NID_key_usage, "critical,digitalSignature");
    add_extension(certificate, NID_ext_key_usage,
                  purpose == Purpose::code_signing ? "codeSigning" : "critical,timeStamping");
}

// Of the bytes, as a record of the library's that the caller owns.
ASN1_STRING* string_of(int type, std::string_view bytes) {
    auto string = owned(ASN1_STRING_type_new(type), ASN1_STRING_free);
    need(ASN1_STRING_set(string.get(), bytes.data(), static_cast<int>(bytes.size())) == 1, "ASN1_STRING_set");
    return string.release();
}

std::string_view text_of(const ASN1_STRING* string) {
    return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(string)),
            static_cast<std::size_t>(ASN1_STRING_length(string))};
}

// What i2d_... writes of the record.
template<class Record>
std::string encoded(const Record* record, int (*encode)(const Record*, unsigned char**)) {
    unsigned char* bytes = nullptr;
    const int size = encode(record, &bytes);
    need(size > 0, "encoding");
    std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
    OPENSSL_free(bytes);
    return text;
}

void add_signed_attributes(PKCS7_SIGNER_INFO* signer, ASN1_OBJECT* content_type, std::int64_t time) {
    ASN1_TIME* const signing_time = ASN1_TIME_set(nullptr, static_cast<std::time_t>(time));
    need(PKCS7_add_signed_attribute(signer, NID_pkcs9_contentType, V_ASN1_OBJECT, content_type) == 1 &&
             PKCS7_add_signed_attribute(signer, NID_pkcs9_signingTime, ASN1_STRING_type(signing_time),
                                        signing_time) == 1,
         "PKCS7_add_signed_attribute");
}

std::string digest_of(std::string_view bytes) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    need(EVP_Digest(bytes.data(), bytes.size(), digest, &size, EVP_sha256(), nullptr) == 1, "EVP_Digest");
    return {reinterpret_cast<const char*>(digest), size};
}

ASN1_INTEGER* next_serial(TS_resp_ctx*, void*) {
    ASN1_INTEGER* const serial = ASN1_INTEGER_new();
    ASN1_INTEGER_set(serial, 1);
    return serial;
}

int stamp_time(TS_resp_ctx*, void* time, long* seconds, long* microseconds) {
    *seconds = static_cast<long>(*static_cast<std::int64_t*>(time));
    *microseconds = 0;
    return 1;
}

std::string stamp_request(std::string_view signature) {
    const auto algorithm = owned(X509_ALGOR_new(), X509_ALGOR_free);
    X509_ALGOR_set_md(algorithm.get(), EVP_sha256());
    const auto imprint = owned(TS_MSG_IMPRINT_new(), TS_MSG_IMPRINT_free);
    std::string digest = digest_of(signature);
    const auto request = owned(TS_REQ_new(), TS_REQ_free);
    need(TS_MSG_IMPRINT_set_algo(imprint.get(), algorithm.get()) == 1 &&
             TS_MSG_IMPRINT_set_msg(imprint.get(), reinterpret_cast<unsigned char*>(digest.data()),
                                    static_cast<int>(digest.size())) == 1 &&
             TS_REQ_set_version(request.get(), 1) == 1 &&
             TS_REQ_set_msg_imprint(request.get(), imprint.get()) == 1 &&
             TS_REQ_set_cert_req(request.get(), 1) == 1,
         "TS_REQ");
    return encoded(request.get(), i2d_TS_REQ);
}

// A token of RFC 3161 for the signature.
std::string rfc3161_token(std::string_view signature, const Stamp& stamp) {
    const auto context = owned(TS_RESP_CTX_new(), TS_RESP_CTX_free);
    const auto policy = owned(OBJ_txt2obj(stamp_policy, 1), ASN1_OBJECT_free);
    std::int64_t time = stamp.time;
    need(TS_RESP_CTX_set_signer_cert(context.get(), stamp.authority.certificate.get()) == 1 &&
             TS_RESP_CTX_set_signer_key(context.get(), stamp.authority.key.get()) == 1 &&
             TS_RESP_CTX_set_signer_digest(context.get(), EVP_sha256()) == 1 &&
             TS_RESP_CTX_set_def_policy(context.get(), policy.get()) == 1 &&
             TS_RESP_CTX_add_md(context.get(), EVP_sha256()) == 1,
         "TS_RESP_CTX");
    TS_RESP_CTX_set_serial_cb(context.get(), next_serial, nullptr);
    TS_RESP_CTX_set_time_cb(context.get(), stamp_time, &time);
    const std::string request = stamp_request(signature);
    const auto source =
        owned(BIO_new_mem_buf(request.data(), static_cast<int>(request.size())), BIO_free_all);
    const auto response = owned(TS_RESP_create_response(context.get(), source.get()), TS_RESP_free);
    PKCS7* const token = TS_RESP_get_token(response.get());
    need(token != nullptr, "TS_RESP_create_response");
    return encoded(token, i2d_PKCS7);
}

// A SignerInfo of PKCS #9 over the signature; its certificate has to go into the file too.
std::string counter_signature(std::string_view signature, const Stamp& stamp) {
    const auto signer = owned(PKCS7_SIGNER_INFO_new(), PKCS7_SIGNER_INFO_free);
    need(PKCS7_SIGNER_INFO_set(signer.get(), stamp.authority.certificate.get(), stamp.authority.key.get(),
                               EVP_sha256()) == 1,
         "PKCS7_SIGNER_INFO_set");
    add_signed_attributes(signer.get(), OBJ_nid2obj(NID_pkcs7_data), stamp.time);
    need(PKCS7_add_signed_attribute(signer.get(), NID_pkcs9_messageDigest, V_ASN1_OCTET_STRING,
                                    string_of(V_ASN1_OCTET_STRING, digest_of(signature))) == 1 &&
             PKCS7_SIGNER_INFO_sign(signer.get()) == 1,
         "PKCS7_SIGNER_INFO_sign");
    return encoded(signer.get(), i2d_PKCS7_SIGNER_INFO);
}

void add_stamp(PKCS7& file, PKCS7_SIGNER_INFO& signer, const Stamp& stamp, bool of_other_text) {
    const std::string_view signature = of_other_text ? "another signature" : text_of(signer.enc_digest);
    const bool token = stamp.form == StampForm::rfc3161;
    const std::string value = token ? rfc3161_token(signature, stamp) : counter_signature(signature, stamp);
    if (!token)
        need(PKCS7_add_certificate(&file, stamp.authority.certificate.get()) == 1, "PKCS7_add_certificate");
    const auto type =
        owned(OBJ_txt2obj(token ? rfc3161_attribute : counter_signature_attribute, 1), ASN1_OBJECT_free);
    X509_ATTRIBUTE* const attribute = X509_ATTRIBUTE_create_by_OBJ(
        nullptr, type.get(), V_ASN1_SEQUENCE, value.data(), static_cast<int>(value.size()));
    if (signer.unauth_attr == nullptr)
        signer.unauth_attr = sk_X509_ATTRIBUTE_new_null();
    need(attribute != nullptr && sk_X509_ATTRIBUTE_push(signer.unauth_attr, attribute) > 0, "X509_ATTRIBUTE");
}

// The list's content is what gets signed, without its header: two to five octets.
std::string_view content_of(std::string_view list) {
    const auto* place = reinterpret_cast<const unsigned char*>(list.data());
    const auto* const start = place;
    long length = 0;
    int tag = 0;
    int tag_class = 0;
    need((ASN1_get_object(&place, &length, &tag, &tag_class, static_cast<long>(list.size())) & 0x80) == 0,
         "the list");
    return list.substr(static_cast<std::size_t>(place - start));
}

} // namespace

Identity make_identity(KeyKind kind, const std::string& common_name, Purpose purpose, std::int64_t not_before,
                       std::int64_t not_after, const Identity* issuer) {
    Identity made;
    made.key = owned(kind == KeyKind::rsa ? EVP_RSA_gen(key_bits) : EVP_EC_gen("P-256"), EVP_PKEY_free);
    made.certificate = owned(X509_new(), X509_free);
    X509* const certificate = made.certificate.get();
    X509_set_version(certificate, version_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), static_cast<long>(purpose) + 1);
    ASN1_TIME_set(X509_getm_notBefore(certificate), static_cast<std::time_t>(not_before));
    ASN1_TIME_set(X509_getm_notAfter(certificate), static_cast<std::time_t>(not_after));
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(common_name.c_str()), -1, -1, 0);
    X509_set_issuer_name(certificate,
                         X509_get_subject_name(issuer != nullptr ? issuer->certificate.get() : certificate));
    X509_set_pubkey(certificate, made.key.get());
    add_purpose(*certificate, purpose);
    need(X509_sign(certificate, issuer != nullptr ? issuer->key.get() : made.key.get(), EVP_sha256()) > 0,
         "X509_sign");
    return made;
}

std::string sign_list(std::string_view list, const SignOptions& options) {
    const auto file = owned(PKCS7_new(), PKCS7_free);
    need(PKCS7_set_type(file.get(), NID_pkcs7_signed) == 1, "PKCS7_set_type");
    PKCS7* const content = file->d.sign->contents;
    content->type = OBJ_txt2obj(trust_list, 1);
    PKCS7_SIGNER_INFO* const signer = PKCS7_add_signature(file.get(), options.signer.certificate.get(),
                                                          options.signer.key.get(), EVP_sha256());
    need(signer != nullptr, "PKCS7_add_signature");
    add_signed_attributes(signer, OBJ_txt2obj(trust_list, 1), options.claimed_time);
    if (options.with_certificate)
        need(PKCS7_add_certificate(file.get(), options.signer.certificate.get()) == 1,
             "PKCS7_add_certificate");
    for (const Identity& identity : options.chain)
        need(PKCS7_add_certificate(file.get(), identity.certificate.get()) == 1, "PKCS7_add_certificate");

    const auto digests = owned(PKCS7_dataInit(file.get(), BIO_new(BIO_s_null())), BIO_free_all);
    const std::string_view text = content_of(list);
    need(BIO_write(digests.get(), text.data(), static_cast<int>(text.size())) > 0 &&
             PKCS7_dataFinal(file.get(), digests.get()) == 1,
         "PKCS7_dataFinal");
    if (options.stamp)
        add_stamp(*file, *signer, *options.stamp, options.stamp_of_other_text);
    // Put in only now: the library would write octets of its own making into a content that it knows.
    content->d.other = ASN1_TYPE_new();
    ASN1_TYPE_set(content->d.other, V_ASN1_SEQUENCE, string_of(V_ASN1_SEQUENCE, list));
    return encoded(file.get(), i2d_PKCS7);
}

} // namespace catalogue
