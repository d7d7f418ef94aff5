// What the user can do between the start and the install: the list, the typed address and the terms page.
#include "app/ip_dialog.h"
#include "calls/windows/user_input.h"
#include "scenarios/scenario.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using rehearsal::Outcome;

constexpr char network_mode[] = "list default install- refresh address cancel";

// The lines from the first one that begins so.
std::string log_from(const Outcome& outcome, const std::string& start) {
    const std::size_t place = outcome.log.find("\n" + start);
    return place == std::string::npos ? "no line \"" + start + "\"" : outcome.log.substr(place + 1);
}

TEST(AddressDialog, TakesAddressesByTheirForm) {
    const struct {
        std::string typed;
        std::string log;
        std::string row; // "": none, and no box either
        bool warned = false;
    } table[] = {
        {"010.1.1.1", " - 4 10.1.1.1\r\n", "10.1.1.1"},
        {"256.1.1.1", " - 4 256.1.1.1\r\n", "", true},
        {"1.2.3", " - 3 1.2.3.0\r\n", "", true},
        {"", " - -1 0.0.0.0\r\n", "", true},
        {"-1.2.3.4", " - 4 -1.2.3.4\r\n", "", true},
        {"99999999999.1.1.1", " - 4 2147483647.1.1.1\r\n", "", true},
        {"1.2.3.4.5 or so", " - 4 1.2.3.4\r\n", "1.2.3.4"},
        {"0.0.0.0", " - 4 0.0.0.0\r\n", "0.0.0.0"},
        {"255.255.255.255", " - 4 255.255.255.255\r\n", "255.255.255.255"},
        {"10.0.0.7", " - 4 10.0.0.7\r\n10.0.0.7 already in list\r\n", ""},
        {"10.1.1.1", " - 4 10.1.1.1\r\n10.1.1.1 already in list\r\n", ""},
        {std::string(300, 'x'), " - 0 0.0.0.0\r\n", "", true}, // 255 of them are read and shown
    };
    Scenario scenario;
    scenario.actions = {"press 1014"};
    std::string log;
    std::string boxes;
    std::vector<std::string> rows = {"10.0.0.7\tShelf A", "10.0.0.8\tShelf B"};
    for (const auto& row : table) {
        const std::string read = row.typed.substr(0, 255);
        scenario.actions.insert(scenario.actions.end(), {"press 1016", "type 1000 " + row.typed, "press 1"});
        log += "CreateDialog IP\r\nOK\r\n" + read + row.log;
        if (!row.row.empty())
            rows.push_back(row.row + "\tTest");
        if (row.warned)
            boxes += (boxes.empty() ? "" : " / ") + ("!Vorlane Inc: Invalid IP address:" + read + "!");
    }
    for (const char* const leaving : {"press 2", "close"}) {
        scenario.actions.insert(scenario.actions.end(), {"press 1016", "type 1000 1.1.1.1", leaving});
        log += "CreateDialog IP\r\n";
    }
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(log_from(outcome, "CreateDialog IP"), log);
    EXPECT_EQ(boxes_of(outcome), boxes);
    EXPECT_EQ(control_of(outcome, 105, 1003).rows, rows);
    EXPECT_EQ(shown_controls(outcome), network_mode) << "a new row isn't selected";
    EXPECT_EQ(caption_of(outcome, 104), "ZR Series Installer");
}

TEST(AddressDialog, ModalFormHandsTheTextOver) {
    const struct {
        std::string typed;
        const char* button;
        int result;
        std::string text;
    } table[] = {
        {"not checked", "press 1", 1, "not checked"},
        {"10.0.0.7", "press 2", 0, "untouched"},
        {"10.0.0.7", "close", 0, "untouched"},
        {std::string(300, 'x'), "press 1", 1, std::string(255, 'x')},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.typed + ", " + row.button);
        Scenario scenario;
        char text[300] = "untouched";
        std::string caption;
        scenario.on_call = [&caption](const platform::JournalEntry& call) {
            if (call.call == "EndDialog")
                caption = platform::dialogs().front().caption;
        };
        scenario.actions = {"type 1000 " + row.typed, row.button};
        scenario.entry = [&text](HINSTANCE instance, char*) {
            app.app_instance = instance;
            copy_text(app.window_title, std::size(app.window_title), u"A title");
            return ask_address_text(text, sizeof text);
        };
        Outcome outcome = scenario.run();
        EXPECT_EQ(std::exchange(outcome.exit_code, 0), row.result);
        expect_clean(outcome);
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(caption, "A title");
    }
}

TEST(AddressDialog, ATypedPrinterIsInstalledWithoutANetwork) {
    Scenario scenario;
    scenario.machine.adapters.clear();
    scenario.actions = {"press 1014", "press 1016", "type 1000 010.2.3.4", "press 1",
                        "select 0",   "press 1015", "tick 1011",           "press 1"};
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_TRUE(has(outcome.log, "No active networks found!\nCreateDialog IP\r\n")) << outcome.log;
    EXPECT_TRUE(has(outcome.log, "run_installer...\r\nNet 10.2.3.4\r\n"));
    ASSERT_NE(queue_of(outcome, u"Label 100 Series"), nullptr);
    EXPECT_EQ(queue_of(outcome, u"Label 100 Series")->port, u"TRK_10.2.3.4");
    EXPECT_EQ(outcome.after.spooler.ports.back().host_address, u"10.2.3.4");
}

TEST(PrinterList, RowsOutOfSightAreScrolledTo) {
    Scenario scenario;
    std::vector<platform::ScriptedDatagram>& answers = scenario.machine.adapters[0].searches[0];
    answers.clear();
    for (int number = 1; number <= 10; ++number)
        answers.push_back(slp_reply("10.0.1." + std::to_string(number),
                                    "(printer-name=Shelf),(ieee1284-id=MDL:Label_100_Series;)"));
    scenario.actions = {"press 1014", "select 9", "key up", "press 1015", "tick 1011", "press 1"};
    Scenario template_alone = scenario;
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_TRUE(has(outcome.log, "run_installer...\r\nNet 10.0.1.9\r\n")) << outcome.log;

    // Without a scroll bar the keys remain.
    template_alone.machine.faults = {{"CreateWindowExW", 1, false, ERROR_NOT_ENOUGH_MEMORY, ""}};
    template_alone.actions = {"press 1014", "select 0", "key end", "press 1015", "tick 1011", "press 1"};
    EXPECT_TRUE(has(template_alone.run().log, "run_installer...\r\nNet 10.0.1.10\r\n"));
}

TEST(PrinterList, RefreshSearchesAnew) {
    Scenario scenario;
    scenario.machine.discovery_port_taken = true;
    scenario.machine.adapters[0].searches[1] = {
        slp_reply("10.0.0.8", "(printer-name=Moved),(ieee1284-id=MFG:Vorlane;MDL:Label_100_Series;)")};
    scenario.actions = {"press 1014", "press 1016", "type 1000 10.1.1.1",
                        "press 1",    "select 0",   "press 1017"};
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(control_of(outcome, 105, 1003).rows, std::vector<std::string>{"10.0.0.8\tMoved"});
    EXPECT_EQ(control_of(outcome, 105, 1003).selected, -1);
    EXPECT_EQ(shown_controls(outcome), network_mode);
    EXPECT_TRUE(
        has(outcome.log, "not installed\r\nWarning: another process is using the discovery port!\r\nSearch"));
    EXPECT_EQ(boxes_of(outcome), "!Vorlane Inc: Another process is using the discovery port! Try Refresh")
        << "only the first search asks for the port";
}

TEST(TermsPage, OnlyOkWithTheBoxTickedAccepts) {
    const std::vector<std::string> up_to_page = {"press 1014", "select 0", "press 1015"};
    const struct {
        const char* name;
        std::vector<std::string> actions;
        const char* problem;
        unsigned pages;
        bool accepted;
    } table[] = {
        {"refused", {"press 2"}, "", 1, false},
        {"ticked, then refused", {"tick 1011", "press 2"}, "", 1, false},
        {"ticked, then closed", {"tick 1011", "close"}, "", 1, false},
        {"OK is grey at first", {"press 1"}, "press 1: control 1 is greyed", 1, false},
        {"OK is grey again",
         {"tick 1011", "untick 1011", "press 1"},
         "press 1: control 1 is greyed",
         1,
         false},
        {"the main dialog is disabled", {"press 1015"}, "press 1015: dialog 105 is disabled", 1, false},
        {"refused, then accepted", {"press 2", "press 1015", "tick 1011", "press 1"}, "", 2, true},
        {"the box is forgotten",
         {"tick 1011", "press 2", "press 1015", "press 1"},
         "press 1: control 1 is greyed",
         2,
         false},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.name);
        Scenario scenario;
        scenario.actions = up_to_page;
        scenario.actions.insert(scenario.actions.end(), row.actions.begin(), row.actions.end());
        Outcome outcome = scenario.run();
        EXPECT_EQ(outcome.problem, row.problem);
        outcome.problem.clear();
        expect_clean(outcome);
        EXPECT_EQ(has(outcome.log, "License accepted\r\n"), row.accepted);
        EXPECT_EQ(calls_of(outcome, "_beginthread"), row.accepted ? 1u : 0u);
        EXPECT_EQ(calls_of(outcome, "CreateDialogParamW"), row.pages + 1);
        EXPECT_EQ(boxes_of(outcome), row.accepted ? success : "");
        if (!row.accepted) {
            EXPECT_EQ(shown_controls(outcome), "list default install refresh address cancel");
            EXPECT_EQ(changes_of(outcome), "");
        }
    }
}

TEST(TermsPage, RefusedOnTheUsbRoadLeavesCancelAlone) {
    Scenario scenario;
    scenario.actions = {"press 1013", "tick 1011", "press 2"};
    const Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(shown_controls(outcome), "usb- network- cancel");
    EXPECT_EQ(boxes_of(outcome), "");
    EXPECT_EQ(changes_of(outcome), "");
}

// The page shows what it can get of the agreement, and can be accepted even without it.
TEST(TermsPage, ShowsTheTextThatThereIs) {
    const std::string mark = "\xff\xfe";
    const auto letters = [](std::size_t count) {
        std::string bytes;
        for (std::size_t i = 0; i < count; ++i)
            bytes += std::string("x\0", 2);
        return bytes;
    };
    constexpr char failed[] = "license file open failed\r\n";
    const struct {
        const char* name;
        std::string french;   // "-": no such file
        std::string fallback; // license.txt, likewise
        std::size_t shown;    // characters
        std::string log;
    } table[] = {
        {"its own", mark + letters(3), mark + letters(5), 3, ""},
        {"missing", "-", mark + letters(5), 5, failed},
        {"both missing", "-", "-", 0, failed + std::string(failed)},
        {"empty", "", mark + letters(5), 5, ""},
        {"the mark alone", mark, mark + letters(5), 0, ""},
        {"an odd byte", mark + letters(3) + "y", "-", 3, ""},
        {"no mark", letters(4), "-", 3, ""},
        {"longer than the page", mark + letters(20000), "-", 16381, ""},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.name);
        Scenario scenario;
        const std::filesystem::path medium = scenario.own_medium();
        TestSession::write(medium / "wrenchbay/settings.inf", "[UI]\r\nLanguage=FRA\r\n");
        for (const auto& [file, bytes] :
             {std::pair("license_FRA.txt", row.french), std::pair("license.txt", row.fallback)}) {
            std::filesystem::remove(medium / "licenses" / file);
            if (bytes != "-")
                TestSession::write(medium / "licenses" / file, bytes);
        }
        scenario.actions = usb_install;
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_EQ(control_of(outcome, 101, 1010).text, std::string(row.shown, 'x'));
        EXPECT_TRUE(has(outcome.log, "CreateDialog License\r\n" + row.log + "License accepted\r\n"))
            << outcome.log;
    }
}

TEST(Dialogs, OneThatCantBeOpenedIsDoneWithout) {
    const struct {
        const char* name;
        std::vector<std::string> actions;
        const char* log;
    } table[] = {
        {"104",
         {"press 1014", "press 1016"},
         "find slp complete\r\nCreateDialog IP\r\nCreateDialog failed 8\r\n"},
        {"101", {"press 1014", "select 0", "press 1015"}, "find slp complete\r\nCreateDialog failed 8\r\n"},
        {"101", {"press 1013"}, "not installed\r\nCreateDialog failed 8\r\n"},
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.actions.back());
        Scenario scenario;
        scenario.machine.faults = {{"CreateDialogParamW", 1, true, 8, row.name}};
        scenario.actions = row.actions;
        const Outcome outcome = scenario.run();
        expect_clean(outcome);
        EXPECT_TRUE(outcome.log.ends_with(row.log)) << outcome.log;
        EXPECT_EQ(boxes_of(outcome), "");
        EXPECT_TRUE(outcome.dialogs.front().enabled) << "the main dialog is to be used again";
        EXPECT_EQ(changes_of(outcome), "");
    }
}

} // namespace
