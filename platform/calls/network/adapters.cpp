#include "calls/run/session.h"

#include <iphlpapi.h>
#include <winerror.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace platform {
namespace {

// Text into a fixed field, cut where it must be and always terminated.
template<std::size_t size>
void put_text(char (&field)[size], const std::string& text) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::copy_n(text.data(), length, field);
    field[length] = '\0';
}

void put_address(IP_ADDR_STRING& entry, const std::string& address, const char* mask) {
    put_text(entry.IpAddress.String, address);
    put_text(entry.IpMask.String, mask);
}

std::size_t further_addresses(const Adapter& adapter) {
    return adapter.addresses.size() < 2 ? 0 : adapter.addresses.size() - 1;
}

std::size_t bytes_needed(const std::vector<Adapter>& adapters) {
    std::size_t bytes = adapters.size() * sizeof(IP_ADAPTER_INFO);
    for (const Adapter& adapter : adapters)
        bytes += further_addresses(adapter) * sizeof(IP_ADDR_STRING);
    return bytes;
}

void fill_record(IP_ADAPTER_INFO& record, const Adapter& adapter, unsigned index) {
    record = {};
    record.ComboIndex = index;
    record.Index = index;
    record.Type = MIB_IF_TYPE_ETHERNET;
    put_text(record.AdapterName, "{00000000-0000-0000-0000-00000000000" + std::to_string(index % 10) + "}");
    put_text(record.Description, adapter.description);
    // A locally administered hardware address, which no real card carries.
    record.AddressLength = 6;
    record.Address[0] = 2;
    record.Address[5] = static_cast<BYTE>(index);
    // An adapter without any address is listed with 0.0.0.0.
    const bool bare = adapter.addresses.empty();
    put_address(record.IpAddressList, bare ? "0.0.0.0" : adapter.addresses.front(),
                bare ? "0.0.0.0" : "255.255.255.0");
    put_address(record.GatewayList, "0.0.0.0", "0.0.0.0");
}

// The records stand first, linked in order; the further addresses of all adapters follow behind them.
void fill(IP_ADAPTER_INFO* records, const std::vector<Adapter>& adapters) {
    auto* spare = reinterpret_cast<IP_ADDR_STRING*>(records + adapters.size());
    for (std::size_t index = 0; index < adapters.size(); ++index) {
        IP_ADAPTER_INFO& record = records[index];
        fill_record(record, adapters[index], static_cast<unsigned>(index) + 1);
        record.Next = index + 1 < adapters.size() ? &records[index + 1] : nullptr;
        IP_ADDR_STRING* last = &record.IpAddressList;
        for (std::size_t further = 1; further <= further_addresses(adapters[index]); ++further) {
            *spare = {};
            put_address(*spare, adapters[index].addresses[further], "255.255.255.0");
            last->Next = spare;
            last = spare++;
        }
    }
}

} // namespace
} // namespace platform

DWORD GetAdaptersInfo(PIP_ADAPTER_INFO info, PULONG size) {
    platform::Call call("GetAdaptersInfo");
    if (call.fails(ERROR_NOT_SUPPORTED))
        return call.error();
    if (size == nullptr)
        return ERROR_INVALID_PARAMETER;
    const std::vector<platform::Adapter>& adapters = platform::session().machine.adapters;
    if (adapters.empty())
        return ERROR_NO_DATA;
    const platform::ToldSize answer =
        call.size(platform::bytes_needed(adapters), info == nullptr ? 0 : *size);
    if (info == nullptr || *size < answer.needed) {
        if (info != nullptr)
            std::memset(static_cast<void*>(info), 0xCD, *size);
        *size = answer.told;
        return ERROR_BUFFER_OVERFLOW;
    }
    platform::fill(info, adapters);
    return 0;
}
