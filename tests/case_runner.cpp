// Runs the cases of tests/cases: scripts of calls to a freshly loaded driver with what each must
// give. tests/cases/README.md describes their language.
#include "tests/driver_under_test.h"

#include <QDir>
#include <QFile>
#include <QStringList>

#include <functional>
#include <map>

namespace
{

struct Line {
    int number;
    QString text;
};

/// The words behind a command: numbers and texts in order, then NAME=VALUE fields and hex bytes.
class Words
{
public:
    explicit Words(const QString &text) : m_words(text.split(' ', Qt::SkipEmptyParts)) {}

    QString text() { return m_words.isEmpty() ? QString() : m_words.takeFirst().remove('"'); }

    int number()
    {
        bool ok = false;
        const QString word = text();
        const int value = word.toInt(&ok);
        EXPECT_TRUE(ok) << "\"" << qPrintable(word) << "\" is no number";
        return value;
    }

    QStringList fields() const { return m_words.filter("="); }

    QByteArray bytes() const
    {
        QByteArray hex;
        for (const QString &word : m_words)
            hex += word.contains('=') ? QByteArray() : word.toLatin1();
        return QByteArray::fromHex(hex);
    }

    QString rest() const { return m_words.join(' '); }

private:
    QStringList m_words;
};

QString describe(const RW_VAR &var)
{
    // clang-format off
    return QString("owner=%1 tag=%2 rw=%3 link=%4 area=%5 code=%6 name=%7 text=%8 kind=%9 ")
               .arg(var.ownerId).arg(var.ownerTag).arg(var.rwFlag).arg(var.linkMode)
               .arg(var.areaNo).arg(var.retCode).arg(var.varName, var.addrText).arg(var.varKind)
        + QString("addr=%1 station=%2 count=%3 mark=%4 arg=%5 value=%6")
               .arg(var.addr).arg(var.station).arg(var.count).arg(var.rmwMark).arg(var.remoteArg)
               .arg(QString::fromStdString(hexFrom(var.value)));
    // clang-format on
}

/// "6[0,4) 7[10,42)": area or kind, first and last address of each record.
QString ranges(const QList<RW_VAR> &list)
{
    QStringList texts;
    for (const RW_VAR &record : list)
        texts += QString("%1[%2,%3)")
                     .arg(record.varKind)
                     .arg(record.addr)
                     .arg(record.addr + record.count);
    return texts.isEmpty() ? "none" : texts.join(' ');
}

/// "20+2=01 02 03 04": address, count and value of each record.
QString values(const QList<RW_VAR> &list)
{
    QStringList texts;
    for (const RW_VAR &record : list)
        texts += QString("%1+%2=").arg(record.addr).arg(record.count)
                 + QString::fromStdString(hexFrom(record.value));
    return texts.isEmpty() ? "none" : texts.join(", ");
}

class Runner : DriverUnderTest
{
public:
    QString run(const QString &command, Words words)
    {
        const auto action = m_actions.find(command);
        if (action != m_actions.end())
            return action->second(words);
        const auto number = m_numbers.find(command);
        if (number == m_numbers.end()) {
            ADD_FAILURE() << "unknown command " << qPrintable(command);
            return QString();
        }
        return QString::number(*number->second);
    }

private:
    using Action = std::function<QString(Words &)>;

    QList<RW_VAR> &list(const QString &name)
    {
        return name == "write"  ? core.writeList
               : name == "once" ? core.onceReadList
                                : core.readList;
    }

    static void setFields(const QStringList &fields, const std::map<QString, int *> &numbers)
    {
        for (const QString &field : fields) {
            const auto number = numbers.find(field.section('=', 0, 0));
            ASSERT_NE(number, numbers.end()) << "unknown field " << qPrintable(field);
            *number->second = field.section('=', 1).toInt();
        }
    }

    RW_VAR record(int rwFlag, Words &words) const
    {
        RW_VAR var;
        var.rwFlag = rwFlag;
        var.areaNo = link.localArea;
        var.station = 1;
        var.varKind = words.number();
        var.addrText = words.text();
        var.addr = var.addrText.toInt();
        var.count = words.number();
        var.value = words.bytes();
        setFields(words.fields(), {{"owner", &var.ownerId},
                                   {"tag", &var.ownerTag},
                                   {"rw", &var.rwFlag},
                                   {"area", &var.areaNo},
                                   {"station", &var.station},
                                   {"mark", &var.rmwMark},
                                   {"arg", &var.remoteArg},
                                   {"code", &var.retCode}});
        return var;
    }

    QString queueOnce(Words &words, QUEUE_MODE mode)
    {
        m_once = record(REQUEST_READ, words);
        return QString::number(driver.AddListOnceReadVar(&m_once, mode));
    }

    QString queueWrite(Words &words, QUEUE_MODE mode)
    {
        const RW_VAR var = record(REQUEST_WRITE, words);
        return QString::number(driver.AddListWriteVar(&var, mode));
    }

    QString setValue(Words &words)
    {
        const int kind = words.number();
        const QString text = words.text();
        const int length = words.number();
        int station = 1, owner = 0, tag = 0;
        setFields(words.fields(), {{"station", &station}, {"owner", &owner}, {"tag", &tag}});
        const QByteArray value = words.bytes();
        return QString::number(
            driver.SetRegisterData("name", kind, text, station, &value, length, owner, tag));
    }

    QString getValue(Words &words)
    {
        const int kind = words.number();
        const QString text = words.text();
        const int length = words.number();
        int station = 1;
        setFields(words.fields(), {{"station", &station}});
        QByteArray output("untouched");
        const int known = driver.GetRegisterData(0, kind, text, station, &output, length);
        return known == 1 ? QString::fromStdString(hexFrom(output)) : "refused " + output;
    }

    QString answerWith(Words &words)
    {
        const QByteArray reply = words.bytes();
        int length = reply.size();
        setFields(words.fields(), {{"length", &length}});
        return QString::number(answer(reply, length));
    }

    /// Takes one request off the line, well answered; what it was.
    QString serve()
    {
        QString frame = QString::fromStdString(next());
        for (int i = 0; i < 2 && !core.pendingList.isEmpty(); ++i) {
            next();
            const bool isRead = core.pendingList.first().dataOffset == 3;
            EXPECT_EQ(answer(isRead ? GOOD_READ : GOOD_WRITE), RESULT_GOOD);
        }
        return frame;
    }

    /// A letter per turn: Write, Once (input area), Cyclic (holding area), or - for none.
    QString turns(int count)
    {
        QString letters;
        for (int i = 0; i < count; ++i) {
            const QString frame = serve();
            const QString function = frame.mid(3, 2);
            letters += frame == "none"    ? '-'
                       : function == "10" ? 'W'
                       : function == "04" ? 'O'
                                          : 'C';
        }
        return letters;
    }

    QString cutGroup(Words &words)
    {
        const int total = words.number();
        RW_VAR var;
        var.varKind = AREA_HOLDING;
        var.addr = 40;
        var.count = 7;
        QList<RW_VAR> pieces;
        driver.WhetherGroup(total, words.number(), &var, &pieces);
        return ranges(pieces) + " last " + ranges({var});
    }

    QString request() const
    {
        if (core.pendingList.isEmpty())
            return "none";
        const Protocol &head = core.pendingList.first();
        return QString("reply=%1 offset=%2 data=%3 ")
                   .arg(head.replyLen)
                   .arg(head.dataOffset)
                   .arg(head.dataLen)
               + describe(head.var);
    }

    void empty()
    {
        core.readList.clear();
        core.writeList.clear();
        core.onceReadList.clear();
        core.pendingList.clear();
        core.writeBurst = core.onceBurst = 0;
        takeEvents();
    }

    // clang-format off
    const std::map<QString, int *> m_numbers = {
        {"maxRegs", &link.maxRegs}, {"defaultStation", &link.defaultStation},
        {"retryLimit", &link.retryLimit}, {"retryCount", &link.retryCount},
        {"perVarStation", &link.perVarStation}, {"frameTotal", &link.frameTotal},
        {"frameDone", &link.frameDone}, {"remoteMode", &link.remoteMode},
        {"localArea", &link.localArea}, {"commMode", &link.commMode},
        {"cycleDone", &link.cycleDone}, {"activeSource", &core.activeSource},
        {"writeBurst", &core.writeBurst}, {"onceBurst", &core.onceBurst},
        {"cycleCount", &core.cycleCount}};

    const std::map<QString, Action> m_actions = {
        {"let", [this](Words &w) { setFields(w.fields(), m_numbers); return QString(); }},
        {"commFailed", [this](Words &) { return QString::number(core.commFailed); }},
        {"fail", [this](Words &) { core.commFailed = 1; return QString(); }},
        {"merging", [this](Words &) { return QString::number(core.pendingMerge.active); }},
        {"empty", [this](Words &) { empty(); return QString(); }},
        {"address", [this](Words &w) {
             const int kind = w.number();
             return QString::number(driver.PLCAddressChangeIntef(kind, w.text()));
         }},
        {"rebuild", [this](Words &w) {
             const int length = rebuild(qPrintable(w.rest()));
             EXPECT_EQ(length, core.readList.size());
             return ranges(core.readList);
         }},
        {"poll", [this](Words &w) {
             const RW_VAR var = record(REQUEST_READ, w);
             return QString::number(driver.AddListReadVar(&var));
         }},
        {"write", [this](Words &w) { return queueWrite(w, QUEUE_CHECKED); }},
        {"append", [this](Words &w) { return queueWrite(w, QUEUE_UNCONDITIONALLY); }},
        {"once", [this](Words &w) { return queueOnce(w, QUEUE_CHECKED); }},
        {"appendOnce", [this](Words &w) { return queueOnce(w, QUEUE_UNCONDITIONALLY); }},
        {"converted", [this](Words &) { return ranges({m_once}); }},
        {"convertedRecord", [this](Words &) { return describe(m_once); }},
        {"set", [this](Words &w) { return setValue(w); }},
        {"get", [this](Words &w) { return getValue(w); }},
        {"station", [this](Words &w) {
             const int station = w.number();
             driver.EnCommStation(station, w.number());
             return QString();
         }},
        {"next", [this](Words &) { return QString::fromStdString(next()); }},
        {"request", [this](Words &) { return request(); }},
        {"pending", [this](Words &) { return QString::number(core.pendingList.size()); }},
        {"answer", [this](Words &w) { return answerWith(w); }},
        {"silence", [this](Words &) { return QString::number(answer("")); }},
        {"serve", [this](Words &) { return serve(); }},
        {"turns", [this](Words &w) { return turns(w.number()); }},
        {"events", [this](Words &) { return QString::fromStdString(takeEvents()); }},
        {"returned", [this](Words &) { return describe(core.retVar); }},
        {"ranges", [this](Words &w) { return ranges(list(w.text())); }},
        {"values", [this](Words &w) { return values(list(w.text())); }},
        {"record", [this](Words &w) {
             const QList<RW_VAR> &named = list(w.text());
             return describe(named.value(w.number()));
         }},
        {"length", [this](Words &w) { return QString::number(list(w.text()).size()); }},
        {"times", [this](Words &w) {
             const int times = w.number();
             const QString command = w.text();
             QString last;
             for (int i = 0; i < times; ++i)
                 last = run(command, w);
             return last;
         }},
        {"group", [this](Words &w) { return cutGroup(w); }},
        {"imageSize", [this](Words &w) {
             const int area = w.number();
             int station = 1;
             setFields(w.fields(), {{"station", &station}});
             const auto &images = *static_cast<StationImages *>(driver.symbol("DataStorage"));
             return QString::number(images[station][area].size());
         }}};
    // clang-format on

    RW_VAR m_once;
};

bool fits(const QString &seen, const QString &expected)
{
    return expected.endsWith("...") ? seen.startsWith(expected.left(expected.size() - 3).trimmed())
                                    : seen == expected;
}

class CaseTest : public ::testing::Test
{
public:
    CaseTest(const QString &file, const QList<Line> &lines) : m_file(file), m_lines(lines) {}

    void TestBody() override
    {
        Runner runner;
        for (const Line &line : m_lines) {
            SCOPED_TRACE(
                qPrintable(m_file + ":" + QString::number(line.number) + ": " + line.text));
            const QString call = line.text.section("->", 0, 0).trimmed();
            const QString seen = runner.run(call.section(' ', 0, 0), Words(call.section(' ', 1)));
            if (!line.text.contains("->"))
                continue;
            const QString expected = line.text.section("->", 1).trimmed();
            EXPECT_TRUE(fits(seen, expected)) << "gave " << qPrintable(seen);
        }
    }

private:
    QString m_file;
    QList<Line> m_lines;
};

void addCase(const QString &file, QString title, const QList<Line> &lines)
{
    testing::RegisterTest(qPrintable("Cases_" + file.section('.', 0, 0)),
                          qPrintable(title.replace(QRegExp("[^A-Za-z0-9]+"), "_")), nullptr,
                          nullptr, __FILE__, __LINE__,
                          [=]() -> testing::Test * { return new CaseTest(file, lines); });
}

/// A line "== title" begins a case; text behind "#" is a comment.
int addCasesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QStringList texts = QString::fromUtf8(file.readAll()).split('\n');
    const QString name = path.section('/', -1);
    QString title;
    QList<Line> lines;
    int cases = 0;
    const auto finish = [&] {
        if (!lines.isEmpty())
            addCase(name, title, lines), ++cases;
        lines.clear();
    };
    for (int i = 0; i < texts.size(); ++i) {
        const QString text = texts.at(i).section('#', 0, 0).trimmed();
        if (text.startsWith("== ")) {
            finish();
            title = text.mid(3);
        } else if (!text.isEmpty()) {
            lines.append({i + 1, text});
        }
    }
    finish();
    return cases;
}

} // namespace

int main(int argc, char *argv[])
{
    testing::InitGoogleTest(&argc, argv);
    int cases = 0;
    const QDir folder(CASES_FOLDER);
    for (const QString &name : folder.entryList({"*.case"}, QDir::Files))
        cases += addCasesOf(folder.filePath(name));
    if (cases == 0) {
        std::fprintf(stderr, "no cases in %s\n", CASES_FOLDER);
        return 1;
    }
    return RUN_ALL_TESTS();
}
