#include "cli/HelpCommand.h"

#include "cli/TerminalProgress.h"
#include "framework/OperationRegistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>
#include <QTextStream>

namespace zarvi {

namespace {

/// A value as it would be written in a parameter file.
QString jsonText(const QVariant& value)
{
    const QJsonValue json = QJsonValue::fromVariant(value);
    if (json.isArray())
        return QString::fromUtf8(QJsonDocument(json.toArray()).toJson(QJsonDocument::Compact));
    if (json.isString())
        return QStringLiteral("\"%1\"").arg(json.toString());
    return value.toString();
}

QString describeParameter(const OperationParameter& parameter)
{
    QStringList facts{parameter.kindName()};
    if (!parameter.unit.isEmpty())
        facts << parameter.unit;
    facts << (parameter.required ? QStringLiteral("required") : QStringLiteral("optional"));
    if (parameter.defaultValue.isValid())
        facts << QStringLiteral("default %1").arg(jsonText(parameter.defaultValue));
    const QString allowed = parameter.allowedValues();
    if (!allowed.isEmpty())
        facts << allowed;
    QString text = QStringLiteral("  %1 (%2)\n").arg(parameter.key, facts.join(QStringLiteral("; ")));
    const QString label = TerminalProgress::plainText(parameter.label);
    const QString tooltip = TerminalProgress::plainText(parameter.tooltip);
    text += QStringLiteral("      %1").arg(label);
    if (!tooltip.isEmpty())
        text += QStringLiteral(": %1").arg(tooltip);
    if (!parameter.example.isEmpty())
        text += QStringLiteral("\n      Example: %1").arg(parameter.example);
    return text + QLatin1Char('\n');
}

} // namespace

int HelpCommand::listOperations()
{
    QTextStream out(stdout);
    const OperationRegistry& registry = OperationRegistry::instance();
    for (OperationFamily family : OperationRegistry::families()) {
        const QStringList names = registry.names(family);
        if (names.isEmpty())
            continue;
        out << OperationRegistry::familyName(family) << '\n';
        for (const QString& name : names)
            out << "  " << name << '\n';
    }
    return 0;
}

int HelpCommand::describe(const QStringList& arguments)
{
    if (arguments.size() != 1) {
        QTextStream(stderr) << "usage: zarvi-cli help NAME   (zarvi-cli ops lists the names)\n";
        return 2;
    }
    const OperationDescriptor* descriptor = OperationRegistry::instance().find(arguments.first());
    if (!descriptor) {
        QTextStream(stderr) << "Error: the operation \"" << arguments.first()
                            << "\" does not exist; zarvi-cli ops lists the operations.\n";
        return 2;
    }
    QTextStream out(stdout);
    out << descriptor->name << " (" << OperationRegistry::familyName(descriptor->family) << ")\n";
    out << "  " << TerminalProgress::plainText(descriptor->description) << "\n\n";
    out << "Parameters (the \"Operations\" key holds the name; an optional one left out or empty is off):\n";
    for (const OperationParameter& parameter : descriptor->parameters)
        out << describeParameter(parameter);
    out << "\nWrites:\n  " << descriptor->outputs << '\n';
    return 0;
}

} // namespace zarvi
