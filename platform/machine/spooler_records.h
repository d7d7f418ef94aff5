// What the spooler's enumerations tell of its state. The record types are the caller's own platform's, so
// that the same answers go through the rehearsal's headers and through those of the Windows compiler.
#pragma once

#include "machine/record_buffer.h"
#include "machine/spooler_model.h"
#include "machine/text.h"

namespace platform {

// Records that hold a name and nothing else: DRIVER_INFO_1W, PORT_INFO_1W, MONITOR_INFO_1W.
template<class Record, class Source>
RecordBuffer<Record> name_records(const std::vector<Source>& sources) {
    RecordBuffer<Record> records;
    for (const Source& source : sources) {
        records.add();
        records.text(&Record::pName, source.name);
    }
    return records;
}

// PRINTPROCESSOR_INFO_1W.
template<class Record>
RecordBuffer<Record> processor_records(const std::vector<std::u16string>& processors) {
    RecordBuffer<Record> records;
    for (const std::u16string& processor : processors) {
        records.add();
        records.text(&Record::pName, processor);
    }
    return records;
}

// DRIVER_INFO_2W and DRIVER_INFO_6W. The driver's files, dates and makers aren't modelled; as with a driver
// that lacks them the fields stay null.
template<class Record>
RecordBuffer<Record> driver_records(const std::vector<PrinterDriver>& drivers) {
    constexpr int user_mode_driver = 3;
    RecordBuffer<Record> records;
    for (const PrinterDriver& driver : drivers) {
        Record& record = records.add();
        record.cVersion = user_mode_driver;
        if constexpr (requires { record.dwlDriverVersion; })
            record.dwlDriverVersion = driver.version;
        records.text(&Record::pName, driver.name);
        records.text(&Record::pEnvironment, driver.environment);
    }
    return records;
}

// PORT_INFO_2W.
template<class Record>
RecordBuffer<Record> port_records(const std::vector<PrintPort>& ports) {
    RecordBuffer<Record> records;
    for (const PrintPort& port : ports) {
        records.add().fPortType = port.type;
        records.text(&Record::pPortName, port.name);
        records.text(&Record::pMonitorName, port.monitor);
        records.text(&Record::pDescription, port.description);
    }
    return records;
}

// MONITOR_INFO_2W.
template<class Record>
RecordBuffer<Record> monitor_records(const std::vector<PortMonitor>& monitors) {
    RecordBuffer<Record> records;
    for (const PortMonitor& monitor : monitors) {
        records.add();
        records.text(&Record::pName, monitor.name);
        records.text(&Record::pEnvironment, monitor.environment);
        records.text(&Record::pDLLName, monitor.dll);
    }
    return records;
}

// PRINTER_INFO_1W of the local queues.
template<class Record>
RecordBuffer<Record> brief_queue_records(const std::vector<PrintQueue>& queues) {
    constexpr std::uint32_t printer_icon = 0x00800000; // PRINTER_ENUM_ICON8
    RecordBuffer<Record> records;
    for (const PrintQueue& queue : queues) {
        if (!is_local(queue))
            continue;
        records.add().Flags = printer_icon;
        records.text(&Record::pDescription, queue.name + u"," + queue.driver + u",");
        records.text(&Record::pName, queue.name);
        records.text(&Record::pComment, u"");
    }
    return records;
}

// PRINTER_INFO_2W of the local queues. No server, device mode or security descriptor: those fields stay null.
template<class Record>
RecordBuffer<Record> queue_records(const std::vector<PrintQueue>& queues) {
    constexpr std::uint32_t pending_deletion = 4; // PRINTER_STATUS_PENDING_DELETION
    constexpr std::uint32_t lowest_priority = 1;  // what a queue added with priority 0 gets
    RecordBuffer<Record> records;
    for (const PrintQueue& queue : queues) {
        if (!is_local(queue))
            continue;
        Record& record = records.add();
        record.Attributes = queue.attributes;
        record.Priority = lowest_priority;
        record.Status = queue.deleting ? pending_deletion : 0;
        record.cJobs = queue.jobs;
        records.text(&Record::pPrinterName, queue.name);
        records.text(&Record::pShareName, u"");
        records.text(&Record::pPortName, queue.port);
        records.text(&Record::pDriverName, queue.driver);
        records.text(&Record::pComment, u"");
        records.text(&Record::pLocation, u"");
        records.text(&Record::pSepFile, u"");
        records.text(&Record::pPrintProcessor, queue.processor);
        records.text(&Record::pDatatype, queue.datatype);
        records.text(&Record::pParameters, u"");
    }
    return records;
}

// The drivers of one environment, or of all for the name "all".
inline std::vector<PrinterDriver> drivers_of(const SpoolerState& state, std::u16string_view environment) {
    std::vector<PrinterDriver> found;
    for (const PrinterDriver& driver : state.drivers) {
        if (environment == u"all" || same_name(driver.environment, environment))
            found.push_back(driver);
    }
    return found;
}

} // namespace platform
