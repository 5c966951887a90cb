#pragma once

#include "murcoredata/foundation/TFormatString.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

/// An error record: the 32-bit code of one failure site and its name, for example
/// 0x5F1F5407 and "MurvaneException_QualifiedNameParseException_0x5F1F5407". Made only by
/// the generated functions of `MurErrorsError` (through `MakeError`).
class MURCOREDATA_EXPORT MurvaneError
{
public:
    MurvaneError() = default;
    static MurvaneError MakeError(uint32_t code, const TStringCore& name) { return MurvaneError(code, name); }

    uint32_t GetCode() const { return m_code; }
    TString GetName() const { return TString(m_name); }

    friend bool operator==(const MurvaneError& a, const MurvaneError& b) { return a.m_code == b.m_code; }
    friend bool operator!=(const MurvaneError& a, const MurvaneError& b) { return a.m_code != b.m_code; }

private:
    MurvaneError(uint32_t code, const TStringCore& name) : m_code(code), m_name(name) {}

    uint32_t m_code = 0;
    TStringCore m_name;
};

namespace grpc {
/// The status codes of the RPC layer that errors are reported with.
enum class StatusCode : int
{
    OK = 0,
    CANCELLED = 1,
    UNKNOWN = 2,
    INVALID_ARGUMENT = 3,
    DEADLINE_EXCEEDED = 4,
    NOT_FOUND = 5,
    ALREADY_EXISTS = 6,
    PERMISSION_DENIED = 7,
    RESOURCE_EXHAUSTED = 8,
    FAILED_PRECONDITION = 9,
    ABORTED = 10,
    OUT_OF_RANGE = 11,
    UNIMPLEMENTED = 12,
    INTERNAL = 13,
    UNAVAILABLE = 14,
    DATA_LOSS = 15,
    UNAUTHENTICATED = 16,
};
} // namespace grpc

namespace TError {

/// Which layer a failure is reported for. Only the numbers matter to stored state; the
/// library's own failures use `CoreData` (4) unless a site says otherwise.
enum class ErrorSource : int
{
    Platform = 1,
    DataType = 2,
    CoreData = 4,
    QualifiedName = 6,
};

/// What an exception carries besides its message: the site's error record, the layer and
/// the status code. The default is no record, source 4 and status 2 (UNKNOWN).
class MURCOREDATA_EXPORT ErrorInfo
{
public:
    ErrorInfo() = default;
    ErrorInfo(const MurvaneError& error, ErrorSource source = ErrorSource::CoreData,
              grpc::StatusCode status = grpc::StatusCode::UNKNOWN)
        : m_error(error), m_source(source), m_status(status)
    {
    }
    ErrorInfo(const MurvaneError& error, int source, int status)
        : ErrorInfo(error, ErrorSource(source), grpc::StatusCode(status))
    {
    }

    const MurvaneError& GetError() const { return m_error; }
    ErrorSource GetSource() const { return m_source; }
    grpc::StatusCode GetStatusCode() const { return m_status; }

private:
    MurvaneError m_error;
    ErrorSource m_source = ErrorSource::CoreData;
    grpc::StatusCode m_status = grpc::StatusCode::UNKNOWN;
};

} // namespace TError

/// Root of every exception of the library: a list of messages and an error record.
/// `what()` is the UTF-8 of the first message. Derived classes override `Clone()` and
/// `Throw()` so that an exception caught on one thread can be rethrown on another with
/// its dynamic type.
class MURCOREDATA_EXPORT MurvaneException : public std::exception
{
public:
    explicit MurvaneException(const TStringCore& message, const TError::ErrorInfo& info = TError::ErrorInfo());
    explicit MurvaneException(const TFormatStringCore& message, const TError::ErrorInfo& info = TError::ErrorInfo());
    MurvaneException(const MurvaneException&) = default;
    MurvaneException& operator=(const MurvaneException&) = default;
    ~MurvaneException() override;

    const char* what() const noexcept override { return m_what.c_str(); }

    TString GetMessagesFront() const;
    /// Every message, joined by a line break.
    TString GetConcatenatedMessages() const;
    /// The messages and the error record, as one text for the log.
    TString CollateMessagesForLog() const;
    const std::vector<TString>& GetMessages() const { return m_messages; }
    /// Adds context to the exception, for example at a layer that catches and rethrows.
    void AddMessage(const TString& message);

    const TError::ErrorInfo& GetErrorInfo() const { return m_info; }

    virtual MurvaneException* Clone() const;
    [[noreturn]] virtual void Throw() const;

private:
    std::vector<TString> m_messages;
    TError::ErrorInfo m_info;
    std::string m_what;
};

/// The exception most of the library throws: a message and an error record.
class MURCOREDATA_EXPORT StringException : public MurvaneException
{
public:
    explicit StringException(const TString& message, const TError::ErrorInfo& info = TError::ErrorInfo())
        : MurvaneException(static_cast<const TStringCore&>(message), info)
    {
    }
    StringException* Clone() const override { return new StringException(*this); }
    [[noreturn]] void Throw() const override { throw StringException(*this); }
};

/// A failed logic assertion: a programmer's mistake, not bad input. Its message holds the
/// source path, the line and the condition as the source writes it.
class MURCOREDATA_EXPORT LogicException : public MurvaneException
{
public:
    LogicException(const TString& message, const TError::ErrorInfo& info)
        : MurvaneException(static_cast<const TStringCore&>(message), info)
    {
    }
    LogicException* Clone() const override { return new LogicException(*this); }
    [[noreturn]] void Throw() const override { throw LogicException(*this); }
};

/// Throws `LogicException` for a failed condition. `sourcePath` is cut to the part below the
/// library's folder, so that the message does not depend on where the sources were built.
[[noreturn]] MURCOREDATA_EXPORT void ThrowLogicException(const char* sourcePath, int line, const char* conditionText,
                                                         const MurvaneError& error);
[[noreturn]] MURCOREDATA_EXPORT void ThrowLogicException(const char* sourcePath, int line, const char* conditionText);

/// A checked condition: on failure, the site's generated error and a `LogicException`.
#define MUR_LOGIC_ASSERT(condition, errorFunction)                                                   \
    do {                                                                                             \
        if (!(condition))                                                                            \
            ::ThrowLogicException(__FILE__, __LINE__, #condition, ::MurErrorsError::errorFunction()); \
    } while (false)

/// A failed assertion with a message of its own instead of the condition text.
#define MUR_LOGIC_FAIL(message, errorFunction) \
    ::ThrowLogicException(__FILE__, __LINE__, message, ::MurErrorsError::errorFunction())
