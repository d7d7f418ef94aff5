#include "rehearsal/new/languages.h"

namespace rehearsal::skeleton {
namespace {

// English without a country is the language of every system that has none of the others.
constexpr SkeletonLanguage known_languages[] = {
    {"ENU", "English", "license.txt", u"English",
     u"Replace this text by the license agreement. It is shown in English, and wherever a language has no "
     u"file.",
     u"Fine print"},
    {"ENG", "English (United Kingdom)", "license_ENU.txt", u"English (United Kingdom)",
     u"Replace this text by the licence agreement for the United Kingdom.", u"Fine print"},
    {"FRA", "French", "license_FRA.txt", u"Français", u"Remplacez ce texte par le contrat de licence.",
     u"Petits caractères"},
    {"DEU", "German", "license_DEU.txt", u"Deutsch", u"Dieser Text ist durch den Lizenzvertrag zu ersetzen.",
     u"Kleine Schrift"},
    {"CH", "Chinese", "license_CH.txt", u"中文", u"请将此文本替换为许可协议。", u"小字"},
    {"ES", "Spanish", "license_ES.txt", u"Español", u"Sustituya este texto por el contrato de licencia.",
     u"Letra pequeña"},
    {"JPN", "Japanese", "license_JPN.txt", u"日本語", u"この文を使用許諾契約に置き換えてください。",
     u"小さな文字"},
};

} // namespace

std::span<const SkeletonLanguage> skeleton_languages() {
    return known_languages;
}

const SkeletonLanguage* find_language(std::string_view code) {
    for (const SkeletonLanguage& language : known_languages)
        if (code == language.code)
            return &language;
    return nullptr;
}

} // namespace rehearsal::skeleton
