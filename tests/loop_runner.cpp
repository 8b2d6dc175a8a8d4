// Runs tests/cases/communication.loop. tests/cases/README.md describes their language.
#include "host/core/links/link_file.h"
#include "host/core/session/snapshot.h"
#include "host/core/text/hex.h"
#include "host/views/json_view.h"
#include "host/views/lines_view.h"
#include "host/views/plan_report.h"
#include "tests/loop_under_test.h"
#include "tests/script.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace velko;

namespace
{

QString text(const std::string &seen)
{
    return QString::fromStdString(seen).trimmed().replace("\n", ", ");
}

class LoopRunner : public ScriptRunner, LoopUnderTest
{
    const std::map<QString, Action> &actions() const override { return m_actions; }
    const std::map<QString, int *> &numbers() const override { return m_numbers; }

    QString addVariable(Words &words)
    {
        const std::string name = words.text().toStdString();
        const std::string place = words.text().toStdString();
        int station = 1;
        setFields(words.fields(), {{"station", &station}});
        const std::map<QString, Access> accesses = {
            {"", Access::READ}, {"write", Access::WRITE}, {"read-write", Access::READ_WRITE}};
        const QString access = words.text();
        add(name.c_str(), place.c_str(), station, accesses.at(access.contains('=') ? "" : access));
        return QString();
    }

    /// The settings of the link are those of a file with these keys; "2.timeout" is one of station 2.
    QString setKeys(const QStringList &fields)
    {
        for (const QString &field : fields) {
            const QString key = field.section('=', 0, 0);
            const QString table = key.contains('.') ? key.section('.', 0, 0) : QString();
            m_keys[table][key.section('.', -1)] = field.section('=', 1);
        }
        Link read = linkOf(fileText());
        read.variables = link.variables;
        link = read;
        return QString();
    }

    QString fileText() const
    {
        QString text;
        for (const auto &table : m_keys) {
            if (!table.first.isEmpty())
                text += "[[link.station]]\nnumber = " + table.first + "\n";
            for (const auto &key : table.second)
                text += key.first + " = " + key.second + "\n";
        }
        for (const char *const station : {"1", "2", "3"})
            text += QString("[[link.variable]]\nname = \"%1\"\nstation = %1\n"
                            "kind = \"input word\"\naddress = 0\n")
                        .arg(station);
        return text;
    }

    static Link linkOf(const QString &text)
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath("f"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[[link]]\n" + text.toUtf8());
        file.close();
        return readLinkFile(file.fileName().toStdString()).front();
    }

    QString opening() const
    {
        const std::vector<LineSettings> openings = plc.openings();
        const LineSettings &last = openings.back();
        return QString("%1: %2 %3%4 rs485=%5")
            .arg(openings.size())
            .arg(last.baudRate)
            .arg(last.parity)
            .arg(last.stopBits)
            .arg(static_cast<int>(last.rs485));
    }

    /// The time since the last call, in milliseconds.
    QString took()
    {
        const Clock::time_point before = m_took;
        m_took = Clock::now();
        return QString::number(std::chrono::duration<double, std::milli>(m_took - before).count(),
                               'f', 1);
    }

    QString makeView(Words &words)
    {
        const QString kind = words.text();
        if (kind == "json")
            m_view = std::make_unique<JsonView>(milliseconds(words.number()));
        else
            m_view = std::make_unique<LinesView>();
        return QString();
    }

    /// What the view prints, without spaces that only align, and without the time of day.
    QString printed(const std::function<void(PollView &)> &step)
    {
        testing::internal::CaptureStdout();
        step(*m_view);
        return withoutTime(testing::internal::GetCapturedStdout());
    }

    static QString withoutTime(const std::string &printed)
    {
        static const QRegularExpression time(
            "(,?\"time\":\"[^\"]*\"|\\d\\d:\\d\\d:\\d\\d\\.\\d{3} +)");
        QStringList lines = QString::fromStdString(printed).remove(time).split('\n');
        for (QString &line : lines)
            line = line.simplified();
        lines.removeAll(QString());
        return lines.isEmpty() ? "nothing" : lines.join(" / ");
    }

    /// A line of the plan's report that contains the text.
    QString planLine(const QString &part) const
    {
        for (const std::string &line : planReport(link, RequestPlanner(DRIVER_LIBRARY).plan(link)))
            if (line.find(part.toStdString()) != std::string::npos)
                return QString::fromStdString(line).simplified();
        return "none";
    }

    void receive(const Event &event) override
    {
        LoopUnderTest::receive(event);
        m_latest = event;
        if (kindOf(event.state) == Event::WRITE)
            m_reason = QString::fromStdString(event.detail);
    }

    /// The beginnings of the requests since the last count.
    QString newFrames()
    {
        QStringList frames;
        const std::vector<SeenRequest> seen = plc.requests();
        for (; m_seen < seen.size(); ++m_seen)
            frames += text(hexText(seen[m_seen].frame.left(6)));
        return frames.join(", ");
    }

    QString remove(const std::string &name)
    {
        link.variables.erase(link.variables.begin() + (&named(name) - link.variables.data()));
        return QString();
    }

    QString plan() const
    {
        QStringList frames;
        for (const PlannedRequest &request : RequestPlanner(DRIVER_LIBRARY).plan(link))
            frames += text(hexText(request.frame.left(6)));
        return frames.join(", ");
    }

    QString stored(const std::string &place) const
    {
        const Variable variable = parseVariable(place, 1, Access::READ);
        return text(textOf(variable, loop->value(variable)));
    }

    /// "1024*0" stands for 1024 zeros.
    QString writeValue(Words &words)
    {
        const std::string name = words.text().toStdString();
        QString value = words.rest();
        if (value.contains('*')) {
            const QString abbreviation = value;
            const int times = value.section('*', 0, 0).toInt();
            value = (value.section('*', 1) + " ").repeated(times).trimmed();
            m_abbreviations[value] = abbreviation;
        }
        return write(name.c_str(), value.toStdString()) ? "queued" : "refused";
    }

    QString events(Event::Kind kind)
    {
        QString shown = text(taken(kind));
        for (const auto &abbreviation : m_abbreviations)
            shown.replace(abbreviation.first, abbreviation.second);
        return shown.isEmpty() ? "none" : shown;
    }

    QString countersOf(int station) const
    {
        const StationCounters seen = counters(station);
        QString counted =
            QString("sent=%1 good=%2 noReply=%3 badCrc=%4 length=%5 retries=%6 givenUp=%7")
                .arg(seen.sent)
                .arg(seen.good)
                .arg(seen.noReply)
                .arg(seen.badCrc)
                .arg(seen.wrongLength)
                .arg(seen.retries)
                .arg(seen.givenUp);
        for (const auto &exception : seen.exceptions)
            counted += QString(" exception%1=%2").arg(exception.first).arg(exception.second);
        return counted;
    }

    /// How many requests begin with these bytes, from the first one on.
    QString requests(const QByteArray &beginning, size_t first = 0)
    {
        const std::vector<SeenRequest> seen = plc.requests();
        m_seen = seen.size();
        return QString::number(std::count_if(
            seen.begin() + static_cast<ptrdiff_t>(first), seen.end(),
            [&](const SeenRequest &request) { return request.frame.startsWith(beginning); }));
    }

    QString holdingRegister(Words &words) const
    {
        const std::vector<uint16_t> memory = plc.holdingRegisters(words.number());
        return QString::number(memory.at(static_cast<size_t>(words.number())));
    }

    QString untilItGives(Words &words)
    {
        const QString wanted = words.text();
        const QString command = words.text();
        EXPECT_TRUE(turnUntil([&] { return run(command, words) == wanted; }));
        return QString();
    }

    // clang-format off
    const std::map<QString, int *> m_numbers{};

    const std::map<QString, Action> m_actions = {
        {"add", [this](Words &w) { return addVariable(w); }},
        {"keys", [this](Words &w) { return setKeys(w.fields()); }},
        {"opening", [this](Words &) { return opening(); }},
        {"plug", [this](Words &w) { plc.plug(w.text() == "in"); return QString(); }},
        {"reopen", [this](Words &) { return loop->reopen() ? "closed" : "open"; }},
        {"close", [this](Words &) { loop->close("test"); return QString(); }},
        {"reason", [this](Words &) { return m_reason; }},
        {"view", [this](Words &w) { return makeView(w); }},
        {"show", [this](Words &) { return printed([this](PollView &v) { v.show(snapshotOf(link, *loop)); }); }},
        {"finish", [this](Words &) { return printed([this](PollView &v) { v.finish(snapshotOf(link, *loop)); }); }},
        {"report", [this](Words &) { return printed([this](PollView &v) { v.report(m_latest); }); }},
        {"planLine", [this](Words &w) { return planLine(w.rest()); }},
        {"took", [this](Words &) { return took(); }},
        {"newFrames", [this](Words &) { return newFrames(); }},
        {"remove", [this](Words &w) { return remove(w.text().toStdString()); }},
        {"plan", [this](Words &) { return plan(); }},
        {"start", [this](Words &) { start(); return QString(); }},
        {"closeAndOpen", [this](Words &) { loop->close("test"); loop->open(); return QString(); }},
        {"reload", [this](Words &) { reload(); return QString(); }},
        {"fault", [this](Words &w) { fault(qPrintable(w.rest())); return QString(); }},
        {"turn", [this](Words &) { turn(); return QString(); }},
        {"turnFor", [this](Words &w) { turnFor(w.number()); return QString(); }},
        {"pause", [](Words &w) { Clock::sleepUntil(Clock::now() + milliseconds(w.number())); return QString(); }},
        {"until", [this](Words &w) { return untilItGives(w); }},
        {"readAll", [this](Words &) { EXPECT_TRUE(readAll()); return QString(); }},
        {"writeAll", [this](Words &) { EXPECT_TRUE(writeAll()); return QString(); }},
        {"write", [this](Words &w) { return writeValue(w); }},
        {"writes", [this](Words &) { return events(Event::WRITE); }},
        {"stations", [this](Words &) { return events(Event::STATION); }},
        {"ports", [this](Words &) { return events(Event::PORT); }},
        {"station", [this](Words &w) { return loop->status().isOnline(w.number()) ? "online" : "offline"; }},
        {"value", [this](Words &w) { return text(value(qPrintable(w.text()))); }},
        {"stored", [this](Words &w) { return stored(w.text().toStdString()); }},
        {"counters", [this](Words &w) { return countersOf(w.number()); }},
        {"requests", [this](Words &w) { return requests(w.bytes()); }},
        {"newRequests", [this](Words &w) { return requests(w.bytes(), m_seen); }},
        {"register", [this](Words &w) { return holdingRegister(w); }}};
    // clang-format on

    std::map<QString, std::map<QString, QString>> m_keys = {
        {"",
         {{"name", "\"line\""},
          {"device", "\"virtual\""},
          {"baud", "115200"},
          {"timeout", "30"},
          {"retries", "1"}}}}; // by table of the file
    Clock::time_point m_took = Clock::now();
    std::unique_ptr<PollView> m_view;
    Event m_latest;
    QString m_reason;                           // of the latest event of a write
    size_t m_seen = 0;                          // requests, when they were counted last
    std::map<QString, QString> m_abbreviations; // by what they stand for
};

} // namespace

bool registerLoopCases()
{
    return registerScripts("loop", [] { return std::make_unique<LoopRunner>(); });
}
