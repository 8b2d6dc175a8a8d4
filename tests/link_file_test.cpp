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

TEST(LinkFile, Content)
{
    const std::vector<Link> links = readLinkFile(EXAMPLE_FILE);
    ASSERT_EQ(links.size(), 1U);
    const Link &link = links.front();
    EXPECT_EQ(link.line.devices.size(), 2U);
    EXPECT_EQ(link.line.parity, 'E');
    EXPECT_EQ(link.line.responseTimeout, 150);
    EXPECT_EQ(link.stations(), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(link.variables.size(), 9U);
    EXPECT_EQ(link.variables.back().kind, KIND_HOLDING_DWORD);
    EXPECT_TRUE(link.variables.back().isRead() && link.variables.back().isWritten());
    for (const char *path : {"/none", "/"}) {
        try {
            readLinkFile(path);
            ADD_FAILURE() << path;
        } catch (const FileError &error) {
            EXPECT_NE(std::string(error.what()).find("cannot be read: "), std::string::npos);
        }
    }
}
