// The list of a catalogue in bytes; the signature is made by catalogue_writer.cpp.
#include "catalogue_writer.h"

#include "rehearsal/check/catalogue_digest.h"

#include <openssl/asn1.h>
#include <openssl/objects.h>

#include <ctime>
#include <memory>

namespace catalogue {
namespace {

using rehearsal::check::DigestAlgorithm;

constexpr char first_form[] = "1.3.6.1.4.1.311.12.1.2";
constexpr char second_form[] = "1.3.6.1.4.1.311.12.1.3";
constexpr char name_and_value[] = "1.3.6.1.4.1.311.12.2.1";
constexpr char indirect_data[] = "1.3.6.1.4.1.311.2.1.4";
constexpr char image_kind[] = "1.3.6.1.4.1.311.2.1.15";
constexpr char file_kind[] = "1.3.6.1.4.1.311.2.1.25";
constexpr char sha1[] = "1.3.14.3.2.26";
constexpr char sha256[] = "2.16.840.1.101.3.4.2.1";
// What the platform's own tools enter: authenticated, in 16-bit text, part of the signed data.
constexpr std::string_view attribute_flags("\x10\x01\x00\x01", 4);

std::string item(int tag, std::string_view body) {
    std::string header(1, static_cast<char>(tag));
    if (body.size() < 0x80)
        return header + static_cast<char>(body.size()) + std::string(body);
    std::string length;
    for (std::size_t rest = body.size(); rest != 0; rest >>= 8)
        length.insert(length.begin(), static_cast<char>(rest & 0xFF));
    return header + static_cast<char>(0x80 | length.size()) + length + std::string(body);
}

std::string sequence(const std::string& body) {
    return item(V_ASN1_SEQUENCE | V_ASN1_CONSTRUCTED, body);
}
std::string set(const std::string& body) {
    return item(V_ASN1_SET | V_ASN1_CONSTRUCTED, body);
}
std::string octets(std::string_view body) {
    return item(V_ASN1_OCTET_STRING, body);
}

std::string object(const char* numbers) {
    const std::unique_ptr<ASN1_OBJECT, decltype(&ASN1_OBJECT_free)> made(OBJ_txt2obj(numbers, 1),
                                                                         ASN1_OBJECT_free);
    return item(V_ASN1_OBJECT,
                {reinterpret_cast<const char*>(OBJ_get0_data(made.get())), OBJ_length(made.get())});
}

std::string algorithm(const char* numbers) {
    return sequence(object(numbers) + item(V_ASN1_NULL, {}));
}

// 16-bit text of plain letters, little-endian or, as BMPString has it, big-endian.
std::string wide(std::string_view text, bool big_endian) {
    std::string bytes;
    for (const char letter : text)
        bytes += big_endian ? std::string{'\0', letter} : std::string{letter, '\0'};
    return bytes;
}

std::string named_value(std::string_view name, std::string_view value) {
    return sequence(item(V_ASN1_BMPSTRING, wide(name, true)) + item(V_ASN1_INTEGER, attribute_flags) +
                    octets(wide(value, false) + std::string(2, '\0')));
}

std::string attribute(const char* type, const std::string& value) {
    return sequence(object(type) + set(value));
}

std::string hexadecimal(std::string_view bytes) {
    std::string digits;
    for (const char byte : bytes) {
        digits += "0123456789ABCDEF"[static_cast<unsigned char>(byte) >> 4];
        digits += "0123456789ABCDEF"[byte & 15];
    }
    return digits;
}

std::string time_item(std::int64_t seconds) {
    const std::unique_ptr<ASN1_TIME, decltype(&ASN1_TIME_free)> time(
        ASN1_TIME_set(nullptr, static_cast<std::time_t>(seconds)), ASN1_TIME_free);
    return item(ASN1_STRING_type(time.get()),
                {reinterpret_cast<const char*>(ASN1_STRING_get0_data(time.get())),
                 static_cast<std::size_t>(ASN1_STRING_length(time.get()))});
}

std::string member(const ListedFile& file, DigestAlgorithm by, const ListOptions& options) {
    const bool image = !options.images_by_bytes && rehearsal::check::is_image(file.bytes);
    const std::string digest = image ? rehearsal::check::image_digest(file.bytes, by, false)
                                     : rehearsal::check::flat_digest(file.bytes, by);
    const std::string identifier =
        options.second_form ? digest : wide(hexadecimal(digest), false) + std::string(2, '\0');
    const std::string info =
        sequence(algorithm(by == DigestAlgorithm::sha1 ? sha1 : sha256) + octets(digest));
    std::string attributes = attribute(name_and_value, named_value("File", file.name));
    if (!options.versions.empty())
        attributes += attribute(name_and_value, named_value("OSAttr", options.versions));
    attributes += attribute(indirect_data, sequence(sequence(object(image ? image_kind : file_kind)) + info));
    return sequence(octets(identifier) + set(attributes));
}

} // namespace

std::string make_list(const std::vector<ListedFile>& files, const ListOptions& options) {
    std::string members;
    for (const ListedFile& file : files) {
        members += member(file, DigestAlgorithm::sha1, options);
        if (options.second_form)
            members += member(file, DigestAlgorithm::sha256, options);
    }
    std::string list = sequence(object(options.usage.c_str())) +
                       octets(rehearsal::check::flat_digest(members, DigestAlgorithm::sha256).substr(0, 16)) +
                       time_item(options.made) + algorithm(options.second_form ? second_form : first_form) +
                       sequence(members);
    if (!options.systems.empty())
        list += item(0xA0,
                     sequence(sequence(object(name_and_value) + octets(named_value("OS", options.systems)))));
    return sequence(list);
}

} // namespace catalogue
