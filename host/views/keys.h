// Keys of a terminal, from the bytes that it sends.
#pragma once

#include <string>
#include <vector>

namespace velko
{

struct Key {
    enum Kind {
        CHARACTER,
        ENTER,
        BACKSPACE,
        CLEAR_LINE,   ///< Ctrl-U
        END_OF_INPUT, ///< Ctrl-D
        REDRAW,       ///< Ctrl-L
        ESCAPE,
        UP,
        DOWN,
        PAGE_UP,
        PAGE_DOWN,
        HOME,
        END
    };
    Kind kind;
    std::string text; ///< of a CHARACTER, in UTF-8
};

/// Other keys are dropped.
class KeyReader
{
public:
    /// Returns the keys of the bytes. The beginning of a key is kept until its other bytes follow.
    std::vector<Key> read(const std::string &bytes);

    /// Called if no byte has followed for some time: the byte of the Escape key is also the first
    /// one of the arrow keys.
    std::vector<Key> settle();

private:
    std::string m_bytes; // the beginning of a key
};

} // namespace velko
