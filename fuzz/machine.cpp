#include "fuzz/machine.h"

#include <cstdio>
#include <fstream>
#include <memory>

#include <windows.h>

namespace fuzz {

Machine::Machine() {
    machine.spooler.queues.push_back({.name = u"Label", .port = u"FILE:", .driver = u"D"});
    start();
    CloseHandle(app.log_handle);
    app.log_handle = INVALID_HANDLE_VALUE;
}

Machine& machine() {
    constexpr unsigned inputs_each = 500;
    static std::unique_ptr<Machine> current;
    static unsigned served = 0;
    if (!current || served++ == inputs_each) {
        current.reset();
        current = std::make_unique<Machine>();
        served = 0;
    }
    return *current;
}

void put(const char* path, std::string_view bytes) {
    TestSession::write(machine().medium / path, std::string(bytes));
}

} // namespace fuzz
