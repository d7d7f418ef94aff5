// The program that is driven: its process and, when a starter stands between, that of the starter's child.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace pilot {

class Program {
public:
    Program() = default;
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // Starts it in the folder. Empty, or why it couldn't be started.
    std::string start(std::wstring command_line, const std::wstring& folder);

    bool ended() const;
    DWORD exit_code() const;
    std::vector<DWORD> process_ids() const; // the process and its children
    void terminate() const;                 // with its children

private:
    HANDLE process_ = nullptr;
    DWORD id_ = 0;
};

} // namespace pilot
