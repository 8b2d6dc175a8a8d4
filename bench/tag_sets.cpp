#include "bench/tag_sets.h"

#include "host/core/variables/kinds.h"

#include <array>
#include <random>

using namespace velko;

namespace
{

const int AREAS = 3;

struct Range {
    int lowest;
    int highest;
};

struct Share {
    int percent; // the shares of a list add up to 100
    Range range;
};

// The distributions of the standard library differ between implementations, so this class has its
// own.
class Dice
{
public:
    explicit Dice(unsigned seed) : m_random(seed) {}

    int from(const Range &range)
    {
        const int sides = range.highest - range.lowest + 1;
        return range.lowest + static_cast<int>(m_random() % static_cast<unsigned>(sides));
    }

    bool hits(int percent) { return from({1, 100}) <= percent; }

    int from(const std::vector<Share> &shares)
    {
        int percent = from({1, 100});
        for (const Share &share : shares) {
            percent -= share.percent;
            if (percent <= 0)
                return from(share.range);
        }
        return from(shares.back().range);
    }

private:
    std::mt19937 m_random;
};

// Places variables one after the other and drops those beyond the requested number.
class Layout
{
public:
    explicit Layout(int variables) : m_missing(variables) {}

    bool isFull() const { return m_missing == 0; }
    int next() const { return m_next.at(m_area); }
    void moveTo(int area) { m_area = static_cast<size_t>(area); }
    void skip(int registers) { m_next.at(m_area) += registers; }
    void alignTo(int registers) { skip((registers - next() % registers) % registers); }

    void addBits(int bits)
    {
        for (int bit = 0; bit < bits; ++bit)
            add(WIDTH_BIT, std::to_string(2 * next() + bit / 8) + "." + std::to_string(bit % 8));
        skip(1);
    }

    void addBytes(int bytes)
    {
        for (int byte = 0; byte < bytes; ++byte)
            add(WIDTH_BYTE, std::to_string(2 * next() + byte));
        skip((bytes + 1) / 2);
    }

    void addWord()
    {
        add(WIDTH_WORD, std::to_string(next()));
        skip(1);
    }

    void addDoubleWord()
    {
        alignTo(2);
        add(WIDTH_DWORD, std::to_string(next() / 2));
        skip(2);
    }

    void addText(int registers)
    {
        add(WIDTH_WORD, std::to_string(next()), "text", 2 * registers);
        skip(registers);
    }

    std::vector<Variable> take() { return std::move(m_variables); }

private:
    void add(Width width, const std::string &address, const std::string &format = "", int count = 1)
    {
        if (isFull())
            return;
        --m_missing;
        Variable variable;
        variable.name = "tag " + std::to_string(m_variables.size() + 1);
        variable.kind = AREAS * width + static_cast<int>(m_area);
        variable.address = address;
        variable.format = format.empty() ? defaultFormat(variable.kind) : parseFormat(format);
        variable.count = count;
        checkVariable(variable);
        m_variables.push_back(variable);
    }

    std::vector<Variable> m_variables;
    int m_missing;
    size_t m_area = 0; // 0: input, 1: holding, 2: holding 5000
    std::array<int, AREAS> m_next{};
};

// Most data is in the holding registers.
int usualArea(Dice &dice)
{
    return dice.from({{20, {0, 0}}, {60, {1, 1}}, {20, {2, 2}}});
}

void addDoubleWords(Layout &layout, int count)
{
    for (; count > 0; --count)
        layout.addDoubleWord();
}

void addBlock(Layout &layout, Dice &dice)
{
    layout.moveTo(usualArea(dice));
    layout.alignTo(100);
    layout.skip(100 * dice.from({0, 2}));
    const int end = layout.next() + dice.from({40, 400});
    while (layout.next() < end) {
        if (dice.hits(3))
            layout.skip(1);
        else if (dice.hits(4))
            addDoubleWords(layout, dice.from({2, 8}));
        else
            layout.addWord();
    }
}

void addScatteredTag(Layout &layout, Dice &dice)
{
    if (dice.hits(10))
        layout.addBits(1);
    else if (dice.hits(20))
        layout.addDoubleWord();
    else
        layout.addWord();
}

void addScatteredGroup(Layout &layout, Dice &dice)
{
    const std::vector<Share> between = {{45, {10, 40}}, {40, {41, 120}}, {15, {121, 400}}};
    const std::vector<Share> within = {{50, {0, 0}}, {25, {1, 2}}, {15, {3, 10}}, {10, {11, 40}}};
    layout.moveTo(dice.from({0, AREAS - 1}));
    layout.skip(dice.from(between));
    for (int tags = dice.from({5, 15}); tags > 0; --tags) {
        addScatteredTag(layout, dice);
        layout.skip(dice.from(within));
    }
}

// Commands and states, modes, values with reserve registers, counters, and sometimes a name.
void addUnit(Layout &layout, Dice &dice)
{
    layout.moveTo(usualArea(dice));
    layout.alignTo(50);
    for (int registers = dice.from({1, 3}); registers > 0; --registers)
        layout.addBits(dice.from({4, 16}));
    layout.addBytes(dice.from({0, 4}));
    layout.alignTo(10);
    for (int words = dice.from({3, 12}); words > 0; --words) {
        layout.addWord();
        layout.skip(dice.hits(15) ? 1 : 0);
    }
    layout.alignTo(10);
    addDoubleWords(layout, dice.from({1, 6}));
    if (dice.hits(25))
        layout.addText(dice.from({5, 16}));
}

// Screens name variables in an order of their own.
void shuffle(std::vector<Variable> &variables, Dice &dice)
{
    for (int last = static_cast<int>(variables.size()) - 1; last > 0; --last)
        std::swap(variables[static_cast<size_t>(last)],
                  variables[static_cast<size_t>(dice.from({0, last}))]);
}

} // namespace

std::string nameOf(TagSet set)
{
    static const char *const names[] = {"dense", "scattered", "mixed"};
    return names[static_cast<int>(set)];
}

std::vector<Variable> makeTags(TagSet set, int variables, unsigned seed)
{
    void (*const adders[])(Layout &, Dice &) = {addBlock, addScatteredGroup, addUnit};
    Dice dice(seed);
    Layout layout(variables);
    while (!layout.isFull())
        adders[static_cast<int>(set)](layout, dice);
    std::vector<Variable> tags = layout.take();
    shuffle(tags, dice);
    return tags;
}

QList<VAR_ITEM> makeTagSet(TagSet set, int variables, unsigned seed)
{
    return itemsOf(makeTags(set, variables, seed));
}
