// murcoredata string <id> and murcoredata error <code>: the string table and the error records.

#include "ToolCommand.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/MurErrorsError.h"

namespace {

// Reads "0x92B2281F", "92B2281F" or a decimal number; false when it is none.
bool ParseId(const QString& text, quint32& value)
{
    bool ok = false;
    const QString t = text.trimmed();
    if (t.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        value = t.mid(2).toUInt(&ok, 16);
    else {
        value = t.toUInt(&ok, 10);
        if (!ok)
            value = t.toUInt(&ok, 16);
    }
    return ok;
}

QString Hex8(quint32 value)
{
    return QString::number(value, 16).toUpper().rightJustified(8, QLatin1Char('0'));
}

// The one numeric argument of a command; returns 0 on success, else the usage exit code.
int ReadOneNumber(const char* command, const QStringList& args, quint32& value)
{
    if (args.size() != 1)
        return UsageError(command, QStringLiteral("expected one number"));
    if (!ParseId(args[0], value))
        return UsageError(command, QStringLiteral("'%1' is not a number").arg(args[0]));
    return 0;
}

int RunString(const QStringList& args)
{
    quint32 id = 0;
    if (const int rc = ReadOneNumber("string", args, id))
        return rc;
    const auto sid = CoreData::StringId(qint32(id));
    const TString key = CoreData::LookupStringKey(sid);
    if (key.isEmpty()) {
        PrintLine(QStringLiteral("0x%1: no such string (the look-up gives the empty text)")
                      .arg(Hex8(id)));
        return 1;
    }
    PrintLine(QStringLiteral("id:      0x%1 (%2)").arg(Hex8(id)).arg(qint32(id)));
    PrintLine(QStringLiteral("key:     %1").arg(key.toQString()));
    PrintLine(QStringLiteral("english: \"%1\"").arg(CoreData::LookupTStr(sid).toQString()));
    return 0;
}

int RunError(const QStringList& args)
{
    quint32 code = 0;
    if (const int rc = ReadOneNumber("error", args, code))
        return rc;
    const MurErrorsError::Entry* e = MurErrorsError::FindByCode(code);
    if (e == nullptr) {
        PrintLine(QStringLiteral("0x%1: no failure site has this code")
                      .arg(Hex8(code)));
        return 1;
    }
    PrintLine(QStringLiteral("code: 0x%1").arg(Hex8(e->code)));
    PrintLine(QStringLiteral("name: %1").arg(QString::fromLatin1(e->name)));
    return 0;
}

} // namespace

MUR_TOOL_COMMAND("string", "<id>", "prints a string-table entry: id, key and English text", &RunString);
MUR_TOOL_COMMAND("error", "<code>", "prints the name of the failure site with that error code", &RunError);
