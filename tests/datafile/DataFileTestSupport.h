#pragma once

#include <gtest/gtest.h>

#include <QString>
#include <QVariant>

#include <hdf5.h>

namespace zarvi::test {

/// Identifiers of every kind the data-file layer opens, summed over the whole
/// library: equal before and after an operation when it closed what it opened.
inline long long openIdentifierCount()
{
    long long total = 0;
    for (const H5I_type_t type :
         {H5I_FILE, H5I_GROUP, H5I_DATASET, H5I_DATASPACE, H5I_DATATYPE, H5I_ATTR, H5I_GENPROP_LST}) {
        hsize_t members = 0;
        H5Inmembers(type, &members);
        total += static_cast<long long>(members);
    }
    return total;
}

/// Compares type and value, element by element for lists, so that an int read
/// back as a double (or a list as a single value) counts as a difference.
inline void expectSameVariant(const QVariant& actual, const QVariant& expected, const QString& what)
{
    ASSERT_STREQ(actual.typeName(), expected.typeName()) << what.toStdString();
    if (expected.typeId() == QMetaType::QVariantList) {
        const QVariantList a = actual.toList();
        const QVariantList e = expected.toList();
        ASSERT_EQ(a.size(), e.size()) << what.toStdString();
        for (qsizetype i = 0; i < e.size(); ++i)
            expectSameVariant(a[i], e[i], QStringLiteral("%1[%2]").arg(what).arg(i));
    } else {
        EXPECT_EQ(actual, expected) << what.toStdString();
    }
}

} // namespace zarvi::test
