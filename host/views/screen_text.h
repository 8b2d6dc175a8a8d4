// UTF-8 texts in the columns of a terminal. A wide character takes two columns, a combining
// character none.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace velko
{

/// Returns the number of columns of the text.
size_t widthOf(const std::string &text);

/// Returns the text if it has at most `width` columns, otherwise its beginning and "…".
std::string leftOf(const std::string &text, size_t width);

/// As leftOf, with the end of the text.
std::string rightOf(const std::string &text, size_t width);

/// As leftOf, with the beginning and the end of the text: names often differ at their ends.
std::string shortened(const std::string &text, size_t width);

/// Returns the text with spaces after it up to `width` columns.
std::string padded(const std::string &text, size_t width);

/// Splits the text into pieces of at most `width` columns, after a space where that is possible.
/// Returns at least one piece.
std::vector<std::string> wrapped(const std::string &text, size_t width);

/// Returns the text without its last character and what combines with it.
std::string withoutLast(const std::string &text);

/// Returns the text with "?" for each control character, which could change the terminal.
std::string printable(const std::string &text);

} // namespace velko
