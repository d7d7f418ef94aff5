#include "rehearsal/pages/html.h"

#include "rehearsal/markup.h"

namespace rehearsal::pages {

Html::Element::~Element() {
    html_.out_.append("</").append(name_.text()).append(">");
}

void Html::begin(Name name, Attributes attributes) {
    out_.append("<").append(name.text());
    for (const Attribute& attribute : attributes) {
        out_.append(" ").append(attribute.name.text());
        if (!attribute.value.empty())
            out_.append("=\"").append(escaped_markup(attribute.value)).append("\"");
    }
    out_.append(">");
}

Html::Element Html::in(Name name, Attributes attributes) {
    begin(name, attributes);
    return {*this, name};
}

void Html::put(Name name, Attributes attributes, std::string_view text) {
    const Element element = in(name, attributes);
    out_ += escaped_markup(text);
}

void Html::single(Name name, Attributes attributes) {
    begin(name, attributes);
}

void Html::text(std::string_view text) {
    out_ += escaped_markup(text);
}

std::string counted(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

} // namespace rehearsal::pages
