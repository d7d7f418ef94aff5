#include "calls/run/session.h"
#include "calls/system/service_state.h"
#include "machine/record_buffer.h"
#include "machine/text.h"

#include <windows.h>

#include <algorithm>

namespace {

using platform::failed;
using platform::Service;
using platform::ServicePhase;
using platform::session;

struct ManagerHandle : platform::Object {
    const char* kind() const override { return "service control manager"; }
};

struct ServiceHandle : platform::Object {
    ServiceHandle(std::u16string service, DWORD rights) : name(std::move(service)), access(rights) {}
    const char* kind() const override { return "service"; }
    const std::u16string name;
    const DWORD access;
};

// Since when each service has been in its present phase. The phases themselves stand in the machine: those
// that are over are taken away, so that the machine tells the state that it is left in.
struct ServiceArea {
    std::mutex lock;
    std::map<std::u16string, std::uint32_t> since;
};

Service* find_service(std::u16string_view name) {
    for (Service& service : session().machine.services) {
        if (platform::same_name(service.name, name))
            return &service;
    }
    return nullptr;
}

// The phase that the service is in by now. A service without any runs. Time counts from the first question
// about it.
ServicePhase present(Service& service) {
    const std::uint32_t now = session().clock.ticks();
    std::uint32_t& since = session().area<ServiceArea>().since.try_emplace(service.name, now).first->second;
    if (service.now.empty())
        return {};
    while (service.now.size() > 1 && service.now.front().milliseconds != 0 &&
           now - since >= service.now.front().milliseconds) {
        since += service.now.front().milliseconds;
        service.now.erase(service.now.begin());
    }
    return service.now.front();
}

void begin(Service& service, const std::vector<ServicePhase>& phases) {
    service.now = phases;
    session().area<ServiceArea>().since[service.name] = session().clock.ticks();
}

SERVICE_STATUS status_of(const ServicePhase& phase) {
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = phase.state;
    status.dwControlsAccepted = phase.state == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP : 0;
    status.dwWin32ExitCode = phase.exit_code;
    status.dwCheckPoint = phase.checkpoint;
    status.dwWaitHint = phase.wait_hint;
    return status;
}

bool has_state(const ServicePhase& phase, DWORD wanted) {
    return (wanted & (phase.state == SERVICE_STOPPED ? SERVICE_INACTIVE : SERVICE_ACTIVE)) != 0;
}

// All that depend on the service, also through others, those that have to stop first in front.
void collect_dependents(const Service& service, std::vector<Service*>& found) {
    for (const std::u16string& name : service.dependents) {
        Service* dependent = find_service(name);
        if (dependent == nullptr || std::find(found.begin(), found.end(), dependent) != found.end())
            continue;
        const auto place = static_cast<std::ptrdiff_t>(found.size());
        collect_dependents(*dependent, found);
        if (std::find(found.begin() + place, found.end(), dependent) == found.end())
            found.push_back(dependent);
    }
}

// The service behind a handle that was opened with the right; null with the last error set.
Service* service_behind(SC_HANDLE handle, DWORD right) {
    const auto opened = session().handles.find<ServiceHandle>(handle);
    if (!opened)
        return failed(ERROR_INVALID_HANDLE), nullptr;
    if ((opened->access & right) != right)
        return failed(ERROR_ACCESS_DENIED), nullptr;
    Service* service = find_service(opened->name);
    if (service == nullptr)
        failed(ERROR_SERVICE_DOES_NOT_EXIST);
    return service;
}

std::string name_behind(SC_HANDLE handle) {
    const auto opened = std::dynamic_pointer_cast<ServiceHandle>(session().handles.peek(handle));
    return opened ? platform::to_utf8(opened->name) : "";
}

SC_HANDLE as_handle(std::shared_ptr<platform::Object> object) {
    return static_cast<SC_HANDLE>(session().handles.open(std::move(object)));
}

// Why a stop isn't accepted; 0 when it is.
DWORD stop_refusal(const Service& service, const ServicePhase& phase) {
    if (phase.state == SERVICE_STOPPED)
        return ERROR_SERVICE_NOT_ACTIVE;
    if (phase.state == SERVICE_START_PENDING || phase.state == SERVICE_STOP_PENDING)
        return ERROR_SERVICE_CANNOT_ACCEPT_CTRL;
    std::vector<Service*> dependents;
    collect_dependents(service, dependents);
    if (std::any_of(dependents.begin(), dependents.end(),
                    [](Service* one) { return has_state(present(*one), SERVICE_ACTIVE); }))
        return ERROR_DEPENDENT_SERVICES_RUNNING;
    return service.stop_error;
}

} // namespace

std::uint32_t platform::service_state(std::u16string_view name) {
    const std::lock_guard lock(session().area<ServiceArea>().lock);
    Service* service = find_service(name);
    return service == nullptr ? 0 : present(*service).state;
}

SC_HANDLE OpenSCManagerW(LPCWSTR computer, LPCWSTR database, DWORD) {
    platform::Call call("OpenSCManagerW");
    if (call.fails(ERROR_ACCESS_DENIED))
        return nullptr;
    if ((computer != nullptr && *computer != 0) || database != nullptr)
        call.refuse("only this machine's services are there");
    return as_handle(std::make_shared<ManagerHandle>());
}

SC_HANDLE OpenServiceW(SC_HANDLE manager, LPCWSTR name, DWORD access) {
    platform::Call call("OpenServiceW", platform::shown(name));
    if (call.fails(ERROR_ACCESS_DENIED))
        return nullptr;
    if (!session().handles.find<ManagerHandle>(manager))
        return failed(ERROR_INVALID_HANDLE), nullptr;
    if (name == nullptr)
        return failed(ERROR_INVALID_PARAMETER), nullptr;
    const std::lock_guard lock(session().area<ServiceArea>().lock);
    const std::u16string_view text = name;
    if (text.empty() || text.find_first_of(u"/\\") != text.npos)
        return failed(ERROR_INVALID_NAME), nullptr;
    if (find_service(text) == nullptr)
        return failed(ERROR_SERVICE_DOES_NOT_EXIST), nullptr;
    return as_handle(std::make_shared<ServiceHandle>(std::u16string(text), access));
}

// Closing can't be made to fail on demand: nobody could close the handle after that.
BOOL CloseServiceHandle(SC_HANDLE handle) {
    const auto open = session().handles.peek(handle);
    platform::Call call("CloseServiceHandle", open ? open->kind() : "");
    const bool ours =
        std::dynamic_pointer_cast<ManagerHandle>(open) || std::dynamic_pointer_cast<ServiceHandle>(open);
    if (open && !ours)
        session().gate.misuse(std::string("CloseServiceHandle of a ") + open->kind());
    else if (session().handles.close(handle))
        return TRUE;
    return failed(ERROR_INVALID_HANDLE);
}

BOOL QueryServiceStatusEx(SC_HANDLE handle, SC_STATUS_TYPE level, LPBYTE record, DWORD size, LPDWORD needed) {
    platform::Call call("QueryServiceStatusEx", name_behind(handle));
    if (call.fails(ERROR_INVALID_HANDLE))
        return FALSE;
    const std::lock_guard lock(session().area<ServiceArea>().lock);
    Service* service = service_behind(handle, SERVICE_QUERY_STATUS);
    if (service == nullptr)
        return FALSE;
    if (level != SC_STATUS_PROCESS_INFO)
        return failed(ERROR_INVALID_LEVEL);
    if (needed == nullptr || (record == nullptr && size != 0))
        return failed(ERROR_INVALID_PARAMETER);
    *needed = sizeof(SERVICE_STATUS_PROCESS);
    if (size < sizeof(SERVICE_STATUS_PROCESS)) {
        if (record != nullptr)
            std::memset(record, 0xCD, size);
        return failed(ERROR_INSUFFICIENT_BUFFER);
    }
    SERVICE_STATUS_PROCESS full{};
    const SERVICE_STATUS status = status_of(present(*service));
    std::memcpy(&full, &status, sizeof(status));
    full.dwProcessId = status.dwCurrentState == SERVICE_STOPPED ? 0 : 1000;
    std::memcpy(record, &full, sizeof(full));
    return TRUE;
}

BOOL ControlService(SC_HANDLE handle, DWORD control, LPSERVICE_STATUS status) {
    platform::Call call("ControlService", name_behind(handle));
    if (call.fails(ERROR_SERVICE_REQUEST_TIMEOUT))
        return FALSE;
    if (control != SERVICE_CONTROL_STOP)
        call.refuse("only the stop control is modelled");
    const std::lock_guard lock(session().area<ServiceArea>().lock);
    Service* service = service_behind(handle, SERVICE_STOP);
    if (service == nullptr)
        return FALSE;
    if (status == nullptr)
        return failed(ERROR_INVALID_PARAMETER);
    const DWORD refusal = stop_refusal(*service, present(*service));
    if (refusal == 0)
        begin(*service, service->on_stop);
    // The record is filled for these answers alone.
    if (refusal == 0 || refusal == ERROR_SERVICE_CANNOT_ACCEPT_CTRL || refusal == ERROR_SERVICE_NOT_ACTIVE ||
        refusal == ERROR_INVALID_SERVICE_CONTROL)
        *status = status_of(present(*service));
    return refusal == 0 ? TRUE : failed(refusal);
}

BOOL EnumDependentServicesW(SC_HANDLE handle, DWORD state, LPENUM_SERVICE_STATUSW records, DWORD size,
                            LPDWORD needed, LPDWORD returned) {
    platform::Call call("EnumDependentServicesW", name_behind(handle));
    if (call.fails(ERROR_ACCESS_DENIED))
        return FALSE;
    const std::lock_guard lock(session().area<ServiceArea>().lock);
    const Service* service = service_behind(handle, SERVICE_ENUMERATE_DEPENDENTS);
    if (service == nullptr)
        return FALSE;
    if (needed == nullptr || returned == nullptr || (records == nullptr && size != 0) || state == 0 ||
        (state & ~DWORD{SERVICE_STATE_ALL}) != 0)
        return failed(ERROR_INVALID_PARAMETER);
    std::vector<Service*> dependents;
    collect_dependents(*service, dependents);
    platform::RecordBuffer<ENUM_SERVICE_STATUSW> found;
    for (Service* dependent : dependents) {
        const ServicePhase phase = present(*dependent);
        if (!has_state(phase, state))
            continue;
        found.add().ServiceStatus = status_of(phase);
        found.text(&ENUM_SERVICE_STATUSW::lpServiceName, dependent->name);
        found.text(&ENUM_SERVICE_STATUSW::lpDisplayName, dependent->name);
    }
    const platform::ToldSize answer = call.size(found.bytes(), size);
    *needed = size < answer.needed ? answer.told : 0;
    *returned = answer.more;
    if (size < answer.needed) {
        if (size != 0)
            std::memset(static_cast<void*>(records), 0xCD, size);
        return failed(ERROR_MORE_DATA);
    }
    if (found.count() != 0)
        found.write(records);
    *returned = static_cast<DWORD>(found.count() + answer.more);
    return TRUE;
}

BOOL StartServiceW(SC_HANDLE handle, DWORD count, LPCWSTR*) {
    platform::Call call("StartServiceW", name_behind(handle));
    if (call.fails(ERROR_SERVICE_REQUEST_TIMEOUT))
        return FALSE;
    if (count != 0)
        call.refuse("arguments of a service aren't modelled");
    const std::lock_guard lock(session().area<ServiceArea>().lock);
    Service* service = service_behind(handle, SERVICE_START);
    if (service == nullptr)
        return FALSE;
    if (present(*service).state != SERVICE_STOPPED)
        return failed(ERROR_SERVICE_ALREADY_RUNNING);
    if (service->start_error != 0)
        return failed(service->start_error);
    begin(*service, service->on_start);
    return TRUE;
}
