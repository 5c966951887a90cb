// murcoredata qname <text>: how the library reads a qualified name.

#include "ToolCommand.h"

#include "murcoredata/data/QualifiedName.h"

namespace {

// A component as a quoted text; units that would not show (controls, lone surrogates) are
// written as \uXXXX so that the line says exactly what the name holds.
QString Quoted(const TString& text)
{
    QString out(QLatin1Char('"'));
    const int n = text.length();
    for (int i = 0; i < n; ++i) {
        const char16_t unit = text[i];
        const bool pairedHigh = QChar::isHighSurrogate(unit) && i + 1 < n && QChar::isLowSurrogate(text[i + 1]);
        if (pairedHigh) {
            out += QChar(unit);
            out += QChar(text[++i]);
        } else if (unit < 0x20 || unit == 0x7F || QChar::isSurrogate(unit)) {
            out += QStringLiteral("\\u") + QString::number(unsigned(unit), 16).toUpper().rightJustified(4, QLatin1Char('0'));
        } else if (unit == u'"' || unit == u'\\') {
            out += QLatin1Char('\\');
            out += QChar(unit);
        } else {
            out += QChar(unit);
        }
    }
    return out + QLatin1Char('"');
}

int RunQName(const QStringList& args)
{
    if (args.size() != 1)
        return UsageError("qname", QStringLiteral("expected one text (quote it for the shell)"));
    const TString text(args[0]);
    try {
        const QualifiedName name = QualifiedName::ParseGlobal(text);
        const size_t n = name.GetNumberOfComponents();
        PrintLine(QStringLiteral("components:   %1").arg(qulonglong(n)));
        for (size_t i = 0; i < n; ++i)
            PrintLine(QStringLiteral("  [%1] %2").arg(qulonglong(i)).arg(Quoted(name.GetComponent(i))));
        PrintLine(QStringLiteral("bracket form: %1").arg(name.GetFullValue().toQString()));
        PrintLine(QStringLiteral("hash:         %1").arg(HexText(name.Hash())));
        if (name.IsEmpty())
            PrintLine(n == 0 ? QStringLiteral("empty:        yes, no components")
                             : QStringLiteral("empty:        yes, one empty component"));
        return 0;
    } catch (const QualifiedNameException& e) {
        const TError::ErrorInfo& info = e.GetErrorInfo();
        PrintLine(QStringLiteral("parse failed: %1").arg(e.GetMessagesFront().toQString()));
        PrintLine(QStringLiteral("code:         %1 (%2)").arg(HexText(info.GetError().GetCode()), info.GetError().GetName().toQString()));
        PrintLine(QStringLiteral("source:       %1, status %2").arg(int(info.GetSource())).arg(int(info.GetStatusCode())));
        return 1;
    }
}

} // namespace

MUR_TOOL_COMMAND("qname", "<text>", "parses a qualified name: components, bracket form and hash, or the failure", &RunQName);
