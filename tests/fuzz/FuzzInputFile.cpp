#include "fuzz/FuzzInputFile.h"

#include <QFile>
#include <QTemporaryDir>

namespace zarvi::fuzz {

QString FuzzInputFile::write(const QString& name, const std::uint8_t* data, std::size_t size)
{
    static QTemporaryDir folder;
    if (!folder.isValid())
        return {};
    const QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QFile::WriteOnly | QFile::Truncate))
        return {};
    if (file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) !=
        static_cast<qint64>(size))
        return {};
    return path;
}

} // namespace zarvi::fuzz
