// Names of the capture files of several links.
#pragma once

#include <string>
#include <vector>

namespace velko
{

/// Returns one path for each link, all different. For one link it is `file`; for several, the
/// link's name is inserted before the extension: "line.pcap" becomes "line-press.pcap". Characters
/// that some file system or shell treats specially become "_"; a number follows if two names are
/// the same then.
std::vector<std::string> captureFiles(const std::string &file,
                                      const std::vector<std::string> &links);

} // namespace velko
