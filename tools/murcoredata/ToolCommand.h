#pragma once

// The sub-commands of the murcoredata tool. Each lives in a file of its own and registers
// itself with MUR_TOOL_COMMAND, so a new command touches no other file.

#include <QStringList>

#include <cstdio>
#include <string>

struct ToolCommand
{
    const char* name;
    const char* usage;   // arguments, e.g. "<id>"
    const char* summary; // one line
    // Arguments after the command name; returns the exit code.
    int (*run)(const QStringList& args);
};

bool RegisterToolCommand(const ToolCommand& command);

// Prints UTF-8 text and a line break to standard output.
void PrintLine(const QString& text);
// "0x" and `value` in upper-case hexadecimal, zero-filled to `width` digits.
QString HexText(quint64 value, int width = 8);
// Reads "0x..." as hexadecimal and anything else as decimal; false when it is neither.
bool ParseUnsignedNumber(const QString& text, quint32& value);
// Prints a usage error for the command to standard error; returns 2.
int UsageError(const char* commandName, const QString& message);

#define MUR_TOOL_COMMAND_CAT2(a, b) a##b
#define MUR_TOOL_COMMAND_CAT(a, b) MUR_TOOL_COMMAND_CAT2(a, b)
#define MUR_TOOL_COMMAND(...) \
    static const bool MUR_TOOL_COMMAND_CAT(s_registered_, __LINE__) = RegisterToolCommand(ToolCommand{__VA_ARGS__})
