// murcoredata lang <code>...: a language code in all its forms, and the way down its fallback
// chains to the supported language it ends at.

#include "ToolCommand.h"

#include "murcoredata/core/LanguageCode.h"
#include "murcoredata/core/LanguageUtils.h"

#include <algorithm>

namespace {

QString OrNone(const TString& text)
{
    return text.isEmpty() ? QStringLiteral("(none)") : text.toQString();
}

// Reads "0x0409" or "1033" as a locale id; false for anything else, which is a code.
bool ParseLcid(const QString& text, lcid& id)
{
    bool ok = false;
    if (text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        id = text.mid(2).toUInt(&ok, 16);
    else if (!text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); }))
        id = text.toUInt(&ok, 10);
    return ok;
}

void PrintChain(const TString& code)
{
    const SupportedLanguageTable& supported = LanguageUtilsInternal::GetSupportedLanguageTable();
    const auto& special = LanguageUtilsInternal::GetSpecialLocaleTable();
    const auto inSupported = supported.find(code);
    const auto inSpecial = special.find(code);
    const TString language = LanguageUtils::GetLanguageName(code);
    const auto languageRow = supported.find(language);

    PrintLine(QStringLiteral("chain:"));
    PrintLine(QStringLiteral("  1 supported table     %1")
                  .arg(inSupported != supported.end() ? inSupported->second.toQString() : QStringLiteral("(absent)")));
    QString specialText = QStringLiteral("(absent)");
    if (inSpecial != special.end()) {
        specialText = inSpecial->second.toQString();
        if (supported.count(inSpecial->second) == 0)
            specialText += QStringLiteral(" (not supported)");
    }
    PrintLine(QStringLiteral("  2 special table       %1").arg(specialText));
    PrintLine(QStringLiteral("  3 language %1 %2")
                  .arg(QStringLiteral("\"%1\"").arg(language.toQString()), -10)
                  .arg(languageRow != supported.end() ? languageRow->second.toQString() : QStringLiteral("(absent)")));
    PrintLine(QStringLiteral("  4 default             en_US-US"));
    PrintLine(QStringLiteral("closest supported       %1").arg(LanguageUtils::GetClosestSupportedLanguageCode(code).toQString()));
    PrintLine(QStringLiteral("closest special         %1").arg(LanguageUtils::GetClosestSpecialLocaleCode(code).toQString()));
    PrintLine(QStringLiteral("closest v2              %1").arg(LanguageUtils::GetClosestSupportedLanguageCodeV2(code).toQString()));
}

int RunLang(const QStringList& args)
{
    if (args.isEmpty())
        return UsageError("lang", QStringLiteral("expected a language code or a locale id"));
    for (int i = 0; i < args.size(); ++i) {
        if (i > 0)
            PrintLine(QString());
        const QString& arg = args[i];
        lcid id = 0;
        const bool byId = ParseLcid(arg, id);
        const LanguageCode language = byId ? LanguageCode(id) : LanguageCode(TString(arg));
        const TString code = byId ? LanguageUtils::GetLocaleStr(id) : TString(arg);

        PrintLine(QStringLiteral("input                   \"%1\"%2")
                      .arg(arg, byId ? QStringLiteral(" (locale id, code %1)").arg(code.toQString()) : QString()));
        PrintLine(QStringLiteral("iso                     %1").arg(OrNone(language.GetISOString())));
        PrintLine(QStringLiteral("market                  %1").arg(OrNone(language.GetMarketString())));
        PrintLine(QStringLiteral("full                    %1").arg(OrNone(language.GetFullString())));
        PrintLine(QStringLiteral("lcid                    %1 (%2)").arg(HexText(language.GetLCID(), 4)).arg(language.GetLCID()));
        PrintChain(code);
    }
    return 0;
}

} // namespace

MUR_TOOL_COMMAND("lang", "<code|lcid>...",
                 "a language code: its ISO, market and full strings, locale id and fallback chain", &RunLang);
