// murcoredata value <literal> [<type or collation>]: a value's type, literal form, bytes and
// hash.
//
// Reads
//   integers (42, -9223372036854775808), reals (2.5, 1e300, .5, nan, inf, -inf), true, false;
//   NULL and the special keywords of documents (%null%, %missing%, ...), which are specials
//     of the type named by the second argument ("integer", "date", ...), or of the unknown
//     type without one;
//   strings in double or single quotes ("it""s", 'it''s'), under the collator named by the
//     second argument (LEN_RUS, LEN_RUS_S2, binary, ...) or the unknown collation;
//   dates and date-times between "#" (#2021-03-04#, #2021-03-04 10:20:30.25#) and times of
//     day (10:20:30, 10:20:30.000001);
//   tuples in parentheses, of any of these forms, nested: (1, "a", (#2021-03-04#, NULL));
//   shapes as spatial literals (GEOMETRY('POINT (1 2)'), GEOGRAPHY('POINT (1 2)'),
//     GEOMETRY()) or as plain well-known text with the type "spatial", "geometry" or
//     "geography" as the second argument.

#include "ToolCommand.h"

#include "murcoredata/data/DataValue.h"
#include "murcoredata/data/Tuple.h"
#include "murcoredata/foundation/MurvaneError.h"
#include "murcoredata/parser/DataValueFormatter.h"
#include "murgeo/Serialization.h"

#include <QRegularExpression>

#include <cmath>
#include <cstring>

namespace {

using Special = DataValueTypes::Special;
using SpatialPointer = std::shared_ptr<const murgeo::Spatial>;

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
    std::fflush(stdout);
    std::fprintf(stderr, "murcoredata value: %s\n", message.toUtf8().constData());
    return 1;
}

const QString kExpected = QStringLiteral(
    "expected an integer, a real, true, false, NULL, a special keyword such as %null%, a string in quotes, a date "
    "such as #2021-03-04#, a time such as 10:20:30, a tuple in parentheses or a spatial literal such as "
    "GEOMETRY('POINT (1 2)')");

//===----------------------------------------------------------------------===//
// The reader: one scanner over the whole text, so that tuples can hold any form.
//===----------------------------------------------------------------------===//

class LiteralReader
{
public:
    explicit LiteralReader(const QString& text) : m_text(text) {}

    // The whole text as one value; false with `why` set when it is not one.
    bool ReadAll(DataValue& value, QString& why)
    {
        SkipSpaces();
        if (!ReadValue(value, /*inTuple=*/false))
            return Fail(why);
        SkipSpaces();
        if (m_pos != m_text.size()) {
            m_why = QStringLiteral("unexpected '%1' after the value").arg(m_text.mid(m_pos));
            return Fail(why);
        }
        return true;
    }

private:
    bool Fail(QString& why) const
    {
        why = m_why.isEmpty() ? QStringLiteral("cannot read '%1' as a value: %2").arg(m_text, kExpected) : m_why;
        return false;
    }

    bool AtEnd() const { return m_pos >= m_text.size(); }
    QChar Peek() const { return AtEnd() ? QChar() : m_text[m_pos]; }
    void SkipSpaces()
    {
        while (!AtEnd() && m_text[m_pos].isSpace())
            ++m_pos;
    }
    bool StartsWithKeyword(const char* keyword) const
    {
        return m_text.midRef(m_pos, int(std::strlen(keyword))).compare(QLatin1String(keyword), Qt::CaseInsensitive) == 0;
    }

    bool ReadValue(DataValue& value, bool inTuple)
    {
        const QChar c = Peek();
        if (c == QLatin1Char('"') || c == QLatin1Char('\''))
            return ReadString(value);
        if (c == QLatin1Char('#'))
            return ReadDate(value);
        if (c == QLatin1Char('('))
            return ReadTuple(value);
        if (StartsWithKeyword("GEOMETRY") || StartsWithKeyword("GEOGRAPHY"))
            return ReadSpatial(value);
        return ReadBare(value, inTuple);
    }

    // Between quotes of one kind, that quote doubled inside.
    bool ReadQuoted(QString& text)
    {
        const QChar quote = m_text[m_pos++];
        while (!AtEnd()) {
            const QChar c = m_text[m_pos++];
            if (c != quote) {
                text += c;
            } else if (Peek() == quote) {
                text += c;
                ++m_pos;
            } else {
                return true;
            }
        }
        m_why = QStringLiteral("the string has no closing %1").arg(quote);
        return false;
    }

    bool ReadString(DataValue& value)
    {
        QString text;
        if (!ReadQuoted(text))
            return false;
        value = DataValue::FromString(TString(text));
        return true;
    }

    // #y-m-d#, #y-m-d h:m:s[.f]# (or T between), #h:m:s[.f]#.
    bool ReadDate(DataValue& value)
    {
        const int close = m_text.indexOf(QLatin1Char('#'), m_pos + 1);
        if (close < 0) {
            m_why = QStringLiteral("the date has no closing #");
            return false;
        }
        const QString body = m_text.mid(m_pos + 1, close - m_pos - 1).trimmed();
        m_pos = close + 1;
        static const QRegularExpression dateForm(QStringLiteral(
            "^([0-9]{1,4})-([0-9]{1,2})-([0-9]{1,2})(?:[ T]([0-9]{1,2}):([0-9]{1,2}):([0-9]{1,2})(\\.[0-9]+)?)?$"));
        const QRegularExpressionMatch m = dateForm.match(body);
        if (!m.hasMatch())
            return ReadTimeText(body, value) || Why(QStringLiteral("'#%1#' is no date: expected #yyyy-mm-dd# or "
                                                                   "#yyyy-mm-dd hh:mm:ss[.fff]#")
                                                        .arg(body));
        const bool hasTime = !m.captured(4).isEmpty();
        try {
            const DateTime dt(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt(), m.captured(4).toInt(),
                              m.captured(5).toInt(), m.captured(6).toInt(),
                              m.captured(7).isEmpty() ? 0.0 : m.captured(7).toDouble());
            value = DataValue(dt, hasTime ? DataType::DateTime : DataType::Date);
        } catch (const MurvaneException& e) {
            return Why(QStringLiteral("'#%1#' is no date: %2").arg(body, e.GetMessagesFront().toQString()));
        }
        return true;
    }

    // h:m:s with an optional decimal fraction of the second.
    bool ReadTimeText(const QString& text, DataValue& value)
    {
        static const QRegularExpression timeForm(QStringLiteral("^([0-9]{1,2}):([0-9]{1,2}):([0-9]{1,2})(\\.[0-9]+)?$"));
        const QRegularExpressionMatch m = timeForm.match(text);
        if (!m.hasMatch())
            return false;
        try {
            const Time t(m.captured(1).toUInt(), m.captured(2).toUInt(), m.captured(3).toUInt(),
                         m.captured(4).isEmpty() ? 0.0 : m.captured(4).toDouble());
            value = DataValue(t, DataType::Time);
        } catch (const MurvaneException& e) {
            m_why = QStringLiteral("'%1' is no time of day: %2").arg(text, e.GetMessagesFront().toQString());
            return false;
        }
        return true;
    }

    bool ReadTuple(DataValue& value)
    {
        ++m_pos; // (
        std::vector<DataValue> members;
        SkipSpaces();
        if (Peek() != QLatin1Char(')')) {
            for (;;) {
                DataValue member;
                SkipSpaces();
                if (!ReadValue(member, /*inTuple=*/true))
                    return false;
                members.push_back(std::move(member));
                SkipSpaces();
                if (Peek() == QLatin1Char(','))
                    ++m_pos;
                else
                    break;
            }
        }
        if (AtEnd())
            return Why(QStringLiteral("the tuple has no closing )"));
        if (Peek() != QLatin1Char(')'))
            return Why(QStringLiteral("the tuple has no closing ) where '%1' stands").arg(m_text.mid(m_pos)));
        ++m_pos;
        value = DataValue(makeRefCnt<Tuple>(std::move(members)));
        return true;
    }

    // GEOMETRY('wkt'), GEOGRAPHY('wkt'), GEOMETRY(), GEOGRAPHY(), the keyword in any case.
    bool ReadSpatial(DataValue& value)
    {
        const bool geography = StartsWithKeyword("GEOGRAPHY");
        m_pos += geography ? 9 : 8;
        SkipSpaces();
        if (Peek() != QLatin1Char('('))
            return Why(QStringLiteral("a spatial literal is GEOMETRY('...') or GEOGRAPHY('...')"));
        ++m_pos;
        SkipSpaces();
        QString wkt;
        if (Peek() == QLatin1Char('\'') || Peek() == QLatin1Char('"')) {
            if (!ReadQuoted(wkt))
                return false;
            SkipSpaces();
        }
        if (Peek() != QLatin1Char(')'))
            return Why(QStringLiteral("a spatial literal is GEOMETRY('...') or GEOGRAPHY('...')"));
        ++m_pos;
        SpatialPointer spatial;
        if (wkt.trimmed().isEmpty())
            spatial = geography ? SpatialPointer(murgeo::DefaultGeography()) : SpatialPointer(murgeo::DefaultGeometry());
        else
            spatial = ReadWkt(wkt, geography ? QStringLiteral("geography") : QStringLiteral("geometry"));
        if (!spatial)
            return Why(QStringLiteral("'%1' is no %2 in well-known text").arg(wkt, geography ? QStringLiteral("geography")
                                                                                          : QStringLiteral("geometry")));
        value = DataValue(spatial);
        return true;
    }

public:
    // Well-known text as a shape of the named kind ("spatial" lets the coordinates decide);
    // empty when the text is not one.
    static SpatialPointer ReadWkt(const QString& wkt, const QString& kind)
    {
        const std::string text = wkt.toStdString();
        try {
            if (kind == QLatin1String("geometry")) {
                SpatialPointer s(murgeo::WktSerialization::Read(text, murgeo::CoordinateType::Geometry));
                return s && s->IsGeometry() ? s : nullptr;
            }
            SpatialPointer s(murgeo::WktSerialization::Read(text, murgeo::CoordinateType::Automatic));
            if (!s || s->IsUnknown() || (kind == QLatin1String("geography") && !s->IsGeography()))
                return nullptr;
            return s;
        } catch (const std::exception&) {
            return nullptr;
        }
    }

private:
    // Numbers, booleans, NULL, the special keywords and times: up to "," or ")" in a tuple.
    bool ReadBare(DataValue& value, bool inTuple)
    {
        const int start = m_pos;
        while (!AtEnd() && !(inTuple && (Peek() == QLatin1Char(',') || Peek() == QLatin1Char(')'))))
            ++m_pos;
        const QString text = m_text.mid(start, m_pos - start).trimmed();
        if (text.isEmpty())
            return Why(inTuple ? QStringLiteral("a member of the tuple is missing") : QStringLiteral("no value given"));
        Special special = Special::None;
        if (ReadSpecialKeyword(text, special)) {
            // Inside a tuple a special has no type argument: it is of the unknown type.
            value = DataValue(special, DataType::Unknown);
            return true;
        }
        return ReadScalar(text, value);
    }

    bool Why(const QString& why)
    {
        m_why = why;
        return false;
    }

    bool ReadScalar(const QString& text, DataValue& value)
    {
        static const QRegularExpression integerForm(QStringLiteral("^[+-]?[0-9]+$"));
        static const QRegularExpression realForm(
            QStringLiteral("^[+-]?([0-9]+\\.[0-9]*|\\.[0-9]+|[0-9]+)([eE][+-]?[0-9]+)?$"));
        const QString lower = text.toLower();
        if (lower == QLatin1String("true") || lower == QLatin1String("false")) {
            value = DataValue(lower == QLatin1String("true"));
            return true;
        }
        if (lower == QLatin1String("nan") || lower == QLatin1String("+nan")) {
            value = DataValue::FromDouble(std::nan(""));
            return true;
        }
        if (lower == QLatin1String("-nan")) {
            value = DataValue::FromDouble(-std::nan(""));
            return true;
        }
        if (lower == QLatin1String("inf") || lower == QLatin1String("+inf") || lower == QLatin1String("-inf")) {
            value = DataValue::FromDouble(lower.startsWith(QLatin1Char('-')) ? -HUGE_VAL : HUGE_VAL);
            return true;
        }
        if (integerForm.match(text).hasMatch()) {
            bool ok = false;
            const long long n = text.toLongLong(&ok, 10);
            if (!ok)
                return Why(QStringLiteral("'%1' is beyond the 64-bit integers (-9223372036854775808 to "
                                          "9223372036854775807)")
                               .arg(text));
            value = DataValue(n);
            return true;
        }
        if (realForm.match(text).hasMatch()) {
            bool ok = false;
            const double d = text.toDouble(&ok);
            if (!ok || std::isinf(d))
                return Why(QStringLiteral("'%1' is beyond the range of a real").arg(text));
            value = DataValue::FromDouble(d);
            return true;
        }
        if (ReadTimeText(text, value))
            return true;
        if (m_why.isEmpty())
            m_why = QStringLiteral("cannot read '%1' as a value: %2").arg(text, kExpected);
        return false;
    }

public:
    // NULL (in any case) and the keywords of documents.
    static bool ReadSpecialKeyword(const QString& text, Special& special)
    {
        for (const Keyword& k : kSpecialKeywords) {
            if (text == QLatin1String(k.text)) {
                special = k.special;
                return true;
            }
        }
        if (text.compare(QLatin1String("null"), Qt::CaseInsensitive) == 0) {
            special = Special::Null;
            return true;
        }
        return false;
    }

private:
    const QString m_text;
    int m_pos = 0;
    QString m_why;
};

//===----------------------------------------------------------------------===//
// Printing
//===----------------------------------------------------------------------===//

QString TypeName(DataType type)
{
    return QStringLiteral("%1 (%2)")
        .arg(DataValueFormatter::sDataTypeEncodings.Encode(type).toQString(), DataValue::DataTypeToString(type).toQString());
}

// The header in bytes, and the payload unless it is the address of an object, which changes
// from run to run.
void PrintBytes(const DataValue& value, const QString& indent)
{
    unsigned char bytes[sizeof(DataValue)];
    std::memcpy(bytes, static_cast<const void*>(&value), sizeof bytes);
    QString hex;
    for (size_t i = 0; i < 8; ++i) {
        if (i == 4)
            hex += QLatin1String(" |");
        hex += QStringLiteral(" %1").arg(bytes[i], 2, 16, QLatin1Char('0'));
    }
    static const char* const kObjects[] = {nullptr, nullptr, "StringWithCollation", nullptr, nullptr, nullptr,
                                           "Tuple", "box of the shape", nullptr, "BinaryDataValue"};
    const unsigned type = unsigned(value.GetType());
    if (type < 10 && kObjects[type] != nullptr && value.GetAny() != 0) {
        hex += QStringLiteral(" | (address of the %1)").arg(QLatin1String(kObjects[type]));
    } else {
        hex += QLatin1String(" |");
        for (size_t i = 8; i < sizeof bytes; ++i)
            hex += QStringLiteral(" %1").arg(bytes[i], 2, 16, QLatin1Char('0'));
    }
    PrintLine(indent + QStringLiteral("bytes:  ") + hex + QStringLiteral("   (type special precision scale | ordinal | payload)"));
}

QString LiteralOf(const DataValue& value)
{
    if (value.GetSpecial() != Special::None && !value.IsNull())
        return KeywordOf(value.GetSpecial());
    if (value.GetType() == DataType::Tuple)
        return QStringLiteral("(tuple)");
    return value.FormatAsLiteral().toQString();
}

void Print(const DataValue& value, const QString& indent = QString())
{
    PrintLine(indent + QStringLiteral("type:    %1").arg(TypeName(value.GetType())));
    PrintLine(indent + QStringLiteral("special: %1").arg(KeywordOf(value.GetSpecial())));
    if (value.GetSpecial() != Special::None && !value.IsNull())
        PrintLine(indent + QStringLiteral("literal: (none: of the specials only NULL has one)"));
    else if (value.GetType() == DataType::Tuple)
        PrintLine(indent + QStringLiteral("literal: (none: tuples have no literal; their members follow)"));
    else if (value.GetType() == DataType::Time)
        PrintLine(indent + QStringLiteral("literal: (none: times of day have no literal)"));
    else
        PrintLine(indent + QStringLiteral("literal: %1").arg(value.FormatAsLiteral().toQString()));
    if (value.HasPrecision() || value.HasScale())
        PrintLine(indent + QStringLiteral("decimal: precision %1, scale %2").arg(value.GetPrecision()).arg(value.GetScale()));

    if (value.GetSpecial() == Special::None) {
        switch (value.GetType()) {
        case DataType::String: {
            const Collation& collation = value.GetCollation();
            PrintLine(indent + QStringLiteral("collation: %1 (locale %2%3)")
                                   .arg(collation.GetName().toQString(), collation.GetLocale().toQString(),
                                        collation.IsCaseSensitive() ? QString() : QStringLiteral(", case-insensitive")));
            PrintLine(indent + QStringLiteral("text:    %1 UTF-16 units").arg(value.GetString().size()));
            break;
        }
        case DataType::Date:
        case DataType::DateTime:
            PrintLine(indent + QStringLiteral("ticks:   %1 (1/10000 s since day 0; day %2)")
                                   .arg(value.GetAny())
                                   .arg(value.GetAny() / DateTime::s_scaling));
            break;
        case DataType::Time:
            PrintLine(indent + QStringLiteral("time:    %1 microseconds since midnight").arg(value.GetAny()));
            break;
        case DataType::Spatial: {
            const SpatialPointer spatial = value.GetSpatial();
            PrintLine(indent + QStringLiteral("shape:   %1, %2")
                                   .arg(QString::fromStdString(murgeo::to_string(spatial->GetShapeType())),
                                        spatial->IsGeography() ? QStringLiteral("geography") : QStringLiteral("geometry")));
            PrintLine(indent + QStringLiteral("wkt:     %1")
                                   .arg(QString::fromStdString(murgeo::WktSerialization::Write(*spatial, -2))));
            break;
        }
        case DataType::Integer:
        case DataType::Real:
        case DataType::Boolean:
        case DataType::Tuple:
        case DataType::Unknown:
        case DataType::Binary:
        case DataType::Table:
            break;
        }
    }

    PrintBytes(value, indent);
    PrintLine(indent + QStringLiteral("hash:    %1").arg(HexText(value.Hash())));

    if (value.GetType() == DataType::Tuple && value.GetSpecial() == Special::None) {
        const RefCntPtr<Tuple> tuple = value.GetTuple();
        PrintLine(indent + QStringLiteral("members: %1").arg(tuple->GetSize()));
        for (unsigned int i = 0; i < tuple->GetSize(); ++i) {
            const DataValue& member = tuple->GetDataValue(i);
            PrintLine(indent + QStringLiteral("  [%1] %2").arg(i).arg(LiteralOf(member)));
            Print(member, indent + QStringLiteral("      "));
        }
    }
}

// NULL and the special keywords take a type; a string takes a collator name; plain
// well-known text takes the kind of shape.
int RunValue(const QStringList& args)
{
    if (args.isEmpty() || args.size() > 2)
        return UsageError("value", QStringLiteral("expected a literal and, for NULL and the special keywords, a type; "
                                                  "for a string, a collator name; for well-known text, spatial, "
                                                  "geometry or geography"));
    const QString& text = args[0];
    const QString second = args.size() == 2 ? args[1] : QString();

    try {
        Special special = Special::None;
        if (LiteralReader::ReadSpecialKeyword(text.trimmed(), special)) {
            DataType type = DataType::Unknown;
            if (!second.isEmpty() && !DataValueFormatter::sDataTypeEncodings.TryDecode(TString(second), type))
                return Unreadable(QStringLiteral("'%1' names no type: expected integer, real, string, datetime, "
                                                 "boolean, date, tuple, spatial, unknown, binary, time or table")
                                      .arg(second));
            Print(DataValue(special, type));
            return 0;
        }

        if (!second.isEmpty() && (second == QLatin1String("spatial") || second == QLatin1String("geometry") ||
                                  second == QLatin1String("geography"))) {
            const SpatialPointer spatial = LiteralReader::ReadWkt(text, second);
            if (!spatial)
                return Unreadable(QStringLiteral("'%1' is no %2 in well-known text").arg(text, second));
            Print(DataValue(spatial));
            return 0;
        }

        DataValue value;
        QString why;
        LiteralReader reader(text);
        if (!reader.ReadAll(value, why)) {
            if (second.isEmpty() && LiteralReader::ReadWkt(text, QStringLiteral("spatial")))
                why += QStringLiteral(" (plain well-known text takes the type spatial, geometry or geography)");
            return Unreadable(why);
        }
        if (!second.isEmpty()) {
            if (value.GetType() != DataType::String)
                return Unreadable(QStringLiteral("a second argument applies to NULL and the special keywords (a type), "
                                                 "to strings (a collator name) and to well-known text (spatial, "
                                                 "geometry or geography), not to '%1'")
                                      .arg(text));
            // The collator's pool is made here; a name it cannot read fails with its record.
            value = DataValue(Collation(TString(second).constData()), value.GetString());
        }
        Print(value);
    } catch (const MurvaneException& e) {
        return Unreadable(e.GetMessagesFront().toQString());
    }
    return 0;
}

} // namespace

MUR_TOOL_COMMAND("value", "<literal> [<type> | <collator> | spatial]",
                 "prints a value's type, literal form, bytes and hash (numbers, strings, dates, tuples, shapes)",
                 &RunValue);
