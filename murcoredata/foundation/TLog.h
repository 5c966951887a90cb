#pragma once

#include "murcoredata/foundation/MurvaneError.h"

#include <memory>
#include <unordered_map>

/// Structured logging. Severities are numbers; an event is a name and a value tree. Callers
/// ask `Logger::Get().IsEnabled(severity)` before they build anything, so a disabled level
/// costs one atomic load. Events go to a sink that the host may replace; the default sink
/// writes warnings and above to standard error.
namespace TLog {

enum Severity : int
{
    Trace = 0,
    Debug = 1,
    Info = 2,
    Warning = 3,
    Error = 4,
    Fatal = 5,
};

/// A severity of any level.
struct AnySeverity
{
    constexpr explicit AnySeverity(int level) : value(level) {}
    int value;
};

/// A severity below `Error`: a higher number is taken down to `Warning`.
struct NonErrorSeverity : AnySeverity
{
    constexpr explicit NonErrorSeverity(int level) : AnySeverity(level < Error ? level : int(Warning)) {}
};

/// A value of a structured event.
class MURCOREDATA_EXPORT Value
{
public:
    virtual ~Value();
    /// The value as JSON text.
    virtual TString ToJson() const = 0;
};

using ValuePtr = std::shared_ptr<Value>;
using ValueMap = std::unordered_map<TString, ValuePtr>;

namespace Literal {
MURCOREDATA_EXPORT ValuePtr String(const TString& text);
} // namespace Literal

namespace Object {
/// An object value; its members are written in key order, so the text is stable.
MURCOREDATA_EXPORT ValuePtr Make(const ValueMap& members);
} // namespace Object

/// One event: a name and its value.
class MURCOREDATA_EXPORT Event
{
public:
    Event(const TString& name, ValuePtr value) : m_name(name), m_value(std::move(value)) {}
    const TString& GetName() const { return m_name; }
    const ValuePtr& GetValue() const { return m_value; }
    /// {"event":name,"value":...}
    TString ToJson() const;

private:
    TString m_name;
    ValuePtr m_value;
};

/// Where log lines and events go. Called from any thread, possibly at once.
class MURCOREDATA_EXPORT ISink
{
public:
    virtual ~ISink();
    virtual void WriteEvent(int severity, const Event& event) = 0;
    virtual void WriteMessage(int severity, const TString& text, const TError::ErrorInfo* info) = 0;
};

/// The process-wide logger.
class MURCOREDATA_EXPORT Logger
{
public:
    static Logger& Get();

    bool IsEnabled(int severity) const;
    void SetMinimumSeverity(int severity);
    int GetMinimumSeverity() const;

    /// Replaces the sink; null restores the default one. Returns the sink that was in place.
    std::shared_ptr<ISink> SetSink(std::shared_ptr<ISink> sink);

    void Log(int severity, const Event& event);
    void Log(int severity, const TString& text, const TError::ErrorInfo* info = nullptr);

private:
    Logger();
    struct State;
    State* m_state;
};

/// Logs the event `name` with the fields of `fields` if `severity` is enabled; the value
/// tree is built only then. `accessLevel` is kept for sinks that filter on it.
MURCOREDATA_EXPORT void LogMessage(int severity, const TString& name, const ValueMap& fields, int accessLevel = 0);

} // namespace TLog

/// Plain log lines. Without a severity they go at `TLog::Info`.
MURCOREDATA_EXPORT void LogMessage(const TString& text);
MURCOREDATA_EXPORT void LogMessage(const TFormatString& text);
MURCOREDATA_EXPORT void LogMessage(TLog::AnySeverity severity, const TFormatString& text);
MURCOREDATA_EXPORT void LogMessage(TLog::AnySeverity severity, const TString& text, TError::ErrorInfo&& info);

/// The fields that describe where the caller is: "thread" always, and "stack" (one frame a
/// line) when `withStack` is true. Meant for failure paths only: walking the stack is slow.
MURCOREDATA_EXPORT TLog::ValueMap CaptureStackTraceForLogging(bool withStack);
