// The small doors in memory: they remember what was asked of them.
#pragma once

#include "platform/fault.h"
#include "platform/launcher.h"
#include "platform/locale_info.h"
#include "platform/single_instance.h"
#include "platform/standard_folders.h"

#include <utility>

namespace pelorin {

/// All folders below one root, which a test makes.
class MemoryStandardFolders final : public StandardFolders {
public:
    explicit MemoryStandardFolders(std::string root) : m_root(std::move(root)) {}
    [[nodiscard]] std::string Program() const override { return m_root + "program/"; }
    [[nodiscard]] std::string Config() const override { return m_root + "config/"; }
    [[nodiscard]] std::string Data() const override { return m_root + "data/"; }
    [[nodiscard]] std::string LocalData() const override { return m_hasLocalData ? m_root + "local/" : ""; }
    [[nodiscard]] std::string Temp() const override { return m_root + "temp/"; }
    [[nodiscard]] std::string Documents() const override { return m_root + "documents/"; }

    std::string m_root;
    bool m_hasLocalData = true;
};

class MemoryLauncher final : public Launcher {
public:
    [[nodiscard]] bool Open(const std::string& target) override { return Note("open " + target); }
    [[nodiscard]] bool Run(const std::string& command, const std::string& file) override {
        return Note("run " + command + " with " + file);
    }

    std::vector<std::string> m_calls;
    Fault m_fault;

private:
    bool Note(std::string call) {
        m_calls.push_back(std::move(call));
        return !m_fault.Strikes();
    }
};

class MemoryLocale final : public LocaleInfo {
public:
    [[nodiscard]] std::uint16_t PrimaryLanguage() const override { return m_primary; }
    std::uint16_t m_primary = 0x09;
};

/// Several of these on one hall are the starts of one person.
class MemorySingleInstance final : public SingleInstance {
public:
    struct Hall {
        const MemorySingleInstance* first = nullptr;
        std::vector<CommandLine> waiting;
    };
    explicit MemorySingleInstance(Hall& hall) : m_hall(hall) {}

    [[nodiscard]] bool Claim() override {
        if (m_hall.first == nullptr) m_hall.first = this;
        return m_hall.first == this;
    }
    bool HandOver(const CommandLine& arguments) override {
        if (m_fault.Strikes()) return false;
        m_hall.waiting.push_back(arguments);
        return true;
    }
    [[nodiscard]] std::vector<CommandLine> Receive() override { return std::exchange(m_hall.waiting, {}); }

    Fault m_fault;

private:
    Hall& m_hall;
};

} // namespace pelorin
