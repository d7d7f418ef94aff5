// Whole pages as trk writes them: well-formed, closed to the outside, and safe with whatever a medium, a log
// or a printer says.
#include "harness/test_session.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <vector>

#include <sys/wait.h>

namespace fs = std::filesystem;

namespace {

// What a page is made of. The script and the style are single texts.
struct PageTags {
    std::vector<std::string> wrong;
    std::map<std::string, int> elements;
    std::set<std::string> ids;
    std::vector<std::string> links;
};

// One tag, without its brackets, and the attributes behind its name; every value stands in double quotes.
void take_tag(const std::string& tag, PageTags& tags, std::vector<std::string>& open) {
    const std::size_t end = std::min(tag.find(' '), tag.size());
    const std::string name = tag.substr(0, end);
    if (name.starts_with("/")) {
        if (open.empty() || open.back() != name.substr(1))
            return tags.wrong.push_back("unexpected <" + tag + ">");
        return open.pop_back();
    }
    static const std::set<std::string> single{"!DOCTYPE", "meta", "input", "img"};
    ++tags.elements[name];
    if (!single.contains(name))
        open.push_back(name);
    for (std::size_t place = end; place < tag.size() && name != "!DOCTYPE";) {
        const std::size_t stop = std::min(tag.find_first_of("= ", place + 1), tag.size());
        const std::string attribute = tag.substr(place + 1, stop - place - 1);
        std::string value;
        place = stop;
        if (stop < tag.size() && tag[stop] == '=') {
            place = std::min(tag.find('"', stop + 2), tag.size() - 1) + 1;
            value = tag.substr(stop + 2, place - stop - 3);
        }
        if (attribute.starts_with("on") ||
            attribute.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") != tag.npos)
            tags.wrong.push_back("attribute " + attribute + " in <" + tag + ">");
        if (attribute == "id" && !tags.ids.insert(value).second)
            tags.wrong.push_back("twice: " + value);
        if (attribute == "href")
            tags.links.push_back(value);
        if (attribute == "src" && !value.starts_with("data:image/bmp;base64,"))
            tags.wrong.push_back("source " + value);
    }
}

PageTags read_page(const std::string& page) {
    PageTags tags;
    std::vector<std::string> open;
    for (std::size_t place = page.find('<'); place != page.npos; place = page.find('<', place)) {
        std::size_t end = place + 1;
        for (bool quoted = false; end < page.size() && (quoted || page[end] != '>'); ++end)
            quoted ^= page[end] == '"';
        const std::string tag = page.substr(place + 1, end - place - 1);
        take_tag(tag, tags, open);
        place = tag == "script" || tag == "style" ? page.find("</" + tag, end) : end;
    }
    for (const std::string& name : open)
        tags.wrong.push_back("not ended: " + name);
    for (const std::string& link : tags.links)
        if (!link.starts_with("#") || !tags.ids.contains(link.substr(1)))
            tags.wrong.push_back("link to " + link);
    return tags;
}

void expect_whole(const std::string& page, const std::string& name) {
    PageTags tags = read_page(page);
    EXPECT_EQ(tags.wrong, std::vector<std::string>{}) << name;
    EXPECT_EQ(tags.elements["script"], 1) << name;
    EXPECT_FALSE(tags.elements.contains("svg") || tags.elements.contains("iframe")) << name;
    EXPECT_NE(page.find("content=\"default-src &#39;none&#39;"), page.npos) << name;
    EXPECT_EQ(page.find("http:"), page.npos) << name;
    EXPECT_EQ(page.find("https:"), page.npos) << name;
}

class Pages : public testing::Test {
protected:
    int run(const std::string& command) {
        const std::string out = (folder.path / "out").string();
        const int status = std::system((command + " </dev/null >" + out + " 2>&1").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    std::string read(const std::string& name) const { return TestSession::read(folder.path / name); }

    TemporaryFolder folder;
    const std::string trk = TRK_PROGRAM;
    const std::string html = " --html " + (folder.path / "page.html").string() + " ";
};

TEST_F(Pages, TellARunFromTheFirstActionToWhatItLeft) {
    const std::string install = trk + " rehearse --quiet --profile german --script " + TRK_SAMPLES +
                                "/install.actions" + html + TRK_SAMPLE_MEDIUM;
    ASSERT_EQ(run(install), 0) << read("out");
    const std::string page = read("page.html");
    expect_whole(page, "install");
    const char* const in_order[] = {"<dd>German</dd>",
                                    "<code>Vorlane Installer",
                                    "lang=\"de\"",
                                    ">Netzwerk</span>",
                                    "<span>press 1014 ",
                                    "class=\"row selected\">10.0.0.7\tShelf A<",
                                    "Dialog 101</b>",
                                    "<p>Der Treiber ",
                                    "Message box, answered by OK",
                                    "spooler / queues / Label 100 Series",
                                    "TRK_10.0.0.7",
                                    "C:\\Program Files\\Vorlane\\Label 100 Series\\wrenchbay.exe"};
    std::size_t place = 0;
    for (const char* part : in_order) {
        const std::size_t found = page.find(part, place);
        EXPECT_NE(found, page.npos) << part;
        place = found == page.npos ? place : found;
    }
}

TEST_F(Pages, SayNothingInMarkupWhateverStandsInTheirFields) {
    ASSERT_EQ(run(TRK_HOSTILE_PAGES " " + trk + " " + (folder.path / "pages").string()), 0) << read("out");
    for (const char* name : {"install", "printer", "check", "log", "matrix"}) {
        const std::string page = read("pages/hostile-" + std::string(name) + ".html");
        expect_whole(page, name);
        EXPECT_NE(page.find("&lt;script&gt;pwned=1&lt;/script&gt;"), page.npos) << name;
    }
}

TEST_F(Pages, AreWrittenWholeOrRefusedWithTheReason) {
    const std::string log = (folder.path / "install.log").string(), medium = TRK_SAMPLE_MEDIUM;
    TestSession::write(log, "Vorlane Installer 32 --- Thu Jul  4 09:05:01 2024 ---\r\n");
    EXPECT_EQ(run(trk + " log" + html + log), 1);
    expect_whole(read("page.html"), "log");
    EXPECT_EQ(run(trk + " check" + html + medium), 0);
    expect_whole(read("page.html"), "check");
    const std::string nowhere = (folder.path / "none/page.html").string();
    for (const std::string& command : std::vector<std::string>{"check", "rehearse", "log", "matrix"}) {
        const std::string subject = command == "log" ? log : medium;
        EXPECT_EQ(run(trk + " " + command + " --html " + nowhere + " " + subject), 2) << command;
        EXPECT_NE(read("out").find(nowhere), std::string::npos) << read("out");
    }
    TestSession::write(folder.path / "m.json", "{}");
    const std::string machine = (folder.path / "m.json").string();
    EXPECT_EQ(run(trk + " rehearse --machine " + machine + " --html " + machine + " " + medium), 2);
    EXPECT_EQ(read("m.json"), "{}");
}

} // namespace
