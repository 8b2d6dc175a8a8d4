#include "host/core/loading/driver_copy.h"

#include <QFile>
#include <QTemporaryDir>

#include <stdexcept>

namespace velko
{

std::unique_ptr<DriverLibrary> loadDriverCopy(const std::string &path)
{
    checkDriverFile(path);
    // Loaded, the file needs no name any more: the folder goes at the end of this function.
    const QTemporaryDir folder;
    const QString copy = folder.filePath(QStringLiteral("driver.so"));
    if (!folder.isValid() || !QFile::copy(QString::fromStdString(path), copy))
        throw std::runtime_error("cannot copy the driver " + path + " to "
                                 + folder.path().toStdString()
                                 + ": make room there, or name another folder in TMPDIR");
    return std::make_unique<DriverLibrary>(copy.toStdString());
}

} // namespace velko
