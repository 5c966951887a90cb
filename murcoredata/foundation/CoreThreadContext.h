#pragma once

#include "murcoredata/foundation/TString.h"

#include <boost/any.hpp>

#include <memory>
#include <mutex>
#include <unordered_map>

/// The state of one session, shared by the threads that serve it. The host makes it and
/// attaches it to each thread that works for the session.
class MURCOREDATA_EXPORT CoreSession
{
public:
    explicit CoreSession(const TString& id) : m_id(id) {}

    const TString& GetId() const { return m_id; }
    /// The object stored under `key`, or an empty `boost::any`.
    boost::any GetObject(const TString& key) const;
    void SetObject(const TString& key, const boost::any& object);
    void RemoveObject(const TString& key);

private:
    TString m_id;
    mutable std::mutex m_mutex;
    std::unordered_map<TString, boost::any> m_objects;
};

/// Per-thread state: the session the calling thread works for, if any, and objects that
/// belong to the thread alone. Every function acts on the calling thread.
class MURCOREDATA_EXPORT CoreThreadContext
{
public:
    /// Attaches the calling thread to a session; null detaches it.
    static void SetSession(std::shared_ptr<CoreSession> session);
    static std::shared_ptr<CoreSession> GetSession();
    static bool HasSessionId();

    /// The session's object under `key`; empty outside a session or when nothing is there.
    static boost::any GetGenericObject(const TString& key);

    /// The session's object under `key` as a `shared_ptr<T>`; null when it is missing or
    /// was stored as another type.
    template <typename T>
    static std::shared_ptr<T> GetObject(const TString& key)
    {
        const boost::any object = GetGenericObject(key);
        const std::shared_ptr<T>* p = boost::any_cast<std::shared_ptr<T>>(&object);
        return p ? *p : std::shared_ptr<T>();
    }

    /// Objects of the calling thread alone: no lock, no sharing.
    static std::shared_ptr<boost::any> GetGenericUnsynchronizedObject(const TString& key);
    static void SetGenericUnsynchronizedObject(const TString& key, std::shared_ptr<boost::any> object);
};
