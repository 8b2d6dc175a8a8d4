#include "tests/script.h"

#include <QDir>
#include <QFile>
#include <QRegExp>

#include <gtest/gtest.h>

namespace
{

struct Line {
    int number;
    QString text;
};

/// Returns the lines of a file without comments and empty lines.
QList<Line> linesOf(const QString &name)
{
    QFile file(QDir(CASES_FOLDER).filePath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(file.fileName());
    const QStringList texts = QString::fromUtf8(file.readAll()).split('\n');
    QList<Line> lines;
    for (int i = 0; i < texts.size(); ++i) {
        const QString text = texts.at(i).section('#', 0, 0).trimmed();
        if (!text.isEmpty())
            lines.append({i + 1, text});
    }
    return lines;
}

bool fits(const QString &seen, const QString &expected)
{
    return expected.endsWith("...") ? seen.startsWith(expected.left(expected.size() - 3).trimmed())
                                    : seen == expected;
}

struct Script {
    QString file;
    QString title;
    QList<Line> lines;
};

class ScriptTest : public testing::Test
{
public:
    ScriptTest(const Script &script, std::unique_ptr<ScriptRunner> runner)
        : m_script(script),
          m_runner(std::move(runner))
    {
    }

    void TestBody() override
    {
        for (const Line &line : m_script.lines) {
            SCOPED_TRACE(
                qPrintable(QString("%1:%2: ").arg(m_script.file).arg(line.number) + line.text));
            const QString call = line.text.section("->", 0, 0).trimmed();
            const QString seen =
                m_runner->run(call.section(' ', 0, 0), Words(call.section(' ', 1)));
            if (!line.text.contains("->"))
                continue;
            const QString expected = line.text.section("->", 1).trimmed();
            EXPECT_TRUE(fits(seen, expected)) << "result: " << qPrintable(seen);
        }
    }

private:
    Script m_script;
    std::unique_ptr<ScriptRunner> m_runner;
};

/// A line "== title" begins a script. One whose title begins with "@" is no test: a line of this
/// title stands for its lines further down.
QList<Script> scriptsOf(const QString &name)
{
    QList<Script> scripts;
    std::map<QString, QList<Line>> pieces;
    QList<Line> *lines = nullptr;
    for (const Line &line : linesOf(name)) {
        const QString title = line.text.startsWith("== ") ? line.text.mid(3) : QString();
        if (title.startsWith('@')) {
            lines = &pieces[title];
        } else if (!title.isEmpty()) {
            scripts.append({name, title, {}});
            lines = &scripts.last().lines;
        } else if (!lines) {
            ADD_FAILURE() << qPrintable(name) << " does not begin with a title";
        } else if (line.text.startsWith('@')) {
            EXPECT_TRUE(pieces.count(line.text)) << qPrintable(line.text);
            *lines += pieces[line.text];
        } else {
            lines->append(line);
        }
    }
    return scripts;
}

} // namespace

int Words::number()
{
    bool ok = false;
    const QString word = text();
    const int value = word.toInt(&ok);
    EXPECT_TRUE(ok) << "\"" << qPrintable(word) << "\" is not a number";
    return value;
}

QByteArray Words::bytes() const
{
    QByteArray hex;
    for (const QString &word : m_words.filter(QRegExp("^[^=]+$")))
        hex += word.section('*', 0, 0).toLatin1().repeated(qMax(1, word.section('*', 1).toInt()));
    return QByteArray::fromHex(hex);
}

QString ScriptRunner::run(const QString &command, Words words)
{
    const auto action = actions().find(command);
    if (action != actions().end())
        return action->second(words);
    const auto number = numbers().find(command);
    if (number != numbers().end())
        return QString::number(*number->second);
    if (command == "let")
        setFields(words.fields(), numbers());
    else
        ADD_FAILURE() << "unknown command " << qPrintable(command);
    return QString();
}

void ScriptRunner::setFields(const QStringList &fields, const std::map<QString, int *> &numbers)
{
    for (const QString &field : fields) {
        const auto number = numbers.find(field.section('=', 0, 0));
        ASSERT_NE(number, numbers.end()) << "unknown field " << qPrintable(field);
        *number->second = field.section('=', 1).toInt();
    }
}

bool registerScripts(const QString &suffix,
                     const std::function<std::unique_ptr<ScriptRunner>()> &makeRunner)
{
    bool isOne = false;
    for (const QString &name : QDir(CASES_FOLDER).entryList({"*." + suffix}, QDir::Files)) {
        for (const Script &script : scriptsOf(name)) {
            QString title = script.title;
            testing::RegisterTest(qPrintable("Cases_" + name.section('.', 0, 0)),
                                  qPrintable(title.replace(QRegExp("[^A-Za-z0-9]+"), "_")), nullptr,
                                  nullptr, __FILE__, __LINE__, [=]() -> testing::Test * {
                                      return new ScriptTest(script, makeRunner());
                                  });
            isOne = true;
        }
    }
    return isOne;
}

QList<QStringList> rowsOf(const QString &name)
{
    QList<QStringList> rows;
    for (const Line &line : linesOf(name)) {
        QStringList cells = line.text.split('|');
        for (QString &cell : cells)
            cell = cell.trimmed();
        rows.append(cells);
    }
    EXPECT_FALSE(rows.isEmpty()) << qPrintable(name);
    return rows;
}
