// The file of links and variables: which content is refused, where and why.
#include "host/core/links/file_error.h"
#include "host/core/links/link_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <map>

using namespace velko;

namespace
{

/// Returns the error message for a file with this content, without the file name, or "good".
std::string errorOf(const std::string &content)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("f");
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray::fromStdString(content));
    file.close();
    try {
        readLinkFile(path.toStdString());
        return "good";
    } catch (const FileError &error) {
        return std::string(error.what()).substr(folder.path().toStdString().size() + 3); // "/f:"
    }
}

} // namespace

TEST(LinkFile, RefusedContent)
{
    QFile file(CASES_FOLDER "/links.txt");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    std::map<QString, QString> pieces;
    int refused = 0;
    for (const QString &block : QString::fromUtf8(file.readAll()).split("\n== ").mid(1)) {
        const QString title = block.section('\n', 0, 0);
        QString content = block.section('\n', 1);
        for (const auto &piece : pieces)
            content.replace(piece.first, piece.second);
        if (title.startsWith('@')) {
            pieces[title + "\n"] = content;
            continue;
        }
        const QString error = QString::fromStdString(errorOf(content.toStdString()));
        EXPECT_TRUE(error.startsWith(title))
            << qPrintable("expected: " + title + "\nresult: " + error + "\n" + content);
        refused += error != "good";
    }
    EXPECT_GT(refused, 0);
}

TEST(LinkFile, EveryKey)
{
    QFile file(CASES_FOLDER "/every_key.toml");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString content = QString::fromUtf8(file.readAll());
    for (const char *table : {"[[link]]", "[[link.station]]", "[[link.variable]]"}) {
        QString wrong = content;
        wrong.replace(table, QString(table) + "\nnothing = 1");
        const QString accepted = QString::fromStdString(errorOf(wrong.toStdString()));
        ASSERT_TRUE(accepted.contains(" accepts: ")) << qPrintable(accepted);
        for (const QString &key : accepted.section(" accepts: ", 1).split(", "))
            EXPECT_TRUE(content.contains("\n" + key + " = ") || content.contains("." + key + "]]"))
                << qPrintable(key);
    }
    const Link link = readLinkFile(CASES_FOLDER "/every_key.toml").at(0);
    const LineSettings &line = link.line;
    EXPECT_EQ(link.name, "l");
    EXPECT_EQ(line.devices, (std::vector<std::string>{"/dev/a", "/dev/b*"}));
    EXPECT_EQ(line.parity, 'O');
    EXPECT_EQ(line.rs485, Rs485::RTS_AFTER_SEND);
    EXPECT_TRUE(line.echo);
    EXPECT_FALSE(link.ownFailuresOnly);
    const std::vector<int> numbers = {line.baudRate,
                                      line.stopBits,
                                      line.responseTimeout,
                                      line.interCharacterTimeout,
                                      line.guardTime.value(),
                                      line.minFrameGap,
                                      link.maxRegs,
                                      link.retries,
                                      link.queueAgain,
                                      link.staleAfter,
                                      link.responseTimeoutOf(9),
                                      link.retriesOf(9),
                                      link.maxRegsOf(9)};
    EXPECT_EQ(numbers, (std::vector<int>{9600, 2, 111, 22, 33, 4500, 44, 5, 6, 7777, 88, 0, 12}));
    const Variable &variable = link.variables.at(0);
    EXPECT_EQ(variable.name + " " + variable.address, "v 30");
    EXPECT_EQ(variable.station, 9);
    EXPECT_EQ(variable.kind, KIND_HOLDING_5000_DWORD);
    EXPECT_EQ(nameOf(variable.format), "f32/ABCD");
    EXPECT_EQ(variable.count, 3);
    EXPECT_EQ(variable.access, Access::WRITE);
}

TEST(LinkFile, Files)
{
    EXPECT_EQ(readLinkFile(EXAMPLE_FILE).at(0).variables.size(), 9U);
    for (const char *path : {"/none", "/"}) {
        try {
            readLinkFile(path);
            ADD_FAILURE() << path;
        } catch (const FileError &error) {
            EXPECT_NE(std::string(error.what()).find("cannot be read: "), std::string::npos);
        }
    }
}
