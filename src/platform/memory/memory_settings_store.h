#pragma once

#include "base/files.h"
#include "platform/fault.h"
#include "platform/settings_store.h"

namespace pelorin {

/// The store of one run; `Committed` is what would be on the disk.
class MemorySettingsStore final : public SettingsStore {
public:
    explicit MemorySettingsStore(std::string_view text = "") : m_committed(text) { m_values = IniFile(text); }

    void Commit() override {
        if (m_fault.Strikes()) throw FileException("the disk is full");
        m_committed = m_values.Text();
    }
    [[nodiscard]] const std::string& Committed() const { return m_committed; }

    Fault m_fault;

private:
    std::string m_committed;
};

} // namespace pelorin
