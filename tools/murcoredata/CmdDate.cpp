// murcoredata date <y-m-d[Th:m:s[.f]]>: a date-time value and its calendar readings.

#include "ToolCommand.h"

#include "murcoredata/data/DateTime.h"
#include "murcoredata/foundation/MurvaneError.h"

namespace {

struct Fields
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    double fraction = 0.0;
};

// Reads 1 to maxDigits ASCII digits at pos; false if there are none or too many.
bool ReadNumber(const QString& text, int& pos, int maxDigits, int& value)
{
    const int start = pos;
    long long v = 0;
    while (pos < text.size() && text[pos] >= QLatin1Char('0') && text[pos] <= QLatin1Char('9')) {
        if (pos - start == maxDigits)
            return false;
        v = v * 10 + (text[pos].unicode() - '0');
        ++pos;
    }
    value = int(v);
    return pos > start;
}

bool Expect(const QString& text, int& pos, char c)
{
    if (pos >= text.size() || text[pos] != QLatin1Char(c))
        return false;
    ++pos;
    return true;
}

// y-m-d, optionally followed by Th:m:s and a decimal fraction of the second. The fields are
// only read here; SetDateTime decides whether they make a date.
bool Parse(const QString& text, Fields& f)
{
    int pos = 0;
    if (!ReadNumber(text, pos, 9, f.year) || !Expect(text, pos, '-') || !ReadNumber(text, pos, 2, f.month) ||
        !Expect(text, pos, '-') || !ReadNumber(text, pos, 2, f.day))
        return false;
    if (pos == text.size())
        return true;
    if (!Expect(text, pos, 'T') || !ReadNumber(text, pos, 2, f.hour) || !Expect(text, pos, ':') ||
        !ReadNumber(text, pos, 2, f.minute) || !Expect(text, pos, ':') || !ReadNumber(text, pos, 2, f.second))
        return false;
    if (pos == text.size())
        return true;
    const int dot = pos;
    int digits = 0;
    if (!Expect(text, pos, '.') || !ReadNumber(text, pos, 9, digits) || pos != text.size())
        return false;
    f.fraction = text.mid(dot).toDouble(); // ".25" reads as 0.25
    return true;
}

QString Pad(long long v, int width)
{
    return QString::number(v).rightJustified(width, QLatin1Char('0'));
}

int RunDate(const QStringList& args)
{
    if (args.size() != 1)
        return UsageError("date", QStringLiteral("expected one date"));
    const QString text = args[0].trimmed();
    Fields f;
    if (!Parse(text, f)) {
        std::fprintf(stderr, "murcoredata date: '%s' is not a date of the form y-m-d or y-m-dTh:m:s[.fraction]\n",
                     args[0].toUtf8().constData());
        return 1;
    }
    DateTime value;
    try {
        value.SetDateTime(f.year, f.month, f.day, f.hour, f.minute, f.second, f.fraction);
    } catch (const MurvaneException& e) {
        std::fprintf(stderr, "murcoredata date: '%s': %s\n", text.toUtf8().constData(),
                     e.GetMessagesFront().toStdString().c_str());
        return 1;
    }

    static const char* const s_weekdays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
    const DateTime::YearMonthDay ymd = value.GetYearMonthDay();
    PrintLine(QStringLiteral("value:          %1-%2-%3T%4:%5:%6.%7")
                  .arg(Pad(ymd.year, 4), Pad(ymd.month, 2), Pad(ymd.day, 2), Pad(value.GetHour(), 2),
                       Pad(value.GetMinute(), 2))
                  .arg(Pad(value.GetSecond(), 2), Pad(value.GetRepresentation() % 10000, 4)));
    PrintLine(QStringLiteral("representation: %1").arg(value.GetRepresentation()));
    PrintLine(QStringLiteral("ole date:       %1").arg(QString::number(value.ToOleDate(), 'g', 15)));
    const int weekday = value.GetDayOfWeek();
    PrintLine(QStringLiteral("weekday:        %1 (%2)").arg(QLatin1String(s_weekdays[weekday - 1])).arg(weekday));
    PrintLine(QStringLiteral("iso 8601:       %1-W%2-%3")
                  .arg(Pad(value.GetISO8601Year(), 4))
                  .arg(Pad(value.GetISO8601Week(), 2))
                  .arg(value.GetISO8601DayOfWeek()));
    PrintLine(QStringLiteral("quarter:        %1 (iso quarter %2)").arg(value.GetQuarter()).arg(value.GetISO8601Quarter()));
    PrintLine(QStringLiteral("valid:          %1")
                  .arg(value.IsValid() ? QStringLiteral("yes") : QStringLiteral("no, beyond 9999-12-31T23:59:59")));
    return 0;
}

} // namespace

MUR_TOOL_COMMAND("date", "<y-m-d[Th:m:s[.f]]>",
                 "prints a date's representation, OLE date, weekday, ISO week date and quarter", &RunDate);
