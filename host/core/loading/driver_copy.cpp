#include "host/core/loading/driver_copy.h"

#include <QFile>
#include <QTemporaryDir>

#include <stdexcept>

namespace velko
{

std::unique_ptr<DriverLibrary> loadDriverCopy(const std::string &path)
{
    checkDriverFile(path);
    // A loaded file needs no name: the folder is removed at the end of this function.
    const QTemporaryDir folder;
    const QString copy = folder.filePath(QStringLiteral("driver.so"));
    if (!folder.isValid() || !QFile::copy(QString::fromStdString(path), copy))
        throw std::runtime_error("cannot copy the driver library file " + path + " to "
                                 + folder.path().toStdString()
                                 + ". Free some space there, or set TMPDIR to another folder.");
    return std::make_unique<DriverLibrary>(copy.toStdString());
}

} // namespace velko
