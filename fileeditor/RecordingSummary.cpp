#include "fileeditor/RecordingSummary.h"

#include <QFileInfo>

#include "definitions/FileEditorOperationDefinitions.h"

namespace zarvi {

QString RecordingSummary::text(const QString& sourcePath) const
{
    using Texts = FileEditorOperationDefinitions;
    QStringList lines{Texts::foundTitle().arg(QFileInfo(sourcePath).fileName(), format)};
    for (const Channel& channel : channels)
        lines << Texts::foundSignalText()
                     .arg(channel.name)
                     .arg(channel.samples)
                     .arg(channel.sampleRate, 0, 'g', 8);
    for (const EventArray& array : events)
        lines << Texts::foundEventsText().arg(array.name).arg(array.count);
    lines << Texts::foundDurationText().arg(duration, 0, 'f', 3);
    return lines.join(QStringLiteral("<br>"));
}

} // namespace zarvi
