// The file of links and variables: what is refused, where and why.
#include "host/links/link_file.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

/// The message of the error that a file of this content gives, without the folder; "good".
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
        return std::string(error.what()).substr(folder.path().toStdString().size() + 1);
    }
}

} // namespace

TEST(LinkFile, WhatIsRefused)
{
    const std::string link = "[[link]]\nname = \"l\"\ndevice = \"/dev/x\"\n";
    const std::string variable = "[[link.variable]]\nname = \"v\"\n";
    const std::string word = variable + "kind = \"holding word\"\naddress = 1\n";
    const std::string written = word + "access = \"read-write\"\n";
    const std::string other = "[[link.variable]]\nname = \"w\"\naccess = \"write\"\n";
    const struct {
        std::string content;
        const char *error; // its beginning
    } rows[] = {
        {link + word, "good"},
        {"x", "f:1:2: "},
        {"", "f:1:1: the file, \"link\": there is no [[link]]"},
        {link, "f:1:1: a link, \"variable\": there is no [[variable]]"},
        {link + "bauds = 1\n" + word, "f:4:1: unknown key \"bauds\"; a link takes: name, device"},
        {link + word + "adress = 2\n", "f:8:1: unknown key \"adress\""},
        {"port = 1\n" + link + word, "f:1:1: unknown key \"port\"; the file takes: link"},
        {"[[link]]\nname = \"l\"\n" + word, "f:1:1: a link, \"device\": it is missing"},
        {link + "baud = 299\n" + word,
         "f:4:8: a link, \"baud\": it must be a whole number from 300"},
        {link + "parity = \"E\"\n" + word,
         "f:4:10: a link, \"parity\": \"E\" is none of: none, even"},
        {link + "echo = 1\n" + word, "f:4:8: a link, \"echo\": it must be true or false"},
        {link + "silence = -1\n" + word, "f:4:11: a link, \"silence\""},
        {link + word + "station = 0\n",
         "f:8:11: a variable, \"station\": it must be a whole number "
         "from 1 to 247"},
        {link + word + "station = 248\n", "f:8:11: "},
        {link + word + "station = 247\n", "good"},
        // Registers per request.
        {link + "maxRegs = 1\n" + word,
         "f:4:11: a link, \"maxRegs\": it must be a whole number from 2"},
        {link + "maxRegs = 126\n" + word, "f:4:11: "},
        {link + "maxRegs = 125\n" + word, "good"},
        {link + "maxRegs = 124\n" + written,
         "f:4:11: a link, \"maxRegs\": on a link with variables "
         "that are written"},
        {link + "maxRegs = 121\n" + written, "f:4:11: "},
        {link + "maxRegs = 122\n" + written, "good"},
        // Addresses that are exactly a number of their kind.
        {link + variable + "kind = \"input word\"\naddress = \"12x\"\n",
         "f:7:11: a variable, \"address\": address \"12x\" is not a number from 0"},
        {link + variable + "kind = \"input word\"\naddress = \" 1\"\n", "f:7:11: "},
        {link + variable + "kind = \"input word\"\naddress = \"3.5\"\n", "f:7:11: "},
        {link + variable + "kind = \"input word\"\naddress = -1\n", "f:7:11: "},
        {link + variable + "kind = \"input bit\"\naddress = \"3\"\n",
         "f:7:11: a variable, \"address\": address \"3\" of a input bit is not BYTE.BIT"},
        {link + variable + "kind = \"input bit\"\naddress = 3.5\n",
         "f:7:11: a variable, \"address\": write a bit's address in quotes"},
        {link + variable + "kind = \"holding 5000 word\"\naddress = 60536\n",
         "f:7:11: a variable, \"address\": it ends at register 65536"},
        {link + variable + "kind = \"holding 5000 word\"\naddress = 60535\n", "good"},
        {link + variable + "kind = \"words\"\naddress = 1\n", "f:6:8: a variable, \"kind\""},
        {link + word + "format = \"u8\"\n",
         "f:7:11: a variable, \"address\": format u8 does not fit"},
        {link + word + "format = \"u9\"\n", "f:8:10: a variable, \"format\""},
        {link + variable + "kind = \"input word\"\naddress = 1\naccess = \"write\"\n",
         "f:8:10: a variable, \"access\": kind \"input word\" cannot be written"},
        // Names.
        {link + word + word, "f:9:8: a variable, \"name\": there is another variable \"v\""},
        {link + word + "[[link]]\nname = \"m\"\ndevice = \"/dev/x\"\n" + other,
         "f:10:10: a link, \"device\": \"/dev/x\" stands there already"},
        {link + word + link + other, "f:9:8: a link, \"name\": there is another link \"l\""},
        {link + "[[link.variable]]\nname = \"a=b\"\n", "f:5:8: a variable, \"name\""},
        {link + "[[link.variable]]\nname = \"a b\"\n", "f:5:8: "},
        // Two writable names of one target.
        {link + written + other + "kind = \"holding word\"\naddress = 1\n",
         "f:9:1: \"w\" writes what \"v\" writes already: register 1 of station 1"},
        {link + written + other + "kind = \"holding word\"\naddress = 1\nstation = 2\n", "good"},
        {link + written + other + "kind = \"holding word\"\naddress = 2\n", "good"},
        {link + written + other + "kind = \"holding bit\"\naddress = \"2.0\"\n", "good"},
        {link + variable
             + "kind = \"holding bit\"\naddress = \"2.4\"\ncount = 8\naccess = \"write\"\n" + other
             + "kind = \"holding bit\"\naddress = \"3.3\"\n",
         "f:10:1: \"w\" writes what \"v\" writes already: register 1"},
        {link + variable + "kind = \"holding word\"\naddress = 5007\naccess = \"write\"\n" + other
             + "kind = \"holding 5000 word\"\naddress = 7\n",
         "f:9:1: \"w\" writes what \"v\" writes already: register 5007"},
        {link + "maxRegs = 2\n" + variable
             + "kind = \"holding word\"\naddress = 10\ncount = 5\naccess = \"write\"\n" + other
             + "kind = \"holding word\"\naddress = 14\n",
         "f:11:1: \"w\" writes what"}, // the last piece of v is register 14
    };
    for (const auto &row : rows)
        EXPECT_EQ(errorOf(row.content).substr(0, std::string(row.error).size()), row.error)
            << row.content << errorOf(row.content);
}

TEST(LinkFile, WhatItSays)
{
    const std::vector<Link> links = readLinkFile(EXAMPLE_FILE);
    ASSERT_EQ(links.size(), 1U);
    const Link &link = links.front();
    EXPECT_EQ(link.line.devices.size(), 2U);
    EXPECT_EQ(link.line.parity, 'E');
    EXPECT_EQ(link.line.replyTimeout, 150);
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
