#include "murcoredata/foundation/MurvaneError.h"

#include <cstring>

namespace {

std::string Utf8OfFirst(const std::vector<TString>& messages)
{
    return messages.empty() ? std::string() : messages.front().toStdString();
}

// "/home/u/src/murcoredata/data/X.cpp" -> "data/X.cpp": the path below the last folder
// named murcoredata, or the path as given when there is none.
std::string SourcePathBelowLibrary(const char* path)
{
    if (path == nullptr)
        return std::string();
    const std::string p(path);
    const std::string marker = "murcoredata/";
    const size_t at = p.rfind(marker);
    if (at == std::string::npos || (at > 0 && p[at - 1] != '/'))
        return p;
    return p.substr(at + marker.size());
}

} // namespace

MurvaneException::MurvaneException(const TStringCore& message, const TError::ErrorInfo& info)
    : m_messages{TString(message)}, m_info(info), m_what(Utf8OfFirst(m_messages))
{
}

MurvaneException::MurvaneException(const TFormatStringCore& message, const TError::ErrorInfo& info)
    : m_messages{message.result()}, m_info(info), m_what(Utf8OfFirst(m_messages))
{
}

MurvaneException::~MurvaneException() = default;

TString MurvaneException::GetMessagesFront() const
{
    return m_messages.empty() ? TString() : m_messages.front();
}

TString MurvaneException::GetConcatenatedMessages() const
{
    TString all;
    for (size_t i = 0; i < m_messages.size(); ++i) {
        if (i > 0)
            all += u'\n';
        all += m_messages[i];
    }
    return all;
}

TString MurvaneException::CollateMessagesForLog() const
{
    const MurvaneError& error = m_info.GetError();
    TString text = GetConcatenatedMessages();
    if (error.GetCode() != 0 || !error.GetName().isEmpty()) {
        text += TString(u" [");
        text += error.GetName();
        text += TString(u" code 0x") + TString::number(error.GetCode(), 16, 8, u'0').toUpper();
        text += TString(u" source ") + TString::number(int(m_info.GetSource()));
        text += TString(u" status ") + TString::number(int(m_info.GetStatusCode())) + u']';
    }
    return text;
}

void MurvaneException::AddMessage(const TString& message)
{
    m_messages.push_back(message);
    if (m_messages.size() == 1)
        m_what = Utf8OfFirst(m_messages);
}

MurvaneException* MurvaneException::Clone() const
{
    return new MurvaneException(*this);
}

void MurvaneException::Throw() const
{
    throw MurvaneException(*this);
}

void ThrowLogicException(const char* sourcePath, int line, const char* conditionText, const MurvaneError& error)
{
    const TString message = TString::fromUtf8(SourcePathBelowLibrary(sourcePath).c_str()) + TString(u"(") +
                            TString::number(line) + TString(u"): logic assertion failed: ") +
                            TString::fromUtf8(conditionText ? conditionText : "");
    throw LogicException(message, TError::ErrorInfo(error));
}

void ThrowLogicException(const char* sourcePath, int line, const char* conditionText)
{
    ThrowLogicException(sourcePath, line, conditionText, MurvaneError());
}
