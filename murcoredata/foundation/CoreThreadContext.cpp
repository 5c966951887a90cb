#include "murcoredata/foundation/CoreThreadContext.h"

namespace {

struct ThreadState
{
    std::shared_ptr<CoreSession> session;
    std::unordered_map<TString, std::shared_ptr<boost::any>> objects;
};

ThreadState& State()
{
    thread_local ThreadState state;
    return state;
}

} // namespace

boost::any CoreSession::GetObject(const TString& key) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_objects.find(key);
    return it == m_objects.end() ? boost::any() : it->second;
}

void CoreSession::SetObject(const TString& key, const boost::any& object)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_objects[key] = object;
}

void CoreSession::RemoveObject(const TString& key)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_objects.erase(key);
}

void CoreThreadContext::SetSession(std::shared_ptr<CoreSession> session)
{
    State().session = std::move(session);
}

std::shared_ptr<CoreSession> CoreThreadContext::GetSession()
{
    return State().session;
}

bool CoreThreadContext::HasSessionId()
{
    const auto& session = State().session;
    return session && !session->GetId().isEmpty();
}

boost::any CoreThreadContext::GetGenericObject(const TString& key)
{
    const auto& session = State().session;
    return session ? session->GetObject(key) : boost::any();
}

std::shared_ptr<boost::any> CoreThreadContext::GetGenericUnsynchronizedObject(const TString& key)
{
    auto& objects = State().objects;
    const auto it = objects.find(key);
    return it == objects.end() ? nullptr : it->second;
}

void CoreThreadContext::SetGenericUnsynchronizedObject(const TString& key, std::shared_ptr<boost::any> object)
{
    auto& objects = State().objects;
    if (object)
        objects[key] = std::move(object);
    else
        objects.erase(key);
}
