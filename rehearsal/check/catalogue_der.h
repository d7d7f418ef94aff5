// Walks over ASN.1 in its distinguished encoding (ITU-T X.690): what a catalogue's list is written in. The
// cryptography library reads the headers; here is only the order in which they come.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rehearsal::check {

// Identifier octets of the items that a catalogue is made of.
namespace der_tag {
constexpr int integer = 0x02;
constexpr int octets = 0x04;
constexpr int object = 0x06;
constexpr int utc_time = 0x17;
constexpr int general_time = 0x18;
constexpr int wide_text = 0x1E; // BMPString, big-endian
constexpr int sequence = 0x30;
constexpr int set = 0x31;
constexpr int context_0 = 0xA0; // constructed [0]
} // namespace der_tag

struct DerItem {
    int tag = 0;            // identifier octet: class, constructed bit and number
    std::string_view body;  // without the header
    std::string_view whole; // with it
};

// The items of a text of bytes, one after the other. What lies behind a header that can't be read isn't
// looked at.
class DerItems {
public:
    explicit DerItems(std::string_view bytes) : rest_(bytes) {}

    bool at_end() const { return rest_.empty(); }
    bool broken() const { return broken_; }
    // The next item; none at the end and at a header that can't be read, has no definite length or reaches
    // beyond the bytes.
    std::optional<DerItem> next();
    // The next item if it bears the tag; otherwise it stays the next.
    std::optional<DerItem> next(int tag);

private:
    std::string_view rest_;
    bool broken_ = false;
};

// The identifier's numbers with points between; empty for anything else.
std::string der_object(const DerItem& item);

// A UTCTime or GeneralizedTime in seconds since 1970, UTC.
std::optional<std::int64_t> der_time(const DerItem& item);

} // namespace rehearsal::check
