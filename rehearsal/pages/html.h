// A writer of HTML whose every text is escaped: the only names it takes are literals of the source, and all
// else goes in as text or as an attribute's value.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace rehearsal::pages {

// The name of an element or attribute. No attribute that holds a script has one.
class Name {
public:
    consteval Name(const char* text) : text_(text) {
        for (const char letter : text_)
            if ((letter < 'a' || letter > 'z') && (letter < '0' || letter > '9') && letter != '-')
                throw "a name has small letters, digits and hyphens";
        if (text_.starts_with("on"))
            throw "no scripts in attributes";
    }
    constexpr std::string_view text() const { return text_; }

private:
    std::string_view text_;
};

struct Attribute {
    Name name;
    std::string_view value; // empty: the name alone
};

using Attributes = std::initializer_list<Attribute>;

class Html {
public:
    // Ends its element where it goes out of scope.
    class Element {
    public:
        ~Element();
        Element(const Element&) = delete;
        Element& operator=(const Element&) = delete;

    private:
        friend class Html;
        Element(Html& html, Name name) : html_(html), name_(name) {}
        Html& html_;
        const Name name_;
    };

    [[nodiscard]] Element in(Name name, Attributes attributes = {});
    void put(Name name, Attributes attributes, std::string_view text); // with its end
    void put(Name name, std::string_view text) { put(name, {}, text); }
    void single(Name name, Attributes attributes); // of the kind that has no end, such as meta
    void text(std::string_view text);

    const std::string& written() const { return out_; }

private:
    void begin(Name name, Attributes attributes);
    std::string out_;
};

// How many there are of a thing, in words: "1 error", "2 errors".
std::string counted(std::size_t count, const char* what);

} // namespace rehearsal::pages
