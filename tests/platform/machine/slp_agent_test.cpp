#include "machine/slp_agent.h"

#include <gtest/gtest.h>

namespace {

using platform::attribute_reply;
using platform::concerns_raw_printer;
using platform::parse_attribute_request;

// A request by RFC 2608, section 10.3, put together from its fields; the length is set at the end.
struct Fields {
    std::string header = std::string("\x02\x06\0\0\0\0\0\0\0\0\x20\x10", 12);
    std::string language = "en";
    std::string responders;
    std::string url = "service:printer:raw-tcp";
    std::string scopes = "DEFAULT";
    std::string tags;
    std::string security;
};

std::string counted(const std::string& text) {
    return {static_cast<char>(text.size() >> 8), static_cast<char>(text.size() & 255)};
}

std::vector<std::uint8_t> bytes_of(const Fields& fields, int length_error = 0) {
    std::string text = fields.header;
    for (const std::string& field :
         {fields.language, fields.responders, fields.url, fields.scopes, fields.tags, fields.security})
        text += counted(field) + field;
    const std::size_t length = text.size() + static_cast<std::size_t>(length_error);
    text[3] = static_cast<char>(length >> 8);
    text[4] = static_cast<char>(length & 255);
    return {text.begin(), text.end()};
}

Fields with_header_byte(std::size_t offset, char value) {
    Fields fields;
    fields.header[offset] = value;
    return fields;
}

TEST(SlpAgent, ReadsWellFormedRequestsOnly) {
    const auto request = parse_attribute_request(bytes_of({}));
    ASSERT_TRUE(request);
    EXPECT_EQ(request->xid, 0x2010);
    EXPECT_EQ(request->language, "en");
    EXPECT_EQ(request->url, "service:printer:raw-tcp");
    EXPECT_EQ(request->scopes, "DEFAULT");
    EXPECT_TRUE(parse_attribute_request(bytes_of(with_header_byte(5, '\x20')))) << "multicast flag";

    Fields no_language;
    no_language.language.clear();
    const struct {
        const char* name;
        std::vector<std::uint8_t> bytes;
    } bad[] = {
        {"version 1", bytes_of(with_header_byte(0, 1))},
        {"a service request", bytes_of(with_header_byte(1, 1))},
        {"a flag that isn't defined", bytes_of(with_header_byte(6, 1))},
        {"an extension", bytes_of(with_header_byte(9, 1))},
        {"a length below the datagram's", bytes_of({}, -1)},
        {"a length above the datagram's", bytes_of({}, 1)},
        {"no language", bytes_of(no_language)},
    };
    for (const auto& [name, bytes] : bad)
        EXPECT_FALSE(parse_attribute_request(bytes)) << name;

    // A datagram cut anywhere, and one byte too long, each with the length that it has.
    for (std::size_t size = 0; size <= bytes_of({}).size() + 1; ++size) {
        std::vector<std::uint8_t> bytes = bytes_of({});
        const bool whole = size == bytes.size();
        bytes.resize(size);
        if (size > 4)
            bytes[4] = static_cast<std::uint8_t>(size);
        EXPECT_EQ(parse_attribute_request(bytes).has_value(), whole) << size;
    }
}

TEST(SlpAgent, AnswersWhatConcernsIt) {
    Fields other_service, other_scope, authenticated, heard, several;
    other_service.url = "service:printer:lpr";
    other_scope.scopes = "DEFAULTS,OFFICE";
    authenticated.security = "key";
    heard.responders = "10.0.0.6,10.0.0.7";
    several.scopes = "OFFICE,DEFAULT";
    several.responders = "10.0.0.77";
    const struct {
        const char* name;
        Fields fields;
        bool expected;
    } cases[] = {
        {"plain", {}, true},
        {"one scope of several, and others heard before", several, true},
        {"another service", other_service, false},
        {"another scope", other_scope, false},
        {"authentication wanted", authenticated, false},
        {"heard before", heard, false},
    };
    for (const auto& [name, fields, expected] : cases) {
        const auto request = parse_attribute_request(bytes_of(fields));
        ASSERT_TRUE(request) << name;
        EXPECT_EQ(concerns_raw_printer(*request, "10.0.0.7"), expected) << name;
    }
}

TEST(SlpAgent, WritesRepliesByTheLayout) {
    platform::AttributeRequest request;
    request.xid = 0x2010;
    request.language = "en";
    const auto text_of = [](const std::vector<std::uint8_t>& bytes) {
        return std::string(bytes.begin(), bytes.end());
    };
    EXPECT_EQ(text_of(attribute_reply(request, "(a=b)")),
              std::string("\x02\x07\0\0\x1a\0\0\0\0\0\x20\x10\0\x02"
                          "en\0\0\0\x05(a=b)\0",
                          26));
    EXPECT_EQ(attribute_reply(request, "").size(), 21u);
}

} // namespace
