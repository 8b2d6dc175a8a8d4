// Reads and checks the keys of one table of a TOML file.
#pragma once

#include "host/core/links/file_error.h"

#include <toml++/toml.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace velko
{

class Fields
{
public:
    /// `path` and `table` outlive this object. Throws FileError for a key that is not in `known`.
    Fields(const std::string &path, const toml::table &table, const std::string &title,
           const std::vector<std::string> &known);

    // All of them throw FileError for a value of a wrong type or out of range.

    std::optional<std::string> text(const std::string &key) const;
    std::string requiredText(const std::string &key) const;
    /// Reads a text, or a whole number as text.
    std::string requiredAddress(const std::string &key) const;
    /// Reads one text, or a list of texts.
    std::vector<std::string> requiredTexts(const std::string &key) const;
    /// Returns the index of the text in `choices`.
    size_t choice(const std::string &key, const std::vector<std::string> &choices,
                  size_t otherwise) const;
    int number(const std::string &key, int lowest, int highest, int otherwise) const;
    std::optional<int> number(const std::string &key, int lowest, int highest) const;
    /// Reads milliseconds, with or without a fraction, and returns microseconds.
    int microseconds(const std::string &key, int highestMilliseconds) const;
    bool flag(const std::string &key, bool otherwise) const;
    const toml::array &requiredTables(const std::string &key) const;

    /// Reports an error at a key, or at the table if the key is missing.
    [[noreturn]] void fail(const std::string &key, const std::string &reason) const;
    /// Reports an error at an element of a list of tables.
    [[noreturn]] void failAt(const std::string &key, size_t index, const std::string &reason) const;

private:
    const std::string &m_path;
    const toml::table &m_table;
    std::string m_title;
};

/// "PATH:LINE:COLUMN: reason"
FileError errorAt(const std::string &path, const toml::source_region &place,
                  const std::string &reason);

} // namespace velko
