#include "host/core/links/link_file.h"

#include "host/core/links/fields.h"
#include "host/core/links/file_error.h"
#include "host/core/sizes/limits.h"
#include "host/core/sizes/units.h"
#include "host/core/text/numbers.h"
#include "host/core/variables/kinds.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <map>
#include <set>

namespace velko
{

namespace
{

const std::vector<std::string> linkKeys = {
    "name",        "device",          "baud",       "parity",     "stopBits", "timeout",
    "byteTimeout", "guard",           "silence",    "rs485",      "echo",     "maxRegs",
    "retries",     "ownFailuresOnly", "offerAgain", "staleAfter", "station",  "variable"};

const std::vector<std::string> stationKeys = {"number", "timeout", "retries", "maxRegs"};

const std::vector<std::string> variableKeys = {"name",   "station", "kind",  "address",
                                               "format", "count",   "access"};

// A name ends at "=" in a write and at a space in the output.
std::string readName(const Fields &fields, const char *what, std::set<std::string> &known)
{
    std::string name = fields.requiredText("name");
    for (const char character : name) {
        const int code = static_cast<unsigned char>(character);
        if (code <= ' ' || code == '=' || code == 127)
            fields.fail("name",
                        "\"" + name + "\" contains a space, a \"=\" or a control character");
    }
    if (!known.insert(name).second)
        fields.fail("name", std::string("there is already a ") + what + " \"" + name + "\"");
    return name;
}

LineSettings readLine(const Fields &fields)
{
    LineSettings line;
    line.devices = fields.requiredTexts("device");
    line.baudRate = fields.number("baud", LOWEST_BAUD, HIGHEST_BAUD, line.baudRate);
    line.parity = "NEO"[fields.choice("parity", {"none", "even", "odd"}, 1)];
    line.stopBits = fields.number("stopBits", 1, HIGHEST_STOP_BITS, line.stopBits);
    line.responseTimeout = fields.number("timeout", 1, LONGEST_TIME, line.responseTimeout);
    line.interCharacterTimeout =
        fields.number("byteTimeout", 1, LONGEST_TIME, line.interCharacterTimeout);
    line.guardTime = fields.number("guard", 0, LONGEST_TIME);
    line.minFrameGap = fields.microseconds("silence", LONGEST_SILENCE);
    line.rs485 =
        static_cast<Rs485>(fields.choice("rs485", {"off", "rts-on-send", "rts-after-send"}, 0));
    line.echo = fields.flag("echo", false);
    return line;
}

class Reader
{
public:
    explicit Reader(const std::string &path) : m_path(path) {}

    std::vector<Link> read()
    {
        const toml::table file = parse();
        const Fields fields(m_path, file, "the file", {"link"});
        std::vector<Link> links;
        for (const toml::node &node : fields.requiredTables("link"))
            links.push_back(readLink(*node.as_table()));
        return links;
    }

private:
    toml::table parse() const
    {
        QFile file(QString::fromStdString(m_path));
        if (QFileInfo(file).isDir() || !file.open(QIODevice::ReadOnly))
            throw FileError(m_path + ": cannot be read: "
                            + (QFileInfo(file).isDir() ? "it is a directory"
                                                       : file.errorString().toStdString()));
        try {
            return toml::parse(file.readAll().toStdString(), m_path);
        } catch (const toml::parse_error &error) {
            throw errorAt(m_path, error.source(), std::string(error.description()));
        }
    }

    Link readLink(const toml::table &table)
    {
        const Fields fields(m_path, table, "a link", linkKeys);
        Link link;
        link.name = readName(fields, "link", m_linkNames);
        link.line = readLine(fields);
        for (const std::string &device : link.line.devices)
            if (!m_devices.insert(device).second)
                fields.fail("device",
                            "\"" + device + "\" belongs to a link already; one port is one link");
        link.retries = fields.number("retries", 0, HIGHEST_RETRIES, link.retries);
        link.ownFailuresOnly = fields.flag("ownFailuresOnly", link.ownFailuresOnly);
        link.queueAgain = fields.number("offerAgain", 0, HIGHEST_QUEUE_AGAIN, link.queueAgain);
        link.staleAfter = fields.number("staleAfter", 1, LONGEST_STALE_AFTER, link.staleAfter);
        link.maxRegs =
            fields.number("maxRegs", LOWEST_MAX_REGS, HIGHEST_MAX_REGS_READING, link.maxRegs);
        for (const toml::node &node : fields.requiredTables("variable"))
            link.variables.push_back(readVariable(*node.as_table()));
        checkMaxRegs(fields, link, link.maxRegs);
        readStations(fields, link);
        checkTargets(fields, link);
        return link;
    }

    void readStations(const Fields &fields, Link &link) const
    {
        if (!fields.has("station"))
            return;
        const std::vector<int> numbers = link.stations();
        for (const toml::node &node : fields.requiredTables("station")) {
            const Fields station(m_path, *node.as_table(), "a station", stationKeys);
            const int number = station.requiredNumber("number", LOWEST_STATION, HIGHEST_STATION);
            if (!std::binary_search(numbers.begin(), numbers.end(), number))
                station.fail("number", "no variable belongs to station " + std::to_string(number));
            StationSettings settings;
            settings.responseTimeout = station.number("timeout", 1, LONGEST_TIME);
            settings.retries = station.number("retries", 0, HIGHEST_RETRIES);
            settings.maxRegs = station.number("maxRegs", LOWEST_MAX_REGS, HIGHEST_MAX_REGS_READING);
            checkMaxRegs(station, link, settings.maxRegs.value_or(link.maxRegs));
            if (!link.stationSettings.insert({number, settings}).second)
                station.fail("number", "there are settings of station " + std::to_string(number)
                                           + " already");
        }
    }

    Variable readVariable(const toml::table &table)
    {
        const Fields fields(m_path, table, "a variable", variableKeys);
        Variable variable;
        variable.name = readName(fields, "variable", m_variableNames);
        variable.station =
            fields.number("station", LOWEST_STATION, HIGHEST_STATION, variable.station);
        variable.address = fields.requiredAddress("address");
        variable.count = fields.number("count", 1, HIGHEST_COUNT, variable.count);
        const size_t access = fields.choice("access", {"read", "write", "read-write"}, 0);
        variable.access = static_cast<Access>(access);
        located(fields, "kind", [&] { variable.kind = parseKind(fields.requiredText("kind")); });
        located(fields, "format", [&] {
            const std::optional<std::string> format = fields.text("format");
            variable.format = format ? parseFormat(*format) : defaultFormat(variable.kind);
        });
        if (variable.isWritten() && !isWritable(variable.kind))
            fields.fail("access", "kind \"" + kindName(variable.kind) + "\" cannot be written");
        located(fields, "address", [&] { checkVariable(variable); });
        return variable;
    }

    template <typename Step>
    static void located(const Fields &fields, const std::string &key, const Step &step)
    {
        try {
            step();
        } catch (const std::invalid_argument &error) {
            fields.fail(key, error.what());
        }
    }

    static void checkMaxRegs(const Fields &fields, const Link &link, int maxRegs)
    {
        if (!link.isWritten())
            return;
        if (maxRegs > HIGHEST_MAX_REGS_WRITING || !isWholeDoubleWords(maxRegs))
            fields.fail("maxRegs",
                        "on a link with writable variables it must be an even number from "
                            + rangeText(LOWEST_MAX_REGS, HIGHEST_MAX_REGS_WRITING));
    }

    // The driver keeps only the newer one of two queued writes to a target. The result of the other
    // one would never be reported.
    static void checkTargets(const Fields &fields, const Link &link)
    {
        std::map<WriteTarget, std::string> names;
        for (size_t i = 0; i < link.variables.size(); ++i) {
            const Variable &variable = link.variables[i];
            if (!variable.isWritten())
                continue;
            for (const WriteTarget &target :
                 targetsOf(variable, link.maxRegsOf(variable.station))) {
                const auto place = names.insert({target, variable.name}).first;
                if (place->second != variable.name)
                    fields.failAt("variable", i,
                                  "\"" + variable.name + "\" writes the same bits as \""
                                      + place->second + "\": register address "
                                      + std::to_string(target.firstBit / REGISTER_BITS)
                                      + " of station " + std::to_string(target.station)
                                      + ". Give one of the two access = \"read\".");
            }
        }
    }

    std::string m_path;
    std::set<std::string> m_linkNames;
    std::set<std::string> m_devices;
    std::set<std::string> m_variableNames;
};

} // namespace

std::vector<Link> readLinkFile(const std::string &path)
{
    return Reader(path).read();
}

} // namespace velko
