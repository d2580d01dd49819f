#include "cli/json_writer.h"

#include "base/text.h"

#include <fmt/format.h>

#include <cmath>

namespace pelorin::cli {

void JsonWriter::Indent() {
    m_out += '\n';
    m_out.append(m_hasValues.size() * 2, ' ');
}

void JsonWriter::Separate() {
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_hasValues.empty()) return;
    if (m_hasValues.back()) m_out += ',';
    m_hasValues.back() = true;
    Indent();
}

void JsonWriter::Open(char bracket) {
    Separate();
    m_out += bracket;
    m_hasValues.push_back(false);
}

void JsonWriter::Close(char bracket) {
    const bool hadValues = m_hasValues.back();
    m_hasValues.pop_back();
    if (hadValues) Indent();
    m_out += bracket;
    if (m_hasValues.empty()) m_out += '\n';
}

void JsonWriter::Key(std::string_view key) {
    Separate();
    Quote(key);
    m_out += ": ";
    m_afterKey = true;
}

void JsonWriter::Quote(std::string_view text) {
    m_out += '"';
    for (const char c : DecodeText(text)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            m_out += '\\';
            m_out += c;
        } else if (c == '\n') {
            m_out += "\\n";
        } else if (c == '\t') {
            m_out += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            m_out += fmt::format("\\u{:04x}", byte);
        } else {
            m_out += c;
        }
    }
    m_out += '"';
}

void JsonWriter::String(std::string_view text) {
    Separate();
    Quote(text);
}

void JsonWriter::Int(std::int64_t value) {
    Separate();
    m_out += fmt::format("{}", value);
}

void JsonWriter::Real(double value) {
    Separate();
    m_out += std::isfinite(value) ? fmt::format("{}", value) : "null";
}

void JsonWriter::Bool(bool value) {
    Separate();
    m_out += value ? "true" : "false";
}

void JsonWriter::Null() {
    Separate();
    m_out += "null";
}

} // namespace pelorin::cli
