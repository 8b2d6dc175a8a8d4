#include "host/core/links/fields.h"

#include "host/core/text/joined.h"
#include "host/core/text/numbers.h"

#include <algorithm>
#include <cmath>

namespace velko
{

FileError errorAt(const std::string &path, const toml::source_region &place,
                  const std::string &reason)
{
    return FileError(path + ":" + std::to_string(place.begin.line) + ":"
                     + std::to_string(place.begin.column) + ": " + reason);
}

Fields::Fields(const std::string &path, const toml::table &table, const std::string &title,
               const std::vector<std::string> &known)
    : m_path(path),
      m_table(table),
      m_title(title)
{
    for (const auto &[key, value] : table)
        if (std::find(known.begin(), known.end(), key.str()) == known.end())
            throw errorAt(path, key.source(),
                          "unknown key \"" + std::string(key.str()) + "\"; " + title
                              + " accepts: " + joined(known));
}

std::optional<std::string> Fields::text(const std::string &key) const
{
    const toml::node *const node = m_table.get(key);
    if (!node)
        return std::nullopt;
    if (!node->is_string())
        fail(key, "it must be a text in quotes");
    return node->value<std::string>();
}

std::string Fields::requiredText(const std::string &key) const
{
    const std::optional<std::string> value = text(key);
    if (!value || value->empty())
        fail(key, value ? "it is empty" : "it is missing");
    return *value;
}

std::string Fields::requiredAddress(const std::string &key) const
{
    const toml::node *const node = m_table.get(key);
    if (node && node->is_integer())
        return std::to_string(node->value_or<int64_t>(0));
    // As numbers, 3.10 and 3.1 are equal.
    if (node && node->is_floating_point())
        fail(key, "write the address of a bit in quotes");
    return requiredText(key);
}

std::vector<std::string> Fields::requiredTexts(const std::string &key) const
{
    const toml::node *const node = m_table.get(key);
    if (!node || !node->is_array())
        return {requiredText(key)};
    std::vector<std::string> texts;
    for (const toml::node &element : *node->as_array()) {
        const std::optional<std::string> value = element.value_exact<std::string>();
        if (!value || value->empty())
            throw errorAt(m_path, element.source(), "\"" + key + "\": it must be a text in quotes");
        texts.push_back(*value);
    }
    if (texts.empty())
        fail(key, "it is empty");
    return texts;
}

size_t Fields::choice(const std::string &key, const std::vector<std::string> &choices,
                      size_t otherwise) const
{
    const std::optional<std::string> value = text(key);
    if (!value)
        return otherwise;
    const auto place = std::find(choices.begin(), choices.end(), *value);
    if (place == choices.end())
        fail(key, "\"" + *value + "\" is not one of: " + joined(choices));
    return static_cast<size_t>(place - choices.begin());
}

int Fields::requiredNumber(const std::string &key, int lowest, int highest) const
{
    const std::optional<int> value = number(key, lowest, highest);
    if (!value)
        fail(key, "it is missing");
    return *value;
}

int Fields::number(const std::string &key, int lowest, int highest, int otherwise) const
{
    return number(key, lowest, highest).value_or(otherwise);
}

std::optional<int> Fields::number(const std::string &key, int lowest, int highest) const
{
    const toml::node *const node = m_table.get(key);
    if (!node)
        return std::nullopt;
    const std::optional<int64_t> value = node->value_exact<int64_t>();
    if (!value || *value < lowest || *value > highest)
        fail(key, "it must be a whole number from " + rangeText(lowest, highest));
    return static_cast<int>(*value);
}

int Fields::microseconds(const std::string &key, int highestMilliseconds) const
{
    const toml::node *const node = m_table.get(key);
    if (!node)
        return 0;
    const double value = node->is_number() ? node->value_or(-1.0) : -1.0;
    if (!(value >= 0 && value <= highestMilliseconds))
        fail(key, "it must be a number of milliseconds from " + rangeText(0, highestMilliseconds));
    return static_cast<int>(std::ceil(value * 1000));
}

bool Fields::flag(const std::string &key, bool otherwise) const
{
    const toml::node *const node = m_table.get(key);
    if (node && !node->is_boolean())
        fail(key, "it must be true or false");
    return node ? node->value_or(otherwise) : otherwise;
}

const toml::array &Fields::requiredTables(const std::string &key) const
{
    const toml::node *const node = m_table.get(key);
    if (!node)
        fail(key, "there is no [[" + key + "]]");
    if (!node->is_array_of_tables())
        fail(key, "it must be a list of tables, [[" + key + "]]");
    return *node->as_array();
}

void Fields::fail(const std::string &key, const std::string &reason) const
{
    const toml::node *const node = m_table.get(key);
    throw errorAt(m_path, node ? node->source() : m_table.source(),
                  m_title + ", \"" + key + "\": " + reason);
}

void Fields::failAt(const std::string &key, size_t index, const std::string &reason) const
{
    throw errorAt(m_path, requiredTables(key).at(index).source(), reason);
}

} // namespace velko
