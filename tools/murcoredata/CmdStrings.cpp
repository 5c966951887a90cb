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

int RunString(const QStringList& args)
{
    if (args.size() != 1)
        return UsageError("string", QStringLiteral("expected one string id"));
    quint32 id = 0;
    if (!ParseId(args[0], id))
        return UsageError("string", QStringLiteral("'%1' is not a number").arg(args[0]));
    const auto sid = CoreData::StringId(qint32(id));
    const TString key = CoreData::LookupStringKey(sid);
    if (key.isEmpty()) {
        PrintLine(QStringLiteral("0x%1: no such string (the look-up gives the empty text)")
                      .arg(QString::number(id, 16).toUpper().rightJustified(8, QLatin1Char('0'))));
        return 1;
    }
    PrintLine(QStringLiteral("id:      0x%1 (%2)").arg(QString::number(id, 16).toUpper().rightJustified(8, QLatin1Char('0'))).arg(qint32(id)));
    PrintLine(QStringLiteral("key:     %1").arg(key.toQString()));
    PrintLine(QStringLiteral("english: \"%1\"").arg(CoreData::LookupTStr(sid).toQString()));
    return 0;
}

int RunError(const QStringList& args)
{
    if (args.size() != 1)
        return UsageError("error", QStringLiteral("expected one error code"));
    quint32 code = 0;
    if (!ParseId(args[0], code))
        return UsageError("error", QStringLiteral("'%1' is not a number").arg(args[0]));
    const MurErrorsError::Entry* e = MurErrorsError::FindByCode(code);
    if (e == nullptr) {
        PrintLine(QStringLiteral("0x%1: no failure site has this code")
                      .arg(QString::number(code, 16).toUpper().rightJustified(8, QLatin1Char('0'))));
        return 1;
    }
    PrintLine(QStringLiteral("code: 0x%1").arg(QString::number(e->code, 16).toUpper().rightJustified(8, QLatin1Char('0'))));
    PrintLine(QStringLiteral("name: %1").arg(QString::fromLatin1(e->name)));
    return 0;
}

} // namespace

MUR_TOOL_COMMAND("string", "<id>", "prints a string-table entry: id, key and English text", &RunString);
MUR_TOOL_COMMAND("error", "<code>", "prints the name of the failure site with that error code", &RunError);
