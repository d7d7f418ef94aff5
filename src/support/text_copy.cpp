#include "support/text.h"

#include <cstring>

size_t text_length(const WCHAR* text) {
    size_t length = 0;
    while (text != nullptr && text[length] != 0)
        ++length;
    return length;
}

size_t ansi_length(const char* text) {
    return text != nullptr ? std::strlen(text) : 0;
}

int copy_text(WCHAR* out, size_t capacity, const WCHAR* text) {
    if (capacity == 0)
        return 0;
    size_t used = 0;
    for (; text != nullptr && text[used] != 0 && used + 1 < capacity; ++used)
        out[used] = text[used];
    out[used] = 0;
    return text == nullptr || text[used] == 0;
}

int append_text(WCHAR* out, size_t capacity, const WCHAR* text) {
    const size_t used = text_length(out);
    return used < capacity && copy_text(out + used, capacity - used, text);
}
