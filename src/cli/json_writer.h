// JSON on its way out, piece by piece: keys in snake_case, sizes in bytes, two blanks an indent.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pelorin::cli {

/// Calls are made in the order of the document; inside an object every value has its key in front.
class JsonWriter {
public:
    void BeginObject() { Open('{'); }
    void EndObject() { Close('}'); }
    void BeginArray() { Open('['); }
    void EndArray() { Close(']'); }
    void Key(std::string_view key);

    /// Bytes that are not UTF-8 are taken as Windows-1252.
    void String(std::string_view text);
    void Int(std::int64_t value);
    /// Shortest text that gives the same value; what is not finite becomes null.
    void Real(double value);
    void Bool(bool value);
    void Null();

    void Field(std::string_view key, std::string_view text) { Key(key), String(text); }
    void Field(std::string_view key, const char* text) { Key(key), String(text); }
    void Field(std::string_view key, std::int64_t value) { Key(key), Int(value); }
    void Field(std::string_view key, int value) { Key(key), Int(value); }
    void Field(std::string_view key, double value) { Key(key), Real(value); }
    void Field(std::string_view key, bool value) { Key(key), Bool(value); }

    /// The text so far, which leaves; the document goes on behind it. The line end is added when the outermost value
    /// is closed.
    [[nodiscard]] std::string Take() { return std::move(m_out); }

private:
    void Open(char bracket);
    void Close(char bracket);
    void Separate();
    void Indent();
    void Quote(std::string_view text);

    std::string m_out;
    std::vector<bool> m_hasValues; ///< one for each open bracket
    bool m_afterKey = false;
};

} // namespace pelorin::cli
