// Reads the files in tests/cases: scripts of calls with their expected results, and tables.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <memory>

/// The arguments of a command: numbers and texts in order, then NAME=VALUE fields and hex bytes.
class Words
{
public:
    explicit Words(const QString &text) : m_words(text.split(' ', Qt::SkipEmptyParts)) {}

    QString text() { return m_words.isEmpty() ? QString() : m_words.takeFirst().remove('"'); }
    int number();
    QStringList fields() const { return m_words.filter("="); }
    QByteArray bytes() const;
    QString rest() const { return m_words.join(' '); }

    /// Removes the word "null". Returns whether it was there.
    bool takeNull() { return m_words.removeAll("null") > 0; }

private:
    QStringList m_words;
};

/// Executes the commands of one kind of script.
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

/// Registers a test for each script in the files "*.SUFFIX", each with its own runner. Returns
/// false if there is no script.
bool registerScripts(const QString &suffix,
                     const std::function<std::unique_ptr<ScriptRunner>()> &makeRunner);

/// Returns the lines of a table, split into cells.
QList<QStringList> rowsOf(const QString &name);
