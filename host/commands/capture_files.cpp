#include "host/commands/capture_files.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

namespace velko
{

namespace
{

bool isSafe(unsigned char character)
{
    const bool isAscii = character < 0x80; // the others are parts of UTF-8 characters
    return !isAscii || std::isalnum(character) != 0 || character == '.' || character == '_'
           || character == '-';
}

std::string safeName(std::string name)
{
    std::replace_if(
        name.begin(), name.end(), [](unsigned char character) { return !isSafe(character); }, '_');
    return name;
}

// Some file systems do not distinguish upper and lower case.
std::string lowerCase(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char character) {
        return character < 0x80 ? static_cast<char>(std::tolower(character))
                                : static_cast<char>(character);
    });
    return name;
}

class DifferentNames
{
public:
    std::string next(const std::string &link)
    {
        const std::string first = safeName(link);
        std::string name = first;
        for (int number = 2; !m_used.insert(lowerCase(name)).second; ++number)
            name = first + "-" + std::to_string(number);
        return name;
    }

private:
    std::set<std::string> m_used;
};

} // namespace

std::vector<std::string> captureFiles(const std::string &file,
                                      const std::vector<std::string> &links)
{
    const std::filesystem::path path(file);
    if (links.size() == 1 || !path.has_filename())
        return std::vector<std::string>(links.size(),
                                        file); // a folder is refused when it is opened
    DifferentNames names;
    std::vector<std::string> files;
    files.reserve(links.size());
    for (const std::string &link : links) {
        std::filesystem::path one = path.parent_path() / path.stem();
        one += "-" + names.next(link);
        one += path.extension();
        files.push_back(one.string());
    }
    return files;
}

} // namespace velko
