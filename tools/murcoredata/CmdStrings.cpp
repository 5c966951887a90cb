// murcoredata string <id> and murcoredata error <code>: the string table and the error records.

#include "ToolCommand.h"

#include "murcoredata/core/StringTable.h"
#include "murcoredata/foundation/MurErrorsError.h"

namespace {

// Reads "0x92B2281F", "92B2281F" or a decimal number; false when it is none.
bool ParseId(const QString& text, quint32& value)
{
    if (ParseUnsignedNumber(text, value))
        return true;
    bool ok = false;
    value = text.trimmed().toUInt(&ok, 16);
    return ok;
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
        PrintLine(QStringLiteral("%1: no such string (the look-up gives the empty text)")
                      .arg(HexText(id)));
        return 1;
    }
    PrintLine(QStringLiteral("id:      %1 (%2)").arg(HexText(id)).arg(qint32(id)));
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
        PrintLine(QStringLiteral("%1: no failure site has this code")
                      .arg(HexText(code)));
        return 1;
    }
    PrintLine(QStringLiteral("code: %1").arg(HexText(e->code)));
    PrintLine(QStringLiteral("name: %1").arg(QString::fromLatin1(e->name)));
    return 0;
}

} // namespace

MUR_TOOL_COMMAND("string", "<id>", "prints a string-table entry: id, key and English text", &RunString);
MUR_TOOL_COMMAND("error", "<code>", "prints the name of the failure site with that error code", &RunError);
