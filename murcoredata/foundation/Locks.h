#pragma once

#include "murcoredata/foundation/Export.h"

#include <mutex>
#include <shared_mutex>

/// A reader-writer lock. Not re-entrant, and a read lock is never upgraded in place:
/// release it, take the write lock, then check again. The rank is kept for diagnostics.
class TReadWriteLock
{
public:
    explicit TReadWriteLock(unsigned rank = 0) : m_rank(rank) {}
    TReadWriteLock(const TReadWriteLock&) = delete;
    TReadWriteLock& operator=(const TReadWriteLock&) = delete;

    void Lock() { m_mutex.lock(); }
    void Unlock() { m_mutex.unlock(); }
    void LockRead() { m_mutex.lock_shared(); }
    void UnlockRead() { m_mutex.unlock_shared(); }
    unsigned GetRank() const { return m_rank; }

private:
    std::shared_mutex m_mutex;
    unsigned m_rank;
};

/// A mutex that the holding thread may take again.
class TRecursiveMutex
{
public:
    explicit TRecursiveMutex(unsigned rank = 0) : m_rank(rank) {}
    TRecursiveMutex(const TRecursiveMutex&) = delete;
    TRecursiveMutex& operator=(const TRecursiveMutex&) = delete;

    void Lock() { m_mutex.lock(); }
    void Unlock() { m_mutex.unlock(); }
    bool TryLock() { return m_mutex.try_lock(); }
    unsigned GetRank() const { return m_rank; }

private:
    std::recursive_mutex m_mutex;
    unsigned m_rank;
};

/// Holds a `TRecursiveMutex` for a scope. The site arguments name the holder for diagnostics.
class AutoSynchronize
{
public:
    explicit AutoSynchronize(TRecursiveMutex& mutex, int siteId = 0, const char* file = nullptr,
                             const char* function = nullptr, int line = 0)
        : m_mutex(mutex)
    {
        (void)siteId, (void)file, (void)function, (void)line;
        m_mutex.Lock();
    }
    ~AutoSynchronize() { m_mutex.Unlock(); }
    AutoSynchronize(const AutoSynchronize&) = delete;
    AutoSynchronize& operator=(const AutoSynchronize&) = delete;

private:
    TRecursiveMutex& m_mutex;
};

/// Holds a `TReadWriteLock` for writing for a scope.
class ScopedLock
{
public:
    explicit ScopedLock(TReadWriteLock& lock) : m_lock(lock) { m_lock.Lock(); }
    ~ScopedLock() { m_lock.Unlock(); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    TReadWriteLock& m_lock;
};

/// Holds a `TReadWriteLock` for reading for a scope.
class ScopedReadLock
{
public:
    explicit ScopedReadLock(TReadWriteLock& lock) : m_lock(lock) { m_lock.LockRead(); }
    ~ScopedReadLock() { m_lock.UnlockRead(); }
    ScopedReadLock(const ScopedReadLock&) = delete;
    ScopedReadLock& operator=(const ScopedReadLock&) = delete;

private:
    TReadWriteLock& m_lock;
};
