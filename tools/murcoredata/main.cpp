// murcoredata: a command-line window onto the library, one sub-command a concept.

#include "ToolCommand.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

std::vector<ToolCommand>& Commands()
{
    static std::vector<ToolCommand> commands;
    return commands;
}

void PrintHelp()
{
    std::printf("usage: murcoredata <command> [arguments]\n\ncommands:\n");
    auto commands = Commands();
    std::sort(commands.begin(), commands.end(),
              [](const ToolCommand& a, const ToolCommand& b) { return std::strcmp(a.name, b.name) < 0; });
    for (const ToolCommand& c : commands) {
        const std::string head = std::string(c.name) + " " + c.usage;
        std::printf("  %-40s %s\n", head.c_str(), c.summary);
    }
}

} // namespace

bool RegisterToolCommand(const ToolCommand& command)
{
    Commands().push_back(command);
    return true;
}

void PrintLine(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    std::fwrite(utf8.constData(), 1, size_t(utf8.size()), stdout);
    std::fputc('\n', stdout);
}

QString HexText(quint64 value, int width)
{
    return QStringLiteral("0x") + QString::number(value, 16).toUpper().rightJustified(width, QLatin1Char('0'));
}

bool ParseUnsignedNumber(const QString& text, quint32& value)
{
    bool ok = false;
    const QString t = text.trimmed();
    if (t.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        value = t.mid(2).toUInt(&ok, 16);
    else
        value = t.toUInt(&ok, 10);
    return ok;
}

int UsageError(const char* commandName, const QString& message)
{
    for (const ToolCommand& c : Commands())
        if (std::strcmp(c.name, commandName) == 0)
            std::fprintf(stderr, "murcoredata %s: %s\nusage: murcoredata %s %s\n", commandName,
                         message.toUtf8().constData(), c.name, c.usage);
    return 2;
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments().mid(1);
    if (args.isEmpty() || args.front() == QLatin1String("--help") || args.front() == QLatin1String("-h")) {
        PrintHelp();
        return args.isEmpty() ? 2 : 0;
    }
    for (const ToolCommand& c : Commands())
        if (args.front() == QLatin1String(c.name))
            return c.run(args.mid(1));
    std::fprintf(stderr, "murcoredata: unknown command '%s'\n\n", args.front().toUtf8().constData());
    PrintHelp();
    return 2;
}
