// What a reader sees of a rehearsal: dialogs as text, and the faults that never struck.
#include "rehearsal/outcome.h"
#include "rehearsal/terminal_view.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

platform::ControlView control(int id, const std::string& kind, const std::string& text, int top) {
    platform::ControlView view;
    view.id = id;
    view.kind = kind;
    view.text = text;
    view.visible = view.enabled = true;
    view.top = top;
    return view;
}

platform::DialogView dialog() {
    platform::DialogView view;
    view.id = 105;
    view.caption = "Setup";
    view.visible = view.enabled = true;
    view.controls = {control(2, "button", "Cancel", 80), control(9, "static", "Ready", 40),
                     control(7, "check box", "Default", 20), control(15, "default button", "Install", 60)};
    return view;
}

TEST(TerminalView, DrawsADialogInReadingOrderAndTellsHiddenFromGreyed) {
    platform::DialogView view = dialog();
    view.controls[0].visible = false;
    view.controls[0].enabled = false;
    view.controls[3].enabled = false;
    view.controls[1].text = "One\r\n\r\nTwo\r\n";
    EXPECT_EQ(rehearsal::draw_dialog(view, nullptr), "\n  == Dialog 105: Setup ==\n"
                                                     "     7           [ ] Default\n"
                                                     "     9           | One\n"
                                                     "                 |\n"
                                                     "                 | Two\n"
                                                     "     15   greyed [[ Install ]]\n"
                                                     "    hidden: 2 Cancel (greyed)\n");
}

TEST(TerminalView, GivesOnlyWhatChangedWhileTheSameControlsCanBeUsed) {
    const struct {
        const char* name;
        std::function<void(platform::DialogView&)> change;
        std::string expected; // behind the caption's line
    } cases[] = {
        {"a tick", [](auto& view) { view.controls[2].checked = true; },
         "   * 7           [x] Default\n     ...\n"},
        {"an emptied text", [](auto& view) { view.controls[1].text.clear(); }, "   * 9\n     ...\n"},
        {"a greyed button", [](auto& view) { view.controls[3].enabled = false; },
         "     7           [ ] Default\n     9           Ready\n   * 15   greyed [[ Install ]]\n"
         "     2           [ Cancel ]\n"},
        {"a hidden button", [](auto& view) { view.controls[3].visible = false; },
         "     7           [ ] Default\n     9           Ready\n     2           [ Cancel ]\n"
         "    hidden: 15 Install\n"},
    };
    const platform::DialogView before = dialog();
    for (const auto& one : cases) {
        platform::DialogView after = before;
        one.change(after);
        EXPECT_EQ(rehearsal::draw_dialog(after, &before), "\n  == Dialog 105: Setup ==\n" + one.expected)
            << one.name;
    }
}

TEST(TerminalView, CutsALongAgreementButNoStatus) {
    platform::DialogView view = dialog();
    const std::string text(1000, 'a');
    view.controls = {control(9, "static", text, 0), control(10, "edit", text, 20)};
    const std::string drawn = rehearsal::draw_dialog(view, nullptr);
    EXPECT_NE(drawn.find("9           " + text + "\n"), std::string::npos);
    EXPECT_NE(drawn.find("10          | " + text.substr(0, 240) + " ... (1000 bytes in all)\n"),
              std::string::npos);
}

TEST(IdleFaults, AreThoseThatNoCallOfTheRunMet) {
    rehearsal::Outcome outcome;
    const auto called = [&outcome](const char* call, const char* argument, bool can_fail) {
        platform::JournalEntry entry;
        entry.call = call;
        entry.argument = argument;
        entry.can_fail = can_fail;
        outcome.journal.push_back(entry);
    };
    called("CopyFileW", "D:\\a.exe", true);
    called("CopyFileW", "D:\\b.exe", true);
    called("GetTickCount", "", false);
    const auto fault = [](const char* call, unsigned nth, const char* argument) {
        platform::Fault one;
        one.call = call;
        one.nth = nth;
        one.argument = argument;
        return one;
    };
    outcome.before.faults = {fault("CopyFileW", 1, "B.EXE"), fault("CopyFileW", 3, ""),
                             fault("GetTickCount", 1, ""), fault("AddPrinterW", 1, "")};
    EXPECT_EQ(rehearsal::find_idle_faults(outcome),
              (std::vector<std::string>{"CopyFileW", "GetTickCount", "AddPrinterW"}));
}

} // namespace
