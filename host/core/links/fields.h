// The keys of one table of a TOML file, each checked as it is taken.
#pragma once

#include "host/core/links/file_error.h"

#include <toml++/toml.h>

#include <optional>
#include <string>
#include <vector>

namespace velko
{

class Fields
{
public:
    /// Throws FileError for a key that is none of `known`. The table outlives this.
    Fields(const std::string &path, const toml::table &table, const std::string &title,
           const std::vector<std::string> &known);

    // All throw FileError for a value of another type, or out of its range.

    std::optional<std::string> text(const std::string &key) const;
    std::string requiredText(const std::string &key) const;
    /// A text, or a whole number as the text that it is.
    std::string requiredAddress(const std::string &key) const;
    /// One text or several.
    std::vector<std::string> requiredTexts(const std::string &key) const;
    /// The index of the text among `choices`.
    size_t choice(const std::string &key, const std::vector<std::string> &choices,
                  size_t otherwise) const;
    int number(const std::string &key, int lowest, int highest, int otherwise) const;
    std::optional<int> number(const std::string &key, int lowest, int highest) const;
    /// Milliseconds with a fraction, as microseconds.
    int microseconds(const std::string &key, int highestMilliseconds) const;
    bool flag(const std::string &key, bool otherwise) const;
    const toml::array &requiredTables(const std::string &key) const;

    /// At a key, or at the table where the key is not there.
    [[noreturn]] void fail(const std::string &key, const std::string &reason) const;
    /// At an element of a list of tables.
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
