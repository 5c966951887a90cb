#include "murcoredata/foundation/TLog.h"

#include <execinfo.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <sstream>
#include <thread>
#include <vector>

namespace TLog {

namespace {

TString JsonQuote(const TString& text)
{
    TString out(u"\"");
    for (char16_t c : text) {
        switch (c) {
        case u'"': out += TString(u"\\\""); break;
        case u'\\': out += TString(u"\\\\"); break;
        case u'\n': out += TString(u"\\n"); break;
        case u'\r': out += TString(u"\\r"); break;
        case u'\t': out += TString(u"\\t"); break;
        default:
            if (c < 0x20)
                out += TString(u"\\u") + TString::number(unsigned(c), 16, 4, u'0');
            else
                out += c;
        }
    }
    out += u'"';
    return out;
}

class StringValue final : public Value
{
public:
    explicit StringValue(const TString& text) : m_text(text) {}
    TString ToJson() const override { return JsonQuote(m_text); }

private:
    TString m_text;
};

class ObjectValue final : public Value
{
public:
    explicit ObjectValue(const ValueMap& members) : m_members(members.begin(), members.end())
    {
        std::sort(m_members.begin(), m_members.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
    }
    TString ToJson() const override
    {
        TString out(u"{");
        for (size_t i = 0; i < m_members.size(); ++i) {
            if (i > 0)
                out += u',';
            out += JsonQuote(m_members[i].first);
            out += u':';
            out += m_members[i].second ? m_members[i].second->ToJson() : TString(u"null");
        }
        out += u'}';
        return out;
    }

private:
    std::vector<std::pair<TString, ValuePtr>> m_members;
};

const char* SeverityName(int severity)
{
    switch (severity) {
    case Trace: return "trace";
    case Debug: return "debug";
    case Info: return "info";
    case Warning: return "warning";
    case Error: return "error";
    default: return severity > Error ? "fatal" : "log";
    }
}

// Writes warnings and above to standard error, one line each.
class StderrSink final : public ISink
{
public:
    void WriteEvent(int severity, const Event& event) override
    {
        if (severity >= Warning)
            Write(severity, event.ToJson());
    }
    void WriteMessage(int severity, const TString& text, const TError::ErrorInfo* info) override
    {
        if (severity < Warning)
            return;
        TString line = text;
        if (info != nullptr && info->GetError().GetCode() != 0)
            line += TString(u" [") + info->GetError().GetName() + u']';
        Write(severity, line);
    }

private:
    static void Write(int severity, const TString& text)
    {
        std::fprintf(stderr, "murcoredata %s: %s\n", SeverityName(severity), text.toStdString().c_str());
    }
};

} // namespace

Value::~Value() = default;
ISink::~ISink() = default;

ValuePtr Literal::String(const TString& text)
{
    return std::make_shared<StringValue>(text);
}

ValuePtr Object::Make(const ValueMap& members)
{
    return std::make_shared<ObjectValue>(members);
}

TString Event::ToJson() const
{
    return TString(u"{\"event\":") + JsonQuote(m_name) + TString(u",\"value\":") +
           (m_value ? m_value->ToJson() : TString(u"null")) + u'}';
}

struct Logger::State
{
    std::atomic<int> minimum{Info};
    std::mutex mutex;
    std::shared_ptr<ISink> sink = std::make_shared<StderrSink>();

    std::shared_ptr<ISink> CurrentSink()
    {
        std::lock_guard<std::mutex> lock(mutex);
        return sink;
    }
};

Logger::Logger() : m_state(new State) {}

Logger& Logger::Get()
{
    // Never destroyed: threads may log while the process exits.
    static Logger* logger = new Logger;
    return *logger;
}

bool Logger::IsEnabled(int severity) const
{
    return severity >= m_state->minimum.load(std::memory_order_relaxed);
}

void Logger::SetMinimumSeverity(int severity)
{
    m_state->minimum.store(severity, std::memory_order_relaxed);
}

int Logger::GetMinimumSeverity() const
{
    return m_state->minimum.load(std::memory_order_relaxed);
}

std::shared_ptr<ISink> Logger::SetSink(std::shared_ptr<ISink> sink)
{
    if (!sink)
        sink = std::make_shared<StderrSink>();
    std::lock_guard<std::mutex> lock(m_state->mutex);
    std::swap(m_state->sink, sink);
    return sink;
}

void Logger::Log(int severity, const Event& event)
{
    if (IsEnabled(severity))
        m_state->CurrentSink()->WriteEvent(severity, event);
}

void Logger::Log(int severity, const TString& text, const TError::ErrorInfo* info)
{
    if (IsEnabled(severity))
        m_state->CurrentSink()->WriteMessage(severity, text, info);
}

void LogMessage(int severity, const TString& name, const ValueMap& fields, int /*accessLevel*/)
{
    Logger& logger = Logger::Get();
    if (!logger.IsEnabled(severity))
        return;
    logger.Log(severity, Event(name, Object::Make(fields)));
}

} // namespace TLog

void LogMessage(const TString& text)
{
    TLog::Logger::Get().Log(TLog::Info, text);
}

void LogMessage(const TFormatString& text)
{
    TLog::Logger::Get().Log(TLog::Info, text.result());
}

void LogMessage(TLog::AnySeverity severity, const TFormatString& text)
{
    TLog::Logger::Get().Log(severity.value, text.result());
}

void LogMessage(TLog::AnySeverity severity, const TString& text, TError::ErrorInfo&& info)
{
    TLog::Logger::Get().Log(severity.value, text, &info);
}

TLog::ValueMap CaptureStackTraceForLogging(bool withStack)
{
    TLog::ValueMap fields;
    std::ostringstream id;
    id << std::this_thread::get_id();
    fields[TString(u"thread")] = TLog::Literal::String(TString::fromStdString(id.str()));
    if (withStack) {
        void* frames[48];
        const int n = backtrace(frames, 48);
        char** symbols = backtrace_symbols(frames, n);
        TString stack;
        // Frame 0 is this function.
        for (int i = 1; symbols != nullptr && i < n; ++i) {
            stack += TString::fromUtf8(symbols[i]);
            stack += u'\n';
        }
        std::free(symbols);
        fields[TString(u"stack")] = TLog::Literal::String(stack);
    }
    return fields;
}
