// Why the setup doesn't find its driver in an INF: where its reader stopped, and what stands in the file that
// was meant for it.
#include "rehearsal/check/inf_lines.h"
#include "rehearsal/check/inf_rules.h"
#include "rehearsal/check/inf_view.h"

#include "package/package_file.h"

#include <string_view>

namespace rehearsal::check {
namespace {

constexpr std::string_view class_text = "Class=Printer";
constexpr std::string_view version_text = "DriverVer=";
constexpr std::string_view manufacturer_text = "[Manufacturer]";

// The reader's steps, by what its log tells of them.
enum class Stopped { at_class, at_version, at_version_form, at_manufacturer, at_models, at_model };

Stopped where_stopped(const std::string& log) {
    if (log.find("No DriverVer found") != log.npos)
        return Stopped::at_version;
    if (log.find("Invalid DriverVer") != log.npos)
        return Stopped::at_version_form;
    if (log.find("driverName:") != log.npos)
        return Stopped::at_model;
    if (log.find("manuName:") != log.npos)
        return Stopped::at_models;
    return log.find("Version:") != log.npos ? Stopped::at_manufacturer : Stopped::at_class;
}

std::string marked(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

// One file's explanation.
class Explanation {
public:
    Explanation(const Medium& medium, const DriverInf& inf, Findings& findings)
        : medium_(medium), inf_(inf), findings_(findings), bytes_(medium.bytes(*inf.entry)),
          lines_(split_inf(bytes_)) {}

    void write();

private:
    void add(const char* id, std::size_t offset, std::string reason) {
        findings_.add(id, medium_.place(*inf_.entry, offset), std::move(reason));
    }
    void add_for_file(const char* id, std::string reason) {
        findings_.add(id, {inf_.entry->path}, std::move(reason));
    }
    bool explain_order(const char* id, std::string_view text, std::size_t behind, std::string_view before);
    void explain_entry(const char* id, std::string_view key, std::string_view wanted);
    void explain_class();
    void explain_version();
    void explain_version_form();
    void explain_manufacturer();
    void explain_models();

    const Medium& medium_;
    const DriverInf& inf_;
    Findings& findings_;
    const std::string& bytes_;
    const std::vector<InfByteLine> lines_;
};

// Whether the exact text is there after all: in front of what it has to follow, or in another piece of the
// file than the one that begins the search.
bool Explanation::explain_order(const char* id, std::string_view text, std::size_t behind,
                                std::string_view before) {
    const std::size_t next = bytes_.find(text, behind);
    if (next != bytes_.npos) {
        add("inf-piece", next,
            marked(text) +
                " isn't seen: the setup reads 4,095 bytes at a time, and this lies in another piece "
                "than " +
                marked(class_text) + " or across the end of one");
        return true;
    }
    const std::size_t first = bytes_.find(text);
    if (first == bytes_.npos)
        return false;
    add(id, first,
        marked(text) + " stands in front of " + marked(before) + ", and the setup seeks it behind");
    return true;
}

// The entry of [Version] that was meant, or that there is none.
void Explanation::explain_entry(const char* id, std::string_view key, std::string_view wanted) {
    const InfByteLine* const entry = entry_like(lines_, "Version", key);
    const InfByteLine* const header = header_like(lines_, "Version");
    if (entry != nullptr && same_text(entry->key, key))
        add(id, entry->offset,
            marked(entry->text) + " isn't found by the setup: it looks for " + marked(wanted) +
                ", in this case and without blanks");
    else if (entry != nullptr)
        add(id, entry->offset,
            marked(entry->key) + " isn't found by the setup: it looks for " + marked(wanted));
    else if (header != nullptr && same_text(header->section, "Version"))
        add(id, header->offset, "[Version] has no " + marked(wanted));
    else
        add_for_file(id, "there is no " + marked(wanted) + " in it");
}

void Explanation::explain_class() {
    const bool wide = bytes_.starts_with("\xFF\xFE") || bytes_.starts_with("\xFE\xFF") ||
                      bytes_.substr(0, 2).find('\0') != bytes_.npos;
    if (wide)
        return add("inf-encoding", 0, "the file is UTF-16, and the setup reads 8-bit text");
    if (const std::size_t zero = bytes_.find('\0'); zero != bytes_.npos)
        return add("inf-encoding", zero, "a byte 0 ends the text for the setup");
    if (const std::size_t place = bytes_.find(class_text); place != bytes_.npos)
        return add("inf-piece", place,
                   marked(class_text) +
                       " isn't seen: the setup reads 4,095 bytes at a time, and it lies across "
                       "the end of such a piece");
    const InfByteLine* const entry = entry_like(lines_, "Version", "Class");
    if (entry != nullptr && same_text(entry->key, "Class")) {
        std::string_view value = entry->text.substr(entry->text.find('=') + 1);
        value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
        if (!same_text(value, "Printer"))
            return add("inf-class", entry->offset,
                       "the class is " + marked(value) + ", and the setup looks for " + marked(class_text));
        return add("inf-class", entry->offset,
                   marked(entry->text) + " isn't found by the setup: it looks for " + marked(class_text) +
                       ", in this case and without blanks");
    }
    explain_entry("inf-class", "Class", class_text);
}

void Explanation::explain_version() {
    if (!explain_order("inf-driverver", version_text, bytes_.find(class_text), class_text))
        explain_entry("inf-driverver", "DriverVer", version_text);
}

void Explanation::explain_version_form() {
    const std::size_t place = bytes_.find(version_text, bytes_.find(class_text));
    const std::size_t end = bytes_.find_first_of("\r\n", place);
    const std::size_t value = place + version_text.size();
    add("inf-driverver", value,
        marked(std::string_view(bytes_).substr(value, std::min(end, bytes_.size()) - value)) +
            " isn't read by the setup: it takes month/day/year,a.b.c.d with all seven numbers");
}

void Explanation::explain_manufacturer() {
    const std::size_t version = bytes_.find(version_text, bytes_.find(class_text));
    const std::size_t behind = bytes_.find(manufacturer_text, version);
    const std::size_t piece = bytes_.find(class_text) / chunk_bytes;
    if (behind != bytes_.npos && behind / chunk_bytes == piece)
        return add("inf-manufacturer", behind, "there is no entry with \"=\" behind [Manufacturer]");
    if (explain_order("inf-manufacturer", manufacturer_text, version, version_text))
        return;
    const InfByteLine* const header = header_like(lines_, "Manufacturer");
    if (header != nullptr)
        return add("inf-manufacturer", header->offset,
                   marked(header->text) + " isn't found by the setup: it looks for " +
                       marked(manufacturer_text));
    add_for_file("inf-manufacturer", "there is no section [Manufacturer]");
}

// The name in the manufacturer's entry leads to no header, or there is no quoted text behind it.
void Explanation::explain_models() {
    const std::string& name = inf_.setup.models_section;
    const std::size_t entry = bytes_.find('=', bytes_.find(manufacturer_text));
    if (name.find_first_not_of(" \t") != 0 || name.find_last_not_of(" \t") + 1 != name.size())
        return add("inf-models", entry + 1,
                   marked(name) + " is taken with its blanks for the models section's name, and no header "
                                  "begins with them");
    const std::string wanted = "[" + name;
    const std::size_t header = bytes_.find(wanted, entry);
    const std::size_t piece = bytes_.find(class_text) / chunk_bytes;
    if (header != bytes_.npos && header / chunk_bytes == piece)
        return add("inf-driver-name", header,
                   "the setup finds no driver's name in quotes in " + marked(wanted + "]"));
    if (explain_order("inf-models", wanted, entry, manufacturer_text))
        return;
    const InfByteLine* near = header_like(lines_, name);
    for (const char* const target : {".NTx86", ".NTamd64", ".NT"})
        near = near == nullptr ? header_like(lines_, name + target) : near;
    add("inf-models", entry + 1,
        "no section's header begins with " + marked(wanted) +
            (near == nullptr ? std::string() : "; the nearest is " + marked(near->text)));
}

void Explanation::write() {
    switch (where_stopped(inf_.setup.log)) {
    case Stopped::at_class:
        return explain_class();
    case Stopped::at_version:
        return explain_version();
    case Stopped::at_version_form:
        return explain_version_form();
    case Stopped::at_manufacturer:
        return explain_manufacturer();
    case Stopped::at_models:
        return explain_models();
    case Stopped::at_model:
        return add("inf-model", bytes_.find('"' + inf_.setup.driver_name),
                   "no \"=\" with the model stands behind the driver's name");
    }
}

} // namespace

void explain_refusal(const Medium& medium, const DriverInf& inf, Findings& findings) {
    Explanation(medium, inf, findings).write();
}

} // namespace rehearsal::check
