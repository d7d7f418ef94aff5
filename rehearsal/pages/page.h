// What all pages have in common: one file that needs no other and no network, light or dark as its reader has
// it, for the screen and for paper.
#pragma once

#include "rehearsal/pages/html.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace rehearsal::pages {

enum class Tone { plain, good, warning, bad };

struct Section {
    std::string id; // made of small letters and hyphens: a link leads to it
    std::string title;
    std::function<void(Html&)> body;
};

struct Page {
    std::string tool;  // "trk check"
    std::string title; // what was looked at
    Tone tone = Tone::plain;
    std::string result; // one line
    std::vector<std::pair<std::string, std::string>>
        facts; // a name and what there is; empty ones are left out
    std::vector<Section> sections;
};

// The file's text, UTF-8.
std::string page_text(const Page& page);

// The value of class for a tone.
std::string_view tone_class(Tone tone);

// One choice of a filter: what carries the kind in its data-kind is there while it is ticked.
struct FilterChoice {
    std::string kind;
    std::string label;
    std::size_t count = 0;
    bool ticked = true;
};

// A list of values of which an entry must have the chosen one in its data-KEY.
struct FilterList {
    std::string key;
    std::string label;
    std::vector<std::string> values;
};

// Filters for what lies in the element of that id, and a field for words that an entry must have in it.
void put_filters(Html& html, std::string_view target, const std::vector<FilterChoice>& choices,
                 const std::vector<FilterList>& lists = {});

// A table's head.
void put_table_head(Html& html, std::initializer_list<std::string_view> titles);

} // namespace rehearsal::pages
