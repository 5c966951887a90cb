// murcoredata compare and murcoredata collator: string comparison under a collation, and the
// canonical collator names that locales and options lead to.

#include "ToolCommand.h"

#include "murcoredata/data/Collation.h"
#include "murcoredata/data/CollatorName.h"
#include "murcoredata/foundation/MurvaneError.h"

namespace {

// Prints a failure of the library: its message and the site's code.
int Failure(const MurvaneException& e)
{
    std::fflush(stdout);
    const MurvaneError& error = e.GetErrorInfo().GetError();
    std::fprintf(stderr, "error: %s (%s %s)\n", e.what(), HexText(error.GetCode()).toUtf8().constData(),
                 error.GetName().toStdString().c_str());
    return 1;
}

// The canonical form of a name as the user typed it: parts sorted, one a letter.
TString Canonical(const TString& name)
{
    if (name == TString(CollationType::s_binary))
        return name;
    std::vector<TString> parts = name.split(u'_', TString::KeepEmptyParts);
    if (name.isEmpty())
        parts.clear();
    CollatorNamePartsFromAttributes({}, parts);
    TString joined;
    for (const TString& part : parts)
        joined += (joined.isEmpty() ? TString() : TString(u"_")) + part;
    return joined;
}

// The collator name, out before anything the library logs while it builds the pool.
void PrintName(const TString& name)
{
    PrintLine(QStringLiteral("collator:  %1").arg(name.toQString()));
    std::fflush(stdout);
}

QString OrNone(const TString& text)
{
    return text.isEmpty() ? QStringLiteral("(none)") : text.toQString();
}

// What the pool behind a collation says about itself.
void PrintPool(const Collation& c)
{
    PrintLine(QStringLiteral("locale:    %1 (lcid %2)").arg(c.GetLocale().toQString(), HexText(c.GetPool()->GetLCID(), 4)));
    PrintLine(QStringLiteral("language:  %1, shown as %2%3")
                  .arg(OrNone(c.GetLanguage()), OrNone(c.GetDisplayLanguage()),
                       c.GetDisplayCountry().isEmpty() ? QString()
                                                       : QStringLiteral(" (%1)").arg(c.GetDisplayCountry().toQString())));
    PrintLine(QStringLiteral("cmpFlags:  %1, %2%3%4")
                  .arg(HexText(c.GetCmpFlags()))
                  .arg(c.IsCaseSensitive() ? QStringLiteral("case-sensitive") : QStringLiteral("case-insensitive"))
                  .arg(c.HasWordSort() ? QStringLiteral(", word sort") : QString())
                  .arg(c.IsWindowsSpecific() ? QStringLiteral(", Windows-specific") : QString()));
}

int RunCompare(const QStringList& args)
{
    QString name = QString::fromUtf16(CollationType::s_unknown);
    QStringList texts;
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--collation")) {
            if (++i == args.size())
                return UsageError("compare", QStringLiteral("--collation needs a name"));
            name = args[i];
        } else if (args[i].startsWith(QLatin1String("--collation="))) {
            name = args[i].mid(12);
        } else {
            texts << args[i];
        }
    }
    if (texts.size() != 2)
        return UsageError("compare", QStringLiteral("expected two texts"));

    try {
        const TString canonical = Canonical(TString(name));
        PrintName(canonical);
        const Collation c(canonical.constData());
        PrintPool(c);
        const TString a(texts[0]), b(texts[1]);
        const int r = c.Compare(a, b);
        const int sign = r < 0 ? -1 : (r > 0 ? 1 : 0);
        const char* relation = sign < 0 ? "<" : (sign > 0 ? ">" : "=");
        PrintLine(QStringLiteral("compare:   %1 (\"%2\" %3 \"%4\")").arg(sign).arg(texts[0], QLatin1String(relation), texts[1]));
        PrintLine(QStringLiteral("hash a:    %1").arg(HexText(c.Hash(a.constData()))));
        PrintLine(QStringLiteral("hash b:    %1").arg(HexText(c.Hash(b.constData()))));
    } catch (const MurvaneException& e) {
        return Failure(e);
    }
    return 0;
}

int RunCollator(const QStringList& args)
{
    if (args.isEmpty())
        return UsageError("collator", QStringLiteral("expected a locale or a locale id"));

    bool ignoreDigits = false, viaLcid = false, wordSort = false;
    quint32 flags = 0;
    auto caseOpt = Collation::CaseDefault;
    auto accentOpt = Collation::AccentDefault;
    auto sortOpt = Collation::SortDefault;
    auto punctOpt = Collation::PunctDefault;
    for (int i = 1; i < args.size(); ++i) {
        const QString& a = args[i];
        if (a == QLatin1String("--case=ignore"))
            caseOpt = Collation::CaseIgnore;
        else if (a == QLatin1String("--case=upper"))
            caseOpt = Collation::CaseUpperFirst;
        else if (a == QLatin1String("--case=lower"))
            caseOpt = Collation::CaseLowerFirst;
        else if (a == QLatin1String("--accent=ignore"))
            accentOpt = Collation::AccentIgnore;
        else if (a == QLatin1String("--sort=word")) {
            sortOpt = Collation::SortWord;
            wordSort = true;
        }
        else if (a == QLatin1String("--sort=identical"))
            sortOpt = Collation::SortIdentical;
        else if (a == QLatin1String("--punct=ignore"))
            punctOpt = Collation::PunctIgnore;
        else if (a == QLatin1String("--punct=quaternary"))
            punctOpt = Collation::PunctQuaternary;
        else if (a == QLatin1String("--ignore-digits"))
            ignoreDigits = true;
        else if (a == QLatin1String("--via-lcid"))
            viaLcid = true;
        else if (a.startsWith(QLatin1String("--flags=")) && ParseUnsignedNumber(a.mid(8), flags))
            continue;
        else
            return UsageError("collator", QStringLiteral("unknown option '%1'").arg(a));
    }

    try {
        TString name;
        quint32 lcid = 0;
        if (ParseUnsignedNumber(args[0], lcid)) {
            // A Windows-model identity: the locale id and comparison flags; id 1 is binary.
            name = lcid == LocaleIds::Binary ? TString(CollationType::s_binary) : MakeCollatorName(lcid, flags, wordSort);
        } else {
            const std::string locale = args[0].toStdString();
            name = viaLcid ? CollatorNameFromLocaleName(locale.c_str(), ignoreDigits, caseOpt, accentOpt, sortOpt, punctOpt)
                           : MakeICUCollatorName(locale, ignoreDigits, caseOpt, accentOpt, sortOpt, punctOpt);
        }
        PrintName(name);
        PrintPool(Collation(name.constData()));
    } catch (const MurvaneException& e) {
        return Failure(e);
    }
    return 0;
}

} // namespace

MUR_TOOL_COMMAND("compare", "[--collation <name>] <a> <b>",
                 "compares two texts under a collator name; prints the result and both hashes", &RunCompare);
MUR_TOOL_COMMAND("collator", "<locale|lcid> [--case=ignore|upper|lower] [--accent=ignore] [--sort=word|identical] "
                             "[--punct=ignore|quaternary] [--ignore-digits] [--via-lcid] [--flags=<n>]",
                 "prints the canonical collator name of a locale (or locale id) and options, and its pool", &RunCollator);
