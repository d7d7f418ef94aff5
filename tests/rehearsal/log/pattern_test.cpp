#include "rehearsal/log/pattern.h"

#include <gtest/gtest.h>

TEST(LogPattern, TakesTheFieldsOfALine) {
    using List = std::vector<std::string>;
    const struct {
        const char* name;
        const char* pattern;
        std::string line;
        bool matches;
        List fields;
    } cases[] = {
        {"no fields", "close interface", "close interface", true, {}},
        {"more behind", "close interface", "close interfaces", false, {}},
        {"numbers",
         "copy file failed %d %d %s",
         "copy file failed 0 5 D:\\a b.exe",
         true,
         {"0", "5", "D:\\a b.exe"}},
        {"a negative number",
         "Get %s failed %d",
         "Get ProgramFiles failed -2147024894",
         true,
         {"ProgramFiles", "-2147024894"}},
        {"no number", "AddPrinter %d", "AddPrinter x", false, {}},
        {"a number behind a text that ends alike",
         "Could not delete %s %x",
         "Could not delete Label 100 5f",
         true,
         {"Label 100", "5f"}},
        {"brackets", "create sc [%s] [%s] [%s]", "create sc [a] [b]c] [d]", true, {"a", "b]c", "d"}},
        {"an empty text", "[%s]", "[]", true, {""}},
        {"a lost blank at the end", "USB %s", "USB", false, {}},
        {"a lost text at the end", "Printer found %S %S", "Printer found 10.0.0.7", true, {"10.0.0.7", ""}},
        {"a blank at the end that a mail took",
         "bind failed with:%d ",
         "bind failed with:10048",
         true,
         {"10048"}},
        {"a quoted text",
         "Found in %s \"%S\"",
         "Found in a.inf \"Label \"1\"\"",
         true,
         {"a.inf", "Label \"1\""}},
        {"an empty line", "%d:%s", "", false, {}},
    };
    for (const auto& one : cases) {
        rehearsal::logs::Fields fields;
        EXPECT_EQ(rehearsal::logs::match_pattern(one.pattern, one.line, fields), one.matches) << one.name;
        if (one.matches) {
            EXPECT_EQ(List(fields.begin(), fields.end()), one.fields) << one.name;
        }
    }
}
