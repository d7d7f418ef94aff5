#include "rehearsal/pages/dialog_drawing.h"

#include "rehearsal/pages/dialog_layouts.h"

#include <windows.h>

#include <vector>

namespace rehearsal::pages {
namespace {

using platform::ControlView;
using platform::DialogView;

// "&Install" has the mark of its key in it; "&&" is the character itself.
std::string without_key_mark(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && ++i == text.size())
            break;
        out += text[i];
    }
    return out;
}

std::string without_returns(std::string text) {
    std::erase(text, '\r');
    return text;
}

std::string called(const ControlView& control) {
    const std::string text = without_key_mark(control.text.substr(0, control.text.find_first_of("\r\n")));
    return std::to_string(control.id) + " " + (text.empty() ? control.kind : text);
}

std::uint32_t style_of(const DialogView& dialog, const ControlView& control) {
    const platform::ControlTemplate* const layout = control_layout(dialog.id, control.id);
    return layout == nullptr ? 0 : layout->style;
}

// Dialog units, which the style sheet turns into pixels.
std::string place_of(const ControlView& control) {
    return "--x:" + std::to_string(control.left) + ";--y:" + std::to_string(control.top) +
           ";--w:" + std::to_string(control.width) + ";--h:" + std::to_string(control.height);
}

void put_rows(Html& html, const ControlView& control) {
    for (std::size_t row = 0; row < control.rows.size(); ++row) {
        const bool selected = static_cast<int>(row) == control.selected;
        html.put("span", {{"class", selected ? "row selected" : "row"}}, control.rows[row]);
    }
}

void put_picture(Html& html, const DialogView& dialog, const ControlView& control) {
    const platform::ControlTemplate* const layout = control_layout(dialog.id, control.id);
    const std::string url = layout == nullptr ? std::string() : picture_url(layout->image);
    if (!url.empty())
        html.single("img", {{"src", url}, {"alt", "picture"}});
}

void put_contents(Html& html, const DialogView& dialog, const ControlView& control) {
    if (control.kind == "list")
        put_rows(html, control);
    else if (control.kind == "picture")
        put_picture(html, dialog, control);
    else if (control.kind == "edit" || control.kind == "static")
        html.text(without_returns(control.text));
    else
        html.text(without_key_mark(control.text));
}

std::string class_of(const DialogView& dialog, const ControlView& control) {
    const std::uint32_t style = style_of(dialog, control);
    std::string names = "control " + control.kind;
    if (control.kind == "check box")
        names = control.checked ? "control tick ticked" : "control tick";
    if (control.kind == "edit" && (style & ES_MULTILINE) != 0)
        names += " long";
    if ((style & WS_BORDER) != 0)
        names += " framed";
    return names + (control.enabled ? "" : " greyed") + (control.visible ? "" : " unseen");
}

void put_control(Html& html, const DialogView& dialog, const ControlView& control) {
    const std::string place = place_of(control), names = class_of(dialog, control);
    const std::string title = called(control) + (control.enabled ? "" : ", greyed") +
                              (control.visible ? "" : ", hidden") + (control.checked ? ", ticked" : "");
    const bool scrolls = names.find(" long") != std::string::npos || control.kind == "list";
    if (!control.visible) {
        const auto element = html.in(
            "span",
            {{"class", names}, {"style", place}, {"title", title}, {"data-kind", "unseen"}, {"hidden", ""}});
        put_contents(html, dialog, control);
    } else if (scrolls) { // the keyboard reaches what has to be scrolled
        const auto element = html.in("span", {{"class", names},
                                              {"style", place},
                                              {"title", title},
                                              {"tabindex", "0"},
                                              {"role", "group"},
                                              {"aria-label", title}});
        put_contents(html, dialog, control);
    } else {
        const auto element = html.in("span", {{"class", names}, {"style", place}, {"title", title}});
        put_contents(html, dialog, control);
    }
}

bool looks_alike(const ControlView& a, const ControlView& b) {
    return a.text == b.text && a.visible == b.visible && a.enabled == b.enabled && a.checked == b.checked &&
           a.rows == b.rows && a.selected == b.selected;
}

std::string list_of(const DialogView& dialog, bool (*wanted)(const ControlView&, const ControlView*),
                    const DialogView* before) {
    std::string list;
    for (std::size_t i = 0; i < dialog.controls.size(); ++i) {
        const ControlView* const old =
            before != nullptr && i < before->controls.size() ? &before->controls[i] : nullptr;
        if (wanted(dialog.controls[i], old))
            list += (list.empty() ? "" : ", ") + called(dialog.controls[i]);
    }
    return list;
}

void put_caption(Html& html, const DialogView& dialog, const DialogView* before) {
    const auto changed = [](const ControlView& control, const ControlView* old) {
        return old != nullptr && !looks_alike(control, *old);
    };
    const auto greyed = [](const ControlView& control, const ControlView*) {
        return control.visible && !control.enabled;
    };
    const auto hidden = [](const ControlView& control, const ControlView*) { return !control.visible; };
    const auto caption = html.in("figcaption");
    html.put("b", "Dialog " + std::to_string(dialog.id) + (dialog.enabled ? "" : ", disabled"));
    for (const auto& [name, list] : {std::pair{"changed", list_of(dialog, changed, before)},
                                     {"greyed", list_of(dialog, greyed, before)},
                                     {"hidden", list_of(dialog, hidden, before)}}) {
        if (list.empty())
            continue;
        const auto line = html.in("span", {{"class", "note"}});
        html.put("i", name);
        html.text(" " + list);
    }
}

} // namespace

void draw_dialog(Html& html, const DialogView& dialog, const DialogView* before, std::string_view language) {
    const platform::DialogTemplate* const layout = dialog_layout(dialog.id);
    const auto figure = html.in("figure");
    {
        const std::string size = layout == nullptr ? std::string("--w:300;--h:200")
                                                   : "--w:" + std::to_string(layout->width) +
                                                         ";--h:" + std::to_string(layout->height);
        const auto scroller = html.in("div", {{"class", "scroller"}});
        const auto window = html.in("div", {{"class", "window"}, {"lang", language}, {"style", size}});
        html.put("div", {{"class", "caption"}}, dialog.caption);
        const auto face = html.in("div", {{"class", "face"}});
        for (const ControlView& control : dialog.controls)
            put_control(html, dialog, control);
    }
    put_caption(html, dialog, before);
}

void draw_box(Html& html, const platform::BoxView& box, std::string_view language) {
    constexpr std::uint32_t icons = 0xF0;
    const bool warning = (box.flags & icons) == MB_ICONEXCLAMATION;
    const auto figure = html.in("figure");
    {
        const auto window = html.in("div", {{"class", "window box"}, {"lang", language}});
        html.put("div", {{"class", "caption"}}, box.caption);
        const auto face = html.in("div", {{"class", "message"}});
        if (warning)
            html.put("span", {{"class", "sign"}, {"aria-hidden", "true"}}, "!");
        html.put("p", without_returns(box.text));
        html.put("span", {{"class", "ok"}}, "OK");
    }
    html.put("figcaption", warning ? "Warning box, answered by OK" : "Message box, answered by OK");
}

} // namespace rehearsal::pages
