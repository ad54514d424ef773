#include "fuzz/FuzzEntries.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using zarvi::fuzz::FuzzEntry;

// The inputs fuzzing once found to crash, hang or exhaust memory, each kept in
// regressions/<target>/ and fed through the same entry as the fuzz target: with the
// fix in place every one is read to its end (in the sanitizer build, cleanly).
TEST(FuzzRegressions, EveryKeptInputIsReadThroughItsEntry)
{
    const QDir regressions(QStringLiteral(ZARVI_FUZZ_REGRESSIONS));
    ASSERT_TRUE(regressions.exists());
    int replayed = 0;
    for (const QString& folder : regressions.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const FuzzEntry* entry = zarvi::fuzz::findFuzzEntry(folder.toLatin1().constData());
        ASSERT_NE(entry, nullptr) << "no fuzz target is named " << folder.toStdString();
        const QDir inputs(regressions.filePath(folder));
        for (const QString& name : inputs.entryList(QDir::Files)) {
            QFile file(inputs.filePath(name));
            ASSERT_TRUE(file.open(QFile::ReadOnly));
            const QByteArray bytes = file.readAll();
            SCOPED_TRACE((folder + QLatin1Char('/') + name).toStdString());
            entry->run(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                       static_cast<std::size_t>(bytes.size()));
            ++replayed;
        }
    }
    RecordProperty("replayed", replayed);
}
