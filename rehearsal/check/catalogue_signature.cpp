#include "rehearsal/check/catalogue_signature.h"

#include "rehearsal/check/catalogue_openssl.h"

#include <openssl/err.h>
#include <openssl/pkcs7.h>
#include <openssl/ts.h>
#include <openssl/x509v3.h>

namespace rehearsal::check {
namespace {

constexpr std::string_view rfc3161_attribute = "1.3.6.1.4.1.311.3.3.1";
constexpr std::string_view counter_signature_attribute = "1.2.840.113549.1.9.6";

using Signed = OpensslPointer<PKCS7, PKCS7_free>;
using Bio = OpensslPointer<BIO, BIO_free_all>;

// The purpose is an NID of an extended key usage (RFC 5280, section 4.2.1.12).
CertificateFacts certificate_facts(X509* certificate, std::uint32_t purpose) {
    CertificateFacts facts;
    facts.subject = openssl_name(X509_get_subject_name(certificate));
    facts.issuer = openssl_name(X509_get_issuer_name(certificate));
    facts.not_before = openssl_seconds(X509_get0_notBefore(certificate)).value_or(0);
    facts.not_after = openssl_seconds(X509_get0_notAfter(certificate)).value_or(0);
    facts.self_signed = facts.subject == facts.issuer;
    facts.right_purpose =
        (X509_get_extended_key_usage(certificate) & purpose) != 0; // all bits when there is none
    return facts;
}

// The value of the signer's unsigned attribute of that type; null when there is none.
const ASN1_TYPE* unsigned_attribute(const PKCS7_SIGNER_INFO& signer, std::string_view type) {
    for (int i = 0; i < sk_X509_ATTRIBUTE_num(signer.unauth_attr); ++i) {
        X509_ATTRIBUTE* const attribute = sk_X509_ATTRIBUTE_value(signer.unauth_attr, i);
        if (openssl_object_text(X509_ATTRIBUTE_get0_object(attribute)) == type)
            return X509_ATTRIBUTE_get0_type(attribute, 0);
    }
    return nullptr;
}

std::string_view sequence_of(const ASN1_TYPE& value) {
    return value.type == V_ASN1_SEQUENCE ? openssl_text(value.value.sequence) : std::string_view{};
}

// Whether the digest that the time stamp is for is that of the signature.
bool imprint_fits(TS_TST_INFO* info, std::string_view signature) {
    TS_MSG_IMPRINT* const imprint = TS_TST_INFO_get_msg_imprint(info);
    const EVP_MD* const algorithm = EVP_get_digestbyobj(TS_MSG_IMPRINT_get_algo(imprint)->algorithm);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (algorithm == nullptr ||
        EVP_Digest(signature.data(), signature.size(), digest, &size, algorithm, nullptr) != 1)
        return false;
    return openssl_text(TS_MSG_IMPRINT_get_msg(imprint)) ==
           std::string_view(reinterpret_cast<const char*>(digest), size);
}

CatalogueTimeStamp read_rfc3161(std::string_view bytes, std::string_view signature) {
    CatalogueTimeStamp stamp;
    stamp.by_rfc3161 = true;
    const unsigned char* place = openssl_bytes(bytes);
    const Signed token(d2i_PKCS7(nullptr, &place, static_cast<long>(bytes.size())));
    const OpensslPointer<TS_TST_INFO, TS_TST_INFO_free> info(
        token != nullptr ? PKCS7_to_TS_TST_INFO(token.get()) : nullptr);
    if (info == nullptr || sk_PKCS7_SIGNER_INFO_num(PKCS7_get_signer_info(token.get())) < 1) {
        stamp.problem = "it can't be read";
        return stamp;
    }
    stamp.time = openssl_seconds(TS_TST_INFO_get_time(info.get())).value_or(0);
    if (PKCS7_verify(token.get(), nullptr, nullptr, nullptr, nullptr, PKCS7_NOVERIFY) != 1)
        stamp.problem = openssl_reason();
    else if (!imprint_fits(info.get(), signature))
        stamp.problem = "it is for another signature";
    STACK_OF(PKCS7_SIGNER_INFO)* const signers = PKCS7_get_signer_info(token.get());
    if (X509* const certificate =
            PKCS7_cert_from_signer_info(token.get(), sk_PKCS7_SIGNER_INFO_value(signers, 0));
        certificate != nullptr)
        stamp.authority = certificate_facts(certificate, XKU_TIMESTAMP);
    return stamp;
}

// Verifies what a signer has signed of a text: its digest attribute, and the signature over its attributes.
bool signature_holds(PKCS7* signed_data, PKCS7_SIGNER_INFO* signer, X509* certificate,
                     std::string_view text) {
    const EVP_MD* const algorithm = EVP_get_digestbyobj(signer->digest_alg->algorithm);
    const Bio chain(BIO_new(BIO_f_md()));
    BIO* const end = BIO_new(BIO_s_null());
    if (chain == nullptr || end == nullptr || algorithm == nullptr) {
        BIO_free(end);
        return false;
    }
    BIO_push(chain.get(), end);
    BIO_set_md(chain.get(), algorithm);
    const int size = static_cast<int>(text.size());
    return BIO_write(chain.get(), text.data(), size) == size &&
           PKCS7_signatureVerify(chain.get(), signed_data, signer, certificate) == 1;
}

CatalogueTimeStamp read_counter_signature(PKCS7* signed_data, std::string_view bytes,
                                          std::string_view signature) {
    CatalogueTimeStamp stamp;
    const unsigned char* place = openssl_bytes(bytes);
    const OpensslPointer<PKCS7_SIGNER_INFO, PKCS7_SIGNER_INFO_free> signer(
        d2i_PKCS7_SIGNER_INFO(nullptr, &place, static_cast<long>(bytes.size())));
    if (signer == nullptr || signer->digest_alg == nullptr) {
        stamp.problem = "it can't be read";
        return stamp;
    }
    const ASN1_TYPE* const time = PKCS7_get_signed_attribute(signer.get(), NID_pkcs9_signingTime);
    if (time != nullptr && (time->type == V_ASN1_UTCTIME || time->type == V_ASN1_GENERALIZEDTIME))
        stamp.time = openssl_seconds(time->value.asn1_string).value_or(0);
    X509* const certificate = PKCS7_cert_from_signer_info(signed_data, signer.get());
    if (certificate == nullptr) {
        stamp.problem = "the certificate of its authority isn't in the file";
        return stamp;
    }
    stamp.authority = certificate_facts(certificate, XKU_TIMESTAMP);
    if (!signature_holds(signed_data, signer.get(), certificate, signature))
        stamp.problem = openssl_reason();
    else if (stamp.time == 0)
        stamp.problem = "it doesn't say a time";
    return stamp;
}

std::optional<CatalogueTimeStamp> read_time_stamp(PKCS7* signed_data, const PKCS7_SIGNER_INFO& signer) {
    const std::string_view signature = openssl_text(signer.enc_digest);
    if (const ASN1_TYPE* const value = unsigned_attribute(signer, rfc3161_attribute); value != nullptr)
        return read_rfc3161(sequence_of(*value), signature);
    if (const ASN1_TYPE* const value = unsigned_attribute(signer, counter_signature_attribute);
        value != nullptr)
        return read_counter_signature(signed_data, sequence_of(*value), signature);
    return std::nullopt;
}

} // namespace

CatalogueSignature read_catalogue_signature(pkcs7_st* signed_data, std::string_view list) {
    CatalogueSignature result;
    STACK_OF(PKCS7_SIGNER_INFO)* const signers = PKCS7_get_signer_info(signed_data);
    result.count = signers != nullptr ? sk_PKCS7_SIGNER_INFO_num(signers) : 0;
    if (result.count <= 0) {
        result.count = 0;
        result.problem = "nobody has signed it";
        return result;
    }
    PKCS7_SIGNER_INFO* const signer = sk_PKCS7_SIGNER_INFO_value(signers, 0);
    const ASN1_TYPE* const time = PKCS7_get_signed_attribute(signer, NID_pkcs9_signingTime);
    if (time != nullptr && (time->type == V_ASN1_UTCTIME || time->type == V_ASN1_GENERALIZEDTIME))
        result.claimed_time = openssl_seconds(time->value.asn1_string);
    if (X509* const certificate = PKCS7_cert_from_signer_info(signed_data, signer); certificate != nullptr) {
        result.signer = certificate_facts(certificate, XKU_CODE_SIGN);
        if (!signature_holds(signed_data, signer, certificate, list))
            result.problem = openssl_reason();
    } else {
        result.problem = "the signer's certificate isn't in the file";
    }
    result.time_stamp = read_time_stamp(signed_data, *signer);
    return result;
}

} // namespace rehearsal::check
