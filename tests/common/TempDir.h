#pragma once

#include <QString>
#include <QTemporaryDir>

namespace zarvi::test {

/// A fresh temporary folder per test; removed with the object.
class TempDir
{
public:
    QString path() const { return m_dir.path(); }
    QString file(const QString& name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
};

} // namespace zarvi::test
