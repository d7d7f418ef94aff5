#include "support/text.h"

#include <cstring>

// The C libraries disagree on 16-bit formats: what %s means, what a cut leaves behind, which code page %S
// goes by. Both widths are therefore composed here, by one reading of the format.

namespace {

// A text on its way into its buffer: one of the two outputs is set, and only text of its width goes there.
struct Composition {
    WCHAR* wide;
    char* ansi;
    size_t capacity; // with the terminator, above 0
    size_t length;
    int fits; // 0 once something was cut; nothing is added behind a cut
};

// One field of a format, behind its '%'.
struct Field {
    WCHAR kind; // 0 when the format ends inside the field
    WCHAR padding;
    size_t width; // fewer digits than this are padded
};

// The field's arguments. A list is wrapped, since it may be an array, which doesn't pass by reference as
// such.
struct Arguments {
    va_list list;
};

constexpr size_t digits_capacity = 32; // the widest padding that is served, and more than 32 bits need

// Characters of the text's own width; what has no room is cut.
void put_wide(Composition* text, const WCHAR* part, size_t length) {
    const size_t room = text->fits ? text->capacity - 1 - text->length : 0;
    if (length > room) {
        text->fits = 0;
        length = room;
    }
    std::memcpy(text->wide + text->length, part, length * sizeof(WCHAR));
    text->length += length;
}

// 7-bit characters, which have the same values in both widths.
void put_plain(Composition* text, const char* part, size_t length) {
    const size_t room = text->fits ? text->capacity - 1 - text->length : 0;
    if (length > room) {
        text->fits = 0;
        length = room;
    }
    for (size_t i = 0; i < length; ++i) {
        if (text->wide != nullptr)
            text->wide[text->length + i] = static_cast<WCHAR>(part[i]);
        else
            text->ansi[text->length + i] = part[i];
    }
    text->length += length;
}

void put_character(Composition* text, WCHAR character) {
    const char plain = static_cast<char>(character);
    if (text->wide != nullptr)
        put_wide(text, &character, 1);
    else
        put_plain(text, &plain, 1);
}

void put_wide_text(Composition* text, const WCHAR* part) {
    if (part != nullptr)
        put_wide(text, part, text_length(part));
}

// 8-bit text goes through the routines that know the code page's characters, so that none is halved.
void put_ansi_text(Composition* text, const char* part) {
    if (!text->fits)
        return;
    const size_t room = text->capacity - text->length;
    if (text->wide != nullptr) {
        text->fits = widen(text->wide + text->length, room, part);
        text->length += text_length(text->wide + text->length);
    } else {
        text->fits = copy_ansi(text->ansi + text->length, room, part);
        text->length += ansi_length(text->ansi + text->length);
    }
}

// Filled from its end: the digits, then the padding and the sign in the order that the padding wants.
void put_number(Composition* text, DWORD magnitude, DWORD base, int negative, const Field& field) {
    constexpr size_t end = digits_capacity + 1;
    char digits[end];
    size_t place = end;
    do {
        digits[--place] = "0123456789abcdef"[magnitude % base];
        magnitude /= base;
    } while (magnitude != 0);

    const size_t sign_first = negative && field.padding == '0' ? 1 : 0;
    if (negative && !sign_first)
        digits[--place] = '-';
    const size_t wanted = field.width < digits_capacity ? field.width : digits_capacity;
    while (end - place + sign_first < wanted)
        digits[--place] = static_cast<char>(field.padding);
    if (sign_first)
        digits[--place] = '-';
    put_plain(text, digits + place, end - place);
}

// Takes one more character of a field's text; 0 when the field isn't complete yet.
int take_field_character(Field* field, WCHAR character) {
    if (character == '0' && field->width == 0) {
        field->padding = '0';
        return 0;
    }
    if (character >= '0' && character <= '9') {
        if (field->width < digits_capacity)
            field->width = field->width * 10 + static_cast<size_t>(character - '0');
        return 0;
    }
    if (character == 'l') // a long is 32 bits wide, and text behind it has the width of %s
        return 0;
    field->kind = character;
    return 1;
}

void put_field(Composition* text, const Field& field, Arguments* arguments) {
    switch (field.kind) {
    case 's':
        if (text->wide != nullptr)
            put_wide_text(text, va_arg(arguments->list, const WCHAR*));
        else
            put_ansi_text(text, va_arg(arguments->list, const char*));
        break;
    case 'S':
        put_ansi_text(text, va_arg(arguments->list, const char*));
        break;
    case 'd': {
        const int value = va_arg(arguments->list, int);
        const DWORD bits = static_cast<DWORD>(value);
        put_number(text, value < 0 ? 0 - bits : bits, 10, value < 0, field);
        break;
    }
    case 'u':
        put_number(text, va_arg(arguments->list, DWORD), 10, 0, field);
        break;
    case 'x':
        put_number(text, va_arg(arguments->list, DWORD), 16, 0, field);
        break;
    case 'c':
        put_character(text, static_cast<WCHAR>(va_arg(arguments->list, int)));
        break;
    default:
        put_character(text, field.kind); // "%%", and what isn't a field stands for itself
    }
}

// A format on its way through: one of the two is set.
struct Format {
    const WCHAR* wide;
    const char* ansi;
};

WCHAR next_character(Format* format) {
    return format->wide != nullptr ? *format->wide++ : static_cast<BYTE>(*format->ansi++);
}

// Takes what stands in front of the next field or the end.
void put_literal(Composition* text, Format* format) {
    size_t length = 0;
    if (format->wide != nullptr) {
        while (format->wide[length] != 0 && format->wide[length] != '%')
            ++length;
        put_wide(text, format->wide, length);
        format->wide += length;
    } else {
        while (format->ansi[length] != 0 && format->ansi[length] != '%')
            ++length;
        put_plain(text, format->ansi, length);
        format->ansi += length;
    }
}

// Reads the format and terminates the text.
int compose(Composition* text, Format format, Arguments* arguments) {
    for (;;) {
        put_literal(text, &format);
        if (next_character(&format) == 0)
            break;
        Field field = {0, ' ', 0};
        while (!take_field_character(&field, next_character(&format))) {
        }
        if (field.kind == 0)
            break;
        put_field(text, field, arguments);
    }
    if (text->wide != nullptr)
        text->wide[text->length] = 0;
    else
        text->ansi[text->length] = 0;
    return text->fits;
}

} // namespace

size_t compose_text(WCHAR* out, size_t capacity, const WCHAR* format, va_list arguments) {
    if (capacity == 0)
        return 0;
    Composition text = {out, nullptr, capacity, 0, 1};
    Arguments own;
    va_copy(own.list, arguments);
    const int fits = compose(&text, {format, nullptr}, &own);
    va_end(own.list);
    return fits ? text.length : capacity;
}

int format_text_list(WCHAR* out, size_t capacity, const WCHAR* format, va_list arguments) {
    return compose_text(out, capacity, format, arguments) < capacity;
}

int format_text(WCHAR* out, size_t capacity, const WCHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int fits = format_text_list(out, capacity, format, arguments);
    va_end(arguments);
    return fits;
}

int format_ansi(char* out, size_t capacity, const char* format, ...) {
    if (capacity == 0)
        return 0;
    Composition text = {nullptr, out, capacity, 0, 1};
    Arguments arguments;
    va_start(arguments.list, format);
    const int fits = compose(&text, {nullptr, format}, &arguments);
    va_end(arguments.list);
    return fits;
}
