#pragma once

// Test support: catches what the logger hands to its sink while a ScopedLogCapture lives,
// then puts the previous sink and minimum severity back.

#include "murcoredata/foundation/TLog.h"

#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

struct CapturingSink : TLog::ISink
{
    std::mutex mutex;
    std::vector<std::pair<int, std::string>> lines; // plain messages, as UTF-8
    std::vector<std::pair<int, TString>> events;    // structured events, as JSON

    void WriteEvent(int severity, const TLog::Event& event) override
    {
        std::lock_guard<std::mutex> lock(mutex);
        events.emplace_back(severity, event.ToJson());
    }
    void WriteMessage(int severity, const TString& text, const TError::ErrorInfo*) override
    {
        std::lock_guard<std::mutex> lock(mutex);
        lines.emplace_back(severity, text.toStdString());
    }
};

class ScopedLogCapture
{
public:
    /// Keeps the logger's minimum severity.
    ScopedLogCapture() : ScopedLogCapture(TLog::Logger::Get().GetMinimumSeverity()) {}
    explicit ScopedLogCapture(int minimum)
        : sink(std::make_shared<CapturingSink>()), m_oldMinimum(TLog::Logger::Get().GetMinimumSeverity())
    {
        m_old = TLog::Logger::Get().SetSink(sink);
        TLog::Logger::Get().SetMinimumSeverity(minimum);
    }
    ~ScopedLogCapture()
    {
        TLog::Logger::Get().SetSink(m_old);
        TLog::Logger::Get().SetMinimumSeverity(m_oldMinimum);
    }
    ScopedLogCapture(const ScopedLogCapture&) = delete;
    ScopedLogCapture& operator=(const ScopedLogCapture&) = delete;

    std::vector<std::pair<int, std::string>> Lines() const
    {
        std::lock_guard<std::mutex> lock(sink->mutex);
        return sink->lines;
    }

    const std::shared_ptr<CapturingSink> sink;

private:
    std::shared_ptr<TLog::ISink> m_old;
    int m_oldMinimum;
};

} // namespace TestSupport
