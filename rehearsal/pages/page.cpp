#include "rehearsal/pages/page.h"

#include "rehearsal/pages/base64.h"
#include "rehearsal/pages/page_parts.h"

#include <openssl/sha.h>

#include <array>
#include <span>

namespace rehearsal::pages {
namespace {

// As a content security policy names a part that may stand in the page (W3C CSP 3, hash-source).
std::string hash_source(std::string_view part) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char*>(part.data()), part.size(), digest.data());
    return "'sha256-" + base64(digest) + "'";
}

// Nothing is fetched, and no other script runs, whatever a file or a printer brought into the page.
std::string policy() {
    return "default-src 'none'; img-src data:; script-src " + hash_source(page_script()) + "; style-src " +
           hash_source(page_style()) +
           "; style-src-attr 'unsafe-inline'; base-uri 'none'; form-action 'none'";
}

std::string head_text(const Page& page) {
    Html html;
    html.single("meta", {{"charset", "utf-8"}});
    html.single("meta", {{"http-equiv", "Content-Security-Policy"}, {"content", policy()}});
    html.single("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
    html.single("meta", {{"name", "color-scheme"}, {"content", "light dark"}});
    html.put("title", page.tool + ": " + page.title);
    return html.written();
}

void put_theme_switch(Html& html) {
    const auto group = html.in("div", {{"class", "themes"}, {"role", "group"}, {"aria-label", "Colours"}});
    for (const auto& [theme, label] : {std::pair{"auto", "Auto"}, {"light", "Light"}, {"dark", "Dark"}})
        html.put("button",
                 {{"type", "button"},
                  {"data-theme-choice", theme},
                  {"aria-pressed", std::string_view(theme) == "auto" ? "true" : "false"}},
                 label);
}

void put_facts(Html& html, const Page& page) {
    const auto list = html.in("dl", {{"class", "facts"}});
    for (const auto& [name, fact] : page.facts) {
        if (fact.empty())
            continue;
        const auto pair = html.in("div");
        html.put("dt", name);
        html.put("dd", fact);
    }
}

void put_header(Html& html, const Page& page) {
    const auto header = html.in("header");
    {
        const auto bar = html.in("div", {{"class", "bar"}});
        html.put("p", {{"class", "tool"}}, page.tool);
        put_theme_switch(html);
    }
    html.put("h1", page.title);
    html.put("p", {{"class", "result " + std::string(tone_class(page.tone))}}, page.result);
    put_facts(html, page);
    const auto nav = html.in("nav", {{"aria-label", "Sections"}});
    for (const Section& section : page.sections)
        html.put("a", {{"href", "#" + section.id}}, section.title);
}

void put_section(Html& html, const Section& section) {
    const auto element = html.in("section", {{"id", section.id}, {"aria-labelledby", section.id + "-title"}});
    html.put("h2", {{"id", section.id + "-title"}}, section.title);
    section.body(html);
}

std::string body_text(const Page& page) {
    Html html;
    html.put("a", {{"class", "skip"}, {"href", "#contents"}}, "Skip to the contents");
    put_header(html, page);
    {
        const auto main = html.in("main", {{"id", "contents"}, {"tabindex", "-1"}});
        for (const Section& section : page.sections)
            put_section(html, section);
    }
    return html.written();
}

void put_choice(Html& html, const FilterChoice& choice) {
    const auto label = html.in("label");
    if (choice.ticked)
        html.single("input", {{"type", "checkbox"}, {"value", choice.kind}, {"checked", ""}});
    else
        html.single("input", {{"type", "checkbox"}, {"value", choice.kind}});
    html.text(" " + choice.label + " ");
    if (choice.count != 0)
        html.put("span", {{"class", "count"}}, std::to_string(choice.count));
}

void put_list(Html& html, const FilterList& list) {
    const auto select = html.in("select", {{"data-key", list.key}, {"aria-label", list.label}});
    html.put("option", {{"value", ""}}, list.label + ": all");
    for (const std::string& value : list.values)
        html.put("option", {{"value", value}}, value);
}

} // namespace

std::string_view tone_class(Tone tone) {
    switch (tone) {
    case Tone::good:
        return "good";
    case Tone::warning:
        return "warning";
    case Tone::bad:
        return "bad";
    case Tone::plain:
        break;
    }
    return "plain";
}

std::string page_text(const Page& page) {
    std::string out = "<!DOCTYPE html>\n<html lang=\"en\" data-theme=\"auto\"><head>" + head_text(page);
    out.append("<style>").append(page_style()).append("</style></head>\n<body>");
    out += body_text(page);
    out.append("\n<script>").append(page_script()).append("</script></body></html>\n");
    return out;
}

void put_filters(Html& html, std::string_view target, const std::vector<FilterChoice>& choices,
                 const std::vector<FilterList>& lists) {
    const auto bar = html.in(
        "div",
        {{"class", "filters"}, {"role", "group"}, {"aria-label", "What is shown"}, {"data-filters", target}});
    for (const FilterChoice& choice : choices)
        put_choice(html, choice);
    for (const FilterList& list : lists)
        put_list(html, list);
    html.single(
        "input",
        {{"type", "search"}, {"aria-label", "Words to look for"}, {"placeholder", "Filter by words"}});
    html.put("output", {{"aria-live", "polite"}}, "");
}

void put_table_head(Html& html, std::initializer_list<std::string_view> titles) {
    const auto head = html.in("thead");
    const auto row = html.in("tr");
    for (const std::string_view title : titles)
        html.put("th", {{"scope", "col"}}, title);
}

} // namespace rehearsal::pages
