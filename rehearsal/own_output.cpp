#include "rehearsal/own_output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace rehearsal {

OwnOutput::OwnOutput() {
    std::cout << std::flush;
    std::fflush(stdout);
    buffer_.descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (buffer_.descriptor < 0)
        buffer_.error = errno;
    else
        dup2(STDERR_FILENO, STDOUT_FILENO);
}

OwnOutput::~OwnOutput() {
    if (buffer_.descriptor < 0)
        return;
    std::cout << std::flush;
    std::fflush(stdout);
    dup2(buffer_.descriptor, STDOUT_FILENO);
    close(buffer_.descriptor);
}

void OwnOutput::check() {
    if (buffer_.error != 0)
        throw std::runtime_error(std::string("standard output: can't be written: ") +
                                 std::strerror(buffer_.error));
}

OwnOutput::Buffer::int_type OwnOutput::Buffer::overflow(int_type letter) {
    const char text = traits_type::to_char_type(letter);
    return write_all(&text, 1) ? letter : traits_type::eof();
}

std::streamsize OwnOutput::Buffer::xsputn(const char* text, std::streamsize size) {
    return write_all(text, static_cast<std::size_t>(size)) ? size : 0;
}

bool OwnOutput::Buffer::write_all(const char* text, std::size_t size) {
    while (size > 0 && error == 0) {
        const ssize_t written = ::write(descriptor, text, size);
        if (written < 0 && errno != EINTR)
            error = errno;
        if (written > 0) {
            text += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    return error == 0;
}

} // namespace rehearsal
