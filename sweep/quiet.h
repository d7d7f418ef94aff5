#pragma once

#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace sweep {

// Sends what is printed while it lives nowhere: the routines of the removal print as they go.
class Quiet {
public:
    Quiet() : out_(dup(STDOUT_FILENO)), error_(dup(STDERR_FILENO)) {
        const int nothing = open("/dev/null", O_WRONLY);
        dup2(nothing, STDOUT_FILENO);
        dup2(nothing, STDERR_FILENO);
        close(nothing);
    }
    ~Quiet() {
        std::fflush(nullptr);
        dup2(out_, STDOUT_FILENO);
        dup2(error_, STDERR_FILENO);
        close(out_);
        close(error_);
    }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    int out_, error_;
};

} // namespace sweep
