// Scripts of calls with what each must give, and tables: the files of tests/cases.
#pragma once

#include <QStringList>

#include <functional>
#include <map>
#include <memory>

/// The words behind a command: numbers and texts in order, then NAME=VALUE fields and hex bytes.
class Words
{
public:
    explicit Words(const QString &text) : m_words(text.split(' ', Qt::SkipEmptyParts)) {}

    QString text() { return m_words.isEmpty() ? QString() : m_words.takeFirst().remove('"'); }
    int number();
    QStringList fields() const { return m_words.filter("="); }
    QByteArray bytes() const;
    QString rest() const { return m_words.join(' '); }

    /// Whether the word "null" is among them.
    bool takeNull() { return m_words.removeAll("null") > 0; }

private:
    QStringList m_words;
};

/// Knows the commands of a kind of scripts.
class ScriptRunner
{
public:
    virtual ~ScriptRunner() = default;

    QString run(const QString &command, Words words);

protected:
    using Action = std::function<QString(Words &)>;

    static void setFields(const QStringList &fields, const std::map<QString, int *> &numbers);

private:
    virtual const std::map<QString, Action> &actions() const = 0;
    virtual const std::map<QString, int *> &numbers() const = 0;
};

/// Makes a test of each script in the files "*.SUFFIX", with a runner of its own. False where there
/// is none.
bool registerScripts(const QString &suffix,
                     const std::function<std::unique_ptr<ScriptRunner>()> &makeRunner);

/// The lines of a table, cut into cells.
QList<QStringList> rowsOf(const QString &name);
