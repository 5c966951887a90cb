#include "murcoredata/foundation/CorePlatform.h"

#include "murcoredata/foundation/MurErrorsError.h"
#include "murcoredata/foundation/RefCnt.h"

#include <QChar>
#include <QCoreApplication>
#include <QFileInfo>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace {

std::atomic<bool> s_isAppBundle{false};
std::mutex s_applicationDirMutex;
TString s_applicationDir;

} // namespace

bool CorePlatformOptions::GetIsAppBundle()
{
    return s_isAppBundle.load(std::memory_order_relaxed);
}

void CorePlatformOptions::SetIsAppBundle(bool isAppBundle)
{
    s_isAppBundle.store(isAppBundle, std::memory_order_relaxed);
}

TString CorePlatformOptions::GetApplicationDir()
{
    {
        std::lock_guard<std::mutex> lock(s_applicationDirMutex);
        if (!s_applicationDir.isEmpty())
            return s_applicationDir;
    }
    if (QCoreApplication::instance() != nullptr)
        return QCoreApplication::applicationDirPath();
    return QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath().section(QLatin1Char('/'), 0, -2);
}

void CorePlatformOptions::SetApplicationDir(const TString& folder)
{
    std::lock_guard<std::mutex> lock(s_applicationDirMutex);
    s_applicationDir = folder;
}

bool TCType::isAlpha(char16_t c)
{
    return QChar(c).isLetter();
}

std::wstring Unicode::toStdWString(const char16_t* text, size_t size)
{
    std::wstring out;
    if (text == nullptr)
        return out;
    out.reserve(size);
    for (size_t i = 0; i < size; ++i) {
        const char16_t c = text[i];
        if (QChar::isHighSurrogate(c) && i + 1 < size && QChar::isLowSurrogate(text[i + 1])) {
            out.push_back(wchar_t(QChar::surrogateToUcs4(c, text[i + 1])));
            ++i;
        } else if (QChar::isSurrogate(c)) {
            out.push_back(wchar_t(0xFFFD));
        } else {
            out.push_back(wchar_t(c));
        }
    }
    return out;
}

void ICrashNow() noexcept
{
    std::fputs("murcoredata: unrecoverable state, ending the process\n", stderr);
    std::abort();
}

void reportNullPtr()
{
    throw LogicException(TString(u"Null pointer dereferenced"), TError::ErrorInfo(MurErrorsError::LogicAssert_0x00BF554A()));
}
