// The program's dialogs and boxes as they look on a screen, from their templates and a run's texts.
#pragma once

#include "calls/run/user.h"
#include "rehearsal/pages/html.h"

#include <string_view>

namespace rehearsal::pages {

// A figure with the dialog in it, and beneath it what has changed since `before` (null: nothing is known) and
// what is hidden. Hidden controls are drawn too, for a filter to show. `language` is that of its texts, as
// the attribute lang has it (RFC 5646).
void draw_dialog(Html& html, const platform::DialogView& dialog, const platform::DialogView* before,
                 std::string_view language);

void draw_box(Html& html, const platform::BoxView& box, std::string_view language);

} // namespace rehearsal::pages
