// Logs as they come: several runs, mixed line ends, other encodings, forged and foreign text.
#include "rehearsal/log/log_text.h"
#include "rehearsal/log/log_views.h"
#include "rehearsal/log/runs.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using namespace rehearsal::logs;

const std::string opening =
    "\r\nVorlane Installer 64 --- Thu Jul  4 09:05:01 2024 ---\r\nVLI_Get_Locale\r\n"
    "_locale 3 (1)\r\nset lang 7 0\r\nCreateDialog\r\nD:\\m\r\nGet driver info...\r\n"
    "D:\\m\\Drivers\\*.inf\r\nVersion:1.a.3.4\r\nmanuName:M\r\ndriverName:Label\r\n"
    "mdlName:L\r\nhasUSB:1\r\nFound in l.inf \"Label\"\r\ninf file D:\\m\\Drivers\\l.inf\r\n"
    "Label\r\nCheck installed drivers...\r\nDriver Label not installed\r\n";

std::string with_ends(const std::string& text, const std::vector<std::string>& ends) {
    std::string out;
    std::size_t line = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r')
            continue;
        out += text[i] == '\n' ? ends[line++ % ends.size()] : std::string(1, text[i]);
    }
    return out;
}

} // namespace

TEST(ForeignLog, HasLineEndsOfAllKinds) {
    const std::string plain = reading_as_json(read_log(opening + opening), "f", false);
    EXPECT_EQ(read_log(opening + opening).runs.size(), 2u);
    using Ends = std::vector<std::string>;
    for (const Ends& ends : {Ends{"\n"}, Ends{"\r"}, Ends{"\r\n", "\n", "\r"}, Ends{"\n\n"}}) {
        const std::string mixed = with_ends(opening + opening, ends);
        EXPECT_EQ(reading_as_json(read_log(mixed), "f", false), plain);
    }
}

TEST(ForeignLog, TellsTheFactsOfARun) {
    const Reading reading = read_log(opening);
    ASSERT_EQ(reading.runs.size(), 1u);
    const rehearsal::logs::Run& run = reading.runs[0];
    EXPECT_EQ(run.bits, 64);
    EXPECT_EQ(run.date, "Thu Jul  4 09:05:01 2024");
    EXPECT_EQ(language_text(run), "German, by settings.inf");
    EXPECT_EQ(run.version, "1.10.3.4");
    EXPECT_EQ(std::string(verdict_name(run.verdict)), "nothing installed");
}

TEST(ForeignLog, ComesInOtherEncodings) {
    std::string german = opening;
    german.replace(german.find("D:\\m\r"), 4, "D:\\M\xE4rz");
    const auto medium_of = [](const std::string& bytes, std::uint32_t page) {
        const Reading reading = read_log(decode_log(bytes, page));
        return reading.runs.empty() ? std::string("none") : reading.runs[0].medium;
    };
    EXPECT_EQ(medium_of(german, 1252), "D:\\M\xC3\xA4rz");
    EXPECT_EQ(medium_of(german, 1251), "D:\\M\xD0\xB4rz");
    EXPECT_EQ(medium_of(german, 65001), "D:\\M\xEF\xBF\xBDrz");
    std::string japanese = opening;
    japanese.replace(japanese.find("D:\\m\r"), 4, "D:\\\x83\x5C"); // its second byte is a backslash's
    EXPECT_EQ(medium_of(japanese, 932), "D:\\\xE3\x82\xBD");
    std::string wide = "\xFF\xFE";
    for (const char c : opening)
        wide += {c, '\0'};
    EXPECT_EQ(medium_of(wide, 1252), "D:\\m");
    EXPECT_EQ(medium_of("\xEF\xBB\xBF" + opening, 1252), "D:\\m");
}

TEST(ForeignLog, IsNoneWithoutTheProgramsLines) {
    for (const std::string text : {"", "\r\n", "hello\n", "OK\nOK\nroot:x:0:0\na\nb\nc\nd\n"})
        EXPECT_TRUE(read_log(text).runs.empty()) << text;
    EXPECT_TRUE(read_log(std::string(100000, '\0')).runs.empty());
}

// A device on the network writes into the log what it likes; inside a search it can't pass for the program.
TEST(ForeignLog, DoesNotBelieveAnAnswer) {
    const std::string search = opening +
                               "Search for model MDL:L;\r\nInterface 0/1\r\n"
                               "AddPrinter 1797\r\nPrinter Driver Installed\r\n\x1b]0;x\x07\xC2\x9B\r\n"
                               "close interface\r\nfind slp cleanup\r\nfind slp complete\r\n";
    const Reading reading = read_log(search);
    ASSERT_EQ(reading.runs.size(), 1u);
    EXPECT_TRUE(reading.runs[0].steps.empty());
    EXPECT_TRUE(reading.runs[0].leftovers.empty());
    ViewOptions options;
    options.explain = true;
    const std::string drawn = draw_run(reading.runs[0], 1, 1, options);
    EXPECT_NE(drawn.find("\\x1b]0;x\\x07\\xc2\\x9b"), std::string::npos) << drawn;
    EXPECT_EQ(drawn.find('\x1b'), std::string::npos);
    EXPECT_EQ(reading_as_json(reading, "f", true).find("u001b"), std::string::npos);
}

TEST(ForeignLog, TakesLinesApartThatRunOn) {
    const std::string install = opening +
                                "run_installer...\r\nNet 10.0.0.7\r\nAdding printer L\r\nAdd a 1 1 0\r\n"
                                "Error adding label to registry!Add b 1 1 0\r\n"
                                "Error adding label to registry!Add c 1 1 0\r\n";
    const Reading reading = read_log(install);
    ASSERT_EQ(reading.runs.size(), 1u);
    EXPECT_EQ(reading.runs[0].steps.size(), 2u);
    const nlohmann::json json = nlohmann::json::parse(reading_as_json(reading, "f", false));
    EXPECT_EQ(json["runs"][0]["left_on_machine"][0]["what"], "L with 1 label sizes");
}

TEST(ForeignLog, JudgesAPortThatIsThereAlready) {
    const auto port_of = [](const std::string& answer) {
        const Reading reading = read_log(opening + "run_installer...\r\n" + answer + "\r\n");
        const rehearsal::logs::Run& run = reading.runs.at(0);
        return !run.steps.empty() ? "failed" : !run.notices.empty() ? "notice" : "plain";
    };
    EXPECT_STREQ(port_of("XcvData AddPort 1 0 0 0 [TRK_1]"), "plain");
    EXPECT_STREQ(port_of("XcvData AddPort 1 0 b7 0 [TRK_1]"), "notice");
    EXPECT_STREQ(port_of("XcvData AddPort 1 0 5 0 [TRK_1]"), "failed");
    EXPECT_STREQ(port_of("XcvData AddPort 0 0 0 6ba [TRK_1]"), "failed");
}
