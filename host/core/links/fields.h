// The keys of one table of a TOML file, read and checked.
#pragma once

#include "host/core/links/file_error.h"

#include <toml++/toml.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace velko
{

/// Used by one thread.
class Fields
{
public:
    /// `path` and `table` are the caller's and outlive this object. `title` names the table in
    /// messages. Throws FileError for a key that is not in `known`.
    Fields(const std::string &path, const toml::table &table, const std::string &title,
           const std::vector<std::string> &known);

    // Each function throws FileError if the value has a wrong type, is out of range, or is required
    // and missing. A key that is not required: returns no value or `otherwise` if it is missing.

    std::optional<std::string> text(const std::string &key) const;
    std::string requiredText(const std::string &key) const;
    /// Reads a text, or a whole number as text.
    std::string requiredAddress(const std::string &key) const;
    /// Reads one text, or a list of texts.
    std::vector<std::string> requiredTexts(const std::string &key) const;
    /// Returns the index of the text in `choices`.
    size_t choice(const std::string &key, const std::vector<std::string> &choices,
                  size_t otherwise) const;
    bool has(const std::string &key) const { return m_table.contains(key); }
    int requiredNumber(const std::string &key, int lowest, int highest) const;
    int number(const std::string &key, int lowest, int highest, int otherwise) const;
    std::optional<int> number(const std::string &key, int lowest, int highest) const;
    /// Reads milliseconds, with or without a fraction. Returns microseconds; 0 if the key is
    /// missing.
    int microseconds(const std::string &key, int highestMilliseconds) const;
    bool flag(const std::string &key, bool otherwise) const;
    /// Returns a list of tables, owned by the table.
    const toml::array &requiredTables(const std::string &key) const;

    /// Throws FileError at a key, or at the table if the key is missing.
    [[noreturn]] void fail(const std::string &key, const std::string &reason) const;
    /// Throws FileError at an element of a list of tables.
    [[noreturn]] void failAt(const std::string &key, size_t index, const std::string &reason) const;

private:
    const std::string &m_path;
    const toml::table &m_table;
    std::string m_title;
};

/// Returns an error with the message "PATH:LINE:COLUMN: reason".
FileError errorAt(const std::string &path, const toml::source_region &place,
                  const std::string &reason);

} // namespace velko
