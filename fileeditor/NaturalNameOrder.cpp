#include "fileeditor/NaturalNameOrder.h"

namespace zarvi {

namespace {

bool isAsciiDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

} // namespace

bool naturalNameLess(const QString& a, const QString& b)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (isAsciiDigit(a[i]) && isAsciiDigit(b[j])) {
            qsizetype endA = i;
            while (endA < a.size() && isAsciiDigit(a[endA]))
                ++endA;
            qsizetype endB = j;
            while (endB < b.size() && isAsciiDigit(b[endB]))
                ++endB;
            while (i + 1 < endA && a[i] == QLatin1Char('0'))
                ++i;
            while (j + 1 < endB && b[j] == QLatin1Char('0'))
                ++j;
            if (endA - i != endB - j)
                return endA - i < endB - j;
            const int order = QStringView(a).sliced(i, endA - i).compare(QStringView(b).sliced(j, endB - j));
            if (order != 0)
                return order < 0;
            i = endA;
            j = endB;
            continue;
        }
        const QChar ca = a[i].toLower();
        const QChar cb = b[j].toLower();
        if (ca != cb)
            return ca < cb;
        ++i;
        ++j;
    }
    if (a.size() - i != b.size() - j)
        return a.size() - i < b.size() - j;
    return a < b;
}

} // namespace zarvi
