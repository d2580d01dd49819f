// Failures of files that the system has a number for.
#pragma once

#include "base/files.h"

namespace pelorin {

/// What the file functions throw where a call of the system failed.
class SystemFileException : public FileException {
public:
    SystemFileException(const std::string& reason, int number) : FileException(reason), m_number(number) {}
    [[nodiscard]] int Number() const { return m_number; }

private:
    int m_number;
};

/// The system's number for the failure; 0 where the reason is our own.
[[nodiscard]] inline int SystemErrorOf(const FileException& error) {
    const auto* ofSystem = dynamic_cast<const SystemFileException*>(&error);
    return ofSystem ? ofSystem->Number() : 0;
}

} // namespace pelorin
