// docs/medium.md against the program: its examples make one distribution folder that installs, and each of
// its traps is put into its example and read by the program's own reader.
#include "machine/little_endian.h"
#include "machine/text.h"
#include "package/driver_inf.h"
#include "package/media_table.h"
#include "package/monitor_inf.h"
#include "package/profile_names.h"
#include "package/settings.h"
#include "scenarios/scenario.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

namespace fs = std::filesystem;

namespace {

struct Example {
    std::string path;
    bool wide = false;
    std::string text; // UTF-8, lines end in LF
};

struct Trap {
    std::string example; // the path of the one above it
    std::string instead_of;
    std::string written;
    std::string read; // what the reader makes of it; of the example itself when the two in front are empty
};

struct Page {
    std::vector<Example> examples;
    std::vector<Trap> traps;
    std::map<std::string, std::string> terms; // by setting
};

std::string in_backticks(const std::string& text) {
    const std::size_t first = text.find('`');
    const std::size_t last = text.rfind('`');
    return first < last ? text.substr(first + 1, last - first - 1) : "";
}

std::vector<std::string> cells_of(const std::string& line) {
    std::vector<std::string> cells;
    std::size_t place = line.starts_with("| ") ? 2 : std::string::npos;
    while (place != std::string::npos && place < line.size()) {
        const std::size_t end = line.find(" |", place);
        cells.push_back(in_backticks(line.substr(place, end - place)));
        place = end == std::string::npos ? end : end + 3;
    }
    return cells;
}

// A table's rows are traps behind the heading "In place of", and terms behind "Setting".
class PageReader {
public:
    Page read() {
        const fs::path file = fs::path(TRK_SAMPLE_MEDIUM).parent_path().parent_path() / "docs" / "medium.md";
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);)
            take(line);
        return page_;
    }

private:
    void take(const std::string& line) {
        if (line.starts_with("```")) {
            fence(line);
        } else if (in_fence_) {
            page_.examples.back().text += line + "\n";
        } else if (line.empty() || line[0] != '|') {
            table_.clear();
            if (line.find(" read `") != std::string::npos || line.find(" reads `") != std::string::npos)
                page_.traps.push_back({page_.examples.back().path, "", "", sentence_end(line)});
        } else {
            row(line);
        }
    }

    // "The tools, asking for `a` of `b`, read `c`." -> c
    static std::string sentence_end(const std::string& line) {
        const std::size_t last = line.rfind('`');
        return line.substr(line.rfind('`', last - 1) + 1, last - line.rfind('`', last - 1) - 1);
    }

    void fence(const std::string& line) {
        in_fence_ = !in_fence_;
        if (!in_fence_)
            return;
        std::istringstream words(line);
        std::string kind;
        std::string coding;
        Example example;
        words >> kind >> example.path >> coding;
        EXPECT_EQ(kind, "```medium");
        example.wide = coding == "utf-16";
        page_.examples.push_back(example);
    }

    void row(const std::string& line) {
        if (table_.empty())
            table_ = line;
        const std::vector<std::string> cells = cells_of(line);
        if (cells.size() < 3 || cells[0].empty())
            return;
        if (table_.starts_with("| In place of"))
            page_.traps.push_back({page_.examples.back().path, cells[0], cells[1], cells[2]});
        else if (table_.starts_with("| Setting"))
            page_.terms[cells[0]] = cells[2];
    }

    Page page_;
    bool in_fence_ = false;
    std::string table_;
};

const Page& page() {
    static const Page read = PageReader().read();
    return read;
}

std::string bytes_of(const Example& example, const std::string& text) {
    const std::string lines = replaced(text, "\n", "\r\n");
    if (!example.wide)
        return lines;
    return platform::utf16_file(platform::to_utf16(lines));
}

// What each reader takes from its file, in the page's words. In a session over the medium.

std::string read_inf() {
    DriverIdentity driver = {};
    if (!find_driver_inf(driver.driverName, 255, driver.manuName, 255, driver.mdlName, 255, driver.infPath,
                         driver.infFile, 1, &driver.version, &driver.hasUSB, 0))
        return "no driver";
    std::string version;
    for (int place = 48; place >= 0; place -= 16)
        version += (version.empty() ? "" : ".") + std::to_string(driver.version >> place & 0xffff);
    return std::string("driver ") + driver.driverName + ", model " + driver.mdlName + ", version " + version +
           ", USB " + std::to_string(driver.hasUSB);
}

std::string read_media(const std::string& bytes) {
    unsigned rows = 0;
    std::string first;
    LabelSize row;
    for (const char* place = find_ansi(bytes.c_str(), "[Media]");
         place != nullptr && (place = scan_media_row(place, &row)) != nullptr; ++rows)
        if (rows == 0)
            first = std::string(", the first ") + row.name + ": " + row.width + " by " + row.length +
                    ", unit " + std::to_string(row.units);
    return std::to_string(rows) + " rows" + first;
}

std::string read_language() {
    DWORD from_setting = 0;
    const int language = VLI_Get_Locale(&from_setting, 0);
    return from_setting != 0 ? "language " + std::to_string(language) : "the system's language";
}

std::string read_profile() {
    WCHAR value[64];
    return VLI_GetProfileFieldW(u"[Deutsch", u"label300_fine", value, 64) == 0 ? "nothing"
                                                                               : platform::to_utf8(value);
}

std::string read_monitor() {
    MonitorInfo info = {};
    read_monitor_inf(&info, 1);
    return "monitor " + platform::to_utf8(info.name) + ", file " + platform::to_utf8(info.DLL32);
}

std::string read_example(const Example& example, const std::string& text) {
    TestSession session;
    const std::string bytes = bytes_of(example, text);
    TestSession::write(session.medium / example.path, bytes);
    session.start();
    const std::string name = fs::path(example.path).filename().string();
    if (example.path.starts_with("Drivers/"))
        return read_inf();
    if (example.path.starts_with("monitor/"))
        return read_monitor();
    return name == "media.inf"      ? read_media(bytes)
           : name == "settings.inf" ? read_language()
                                    : read_profile();
}

const Example& example_of(const std::string& path) {
    for (const Example& example : page().examples)
        if (example.path == path)
            return example;
    throw std::runtime_error("no example " + path);
}

} // namespace

TEST(MediumPage, TellsWhatTheReadersMakeOfEachTrap) {
    EXPECT_GT(page().traps.size(), 35u);
    for (const Trap& trap : page().traps) {
        const Example& example = example_of(trap.example);
        std::string text = example.text;
        if (!trap.instead_of.empty()) {
            text = replaced(text, replaced(trap.instead_of, "⏎", "\n"), replaced(trap.written, "⏎", "\n"));
            EXPECT_NE(text, example.text) << trap.example << ": " << trap.instead_of;
        }
        EXPECT_EQ(read_example(example, text), trap.read) << trap.example << ": " << trap.written;
    }
}

TEST(MediumPage, NamesTheTermsOfEachLanguage) {
    EXPECT_EQ(page().terms.size(), 7u);
    for (const auto& [setting, file] : page().terms) {
        TestSession session;
        TestSession::write(session.medium / "wrenchbay" / "settings.inf",
                           "[UI]\r\nLanguage=" + setting + "\r\n");
        session.start();
        DWORD from_setting = 0;
        const int language = VLI_Get_Locale(&from_setting, 0);
        EXPECT_EQ("license" + platform::to_utf8(terms_suffix(language)) + ".txt", file) << setting;
    }
}

TEST(MediumPage, HasExamplesThatInstall) {
    Scenario scenario;
    const fs::path medium = scenario.own_medium();
    fs::remove(medium / "Drivers" / "lbl.inf");
    fs::rename(medium / "Drivers" / "lbl.cat", medium / "Drivers" / "label300.cat");
    for (const Example& example : page().examples)
        TestSession::write(medium / example.path, bytes_of(example, example.text));
    for (auto& search : scenario.machine.adapters[0].searches)
        search = {slp_reply("10.0.0.7", "(printer-name=Shelf A),(ieee1284-id=MDL:Label_300_Series;)")};
    scenario.actions = network_install;
    const rehearsal::Outcome outcome = scenario.run();
    expect_clean(outcome);
    EXPECT_EQ(rehearsal::find_failures(outcome), std::vector<std::string>());
    const platform::PrintQueue* queue = queue_of(outcome, u"Label 300 Series");
    ASSERT_NE(queue, nullptr);
    EXPECT_EQ(queue->data.size(), 3u);
    EXPECT_EQ(queue->driver, u"Label 300 Driver");
    EXPECT_TRUE(has(control_of(outcome, 101, 1010).text, "LIZENZVERTRAG"));
}

// The names that can't be chosen are those of the deployment.
TEST(MediumPage, NamesTheEightFiles) {
    const fs::path root = fs::path(TRK_SAMPLE_MEDIUM).parent_path().parent_path();
    const std::string text = TestSession::read(root / "docs" / "medium.md");
    for (const char* name :
         {"trk_remove64.exe", "trk_remove.exe", "wrenchbay.exe", "portlynx.exe", "zelcore.dll",
          "zelmodel.dll", "zelmodel.dat", "iconv.dll", "portlynx.inf", "media.inf", "settings.inf"}) {
        EXPECT_TRUE(has(text, std::string("`") + name + "`")) << name;
        Scenario scenario;
        const fs::path medium = scenario.own_medium();
        const fs::path folder =
            medium / (fs::exists(medium / "wrenchbay" / name) ? "wrenchbay" : "Drivers/32-bit");
        EXPECT_TRUE(fs::remove(folder / name)) << name;
        scenario.actions = usb_install;
        EXPECT_EQ(boxes_of(scenario.run()), failure) << name;
    }
}
