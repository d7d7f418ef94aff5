#include "support/install_log.h"

#include "state/app_state.h"
#include "support/text.h"

#include <failed_step.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr size_t chunk_characters = 256;
constexpr size_t chunk_bytes = chunk_characters * 4; // no code page needs more for a 16-bit unit

// What is on its way to the file.
struct LogChunk {
    HANDLE handle;
    size_t used;
    WCHAR text[chunk_characters];
};

void write_chunk(LogChunk* chunk) {
    char bytes[chunk_bytes];
    const int length = static_cast<int>(chunk->used);
    BOOL used_default = FALSE;
    chunk->used = 0;
    int count =
        WideCharToMultiByte(CP_ACP, 0, chunk->text, length, bytes, sizeof(bytes), nullptr, &used_default);
    if (count <= 0) // a UTF-8 code page refuses the flag
        count = WideCharToMultiByte(CP_ACP, 0, chunk->text, length, bytes, sizeof(bytes), nullptr, nullptr);
    if (count <= 0)
        return;
    DWORD written = 0;
    if (!WriteFile(chunk->handle, bytes, static_cast<DWORD>(count), &written, nullptr) ||
        written != static_cast<DWORD>(count))
        step_failed(TEXT("writing the log"));
}

// Writes a full chunk out. The first half of a pair waits for its second.
void empty_chunk(LogChunk* chunk) {
    const WCHAR last = chunk->text[chunk->used - 1];
    const size_t waiting = last >= 0xd800 && last <= 0xdbff ? 1 : 0;
    chunk->used -= waiting;
    write_chunk(chunk);
    chunk->text[0] = last;
    chunk->used = waiting;
}

void put_text(LogChunk* chunk, const WCHAR* text, size_t length) {
    while (length > 0) {
        if (chunk->used == chunk_characters)
            empty_chunk(chunk);
        const size_t taken = std::min(length, chunk_characters - chunk->used);
        std::memcpy(chunk->text + chunk->used, text, taken * sizeof(WCHAR));
        chunk->used += taken;
        text += taken;
        length -= taken;
    }
}

// A text and its length in characters.
struct LogText {
    const WCHAR* text;
    size_t length;
};

void write_texts(HANDLE handle, const LogText* texts, size_t count) {
    LogChunk chunk;
    chunk.handle = handle;
    chunk.used = 0;
    for (size_t i = 0; i < count; ++i)
        put_text(&chunk, texts[i].text, texts[i].length);
    if (chunk.used != 0)
        write_chunk(&chunk);
    if (!FlushFileBuffers(handle))
        step_failed(TEXT("writing the log"));
}

// The texts as one piece of the file, whichever threads write.
void write_locked(HANDLE handle, const LogText* texts, size_t count) {
    if (handle == INVALID_HANDLE_VALUE)
        return;
    // The run's first line is written before any other thread exists, so making the mutex needs no lock.
    if (app.log_mutex == nullptr)
        app.log_mutex = CreateMutexW(nullptr, FALSE, nullptr);
    const HANDLE mutex = app.log_mutex;
    if (mutex != nullptr) // without one the text is still written, only not as one piece
        WaitForSingleObject(mutex, INFINITE);
    if (handle != app.closed_log)
        write_texts(handle, texts, count);
    if (mutex != nullptr)
        ReleaseMutex(mutex);
}

// Puts the format's closing CR LF or LF back behind a text that was cut.
void restore_line_end(WCHAR* line, size_t capacity, const WCHAR* format) {
    const size_t format_length = text_length(format);
    if (format_length == 0 || format[format_length - 1] != '\n')
        return;
    const int has_return = format_length > 1 && format[format_length - 2] == '\r';
    const WCHAR* line_end = has_return ? TEXT("\r\n") : TEXT("\n");
    const size_t needed = text_length(line_end) + 1;
    if (capacity < needed)
        return;
    size_t place = text_length(line);
    if (place > capacity - needed)
        place = capacity - needed;
    copy_text(line + place, capacity - place, line_end);
}

void log_line_list(size_t capacity, const WCHAR* format, va_list arguments) {
    if (app.log_handle == INVALID_HANDLE_VALUE) {
        line_logged(format); // nobody reads it, so it isn't composed
        return;
    }
    WCHAR line[log_line_capacity];
    if (capacity > std::size(line))
        capacity = std::size(line);
    size_t length = compose_text(line, capacity, format, arguments);
    if (length == capacity) {
        restore_line_end(line, capacity, format);
        length = text_length(line);
    }
    line_logged(line);
    const LogText text = {line, length};
    write_locked(app.log_handle, &text, 1);
}

} // namespace

void close_log() {
    const HANDLE log = app.log_handle.exchange(INVALID_HANDLE_VALUE);
    if (log == INVALID_HANDLE_VALUE)
        return;
    const HANDLE mutex = app.log_mutex;
    if (mutex != nullptr)
        WaitForSingleObject(mutex, INFINITE);
    app.closed_log = log;
    CloseHandle(log);
    if (mutex != nullptr)
        ReleaseMutex(mutex);
}

void log_write(HANDLE handle, const WCHAR* text) {
    const LogText whole = {text, text_length(text)};
    write_locked(handle, &whole, 1);
}

void log_texts(const WCHAR* first, const WCHAR* second, const WCHAR* third, const WCHAR* fourth) {
    const LogText texts[] = {{first, text_length(first)},
                             {second, text_length(second)},
                             {third, text_length(third)},
                             {fourth, text_length(fourth)},
                             {TEXT("\r\n"), 2}};
    write_locked(app.log_handle, texts, std::size(texts));
}

void log_text(const WCHAR* text) {
    log_texts(text, nullptr, nullptr, nullptr);
}

void log_line(const WCHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log_line_list(log_line_capacity, format, arguments);
    va_end(arguments);
}

void log_line_within(size_t capacity, const WCHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log_line_list(capacity, format, arguments);
    va_end(arguments);
}
