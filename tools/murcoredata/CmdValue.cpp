// murcoredata value <literal> [<type>]: a value's type, literal form, bytes and hash.
//
// Reads integers (42, -9223372036854775808), reals (2.5, 1e300, .5, nan, inf, -inf),
// true and false, NULL, and the special keywords of documents (%null%, %missing%, ...).
// NULL and the keywords are specials of the type named by the second argument ("integer",
// "date", ...), or of the unknown type without one.

#include "ToolCommand.h"

#include "murcoredata/data/DataValue.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/parser/DataValueFormatter.h"

#include <QRegularExpression>

#include <cmath>
#include <cstring>

namespace {

using Special = DataValueTypes::Special;

struct Keyword
{
    const char* text;
    Special special;
};

// The keywords of the specials as documents write them.
const Keyword kSpecialKeywords[] = {
    {"%null%", Special::Null},           {"%all%", Special::All},         {"%wildcard%", Special::Wildcard},
    {"%skipped%", Special::Skipped},     {"%no-access%", Special::NoAccess}, {"%ragged%", Special::Ragged},
    {"%error%", Special::Error},         {"%many-values%", Special::ManyValues}, {"%missing%", Special::Missing},
};

QString KeywordOf(Special special)
{
    for (const Keyword& k : kSpecialKeywords)
        if (k.special == special)
            return QString::fromLatin1(k.text);
    return special == Special::None ? QStringLiteral("none") : QStringLiteral("(%1)").arg(int(special));
}

// A failure to read the input: the message and exit code 1.
int Unreadable(const QString& message)
{
    std::fprintf(stderr, "murcoredata value: %s\n", message.toUtf8().constData());
    return 1;
}

// Digits with an optional sign, as a 64-bit integer; false when out of range.
bool ReadInteger(const QString& text, long long& value)
{
    bool ok = false;
    value = text.toLongLong(&ok, 10);
    return ok;
}

enum class Read
{
    Value,     // `value` holds the value
    Special,   // `special` holds the special; the type comes from the second argument
    Unreadable // `why` says what went wrong
};

Read ReadLiteral(const QString& text, DataValue& value, Special& special, QString& why)
{
    static const QRegularExpression integerForm(QStringLiteral("^[+-]?[0-9]+$"));
    static const QRegularExpression realForm(
        QStringLiteral("^[+-]?([0-9]+\\.[0-9]*|\\.[0-9]+|[0-9]+)([eE][+-]?[0-9]+)?$"));

    for (const Keyword& k : kSpecialKeywords) {
        if (text == QLatin1String(k.text)) {
            special = k.special;
            return Read::Special;
        }
    }
    const QString lower = text.toLower();
    if (lower == QLatin1String("null")) {
        special = Special::Null;
        return Read::Special;
    }
    if (lower == QLatin1String("true") || lower == QLatin1String("false")) {
        value = DataValue(lower == QLatin1String("true"));
        return Read::Value;
    }
    if (lower == QLatin1String("nan") || lower == QLatin1String("+nan")) {
        value = DataValue::FromDouble(std::nan(""));
        return Read::Value;
    }
    if (lower == QLatin1String("-nan")) {
        value = DataValue::FromDouble(-std::nan(""));
        return Read::Value;
    }
    if (lower == QLatin1String("inf") || lower == QLatin1String("+inf") || lower == QLatin1String("-inf")) {
        value = DataValue::FromDouble(lower.startsWith(QLatin1Char('-')) ? -HUGE_VAL : HUGE_VAL);
        return Read::Value;
    }
    if (integerForm.match(text).hasMatch()) {
        long long n = 0;
        if (!ReadInteger(text, n)) {
            why = QStringLiteral("'%1' is beyond the 64-bit integers (-9223372036854775808 to 9223372036854775807)")
                      .arg(text);
            return Read::Unreadable;
        }
        value = DataValue(n);
        return Read::Value;
    }
    if (realForm.match(text).hasMatch()) {
        bool ok = false;
        const double d = text.toDouble(&ok);
        if (!ok || std::isinf(d)) {
            why = QStringLiteral("'%1' is beyond the range of a real").arg(text);
            return Read::Unreadable;
        }
        value = DataValue::FromDouble(d);
        return Read::Value;
    }
    why = QStringLiteral("cannot read '%1' as a value: expected an integer, a real, true, false, NULL or a "
                         "special keyword such as %null%")
              .arg(text);
    return Read::Unreadable;
}

QString Hex32(uint32_t n)
{
    return QStringLiteral("0x") + QString::number(n, 16).toUpper().rightJustified(8, QLatin1Char('0'));
}

void Print(const DataValue& value)
{
    const auto& names = DataValueFormatter::sDataTypeEncodings;
    PrintLine(QStringLiteral("type:    %1 (%2)")
                  .arg(names.Encode(value.GetType()).toQString(), DataValue::DataTypeToString(value.GetType()).toQString()));
    PrintLine(QStringLiteral("special: %1").arg(KeywordOf(value.GetSpecial())));
    if (value.GetSpecial() == Special::None || value.IsNull())
        PrintLine(QStringLiteral("literal: %1").arg(value.FormatAsLiteral().toQString()));
    else
        PrintLine(QStringLiteral("literal: (none: of the specials only NULL has one)"));
    if (value.HasPrecision() || value.HasScale())
        PrintLine(QStringLiteral("decimal: precision %1, scale %2").arg(value.GetPrecision()).arg(value.GetScale()));

    unsigned char bytes[sizeof(DataValue)];
    std::memcpy(bytes, static_cast<const void*>(&value), sizeof bytes);
    QString hex;
    for (size_t i = 0; i < sizeof bytes; ++i) {
        if (i == 4 || i == 8)
            hex += QLatin1String(" |");
        hex += QStringLiteral(" %1").arg(bytes[i], 2, 16, QLatin1Char('0'));
    }
    PrintLine(QStringLiteral("bytes:  ") + hex + QStringLiteral("   (type special precision scale | ordinal | payload)"));
    PrintLine(QStringLiteral("hash:    %1").arg(Hex32(value.Hash())));
}

int RunValue(const QStringList& args)
{
    if (args.isEmpty() || args.size() > 2)
        return UsageError("value", QStringLiteral("expected a literal and, for NULL and the special keywords, a type"));

    DataValue value;
    Special special = Special::None;
    QString why;
    const Read read = ReadLiteral(args[0], value, special, why);
    if (read == Read::Unreadable)
        return Unreadable(why);

    DataType type = DataType::Unknown;
    if (args.size() == 2) {
        if (read != Read::Special)
            return Unreadable(QStringLiteral("a type applies to NULL and the special keywords only, not to '%1'").arg(args[0]));
        if (!DataValueFormatter::sDataTypeEncodings.TryDecode(TString(args[1]), type))
            return Unreadable(QStringLiteral("'%1' names no type: expected integer, real, string, datetime, boolean, "
                                             "date, tuple, spatial, unknown, binary, time or table")
                                  .arg(args[1]));
    }

    try {
        if (read == Read::Special)
            value = DataValue(special, type);
        Print(value);
    } catch (const MurvaneException& e) {
        return Unreadable(e.GetMessagesFront().toQString());
    }
    return 0;
}

} // namespace

MUR_TOOL_COMMAND("value", "<literal> [<type>]", "prints a value's type, literal form, bytes and hash", &RunValue);
