#pragma once

#include "platform/fault.h"
#include "platform/file_associations.h"

#include <map>

namespace pelorin {

class MemoryFileAssociations final : public FileAssociations {
public:
    [[nodiscard]] std::string ClassOf(std::string_view extension) const override {
        const auto found = m_classes.find(extension);
        return found == m_classes.end() ? std::string{} : found->second;
    }
    [[nodiscard]] FileClass Read(std::string_view className) const override {
        const auto found = m_facts.find(className);
        return found == m_facts.end() ? FileClass{} : found->second;
    }
    bool SetClassOf(std::string_view extension, std::string_view className) override {
        if (m_fault.Strikes()) return false;
        m_classes[std::string(extension)] = className;
        return true;
    }
    bool Write(std::string_view className, const FileClass& facts) override {
        if (m_fault.Strikes()) return false;
        m_facts[std::string(className)] = facts;
        return true;
    }

    std::map<std::string, std::string, std::less<>> m_classes; ///< by extension
    std::map<std::string, FileClass, std::less<>> m_facts;     ///< by class
    Fault m_fault;
};

} // namespace pelorin
