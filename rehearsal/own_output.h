// Standard output, kept for the tool's own results while the program runs: what the program prints there by
// itself goes to standard error.
#pragma once

#include <memory>
#include <ostream>
#include <streambuf>

namespace rehearsal {

class OwnOutput {
public:
    OwnOutput();
    ~OwnOutput(); // standard output is what it was
    OwnOutput(const OwnOutput&) = delete;
    OwnOutput& operator=(const OwnOutput&) = delete;

    std::ostream& stream() { return stream_; }
    // Throws std::runtime_error with the reason when anything couldn't be written so far.
    void check();

private:
    class Buffer : public std::streambuf {
    public:
        int descriptor = -1;
        int error = 0; // of the first write that failed

    protected:
        int_type overflow(int_type letter) override;
        std::streamsize xsputn(const char* text, std::streamsize size) override;

    private:
        bool write_all(const char* text, std::size_t size);
    };

    Buffer buffer_;
    std::ostream stream_{&buffer_};
};

} // namespace rehearsal
