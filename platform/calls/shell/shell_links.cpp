// The shell link object: two interfaces on one object, which counts its references and stands in the ledger
// of open handles for as long as it has one.
#include "calls/files/disk.h"
#include "calls/files/file_object.h"
#include "calls/run/session.h"
#include "calls/shell/com.h"
#include "calls/shell/link_reader.h"
#include "machine/text.h"
#include "machine/whole_file.h"

#include <shlobj.h>
#include <windows.h>

#include <algorithm>
#include <atomic>

namespace {

using platform::Call;
using platform::LinkFile;
using platform::RealPath;
using platform::session;
using platform::shown;

constexpr std::size_t longest_text = 1024; // of a link's description and working folder

std::uint64_t number_of(FILETIME time) {
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

platform::LinkTargetFacts facts_of(const std::u16string& target) {
    platform::LinkTargetFacts facts;
    struct stat now;
    const RealPath place = target.empty() ? RealPath() : platform::real_path(target.c_str());
    if (place.real.empty() || stat(place.real.c_str(), &now) != 0)
        return facts;
    facts.attributes = platform::attributes_of(now, place.folder);
    facts.written = number_of(platform::file_time(now.st_mtim));
    facts.created = facts.written;
    facts.accessed = number_of(platform::file_time(now.st_atim));
    facts.size = S_ISREG(now.st_mode) ? static_cast<std::uint32_t>(now.st_size) : 0;
    facts.volume_serial = static_cast<std::uint32_t>(now.st_dev);
    if (!platform::session().machine.clock.empty()) {
        // At a fixed time a run makes the same files each time, whatever time it is outside.
        constexpr std::uint32_t fixed_serial = 0x54524B43;
        facts.written = facts.created = facts.accessed = 0; // none is told;
        facts.volume_serial = fixed_serial;
    }
    return facts;
}

// The result of a method whose fault is due.
HRESULT fault(const Call& call) {
    return static_cast<HRESULT>(call.error());
}

HRESULT give_text(const std::u16string& text, LPWSTR out, int size) {
    if (out == nullptr || size < 1)
        return E_INVALIDARG;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    text.copy(out, length);
    out[length] = 0;
    return S_OK;
}

// Null takes the text away.
HRESULT take_text(LPCWSTR text, std::u16string& out) {
    const std::u16string_view given = text == nullptr ? u"" : text;
    if (given.size() > longest_text)
        return E_INVALIDARG;
    out = given;
    return S_OK;
}

class ShellLink : public platform::Object, public IShellLinkW, public IPersistFile {
public:
    const char* kind() const override { return "shell link"; }

    HRESULT QueryInterface(REFIID interface_id, void** object) override;
    ULONG AddRef() override;
    ULONG Release() override;

    HRESULT GetPath(LPWSTR path, int size, WIN32_FIND_DATAW* entry, DWORD flags) override;
    HRESULT GetDescription(LPWSTR text, int size) override;
    HRESULT SetDescription(LPCWSTR text) override;
    HRESULT GetWorkingDirectory(LPWSTR folder, int size) override;
    HRESULT SetWorkingDirectory(LPCWSTR folder) override;
    HRESULT SetPath(LPCWSTR path) override;

    HRESULT Load(LPCOLESTR path, DWORD mode) override;
    HRESULT Save(LPCOLESTR path, BOOL remember) override;

    HRESULT give(REFIID interface_id, void** object);
    HANDLE handle = nullptr;

private:
    std::atomic<ULONG> references_ = 0;
    LinkFile link_;
};

HRESULT ShellLink::give(REFIID interface_id, void** object) {
    if (platform::same_id(interface_id, IID_IShellLinkW) || platform::same_id(interface_id, IID_IUnknown)) {
        *object = static_cast<IShellLinkW*>(this);
    } else if (platform::same_id(interface_id, IID_IPersistFile)) {
        *object = static_cast<IPersistFile*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ++references_;
    return S_OK;
}

HRESULT ShellLink::QueryInterface(REFIID interface_id, void** object) {
    Call call("IUnknown::QueryInterface", platform::shown_id(interface_id));
    if (object == nullptr)
        return E_POINTER;
    *object = nullptr;
    return call.fails(static_cast<std::uint32_t>(E_NOINTERFACE)) ? fault(call) : give(interface_id, object);
}

ULONG ShellLink::AddRef() {
    Call call("IUnknown::AddRef");
    return ++references_;
}

// The table owns the object: closing the handle ends it.
ULONG ShellLink::Release() {
    Call call("IUnknown::Release");
    const ULONG left = --references_;
    if (left == 0)
        session().handles.close(handle);
    return left;
}

HRESULT ShellLink::GetPath(LPWSTR path, int size, WIN32_FIND_DATAW* entry, DWORD flags) {
    Call call("IShellLinkW::GetPath");
    if (entry != nullptr || (flags & ~DWORD{SLGP_RAWPATH}) != 0)
        call.refuse("the target's facts, or flags");
    const HRESULT result = give_text(link_.target, path, size);
    return result == S_OK && link_.target.empty() ? S_FALSE : result;
}

HRESULT ShellLink::GetDescription(LPWSTR text, int size) {
    Call call("IShellLinkW::GetDescription");
    return give_text(link_.description, text, size);
}

HRESULT ShellLink::SetDescription(LPCWSTR text) {
    Call call("IShellLinkW::SetDescription", shown(text));
    return call.fails(static_cast<std::uint32_t>(E_OUTOFMEMORY)) ? fault(call)
                                                                 : take_text(text, link_.description);
}

HRESULT ShellLink::GetWorkingDirectory(LPWSTR folder, int size) {
    Call call("IShellLinkW::GetWorkingDirectory");
    return give_text(link_.working_folder, folder, size);
}

HRESULT ShellLink::SetWorkingDirectory(LPCWSTR folder) {
    Call call("IShellLinkW::SetWorkingDirectory", shown(folder));
    return call.fails(static_cast<std::uint32_t>(E_OUTOFMEMORY)) ? fault(call)
                                                                 : take_text(folder, link_.working_folder);
}

HRESULT ShellLink::SetPath(LPCWSTR path) {
    Call call("IShellLinkW::SetPath", shown(path));
    if (call.fails(static_cast<std::uint32_t>(E_FAIL)))
        return fault(call);
    const std::u16string_view given = path == nullptr ? u"" : path;
    if (given.size() < 3 || given[1] != u':' || given[2] != u'\\')
        call.refuse("a target that isn't an absolute path");
    const platform::PlainPath plain = platform::plain_path(path);
    if (plain.error != 0)
        return E_INVALIDARG;
    link_.target = plain.text();
    return S_OK;
}

HRESULT ShellLink::Load(LPCOLESTR path, DWORD mode) {
    Call call("IPersistFile::Load", shown(path));
    if (mode != STGM_READ)
        call.refuse("mode " + std::to_string(mode));
    const RealPath place = platform::real_path(path);
    if (place.error != 0 || !place.exists)
        return HRESULT_FROM_WIN32(place.error != 0 ? place.error : ERROR_FILE_NOT_FOUND);
    if (place.folder)
        return E_ACCESSDENIED;
    std::string reason;
    const auto bytes = platform::read_whole_file(place.real);
    const auto link = platform::read_link(bytes.value_or(""), session().machine.code_page, reason);
    if (!link)
        return E_FAIL;
    link_ = *link;
    return S_OK;
}

// Writes over what was there, as if the file were created anew by a handle that shares nothing.
HRESULT ShellLink::Save(LPCOLESTR path, BOOL remember) {
    Call call("IPersistFile::Save", shown(path));
    if (call.fails(static_cast<std::uint32_t>(E_ACCESSDENIED)))
        return fault(call);
    if (path == nullptr || remember == FALSE)
        call.refuse("saving to the present file, or a copy");
    const RealPath place = platform::real_path(path);
    const std::uint32_t error = platform::write_file(
        place, platform::write_link(link_, facts_of(link_.target), session().machine.code_page));
    return HRESULT_FROM_WIN32(error);
}

} // namespace

HRESULT platform::make_shell_link(REFIID interface_id, void** object) {
    const auto link = std::make_shared<ShellLink>();
    const HRESULT result = link->give(interface_id, object);
    if (result == S_OK)
        link->handle = session().handles.open(link);
    return result;
}
