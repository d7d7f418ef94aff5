// Two network namespaces of this process's own, one for a program and one for printers, with a link between
// them and no way out. They have no names and go with the last process in them.
#pragma once

#include <string>
#include <vector>

namespace rehearsal {

inline constexpr char program_in_namespace[] = "10.77.0.2";

class NetworkNamespaces {
public:
    // Whether this computer lets the user make such namespaces, with root's rights or in a user namespace.
    // Tried out in processes of its own.
    static bool permitted();

    // Puts this process, which must not have other threads, into the program's namespace, where it has
    // program_in_namespace; the printers' has these addresses, all of 10.77.0.0/24. Throws std::runtime_error
    // with the reason.
    explicit NetworkNamespaces(const std::vector<std::string>& printer_addresses);
    ~NetworkNamespaces();
    NetworkNamespaces(const NetworkNamespaces&) = delete;
    NetworkNamespaces& operator=(const NetworkNamespaces&) = delete;

    // Where this process is from now on, and those that it begins. Throw as above.
    void enter_printers() const;
    void enter_program() const;

private:
    int program_ = -1;
    int printers_ = -1;
};

} // namespace rehearsal
