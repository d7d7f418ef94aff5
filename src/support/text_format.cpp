#include "support/text.h"

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

void put(Composition* text, WCHAR character) {
    if (text->length + 1 >= text->capacity)
        text->fits = 0;
    if (!text->fits)
        return;
    if (text->wide != nullptr)
        text->wide[text->length] = character;
    else
        text->ansi[text->length] = static_cast<char>(character);
    ++text->length;
}

void put_wide_text(Composition* text, const WCHAR* part) {
    for (; part != nullptr && *part != 0 && text->fits; ++part)
        put(text, *part);
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

void put_number(Composition* text, DWORD magnitude, DWORD base, int negative, const Field& field) {
    char digits[digits_capacity];
    size_t count = 0;
    do {
        digits[count++] = "0123456789abcdef"[magnitude % base];
        magnitude /= base;
    } while (magnitude != 0);

    const size_t wanted = field.width < digits_capacity ? field.width : digits_capacity;
    const size_t sign = negative ? 1 : 0;
    if (negative && field.padding == '0')
        put(text, '-');
    for (size_t filled = count + sign; filled < wanted; ++filled)
        put(text, field.padding);
    if (negative && field.padding != '0')
        put(text, '-');
    while (count > 0)
        put(text, static_cast<WCHAR>(digits[--count]));
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
        put(text, static_cast<WCHAR>(va_arg(arguments->list, int)));
        break;
    default:
        put(text, field.kind); // "%%", and what isn't a field stands for itself
    }
}

// Reads the format, of which one of the two is given, and terminates the text.
int compose(Composition* text, const WCHAR* wide_format, const char* ansi_format, Arguments* arguments) {
    for (size_t place = 0;; ++place) {
        WCHAR character = wide_format != nullptr ? wide_format[place] : static_cast<BYTE>(ansi_format[place]);
        if (character == 0)
            break;
        if (character != '%') {
            put(text, character);
            continue;
        }
        Field field = {0, ' ', 0};
        do {
            ++place;
            character = wide_format != nullptr ? wide_format[place] : static_cast<BYTE>(ansi_format[place]);
        } while (!take_field_character(&field, character));
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

int format_text_list(WCHAR* out, size_t capacity, const WCHAR* format, va_list arguments) {
    if (capacity == 0)
        return 0;
    Composition text = {out, nullptr, capacity, 0, 1};
    Arguments own;
    va_copy(own.list, arguments);
    const int fits = compose(&text, format, nullptr, &own);
    va_end(own.list);
    return fits;
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
    const int fits = compose(&text, nullptr, format, &arguments);
    va_end(arguments.list);
    return fits;
}
