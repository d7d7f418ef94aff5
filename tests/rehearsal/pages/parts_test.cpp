// What pages are made of: escaped text, drawn dialogs, differences, and files with findings beside their
// lines.
#include "harness/test_session.h"
#include "machine/machine.h"
#include "machine/text.h"
#include "rehearsal/markup.h"
#include "rehearsal/pages/dialog_drawing.h"
#include "rehearsal/pages/machine_changes.h"
#include "rehearsal/pages/source_view.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace rehearsal;
using pages::Html;

TEST(PageMarkup, EscapesTextAndValuesAndLeavesNoByteThatIsNoText) {
    const struct {
        const char* name;
        std::string text, expected;
    } cases[] = {
        {"markup", "<a href=\"x\" o='y'>&amp;", "&lt;a href=&quot;x&quot; o=&#39;y&#39;&gt;&amp;amp;"},
        {"lines", "a\tb\nc", "a\tb\nc"},
        {"controls", std::string("a\0b\x1b\x7f", 5),
         "a\xEF\xBF\xBD"
         "b\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"letters", "\xC3\xA9\xE6\xA3\x9A\xF0\x9F\x96\xA8", "\xC3\xA9\xE6\xA3\x9A\xF0\x9F\x96\xA8"},
        {"no UTF-8", "a\xE9<\xC0\xBC\xED\xA0\x80",
         "a\xEF\xBF\xBD&lt;\xEF\xBF\xBD\xEF\xBF\xBD"
         "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"cut off", "\xE6\xA3", "\xEF\xBF\xBD\xEF\xBF\xBD"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(escaped_markup(one.text), one.expected) << one.name;
        Html html;
        html.put("td", {{"title", one.text}}, one.text);
        EXPECT_EQ(html.written(), "<td title=\"" + one.expected + "\">" + one.expected + "</td>") << one.name;
    }
}

std::string drawn(const platform::DialogView& dialog, const platform::DialogView* before) {
    Html html;
    pages::draw_dialog(html, dialog, before, "de");
    return html.written();
}

platform::ControlView control(int id, const char* kind, const char* text, bool visible, bool enabled) {
    platform::ControlView view;
    view.id = id;
    view.kind = kind;
    view.text = text;
    view.visible = visible;
    view.enabled = enabled;
    return view;
}

TEST(DialogDrawing, ShowsPlaceStateAndChangeOfEachControl) {
    platform::ControlView button = control(1015, "default button", "&Installieren && los", true, false);
    button.left = 214;
    platform::ControlView list = control(1003, "list", "", false, false);
    list.rows = {"10.0.0.7\tA", "10.0.0.8\tB"};
    list.selected = 1;
    platform::DialogView dialog;
    dialog.id = 105;
    dialog.enabled = dialog.visible = true;
    dialog.controls = {button, control(1007, "check box", "Standard", true, true), list,
                       control(104, "picture", "", true, true)};
    platform::DialogView later = dialog;
    later.controls[1].checked = true;
    const std::string page = drawn(later, &dialog);
    for (const char* part :
         {"--w:298;--h:210",                            // the template's size
          "class=\"control default button greyed\"",    //
          "--x:214;", ">Installieren &amp; los</span>", //
          "class=\"control tick ticked\"",              //
          "class=\"row selected\">10.0.0.8\tB<",        //
          "data-kind=\"unseen\" hidden>",               // the list
          "<i>changed</i> 1007 Standard</span>",        //
          "<i>greyed</i> 1015 Installieren &amp; los</span>", "<i>hidden</i> 1003 list</span>",
          "src=\"data:image/bmp;base64,Qk0", "lang=\"de\""})
        EXPECT_NE(page.find(part), std::string::npos) << part;
    EXPECT_EQ(drawn(dialog, nullptr).find("<i>changed</i>"), std::string::npos);
}

TEST(MachineChanges, TellsRecordsByNameAndEachKeyThatDiffers) {
    platform::Machine before = platform::default_machine();
    platform::PrintQueue old;
    old.name = u"Old";
    old.port = u"LPT1:";
    before.spooler.queues.insert(before.spooler.queues.begin(), old);
    platform::Machine after = before;
    after.spooler.queues.erase(after.spooler.queues.begin()); // all others move up and are the same
    after.spooler.queues.back().port = u"COM1:";
    platform::PrintQueue made = old;
    made.name = u"Made";
    made.data[u"Label Sizes\\258"][u"width"] = {1, {'4', 0, 0, 0}};
    after.spooler.queues.push_back(made);
    after.spooler.default_printer = u"Made";
    std::ostringstream told;
    for (const pages::Change& change : pages::machine_changes(before, after))
        if (change.key == "port" || change.key.starts_with("data /") || change.key.empty())
            told << change.thing << "|" << change.key << "|" << change.before << "|" << change.after << "\n";
    const std::string queues = "spooler / queues / ";
    EXPECT_EQ(told.str(), queues + "Old|port|LPT1:|\n" + queues + "Print to File" +
                              "|port|PORTPROMPT:|COM1:\n" + queues + "Made|port||LPT1:\n" + queues +
                              "Made|data / Label Sizes\\258||width=4\n" +
                              "spooler / default_printer||Print to File|Made\n");
    EXPECT_TRUE(pages::machine_changes(before, before).empty());
}

TEST(SourceView, ReadsLinesInTheEncodingThatAFileHas) {
    using Lines = std::vector<std::string>;
    const struct {
        const char* name;
        std::string bytes;
        Lines expected;
    } cases[] = {
        {"mixed ends", "a\r\nb\n\nc", {"a", "b", "", "c"}},
        {"line by line", "gr\xC3\xBC\xC3\x9F\ngr\xFC\xDF", {"gr\xC3\xBC\xC3\x9F", "gr\xC3\xBC\xC3\x9F"}},
        {"mark of UTF-8", "\xEF\xBB\xBFx", {"x"}},
        {"UTF-16", std::string("\xFF\xFEx\0\n\0\x5A\x68", 8), {"x", "\xE6\xA1\x9A"}},
        {"a program", std::string("MZ\0\1", 4), {}},
        {"nothing", "", {}},
    };
    for (const auto& one : cases)
        EXPECT_EQ(pages::source_lines(one.bytes), one.expected) << one.name;
}

TEST(SourceView, PutsEachFindingBeneathItsLineAndFoldsTheRest) {
    TemporaryFolder folder;
    std::string text;
    for (int line = 1; line <= 20; ++line)
        text += "gr\xFC\xDF"
                "e " +
                std::to_string(line) + ", width\r\n";
    TestSession::write(folder.path / "a.inf", text);
    const auto at = [](std::size_t line, std::size_t column, const char* reason) {
        return check::Finding{
            "media-number", check::Severity::error, {"a.inf", line, column}, reason, "Do it."};
    };
    // The last is behind the file's end, as what is missing there has its place.
    const std::vector<check::Finding> findings{at(0, 0, "whole"), at(9, 7, "one"), at(9, 9, "two"),
                                               at(12, 400, "three"), at(99, 1, "four")};
    Html html;
    pages::put_findings(html, check::Medium(folder.path), findings);
    const std::string page = html.written();
    const auto line = [](const std::string& number, const std::string& code) {
        return "<span class=\"number\">" + number +
               "</span><code>gr\xC3\xBC\xC3\x9F"
               "e " +
               code + "</code>";
    };
    const std::string in_order[] = {"whole",
                                    "<summary>6 lines</summary>",
                                    line("6", "6, width"),
                                    "</details>",
                                    line("7", "7, width"),
                                    line("9", "<mark>9</mark>, width"),
                                    "one",
                                    "two",
                                    line("10", "10, width"),
                                    line("12", "12, width<mark></mark>"),
                                    "three",
                                    line("14", "14, width"),
                                    "<summary>3 lines</summary>",
                                    line("20", "20, width"),
                                    "four"};
    std::size_t place = 0;
    for (const std::string& part : in_order) {
        const std::size_t found = page.find(part, place);
        ASSERT_NE(found, std::string::npos) << part << "\n" << page.substr(place);
        place = found + part.size();
    }
    for (int number = 1; number <= 20; ++number) {
        const std::string shown = "\"number\">" + std::to_string(number) + "<";
        EXPECT_EQ(page.find(shown, page.find(shown) + 1), std::string::npos) << "twice: " << number;
    }
}

} // namespace
