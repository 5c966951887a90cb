// murcoredata mask | split | hex | unhex | regex: the string helpers and the regular
// expressions, one text at a time.

#include "ToolCommand.h"

#include "murcoredata/core/ReStringParser.h"
#include "murcoredata/core/StringUtils.h"

namespace {

TString T(const QString& text)
{
    return TString(text);
}

int RunMask(const QStringList& args)
{
    if (args.size() != 1)
        return UsageError("mask", QStringLiteral("expected one text"));
    PrintLine(ObfuscateSecretsInString(T(args[0])).toQString());
    return 0;
}

int RunSplit(const QStringList& args)
{
    if (args.size() < 2 || args.size() > 3)
        return UsageError("split", QStringLiteral("expected a text, a separator and an optional quote"));
    try {
        const std::vector<TString> pieces = SplitString(T(args[0]), T(args[1]), args.size() == 3 ? T(args[2]) : TString());
        for (size_t i = 0; i < pieces.size(); ++i)
            PrintLine(QStringLiteral("%1: [%2]").arg(i).arg(pieces[i].toQString()));
        return 0;
    } catch (const MurvaneException& e) {
        PrintLine(QStringLiteral("error 0x%1: %2")
                      .arg(QString::number(e.GetErrorInfo().GetError().GetCode(), 16).toUpper())
                      .arg(e.GetMessagesFront().toQString()));
        return 1;
    }
}

int RunHex(const QStringList& args)
{
    if (args.size() != 1)
        return UsageError("hex", QStringLiteral("expected one text"));
    PrintLine(HexEncode(T(args[0])).toQString());
    return 0;
}

int RunUnhex(const QStringList& args)
{
    if (args.size() != 1)
        return UsageError("unhex", QStringLiteral("expected one text of the form x'...'"));
    TString out(u"(unchanged)");
    const bool ok = DecodeHexEncodedString(T(args[0]), out);
    PrintLine(QStringLiteral("%1: [%2]").arg(ok ? QStringLiteral("ok") : QStringLiteral("failed"), out.toQString()));
    return ok ? 0 : 1;
}

int RunRegex(const QStringList& args)
{
    if (args.size() < 2 || args.size() > 3)
        return UsageError("regex", QStringLiteral("expected a pattern, a text and optionally icu or xpressive"));
    RegExParserDefs engine = RegExParserDefs::ICU;
    if (args.size() == 3) {
        if (args[2] == QLatin1String("xpressive"))
            engine = RegExParserDefs::BoostXpressive;
        else if (args[2] != QLatin1String("icu"))
            return UsageError("regex", QStringLiteral("the engine is icu or xpressive, not '%1'").arg(args[2]));
    }
    try {
        ReStringParser parser(T(args[0]), true, engine);
        const TString text = T(args[1]);
        PrintLine(QStringLiteral("whole text matches: %1").arg(parser.match(text) ? "yes" : "no"));
        std::vector<ReStringParserMatches> matches;
        parser.searchAll(text, matches);
        for (const ReStringParserMatches& m : matches) {
            QStringList groups;
            for (const TString& g : m.groups)
                groups << QStringLiteral("[%1]").arg(g.toQString());
            PrintLine(QStringLiteral("match at %1 %2").arg(m.position).arg(groups.join(QLatin1Char(' '))).trimmed());
        }
        return 0;
    } catch (const MurvaneException& e) {
        PrintLine(QStringLiteral("error: %1").arg(e.GetMessagesFront().toQString()));
        return 1;
    }
}

} // namespace

MUR_TOOL_COMMAND("mask", "<text>", "masks passwords, tokens and keys in a text bound for a log", &RunMask);
MUR_TOOL_COMMAND("split", "<text> <separator> [quote]", "splits a text, skipping separators in the first quoted run", &RunSplit);
MUR_TOOL_COMMAND("hex", "<text>", "writes the hexadecimal form x'...' of the UTF-8 of a text", &RunHex);
MUR_TOOL_COMMAND("unhex", "<x'...'[z<suffix>]>", "decodes the hexadecimal form", &RunUnhex);
MUR_TOOL_COMMAND("regex", "<pattern> <text> [icu|xpressive]", "matches a text: whole match, then every match with its groups", &RunRegex);
